// Zip archives read from a file's bytes, a member at a time and in pieces as it is inflated,
// never beyond a limit and never other than its headers say.
#include "exchange/workbook.h"
#include "exchange/workbookformats.h"
#include "exchange/ziparchive.h"
#include "exchangetestdata.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtEndian>

#include <gtest/gtest.h>

using namespace tarnwick;

namespace {

QString dataPath(const char *name)
{
    return QDir(QStringLiteral(TARNWICK_TEST_DATA)).filePath(QString::fromLatin1(name));
}

QByteArray dataBytes(const char *name)
{
    QFile file(dataPath(name));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name;
    return file.readAll();
}

// The size of xl/styles.xml in sample.xlsx, as `unzip -l` lists it.
constexpr qint64 StylesSize = 4457;

/// The member read to its end in pieces of at most piece bytes; nothing when a read failed.
std::optional<QByteArray> readWhole(ZipArchive::Member &member, qint64 piece)
{
    QByteArray bytes;
    QByteArray buffer(piece, '\0');
    for (;;) {
        const qint64 count = member.read(buffer.data(), piece);
        if (count < 0)
            return std::nullopt;
        if (count == 0)
            return bytes;
        bytes.append(buffer.constData(), count);
    }
}

/// sample.xlsx with the inflated size of xl/styles.xml given as size in both its headers.
QByteArray withStylesClaiming(quint32 size)
{
    QByteArray bytes = dataBytes("sample.xlsx");
    const QByteArray name("xl/styles.xml");
    for (qsizetype at = bytes.indexOf("PK\x03\x04"); at >= 0;
         at = bytes.indexOf("PK\x03\x04", at + 4)) {
        if (bytes.mid(at + 30, name.size()) == name)
            qToLittleEndian(size, bytes.data() + at + 22);
    }
    for (qsizetype at = bytes.indexOf("PK\x01\x02"); at >= 0;
         at = bytes.indexOf("PK\x01\x02", at + 4)) {
        if (bytes.mid(at + 46, name.size()) == name)
            qToLittleEndian(size, bytes.data() + at + 24);
    }
    return bytes;
}

} // namespace

TEST(ZipArchive, AMemberComesInPiecesOfAnySize)
{
    const QByteArray file = dataBytes("sample.xlsx");
    const std::unique_ptr<ZipArchive> archive = ZipArchive::open(file);
    ASSERT_TRUE(archive);
    EXPECT_TRUE(archive->contains("xl/styles.xml"));
    EXPECT_TRUE(archive->contains("XL/Styles.XML"))
        << "member names are compared as the format does";
    std::optional<QByteArray> whole;
    for (const qint64 piece : { qint64(1) << 20, qint64(7), qint64(1) }) {
        const auto member = archive->member("xl/styles.xml");
        ASSERT_TRUE(member);
        const std::optional<QByteArray> bytes = readWhole(*member, piece);
        ASSERT_TRUE(bytes) << piece;
        EXPECT_EQ(bytes->size(), StylesSize);
        EXPECT_TRUE(bytes->startsWith("<?xml"));
        if (whole) {
            EXPECT_EQ(*bytes, *whole);
        }
        whole = bytes;
    }
}

TEST(ZipArchive, AMemberLongerThanItsLimitIsNotRead)
{
    const QByteArray file = dataBytes("sample.xlsx");
    const std::unique_ptr<ZipArchive> archive = ZipArchive::open(file);
    ASSERT_TRUE(archive);
    EXPECT_FALSE(readWhole(*archive->member("xl/styles.xml", StylesSize - 1), 1024));
    EXPECT_TRUE(readWhole(*archive->member("xl/styles.xml", StylesSize), 1024));
}

TEST(ZipArchive, AMemberOfAnotherSizeThanItsHeadersSayIsDamaged)
{
    for (const quint32 claimed :
        { quint32(0xFFFFFFF0), quint32(StylesSize + 1), quint32(StylesSize - 1) }) {
        const QByteArray file = withStylesClaiming(claimed);
        const std::unique_ptr<ZipArchive> archive = ZipArchive::open(file);
        ASSERT_TRUE(archive) << claimed;
        const auto member = archive->member("xl/styles.xml");
        ASSERT_TRUE(member) << claimed;
        EXPECT_FALSE(readWhole(*member, 1024)) << claimed;
    }
}

TEST(ZipArchive, NoSuchMemberOrNoArchive)
{
    const QByteArray file = dataBytes("sample.xlsx");
    const std::unique_ptr<ZipArchive> archive = ZipArchive::open(file);
    ASSERT_TRUE(archive);
    EXPECT_FALSE(archive->contains("content.xml"));
    EXPECT_EQ(archive->member("content.xml"), nullptr);
    EXPECT_EQ(ZipArchive::open(dataBytes("notaworkbook.xlsx")), nullptr);
    const std::unique_ptr<ZipArchive> empty = ZipArchive::open(QByteArrayView());
    EXPECT_TRUE(!empty || empty->member("content.xml") == nullptr);
}

TEST(WorkbookReaders, TheBytesOfAWorkbookReadAsTheFile)
{
    const auto xlsx = openXlsxWorkbookData(dataBytes("sample.xlsx"));
    const auto ods = openOdsWorkbookData(dataBytes("sample.ods"));
    const auto xls = openXlsWorkbookData(dataBytes("sample.xls"));
    const auto xlsxFile = openWorkbook(dataPath("sample.xlsx"));
    ASSERT_TRUE(xlsx.workbook && ods.workbook && xls.workbook && xlsxFile.workbook);
    for (int row = 1; row <= 5; ++row) {
        for (int column = 0; column < 10; ++column) {
            const QString expected = xlsxFile.workbook->cellText(column, row);
            EXPECT_EQ(xlsx.workbook->cellText(column, row), expected);
            EXPECT_EQ(ods.workbook->cellText(column, row), expected);
            EXPECT_EQ(xls.workbook->cellText(column, row), expected);
        }
    }
    EXPECT_EQ(xlsx.workbook->cellText(0, 1), "Part Number");
    EXPECT_EQ(ods.workbook->cellText(2, 2), "12.5");
}

TEST(WorkbookReaders, BytesThatAreNoWorkbookOfTheFormatGiveTheUsualError)
{
    const auto expectRefused = [](const char *what, const WorkbookOpenResult &result) {
        EXPECT_FALSE(result.workbook) << what;
        EXPECT_EQ(result.errorNumber, WorkbookError::NotAWorkbook) << what;
        EXPECT_EQ(result.errorText, "This file is not an Excel 97 file.") << what;
    };
    expectRefused(
        "notaworkbook.xlsx as .xlsx", openXlsxWorkbookData(dataBytes("notaworkbook.xlsx")));
    expectRefused("sample.ods as .xlsx", openXlsxWorkbookData(dataBytes("sample.ods")));
    expectRefused("sample.xlsx as .ods", openOdsWorkbookData(dataBytes("sample.xlsx")));
    expectRefused("sample.xlsx as .xls", openXlsWorkbookData(dataBytes("sample.xlsx")));
    expectRefused("notaworkbook.xls as .xls", openXlsWorkbookData(dataBytes("notaworkbook.xls")));
}

namespace {

/// A zip archive of one member, as libzip writes it.
QByteArray zipOf(const char *name, const QByteArray &data)
{
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("member.zip"));
    EXPECT_TRUE(tarnwick::test::writeZip(path, { { name, data } }));
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return file.readAll();
}

/// A megabyte and a half of varied bytes: more pieces than a member is read ahead.
QByteArray largeData()
{
    QByteArray data;
    for (int i = 0; data.size() < (3 << 19); ++i)
        data += QByteArray::number(i * 7919) + (i % 13 == 0 ? "\n" : " ");
    return data;
}

} // namespace

TEST(ZipArchive, AMemberReadAheadGivesTheSameBytesInPiecesOfAnySize)
{
    const QByteArray data = largeData();
    const QByteArray file = zipOf("content.xml", data);
    const std::unique_ptr<ZipArchive> archive = ZipArchive::open(file);
    ASSERT_TRUE(archive);
    for (const qint64 piece : { qint64(1) << 20, qint64(256) << 10, qint64(4093) }) {
        const auto member = ZipArchive::readAhead(archive->member("content.xml"));
        ASSERT_TRUE(member);
        const std::optional<QByteArray> bytes = readWhole(*member, piece);
        ASSERT_TRUE(bytes) << piece;
        EXPECT_TRUE(*bytes == data) << piece;
        EXPECT_EQ(member->read(nullptr, 0), 0) << "the end stays the end";
    }
    EXPECT_EQ(ZipArchive::readAhead(archive->member("missing.xml")), nullptr);
}

TEST(ZipArchive, AMemberReadAheadCanBeLeftBeforeItsEnd)
{
    const QByteArray data = largeData();
    const QByteArray file = zipOf("content.xml", data);
    const std::unique_ptr<ZipArchive> archive = ZipArchive::open(file);
    ASSERT_TRUE(archive);
    QByteArray buffer(1000, '\0');
    {
        const auto member = ZipArchive::readAhead(archive->member("content.xml"));
        ASSERT_TRUE(member);
        EXPECT_EQ(member->read(buffer.data(), buffer.size()), buffer.size());
    }
    // The archive can be used again once the member is closed, its thread stopped.
    const auto again = archive->member("content.xml");
    ASSERT_TRUE(again);
    EXPECT_EQ(again->read(buffer.data(), buffer.size()), buffer.size());
    EXPECT_TRUE(buffer == data.left(buffer.size()));
}

TEST(ZipArchive, ADamagedMemberReadAheadIsDamaged)
{
    for (const quint32 claimed : { quint32(StylesSize + 1), quint32(StylesSize - 1) }) {
        const QByteArray file = withStylesClaiming(claimed);
        const std::unique_ptr<ZipArchive> archive = ZipArchive::open(file);
        ASSERT_TRUE(archive) << claimed;
        const auto member = ZipArchive::readAhead(archive->member("xl/styles.xml"));
        ASSERT_TRUE(member) << claimed;
        EXPECT_FALSE(readWhole(*member, 1024)) << claimed;
        EXPECT_EQ(member->read(nullptr, 0), -1) << "a failure stays a failure";
    }
}
