// The window shown while a workbook is read: it appears for a read that takes a while, counts
// the rows, and Cancel (or Escape) stops the reader at once.
#include "frmupdatefixture.h"

#include "exchange/ui/workbookreaddialog.h"

#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

using namespace tarnwick;
using namespace tarnwick::test;
using Outcome = WorkbookReaderProcess::Outcome;

namespace {

/// A reader that writes a row every few milliseconds and never ends.
WorkbookReaderOptions slowReader()
{
    WorkbookReaderOptions options = testReader();
    options.arguments = QStringList { "--fault", "slow" } + options.arguments;
    return options;
}

Outcome outcomeOf(const QSignalSpy &done)
{
    return done.first().first().value<Outcome>();
}

} // namespace

TEST(WorkbookReadDialog, ShowsTheFileAndTheRowsReadAndCancelStopsTheRead)
{
    WorkbookReadDialog dialog(slowReader(), workbook("sample.xlsx"));
    QSignalSpy done(&dialog, &WorkbookReadDialog::readOver);
    dialog.start();
    ASSERT_TRUE(QTest::qWaitFor([&] { return dialog.isVisible(); }, 20000));
    EXPECT_EQ(dialog.windowTitle(), "Tarnwick");
    EXPECT_EQ(dialog.windowModality(), Qt::ApplicationModal);
    EXPECT_EQ(dialog.findChild<QLabel *>("LblReadFile")->text(), "Reading sample.xlsx...");
    EXPECT_EQ(dialog.findChild<QProgressBar *>("PrgRead")->maximum(), 0) << "a busy bar";
    QLabel *rows = dialog.findChild<QLabel *>("LblReadRows");
    ASSERT_TRUE(QTest::qWaitFor([&] { return rows->text() != "0 rows read"; }, 20000));
    EXPECT_TRUE(rows->text().endsWith(" rows read"));
    QPushButton *cancel = dialog.findChild<QPushButton *>("CmdCancelRead");
    ASSERT_EQ(cancel, dialog.cancelButton());
    EXPECT_EQ(cancel->text(), "Cancel");
    EXPECT_EQ(cancel->accessibleDescription(), "CmdCancelRead");
    QTest::mouseClick(cancel, Qt::LeftButton);
    ASSERT_EQ(done.count(), 1) << "Cancel ends the read at once";
    EXPECT_EQ(outcomeOf(done), Outcome::Cancelled);
    EXPECT_FALSE(dialog.reader().isRunning());
    EXPECT_FALSE(dialog.isVisible());
}

TEST(WorkbookReadDialog, EscapeCancelsTheRead)
{
    WorkbookReadDialog dialog(slowReader(), workbook("sample.xlsx"));
    QSignalSpy done(&dialog, &WorkbookReadDialog::readOver);
    dialog.start();
    ASSERT_TRUE(QTest::qWaitFor([&] { return dialog.isVisible(); }, 20000));
    QTest::keyClick(&dialog, Qt::Key_Escape);
    ASSERT_EQ(done.count(), 1);
    EXPECT_EQ(outcomeOf(done), Outcome::Cancelled);
    EXPECT_FALSE(dialog.reader().isRunning());
}

TEST(WorkbookReadDialog, AReadWorkbookIsHandedOver)
{
    WorkbookReadDialog dialog(testReader(), workbook("sample.ods"));
    QSignalSpy done(&dialog, &WorkbookReadDialog::readOver);
    dialog.start();
    ASSERT_TRUE(done.wait(20000));
    EXPECT_EQ(outcomeOf(done), Outcome::Read);
    EXPECT_FALSE(dialog.isVisible());
    const WorkbookOpenResult result = dialog.reader().takeResult();
    ASSERT_NE(result.workbook, nullptr);
    EXPECT_EQ(result.workbook->cellText(0, 1), "Part Number");
}
