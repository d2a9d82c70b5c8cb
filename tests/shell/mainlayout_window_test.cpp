// The main window's layout on the real window: the panes follow the split when the window
// is resized, the bar can be dragged within its margins, and the split is remembered.
#include "shellfixture.h"

#include "shell/amountbox.h"
#include "shell/gridview.h"
#include "shell/mainwindowactions.h"

#include <QFrame>
#include <QLineEdit>
#include <QMouseEvent>
#include <QTabWidget>
#include <QTest>

using namespace tarnwick;
using namespace tarnwick::test;

namespace {

class MainLayoutWindowTest : public ShellTest
{
protected:
    void SetUp() override
    {
        ShellTest::SetUp();
        window = startAndWait();
        ASSERT_NE(window, nullptr);
    }

    void sendToBar(QEvent::Type type, int x)
    {
        QMouseEvent event(type, QPointF(x, 5), window->ui().Frame1->mapToGlobal(QPointF(x, 5)),
            Qt::LeftButton, type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton,
            Qt::NoModifier);
        QApplication::sendEvent(window->ui().Frame1, &event);
    }
    void drag(int dx)
    {
        sendToBar(QEvent::MouseButtonPress, 1);
        sendToBar(QEvent::MouseMove, 1 + dx);
        sendToBar(QEvent::MouseButtonRelease, 1 + dx);
    }

    frmMain *window = nullptr;
};

TEST_F(MainLayoutWindowTest, ThePanesFollowTheSplitAndStayInsideTheWindow)
{
    window->resize(900, 600);
    const QWidget *client = window->ui().Client;
    const QRect grid = window->ui().GrdMain->geometry();
    const QRect tab = window->ui().SSTabmain->geometry();
    EXPECT_EQ(grid.left(), 0);
    EXPECT_NEAR(grid.width(), client->width() / 2.0, 1);
    EXPECT_EQ(grid.height(), client->height());
    EXPECT_GT(window->ui().Frame1->geometry().left(), grid.right());
    EXPECT_GT(tab.left(), window->ui().Frame1->geometry().left());
    EXPECT_LE(tab.right(), client->width() - 1);
    EXPECT_GT(tab.width(), 300);
}

TEST_F(MainLayoutWindowTest, DraggingTheBarChangesTheSplitAndItIsSavedAtClose)
{
    window->resize(900, 600);
    const int clientWidth = window->ui().Client->width();
    const int barLeft = window->ui().Frame1->geometry().left();
    const int target = clientWidth * 3 / 10;
    drag(target - barLeft);
    EXPECT_EQ(window->screenSplit(), qint16(target * 100 / clientWidth));
    EXPECT_TRUE(window->ui().SSTabmain->isVisible());
    EXPECT_NEAR(window->ui().GrdMain->width(), clientWidth * window->screenSplit() / 100.0, 1);
    window->close();
    EXPECT_EQ(setting(QStringLiteral("ScreenSplit")), QString::number(window->screenSplit()));
}

TEST_F(MainLayoutWindowTest, TheBarDoesNotFollowCloserThan500TwipsToAnEdge)
{
    window->resize(900, 600);
    const qint16 before = window->screenSplit();
    const int barLeft = window->ui().Frame1->geometry().left();
    drag(20 - barLeft); // 20 px = 300 twips from the left edge
    EXPECT_EQ(window->screenSplit(), before);
    drag(window->ui().Client->width() - 20 - barLeft);
    EXPECT_EQ(window->screenSplit(), before);
}

// The bar dragged far to the right leaves the totals and the list price narrower than their
// amounts: each shows its amount cut with "…" at its end, never its last digits ("50.00" of
// "$104,850.00" would read as another amount), and keeps it whole as its text.
TEST_F(MainLayoutWindowTest, AnAmountTooWideForItsBoxIsCutAtItsEndNotItsStart)
{
    const QString amount = QStringLiteral("$104,850.00");
    for (QLineEdit *box : { window->ui().TxtTotal, window->ui().TxtDisc, window->ui().TxtPrice }) {
        SCOPED_TRACE(box->objectName().toStdString());
        auto *amountBox = qobject_cast<AmountBox *>(box);
        ASSERT_NE(amountBox, nullptr);
        box->setText(amount);
        const int needed = box->fontMetrics().horizontalAdvance(amount);
        box->setFixedWidth(needed / 2);
        const QString shown = amountBox->shownText();
        EXPECT_TRUE(shown.endsWith(QChar(0x2026))) << shown.toStdString();
        EXPECT_TRUE(amount.startsWith(shown.chopped(1))) << shown.toStdString();
        EXPECT_EQ(box->text(), amount);
        box->setFixedWidth(needed + 40);
        EXPECT_EQ(amountBox->shownText(), amount);
    }
    // With the keyboard in it (F6, a click), a box that cannot be typed into stays cut so.
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window));
    auto *total = qobject_cast<AmountBox *>(window->ui().TxtTotal);
    total->setText(amount);
    total->setFixedWidth(total->fontMetrics().horizontalAdvance(amount) / 2);
    total->setFocus();
    ASSERT_TRUE(total->hasFocus());
    EXPECT_TRUE(total->shownText().endsWith(QChar(0x2026))) << total->shownText().toStdString();
}

TEST_F(MainLayoutWindowTest, MovingWithoutPressingDoesNotDrag)
{
    const qint16 before = window->screenSplit();
    sendToBar(QEvent::MouseMove, 100);
    EXPECT_EQ(window->screenSplit(), before);
}

TEST_F(MainLayoutWindowTest, ShowFromTheTrayMenuRestoresAHiddenWindow)
{
    window->showMinimized();
    window->actions().action(QStringLiteral("mnushow"))->trigger();
    EXPECT_FALSE(window->isMinimized());
    EXPECT_TRUE(window->isVisible());
}

} // namespace
