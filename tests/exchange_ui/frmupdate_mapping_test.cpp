// The mapping helpers of the "Update" window: the sample of the sheet's first rows, "Match
// Headers" and "Last Mapping" (kept in the settings from one window to the next).
#include "frmupdatefixture.h"

#include "catalogue/productrecord.h"
#include "exchange/columnmapping.h"
#include "exchange/mappingmemory.h"
#include "exchange/spreadsheetexport.h"

#include <QCheckBox>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QTest>

using namespace tarnwick;
using namespace tarnwick::test;
namespace P = ProductRecord;
namespace CM = ColumnMapping;

namespace {

class FrmUpdateMappingTest : public FrmUpdateTest
{
protected:
    QPushButton *button(const char *name) const
    {
        return window->findChild<QPushButton *>(QString::fromLatin1(name));
    }

    std::array<int, CM::ListCount> positions() const
    {
        std::array<int, CM::ListCount> selected {};
        for (int index = 0; index < CM::ListCount; ++index)
            selected[std::size_t(index)] = list(index)->currentIndex();
        return selected;
    }

    /// The export of a catalogue of two products, written as the program writes it.
    QString writeExport()
    {
        Table exported(2, P::FieldCount);
        for (int row = 1; row <= 2; ++row) {
            for (int field = 1; field <= P::FieldCount; ++field)
                exported.put(row, field, QStringLiteral("%1-%2").arg(row).arg(field));
            exported.put(row, P::Price, float(row));
        }
        folder.writeFile(
            QStringLiteral("export.txt"), SpreadsheetExport::exportBytes(exported, locale));
        return folder.filePath(QStringLiteral("export.txt"));
    }
};

QStringList gridRow(const QTableWidget *grid, int row)
{
    QStringList cells;
    for (int column = 0; column < grid->columnCount(); ++column)
        cells << grid->item(row, column)->text();
    return cells;
}

} // namespace

TEST_F(FrmUpdateMappingTest, TheHelpersCarryTheirNamesAndKeys)
{
    FrmUpdate &form = open(workbook("sample.xls"));
    EXPECT_EQ(button("CmdMatch")->text(), "&Match Headers");
    EXPECT_EQ(button("CmdLast")->text(), "Las&t Mapping");
    for (const char *name : { "CmdMatch", "CmdLast", "GrdSample", "LblSample" })
        EXPECT_EQ(form.findChild<QWidget *>(QString::fromLatin1(name))->accessibleDescription(),
            QString::fromLatin1(name));
    auto *sample = form.findChild<QTableWidget *>(QStringLiteral("GrdSample"));
    EXPECT_EQ(form.findChild<QLabel *>(QStringLiteral("LblSample"))->buddy(), sample);
    QTest::keyClick(&form, Qt::Key_S, Qt::AltModifier);
    EXPECT_EQ(QApplication::focusWidget(), sample);
    QTest::keyClick(&form, Qt::Key_M, Qt::AltModifier);
    EXPECT_TRUE(QTest::qWaitFor([this] { return list(0)->currentIndex() == 0; }))
        << "Alt+M matches the headers";
}

TEST_F(FrmUpdateMappingTest, TheSampleShowsTheFirstFiveRowsUnderLettersAndHeaders)
{
    FrmUpdate &form = open(workbook("sample.xls"));
    auto *sample = form.findChild<QTableWidget *>(QStringLiteral("GrdSample"));
    ASSERT_EQ(sample->columnCount(), 7);
    EXPECT_EQ(sample->horizontalHeaderItem(0)->text(), "A\nPart Number");
    EXPECT_EQ(sample->horizontalHeaderItem(6)->text(), "G\nPrice 1");
    ASSERT_EQ(sample->rowCount(), 5);
    EXPECT_EQ(gridRow(sample, 0),
        (QStringList { "AB-100", "Widget", "12.5", "Red only", "Cable", "10", "11.5" }));
    EXPECT_EQ(gridRow(sample, 4)[0], "OLD-1");
    EXPECT_EQ(sample->verticalHeaderItem(0)->text(), "2");
    EXPECT_EQ(sample->editTriggers(), QAbstractItemView::NoEditTriggers);
    EXPECT_NE(sample->focusPolicy(), Qt::NoFocus);

    auto *ignore = form.findChild<QCheckBox *>(QStringLiteral("ChkIgnore"));
    QTest::mouseClick(ignore, Qt::LeftButton, {}, QPoint(4, ignore->height() / 2));
    EXPECT_EQ(gridRow(sample, 0)[0], "Part Number") << "row 1 is a row of data then";
    EXPECT_EQ(sample->verticalHeaderItem(0)->text(), "1");
}

// A column of long names is no wider than about forty letters, and every column's letter and
// header stand at its left edge, where they are in view.
TEST_F(FrmUpdateMappingTest, ALongSampleColumnKeepsItsHeaderInView)
{
    const QByteArray name = QByteArray("Brass ball valve, full bore ").repeated(12);
    folder.writeFile(QStringLiteral("long.txt"),
        "Part Number\tProduct Name\tPrice\r\nA-1\t" + name + "\t12.5\r\n");
    FrmUpdate &form = open(folder.filePath(QStringLiteral("long.txt")));
    auto *sample = form.findChild<QTableWidget *>(QStringLiteral("GrdSample"));
    ASSERT_EQ(sample->columnCount(), 3);
    ASSERT_EQ(sample->item(0, 1)->text(), QString::fromLatin1(name));
    const int letters = sample->fontMetrics().averageCharWidth() * 40;
    EXPECT_LE(sample->columnWidth(1), letters);
    EXPECT_GE(sample->columnWidth(1), letters / 2) << "a long name keeps a good width";
    EXPECT_TRUE(sample->horizontalHeader()->defaultAlignment() & Qt::AlignLeft);
}

TEST_F(FrmUpdateMappingTest, MatchHeadersSelectsTheColumnOfEveryFieldNamedInTheHeaderRow)
{
    open(workbook("sample.xls"));
    std::array<int, CM::ListCount> expected;
    expected.fill(0); // "Skip Field"
    expected[0] = 0;
    expected[1] = 1;
    expected[3] = 3; // Price in column C
    expected[7] = 4;
    expected[6] = 5;
    expected[2] = 6;
    expected[4] = 7;
    QTest::mouseClick(button("CmdMatch"), Qt::LeftButton);
    EXPECT_EQ(positions(), expected);
}

TEST_F(FrmUpdateMappingTest, TheProgramsOwnExportMapsCompletelyWithOneClick)
{
    open(writeExport());
    QTest::mouseClick(button("CmdMatch"), Qt::LeftButton);
    for (int index = 0; index < CM::ListCount; ++index) {
        const int field = CM::catalogueField(index);
        EXPECT_EQ(list(index)->currentText(),
            QStringLiteral("Col %1-  %2").arg(field - 1).arg(P::fieldCaption(field)))
            << index;
    }
    clickOk();
    ASSERT_TRUE(waitUntilClosed());
    EXPECT_EQ(
        fakes.prompts.texts(), QStringList { "2 changes have been made to the knowledge base." });
    const int row = catalogue.find(P::PartNumber, "1-1");
    ASSERT_GT(row, 0);
    for (int field = 2; field <= P::FieldCount; ++field) {
        if (field != P::Price) {
            EXPECT_EQ(catalogue.get(row, field), Cell(QStringLiteral("1-%1").arg(field)));
        }
    }
    EXPECT_EQ(catalogue.get(row, P::Price), Cell(1.0f));
}

TEST_F(FrmUpdateMappingTest, LastMappingRestoresTheMappingUsedForTheSameHeaderRow)
{
    open(workbook("sample.xls"));
    EXPECT_FALSE(button("CmdLast")->isEnabled()) << "nothing kept yet";
    choose(0, 0);
    choose(1, 1);
    choose(3, 3);
    choose(14, 7);
    const auto used = positions();
    clickOk();
    ASSERT_TRUE(waitUntilClosed());
    const QStringList headers { "Part Number", "Product Name", "Price", "Notes", "Includes",
        "Price Point 1", "Price 1" };
    EXPECT_EQ(fakes.settings.get("Tarnwick", "ImportMappings", MappingMemory::settingsKey(headers)),
        CM::columnLetters(used));

    // Another window on a sheet with the same header row, with the same settings.
    open(workbook("sample.ods"));
    EXPECT_NE(positions(), used);
    ASSERT_TRUE(button("CmdLast")->isEnabled());
    QTest::mouseClick(button("CmdLast"), Qt::LeftButton);
    EXPECT_EQ(positions(), used);

    open(workbook("gap.xls"));
    EXPECT_FALSE(button("CmdLast")->isEnabled()) << "another header row";
}

TEST_F(FrmUpdateMappingTest, TheHelpersAreLockedWhileTheImportRuns)
{
    open(workbook("sample.xls"));
    mapSample();
    clickOk();
    EXPECT_FALSE(button("CmdMatch")->isEnabled());
    EXPECT_FALSE(button("CmdLast")->isEnabled());
    ASSERT_TRUE(waitUntilClosed());
}

TEST_F(FrmUpdateMappingTest, AFileThatIsNoWorkbookOffersNoHelpers)
{
    open(workbook("notaworkbook.xls"));
    EXPECT_FALSE(button("CmdMatch")->isEnabled());
    EXPECT_FALSE(button("CmdLast")->isEnabled());
    EXPECT_EQ(window->findChild<QTableWidget *>(QStringLiteral("GrdSample"))->rowCount(), 0);
}
