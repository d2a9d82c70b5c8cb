#include "quotefixture.h"

#include "core/conversions.h"
#include "quotes/quotegridmodel.h"
#include "quotes/quoteline.h"
#include "quotes/quotelist.h"

#include <QSignalSpy>

#include <tuple>
#include <vector>

using namespace tarnwick;
using namespace tarnwick::test;

namespace {

class QuoteGridModelTest : public QuoteFixture
{
protected:
    QuoteGridModelTest() : model(quote, catalogue, locale) { }

    QString shown(int row, int column) const { return model.index(row, column).data().toString(); }
    bool editable(int row, int column) const
    {
        return model.flags(model.index(row, column)).testFlag(Qt::ItemIsEditable);
    }

    QuoteGridModel model;
};

TEST_F(QuoteGridModelTest, ShowsTheFiveColumnsOfEveryQuoteRow)
{
    EXPECT_EQ(model.rowCount(), QuoteLine::MaxLines);
    QStringList captions;
    for (int c = 0; c < model.columnCount(); ++c)
        captions << model.headerData(c, Qt::Horizontal).toString();
    EXPECT_EQ(
        captions, QStringList({ "Part Number", "Product", "Price", "Quantity", "Ext. Price" }));
}

TEST_F(QuoteGridModelTest, PricesShowAsCurrency)
{
    add("B-200");
    quote.put(1, QuoteLine::ExtendedPrice, 1234.5);
    EXPECT_EQ(shown(0, 0), QStringLiteral("B-200"));
    EXPECT_EQ(shown(0, 1), QStringLiteral("Gadget"));
    EXPECT_EQ(shown(0, 2), QStringLiteral("$7.35"));
    EXPECT_EQ(shown(0, 3), QStringLiteral("1"));
    EXPECT_EQ(shown(0, 4), QStringLiteral("$1,234.50"));
    EXPECT_EQ(shown(1, 0), QString());
}

TEST_F(QuoteGridModelTest, OnlyTheLinesAreEditableAndTheExtendedPriceNever)
{
    add("A-100");
    for (int c = 0; c < QuoteGridColumn::ExtPrice; ++c)
        EXPECT_TRUE(editable(0, c)) << c;
    EXPECT_FALSE(editable(0, QuoteGridColumn::ExtPrice));
    EXPECT_FALSE(editable(1, QuoteGridColumn::Quantity));
    EXPECT_FALSE(model.setData(model.index(1, QuoteGridColumn::Quantity), "5"));
    EXPECT_TRUE(quote.get(2, QuoteLine::Quantity).isEmpty());
}

TEST_F(QuoteGridModelTest, ATypedQuantityRepricesTheLineAndAsksForTheTotals)
{
    add("A-100");
    QSignalSpy changed(&model, &QuoteGridModel::quoteChanged);
    QSignalSpy cells(&model, &QAbstractItemModel::dataChanged);
    EXPECT_TRUE(model.setData(model.index(0, QuoteGridColumn::Quantity), "50"));
    EXPECT_EQ(changed.count(), 1);
    EXPECT_EQ(cells.count(), 1);
    EXPECT_EQ(shown(0, QuoteGridColumn::Quantity), QStringLiteral("50"));
    EXPECT_EQ(shown(0, QuoteGridColumn::Price), QStringLiteral("$10.00"));
    EXPECT_EQ(shown(0, QuoteGridColumn::ExtPrice), QStringLiteral("$500.00"));
}

// Typing not stored yet: a quantity or price is kept as storing it would leave the quote; a part
// number is not kept, and one emptied is dropped rather than stored by a command or a close.
TEST_F(QuoteGridModelTest, TypingNotStoredYetIsKeptOrDroppedByItsColumn)
{
    add("A-100");
    add("B-200");
    const QModelIndex quantity = model.index(0, QuoteGridColumn::Quantity);
    const std::optional<Table> typed = model.linesWithTyping(quantity, QStringLiteral("50"));
    ASSERT_TRUE(typed.has_value());
    EXPECT_EQ(typed->get(1, QuoteLine::Quantity), Cell(qint32(50)));
    EXPECT_EQ(conv::toText(typed->get(1, QuoteLine::UnitPrice), locale), QStringLiteral("10"));
    EXPECT_EQ(shown(0, QuoteGridColumn::Quantity), QStringLiteral("1")) << "the quote as it was";
    EXPECT_FALSE(model.linesWithTyping(quantity, QStringLiteral("1")).has_value())
        << "what the cell holds";
    const QModelIndex part = model.index(0, QuoteGridColumn::PartNumber);
    EXPECT_FALSE(model.linesWithTyping(part, QString()).has_value());
    EXPECT_FALSE(model.linesWithTyping(part, QStringLiteral("B-2")).has_value());
    EXPECT_TRUE(QuoteGridModel::dropsTyping(part, QStringLiteral("  ")));
    EXPECT_FALSE(QuoteGridModel::dropsTyping(part, QStringLiteral("B-2")));
    EXPECT_FALSE(QuoteGridModel::dropsTyping(quantity, QString()));
}

// The same meaning as in the list price box: a comma decimal typed under an English locale.
TEST_F(QuoteGridModelTest, APriceTypedWithACommaDecimalIsThatPrice)
{
    add("A-100");
    EXPECT_TRUE(model.setData(model.index(0, QuoteGridColumn::Quantity), "4"));
    EXPECT_TRUE(model.setData(model.index(0, QuoteGridColumn::Price), "12,5"));
    EXPECT_EQ(shown(0, QuoteGridColumn::Price), QStringLiteral("$12.50"));
    EXPECT_EQ(shown(0, QuoteGridColumn::ExtPrice), QStringLiteral("$50.00"));
    EXPECT_TRUE(model.setData(model.index(0, QuoteGridColumn::Price), "1,250"));
    EXPECT_EQ(shown(0, QuoteGridColumn::Price), QStringLiteral("$1,250.00"))
        << "a thousands separator in English";
}

TEST_F(QuoteGridModelTest, AQuantityThatOverflowsIsTrappedAndNoCellShowsAnInfinity)
{
    add("A-100");
    for (const QString &typed :
        { QStringLiteral("1e40"), QString(300, QLatin1Char('9')), QStringLiteral("1e10") }) {
        EXPECT_TRUE(model.setData(model.index(0, QuoteGridColumn::Quantity), typed));
        EXPECT_EQ(shown(0, QuoteGridColumn::Quantity), typed);
        EXPECT_EQ(shown(0, QuoteGridColumn::Price), QStringLiteral("$12.50"));
        EXPECT_EQ(shown(0, QuoteGridColumn::ExtPrice), QStringLiteral("$0.00"));
    }
}

TEST_F(QuoteGridModelTest, ATypedPriceIsKeptUntilTheQuantityChanges)
{
    add("A-100");
    model.setData(model.index(0, QuoteGridColumn::Quantity), "10");
    model.setData(model.index(0, QuoteGridColumn::Price), "9");
    EXPECT_EQ(shown(0, QuoteGridColumn::Price), QStringLiteral("$9.00"));
    EXPECT_EQ(shown(0, QuoteGridColumn::ExtPrice), QStringLiteral("$90.00"));
    model.setData(model.index(0, QuoteGridColumn::Quantity), "2");
    EXPECT_EQ(shown(0, QuoteGridColumn::Price), QStringLiteral("$12.50"));
    EXPECT_EQ(shown(0, QuoteGridColumn::ExtPrice), QStringLiteral("$25.00"));
}

TEST_F(QuoteGridModelTest, AQuantityOpenedAndLeftAsItWasKeepsATypedPrice)
{
    add("A-100");
    model.setData(model.index(0, QuoteGridColumn::Quantity), "10");
    model.setData(model.index(0, QuoteGridColumn::Price), "9");
    QSignalSpy changed(&model, &QuoteGridModel::quoteChanged);
    for (const int column : { QuoteGridColumn::Quantity, QuoteGridColumn::Price }) {
        const QModelIndex cell = model.index(0, column);
        EXPECT_TRUE(model.setData(cell, cell.data(Qt::EditRole))) << column;
    }
    EXPECT_EQ(shown(0, QuoteGridColumn::Price), QStringLiteral("$9.00"));
    EXPECT_EQ(changed.count(), 0);
}

TEST_F(QuoteGridModelTest, ClearingAPartNumberEndsTheQuoteThere)
{
    add("A-100");
    add("B-200");
    QSignalSpy reset(&model, &QAbstractItemModel::modelReset);
    EXPECT_TRUE(model.setData(model.index(0, QuoteGridColumn::PartNumber), QString()));
    EXPECT_EQ(reset.count(), 1);
    EXPECT_EQ(QuoteLine::lineCount(quote), 0);
    EXPECT_FALSE(editable(1, QuoteGridColumn::Quantity));
}

TEST_F(QuoteGridModelTest, ALockedPriceIsDescribedForAssistiveTools)
{
    add("A-100");
    EXPECT_FALSE(
        model.index(0, QuoteGridColumn::Price).data(Qt::AccessibleDescriptionRole).isValid());
    QuoteLine::setLocked(quote, 1, true);
    EXPECT_EQ(model.index(0, QuoteGridColumn::Price).data(Qt::AccessibleDescriptionRole).toString(),
        QStringLiteral("Price locked: a quantity change keeps it"));
    EXPECT_FALSE(
        model.index(0, QuoteGridColumn::Quantity).data(Qt::AccessibleDescriptionRole).isValid());
}

TEST_F(QuoteGridModelTest, GridRowIsQuoteRowMinusOne)
{
    EXPECT_EQ(QuoteGridModel::quoteRowOf(0), 1);
    EXPECT_EQ(QuoteGridModel::quoteRowOf(249), 250);
}

TEST_F(QuoteGridModelTest, ATypedCellGoesToTheWriterWhichRepricesAndTheTotalsAreAskedFor)
{
    const int row = add(QStringLiteral("A-100"));
    QSignalSpy changed(&model, &QuoteGridModel::quoteChanged);
    std::vector<std::tuple<int, int, QString>> written;
    model.setCellWriter([&](int quoteRow, int column, const QString &text) {
        written.emplace_back(quoteRow, column, text);
        return true;
    });
    const Table before = quote;
    EXPECT_TRUE(
        model.setData(model.index(row - 1, QuoteGridColumn::Quantity), QStringLiteral("50")));
    ASSERT_EQ(written.size(), 1u);
    EXPECT_EQ(
        written[0], std::make_tuple(row, int(QuoteGridColumn::Quantity), QStringLiteral("50")));
    EXPECT_TRUE(sameCells(quote, before)) << "the writer changes the quote, not the model";
    EXPECT_EQ(changed.count(), 1);
}

} // namespace
