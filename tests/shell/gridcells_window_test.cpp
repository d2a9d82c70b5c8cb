// The cells of the product grid and the quote grid as they are drawn on the real window: a
// cell only partly in view is drawn in the part that shows, so an amount aligned to the right
// is not cut to its first digits.
#include "shellfixture.h"

#include "shell/gridcelldelegate.h"
#include "shell/gridview.h"

#include <QHeaderView>
#include <QProxyStyle>
#include <QScrollBar>
#include <QStyleFactory>
#include <QStyleOptionViewItem>

#include <memory>
#include <vector>

using namespace tarnwick;
using namespace tarnwick::test;

namespace {

/// The style of one grid, noting every cell it is asked to draw.
class CellRecorder : public QProxyStyle
{
public:
    struct Drawn
    {
        int row;
        int column;
        QRect rect;
        QString text;
    };

    CellRecorder() : QProxyStyle(QStyleFactory::create(QStringLiteral("Fusion"))) { }

    void drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
        const QWidget *widget) const override
    {
        if (const auto *item = qstyleoption_cast<const QStyleOptionViewItem *>(option);
            item && element == CE_ItemViewItem)
            drawn.push_back({ item->index.row(), item->index.column(), item->rect, item->text });
        QProxyStyle::drawControl(element, option, painter, widget);
    }

    mutable std::vector<Drawn> drawn;
};

class GridCellsWindowTest : public SampleWindowTest
{
protected:
    void TearDown() override
    {
        for (GridView *view : { window->ui().GrdMain, window->ui().GrdQuote })
            view->setStyle(nullptr);
        SampleWindowTest::TearDown();
    }

    /// Draws view once with the recording style; the cells it drew.
    std::vector<CellRecorder::Drawn> draw(GridView *view)
    {
        view->setStyle(recorder.get());
        recorder->drawn.clear();
        view->viewport()->grab();
        return recorder->drawn;
    }

    /// Column widths that leave `shown` pixels of column `partly` in view at the right edge.
    static void leaveInView(GridView *view, int partly, int shown)
    {
        int left = view->viewport()->width() - shown;
        for (int column = 0; column < partly; ++column) {
            const int width = column + 1 == partly ? left : std::min(left - 20, 80);
            view->setColumnWidth(column, width);
            left -= width;
        }
        view->setColumnWidth(partly, 200);
        view->horizontalScrollBar()->setValue(0);
        ASSERT_EQ(view->columnViewportPosition(partly), view->viewport()->width() - shown);
    }

    std::unique_ptr<CellRecorder> recorder = std::make_unique<CellRecorder>();
};

TEST(GridCellDelegate, TheShownPartIsTheCellsWidthWithinTheViewport)
{
    const QRect viewport(0, 0, 300, 200);
    EXPECT_EQ(
        GridCellDelegate::shownPart(QRect(280, 40, 100, 20), viewport), QRect(280, 40, 20, 20));
    EXPECT_EQ(
        GridCellDelegate::shownPart(QRect(-30, 190, 100, 20), viewport), QRect(0, 190, 70, 20))
        << "a row cut at the bottom keeps its height";
    EXPECT_EQ(
        GridCellDelegate::shownPart(QRect(10, 40, 100, 20), viewport), QRect(10, 40, 100, 20));
}

TEST_F(GridCellsWindowTest, APriceAtTheProductGridsRightEdgeIsDrawnInThePartThatShows)
{
    window->resize(1280, 800);
    window->show();
    leaveInView(grid, 2, 30);
    const int viewportWidth = grid->viewport()->width();
    int prices = 0;
    for (const CellRecorder::Drawn &cell : draw(grid)) {
        EXPECT_LE(cell.rect.right(), viewportWidth - 1) << cell.text.toStdString();
        if (cell.column != 2)
            continue;
        EXPECT_EQ(cell.rect.left(), viewportWidth - 30);
        EXPECT_EQ(cell.rect.width(), 30) << cell.text.toStdString();
        prices += cell.text.startsWith(QLatin1Char('$')) ? 1 : 0;
    }
    int priced = 0;
    for (int row = 0; row < grid->model()->rowCount(); ++row)
        priced += grid->model()->index(row, 2).data().toString().startsWith(QLatin1Char('$'));
    ASSERT_GT(priced, 0);
    EXPECT_EQ(prices, priced) << "every price was drawn";

    // Scrolled by pixels until 50 of the price column are out of view on the left, its part
    // that shows is drawn, from the grid's left edge.
    grid->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    grid->horizontalScrollBar()->setValue(grid->columnViewportPosition(2) + 50);
    const int hidden = -grid->columnViewportPosition(2);
    ASSERT_EQ(hidden, 50);
    int drawnAfterScrolling = 0;
    for (const CellRecorder::Drawn &cell : draw(grid)) {
        if (cell.column == 2) {
            const QRect whole = grid->visualRect(grid->model()->index(cell.row, 2));
            EXPECT_EQ(cell.rect, QRect(QPoint(0, whole.top()), whole.bottomRight()));
            EXPECT_LT(whole.left(), 0);
            ++drawnAfterScrolling;
        }
    }
    EXPECT_EQ(drawnAfterScrolling, grid->model()->rowCount()) << "every row's price was drawn";
}

TEST_F(GridCellsWindowTest, AnExtendedPriceAtTheQuoteGridsRightEdgeIsDrawnInThePartThatShows)
{
    window->resize(1280, 800);
    window->show();
    goToRow(0);
    action("mnuGrdMainQuote")->trigger();
    GridView *quoteGrid = window->ui().GrdQuote;
    // The Product column takes the grid's spare width; the widths are set here instead.
    quoteGrid->horizontalHeader()->setSectionResizeMode(QHeaderView::Interactive);
    leaveInView(quoteGrid, 4, 25);
    const int viewportWidth = quoteGrid->viewport()->width();
    bool extended = false;
    for (const CellRecorder::Drawn &cell : draw(quoteGrid)) {
        EXPECT_LE(cell.rect.right(), viewportWidth - 1) << cell.text.toStdString();
        if (cell.column == 4 && cell.row == 0) {
            EXPECT_EQ(cell.rect.width(), 25);
            extended = cell.text.startsWith(QLatin1Char('$'));
        }
    }
    EXPECT_TRUE(extended) << "the line's extended price was drawn";
}

} // namespace
