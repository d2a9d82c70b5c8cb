// One value per cell whatever the format: the workbooks LibreOffice made from one source in
// every format (and the variants other programs write) give the same cells, each as the rules
// say, and the same catalogue byte for byte.
#include "catalogue/cataloguewriter.h"
#include "catalogue/module1.h"
#include "catalogue/productrecord.h"
#include "catalogue/products.h"
#include "catalogue/table.h"
#include "commands/catalogueedits.h"
#include "commands/edithistory.h"
#include "core/celltext.h"
#include "exchange/columnmapping.h"
#include "exchange/importchanges.h"
#include "exchange/importplan.h"
#include "exchange/sheetcells.h"
#include "exchange/spreadsheetexport.h"
#include "exchange/workbook.h"
#include "platform/appenvironment.h"
#include "support/fakeprompts.h"
#include "support/testlocale.h"

#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace tarnwick;
namespace P = ProductRecord;
namespace CM = ColumnMapping;

namespace {

using tarnwick::test::EnUs;
const QString Error = QStringLiteral("<error>");

const char *const ValuesWorkbooks[] = { "values.xls", "values.xlsx", "values.ods",
    "values-noref.xlsx", "values-inline.xlsx" };

QString dataFile(const char *name)
{
    return QDir(QStringLiteral(TARNWICK_TEST_DATA)).filePath(QString::fromLatin1(name));
}

std::unique_ptr<IWorkbook> openData(const char *name)
{
    WorkbookOpenResult result = openWorkbook(dataFile(name));
    EXPECT_TRUE(result.workbook) << name << " error " << result.errorNumber;
    return std::move(result.workbook);
}

/// The cell as the tests compare it: its text, or <error> for an error cell.
QString shown(const IWorkbook &workbook, int column, int row)
{
    return workbook.isError(column, row) ? Error : workbook.cellText(column, row);
}

QString repeated(const QString &text, int length)
{
    QString out;
    while (out.size() < length)
        out += text;
    return out.left(length);
}

/// Every cell of the values workbooks, as the rules say: one line per row, columns A to O.
std::vector<QStringList> expectedValues()
{
    QStringList headers { "Part Number", "Product Name", "Price", "Notes", "Includes" };
    for (int k = 1; k <= 5; ++k)
        headers << QStringLiteral("Price Point %1").arg(k) << QStringLiteral("Price %1").arg(k);
    const QString longMixed =
        repeated(QStringLiteral("Größe ÄÖÜ äöü ß € – long text with non-ASCII letters, "), 9000);
    const QString longAscii =
        repeated(QStringLiteral("0123456789 The quick brown fox jumps over the lazy dog. "), 8300);
    return {
        headers,
        { "P0001", "Numbers", "12.5", "Red  and  blue", "Cable\tPlug", "10", "11.5", "10003",
            "-3.25", "0.1", "12345678901234", "1000000000000000", "0.000125", "0.333333333333333",
            "13.8" },
        { "P0002", "Dates", "13.8", "2024-03-12", "2024-03-12", "2024-03-12 14:30:00", "2024-03-12",
            "14:30:00", "2024-03-12", "2024-03-12", "1999-12-31 23:59:59", "1900-03-01", "36:00:00",
            "2024-03-12 14:30:00", "" },
        { "P0003", "Booleans and percent", "1234.5", "TRUE", "FALSE", "TRUE", "FALSE", "0.125",
            "0.07", "1234.5", "1234567.891", "0.00000015", "2.5", "2", "0.3" },
        { "P0004", "Errors and text", Error, Error, Error, Error, "00123", "12.50", "1e5", "TRUE",
            "abcdef", "  leading and trailing  ", "Müller € – “quoted” ‘single’", "2024-03-12",
            "say \"hi\"" },
        { "P0005", "Line breaks", "", "Line 1\r\nLine 2", "a\r\n\r\nb", "Trailing break\r\n",
            "x\r\ny", "   ", "", "", "", "", "", "", "" },
        { "P0006", "Long texts", "", longMixed, repeated("ab", 10000), longAscii, "", "", "", "",
            "", "", "", "", "" },
        { "00042", "Leading zeros", "1", "", "", "", "", "", "", "", "", "", "", "", "" },
        { "4006381333931", "Numeric part number", "9.99", "", "", "", "", "", "", "", "", "", "",
            "", "" },
        { "P0007", "", "n/a", "", "", "", "", "", "", "", "", "", "", "", "" },
        { "P0008", QString(75, QLatin1Char('N')) + "TAIL5", "5", "", "", "", "", "", "", "", "", "",
            "", "", "" },
    };
}

/// Every list mapped to its column: A part number, B name, C price ... O price 5.
QString allColumnsLetters()
{
    std::array<int, CM::ListCount> positions {};
    for (int index = 0; index < CM::ListCount; ++index) {
        const int column = CM::catalogueField(index) - 1;
        positions[std::size_t(index)] = index <= CM::ProductNameList ? column : column + 1;
    }
    return CM::columnLetters(positions);
}

struct Imported
{
    test::FakePrompts prompts;
    AppEnvironment environment { QString(), QString() };
    Module1 module { prompts, environment, EnUs };
    Table &catalogue = module.Catalogue();
    EditHistory history { module };
    int changes = 0;
    int unreadCells = 0;
    std::optional<VbError> firstError;
};

/// Adds the sheet's products to an empty catalogue, as "Add new products" does: planned, then
/// made one step of the history of changes.
std::unique_ptr<Imported> importAll(const IWorkbook &workbook)
{
    auto result = std::make_unique<Imported>();
    result->catalogue.redim(0, P::FieldCount);
    ImportPlanner planner(
        workbook, result->catalogue, allColumnsLetters(), true, ImportAction::AddNew, EnUs);
    planner.runAll();
    ImportPlan plan = planner.takePlan();
    result->changes = plan.addedCount();
    result->unreadCells = plan.unreadCells;
    result->firstError = plan.firstError;
    CatalogueEdits::import(result->history, {}, importChanges(std::move(plan), result->catalogue));
    return result;
}

QByteArray catalogueBytes(const Table &catalogue)
{
    return catalogueFileBytes(catalogue, EnUs, catalogue.rowCount()).bytes;
}

} // namespace

TEST(WorkbookReaders, EveryCellOfEveryFormatIsAsTheRulesSay)
{
    const std::vector<QStringList> expected = expectedValues();
    for (const char *name : ValuesWorkbooks) {
        const auto workbook = openData(name);
        ASSERT_TRUE(workbook);
        for (int row = 1; row <= int(expected.size()); ++row) {
            for (int column = 0; column < SheetCells::Columns; ++column) {
                const QStringList &line = expected[std::size_t(row - 1)];
                EXPECT_EQ(shown(*workbook, column, row), column < line.size() ? line[column] : "")
                    << name << " column " << column << " row " << row;
            }
        }
        for (int column = 0; column < SheetCells::Columns; ++column) {
            EXPECT_EQ(shown(*workbook, column, 12), "") << name << ": the empty row 12";
            EXPECT_EQ(shown(*workbook, column, 13), "") << name << ": nothing after it";
        }
    }
}

TEST(WorkbookReaders, EveryFormatGivesTheSameCatalogueByteForByte)
{
    const auto reference = openData("values.xlsx");
    ASSERT_TRUE(reference);
    const auto fromXlsx = importAll(*reference);
    EXPECT_EQ(fromXlsx->changes, 10);
    const QByteArray bytes = catalogueBytes(fromXlsx->catalogue);
    for (const char *name : ValuesWorkbooks) {
        const auto workbook = openData(name);
        ASSERT_TRUE(workbook);
        const auto imported = importAll(*workbook);
        EXPECT_EQ(imported->changes, 10) << name;
        EXPECT_EQ(catalogueBytes(imported->catalogue), bytes) << name;
        // The error cells are counted for the message about errors in the sheet.
        ASSERT_TRUE(imported->firstError.has_value()) << name;
        EXPECT_EQ(imported->firstError->number(), ErrorNumber::TypeMismatch) << name;
    }
}

// Programs that write workbooks without computing them (openpyxl here) leave formulas without
// results for the spreadsheet to work out when the file is opened: such a cell has no value
// to take, and is said like an error, never read as $0.00 or a blank.
TEST(WorkbookReaders, FormulasWithoutTheirResultsAreSaidLikeErrors)
{
    const auto workbook = openData("uncomputed.xlsx");
    ASSERT_TRUE(workbook);
    for (int row : { 2, 4, 5 })
        EXPECT_EQ(shown(*workbook, 2, row), Error) << "row " << row;
    EXPECT_EQ(shown(*workbook, 2, 3), "17.2");
    EXPECT_EQ(shown(*workbook, 3, 2), "formula");
    const auto imported = importAll(*workbook);
    ASSERT_TRUE(imported->firstError.has_value());
    EXPECT_EQ(imported->firstError->number(), ErrorNumber::TypeMismatch);
    EXPECT_EQ(imported->unreadCells, 3) << "the three prices, counted for the preview";
    const Table &catalogue = imported->catalogue;
    const int row = catalogue.find(P::PartNumber, Cell(QStringLiteral("F-1")), 1);
    ASSERT_GE(row, 1);
    EXPECT_TRUE(catalogue.get(row, P::Price).isEmpty()) << "no price rather than $0.00";
}

// xlsxwriter stores 0 in place of every result it is not given, and the workbook asks to be
// worked out anew when opened: a stored 0 is a stand-in, never read as a price; a result the
// script gave it is stored as given, and taken.
TEST(WorkbookReaders, StandInResultsOfAWorkbookToBeWorkedOutWhenOpenedAreSaidLikeErrors)
{
    const auto workbook = openData("uncomputed-zero.xlsx");
    ASSERT_TRUE(workbook);
    for (int row : { 2, 4, 5 })
        EXPECT_EQ(shown(*workbook, 2, row), Error) << "row " << row;
    EXPECT_EQ(shown(*workbook, 2, 6), "21") << "the result given";
    EXPECT_EQ(shown(*workbook, 2, 3), "17.2");
    EXPECT_EQ(shown(*workbook, 0, 6), "F-5");
    EXPECT_EQ(shown(*workbook, 3, 6), "result given");
}

// Last year's prices on a first worksheet the workbook hides: the sheet read is the first one a
// spreadsheet shows, in every format.
/// A cell as the tests compare it: its column (0-based), its row (1-based) and what it shows.
struct ShownCell
{
    int column;
    int row;
    QString text;
};

/// Checks the cells of every workbook named.
void expectCells(std::initializer_list<const char *> names, std::initializer_list<ShownCell> cells)
{
    for (const char *name : names) {
        const auto workbook = openData(name);
        ASSERT_TRUE(workbook) << name;
        for (const ShownCell &cell : cells)
            EXPECT_EQ(shown(*workbook, cell.column, cell.row), cell.text)
                << name << " column " << cell.column << " row " << cell.row;
    }
}

TEST(WorkbookReaders, TheFirstWorksheetShownIsReadNotOneTheWorkbookHides)
{
    expectCells({ "hiddensheet.xlsx", "hiddensheet.xls", "hiddensheet.ods" },
        { { 0, 2, "BV-1050" }, { 1, 2, "13.5" } });
}

// Gnumeric writes a formula's error result into OpenDocument as its text: an error all the
// same, as from every other format; a text typed so stays that text.
TEST(WorkbookReaders, AnErrorWrittenAsAFormulasTextResultIsAnError)
{
    const auto workbook = openData("errors-gnumeric.ods");
    ASSERT_TRUE(workbook);
    EXPECT_EQ(shown(*workbook, 2, 2), Error);
    EXPECT_EQ(shown(*workbook, 2, 3), Error);
    EXPECT_EQ(shown(*workbook, 2, 4), "12.5");
    EXPECT_EQ(shown(*workbook, 3, 4), "#N/A typed as text");
    EXPECT_EQ(shown(*workbook, 0, 3), "G-2");
}

TEST(WorkbookReaders, AFormulasTextThatReadsLikeAnErrorStaysThatText)
{
    expectCells({ "errortext.ods", "errortext.xlsx", "errortext.xls" },
        { { 1, 2, Error }, { 1, 3, Error }, { 1, 4, "#N/A" } });
}

// odfpy writes a formula without a result, for the spreadsheet to work out when it opens the
// file: as from a .xlsx, no value to take, said like an error.
TEST(WorkbookReaders, AnOpenDocumentFormulaWithoutAResultIsSaidLikeAnError)
{
    expectCells({ "uncomputed.ods" }, { { 1, 2, Error }, { 1, 3, "17.2" }, { 0, 2, "O-1" } });
}

TEST(WorkbookReaders, ACellNamingASharedTextTheWorkbookLacksIsOneErrorNotTheWholeSheet)
{
    const auto damaged = openData("values-badshared.xlsx");
    const auto sound = openData("values.xlsx");
    ASSERT_TRUE(damaged && sound);
    EXPECT_EQ(shown(*damaged, 1, 2), Error);
    for (int row = 1; row <= 13; ++row) {
        for (int column = 0; column < SheetCells::Columns; ++column) {
            if (row == 2 && column == 1)
                continue;
            EXPECT_EQ(shown(*damaged, column, row), shown(*sound, column, row))
                << "column " << column << " row " << row;
        }
    }
}

TEST(WorkbookReaders, ErrorCellsArriveEmptyAndTheRestOfTheRowIsImported)
{
    const auto workbook = openData("values.xls");
    ASSERT_TRUE(workbook);
    const auto imported = importAll(*workbook);
    const Table &catalogue = imported->catalogue;
    const int row = catalogue.find(P::PartNumber, Cell(QStringLiteral("P0004")), 1);
    ASSERT_GE(row, 1);
    EXPECT_TRUE(catalogue.get(row, P::Price).isEmpty()) << "no price from #DIV/0!";
    EXPECT_EQ(catalogue.get(row, P::Notes).asText(), "");
    EXPECT_EQ(catalogue.get(row, P::Includes).asText(), "");
    EXPECT_EQ(catalogue.get(row, P::PricePoint2).asText(), "12.50");
    EXPECT_EQ(catalogue.get(row, P::Price5).asText(), "say \"hi\"");
}

TEST(WorkbookReaders, TheExportComesBackUnderItsExcelName)
{
    const auto workbook = openData("values.ods");
    ASSERT_TRUE(workbook);
    const auto imported = importAll(*workbook);
    const Table &original = imported->catalogue;
    QTemporaryDir folder;
    ASSERT_TRUE(folder.isValid());
    QFile file(folder.filePath(QStringLiteral("export.xls")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(SpreadsheetExport::exportBytes(original, EnUs));
    file.close();
    const WorkbookOpenResult exported = openWorkbook(file.fileName());
    ASSERT_TRUE(exported.workbook) << exported.errorNumber;
    const auto back = importAll(*exported.workbook);
    ASSERT_EQ(back->changes, imported->changes);
    for (int row = 1; row <= original.rowCount(); ++row) {
        const QString part = original.get(row, P::PartNumber).asText();
        for (int field = 1; field <= P::FieldCount; ++field) {
            const Cell &before = original.get(row, field);
            const Cell &after = back->catalogue.get(row, field);
            if (part == "P0001" && field >= P::Includes) {
                // The export writes a tab inside a field as it stands, which starts a new cell:
                // the includes text "Cable<tab>Plug" moves the fields after it one to the right.
                continue;
            }
            EXPECT_EQ(after.asText(), before.asText()) << qPrintable(part) << " field " << field;
            EXPECT_EQ(after.isNumber(), before.isNumber()) << qPrintable(part) << " " << field;
        }
    }
    const int p0001 = back->catalogue.find(P::PartNumber, Cell(QStringLiteral("P0001")), 1);
    ASSERT_GE(p0001, 1);
    EXPECT_EQ(back->catalogue.get(p0001, P::Includes).asText(), "Cable");
    EXPECT_EQ(back->catalogue.get(p0001, P::PricePoint1).asText(), "Plug");
    EXPECT_EQ(back->catalogue.get(p0001, P::Price1).asText(), "10");
}

TEST(WorkbookReaders, TabSeparatedTextSavedWithQuotesIsUnquoted)
{
    const auto quoted = openData("values-quoted.txt");
    const auto reference = openData("values.xlsx");
    ASSERT_TRUE(quoted && reference);
    // Every cell that holds a text in the workbook comes back as that text.
    const std::vector<std::pair<int, int>> texts { { 0, 1 }, { 14, 1 }, { 0, 2 }, { 1, 2 },
        { 3, 2 }, { 4, 2 }, { 0, 5 }, { 6, 5 }, { 7, 5 }, { 8, 5 }, { 9, 5 }, { 10, 5 }, { 11, 5 },
        { 12, 5 }, { 13, 5 }, { 14, 5 }, { 3, 6 }, { 4, 6 }, { 5, 6 }, { 6, 6 }, { 7, 6 }, { 3, 7 },
        { 4, 7 }, { 5, 7 }, { 0, 8 }, { 1, 9 }, { 2, 10 }, { 1, 11 } };
    for (const auto &[column, row] : texts)
        EXPECT_EQ(quoted->cellText(column, row), reference->cellText(column, row))
            << "column " << column << " row " << row;
    EXPECT_EQ(quoted->cellText(0, 2), "P0001");
    EXPECT_EQ(quoted->cellText(14, 5), "say \"hi\"");
    EXPECT_EQ(quoted->cellText(4, 2), "Cable\tPlug");
    EXPECT_EQ(quoted->cellText(3, 6), "Line 1\r\nLine 2");
    EXPECT_EQ(quoted->cellText(7, 6), "   ");
    // Numbers and dates come as the spreadsheet showed them; error values as their text.
    EXPECT_EQ(quoted->cellText(2, 4), "$1,234.50");
    EXPECT_EQ(quoted->cellText(4, 3), "03/12/24");
    EXPECT_EQ(quoted->cellText(2, 5), "#DIV/0!");
    EXPECT_EQ(quoted->cellText(0, 9), "4006381333931");
    EXPECT_EQ(quoted->cellText(0, 12), "") << "the empty row ends the sheet";
}

TEST(WorkbookReaders, RepeatedCellsAndRowsStandForEachOfTheirPlaces)
{
    const QStringList header { "Part Number", "Product Name", "Price", "Price Point 1", "Price 1" };
    const std::vector<QStringList> expected { header,
        { "A-1", "Same  price\teverywhere", "5", "5", "5" },
        { "R-2", "Row   of three", "7.25", "", "7" }, { "R-2", "Row   of three", "7.25", "", "7" },
        { "R-2", "Row   of three", "7.25", "", "7" }, { "Z-9", "Last", "1", "", "" } };
    for (const char *name : { "repeats.ods", "repeats-rows.ods", "repeats.xlsx", "repeats.xls" }) {
        const auto workbook = openData(name);
        ASSERT_TRUE(workbook);
        for (int row = 1; row <= int(expected.size()) + 1; ++row) {
            for (int column = 0; column < SheetCells::Columns; ++column) {
                const QStringList line =
                    row <= int(expected.size()) ? expected[std::size_t(row - 1)] : QStringList();
                EXPECT_EQ(workbook->cellText(column, row), column < line.size() ? line[column] : "")
                    << name << " column " << column << " row " << row;
            }
        }
    }
}

TEST(WorkbookReaders, DatesOfAWorkbookCountedFrom1904)
{
    for (const char *name : { "dates1904.xls", "dates1904.xlsx", "dates1904.ods" }) {
        const auto workbook = openData(name);
        ASSERT_TRUE(workbook);
        EXPECT_EQ(workbook->cellText(2, 2), "2024-03-12") << name;
        EXPECT_EQ(workbook->cellText(3, 2), "2024-03-12 14:30:00") << name;
        EXPECT_EQ(workbook->cellText(4, 2), "45363") << name << ": a number stays a number";
    }
}

TEST(WorkbookReaders, TheFormatIsKnownFromTheContentNotTheName)
{
    QTemporaryDir folder;
    ASSERT_TRUE(folder.isValid());
    const auto copyAs = [&folder](const char *from, const char *to) {
        QString path = folder.filePath(QString::fromLatin1(to));
        EXPECT_TRUE(QFile::copy(dataFile(from), path));
        return path;
    };
    const auto reference = openData("values.xlsx");
    for (const auto &[from, to] : std::vector<std::pair<const char *, const char *>> {
             { "values.xlsx", "values.xls" }, { "values.ods", "values.xlsx" },
             { "values.xls", "values.ods" }, { "values.xls", "values" } }) {
        const WorkbookOpenResult read = openWorkbook(copyAs(from, to));
        ASSERT_TRUE(read.workbook) << from << " as " << to;
        for (int column = 0; column < SheetCells::Columns; ++column)
            EXPECT_EQ(shown(*read.workbook, column, 5), shown(*reference, column, 5)) << to;
    }
    // Any text is tab-separated text, whatever it is called.
    for (const char *name : { "words.xls", "words.xlsx", "words.ods", "words.csv" }) {
        QFile file(folder.filePath(QString::fromLatin1(name)));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("just some words\r\nand\tmore\r\n");
        file.close();
        const WorkbookOpenResult read = openWorkbook(file.fileName());
        ASSERT_TRUE(read.workbook) << name;
        EXPECT_EQ(read.workbook->cellText(0, 1), "just some words") << name;
        EXPECT_EQ(read.workbook->cellText(1, 2), "more") << name;
    }
}

TEST(WorkbookReaders, FilesThatAreNoWorkbookOfAnyKindAreRefused)
{
    for (const char *name : { "notaworkbook.xls", "notaworkbook.xlsx", "notaworkbook.ods" }) {
        const WorkbookOpenResult read = openWorkbook(dataFile(name));
        EXPECT_FALSE(read.workbook) << name;
        EXPECT_EQ(read.errorNumber, WorkbookError::NotAWorkbook) << name;
        EXPECT_EQ(read.errorText, "This file is not an Excel 97 file.") << name;
    }
    const QByteArray binary("GIF89a\x01\x00\x01\x00\x00\xff\x00", 13);
    EXPECT_EQ(readWorkbook(binary).errorNumber, WorkbookError::NotAWorkbook);
    // Text with a zero byte is no text; a few other control characters in a note (the
    // program's own export writes a word processor's line break, VT, as it is) leave it text.
    const char withZero[] = "Part Number\tNotes\r\nBV-1\ta\0b\r\n";
    EXPECT_EQ(readWorkbook(QByteArrayView(withZero, sizeof withZero - 1)).errorNumber,
        WorkbookError::NotAWorkbook);
    const WorkbookOpenResult note =
        readWorkbook("Part Number\tNotes\r\nBV-1\tLead-free brass.\x0bRated 600 WOG.\x01\x1b\r\n");
    ASSERT_TRUE(note.workbook);
    EXPECT_EQ(note.workbook->textCell(1, 2), Cell("Lead-free brass.\x0bRated 600 WOG.\x01\x1b"));
    EXPECT_EQ(readWorkbook(QByteArray(200, '\x01')).errorNumber, WorkbookError::NotAWorkbook)
        << "a file of control characters is no text";
    // The export of 30 short notes, each with a word processor's line break: 60 VTs in under
    // 1,800 bytes.
    QByteArray exported("Part Number\tNotes\tIncludes\r\n");
    for (int row = 1; row <= 30; ++row)
        exported += "P-" + QByteArray::number(row)
            + "\tBrass\x0b"
              "DN15\tBrass\x0b"
              "DN15\r\n";
    const WorkbookOpenResult notes = readWorkbook(exported);
    ASSERT_TRUE(notes.workbook);
    EXPECT_EQ(notes.workbook->textCell(2, 31),
        Cell("Brass\x0b"
             "DN15"));
    // Random bytes without a zero byte are no text either.
    QByteArray noise(4096, Qt::Uninitialized);
    QRandomGenerator noiseSource(7);
    for (char &c : noise)
        c = char(noiseSource.bounded(1, 256));
    EXPECT_EQ(readWorkbook(noise).errorNumber, WorkbookError::NotAWorkbook);
    EXPECT_EQ(openWorkbook(dataFile("no-such-file.xls")).errorNumber, WorkbookError::FileNotFound);
    EXPECT_EQ(
        openWorkbook(QStringLiteral(TARNWICK_TEST_DATA)).errorNumber, WorkbookError::FileAccess)
        << "a folder";
}

TEST(WorkbookReaders, RandomDamageToTheWorkbooksNeverHurtsTheReaders)
{
    QRandomGenerator random(20);
    for (const char *name : { "values.xls", "values.xlsx", "values.ods", "values-quoted.txt",
             "repeats.xls", "dates1904.xlsx" }) {
        QFile file(dataFile(name));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << name;
        const QByteArray original = file.readAll();
        for (int round = 0; round < 150; ++round) {
            QByteArray bytes = original;
            for (int flips = random.bounded(1, 10); flips > 0; --flips)
                bytes[random.bounded(bytes.size())] = char(random.bounded(256));
            if (round % 4 == 0)
                bytes.truncate(random.bounded(bytes.size()));
            const SheetReadResult read = readSheet(bytes);
            if (!read.cells) {
                EXPECT_EQ(read.errorNumber, WorkbookError::NotAWorkbook) << name;
                continue;
            }
            // Whatever was read keeps the readers' bounds.
            EXPECT_LE(read.cells->rowCount(), SheetCells::MaxRows) << name;
            for (int row = 1; row <= std::min(read.cells->rowCount(), 50); ++row) {
                for (int column = 0; column < SheetCells::Columns; ++column) {
                    const std::string_view text = read.cells->textView(column, row);
                    EXPECT_LE(text.size(), SheetCells::MaxCellBytes) << name;
                    EXPECT_TRUE(celltext::isValidUtf8(text.data(), qsizetype(text.size()))) << name;
                }
            }
        }
    }
}
