// Loading whole catalogue files: large ones, broken ones, files of other programs and files in
// the characters of the earlier Windows program.
#include "cataloguefixture.h"

#include "catalogue/cataloguefile.h"
#include "catalogue/cataloguewriter.h"

#include <QDate>
#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

#include <random>

#if defined(Q_OS_UNIX)
#include <sys/stat.h>
#endif

namespace tarnwick::test {
namespace {

using Status = CatalogueReadResult::Status;

class CatalogueLoadTest : public CatalogueFixture
{
};

TEST_F(CatalogueLoadTest, ThousandAndOneProductsLoadCompletely)
{
    writeDataFile(generatedCatalogue(1001));
    const CatalogueReadResult result = products.ReadProds(dataFile());
    EXPECT_EQ(result.status, Status::Ok);
    EXPECT_EQ(result.rowsRead, 1001);
    EXPECT_EQ(products.Count(), 1001);
    ASSERT_GE(catalogue.rowCount(), 1001);
    EXPECT_EQ(catalogue.fieldCount(), 15);
    EXPECT_EQ(catalogue.get(1000, 1), Cell("P1000"));
    EXPECT_EQ(catalogue.get(1001, 1), Cell("P1001"));
    EXPECT_EQ(catalogue.get(1001, 3), Cell(1001.5f));
    EXPECT_EQ(catalogue.get(1001, 4), Cell("Notes of 1001"));
    if (catalogue.rowCount() > 1001) {
        EXPECT_TRUE(catalogue.get(1002, 1).isEmpty());
    }
}

TEST_F(CatalogueLoadTest, FiftyThousandProductsLoadCompletely)
{
    writeDataFile(generatedCatalogue(50000));
    const CatalogueReadResult result = products.ReadProds(dataFile());
    EXPECT_EQ(result.status, Status::Ok);
    EXPECT_EQ(products.Count(), 50000);
    EXPECT_EQ(catalogue.get(1, 1), Cell("P1"));
    EXPECT_EQ(catalogue.get(25000, 2), Cell("Product 25000"));
    EXPECT_EQ(catalogue.get(50000, 1), Cell("P50000"));
    EXPECT_EQ(catalogue.get(50000, 3), Cell(50000.5f));
}

TEST_F(CatalogueLoadTest, AFileOfSeveralMegabytesIsReadWholeAndWrittenBackAsItWas)
{
    // Large enough for the buffer that holds the file to be backed by large pages.
    QByteArray bytes;
    const QByteArray note = QByteArray(180, 'n') + "\r\n" + QByteArray(40, 'm');
    for (int i = 1; i <= 30000; ++i) {
        const QByteArray number = QByteArray::number(i);
        bytes += productLine({ "P" + number, "Product " + number, number + ".25", note, "includes",
            "1", number + ".25", "10", number });
    }
    ASSERT_GT(bytes.size(), 8 * 1024 * 1024);
    writeDataFile(bytes);
    const CatalogueReadResult result = products.ReadProds(dataFile());
    EXPECT_EQ(result.status, Status::Ok);
    EXPECT_EQ(products.Count(), 30000);
    EXPECT_EQ(catalogue.get(30000, 1), Cell("P30000"));
    EXPECT_EQ(catalogue.get(30000, 4).asText(), QString::fromLatin1(note));
    EXPECT_EQ(catalogue.get(30000, 9), Cell("30000"));
    ASSERT_TRUE(products.WriteProds(dataFile()).ok);
    EXPECT_EQ(dataFileBytes(), bytes);
    // A character without a Windows-1252 byte in the last product: the file, written in
    // pieces, starts again in UTF-8 and is the whole catalogue in UTF-8.
    catalogue.put(30000, 2, QStringLiteral("\u87ba\u4e1d"));
    ASSERT_TRUE(products.WriteProds(dataFile()).ok);
    const QByteArray utf8 = dataFileBytes();
    EXPECT_EQ(utf8, catalogueFileBytes(catalogue, QLocale(QLocale::English), 30000).bytes);
    const QByteArray fe("\x7f\x7f\x7f");
    const QByteArray lastLine = "P30000" + fe + "\xe8\x9e\xba\xe4\xb8\x9d" + fe + "30000.25" + fe
        + note + fe + "includes" + fe + "1" + fe + "30000.25" + fe + "10" + fe + "30000"
        + fe.repeated(7) + "\r\n";
    EXPECT_TRUE(utf8.endsWith(lastLine));
    EXPECT_TRUE(utf8.startsWith("P1\x7f\x7f\x7fProduct 1\x7f"));
}

TEST_F(CatalogueLoadTest, TableWithoutRowsOrFieldsGrowsToTakeTheProducts)
{
    catalogue.redim(0, 0);
    writeDataFile(generatedCatalogue(3));
    EXPECT_EQ(products.ReadProds(dataFile()).status, Status::Ok);
    EXPECT_EQ(products.Count(), 3);
    EXPECT_EQ(catalogue.fieldCount(), 15);
    EXPECT_EQ(catalogue.get(3, 1), Cell("P3"));
}

TEST_F(CatalogueLoadTest, LineOfAnyLengthIsRead)
{
    const QByteArray longNotes(40000, 'x');
    writeDataFile(productLine({ "A" }) + productLine({ "B" })
        + productLine({ "C", "c", "", longNotes }) + productLine({ "D" }));
    const CatalogueReadResult result = products.ReadProds(dataFile());
    EXPECT_EQ(result.status, Status::Ok);
    EXPECT_EQ(result.rowsRead, 4);
    EXPECT_EQ(products.Count(), 4);
    EXPECT_EQ(catalogue.get(3, 4).asText().size(), longNotes.size());
    EXPECT_EQ(catalogue.get(4, 1), Cell("D"));
}

TEST_F(CatalogueLoadTest, NoteOf40000CharactersRoundTrips)
{
    const QString note = QString(20000, QLatin1Char('n')) + QStringLiteral("\r\n")
        + QString(19998, QLatin1Char('m'));
    catalogue.redim(1, 15);
    catalogue.put(1, 1, Cell("LONG-1"));
    catalogue.put(1, 4, Cell(note));
    ASSERT_TRUE(products.WriteProds(dataFile()).ok);
    const QByteArray written = dataFileBytes();

    catalogue.redim(1000, 15);
    ASSERT_EQ(products.ReadProds(dataFile()).status, Status::Ok);
    EXPECT_EQ(products.Count(), 1);
    EXPECT_EQ(catalogue.get(1, 4), Cell(note));
    ASSERT_TRUE(products.WriteProds(dataFile()).ok);
    EXPECT_EQ(dataFileBytes(), written);
}

TEST_F(CatalogueLoadTest, LineOfExactly32767CharactersIsRead)
{
    const QByteArray notes(32767 - 1 - 45, 'n');
    writeDataFile(productLine({ "A", "", "", notes }));
    EXPECT_EQ(products.ReadProds(dataFile()).status, Status::Ok);
    EXPECT_EQ(catalogue.get(1, 4).asText().size(), notes.size());
}

TEST_F(CatalogueLoadTest, FileEndingInsideAProductEndsTheReading)
{
    writeDataFile(productLine({ "A" }) + productLine({ "B" }) + "C" FE "notes\r\nmore notes\r\n");
    const CatalogueReadResult result = products.ReadProds(dataFile());
    EXPECT_EQ(result.status, Status::Failed);
    EXPECT_EQ(result.errorNumber, 62);
    EXPECT_EQ(result.detail, QStringLiteral("the file ends in the middle of product 3"));
    EXPECT_EQ(result.rowsRead, 2);
    EXPECT_EQ(products.Count(), 0);
    EXPECT_EQ(catalogue.get(2, 1), Cell("B"));
    EXPECT_TRUE(catalogue.get(3, 1).isEmpty());
}

TEST_F(CatalogueLoadTest, BlankLineAtTheEndIsAProductWithoutEnd)
{
    writeDataFile(productLine({ "A" }) + "\r\n");
    const CatalogueReadResult result = products.ReadProds(dataFile());
    EXPECT_EQ(result.status, Status::Failed);
    EXPECT_EQ(result.errorNumber, 62);
    EXPECT_EQ(catalogue.get(1, 1), Cell("A"));
    EXPECT_EQ(products.Count(), 0);
}

TEST_F(CatalogueLoadTest, BinaryFileIsNotACatalogue)
{
    std::mt19937 random(20261122);
    QByteArray bytes(8192, '\0');
    for (char &byte : bytes)
        byte = char(random() & 0xFF);
    bytes[17] = '\0';
    ASSERT_TRUE(bytes.contains('\0'));
    writeDataFile(bytes);
    products.setCount(12);

    const CatalogueReadResult result = products.ReadProds(dataFile());

    EXPECT_EQ(result.status, Status::Failed);
    EXPECT_NE(result.errorNumber, 0);
    EXPECT_FALSE(result.detail.isEmpty());
    EXPECT_EQ(result.rowsRead, 0);
    EXPECT_EQ(products.Count(), 12);
}

TEST_F(CatalogueLoadTest, APipeInTheFilesPlaceIsNotReadAndNothingWaits)
{
#if defined(Q_OS_UNIX)
    // Opening a pipe for reading would wait for a writer that never comes.
    ASSERT_EQ(::mkfifo(QFile::encodeName(dataFile()).constData(), 0600), 0);
    const CatalogueReadResult pipe = products.ReadProds(dataFile());
    EXPECT_EQ(pipe.status, Status::Failed);
    EXPECT_EQ(pipe.detail, QStringLiteral("it is not a file but a folder, a pipe or a device"));
    EXPECT_EQ(products.Count(), 0);
#endif
}

TEST_F(CatalogueLoadTest, TextFileWithoutFieldEndsIsNotACatalogue)
{
    writeDataFile("Dear customer,\r\nthis is a letter.\r\n");
    const CatalogueReadResult result = products.ReadProds(dataFile());
    EXPECT_EQ(result.status, Status::Failed);
    EXPECT_EQ(result.errorNumber, 62);
    EXPECT_EQ(products.Count(), 0);
}

TEST_F(CatalogueLoadTest, Windows1252FileIsReadAndWrittenBackByteIdentical)
{
    // é, ü, € and an en dash as the earlier Windows program wrote them.
    const QByteArray bytes = productLine({ "CAF\xe9-1", "M\xfcller Kaffee", "12.5",
                                 "\x80 5 \x96 10 St\xfc"
                                 "ck" })
        + productLine({ "Z-2",
            "Stra\xdf"
            "e",
            "", "a\r\nb\xe9" });
    writeDataFile(bytes);
    ASSERT_EQ(products.ReadProds(dataFile()).status, Status::Ok);
    EXPECT_EQ(catalogue.get(1, 1), Cell(QStringLiteral("CAF\u00e9-1")));
    EXPECT_EQ(catalogue.get(1, 2), Cell(QStringLiteral("M\u00fcller Kaffee")));
    EXPECT_EQ(catalogue.get(1, 4), Cell(QStringLiteral("\u20ac 5 \u2013 10 St\u00fcck")));
    EXPECT_EQ(catalogue.get(2, 2), Cell(QStringLiteral("Stra\u00dfe")));

    catalogue.redimPreserve(products.Count(), 15);
    ASSERT_TRUE(products.WriteProds(dataFile()).ok);
    EXPECT_EQ(dataFileBytes(), bytes);
}

TEST_F(CatalogueLoadTest, ChineseTextIsWrittenAsUtf8AndReadBack)
{
    const QString name = QStringLiteral("\u87ba\u4e1d\u5200 set");
    catalogue.redim(1, 15);
    catalogue.put(1, 1, Cell("S-1"));
    catalogue.put(1, 2, name);
    catalogue.put(1, 4, Cell(QStringLiteral("caf\u00e9")));
    ASSERT_TRUE(products.WriteProds(dataFile()).ok);
    EXPECT_EQ(dataFileBytes(),
        productLine({ "S-1", "\xe8\x9e\xba\xe4\xb8\x9d\xe5\x88\x80 set", "", "caf\xc3\xa9" }));

    Table back;
    ASSERT_EQ(readBack(back).status, Status::Ok);
    EXPECT_EQ(back.get(1, 2), Cell(name));
    EXPECT_EQ(back.get(1, 4), Cell(QStringLiteral("caf\u00e9")));
}

TEST_F(CatalogueLoadTest, UnreadFileIsKeptUnderAFreshName)
{
    const QByteArray bytes = "broken \x01\x02 catalogue";
    writeDataFile(bytes);

    const QString first = preserveUnreadCatalogue(dataFile());
    const QString second = preserveUnreadCatalogue(dataFile());

    const QRegularExpression pattern(QStringLiteral("^twdata-unread-\\d{8}-\\d{6}(-\\d+)?\\.dat$"));
    ASSERT_FALSE(first.isEmpty());
    ASSERT_FALSE(second.isEmpty());
    EXPECT_NE(first, second);
    for (const QString &copy : { first, second }) {
        const QFileInfo info(copy);
        EXPECT_TRUE(pattern.match(info.fileName()).hasMatch()) << copy.toStdString();
        EXPECT_EQ(QDir(info.absolutePath()), QDir(folder.path()));
        EXPECT_EQ(folder.readFile(info.fileName()), bytes);
    }
    EXPECT_EQ(dataFileBytes(), bytes); // copied, not moved
    EXPECT_EQ(folder.fileNames().size(), 3);
}

TEST_F(CatalogueLoadTest, TheFirstKeptCopyHasNoSuffixAndASecondInTheSameSecondHasOne)
{
    writeDataFile("broken");
    const QRegularExpression plain(QStringLiteral("^twdata-unread-(\\d{8}-\\d{6})\\.dat$"));

    const QString first = QFileInfo(preserveUnreadCatalogue(dataFile())).fileName();
    const QString second = QFileInfo(preserveUnreadCatalogue(dataFile())).fileName();

    const QRegularExpressionMatch firstMatch = plain.match(first);
    ASSERT_TRUE(firstMatch.hasMatch()) << first.toStdString();
    const QString stamp = firstMatch.captured(1);
    if (second.contains(stamp)) // the usual case: both copies within one second
        EXPECT_EQ(second, QStringLiteral("twdata-unread-%1-2.dat").arg(stamp));
    else
        EXPECT_TRUE(plain.match(second).hasMatch()) << second.toStdString();
}

TEST_F(CatalogueLoadTest, UnreadCopyNameCarriesTodaysDate)
{
    writeDataFile("x");
    const QString copy = preserveUnreadCatalogue(dataFile());
    const QString today = QDate::currentDate().toString(QStringLiteral("yyyyMMdd"));
    const QString yesterday = QDate::currentDate().addDays(-1).toString(QStringLiteral("yyyyMMdd"));
    const QString name = QFileInfo(copy).fileName();
    EXPECT_TRUE(name.startsWith(QStringLiteral("twdata-unread-") + today)
        || name.startsWith(QStringLiteral("twdata-unread-") + yesterday))
        << name.toStdString();
}

TEST_F(CatalogueLoadTest, MissingFileCannotBeKept)
{
    EXPECT_EQ(preserveUnreadCatalogue(dataFile()), QString());
    EXPECT_TRUE(folder.fileNames().isEmpty());
}

} // namespace
} // namespace tarnwick::test
