// The "Quotes" window by itself on a real quote book: newest first, the search box narrowing
// the list as it is typed, Open with the button, Enter and a double-click, the status.
#include "quotebook/quotebook.h"
#include "quotebook/quotelistmodel.h"
#include "quotebook/ui/frmquotes.h"
#include "quotes/quoteline.h"
#include "support/fakeprompts.h"
#include "support/modelcheck.h"
#include "support/tempappfolder.h"

#include <QApplication>
#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QSqlQuery>
#include <QTableView>
#include <QTest>
#include <QWheelEvent>

#include <gtest/gtest.h>

#include <algorithm>

using namespace tarnwick;
using namespace tarnwick::test;

namespace {

SavedQuote quoteFor(const QString &customer, const QDate &date, const QString &part)
{
    SavedQuote quote;
    quote.header.customer.customer = customer;
    quote.header.date = date;
    quote.header.validUntil = date.addDays(30);
    quote.content.lines.redim(1, QuoteLine::FieldCount);
    quote.content.lines.put(1, QuoteLine::PartNumber, part);
    quote.content.lines.put(1, QuoteLine::Quantity, qint32(4));
    quote.content.lines.put(1, QuoteLine::ExtendedPrice, 1234.5);
    quote.content.sources = { PriceSource::Typed };
    return quote;
}

class FrmQuotesTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_EQ(book.open(folder.filePath(QStringLiteral("quotes.db"))).status,
            QuoteBook::OpenStatus::Created);
        std::vector<SavedQuote> quotes { quoteFor("ACME Plumbing", QDate(2026, 5, 12), "BV-1050"),
            quoteFor("Bolt Brothers", QDate(2026, 5, 14), "TAP-20"),
            quoteFor("Clamp & Co", QDate(2026, 5, 13), "BV-2000") };
        ASSERT_TRUE(book.saveNewQuotes(quotes));
        window = std::make_unique<FrmQuotes>(book, prompts, locale);
        window->show();
    }
    template <typename W> W *child(const char *name) const
    {
        auto *widget = window->findChild<W *>(QString::fromLatin1(name));
        EXPECT_NE(widget, nullptr) << name;
        return widget;
    }
    QStringList column(int index) const
    {
        QStringList texts;
        const QAbstractItemModel *model = child<QTableView>("GrdQuotes")->model();
        for (int row = 0; row < model->rowCount(); ++row)
            texts << model->index(row, index).data().toString();
        return texts;
    }

    const QLocale locale { QLocale::English, QLocale::UnitedStates };
    TempAppFolder folder;
    QuoteBook book { locale };
    FakePrompts prompts;
    std::unique_ptr<FrmQuotes> window;
};

TEST_F(FrmQuotesTest, ListsTheQuotesNewestFirst)
{
    EXPECT_EQ(window->windowTitle(), QStringLiteral("Quotes"));
    EXPECT_EQ(window->objectName(), QStringLiteral("FrmQuotes"));
    for (const char *name : { "TxtFind", "GrdQuotes", "CmdOpen", "CmdCancel", "CmbStatus" })
        EXPECT_EQ(child<QWidget>(name)->accessibleDescription(), QString::fromLatin1(name));
    QStringList headers;
    const QAbstractItemModel *model = child<QTableView>("GrdQuotes")->model();
    for (int section = 0; section < model->columnCount(); ++section)
        headers << model->headerData(section, Qt::Horizontal).toString();
    EXPECT_EQ(headers,
        (QStringList {
            "Number", "Revision", "Customer", "Date", "Total", "Status", "Valid Until" }));
    EXPECT_EQ(column(0), (QStringList { "Q-2026-0002", "Q-2026-0003", "Q-2026-0001" }));
    EXPECT_EQ(column(1), (QStringList { "A", "A", "A" }));
    EXPECT_EQ(column(2), (QStringList { "Bolt Brothers", "Clamp & Co", "ACME Plumbing" }));
    EXPECT_EQ(column(3), (QStringList { "5/14/26", "5/13/26", "5/12/26" }));
    EXPECT_EQ(column(4), (QStringList { "$1,234.50", "$1,234.50", "$1,234.50" }));
    EXPECT_EQ(column(5), (QStringList { "draft", "draft", "draft" }));
    EXPECT_EQ(child<QLabel>("LblCount")->text(), QStringLiteral("3 quotes"));
}

// A book that cannot be read (its drive gone) is no empty book: the window says why.
TEST_F(FrmQuotesTest, ABookThatCannotBeReadSaysSoInsteadOfNoQuotes)
{
    EXPECT_EQ(child<QLabel>("LblCount")->text(), QStringLiteral("3 quotes"));
    ASSERT_TRUE(QSqlQuery(book.database()).exec(QStringLiteral("PRAGMA foreign_keys = OFF")));
    ASSERT_TRUE(QSqlQuery(book.database()).exec(QStringLiteral("DROP TABLE quotes")));
    child<QLineEdit>("TxtFind")->setText(QStringLiteral("a"));
    EXPECT_TRUE(child<QLabel>("LblCount")
                    ->text()
                    .startsWith(QStringLiteral("The saved quotes cannot be read: ")))
        << child<QLabel>("LblCount")->text().toStdString();
    EXPECT_TRUE(child<QLabel>("LblCount")->text().contains(QStringLiteral("no such table")))
        << "the reason, not \"No query\": " << child<QLabel>("LblCount")->text().toStdString();
    EXPECT_EQ(child<QTableView>("GrdQuotes")->model()->rowCount(), 0);
}

TEST_F(FrmQuotesTest, AQuotePastItsLastValidDaySaysItHasExpired)
{
    window->model()->setToday(QDate(2026, 6, 12));
    window->refresh();
    // Valid 30 days from its date: ACME's (May 12) ran out on June 11.
    EXPECT_EQ(column(QuoteListModel::ValidUntil),
        (QStringList { "6/13/26", "6/12/26", "6/11/26 (expired)" }));
    // An accepted quote does not run out.
    const qint64 acme = book.list(QStringLiteral("ACME")).first().id;
    ASSERT_TRUE(book.setStatus(acme, QuoteStatus::Accepted));
    window->refresh();
    EXPECT_EQ(column(QuoteListModel::ValidUntil).last(), QStringLiteral("6/11/26"));
    ASSERT_TRUE(book.setStatus(acme, QuoteStatus::Sent));
    window->refresh();
    EXPECT_EQ(column(QuoteListModel::ValidUntil).last(), QStringLiteral("6/11/26 (expired)"));
}

TEST_F(FrmQuotesTest, StatusAndValidityColumnsHoldTheirWidestTextsFromTheStart)
{
    // The rows on screen at first need not hold the widest texts further down a long list.
    auto *grid = child<QTableView>("GrdQuotes");
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window.get()));
    QHeaderView *header = grid->horizontalHeader();
    for (const char *status : { "accepted", "declined" }) {
        EXPECT_GT(header->sectionSize(QuoteListModel::Status),
            grid->fontMetrics().horizontalAdvance(QString::fromLatin1(status)))
            << status;
    }
    EXPECT_GT(header->sectionSize(QuoteListModel::ValidUntil),
        grid->fontMetrics().horizontalAdvance(QStringLiteral("12/31/26 (expired)")));
    EXPECT_FALSE(grid->wordWrap()) << "a cell's text stays on one line";
}

TEST_F(FrmQuotesTest, EveryColumnIsReadableAtTheFirstSize)
{
    auto *grid = child<QTableView>("GrdQuotes");
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window.get()));
    QHeaderView *header = grid->horizontalHeader();
    const int shown = grid->viewport()->width();
    int right = 0;
    for (int column = 0; column < QuoteListModel::ColumnCount; ++column) {
        right =
            std::max(right, header->sectionViewportPosition(column) + header->sectionSize(column));
        if (column == QuoteListModel::Customer)
            continue;
        const QString caption = grid->model()->headerData(column, Qt::Horizontal).toString();
        EXPECT_GE(header->sectionSize(column), grid->fontMetrics().horizontalAdvance(caption))
            << qPrintable(caption);
        for (int row = 0; row < grid->model()->rowCount(); ++row) {
            const QString text = grid->model()->index(row, column).data().toString();
            EXPECT_GT(header->sectionSize(column), grid->fontMetrics().horizontalAdvance(text))
                << qPrintable(text);
        }
    }
    EXPECT_LE(right, shown) << "the last column (Status) is in view";
}

TEST_F(FrmQuotesTest, TypingIntoTheSearchBoxNarrowsTheList)
{
    auto *find = child<QLineEdit>("TxtFind");
    find->setFocus();
    QTest::keyClicks(find, QStringLiteral("bv-"));
    EXPECT_EQ(column(0), (QStringList { "Q-2026-0003", "Q-2026-0001" }));
    QTest::keyClicks(find, QStringLiteral("1"));
    EXPECT_EQ(column(0), QStringList { "Q-2026-0001" });
    EXPECT_EQ(child<QLabel>("LblCount")->text(), QStringLiteral("1 quote"));
    QTest::keyClicks(find, QStringLiteral("x"));
    EXPECT_TRUE(column(0).isEmpty());
    EXPECT_FALSE(child<QPushButton>("CmdOpen")->isEnabled());
    find->clear();
    QTest::keyClicks(find, QStringLiteral("BOLT"));
    EXPECT_EQ(column(2), QStringList { "Bolt Brothers" });
    find->clear();
    QTest::keyClicks(find, QStringLiteral("q-2026-0003"));
    EXPECT_EQ(column(2), QStringList { "Clamp & Co" });
}

TEST_F(FrmQuotesTest, EachKeyTypedReadsTheListOnce)
{
    auto *find = child<QLineEdit>("TxtFind");
    QSignalSpy resets(child<QTableView>("GrdQuotes")->model(), &QAbstractItemModel::modelReset);
    find->setFocus();
    QTest::keyClicks(find, QStringLiteral("bv"));
    EXPECT_EQ(resets.count(), 2);
    EXPECT_EQ(column(0), (QStringList { "Q-2026-0003", "Q-2026-0001" }));
}

// A click on a column's header sorts the list on it, a second click the other way; the quote
// chosen is the one on the row, and a search keeps the sort.
TEST_F(FrmQuotesTest, AClickOnAHeaderSortsTheList)
{
    auto *grid = child<QTableView>("GrdQuotes");
    QHeaderView *header = grid->horizontalHeader();
    const auto clickHeader = [&](int section) {
        const int x = header->sectionViewportPosition(section) + header->sectionSize(section) / 2;
        QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, QPoint(x, header->height() / 2));
    };
    clickHeader(QuoteListModel::Customer);
    EXPECT_EQ(column(2), (QStringList { "ACME Plumbing", "Bolt Brothers", "Clamp & Co" }));
    EXPECT_EQ(header->sortIndicatorSection(), int(QuoteListModel::Customer));
    clickHeader(QuoteListModel::Customer);
    EXPECT_EQ(column(2), (QStringList { "Clamp & Co", "Bolt Brothers", "ACME Plumbing" }));
    clickHeader(QuoteListModel::Number);
    EXPECT_EQ(column(0), (QStringList { "Q-2026-0001", "Q-2026-0002", "Q-2026-0003" }));

    auto *find = child<QLineEdit>("TxtFind");
    find->setText(QStringLiteral("bv"));
    EXPECT_EQ(column(0), (QStringList { "Q-2026-0001", "Q-2026-0003" })) << "still by number";
    grid->setCurrentIndex(grid->model()->index(1, 0));
    QTest::mouseClick(child<QPushButton>("CmdOpen"), Qt::LeftButton);
    ASSERT_EQ(window->result(), QDialog::Accepted);
    const auto chosen = book.load(window->chosenQuote());
    ASSERT_TRUE(chosen.has_value());
    EXPECT_EQ(chosen->header.number(), QStringLiteral("Q-2026-0003"));
}

// Names that begin with an accented capital or a letter of their own sort under its plain
// letter, as a reader looks for them.
TEST_F(FrmQuotesTest, ACustomerWithAnAccentedInitialSortsUnderItsPlainLetter)
{
    std::vector<SavedQuote> more { quoteFor(QStringLiteral("Zoë Young"), QDate(2026, 5, 15), "Z-1"),
        quoteFor(QStringLiteral("Émile Durand"), QDate(2026, 5, 16), "E-1"),
        quoteFor(QStringLiteral("Łukasz Nowak"), QDate(2026, 5, 17), "L-1") };
    ASSERT_TRUE(book.saveNewQuotes(more));
    window = std::make_unique<FrmQuotes>(book, prompts, locale);
    window->show();
    window->model()->sort(QuoteListModel::Customer, Qt::AscendingOrder);
    EXPECT_EQ(column(2),
        (QStringList { "ACME Plumbing", "Bolt Brothers", "Clamp & Co", "Émile Durand",
            "Łukasz Nowak", "Zoë Young" }));
}

// Sorting moves rows as a model must: a view's current row follows its quote.
TEST_F(FrmQuotesTest, TheSortedListKeepsTheModelRules)
{
    ModelCheck check(window->model());
    auto *grid = child<QTableView>("GrdQuotes");
    grid->setCurrentIndex(grid->model()->index(0, 0));
    const qint64 current = window->model()->idAt(0);
    for (int column = 0; column < QuoteListModel::ColumnCount; ++column) {
        grid->sortByColumn(column, Qt::AscendingOrder);
        grid->sortByColumn(column, Qt::DescendingOrder);
        EXPECT_EQ(window->model()->idAt(grid->currentIndex().row()), current) << column;
    }
    window->model()->sort(-1);
    EXPECT_EQ(column(0), (QStringList { "Q-2026-0002", "Q-2026-0003", "Q-2026-0001" }))
        << "back to newest first";
    EXPECT_TRUE(check.failures().isEmpty()) << check.failures().join('\n').toStdString();
}

TEST_F(FrmQuotesTest, OpenChoosesTheCurrentQuote)
{
    auto *grid = child<QTableView>("GrdQuotes");
    grid->setCurrentIndex(grid->model()->index(2, 0));
    QTest::mouseClick(child<QPushButton>("CmdOpen"), Qt::LeftButton);
    EXPECT_EQ(window->result(), QDialog::Accepted);
    EXPECT_EQ(window->chosenQuote(), window->model()->quotes().at(2).id);
    EXPECT_EQ(window->model()->quotes().at(2).number(), QStringLiteral("Q-2026-0001"));
}

TEST_F(FrmQuotesTest, SearchThenDownAndEnterOpenWithoutTheMouse)
{
    auto *find = child<QLineEdit>("TxtFind");
    find->setFocus();
    QTest::keyClicks(find, QStringLiteral("bv"));
    QTest::keyClick(find, Qt::Key_Down);
    QTest::keyClick(find, Qt::Key_Return);
    EXPECT_EQ(window->result(), QDialog::Accepted);
    EXPECT_EQ(book.load(window->chosenQuote())->header.number(), QStringLiteral("Q-2026-0001"));
}

TEST_F(FrmQuotesTest, ADoubleClickOpensTheQuoteUnderIt)
{
    auto *grid = child<QTableView>("GrdQuotes");
    const QRect cell = grid->visualRect(grid->model()->index(1, 2));
    // A double-click is a press and release followed by the double-click press.
    QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, cell.center());
    QTest::mouseDClick(grid->viewport(), Qt::LeftButton, {}, cell.center());
    EXPECT_EQ(window->result(), QDialog::Accepted);
    EXPECT_EQ(
        book.load(window->chosenQuote())->header.customer.customer, QStringLiteral("Clamp & Co"));
}

TEST_F(FrmQuotesTest, CancelChoosesNothing)
{
    QTest::mouseClick(child<QPushButton>("CmdCancel"), Qt::LeftButton);
    EXPECT_EQ(window->result(), QDialog::Rejected);
    EXPECT_EQ(window->chosenQuote(), 0);
}

TEST_F(FrmQuotesTest, TheStatusOfTheChosenQuoteIsChangedInTheBook)
{
    auto *grid = child<QTableView>("GrdQuotes");
    auto *status = child<QComboBox>("CmbStatus");
    grid->setCurrentIndex(grid->model()->index(1, 0));
    EXPECT_EQ(status->currentText(), QStringLiteral("draft"));
    status->setFocus();
    QTest::keyClick(status, Qt::Key_Down);
    QTest::keyClick(status, Qt::Key_Down);
    EXPECT_EQ(column(5), (QStringList { "draft", "accepted", "draft" }));
    EXPECT_GT(grid->horizontalHeader()->sectionSize(QuoteListModel::Status),
        grid->fontMetrics().horizontalAdvance(QStringLiteral("accepted")))
        << "the status shows whole";
    EXPECT_EQ(book.list(QStringLiteral("clamp")).first().status, QuoteStatus::Accepted);
    grid->setCurrentIndex(grid->model()->index(0, 0));
    EXPECT_EQ(status->currentText(), QStringLiteral("draft"));
    EXPECT_TRUE(prompts.shown().empty());
}

TEST_F(FrmQuotesTest, TheWheelScrollingPastTheStatusChangesNoQuote)
{
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    auto *grid = child<QTableView>("GrdQuotes");
    auto *status = child<QComboBox>("CmbStatus");
    grid->setFocus();
    grid->setCurrentIndex(grid->model()->index(1, 0));
    ASSERT_EQ(status->currentText(), QStringLiteral("draft"));
    const QPointF centre = QRectF(status->rect()).center();
    for (int turn = 0; turn < 2; ++turn) {
        QWheelEvent wheel(centre, status->mapToGlobal(centre), QPoint(), QPoint(0, -120),
            Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(status, &wheel);
    }
    EXPECT_EQ(status->currentText(), QStringLiteral("draft"));
    EXPECT_EQ(column(5), (QStringList { "draft", "draft", "draft" }));
    EXPECT_EQ(book.list(QStringLiteral("clamp")).first().status, QuoteStatus::Draft);
    EXPECT_NE(QApplication::focusWidget(), status) << "the wheel gave it no keyboard";
    // Chosen on purpose, with the keyboard in the box, the wheel changes it as before.
    status->setFocus();
    ASSERT_TRUE(status->hasFocus());
    QWheelEvent wheel(centre, status->mapToGlobal(centre), QPoint(), QPoint(0, -120), Qt::NoButton,
        Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(status, &wheel);
    EXPECT_EQ(status->currentText(), QStringLiteral("sent"));
}

TEST_F(FrmQuotesTest, TabAndCtrlTabLeaveTheListAndCancelHasItsLetter)
{
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    auto *grid = child<QTableView>("GrdQuotes");
    grid->setFocus();
    grid->setCurrentIndex(grid->model()->index(1, 0));
    QTest::keyClick(grid, Qt::Key_Tab);
    EXPECT_NE(QApplication::focusWidget(), grid) << "Tab went round the row's cells";
    EXPECT_EQ(grid->currentIndex().row(), 1);
    grid->setFocus();
    QTest::keyClick(grid, Qt::Key_Tab, Qt::ControlModifier);
    EXPECT_NE(QApplication::focusWidget(), grid);

    grid->setFocus();
    QTest::keyClick(grid, Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_NE(QApplication::focusWidget(), grid);

    // Alt+C for Cancel: no other control of the window has that letter.
    EXPECT_EQ(child<QPushButton>("CmdCancel")->text(), QStringLiteral("&Cancel"));
}

} // namespace
