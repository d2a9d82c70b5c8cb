// The catalogue file built straight into bytes is the same file, byte for byte, as the text of
// the file encoded as a whole, whatever the table holds and wherever its cells come from.
#include "cataloguefixture.h"

#include "catalogue/cataloguetext.h"
#include "catalogue/cataloguewriter.h"
#include "catalogue/productrecord.h"
#include "core/vberror.h"
#include "support/testlocale.h"

namespace tarnwick::test {
namespace {

using Status = CatalogueReadResult::Status;

/// Records the pieces of a streamed file, and how often the file started again.
class RecordingSink : public CatalogueByteSink
{
public:
    bool write(const QByteArray &piece) override
    {
        pieces.append(piece);
        return refuseAfter < 0 || pieces.size() <= refuseAfter;
    }
    bool restart() override
    {
        pieces.clear();
        ++restarts;
        return true;
    }
    QByteArray joined() const { return pieces.join(); }

    QByteArrayList pieces;
    int restarts = 0;
    qsizetype refuseAfter = -1;
};

void expectSameFile(const Table &table, const QLocale &locale)
{
    const CatalogueFileText text = catalogueFileText(table, locale, 7);
    const CatalogueFileBytes bytes = catalogueFileBytes(table, locale, 7);
    EXPECT_EQ(bytes.bytes, encodeCatalogueText(text.text));
    EXPECT_EQ(bytes.count, text.count);
    EXPECT_EQ(bytes.rowsWritten, text.rowsWritten);
    // In pieces of a line each, the same bytes arrive, every piece ending with a line.
    RecordingSink sink;
    const CatalogueStreamResult streamed = streamCatalogueFile(table, locale, 7, sink, 1);
    EXPECT_TRUE(streamed.ok);
    EXPECT_EQ(sink.joined(), bytes.bytes);
    EXPECT_EQ(streamed.count, text.count);
    EXPECT_EQ(streamed.rowsWritten, text.rowsWritten);
    for (const QByteArray &piece : sink.pieces)
        EXPECT_TRUE(piece.endsWith("\r\n")) << piece.toStdString();
}

/// A table of typed cells: texts, numbers, null, rows without a part number.
Table typedTable(const QString &name)
{
    Table table(4, 15);
    table.put(1, 1, QStringLiteral("A-1"));
    table.put(1, 2, name);
    table.put(1, 3, Cell(12.5f));
    table.put(1, 4, QStringLiteral("first\r\nsecond"));
    table.put(1, 5, Cell::null());
    table.put(1, 6, QStringLiteral("10"));
    table.put(1, 7, QStringLiteral("1.000"));
    table.put(1, 8, Cell(2.25));
    table.put(1, 9, QStringLiteral("$12.50"));
    table.put(1, 10, QStringLiteral("n/a"));
    table.put(3, 1, Cell(qint32(42)));
    table.put(3, 3, QStringLiteral("12.50"));
    table.put(4, 1, QString());
    return table;
}

TEST(CatalogueBytesTest, TypedCellsGiveTheSameFileInEveryEncoding)
{
    const QString names[] = {
        QStringLiteral("Plain"), // ASCII
        QStringLiteral("Caf\u00e9 \u20ac"), // Windows-1252
        QStringLiteral("\u87ba\u4e1d"), // no Windows-1252 byte: UTF-8
        QStringLiteral("\u00c3\u00a9"), // its Windows-1252 bytes would read as UTF-8
        QStringLiteral("\U0001F642"),
    };
    for (const QString &name : names) {
        for (const QLocale &locale : { EnUs, DeDe }) {
            SCOPED_TRACE(name.toStdString());
            expectSameFile(typedTable(name), locale);
        }
    }
}

TEST(CatalogueBytesTest, AFileInPiecesStartsAgainInUtf8WhenALaterCharacterNeedsIt)
{
    Table table(40, 15);
    for (int row = 1; row <= 40; ++row)
        table.put(row, 1, QStringLiteral("P%1").arg(row, 3, 10, QLatin1Char('0')));
    table.put(2, 2, QStringLiteral("Caf\u00e9")); // Windows-1252 would do
    table.put(39, 2, QStringLiteral("\u87ba\u4e1d")); // but not here
    RecordingSink sink;
    const CatalogueStreamResult streamed = streamCatalogueFile(table, EnUs, 0, sink, 64);
    EXPECT_TRUE(streamed.ok);
    EXPECT_EQ(sink.restarts, 1);
    EXPECT_GT(sink.pieces.size(), 3);
    EXPECT_EQ(sink.joined(), catalogueFileBytes(table, EnUs, 0).bytes);
    EXPECT_TRUE(sink.joined().contains("Caf\xc3\xa9"));
    EXPECT_EQ(streamed.rowsWritten, 40);
}

TEST(CatalogueBytesTest, ASinkThatRefusesAPieceStopsTheWriting)
{
    Table table(40, 15);
    for (int row = 1; row <= 40; ++row)
        table.put(row, 1, QStringLiteral("P%1").arg(row));
    RecordingSink sink;
    sink.refuseAfter = 2;
    const CatalogueStreamResult streamed = streamCatalogueFile(table, EnUs, 0, sink, 64);
    EXPECT_FALSE(streamed.ok);
    EXPECT_EQ(sink.pieces.size(), 3);
}

TEST(CatalogueBytesTest, AByteOrderMarkAtTheStartIsKept)
{
    Table table(1, 15);
    table.put(1, 1, QStringLiteral("\uFEFF\u87ba"));
    expectSameFile(table, EnUs);
    table.put(1, 1, QStringLiteral("\uFEFFA"));
    expectSameFile(table, EnUs);
}

TEST(CatalogueBytesTest, ATableOfFewerThanFifteenFieldsRaisesAsBefore)
{
    Table table(2, 3);
    table.put(1, 1, QStringLiteral("A-1"));
    EXPECT_THROW(catalogueFileText(table, EnUs, 0), VbError);
    EXPECT_THROW(catalogueFileBytes(table, EnUs, 0), VbError);
}

class CatalogueRoundTripTest : public CatalogueFixture
{
protected:
    /// Reads bytes as the catalogue file, writes it back and returns what was written.
    QByteArray roundTrip(const QByteArray &bytes)
    {
        writeDataFile(bytes);
        EXPECT_EQ(products.ReadProds(dataFile()).status, Status::Ok);
        catalogue.redimPreserve(products.Count(), 15);
        expectSameFile(catalogue, locale);
        EXPECT_TRUE(products.WriteProds(dataFile()).ok);
        return dataFileBytes();
    }
};

TEST_F(CatalogueRoundTripTest, AWindows1252FileIsWrittenBackAsItWas)
{
    const QByteArray bytes =
        productLine({ "A-1", "Caf\xe9 \x80", "12.5", "line\r\nnext", "x", "10", "9.5" })
        + productLine({ "B-2", "Bolt", "", "", "", "25", "1.25" });
    EXPECT_EQ(roundTrip(bytes), bytes);
}

TEST_F(CatalogueRoundTripTest, AUtf8FileIsWrittenBackAsItWas)
{
    const QByteArray bytes =
        productLine({ "A-1", "\xe8\x9e\xba\xe4\xb8\x9d", "12.5", "caf\xc3\xa9" })
        + productLine({ "B-2", "Bolt" });
    EXPECT_EQ(roundTrip(bytes), bytes);
}

TEST_F(CatalogueRoundTripTest, AUtf8FileWhoseCharactersFitWindows1252IsWrittenInWindows1252)
{
    // The file's own rule: Windows-1252 whenever every character has a byte there.
    const QByteArray bytes = productLine({ "A-1", "caf\xc3\xa9" });
    EXPECT_EQ(roundTrip(bytes), productLine({ "A-1", "caf\xe9" }));
}

TEST_F(CatalogueRoundTripTest, EditedCellsJoinTheFileInItsEncoding)
{
    writeDataFile(productLine({ "A-1", "Caf\xe9" }) + productLine({ "B-2", "Bolt" }));
    ASSERT_EQ(products.ReadProds(dataFile()).status, Status::Ok);
    catalogue.redimPreserve(products.Count(), 15);
    catalogue.put(2, 2, QStringLiteral("\u87ba"));
    expectSameFile(catalogue, locale);
    ASSERT_TRUE(products.WriteProds(dataFile()).ok);
    EXPECT_EQ(dataFileBytes(),
        productLine({ "A-1", "Caf\xc3\xa9" }) + productLine({ "B-2", "\xe8\x9e\xba" }));
}

TEST_F(CatalogueRoundTripTest, TheBackupIsTheWholePreviousFileAndNoHelperNameStays)
{
    const QByteArray first = productLine({ "A-1", "First" });
    writeDataFile(first);
    ASSERT_EQ(products.ReadProds(dataFile()).status, Status::Ok);
    catalogue.redimPreserve(products.Count(), 15);
    catalogue.put(1, 2, QStringLiteral("Second"));
    ASSERT_TRUE(products.WriteProds(dataFile()).ok);
    EXPECT_EQ(folder.readFile(QStringLiteral("twdata.bak")), first);
    catalogue.put(1, 2, QStringLiteral("Third"));
    ASSERT_TRUE(products.WriteProds(dataFile()).ok);
    EXPECT_EQ(folder.readFile(QStringLiteral("twdata.bak")), productLine({ "A-1", "Second" }));
    EXPECT_EQ(dataFileBytes(), productLine({ "A-1", "Third" }));
    EXPECT_EQ(folder.fileNames(),
        (QStringList { QStringLiteral("twdata.bak"), QStringLiteral("twdata.dat") }));
}

TEST_F(CatalogueRoundTripTest, AByteOrderMarkIsReadAsAMarkAndWrittenBackOnce)
{
    // A mark before a file that must stay UTF-8: the mark is no part of the first product.
    const QByteArray lines =
        productLine({ "A-1", "\xe8\x9e\xba" }) + productLine({ "B-2", "Bolt" });
    EXPECT_EQ(roundTrip("\xef\xbb\xbf" + lines), lines);
    EXPECT_EQ(catalogue.get(1, 1).asText(), QStringLiteral("A-1"));
    // A part number that itself starts with the mark's character keeps it: the file is read
    // with one mark dropped, and written back with one mark before that character.
    const QByteArray marked = "\xef\xbb\xbf\xef\xbb\xbf" + lines;
    EXPECT_EQ(roundTrip(marked), marked);
    EXPECT_EQ(catalogue.get(1, 1).asText(), QStringLiteral("\uFEFFA-1"));
    EXPECT_EQ(catalogue.get(1, 1).textView().size, 6) << "one mark character, then A-1";
}

TEST(CatalogueBytesTest, InPiecesOnlyTheFirstPieceGetsTheMark)
{
    // Every product's part number starts with the mark's character; pieces of a line each.
    Table table(3, 15);
    for (int row = 1; row <= 3; ++row)
        table.put(row, 1, QStringLiteral("\uFEFFP%1").arg(row));
    RecordingSink sink;
    ASSERT_TRUE(streamCatalogueFile(table, EnUs, 0, sink, 1).ok);
    ASSERT_EQ(sink.pieces.size(), 3);
    EXPECT_TRUE(sink.pieces[0].startsWith("\xef\xbb\xbf\xef\xbb\xbfP1"));
    EXPECT_TRUE(sink.pieces[1].startsWith("\xef\xbb\xbfP2"));
    EXPECT_TRUE(sink.pieces[2].startsWith("\xef\xbb\xbfP3"));
    EXPECT_EQ(sink.joined(), catalogueFileBytes(table, EnUs, 0).bytes);
}

TEST(CatalogueBytesTest, EveryPieceIsCheckedForReadingBackAsUtf8)
{
    // The first pieces hold only "Ã©" (C3 A9 in Windows-1252, which reads as UTF-8 "é"), a
    // later one a lone "°" (B0), which is no UTF-8: so the whole file cannot be mistaken for
    // UTF-8 and stays in Windows-1252, in one piece or in many.
    Table table(40, 15);
    for (int row = 1; row <= 40; ++row) {
        table.put(row, 1, QStringLiteral("P%1").arg(row, 3, 10, QLatin1Char('0')));
        table.put(row, 2, QStringLiteral("Caf\u00c3\u00a9"));
    }
    table.put(38, 4, QStringLiteral("-20 \u00b0C"));
    const QByteArray whole = catalogueFileBytes(table, EnUs, 0).bytes;
    EXPECT_TRUE(whole.contains("Caf\xc3\xa9" FE)) << "Windows-1252 bytes";
    EXPECT_TRUE(whole.contains("-20 \xb0"
                               "C" FE));
    RecordingSink sink;
    const CatalogueStreamResult streamed = streamCatalogueFile(table, EnUs, 0, sink, 64);
    EXPECT_TRUE(streamed.ok);
    EXPECT_GT(sink.pieces.size(), 5);
    EXPECT_EQ(sink.restarts, 0) << "nothing asked for UTF-8";
    EXPECT_EQ(sink.joined(), whole);
    // And it reads back as the same texts.
    EXPECT_EQ(decodeCatalogueBytes(whole), catalogueFileText(table, EnUs, 0).text);
}

} // namespace
} // namespace tarnwick::test
