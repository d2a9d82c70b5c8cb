// Saving while the program runs and the recovery file: File → Save, Ctrl+S and the toolbar's
// "Save" save at once, Save As writes a copy, the title marks unsaved changes, and the changes
// reach the recovery file.
#include "shellfixture.h"

#include "shell/cataloguelifecycle.h"
#include "shell/gridview.h"
#include "shell/mainwindowactions.h"

#include <QAccessible>
#include <QAction>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QSignalSpy>
#include <QStatusBar>
#include <QTest>

using namespace tarnwick;
using namespace tarnwick::test;

namespace {

class SavingWindowTest : public SampleWindowTest
{
protected:
    /// Renames the first product through the grid in edit mode, as typing would.
    void renameFirstProduct(const QString &name)
    {
        if (!button("Edit")->isChecked())
            button("Edit")->trigger();
        goToRow(0);
        ASSERT_TRUE(grid->model()->setData(grid->model()->index(0, 1), name));
    }
    bool waitForModified(bool modified)
    {
        return QTest::qWaitFor([&] { return window->isWindowModified() == modified; }, 5000);
    }
};

TEST_F(SavingWindowTest, APartNumberAnotherProductHasIsTakenAndSaid)
{
    button("Edit")->trigger();
    goToRow(2); // C-300
    ASSERT_TRUE(grid->model()->setData(grid->model()->index(2, 0), QStringLiteral("A-100")));
    EXPECT_EQ(catalogue().get(3, 1).asText(), QStringLiteral("A-100")) << "taken as typed";
    EXPECT_EQ(window->ui().sbPanel1->text(),
        QStringLiteral("Part number A-100 is already used by \"Anchor\". Quotes and imports "
                       "take the first product with a part number: give this one another."));
    // The words are about this product as it was: they go when the step is undone, and when
    // another product shows.
    action("mnuEditUndo")->trigger();
    EXPECT_EQ(window->ui().sbPanel1->text(), QString());
    ASSERT_TRUE(grid->model()->setData(grid->model()->index(2, 0), QStringLiteral("A-100")));
    ASSERT_FALSE(window->ui().sbPanel1->text().isEmpty());
    goToRow(1);
    EXPECT_EQ(window->ui().sbPanel1->text(), QString());
    goToRow(2);
    ASSERT_TRUE(grid->model()->setData(grid->model()->index(2, 0), QStringLiteral("C-301")));
    EXPECT_EQ(window->ui().sbPanel1->text(), QString());
}

TEST_F(SavingWindowTest, TheTitleMarksUnsavedChangesTheDesktopWay)
{
    EXPECT_EQ(window->windowTitle(), QStringLiteral("Tarnwick[*]"));
    EXPECT_FALSE(window->isWindowModified());

    renameFirstProduct(QStringLiteral("Anchor, steel"));

    EXPECT_TRUE(waitForModified(true));
}

TEST_F(SavingWindowTest, TheMarkFollowsTheKeysOfASideBoxAtOnce)
{
    // The recovery's own look comes only every hour here: the keys alone must set the mark.
    window->catalogue().recovery().setIntervals(3600000, 3600000);
    button("Edit")->trigger();
    goToRow(1);
    window->ui().TxtPrice->setFocus();
    QTest::keyClicks(window->ui().TxtPrice, QStringLiteral("9"));
    QCoreApplication::processEvents();
    EXPECT_TRUE(window->isWindowModified());
    QTest::keyClick(window->ui().TxtPrice, Qt::Key_Backspace);
    QCoreApplication::processEvents();
    EXPECT_FALSE(window->isWindowModified()) << "typed and taken back: nothing changed";
    window->ui().Txtnotes->setFocus();
    QTest::keyClicks(window->ui().Txtnotes, QStringLiteral("x"));
    QCoreApplication::processEvents();
    EXPECT_TRUE(window->isWindowModified());
}

TEST_F(SavingWindowTest, MovingThroughProductsInEditModeChangesNothing)
{
    const quint64 before = catalogue().generation();
    button("Edit")->trigger();
    for (int row : { 0, 1, 2, 0 })
        goToRow(row);
    button("Edit")->trigger();

    EXPECT_EQ(catalogue().generation(), before) << "no cell was written";
    EXPECT_TRUE(catalogue().get(1, 3).isNumber()) << "the list price keeps its number";
    EXPECT_EQ(catalogue().get(1, 4).asText(), QStringLiteral("Two lines\r\nof notes"));
}

TEST_F(SavingWindowTest, TypedNotesKeepTheirLineBreaksAsTheCatalogueFileHoldsThem)
{
    button("Edit")->trigger();
    goToRow(2);
    window->ui().Txtnotes->setPlainText(QStringLiteral("First line\nsecond line"));
    goToRow(0);
    EXPECT_EQ(catalogue().get(3, 4).asText(), QStringLiteral("First line\r\nsecond line"));
}

TEST_F(SavingWindowTest, FileSaveSavesAtOnceKeepingTheBackup)
{
    renameFirstProduct(QStringLiteral("Anchor, steel"));
    ASSERT_TRUE(waitForModified(true));

    action("mnuFileSave")->trigger();

    const QByteArray saved = folder.readFile(QStringLiteral("twdata.dat"));
    EXPECT_TRUE(saved.startsWith(catalogueLine({ "A-100", "Anchor, steel" }).left(22)));
    EXPECT_TRUE(saved.contains("Anchor, steel"));
    EXPECT_EQ(folder.readFile(QStringLiteral("twdata.bak")), sampleCatalogue());
    EXPECT_FALSE(window->isWindowModified());
    EXPECT_FALSE(folder.exists(RecoveryFile));
    EXPECT_TRUE(fakes->prompts.shown().empty());
    EXPECT_EQ(window->ui().sbPanel1->text(), QStringLiteral("Catalogue saved"));
    // A later change makes the words untrue: they go with it.
    renameFirstProduct(QStringLiteral("Anchor, brass"));
    ASSERT_TRUE(waitForModified(true));
    EXPECT_NE(window->ui().sbPanel1->text(), QStringLiteral("Catalogue saved"));
}

TEST_F(SavingWindowTest, CtrlSAndTheToolbarButtonSaveToo)
{
    EXPECT_EQ(action("mnuFileSave")->shortcut(), QKeySequence(QKeySequence::Save));
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window));
    renameFirstProduct(QStringLiteral("Anchor by keys"));
    QTest::keyClick(grid, Qt::Key_S, Qt::ControlModifier);
    EXPECT_TRUE(folder.readFile(QStringLiteral("twdata.dat")).contains("Anchor by keys"));
    EXPECT_FALSE(window->isWindowModified());

    renameFirstProduct(QStringLiteral("Anchor by button"));
    button("Save")->trigger();
    EXPECT_TRUE(folder.readFile(QStringLiteral("twdata.dat")).contains("Anchor by button"));
}

TEST_F(SavingWindowTest, SaveStoresWhatIsTypedIntoTheSideBoxes)
{
    button("Edit")->trigger();
    goToRow(2); // C-300
    window->ui().Txtnotes->setPlainText(QStringLiteral("Typed, not yet stored"));

    action("mnuFileSave")->trigger();

    EXPECT_TRUE(folder.readFile(QStringLiteral("twdata.dat")).contains("Typed, not yet stored"));
}

TEST_F(SavingWindowTest, SaveAsWritesACopyAndKeepsUsingTheCatalogueFile)
{
    renameFirstProduct(QStringLiteral("Anchor in the copy"));
    ASSERT_TRUE(waitForModified(true));
    const QString copy = folder.filePath(QStringLiteral("backup/monday.dat"));
    ASSERT_TRUE(QDir().mkpath(QFileInfo(copy).absolutePath()));
    fakes->fileDialogs.answer(FileDialogResult { copy, 1 });

    action("mnuFileSaveAs")->trigger();

    ASSERT_EQ(fakes->fileDialogs.requests().size(), 1u);
    EXPECT_EQ(fakes->fileDialogs.requests().front().initialFolder, folder.path());
    EXPECT_TRUE(
        folder.readFile(QStringLiteral("backup/monday.dat")).contains("Anchor in the copy"));
    EXPECT_EQ(folder.readFile(QStringLiteral("twdata.dat")), sampleCatalogue());
    EXPECT_FALSE(folder.exists(QStringLiteral("twdata.bak")));
    EXPECT_TRUE(window->isWindowModified()) << "the catalogue file itself is not saved yet";

    fakes->fileDialogs.answer(std::nullopt); // Cancel writes nothing
    action("mnuFileSaveAs")->trigger();
    EXPECT_TRUE(fakes->prompts.shown().empty());
}

// A catalogue file gone from its folder with its backup (a drive taken away) is not made anew
// there by a save, and the changes are not kept there either; Save As onto its own name is the
// user's choice to make it anew.
TEST_F(SavingWindowTest, ACatalogueFileGoneFromItsFolderIsWrittenOnlyBySaveAsOntoItsName)
{
    ASSERT_TRUE(QFile::remove(folder.filePath(QStringLiteral("twdata.dat"))));
    renameFirstProduct(QStringLiteral("Anchor after the drive went"));
    ASSERT_TRUE(waitForModified(true));
    fakes->prompts.clear();
    action("mnuFileSave")->trigger();
    ASSERT_EQ(fakes->prompts.shown().size(), 1U);
    EXPECT_TRUE(fakes->prompts.shown()[0].text.contains(
        QStringLiteral("the catalogue file is no longer in the folder")))
        << fakes->prompts.shown()[0].text.toStdString();
    window->catalogue().recovery().writeNow();
    EXPECT_FALSE(folder.exists(QStringLiteral("twdata.dat")));
    EXPECT_FALSE(folder.exists(RecoveryFile)) << "the changes are not kept in the folder left";
    EXPECT_TRUE(window->isWindowModified());

    fakes->fileDialogs.answer(
        FileDialogResult { folder.filePath(QStringLiteral("twdata.dat")), 1 });
    action("mnuFileSaveAs")->trigger();
    EXPECT_TRUE(
        folder.readFile(QStringLiteral("twdata.dat")).contains("Anchor after the drive went"));
    EXPECT_FALSE(window->isWindowModified());
}

TEST_F(SavingWindowTest, SaveAsOntoALinkToTheCatalogueFileSavesItWithItsBackup)
{
    renameFirstProduct(QStringLiteral("Anchor saved through a link"));
    ASSERT_TRUE(waitForModified(true));
    const QString link = folder.filePath(QStringLiteral("catalogue-link.dat"));
    ASSERT_TRUE(QFile::link(folder.filePath(QStringLiteral("twdata.dat")), link));
    fakes->fileDialogs.answer(FileDialogResult { link, 1 });

    action("mnuFileSaveAs")->trigger();

    EXPECT_TRUE(
        folder.readFile(QStringLiteral("twdata.dat")).contains("Anchor saved through a link"));
    EXPECT_EQ(folder.readFile(QStringLiteral("twdata.bak")), sampleCatalogue())
        << "saved as the catalogue is, keeping the file before as the backup";
    EXPECT_FALSE(window->isWindowModified());
    EXPECT_TRUE(fakes->prompts.shown().empty());
}

TEST_F(SavingWindowTest, ACopyIsNotSavedUnderTheNameOfTheBackupOrTheRecoveryFile)
{
    folder.writeFile(QStringLiteral("twdata.bak"), "the backup of the last save");
    renameFirstProduct(QStringLiteral("Anchor for a copy"));
    ASSERT_TRUE(waitForModified(true));
    for (const QString &name :
        { QStringLiteral("twdata.bak"), RecoveryFile, QStringLiteral("quotes.db"),
            QStringLiteral("quotes.bak"), QStringLiteral("QuoteNote.txt") }) {
        window->catalogue().recovery().writeNow();
        const QByteArray before = folder.readFile(name);
        fakes->prompts.clear();
        fakes->fileDialogs.answer(FileDialogResult { folder.filePath(name), 1 });

        action("mnuFileSaveAs")->trigger();

        ASSERT_EQ(fakes->prompts.shown().size(), 1u) << name.toStdString();
        EXPECT_EQ(
            fakes->prompts.shown().front().title, QStringLiteral("Save a Copy of the Catalogue"));
        EXPECT_EQ(fakes->prompts.shown().front().text,
            name
                + QStringLiteral(" is a file Tarnwick keeps for itself and replaces on its own. "
                                 "Choose another name for the copy."));
        EXPECT_EQ(folder.readFile(name), before) << name.toStdString();
        EXPECT_NE(window->ui().sbPanel1->text().left(10), QStringLiteral("Copy saved"));
    }
}

TEST_F(SavingWindowTest, ACopyNamedWithoutExtensionIsACatalogueFile)
{
    fakes->fileDialogs.answer(FileDialogResult { folder.filePath(QStringLiteral("tuesday")), 1 });
    action("mnuFileSaveAs")->trigger();
    ASSERT_EQ(fakes->fileDialogs.requests().size(), 1u);
    EXPECT_EQ(fakes->fileDialogs.requests().front().defaultSuffix, QStringLiteral("dat"));
    EXPECT_TRUE(folder.readFile(QStringLiteral("tuesday.dat")).contains("Bolt"));
    EXPECT_FALSE(folder.exists(QStringLiteral("tuesday")));
    EXPECT_EQ(window->ui().sbPanel1->text(),
        QStringLiteral("Copy saved as %1")
            .arg(QDir::toNativeSeparators(folder.filePath(QStringLiteral("tuesday.dat")))));
}

TEST_F(SavingWindowTest, CtrlShiftSOpensSaveAsOnEveryDesktop)
{
    EXPECT_EQ(action("mnuFileSaveAs")->shortcut(), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_S))
        << "shown in the menu whatever the desktop's own key bindings";
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window));
    fakes->fileDialogs.answer(std::nullopt);
    QTest::keyClick(grid, Qt::Key_S, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(fakes->fileDialogs.requests().size(), 1u);
}

TEST_F(SavingWindowTest, AFailedSaveIsReportedAndKeepsTheChangesMarked)
{
    renameFirstProduct(QStringLiteral("Anchor, unsaved"));
    // The catalogue's name taken by a folder: the new file cannot take its place.
    ASSERT_TRUE(QFile::remove(folder.filePath(QStringLiteral("twdata.dat"))));
    ASSERT_TRUE(QDir(folder.path()).mkdir(QStringLiteral("twdata.dat")));

    action("mnuFileSave")->trigger();

    ASSERT_EQ(fakes->prompts.shown().size(), 1u);
    EXPECT_EQ(fakes->prompts.shown().front().title, QStringLiteral("Catalogue"));
    EXPECT_TRUE(fakes->prompts.shown().front().text.startsWith(
        QStringLiteral("The catalogue could not be saved to")));
    EXPECT_TRUE(waitForModified(true));
}

TEST_F(SavingWindowTest, ChangesReachTheRecoveryFileAndACloseRemovesIt)
{
    renameFirstProduct(QStringLiteral("Anchor, kept safe"));

    ASSERT_TRUE(QTest::qWaitFor([&] { return folder.exists(RecoveryFile); }, 5000));
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return folder.readFile(RecoveryFile).contains("Anchor, kept safe"); }, 5000));
    EXPECT_EQ(folder.readFile(QStringLiteral("twdata.dat")), sampleCatalogue());

    EXPECT_TRUE(window->close());
    EXPECT_FALSE(folder.exists(RecoveryFile));
    EXPECT_TRUE(folder.readFile(QStringLiteral("twdata.dat")).contains("Anchor, kept safe"));
}

/// The names assistive tools read for the status bar's text panels, first to last.
QStringList statusPanelNames(QStatusBar *statusBar)
{
    QStringList names;
    QAccessibleInterface *bar = QAccessible::queryAccessibleInterface(statusBar);
    for (int i = 0; bar != nullptr && i < bar->childCount(); ++i) {
        if (bar->child(i)->role() == QAccessible::StaticText)
            names << bar->child(i)->text(QAccessible::Name);
    }
    return names;
}

TEST_F(SavingWindowTest, TheStatusBarTellsWhenChangesAreSafeAgain)
{
    EXPECT_FALSE(statusPanelNames(window->statusBar()).contains(QStringLiteral("Warning")))
        << "a hidden warning is not read out with the status text";
    // A folder in the recovery file's place: the copy cannot be written.
    ASSERT_TRUE(QDir(folder.path()).mkdir(RecoveryFile));
    renameFirstProduct(QStringLiteral("Anchor, unsafe"));
    ASSERT_TRUE(QTest::qWaitFor(
        [&] {
            return window->ui().sbPanel1->text().startsWith(
                QStringLiteral("Unsaved changes cannot be kept safe: "));
        },
        5000));
    // Other news takes the first panel; the warning stays in view at the bar's end.
    window->ui().sbPanel1->setText(QStringLiteral("Right click on products for options."));
    EXPECT_TRUE(window->ui().sbUnsafe->isVisible());
    EXPECT_TRUE(window->ui().sbUnsafe->toolTip().startsWith(
        QStringLiteral("Unsaved changes cannot be kept safe: ")));
    EXPECT_EQ(statusPanelNames(window->statusBar()),
        QStringList(
            { QStringLiteral("Right click on products for options."), QStringLiteral("Warning") }));

    ASSERT_TRUE(QDir(folder.filePath(RecoveryFile)).removeRecursively());
    ASSERT_TRUE(QTest::qWaitFor(
        [&] {
            return window->ui().sbPanel1->text()
                == QStringLiteral("Unsaved changes are kept safe again.");
        },
        5000));
    EXPECT_TRUE(folder.readFile(RecoveryFile).contains("Anchor, unsafe"));
    EXPECT_FALSE(window->ui().sbUnsafe->isVisible());
    EXPECT_EQ(statusPanelNames(window->statusBar()),
        QStringList({ QStringLiteral("Unsaved changes are kept safe again.") }));
}

TEST_F(SavingWindowTest, ASaveLeavesNothingToKeepSafeAndTheWarningGoes)
{
    ASSERT_TRUE(QDir(folder.path()).mkdir(RecoveryFile));
    renameFirstProduct(QStringLiteral("Anchor, unsafe"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return window->ui().sbUnsafe->isVisible(); }, 5000));
    action("mnuFileSave")->trigger();
    EXPECT_FALSE(window->isWindowModified());
    EXPECT_FALSE(window->ui().sbUnsafe->isVisible()) << "nothing is unsaved";
    EXPECT_FALSE(statusPanelNames(window->statusBar()).contains(QStringLiteral("Warning")));

    // Changed again while the recovery file still cannot be written: the warning is back.
    renameFirstProduct(QStringLiteral("Anchor, unsafe again"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return window->ui().sbUnsafe->isVisible(); }, 5000));
    // Undone back to what the file holds: nothing to keep safe either.
    action("mnuEditUndo")->trigger();
    ASSERT_TRUE(waitForModified(false));
    EXPECT_FALSE(window->ui().sbUnsafe->isVisible());
}

TEST_F(SavingWindowTest, TextTypedIntoASideBoxReachesTheRecoveryFile)
{
    button("Edit")->trigger();
    goToRow(1); // B-200
    window->ui().Txtincludes->setPlainText(QStringLiteral("Nut and washer"));

    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return folder.readFile(RecoveryFile).contains("Nut and washer"); }, 5000));
    EXPECT_TRUE(window->isWindowModified());
}

TEST_F(SavingWindowTest, ANameStillBeingTypedIntoTheGridReachesTheRecoveryFile)
{
    button("Edit")->trigger();
    goToRow(1); // B-200
    grid->setCurrentIndex(grid->model()->index(1, 1));
    grid->setFocus();
    grid->edit(grid->currentIndex());
    auto *editor = qobject_cast<QLineEdit *>(grid->openEditor());
    ASSERT_NE(editor, nullptr);
    editor->setText(QStringLiteral("Bolt, still typing"));

    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return folder.readFile(RecoveryFile).contains("Bolt, still typing"); }, 5000));
    EXPECT_EQ(module->Catalogue().get(2, 2), Cell("Bolt")) << "the cell is not stored yet";
}

// The folder is kept in step with another computer, which saved a product of its own while
// Tarnwick ran here: a close with nothing changed leaves that catalogue as it is, and a save of
// changes made here keeps it as a copy and says where.
TEST_F(SavingWindowTest, ACatalogueFileChangedOutsideTarnwickIsNeverLostToASaveOrAClose)
{
    const QByteArray theirs =
        sampleCatalogue() + catalogueLine({ "L-900", "Laptop's product", "9" });
    const auto arrives = [&] {
        folder.writeFile(QStringLiteral("incoming.tmp"), theirs);
        ASSERT_TRUE(QFile::remove(folder.filePath(QStringLiteral("twdata.dat"))));
        ASSERT_TRUE(QFile::rename(folder.filePath(QStringLiteral("incoming.tmp")),
            folder.filePath(QStringLiteral("twdata.dat"))));
    };
    arrives();
    action("mnuFileSave")->trigger();
    ASSERT_EQ(fakes->prompts.shown().size(), 1U);
    EXPECT_EQ(fakes->prompts.shown()[0].text,
        CatalogueLifecycle::changedFileLeftMessage(folder.filePath(QStringLiteral("twdata.dat"))));
    EXPECT_NE(window->ui().sbPanel1->text(), QStringLiteral("Catalogue saved"));
    EXPECT_EQ(folder.readFile(QStringLiteral("twdata.dat")), theirs);

    fakes->prompts.clear();
    renameFirstProduct(QStringLiteral("Anchor, steel"));
    ASSERT_TRUE(waitForModified(true));
    action("mnuFileSave")->trigger();
    const QStringList copies = folder.fileNames().filter(QStringLiteral("twdata-changed-"));
    ASSERT_EQ(copies.size(), 1);
    EXPECT_EQ(folder.readFile(copies.first()), theirs);
    ASSERT_EQ(fakes->prompts.shown().size(), 1U);
    EXPECT_EQ(fakes->prompts.shown()[0].text,
        CatalogueLifecycle::changedCopyMessage(
            folder.filePath(QStringLiteral("twdata.dat")), folder.filePath(copies.first())));
    EXPECT_EQ(fakes->prompts.shown()[0].title, QStringLiteral("Catalogue"));
    EXPECT_TRUE(folder.readFile(QStringLiteral("twdata.dat")).contains("Anchor, steel"));

    // Once more from outside, and nothing changed here since the save: the close keeps it.
    arrives();
    fakes->prompts.clear();
    ASSERT_TRUE(window->close());
    EXPECT_EQ(folder.readFile(QStringLiteral("twdata.dat")), theirs);
    EXPECT_TRUE(fakes->prompts.shown().empty());
}

} // namespace
