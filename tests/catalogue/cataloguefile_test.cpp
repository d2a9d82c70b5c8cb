// The catalogue file "twdata.dat": what WriteProds writes, byte for byte, and what ReadProds
// makes of it.
#include "cataloguefixture.h"

#include "catalogue/cataloguefile.h"

#include <QDir>

namespace tarnwick::test {
namespace {

using Status = CatalogueReadResult::Status;

class CatalogueFileTest : public CatalogueFixture
{
};

TEST_F(CatalogueFileTest, FieldEndIsThreeDelCharacters)
{
    EXPECT_EQ(fieldEnd(), QStringLiteral("\x7f\x7f\x7f"));
}

TEST_F(CatalogueFileTest, WritesASmallCatalogueByteForByte)
{
    catalogue.redim(4, 15);
    catalogue.put(1, 1, Cell("A-100"));
    catalogue.put(1, 2, Cell("Widget"));
    catalogue.put(1, 3, Cell(12.5f));
    catalogue.put(1, 4, Cell("Blue"));
    // field 5 of row 1 stays Empty (never assigned)
    catalogue.put(1, 6, Cell("10"));
    catalogue.put(1, 7, Cell("11.5"));
    catalogue.put(2, 1, Cell("")); // no part number: left out of the file
    catalogue.put(2, 2, Cell("Orphan"));
    catalogue.put(3, 1, Cell("B-200"));
    catalogue.put(3, 2, Cell("Gadget"));
    catalogue.put(3, 3, Cell(""));
    catalogue.put(4, 2, Cell("Ghost")); // part number Empty: left out as well

    const CatalogueWriteResult result = products.WriteProds(dataFile());

    ASSERT_TRUE(result.ok) << result.detail.toStdString();
    EXPECT_EQ(result.rowsWritten, 2);
    const QByteArray expected =
        "A-100" FE "Widget" FE "12.5" FE "Blue" FE FE "10" FE "11.5" FE FE FE FE FE FE FE FE FE
        "\r\n"
        "B-200" FE "Gadget" FE FE FE FE FE FE FE FE FE FE FE FE FE FE "\r\n";
    EXPECT_EQ(dataFileBytes(), expected);
    EXPECT_EQ(dataFileBytes().count('\x7f'), 2 * 15 * 3);
    EXPECT_EQ(products.Count(), 3); // the last row was skipped: its index minus one
}

TEST_F(CatalogueFileTest, ACountedProductWithoutAPartNumberInTheLastRowStaysCounted)
{
    catalogue.redim(3, 15);
    catalogue.put(1, 1, Cell("A-100"));
    catalogue.put(2, 1, Cell("B-200"));
    catalogue.put(3, 1, Cell(""));
    catalogue.put(3, 2, Cell("Nameless")); // a product whose part number was cleared
    products.setCount(3);
    ASSERT_TRUE(products.WriteProds(dataFile()).ok);
    EXPECT_FALSE(dataFileBytes().contains("Nameless"));
    EXPECT_EQ(products.Count(), 3) << "kept for its part number to be typed again";

    // An empty last row is no product: the count ends before it.
    catalogue.put(3, 2, Cell(""));
    ASSERT_TRUE(products.WriteProds(dataFile()).ok);
    EXPECT_EQ(products.Count(), 2);
}

TEST_F(CatalogueFileTest, ReadsBackWhatWasWritten)
{
    writeDataFile("A-100" FE "Widget" FE "12.5" FE "Blue" FE FE "10" FE
                  "11.5" FE FE FE FE FE FE FE FE FE "\r\n"
                  "B-200" FE "Gadget" FE FE FE FE FE FE FE FE FE FE FE FE FE FE "\r\n");

    const CatalogueReadResult result = products.ReadProds(dataFile());

    EXPECT_EQ(result.status, Status::Ok);
    EXPECT_EQ(result.rowsRead, 2);
    EXPECT_EQ(products.Count(), 2);
    EXPECT_EQ(catalogue.get(1, 1), Cell("A-100"));
    EXPECT_EQ(catalogue.get(1, 2), Cell("Widget"));
    EXPECT_EQ(catalogue.get(1, 3), Cell(12.5f));
    EXPECT_EQ(catalogue.get(1, 4), Cell("Blue"));
    EXPECT_EQ(catalogue.get(1, 5), Cell("")); // every other field comes back as text
    EXPECT_EQ(catalogue.get(1, 6), Cell("10"));
    EXPECT_EQ(catalogue.get(1, 7), Cell("11.5"));
    EXPECT_EQ(catalogue.get(1, 15), Cell(""));
    EXPECT_EQ(catalogue.get(2, 1), Cell("B-200"));
    EXPECT_EQ(catalogue.get(2, 3), Cell("")); // an empty price is the empty text, not 0
    EXPECT_TRUE(catalogue.get(3, 1).isEmpty());
    EXPECT_EQ(catalogue.rowCount(), 1000);
}

TEST_F(CatalogueFileTest, WriteThenReadGivesTheSameProducts)
{
    catalogue.redim(2, 15);
    for (int field = 1; field <= 15; ++field) {
        catalogue.put(1, field, QStringLiteral("r1f%1").arg(field));
        catalogue.put(2, field, QStringLiteral("r2f%1").arg(field));
    }
    catalogue.put(1, 3, Cell(7.25f));
    catalogue.put(2, 3, Cell(""));
    ASSERT_TRUE(products.WriteProds(dataFile()).ok);

    Table back;
    ASSERT_EQ(readBack(back).status, Status::Ok);
    for (int row = 1; row <= 2; ++row) {
        for (int field = 1; field <= 15; ++field)
            EXPECT_EQ(back.get(row, field), catalogue.get(row, field)) << row << "," << field;
    }
    EXPECT_TRUE(back.get(3, 1).isEmpty());
}

TEST_F(CatalogueFileTest, EmptyFileGivesNoProducts)
{
    writeDataFile(QByteArray());
    products.setCount(5);
    const CatalogueReadResult result = products.ReadProds(dataFile());
    EXPECT_EQ(result.status, Status::Ok);
    EXPECT_EQ(result.rowsRead, 0);
    EXPECT_EQ(products.Count(), 0);
    EXPECT_TRUE(catalogue.get(1, 1).isEmpty());
    EXPECT_TRUE(prompts.shown().empty());
}

TEST_F(CatalogueFileTest, EmptyCatalogueWritesAnEmptyFile)
{
    writeDataFile("old" FE "\r\n");
    catalogue.redim(0, 15);
    products.setCount(4);
    ASSERT_TRUE(products.WriteProds(dataFile()).ok);
    EXPECT_EQ(dataFileBytes(), QByteArray());
    EXPECT_EQ(products.Count(), 4); // no rows: the count is not touched
}

TEST_F(CatalogueFileTest, NotesWithALineBreakAreTwoPhysicalLinesAndOneField)
{
    catalogue.redim(1, 15);
    catalogue.put(1, 1, Cell("N-1"));
    catalogue.put(1, 4, Cell("a\r\nb"));
    ASSERT_TRUE(products.WriteProds(dataFile()).ok);
    EXPECT_EQ(dataFileBytes(),
        QByteArray("N-1" FE FE FE "a\r\nb" FE FE FE FE FE FE FE FE FE FE FE FE "\r\n"));

    Table back;
    const CatalogueReadResult result = readBack(back);
    EXPECT_EQ(result.status, Status::Ok);
    EXPECT_EQ(result.rowsRead, 1);
    EXPECT_EQ(back.get(1, 4), Cell("a\r\nb"));
    EXPECT_EQ(back.get(1, 5), Cell(""));
    EXPECT_TRUE(back.get(2, 1).isEmpty());
}

TEST_F(CatalogueFileTest, LoneLineFeedAndCarriageReturnSurviveARoundTrip)
{
    catalogue.redim(2, 15);
    catalogue.put(1, 1, Cell("L-1"));
    catalogue.put(1, 4, Cell("x\ny"));
    catalogue.put(1, 5, Cell("u\rv\r"));
    catalogue.put(1, 15, Cell("\r"));
    catalogue.put(2, 1, Cell("L-2"));
    catalogue.put(2, 2, Cell("\n\r\n\r"));
    ASSERT_TRUE(products.WriteProds(dataFile()).ok);
    EXPECT_TRUE(dataFileBytes().startsWith("L-1" FE FE FE "x\ny" FE "u\rv\r" FE));

    Table back;
    ASSERT_EQ(readBack(back).rowsRead, 2);
    EXPECT_EQ(back.get(1, 4), Cell("x\ny"));
    EXPECT_EQ(back.get(1, 5), Cell("u\rv\r"));
    EXPECT_EQ(back.get(1, 15), Cell("\r"));
    EXPECT_EQ(back.get(2, 1), Cell("L-2"));
    EXPECT_EQ(back.get(2, 2), Cell("\n\r\n\r"));
}

TEST_F(CatalogueFileTest, LastLineWithoutLineEndIsReadLikeAnyOther)
{
    writeDataFile(productLine({ "A" }) + "B" FE "Second" FE FE FE FE FE FE FE FE FE FE FE FE FE FE);
    const CatalogueReadResult result = products.ReadProds(dataFile());
    EXPECT_EQ(result.status, Status::Ok);
    EXPECT_EQ(products.Count(), 2);
    EXPECT_EQ(catalogue.get(2, 1), Cell("B"));
    EXPECT_EQ(catalogue.get(2, 2), Cell("Second"));
    EXPECT_EQ(catalogue.get(2, 15), Cell(""));
}

TEST_F(CatalogueFileTest, PriceTextsBecomeSingleNumbers)
{
    writeDataFile(productLine({ "A", "a", "12.50" }) + productLine({ "B", "b", "" })
        + productLine({ "C", "c", "$1,234.50" }) + productLine({ "D", "d", "0.1" }));
    ASSERT_EQ(products.ReadProds(dataFile()).status, Status::Ok);
    EXPECT_EQ(catalogue.get(1, 3), Cell(12.5f));
    EXPECT_EQ(catalogue.get(1, 3).kind(), Cell::Kind::Single);
    EXPECT_EQ(catalogue.get(2, 3), Cell(""));
    EXPECT_TRUE(catalogue.get(2, 3).isText());
    EXPECT_EQ(catalogue.get(3, 3), Cell(1234.5f));
    EXPECT_EQ(catalogue.get(4, 3), Cell(0.1f));
}

TEST_F(CatalogueFileTest, PriceThatIsNoNumberKeepsItsTextAndIsReported)
{
    catalogue.put(2, 3, Cell("left over"));
    writeDataFile(productLine({ "A", "a", "call us", "notes", "incl", "5", "9.5" })
        + productLine({ "B", "b", "n/a", "more notes" }));
    const CatalogueReadResult result = products.ReadProds(dataFile());
    EXPECT_EQ(result.status, Status::Ok);
    EXPECT_EQ(products.Count(), 2);
    EXPECT_EQ(catalogue.get(1, 3), Cell("call us"));
    EXPECT_EQ(catalogue.get(1, 4), Cell("notes"));
    EXPECT_EQ(catalogue.get(1, 5), Cell("incl"));
    EXPECT_EQ(catalogue.get(1, 7), Cell("9.5"));
    EXPECT_EQ(catalogue.get(2, 3), Cell("n/a"));
    EXPECT_EQ(catalogue.get(2, 4), Cell("more notes"));
    ASSERT_EQ(result.unreadNumbers.size(), 2);
    EXPECT_EQ(result.unreadNumbers[0].partNumber, QStringLiteral("A"));
    EXPECT_EQ(result.unreadNumbers[0].field, 3);
    EXPECT_EQ(result.unreadNumbers[0].text, QStringLiteral("call us"));
    EXPECT_EQ(result.unreadNumbers[1].partNumber, QStringLiteral("B"));
}

TEST_F(CatalogueFileTest, LineWithFewerFieldEndsFillsLaterFieldsFromTheWrongPlace)
{
    // Only two fields: after the second field end no further one is found, the cell of the
    // price is left alone and the search starts over from the beginning of the line, so every
    // even field from 4 on gets the text between the first field end's second DEL and the
    // next field end.
    writeDataFile("A" FE "B" FE "\r\n");
    const CatalogueReadResult result = products.ReadProds(dataFile());
    EXPECT_EQ(result.status, Status::Ok);
    EXPECT_EQ(products.Count(), 1);
    EXPECT_EQ(catalogue.get(1, 1), Cell("A"));
    EXPECT_EQ(catalogue.get(1, 2), Cell("B"));
    for (int field = 3; field <= 15; field += 2)
        EXPECT_TRUE(catalogue.get(1, field).isEmpty()) << field;
    for (int field = 4; field <= 14; field += 2)
        EXPECT_EQ(catalogue.get(1, field),
            Cell("\x7f\x7f"
                 "B"))
            << field;
}

TEST_F(CatalogueFileTest, LineWithOnlyAPartNumberEndsTheReading)
{
    writeDataFile(productLine({ "OK" }) + "A" FE "\r\n" + productLine({ "never" }));
    products.setCount(9);
    const CatalogueReadResult result = products.ReadProds(dataFile());
    EXPECT_EQ(result.status, Status::Failed);
    EXPECT_EQ(result.errorNumber, 5);
    EXPECT_EQ(
        result.detail, QStringLiteral("line 2 does not hold a product: a field end is missing"));
    EXPECT_EQ(result.rowsRead, 1);
    EXPECT_EQ(products.Count(), 9);
    EXPECT_EQ(catalogue.get(1, 1), Cell("OK"));
    EXPECT_EQ(catalogue.get(2, 1), Cell("A")); // stored before the failure, and it stays
    EXPECT_TRUE(catalogue.get(3, 1).isEmpty());
}

TEST_F(CatalogueFileTest, CountIsTheLastRowWhenTheLastRowIsWritten)
{
    catalogue.redim(3, 15);
    catalogue.put(1, 1, Cell("A"));
    catalogue.put(3, 1, Cell("C"));
    const CatalogueWriteResult result = products.WriteProds(dataFile());
    ASSERT_TRUE(result.ok);
    EXPECT_EQ(result.rowsWritten, 2);
    EXPECT_EQ(products.Count(), 3);
    EXPECT_EQ(dataFileBytes(), productLine({ "A" }) + productLine({ "C" }));
}

TEST_F(CatalogueFileTest, CountIsOneLessThanTheLastRowWhenTheLastRowIsSkipped)
{
    catalogue.redim(5, 15);
    catalogue.put(1, 1, Cell("A"));
    catalogue.put(2, 1, Cell("B"));
    catalogue.put(5, 1, Cell(""));
    ASSERT_TRUE(products.WriteProds(dataFile()).ok);
    EXPECT_EQ(products.Count(), 4);
    EXPECT_EQ(dataFileBytes(), productLine({ "A" }) + productLine({ "B" }));
}

TEST_F(CatalogueFileTest, NullPartNumberIsSkippedAndNullFieldsAreWrittenEmpty)
{
    catalogue.redim(2, 15);
    catalogue.put(1, 1, Cell::null());
    catalogue.put(1, 2, Cell("skipped"));
    catalogue.put(2, 1, Cell(qint32(42)));
    catalogue.put(2, 2, Cell::null());
    catalogue.put(2, 3, Cell(1234567.0));
    ASSERT_TRUE(products.WriteProds(dataFile()).ok);
    EXPECT_EQ(dataFileBytes(), productLine({ "42", "", "1234567" }));
    EXPECT_EQ(products.Count(), 2);
}

TEST_F(CatalogueFileTest, MissingFileIsQuietAndChangesNothing)
{
    products.setCount(3);
    const CatalogueReadResult result = products.ReadProds(dataFile());
    EXPECT_EQ(result.status, Status::Missing);
    EXPECT_EQ(result.errorNumber, 53);
    EXPECT_EQ(products.Count(), 3);
    EXPECT_TRUE(prompts.shown().empty());
}

TEST_F(CatalogueFileTest, DataFileThatIsAFolderCannotBeRead)
{
    ASSERT_TRUE(QDir(folder.path()).mkdir(QStringLiteral("twdata.dat")));
    const CatalogueReadResult result = products.ReadProds(dataFile());
    EXPECT_EQ(result.status, Status::Failed);
    EXPECT_EQ(result.errorNumber, 57);
    EXPECT_EQ(result.detail, QStringLiteral("it is not a file but a folder, a pipe or a device"));
    EXPECT_EQ(products.Count(), 0);
}

} // namespace
} // namespace tarnwick::test
