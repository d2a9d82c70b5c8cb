// A sheet's numbers written with the other decimal mark: "2,675" is two and a bit in a sheet
// whose other prices are "12,50", whatever the user's locale groups thousands with.
#include "catalogue/productrecord.h"
#include "catalogue/table.h"
#include "exchange/decimalmark.h"
#include "exchange/importplan.h"
#include "exchange/importreport.h"
#include "exchange/textworkbook.h"
#include "exchange/workbook.h"
#include "exchangetestdata.h"
#include "support/testlocale.h"

#include <gtest/gtest.h>

#include <utility>

using namespace tarnwick;
using namespace tarnwick::decimalmark;
namespace P = ProductRecord;

using tarnwick::test::DeDe;
using tarnwick::test::EnUs;

namespace {

Reading readText(const QString &text)
{
    return readMarks(CellTextView { TextEncoding::Utf16, text.utf16(), text.size() });
}

Reading readBytes(const QByteArray &bytes)
{
    return readMarks(CellTextView { TextEncoding::Utf8, bytes.constData(), bytes.size() });
}

struct Shape
{
    const char *text;
    Mark says;
    bool ambiguous;
};

/// Plans adding a tab-separated sheet's rows to an empty catalogue (part number A, name B,
/// price C, price point D, its price E).
ImportPlan planned(
    const QByteArray &sheet, const QLocale &locale, ImportAction action = ImportAction::AddNew)
{
    const TextWorkbook text(sheet);
    const Table catalogue { 1, P::FieldCount };
    ImportPlanner planner(text, catalogue, test::supplierSheetLetters(), true, action, locale);
    planner.runAll();
    return planner.takePlan();
}

/// The list price, first price point and its price of the plan's first new product.
void expectFirstProduct(
    const ImportPlan &plan, const Cell &price, const Cell &point, const Cell &pointPrice)
{
    ASSERT_GE(plan.addedCount(), 1);
    EXPECT_EQ(plan.addedProduct(0)[P::Price - 1], price);
    EXPECT_EQ(plan.addedProduct(0)[P::PricePoint1 - 1], point);
    EXPECT_EQ(plan.addedProduct(0)[P::Price1 - 1], pointPrice);
}

/// Column C of rows 2 and 3 as a workbook of stored-form numbers gives them: row 2 a number
/// cell "2.675", row 3 a text cell; part numbers in A.
class NumberCellsSheet : public IWorkbook
{
public:
    explicit NumberCellsSheet(QString text) : m_text(std::move(text)) { }
    QString cellText(int column, int row) const override
    {
        if (row == 1)
            return column == 0 ? QStringLiteral("Part Number") : QString();
        if (row > 3)
            return QString();
        if (column == 0)
            return QStringLiteral("N-%1").arg(row);
        if (column == 2)
            return row == 2 ? QStringLiteral("2.675") : m_text;
        return QString();
    }
    bool isTextCell(int column, int row) const override { return column == 2 && row == 3; }
    bool numbersInStoredForm() const override { return true; }

private:
    QString m_text;
};

} // namespace

TEST(DecimalMarkTest, AMarkFollowedByThreeDigitsSaysNothing)
{
    const Shape shapes[] = {
        { "2,675", Mark::Unknown, true },
        { "1.250", Mark::Unknown, true },
        { "$2,675", Mark::Unknown, true },
        { "-2,675 \u20ac", Mark::Unknown, true },
        { "12,50", Mark::Comma, false },
        { "0,125", Mark::Comma, false },
        { "1234,567", Mark::Comma, false },
        { ",125", Mark::Comma, false },
        { "1.234,56", Mark::Comma, false },
        { "1.234.567", Mark::Comma, false },
        { "12.5", Mark::Point, false },
        { "0.125", Mark::Point, false },
        { "1,234.56", Mark::Point, false },
        { "1,234,567", Mark::Point, false },
        { "(1,234.50)", Mark::Point, false },
        { "12", Mark::Unknown, false },
        { "", Mark::Unknown, false },
        { "1,2,3", Mark::Unknown, false },
        { "1.2,3.4", Mark::Unknown, false },
        { "1,234.567.8", Mark::Unknown, false },
        { "ABC1,250", Mark::Unknown, false },
        { "2,675x", Mark::Unknown, false },
        { "12,50 EUR", Mark::Unknown, false },
    };
    for (const Shape &shape : shapes) {
        SCOPED_TRACE(shape.text);
        const QString text = QString::fromUtf8(shape.text);
        for (const Reading reading : { readText(text), readBytes(text.toUtf8()) }) {
            EXPECT_EQ(reading.says, shape.says);
            EXPECT_EQ(reading.ambiguous, shape.ambiguous);
        }
    }
}

TEST(DecimalMarkTest, AnAmbiguousTextIsWrittenAsTheLocaleReadsTheSheetsNumber)
{
    EXPECT_EQ(markOf(EnUs), Mark::Point);
    EXPECT_EQ(markOf(DeDe), Mark::Comma);
    EXPECT_EQ(rewritten(QStringLiteral("2,675"), Mark::Comma, EnUs), QStringLiteral("2.675"));
    EXPECT_EQ(rewritten(QStringLiteral("1.000"), Mark::Comma, EnUs), QStringLiteral("1000"));
    EXPECT_EQ(rewritten(QStringLiteral("$2,675"), Mark::Comma, EnUs), QStringLiteral("$2.675"));
    EXPECT_EQ(rewritten(QStringLiteral("1,250"), Mark::Point, DeDe), QStringLiteral("1250"));
    EXPECT_EQ(rewritten(QStringLiteral("2.675"), Mark::Point, DeDe), QStringLiteral("2,675"));
}

TEST(DecimalMarkTest, ASheetSaysItsMarkOnlyWhenItsTextsAgree)
{
    SheetMarks marks;
    EXPECT_EQ(marks.result(), Mark::Unknown);
    marks.add(Cell("2,675").textView());
    EXPECT_EQ(marks.result(), Mark::Unknown) << "an ambiguous text says nothing";
    marks.add(Cell("12,50").textView());
    EXPECT_EQ(marks.result(), Mark::Comma);
    marks.add(Cell("0,99").textView());
    EXPECT_EQ(marks.result(), Mark::Comma);
    EXPECT_FALSE(marks.isMixed());
    marks.add(Cell("3.25").textView());
    EXPECT_TRUE(marks.isMixed());
    EXPECT_EQ(marks.result(), Mark::Unknown) << "a sheet of both is read as the locale reads it";
}

// A catalogue exported under German and imported under English: its price points "2,675" and
// quantities "1.000" are read as the sheet's list prices "12,50" show it writes numbers, not as
// 2,675 and 1, and the preview says so.
TEST(DecimalMarkTest, AGermanSheetIsReadAsGermanUnderEnglish)
{
    const QByteArray sheet("Part Number\tProduct Name\tPrice\tPoint\tPrice 1\r\n"
                           "A-1\tAnchor\t12\t1.000\t2,675\r\n"
                           "B-2\tBolt\t\t\t\r\n"
                           "C-3\tClamp\t7,50\t10\t1,5\r\n");
    for (const ImportAction action : { ImportAction::AddNew, ImportAction::UpdateExisting }) {
        const ImportPlan plan = planned(sheet, EnUs, action);
        ASSERT_EQ(plan.addedCount(), 3);
        expectFirstProduct(plan, Cell(12.0f), Cell("1000"), Cell("2.675"));
        EXPECT_EQ(plan.addedProduct(2)[P::Price - 1], Cell(7.5f));
        EXPECT_EQ(plan.addedProduct(2)[P::Price1 - 1], Cell("1.5"));
        EXPECT_EQ(plan.readWithSheetMark, 2);
        EXPECT_EQ(ImportReport::countLines(plan).last(),
            QStringLiteral("Numbers read with a decimal comma, as the sheet's other numbers are "
                           "written: 2 (row 2: \"1.000\" is 1000)"));
    }
}

TEST(DecimalMarkTest, AnEnglishSheetIsReadAsEnglishUnderGerman)
{
    const ImportPlan plan = planned("Part Number\tProduct Name\tPrice\tPoint\tPrice 1\r\n"
                                    "A-1\tAnchor\t12.50\t1,000\t2.675\r\n",
        DeDe);
    expectFirstProduct(plan, Cell(12.5f), Cell("1000"), Cell("2,675"));
    EXPECT_EQ(plan.sheetMark, Mark::Point);
}

// Where the user's decimal mark is the sheet's but the user groups thousands with a blank
// (French, Polish), a sheet's "1.000" beside its "12,50" is a thousand as well.
TEST(DecimalMarkTest, AGroupOfThousandsIsReadWhereTheUserGroupsWithABlank)
{
    const QByteArray sheet("Part Number\tProduct Name\tPrice\tPoint\tPrice 1\r\n"
                           "A-1\tAnchor\t12,50\t1.000\t7,125\r\n");
    for (const QLocale &locale :
        { QLocale(QLocale::French, QLocale::France), QLocale(QLocale::Polish, QLocale::Poland) }) {
        SCOPED_TRACE(locale.name().toStdString());
        const ImportPlan plan = planned(sheet, locale, ImportAction::UpdateExisting);
        expectFirstProduct(plan, Cell(12.5f), Cell("1000"), Cell("7,125"));
        EXPECT_EQ(plan.readWithSheetMark, 1);
    }
    // German groups with the point: its own reading is the sheet's, and nothing is said.
    const ImportPlan german = planned(sheet, DeDe, ImportAction::UpdateExisting);
    expectFirstProduct(german, Cell(12.5f), Cell("1.000"), Cell("7,125"));
    EXPECT_EQ(german.readWithSheetMark, 0);
}

TEST(DecimalMarkTest, WithoutAgreementTheLocaleReadsTheSheet)
{
    // Nothing else in the sheet says: English groups thousands with the comma.
    const ImportPlan alone = planned("Part Number\tProduct Name\tPrice\tPoint\tPrice 1\r\n"
                                     "A-1\tAnchor\t1,250\t10\t2,675\r\n",
        EnUs);
    expectFirstProduct(alone, Cell(1250.0f), Cell("10"), Cell("2,675"));
    EXPECT_EQ(alone.readWithSheetMark, 0);
    EXPECT_EQ(ImportReport::countLines(alone).size(), 4);
    // Both marks as decimals: the sheet says nothing either.
    const ImportPlan mixed = planned("Part Number\tProduct Name\tPrice\tPoint\tPrice 1\r\n"
                                     "A-1\tAnchor\t12,50\t10\t2,675\r\n"
                                     "B-2\tBolt\t3.25\t\t\r\n",
        EnUs);
    ASSERT_EQ(mixed.addedCount(), 2);
    EXPECT_EQ(mixed.addedProduct(0)[P::Price1 - 1], Cell("2,675"));
    EXPECT_EQ(mixed.readWithSheetMark, 0);
    // Texts in other columns (a name, a part number) say nothing of the prices.
    const ImportPlan named = planned("Part Number\tProduct Name\tPrice\tPoint\tPrice 1\r\n"
                                     "A-1,50\tSize 12,50\t1,250\t\t\r\n",
        EnUs);
    ASSERT_EQ(named.addedCount(), 1);
    EXPECT_EQ(named.addedProduct(0)[P::Price - 1], Cell(1250.0f));
}

// The program's own export writes list prices with their currency as the user's locale shows
// them: one written under German comes back under English, and the other way round.
TEST(DecimalMarkTest, AnExportsListPricesComeBackUnderTheOtherLocale)
{
    const ImportPlan english =
        planned(QStringLiteral("Part Number\tProduct Name\tPrice\tPoint\tPrice 1\r\n"
                               "A-1\tAnchor\t12,50\u00a0\u20ac\t1\t12,5\r\n"
                               "B-2\tBolt\t99.999,99\u00a0\u20ac\t1.000\t7,125\r\n"
                               "C-3\tClamp\t1.234\u00a0\u20ac\t\t\r\n")
                    .toUtf8(),
            EnUs, ImportAction::UpdateExisting);
    EXPECT_TRUE(english.skipped.empty());
    ASSERT_EQ(english.addedCount(), 3);
    expectFirstProduct(english, Cell(12.5f), Cell("1"), Cell("12.5"));
    EXPECT_EQ(english.addedProduct(1)[P::Price - 1], Cell(99999.99f));
    EXPECT_EQ(english.addedProduct(1)[P::Price1 - 1], Cell("7.125"));
    EXPECT_EQ(english.addedProduct(2)[P::Price - 1], Cell(1234.0f))
        << "a thousand and more, as the sheet writes decimals with a comma";

    const ImportPlan german = planned("Part Number\tProduct Name\tPrice\tPoint\tPrice 1\r\n"
                                      "A-1\tAnchor\t$12.50\t1\t12.5\r\n"
                                      "B-2\tBolt\t$99,999.99\t1,000\t7.125\r\n"
                                      "C-3\tClamp\t(1,234.50)\t\t\r\n",
        DeDe, ImportAction::UpdateExisting);
    ASSERT_EQ(german.addedCount(), 2);
    expectFirstProduct(german, Cell(12.5f), Cell("1"), Cell("12,5"));
    EXPECT_EQ(german.addedProduct(1)[P::Price - 1], Cell(99999.99f));
    EXPECT_EQ(german.addedProduct(1)[P::PricePoint1 - 1], Cell("1000"));
    ASSERT_EQ(german.skipped.size(), 1U);
    EXPECT_EQ(german.skipped[0].reason, SkipReason::PriceBelowZero) << "read, and below zero";

    // A text that is no number so written stays no number.
    for (const char *text : { "12,50 EUR", "1.2,3", "12-50", "$", "12.50\u00a0\u20ac" }) {
        SCOPED_TRACE(text);
        EXPECT_FALSE(valueOf(QString::fromUtf8(text), Mark::Comma));
    }
    EXPECT_EQ(valueOf(QStringLiteral("12.50-"), Mark::Point), -12.5);
    EXPECT_EQ(valueOf(QStringLiteral("1 234"), Mark::Unknown), std::nullopt)
        << "digits on both sides of a blank are two numbers";
}

// A workbook's number cells are in the stored form, which says nothing of how its text cells
// are written: the text "1,250" beside the number 2.675 is read as the user's locale reads it.
TEST(DecimalMarkTest, AWorkbooksNumberCellsSayNothing)
{
    const Table catalogue { 1, P::FieldCount };
    const auto plan = [&](const NumberCellsSheet &sheet, const QLocale &locale) {
        ImportPlanner planner(
            sheet, catalogue, test::supplierSheetLetters(), true, ImportAction::AddNew, locale);
        planner.runAll();
        return planner.takePlan();
    };
    const ImportPlan grouped = plan(NumberCellsSheet(QStringLiteral("1,250")), EnUs);
    ASSERT_EQ(grouped.addedCount(), 2);
    EXPECT_EQ(grouped.addedProduct(0)[P::Price - 1], Cell(2.675f));
    EXPECT_EQ(grouped.addedProduct(1)[P::Price - 1], Cell(1250.0f));
    EXPECT_EQ(grouped.readWithSheetMark, 0);
    // Nor does a number cell follow the comma its texts are written with.
    for (const QLocale &locale : { EnUs, DeDe }) {
        SCOPED_TRACE(locale.name().toStdString());
        const ImportPlan comma = plan(NumberCellsSheet(QStringLiteral("12,50")), locale);
        ASSERT_EQ(comma.addedCount(), 2);
        EXPECT_EQ(comma.addedProduct(0)[P::Price - 1], Cell(2.675f));
        EXPECT_EQ(comma.addedProduct(1)[P::Price - 1], Cell(12.5f));
        EXPECT_EQ(comma.readWithSheetMark, 0);
    }
}

// A minus sign as some locales write it (Swedish U+2212) is a minus: a credit stays a credit.
TEST(DecimalMarkTest, EveryMinusSignIsAMinus)
{
    EXPECT_EQ(valueOf(QStringLiteral("\u221212,50\u00a0\u20ac"), Mark::Comma), -12.5);
    EXPECT_EQ(valueOf(QStringLiteral("\uff0d$1,234.56"), Mark::Point), -1234.56);
    EXPECT_FALSE(valueOf(QStringLiteral("12,50 \u00f1"), Mark::Comma)) << "a letter is no currency";
    const ImportPlan credit = planned(QStringLiteral("Part Number\tProduct Name\tPrice\r\n"
                                                     "A-1\tAnchor\t\u221212,50\u00a0\u20ac\r\n")
                                          .toUtf8(),
        EnUs, ImportAction::UpdateExisting);
    ASSERT_EQ(credit.skipped.size(), 1U);
    EXPECT_EQ(credit.skipped[0].reason, SkipReason::PriceBelowZero);
}
