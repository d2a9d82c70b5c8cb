// What the preview and the result messages say about an import, and the preview's lists.
#include "catalogue/productrecord.h"
#include "catalogue/table.h"
#include "exchange/columnmapping.h"
#include "exchange/importplan.h"
#include "exchange/importplanmodels.h"
#include "exchange/importreport.h"
#include "exchange/textworkbook.h"
#include "support/testlocale.h"

#include <QAbstractItemModelTester>

#include <gtest/gtest.h>

using namespace tarnwick;
namespace P = ProductRecord;
namespace CM = ColumnMapping;

namespace {

using tarnwick::test::EnUs;

ImportPlan planOf(const Table &catalogue, const QByteArray &rows, ImportAction action)
{
    std::array<int, CM::ListCount> positions;
    positions.fill(0);
    positions[0] = 0; // A: part number
    positions[1] = 1; // B: name
    positions[3] = 3; // C: list price
    positions[2] = 4; // D: price point 1
    positions[4] = 5; // E: price 1
    const TextWorkbook sheet(rows);
    ImportPlanner planner(sheet, catalogue, CM::columnLetters(positions), true, action, EnUs);
    planner.runAll();
    return planner.takePlan();
}

Table sampleCatalogue()
{
    Table catalogue(2, P::FieldCount);
    catalogue.put(1, P::PartNumber, "H-1");
    catalogue.put(1, P::ProductName, "Hammer");
    catalogue.put(1, P::Price, 19.5f);
    catalogue.put(1, P::PricePoint1, "10");
    catalogue.put(1, P::Price1, "18");
    catalogue.put(2, P::PartNumber, "S-2");
    catalogue.put(2, P::ProductName, "Saw");
    catalogue.put(2, P::Price, 1234.5f);
    return catalogue;
}

const QByteArray Rows = "Part Number\tProduct Name\tPrice\tPrice Point 1\tPrice 1\r\n"
                        "N-3\tNails\t4.5\t100\t4\r\n"
                        "H-1\tClaw hammer\t21\t12\t18\r\n"
                        "\tNo part\t1\t\t\r\n"
                        "S-2\tSaw\tn/a\t\t\r\n"
                        "N-3\tNails again\t5\t\t\r\n"
                        "\tNo part either\t1\t\t\r\n";

QStringList rowOf(const QAbstractItemModel &model, int row)
{
    QStringList cells;
    for (int column = 0; column < model.columnCount(); ++column)
        cells << model.index(row, column).data().toString();
    return cells;
}

} // namespace

TEST(ImportReport, TheCountLinesNameEveryCountAndEachReason)
{
    const ImportPlan plan = planOf(sampleCatalogue(), Rows, ImportAction::UpdateExisting);
    EXPECT_EQ(ImportReport::countLines(plan),
        (QStringList { "Products added: 1", "Products changed: 1", "Products unchanged: 0",
            "Rows skipped: 4 (empty part number: 2; part number twice in the sheet: 1; list "
            "price that is no number: 1)" }));
    EXPECT_EQ(ImportReport::resultMessage(plan),
        "Products added: 1\nProducts changed: 1\nProducts unchanged: 0\nRows skipped: 4 (empty "
        "part number: 2; part number twice in the sheet: 1; list price that is no number: 1)");
}

TEST(ImportReport, CellsThatCouldNotBeReadAreCounted)
{
    ImportPlan plan;
    EXPECT_EQ(ImportReport::countLines(plan).size(), 4) << "no line while every cell was read";
    plan.unreadCells = 3;
    EXPECT_EQ(ImportReport::countLines(plan).last(),
        "Cells that could not be read (an error value, or a formula whose result the file does "
        "not hold), their fields left as they were: 3");
    EXPECT_STREQ(ImportReport::namedCountLines(plan).last().name, "LblUnreadCells");
}

TEST(ImportReport, APriceTooLargeForTheCatalogueIsNamedAsTheReason)
{
    const ImportPlan plan = planOf(sampleCatalogue(),
        "Part Number\tProduct Name\tPrice\r\nH-1\tHammer\t1E+39\r\n", ImportAction::UpdateExisting);
    EXPECT_EQ(ImportReport::countLines(plan).last(), "Rows skipped: 1 (list price too large: 1)");
}

// No price list means a price below zero: an accounting sheet's "12.50-" or "(43.00)" is
// skipped in an update, with its reason, rather than written into the catalogue.
TEST(ImportReport, AListPriceBelowZeroIsSkippedWithItsReason)
{
    const ImportPlan plan = planOf(sampleCatalogue(),
        "Part Number\tProduct Name\tPrice\r\nH-1\tHammer\t12.50-\r\nS-2\tSaw\t(43.00)\r\n"
        "N-3\tNail\t0\r\n",
        ImportAction::UpdateExisting);
    EXPECT_EQ(
        ImportReport::countLines(plan).value(3), "Rows skipped: 2 (list price below zero: 2)");
    ASSERT_EQ(plan.addedCount(), 1) << "a price of 0 is a price";
    EXPECT_EQ(plan.addedProduct(0)[ProductRecord::PartNumber - 1], Cell("N-3"));
}

// A supplier's "ten" or "POA" for a break, or a break price below zero, would have quotes
// charge nothing or a credit at that break: an update skips the row with its reason. A break
// written with a sign after it ("25+") is read as its number, as a list price is.
TEST(ImportReport, APricePointOrPriceThatIsNoNumberOrBelowZeroIsSkippedWithItsReason)
{
    const QByteArray rows = "Part Number\tProduct Name\tPrice\tPrice Point 1\tPrice 1\r\n"
                            "H-1\tHammer\t19.5\tten\t18\r\n"
                            "K-5\tKnife\t5\t10\tPOA\r\n"
                            "N-3\tNail\t1\t10\t-1\r\n"
                            "P-6\tPliers\t7\t25+\t6\r\n"
                            "R-7\tRasp\t7\t5\t12.10+\r\n"
                            "W-4\tWasher\t1\t10\t0.90\r\n";
    const ImportPlan update = planOf(sampleCatalogue(), rows, ImportAction::UpdateExisting);
    EXPECT_EQ(ImportReport::countLines(update).value(3),
        "Rows skipped: 3 (price point or price that is no number: 2; price point or price below "
        "zero: 1)");
    EXPECT_TRUE(update.changed.empty()) << "Hammer's break stays as it was";
    ASSERT_EQ(update.addedCount(), 3);
    EXPECT_EQ(update.addedProduct(2)[ProductRecord::PartNumber - 1], Cell("W-4"));
    // "25+" and "12.10+" read as numbers, kept as the catalogue reads them back, as a list price
    // "40+" is kept as 40.
    EXPECT_EQ(update.addedProduct(0)[ProductRecord::PricePoint1 - 1], Cell("25"));
    EXPECT_EQ(update.addedProduct(1)[ProductRecord::Price1 - 1], Cell("12.1"));
    // A break the catalogue holds already as it is (its own export writes "POA" back) changes
    // nothing, and the row's list price is taken.
    Table holding = sampleCatalogue();
    holding.put(1, ProductRecord::Price1, "POA");
    const ImportPlan roundTrip = planOf(holding,
        "Part Number\tProduct Name\tPrice\tPrice Point 1\tPrice 1\r\nH-1\tHammer\t21\t10\tPOA\r\n",
        ImportAction::UpdateExisting);
    EXPECT_EQ(roundTrip.skippedCount(), 0);
    ASSERT_EQ(roundTrip.changed.size(), 1U);
    ASSERT_EQ(roundTrip.changed[0].fields.size(), 1U);
    EXPECT_EQ(roundTrip.changed[0].fields[0].field, ProductRecord::Price);
    // Adding takes the cells as they are, as it always did.
    const ImportPlan add = planOf(sampleCatalogue(), rows, ImportAction::AddNew);
    EXPECT_EQ(add.addedCount(), 5);
    EXPECT_EQ(add.skippedCount(), 1) << "H-1 is there already";
}

// A supplier who writes "h-1" for the catalogue's H-1 most likely means that product: the
// update adds it as a new one, as part numbers are told apart by every letter, and says so.
TEST(ImportReport, ANewPartNumberThatDiffersOnlyInLetterCaseIsSaid)
{
    const ImportPlan plan = planOf(sampleCatalogue(),
        "Part Number\tProduct Name\r\nh-1\tHammer\r\nS-2\tSaw\r\ns-2 \tSaw\r\nX-9\tNew\r\n",
        ImportAction::UpdateExisting);
    EXPECT_EQ(plan.addedCount(), 3);
    EXPECT_EQ(ImportReport::namedCountLines(plan).last().text,
        "New part numbers that differ from one in the catalogue only in letter case, added as "
        "new products: 2 (\"h-1\" beside \"H-1\", \"s-2\" beside \"S-2\")");
    EXPECT_STREQ(ImportReport::namedCountLines(plan).last().name, "LblCaseTwins");
    const ImportPlan exact = planOf(sampleCatalogue(),
        "Part Number\tProduct Name\r\nH-1\tHammer\r\nX-9\tNew\r\n", ImportAction::UpdateExisting);
    EXPECT_EQ(exact.caseTwins, 0);
    EXPECT_EQ(ImportReport::countLines(exact).size(), 4);
}

TEST(ImportReport, NothingSkippedSaysSo)
{
    const ImportPlan plan = planOf(sampleCatalogue(),
        "Part Number\tProduct Name\r\nH-1\tHammer\r\nS-2\tSaw\r\n", ImportAction::UpdateExisting);
    EXPECT_EQ(ImportReport::countLines(plan),
        (QStringList { "Products added: 0", "Products changed: 0", "Products unchanged: 2",
            "Rows skipped: 0" }));
}

TEST(ImportReport, AddingSaysWhichNewProductsCameWithoutAPrice)
{
    const ImportPlan plan = planOf(sampleCatalogue(),
        "Part Number\tProduct Name\tPrice\r\nN-1\tNail\tabc\r\nN-2\tNut\t2,45,0\r\n"
        "N-3\tPin\t\r\nN-4\tPeg\t4\r\n",
        ImportAction::AddNew);
    EXPECT_EQ(plan.addedCount(), 4);
    EXPECT_EQ(plan.addedWithoutPrice, 2) << "an empty price is no price to miss";
    EXPECT_EQ(ImportReport::countLines(plan).value(4),
        "Products added without a list price, as their price is no number: 2");
}

TEST(ImportReport, AddingCountsTheKnownPartNumbers)
{
    const ImportPlan plan = planOf(sampleCatalogue(), Rows, ImportAction::AddNew);
    EXPECT_EQ(
        ImportReport::countLines(plan).value(3), "Rows skipped: 1 (part number already exists: 1)");
    EXPECT_EQ(ImportReport::countLines(plan).value(4),
        "Rows not read: row 4 and every row below it. Row 4 has no part number, which ends the "
        "import.");
}

TEST(ImportReport, TheAddMessageSaysHowManyRowsWereSkipped)
{
    EXPECT_FALSE(ImportReport::addResultMessage(0, 0).has_value());
    EXPECT_EQ(
        ImportReport::addResultMessage(3, 0), "3 changes have been made to the knowledge base.");
    EXPECT_EQ(ImportReport::addResultMessage(3, 2),
        "3 changes have been made to the knowledge base. 2 rows were skipped because their part "
        "number already exists.");
    EXPECT_EQ(ImportReport::addResultMessage(1, 1),
        "1 changes have been made to the knowledge base. 1 row was skipped because its part "
        "number already exists.");
    EXPECT_EQ(ImportReport::addResultMessage(0, 10),
        "No products were added: 10 rows were skipped because their part number already "
        "exists.");
    // An import that ended after 100 unreadable rows in a row says from which row on nothing
    // was read, also when it added nothing.
    EXPECT_EQ(ImportReport::addResultMessage(0, 0, 102),
        "No products were added. Rows not read: row 102 and every row below it. The 100 rows "
        "above it could not be read, which ends the import.");
    EXPECT_EQ(ImportReport::addResultMessage(2, 1, 152),
        "2 changes have been made to the knowledge base. 1 row was skipped because its part "
        "number already exists. Rows not read: row 152 and every row below it. The 100 rows "
        "above it could not be read, which ends the import.");
    EXPECT_EQ(ImportReport::addResultTitle(3), "Success!");
    EXPECT_EQ(ImportReport::addResultTitle(0), "Input Excel Data");
}

TEST(ImportReport, TheProgressCaptionAlternates)
{
    EXPECT_EQ(ImportReport::progressCaption("Update", 7), "Please wait");
    EXPECT_EQ(ImportReport::progressCaption("Please wait", 7), "7 products analyzed");
    EXPECT_EQ(ImportReport::progressCaption("7 products analyzed", 9), "Please wait");
}

TEST(ImportReport, PricesShowAsCurrencyQuantitiesAndTextsAsTheyAre)
{
    EXPECT_EQ(ImportReport::displayText(P::Price, Cell(1234.5f), EnUs), "$1,234.50");
    EXPECT_EQ(ImportReport::displayText(P::Price3, Cell("4"), EnUs), "$4.00");
    EXPECT_EQ(ImportReport::displayText(P::Price, Cell("n/a"), EnUs), "n/a");
    EXPECT_EQ(ImportReport::displayText(P::Price, Cell(), EnUs), "");
    EXPECT_EQ(ImportReport::displayText(P::PricePoint2, Cell("100"), EnUs), "100");
    EXPECT_EQ(ImportReport::displayText(P::Notes, Cell("Two\r\nlines"), EnUs), "Two\r\nlines");
    EXPECT_EQ(ImportReport::displayText(P::Price, Cell(float(1e38) * 10.0f), EnUs), QString())
        << "a number no form can show";
}

// A name that differs only by a blank at its end, or two blanks in a row, would read the
// same on both sides of the preview: quoted, the difference shows.
TEST(ImportReport, TextsThatDifferOnlyInTheirBlanksShowInQuotes)
{
    EXPECT_EQ(ImportReport::changeTexts(P::ProductName, Cell("Cutter"), Cell("Cutter "), EnUs),
        std::make_pair(
            QStringLiteral("\u201CCutter\u201D"), QStringLiteral("\u201CCutter \u201D")));
    EXPECT_EQ(ImportReport::changeTexts(P::Notes, Cell("a b"), Cell("a  b"), EnUs),
        std::make_pair(QStringLiteral("\u201Ca b\u201D"), QStringLiteral("\u201Ca  b\u201D")));
    EXPECT_EQ(ImportReport::changeTexts(P::ProductName, Cell("1/2\" bronze"),
                  Cell(QStringLiteral("1/2\"\u00A0bronze")), EnUs),
        std::make_pair(QStringLiteral("\u201C1/2\" bronze\u201D"),
            QStringLiteral("\u201C1/2\"\u27E8no-break space\u27E9bronze\u201D")))
        << "a blank that looks like the other is named";
    EXPECT_EQ(ImportReport::changeTexts(
                  P::ProductName, Cell("fullport"), Cell(QStringLiteral("full\u00ADport")), EnUs),
        std::make_pair(QStringLiteral("\u201Cfullport\u201D"),
            QStringLiteral("\u201Cfull\u27E8U+00AD\u27E9port\u201D")))
        << "an invisible character is named";
    EXPECT_EQ(
        ImportReport::changeTexts(P::Notes, Cell("a\tb"), Cell(QStringLiteral("a\u2003b")), EnUs),
        std::make_pair(QStringLiteral("\u201Ca\u27E8tab\u27E9b\u201D"),
            QStringLiteral("\u201Ca\u27E8U+2003\u27E9b\u201D")));
    EXPECT_EQ(ImportReport::changeTexts(P::ProductName, Cell("Cutter"), Cell("Cutters"), EnUs),
        std::make_pair(QStringLiteral("Cutter"), QStringLiteral("Cutters")))
        << "other changes show as they are";
}

TEST(ImportReport, PricesThatDifferBelowTheCentShowAllTheirDigits)
{
    EXPECT_EQ(ImportReport::changeTexts(P::Price, Cell(2.675f), Cell("$2.67"), EnUs),
        std::make_pair(QStringLiteral("2.675"), QStringLiteral("$2.67")));
    EXPECT_EQ(ImportReport::changeTexts(P::Price2, Cell("1.125"), Cell("1.12"), EnUs),
        std::make_pair(QStringLiteral("1.125"), QStringLiteral("1.12")));
    EXPECT_EQ(ImportReport::changeTexts(P::Price, Cell(2.5f), Cell("3"), EnUs),
        std::make_pair(QStringLiteral("$2.50"), QStringLiteral("$3.00")))
        << "prices a cent or more apart show as money";
    EXPECT_EQ(ImportReport::changeTexts(P::Notes, Cell("a"), Cell("b"), EnUs),
        std::make_pair(QStringLiteral("a"), QStringLiteral("b")));
}

TEST(ImportChangesModel, ListsEveryChangeProductByProductAndFieldByField)
{
    const ImportPlan plan = planOf(sampleCatalogue(), Rows, ImportAction::UpdateExisting);
    ImportChangesModel model(plan, EnUs);
    QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
    const QStringList headers { "Row", "Part Number", "Action", "Field", "Old", "New" };
    for (int column = 0; column < headers.size(); ++column)
        EXPECT_EQ(model.headerData(column, Qt::Horizontal).toString(), headers[column]);
    ASSERT_EQ(model.rowCount(), 8);
    EXPECT_EQ(rowOf(model, 0), (QStringList { "2", "N-3", "Add", "Part Number", "", "N-3" }));
    EXPECT_EQ(rowOf(model, 1), (QStringList { "2", "N-3", "Add", "Product Name", "", "Nails" }));
    EXPECT_EQ(rowOf(model, 2), (QStringList { "2", "N-3", "Add", "Price", "", "$4.50" }));
    EXPECT_EQ(rowOf(model, 3), (QStringList { "2", "N-3", "Add", "Price Point 1", "", "100" }));
    EXPECT_EQ(rowOf(model, 4), (QStringList { "2", "N-3", "Add", "Price 1", "", "$4.00" }));
    // The includes and notes are empty texts: nothing to list.
    EXPECT_EQ(rowOf(model, 5),
        (QStringList { "3", "H-1", "Change", "Product Name", "Hammer", "Claw hammer" }));
    EXPECT_EQ(rowOf(model, 6), (QStringList { "3", "H-1", "Change", "Price", "$19.50", "$21.00" }));
    EXPECT_EQ(rowOf(model, 7), (QStringList { "3", "H-1", "Change", "Price Point 1", "10", "12" }));
    EXPECT_EQ(rowOf(model, 8).at(0), "") << "past the end";
}

TEST(SkippedRowsModel, ListsEverySkippedRowWithItsReason)
{
    const ImportPlan plan = planOf(sampleCatalogue(), Rows, ImportAction::UpdateExisting);
    SkippedRowsModel model(plan);
    QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
    EXPECT_EQ(model.headerData(2, Qt::Horizontal).toString(), "Reason");
    ASSERT_EQ(model.rowCount(), 4);
    EXPECT_EQ(rowOf(model, 0), (QStringList { "4", "", "empty part number" }));
    EXPECT_EQ(rowOf(model, 1), (QStringList { "5", "S-2", "list price that is no number" }));
    EXPECT_EQ(rowOf(model, 2), (QStringList { "6", "N-3", "part number twice in the sheet" }));
    EXPECT_EQ(rowOf(model, 3), (QStringList { "7", "", "empty part number" }));
}
