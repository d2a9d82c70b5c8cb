// Shut-down of the real main window: the catalogue is written back byte for byte, the window
// settings are saved unless the window is minimised, pending edits are stored, and a failed
// save never loses the file on disk.
#include "shellfixture.h"

#include "shell/gridview.h"

#include "shell/mainwindowactions.h"

#include <QAction>
#include <QDir>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QSignalSpy>
#include <QTest>
#include <QWindow>

using namespace tarnwick;
using namespace tarnwick::test;

namespace {

class ShutdownTest : public ShellTest
{
};

TEST_F(ShutdownTest, ClosingWritesTheCatalogueInPartNumberOrder)
{
    folder.writeFile(QStringLiteral("twdata.dat"), sampleCatalogue());
    frmMain *window = startAndWait();
    EXPECT_TRUE(window->close());
    const QByteArray expected = catalogueLine({ "A-100", "Anchor", "12.5", "Two lines\r\nof notes",
                                    "Washer", "", "", "", "", "", "", "", "", "", "" })
        + catalogueLine({ "B-200", "Bolt", "2.5", "Zinc plated", "Nut", "1", "2.5", "100", "2" })
        + catalogueLine({ "C-300", "Clamp" });
    EXPECT_EQ(folder.readFile(QStringLiteral("twdata.dat")), expected);
    // Nothing was changed: the save puts the products in order but makes no backup of the
    // same catalogue (a backup there was would stay as it is).
    EXPECT_FALSE(folder.exists(QStringLiteral("twdata.bak")));
}

TEST_F(ShutdownTest, FirstRunCreatesTheCatalogueFileAndSavesTheSettings)
{
    frmMain *window = startAndWait();
    const QPoint pos = window->pos();
    const QSize size = window->size();
    const int column = window->ui().GrdMain->columnWidth(0);
    QSignalSpy unloaded(window, &frmMain::unloaded);
    EXPECT_TRUE(window->close());
    EXPECT_EQ(unloaded.count(), 1);
    EXPECT_TRUE(folder.exists(QStringLiteral("twdata.dat")));
    EXPECT_EQ(folder.readFile(QStringLiteral("twdata.dat")), QByteArray());
    // What the first run opened at is saved (15 twips to the pixel), not the old defaults.
    EXPECT_EQ(setting(QStringLiteral("MainLeft")), QString::number(pos.x() * 15));
    EXPECT_EQ(setting(QStringLiteral("MainTop")), QString::number(pos.y() * 15));
    EXPECT_EQ(setting(QStringLiteral("MainWidth")), QString::number(size.width() * 15));
    EXPECT_EQ(setting(QStringLiteral("MainHeight")), QString::number(size.height() * 15));
    EXPECT_EQ(setting(QStringLiteral("ScreenSplit")), QStringLiteral("50"));
    EXPECT_EQ(setting(QStringLiteral("Colwidth")), QString::number(column * 15));
    EXPECT_EQ(setting(QStringLiteral("UserPassword")), QStringLiteral("<unset>"));
}

TEST_F(ShutdownTest, ThePlacementSavedAtCloseIsRestoredAtTheNextStart)
{
    frmMain *window = startAndWait();
    window->move(60, 40); // on the 800 × 600 offscreen screen
    window->resize(720, 510);
    window->close();
    restart();
    frmMain *again = mainWindow.get();
    EXPECT_EQ(again->pos(), QPoint(60, 40));
    EXPECT_EQ(again->size(), QSize(720, 510));
}

TEST_F(ShutdownTest, ClosingWhileMinimisedWritesTheCatalogueButKeepsTheSettings)
{
    folder.writeFile(QStringLiteral("twdata.dat"), sampleCatalogue());
    saveSetting(QStringLiteral("MainLeft"), QStringLiteral("2000"));
    frmMain *window = startAndWait();
    window->showMinimized();
    ASSERT_TRUE(window->isMinimized());
    const int savesBefore = fakes->settings.saveCount();
    window->close();
    EXPECT_EQ(fakes->settings.saveCount(), savesBefore);
    EXPECT_EQ(setting(QStringLiteral("MainLeft")), QStringLiteral("2000"));
    EXPECT_EQ(setting(QStringLiteral("MainTop")), QStringLiteral("<unset>"));
    EXPECT_NE(folder.readFile(QStringLiteral("twdata.dat")), sampleCatalogue())
        << "the catalogue is written (sorted) even when minimised";
    EXPECT_TRUE(folder.readFile(QStringLiteral("twdata.dat")).startsWith("A-100"));
}

TEST_F(ShutdownTest, SettingsThatCannotBeWrittenAreReportedAndTheWindowClosesAllTheSame)
{
    folder.writeFile(QStringLiteral("twdata.dat"), sampleCatalogue());
    saveSetting(QStringLiteral("MainLeft"), QStringLiteral("2000"));
    frmMain *window = startAndWait();
    window->move(70, 30);
    fakes->settings.failWrites(QStringLiteral("the disk is full"));
    EXPECT_TRUE(window->close());
    EXPECT_FALSE(window->isVisible());
    ASSERT_FALSE(fakes->prompts.shown().empty());
    const ShownPrompt &box = fakes->prompts.shown().back();
    EXPECT_EQ(box.text,
        QStringLiteral("The window's position and size could not be saved: the disk is full. "
                       "The window will open as before at the next start."));
    EXPECT_EQ(box.title, QStringLiteral("Tarnwick"));
    EXPECT_EQ(box.style, MsgStyle::OkOnly | MsgStyle::Exclamation);
    EXPECT_EQ(setting(QStringLiteral("MainLeft")), QStringLiteral("2000"));
    EXPECT_TRUE(folder.readFile(QStringLiteral("twdata.dat")).startsWith("A-100"))
        << "the catalogue is written all the same";
}

TEST_F(ShutdownTest, ExitFromTheFileMenuRunsTheShutDown)
{
    frmMain *window = startAndWait();
    window->actions().action(QStringLiteral("mnuFileExit"))->trigger();
    EXPECT_FALSE(window->isVisible());
    EXPECT_TRUE(folder.exists(QStringLiteral("twdata.dat")));
}

TEST_F(ShutdownTest, APendingEditIsStoredBeforeTheCatalogueIsWritten)
{
    folder.writeFile(QStringLiteral("twdata.dat"), sampleCatalogue());
    frmMain *window = startAndWait();
    window->actions().button(QStringLiteral("Edit"))->setChecked(true);
    window->ui().TxtPrice->setText(QStringLiteral("14"));
    window->ui().Txtnotes->setPlainText(QStringLiteral("New\nnotes\x7f"));
    window->close();
    const QByteArray written = folder.readFile(QStringLiteral("twdata.dat"));
    EXPECT_TRUE(
        written.startsWith(catalogueLine({ "A-100", "Anchor", "14", "New\r\nnotes", "Washer" })))
        << written.left(120).toStdString();
}

TEST_F(ShutdownTest, AFailedSaveAsksAndKeepsTheWindowOpenOnNo)
{
    // The catalogue lives in a folder that disappears while the program runs.
    QDir(folder.path()).mkdir(QStringLiteral("app"));
    folder.writeFile(QStringLiteral("app/twdata.dat"), sampleCatalogue());
    const QString appFolder = folder.filePath(QStringLiteral("app"));
    startIn(AppEnvironment(appFolder, QString()));
    ASSERT_TRUE(QTest::qWaitFor([this] { return started; }, 5000));
    ASSERT_TRUE(QDir(appFolder).removeRecursively());
    // A change the close would lose.
    mainWindow->actions().action(QStringLiteral("mnuEditProd"))->trigger();
    editGridCell(mainWindow->ui().GrdMain, 0, 1, QStringLiteral("Anchor, changed"));

    fakes->prompts.answerMessage(MsgResult::No);
    // A log-out's close arriving while the question is up waits for its answer: the window
    // stays on the screen (its platform window is not taken away).
    fakes->prompts.whileShown([&] { mainWindow->requestClose(); });
    EXPECT_FALSE(mainWindow->close());
    fakes->prompts.whileShown({});
    EXPECT_TRUE(mainWindow->isVisible());
    ASSERT_NE(mainWindow->windowHandle(), nullptr);
    EXPECT_NE(mainWindow->windowHandle()->handle(), nullptr);
    ASSERT_EQ(fakes->prompts.shown().size(), 1u);
    const ShownPrompt &box = fakes->prompts.shown()[0];
    EXPECT_TRUE(box.text.startsWith(QStringLiteral("The catalogue could not be saved to")));
    EXPECT_TRUE(
        box.text.endsWith(QStringLiteral("Close Tarnwick anyway? The changes made to the "
                                         "catalogue since Tarnwick started would be lost.")))
        << "the recovery file cannot take them either";
    EXPECT_EQ(box.style, MsgStyle::YesNo | MsgStyle::Exclamation | MsgStyle::DefaultButton2);

    fakes->prompts.answerMessage(MsgResult::Yes);
    EXPECT_TRUE(mainWindow->close());
}

// The start keeps the file and says where; the close then saves without a box of its own.
TEST_F(ShutdownTest, AnUnreadableCatalogueIsKeptAtTheStartAndTheCloseAsksNothing)
{
    const QByteArray broken = catalogueLine({ "P1", "One" }) + "P2\x7f\x7f\x7fhalf a line";
    folder.writeFile(QStringLiteral("twdata.dat"), broken);
    frmMain *window = startAndWait();
    QStringList copies = folder.fileNames().filter(QStringLiteral("twdata-unread-"));
    ASSERT_EQ(copies.size(), 1) << folder.fileNames().join(QLatin1Char(' ')).toStdString();
    EXPECT_EQ(folder.readFile(copies.first()), broken);
    ASSERT_EQ(fakes->prompts.shown().size(), 1u);
    EXPECT_TRUE(fakes->prompts.shown()[0].text.contains(copies.first()));

    fakes->prompts.clear();
    EXPECT_TRUE(window->close());
    EXPECT_TRUE(fakes->prompts.shown().empty());
    EXPECT_EQ(folder.fileNames().filter(QStringLiteral("twdata-unread-")), copies);
    EXPECT_EQ(folder.readFile(copies.first()), broken);
    EXPECT_TRUE(folder.exists(QStringLiteral("twdata.dat")));
}

} // namespace
