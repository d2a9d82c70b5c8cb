// Zip archives read from a file or from its bytes, a member at a time, never beyond a limit.
#include "exchange/gridworkbook.h"
#include "exchange/ziparchive.h"

#include <QDir>
#include <QFile>

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
constexpr qsizetype StylesSize = 4457;

} // namespace

TEST(ZipArchive, AMemberReadFromTheFileAndFromItsBytesIsTheSame)
{
    const ZipArchive fromFile(dataPath("sample.xlsx"));
    const ZipArchive fromBytes(dataBytes("sample.xlsx"));
    ASSERT_TRUE(fromFile.isOpen());
    ASSERT_TRUE(fromBytes.isOpen());
    const auto styles = fromFile.member(QStringLiteral("xl/styles.xml"));
    ASSERT_TRUE(styles);
    EXPECT_EQ(styles->size(), StylesSize);
    EXPECT_TRUE(styles->startsWith("<?xml"));
    EXPECT_EQ(fromBytes.member(QStringLiteral("xl/styles.xml")), styles);
}

TEST(ZipArchive, AMemberLongerThanTheLimitIsNotRead)
{
    const ZipArchive archive(dataBytes("sample.xlsx"));
    EXPECT_EQ(archive.member(QStringLiteral("xl/styles.xml"), StylesSize - 1), std::nullopt);
    const auto exact = archive.member(QStringLiteral("xl/styles.xml"), StylesSize);
    ASSERT_TRUE(exact);
    EXPECT_EQ(exact->size(), StylesSize);
}

TEST(ZipArchive, NoSuchMemberOrNoArchive)
{
    EXPECT_EQ(
        ZipArchive(dataBytes("sample.xlsx")).member(QStringLiteral("content.xml")), std::nullopt);
    const ZipArchive text(dataBytes("notaworkbook.xlsx"));
    EXPECT_FALSE(text.isOpen());
    EXPECT_EQ(text.member(QStringLiteral("content.xml")), std::nullopt);
    // libzip takes no bytes at all for an archive without members.
    EXPECT_EQ(ZipArchive(QByteArray()).member(QStringLiteral("content.xml")), std::nullopt);
    EXPECT_FALSE(ZipArchive(dataPath("no such file.xlsx")).isOpen());
}

TEST(WorkbookReaders, TheBytesOfAWorkbookReadAsTheFile)
{
    const auto xlsx = openXlsxWorkbookData(dataBytes("sample.xlsx"));
    const auto ods = openOdsWorkbookData(dataBytes("sample.ods"));
    const auto xlsxFile = openXlsxWorkbook(dataPath("sample.xlsx"));
    const auto odsFile = openOdsWorkbook(dataPath("sample.ods"));
    ASSERT_TRUE(xlsx.workbook && ods.workbook && xlsxFile.workbook && odsFile.workbook);
    for (int row = 1; row <= 5; ++row) {
        for (int column = 0; column < 10; ++column) {
            EXPECT_EQ(
                xlsx.workbook->cellText(column, row), xlsxFile.workbook->cellText(column, row));
            EXPECT_EQ(ods.workbook->cellText(column, row), odsFile.workbook->cellText(column, row));
        }
    }
    EXPECT_EQ(xlsx.workbook->cellText(0, 1), "Part Number");
    EXPECT_EQ(ods.workbook->cellText(2, 2), "12.5");
}

TEST(WorkbookReaders, BytesThatAreNoWorkbookGiveTheUsualError)
{
    for (const char *name : { "notaworkbook.xlsx", "sample.ods" }) {
        const WorkbookOpenResult result = openXlsxWorkbookData(dataBytes(name));
        EXPECT_FALSE(result.workbook) << name;
        EXPECT_NE(result.errorNumber, 0) << name;
        EXPECT_EQ(result.errorText, "This file is not an Excel 97 file.") << name;
    }
    const WorkbookOpenResult ods = openOdsWorkbookData(dataBytes("sample.xlsx"));
    EXPECT_FALSE(ods.workbook);
    EXPECT_EQ(ods.errorText, "This file is not an Excel 97 file.");
}
