// The quote document, the product report, the "Quote Note" window and the printed price list,
// reached from the real main window and on their own.
#include "shellfixture.h"

#include "support/diskfaults.h"

#include "quotes/quotenote.h"
#include "shell/documentscontroller.h"
#include "shell/frmquotenote.h"
#include "shell/mainwindowactions.h"
#include "shell/printservice.h"

#include <QAction>
#include <QCheckBox>
#include <QLineEdit>
#include <QMenu>
#include <QPrinter>
#include <QProcess>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTextEdit>

using namespace tarnwick;
using namespace tarnwick::test;

namespace {

class QuoteNoteWindowTest : public ::testing::Test
{
protected:
    FrmQuoteNote *open()
    {
        window = std::make_unique<FrmQuoteNote>(settings, prompts, folder.path());
        window->show();
        return window.get();
    }
    template <typename T> T *child(const char *name) const
    {
        return window->findChild<T *>(QString::fromLatin1(name));
    }

    TempAppFolder folder;
    FakeSettingsStore settings;
    FakePrompts prompts;
    std::unique_ptr<FrmQuoteNote> window;
};

TEST_F(QuoteNoteWindowTest, LoadShowsBothTextsAndTheSetting)
{
    folder.writeFile(QStringLiteral("QuoteNoteHead.txt"), "Dear customer,\r\nhere it is");
    folder.writeFile(QStringLiteral("QuoteNote.txt"), "Regards \xe2\x80\x93 Ann");
    QuoteNote::saveNoIncludes(settings, 1);
    open();
    EXPECT_EQ(window->windowTitle(), QStringLiteral("Quote Note"));
    EXPECT_EQ(
        child<QTextEdit>("txttop")->toPlainText(), QStringLiteral("Dear customer,\nhere it is"));
    EXPECT_EQ(child<QTextEdit>("txtbottom")->toPlainText(), QStringLiteral("Regards – Ann"));
    EXPECT_TRUE(child<QCheckBox>("Chkincludes")->isChecked());
    EXPECT_EQ(child<QCheckBox>("Chkincludes")->text(),
        QStringLiteral("Do not show Includes information"));
}

TEST_F(QuoteNoteWindowTest, OkSavesBothTextsAsPlainText)
{
    open();
    child<QTextEdit>("txttop")->setPlainText(QStringLiteral("Head\nline two"));
    child<QTextEdit>("txtbottom")->setPlainText(QStringLiteral("End"));
    QTest::mouseClick(child<QPushButton>("cmdOK"), Qt::LeftButton);
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(folder.readFile(QStringLiteral("QuoteNotehead.txt")), QByteArray("Head\r\nline two"));
    EXPECT_EQ(folder.readFile(QStringLiteral("QuoteNote.txt")), QByteArray("End"));
    EXPECT_EQ(QuoteNote::readHeading(folder.path()), QStringLiteral("Head\nline two"));
}

TEST_F(QuoteNoteWindowTest, OkWritesAnExistingHeadingFileUnderItsOwnName)
{
    folder.writeFile(QStringLiteral("QuoteNoteHead.txt"), "old");
    open();
    child<QTextEdit>("txttop")->setPlainText(QStringLiteral("new"));
    QTest::mouseClick(child<QPushButton>("cmdOK"), Qt::LeftButton);
    EXPECT_EQ(QuoteNote::readHeading(folder.path()), QStringLiteral("new"));
}

TEST_F(QuoteNoteWindowTest, CancelKeepsTheFiles)
{
    folder.writeFile(QStringLiteral("QuoteNote.txt"), "keep me");
    open();
    child<QTextEdit>("txtbottom")->setPlainText(QStringLiteral("changed"));
    EXPECT_EQ(child<QPushButton>("cmdNextTip")->text(), QStringLiteral("&Cancel"));
    QTest::mouseClick(child<QPushButton>("cmdNextTip"), Qt::LeftButton);
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(folder.readFile(QStringLiteral("QuoteNote.txt")), QByteArray("keep me"));
    EXPECT_FALSE(folder.exists(QStringLiteral("QuoteNotehead.txt")));
}

TEST_F(QuoteNoteWindowTest, EscapeCancels)
{
    folder.writeFile(QStringLiteral("QuoteNote.txt"), "keep me");
    open()->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    child<QTextEdit>("txtbottom")->setFocus();
    child<QTextEdit>("txtbottom")->setPlainText(QStringLiteral("changed"));
    QTest::keyClick(child<QTextEdit>("txtbottom"), Qt::Key_Escape);
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(folder.readFile(QStringLiteral("QuoteNote.txt")), QByteArray("keep me"));
}

TEST_F(QuoteNoteWindowTest, TheCheckBoxIsSavedAtOnceAndKeptOnCancel)
{
    open();
    QTest::mouseClick(child<QCheckBox>("Chkincludes"), Qt::LeftButton);
    EXPECT_EQ(QuoteNote::noIncludes(settings), 1);
    QTest::mouseClick(child<QPushButton>("cmdNextTip"), Qt::LeftButton);
    EXPECT_EQ(QuoteNote::noIncludes(settings), 1);
    open();
    QTest::mouseClick(child<QCheckBox>("Chkincludes"), Qt::LeftButton);
    EXPECT_EQ(QuoteNote::noIncludes(settings), 0);
}

TEST_F(QuoteNoteWindowTest, AHeadingThatCannotBeWrittenIsReportedAndBothFilesKept)
{
    folder.writeFile(QStringLiteral("QuoteNoteHead.txt"), "old heading");
    folder.writeFile(QStringLiteral("QuoteNote.txt"), "old ending");
    open();
    QString longHeading;
    for (int line = 0; line < 2000; ++line)
        longHeading += QStringLiteral("Heading line %1\n").arg(line);
    child<QTextEdit>("txttop")->setPlainText(longHeading);
    child<QTextEdit>("txtbottom")->setPlainText(QStringLiteral("new ending"));
    {
        FileSizeLimit fullDisk(4096);
        ASSERT_TRUE(fullDisk.active());
        QTest::mouseClick(child<QPushButton>("cmdOK"), Qt::LeftButton);
    }
    ASSERT_EQ(prompts.shown().size(), 1U);
    EXPECT_EQ(prompts.shown()[0].text,
        QStringLiteral("The quote note could not be saved: the file would be larger than the "
                       "system allows. The heading and ending files were left as they were."));
    EXPECT_EQ(prompts.shown()[0].title, QStringLiteral("Quote Note"));
    EXPECT_EQ(prompts.shown()[0].style, MsgStyle::Exclamation);
    EXPECT_TRUE(window->isVisible()) << "the texts stay in the window";
    EXPECT_EQ(child<QTextEdit>("txttop")->toPlainText(), longHeading);
    EXPECT_EQ(folder.readFile(QStringLiteral("QuoteNoteHead.txt")), QByteArray("old heading"));
    EXPECT_EQ(folder.readFile(QStringLiteral("QuoteNote.txt")), QByteArray("old ending"));
    EXPECT_EQ(folder.fileNames(),
        (QStringList { QStringLiteral("QuoteNote.txt"), QStringLiteral("QuoteNoteHead.txt") }));
}

TEST_F(QuoteNoteWindowTest, AFolderThatIsAFileIsReported)
{
    folder.writeFile(QStringLiteral("app"), "a plain file");
    window = std::make_unique<FrmQuoteNote>(settings, prompts, folder.filePath("app"));
    window->show();
    QTest::mouseClick(child<QPushButton>("cmdOK"), Qt::LeftButton);
    ASSERT_EQ(prompts.shown().size(), 1U);
    EXPECT_EQ(prompts.shown()[0].text,
        QStringLiteral("The quote note could not be saved: a file stands where the folder \"%1\" "
                       "should be. The heading and ending files were left as they were.")
            .arg(QDir::toNativeSeparators(folder.filePath("app"))));
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(folder.readFile(QStringLiteral("app")), QByteArray("a plain file"));
}

TEST_F(QuoteNoteWindowTest, ACheckBoxSettingThatCannotBeWrittenIsReportedAndUndone)
{
    open();
    settings.failWrites(QStringLiteral("the disk is full"));
    QTest::mouseClick(child<QCheckBox>("Chkincludes"), Qt::LeftButton);
    ASSERT_EQ(prompts.shown().size(), 1U);
    EXPECT_EQ(prompts.shown()[0].text,
        QStringLiteral("The setting could not be saved: the disk is full."));
    EXPECT_EQ(prompts.shown()[0].title, QStringLiteral("Quote Note"));
    EXPECT_FALSE(child<QCheckBox>("Chkincludes")->isChecked());
    EXPECT_EQ(QuoteNote::noIncludes(settings), 0);
}

/// Prints to a PDF file through a real QPrinter instead of asking for a printer.
class PdfPrintService : public IPrintService
{
public:
    explicit PdfPrintService(QString path) : m_path(std::move(path)) { }
    void preview(QWidget *, const QString &title, const PaintPages &paint) override
    {
        previews.append(title);
        print(nullptr, title, paint);
    }
    bool print(QWidget *, const QString &, const PaintPages &paint) override
    {
        QPrinter printer(QPrinter::HighResolution);
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(m_path);
        printer.setPageMargins(QMarginsF(15, 15, 15, 15), QPageLayout::Millimeter);
        paint(printer);
        ++prints;
        return true;
    }
    QStringList previews;
    int prints = 0;

private:
    QString m_path;
};

class DocumentsWindowTest : public SampleWindowTest
{
protected:
    QString clipboardText() const
    {
        return fakes->clipboard.richDocument() ? fakes->clipboard.richDocument()->plainText
                                               : QString();
    }
    QString pdfText(const QString &path) const
    {
        QProcess pdftotext;
        pdftotext.start(QStringLiteral("pdftotext"), { path, QStringLiteral("-") });
        EXPECT_TRUE(pdftotext.waitForFinished(20000));
        return QString::fromUtf8(pdftotext.readAllStandardOutput());
    }
};

TEST_F(DocumentsWindowTest, TheCommandsAreEnabled)
{
    for (const char *name : { "mnuquotecopy", "mnuQuoteNote", "mnucopyproduct",
             "mnuCopyProductInfo", "mnuPreview", "mnuPrint" })
        EXPECT_TRUE(action(name)->isEnabled()) << name;
    EXPECT_TRUE(button("Print")->isEnabled());
}

TEST_F(DocumentsWindowTest, CopyProductInfoFromTheMenusAndTheToolbarPutsTheReportOnTheClipboard)
{
    goToRow(1);
    const QString part = catalogue().get(2, 1).asText();
    for (const char *name : { "mnucopyproduct", "mnuCopyProductInfo" }) {
        const int clears = fakes->clipboard.clearCount();
        action(name)->trigger();
        EXPECT_EQ(fakes->clipboard.clearCount(), clears + 1);
        EXPECT_TRUE(clipboardText().startsWith(
            QStringLiteral("Product Report\nPart Number  ") + part + QLatin1Char('\t')))
            << name;
        EXPECT_TRUE(fakes->clipboard.richDocument()->rtf.contains(QLatin1String("Product Report")));
    }
    fakes->clipboard.clear();
    window->ui().sbPanel1->clear();
    button("Print")->trigger();
    EXPECT_TRUE(clipboardText().contains(QStringLiteral("Discount Schedule:")));
    EXPECT_EQ(window->ui().sbPanel1->text(),
        QStringLiteral("Product information copied to the clipboard."));
}

// After a delete no product is current: the report of nothing is not copied over what the
// clipboard holds, and the status bar says why.
TEST_F(DocumentsWindowTest, CopyProductInfoWithNoProductCurrentKeepsTheClipboard)
{
    goToRow(1);
    fakes->prompts.answerMessage(int(MsgResult::Yes));
    button("DelProd")->trigger();
    ASSERT_FALSE(window->ui().GrdMain->currentIndex().isValid());
    fakes->clipboard.setText(QStringLiteral("kept"));
    const int clears = fakes->clipboard.clearCount();
    for (const char *name : { "mnucopyproduct", "mnuCopyProductInfo" }) {
        action(name)->trigger();
        EXPECT_EQ(fakes->clipboard.clearCount(), clears) << name;
        EXPECT_EQ(fakes->clipboard.text(), QStringLiteral("kept")) << name;
        EXPECT_FALSE(fakes->clipboard.richDocument().has_value()) << name;
        EXPECT_EQ(window->ui().sbPanel1->text(),
            QStringLiteral("No product is selected: select one to copy its report."));
    }
    goToRow(0);
    action("mnuCopyProductInfo")->trigger();
    EXPECT_TRUE(clipboardText().startsWith(QStringLiteral("Product Report\n")));
}

TEST_F(DocumentsWindowTest, CopyPutsTheQuoteDocumentWithHeadingAndTotalsOnTheClipboard)
{
    folder.writeFile(QStringLiteral("QuoteNoteHead.txt"), "Our offer");
    goToRow(0);
    action("mnuGrdMainQuote")->trigger();
    action("mnuquotecopy")->trigger();
    const QString text = clipboardText();
    EXPECT_TRUE(text.startsWith(
        QStringLiteral("Our offer\n\n") + catalogue().get(1, 1).asText() + QStringLiteral(" \t")))
        << qPrintable(text);
    EXPECT_TRUE(text.endsWith(
        QStringLiteral("Order Total = ") + window->ui().TxtTotal->text() + QStringLiteral("\n\n")));
    EXPECT_EQ(window->ui().sbPanel1->text(), QStringLiteral("Quote copied to the clipboard."));
}

// A quote without lines is copied as the document of an empty quote, and the status bar says
// that is all the clipboard holds rather than that the quote was copied.
TEST_F(DocumentsWindowTest, CopyingAQuoteWithoutLinesSaysItHoldsNoLines)
{
    action("mnuquotecopy")->trigger();
    EXPECT_TRUE(clipboardText().contains(QStringLiteral("Order Total = ")))
        << "copied all the same";
    EXPECT_EQ(window->ui().sbPanel1->text(),
        QStringLiteral("The quote has no lines: the clipboard holds an empty quote. Add products "
                       "to the quote first."));
}

TEST_F(DocumentsWindowTest, ACloseAsksBeforeACopyTheDesktopWouldDropGoesWithTheProgram)
{
    fakes->clipboard.keepsAfterExit = false; // and no keeper of Tarnwick's takes it
    goToRow(0);
    action("mnuGrdMainQuote")->trigger();
    action("mnuquotecopy")->trigger();
    fakes->prompts.answerMessage(MsgResult::No);
    EXPECT_FALSE(window->close()) << "No: Tarnwick stays, the copy with it";
    EXPECT_EQ(fakes->clipboard.handOverCount(), 1);
    ASSERT_EQ(fakes->prompts.shown().size(), 1U);
    EXPECT_EQ(fakes->prompts.shown().front().text,
        QStringLiteral("What you copied from Tarnwick (a quote, a product report, a text) is still "
                       "on the clipboard, and this desktop keeps nothing on the clipboard once the "
                       "program that copied it has closed.\n\nPaste it where it belongs first, "
                       "or close now and lose it. Close now?"));
    EXPECT_EQ(fakes->prompts.shown().front().title, QStringLiteral("Clipboard"));
    EXPECT_EQ(fakes->prompts.shown().front().style,
        MsgStyle::YesNo | MsgStyle::Exclamation | MsgStyle::DefaultButton2);
    // Pasted and something else copied since: nothing of Tarnwick's is lost.
    fakes->clipboard.copiedElsewhere();
    EXPECT_TRUE(window->close());
    EXPECT_EQ(fakes->prompts.shown().size(), 1U);
}

TEST_F(DocumentsWindowTest, AKeeperTakesTheCopyAndTheCloseAsksNothing)
{
    fakes->clipboard.keepsAfterExit = false;
    fakes->clipboard.handsOver = true;
    goToRow(0);
    action("mnuGrdMainQuote")->trigger();
    action("mnuquotecopy")->trigger();
    EXPECT_TRUE(window->close());
    EXPECT_EQ(fakes->clipboard.handOverCount(), 1);
    EXPECT_TRUE(fakes->prompts.shown().empty());
}

TEST_F(DocumentsWindowTest, ATerminationDoesNotAskAboutTheCopyButHandsItOver)
{
    goToRow(0);
    action("mnuGrdMainQuote")->trigger();
    action("mnuquotecopy")->trigger();
    fakes->clipboard.keepsAfterExit = false;
    window->requestClose(); // a termination signal: nothing it could wait for
    EXPECT_FALSE(window->isVisible());
    EXPECT_TRUE(fakes->prompts.shown().empty());
    EXPECT_EQ(fakes->clipboard.handOverCount(), 1);
}

TEST_F(DocumentsWindowTest, YesClosesAndLeavesTheCopyToItsFate)
{
    fakes->clipboard.keepsAfterExit = false;
    action("mnucopyproduct")->trigger();
    fakes->prompts.answerMessage(MsgResult::Yes);
    EXPECT_TRUE(window->close());
    EXPECT_EQ(fakes->prompts.shown().size(), 1U);
}

TEST_F(DocumentsWindowTest, WhereTheDesktopKeepsTheCopyNothingIsAsked)
{
    action("mnucopyproduct")->trigger();
    ASSERT_TRUE(fakes->clipboard.holdsOwnCopy());
    EXPECT_TRUE(window->close());
    EXPECT_TRUE(fakes->prompts.shown().empty());
    EXPECT_EQ(fakes->clipboard.handOverCount(), 0) << "nothing to keep";
}

TEST_F(DocumentsWindowTest, QuoteNoteOpensTheEditorOnce)
{
    action("mnuQuoteNote")->trigger();
    FrmQuoteNote *note = window->documents().quoteNoteWindow();
    ASSERT_NE(note, nullptr);
    EXPECT_TRUE(note->isVisible());
    action("mnuQuoteNote")->trigger();
    EXPECT_EQ(window->documents().quoteNoteWindow(), note);
}

TEST_F(DocumentsWindowTest, PrintAndPreviewPrintTheWholePriceList)
{
    QTemporaryDir dir;
    const QString pdf = dir.filePath(QStringLiteral("list.pdf"));
    auto service = std::make_unique<PdfPrintService>(pdf);
    PdfPrintService *printer = service.get();
    window->documents().setPrintService(std::move(service));
    action("mnuPrint")->trigger();
    EXPECT_EQ(printer->prints, 1);
    EXPECT_EQ(window->ui().sbPanel1->text(), QStringLiteral("Price list printed."));
    const QString text = pdfText(pdf);
    EXPECT_TRUE(text.contains(QStringLiteral("Tarnwick Price list")));
    EXPECT_TRUE(text.contains(QStringLiteral("Page: 1")));
    for (int row = 1; row <= catalogue().rowCount(); ++row)
        EXPECT_TRUE(text.contains(catalogue().get(row, 1).asText())) << row;
    action("mnuPreview")->trigger();
    EXPECT_EQ(printer->previews, QStringList { QStringLiteral("Tarnwick Price list") });
}

// The printed list holds what the user sees: a list price typed into the side box and not yet
// left is stored first, as the export and a save store it.
TEST_F(DocumentsWindowTest, PrintAndPreviewTakeTheListPriceBeingTyped)
{
    QTemporaryDir dir;
    const QString pdf = dir.filePath(QStringLiteral("list.pdf"));
    window->documents().setPrintService(std::make_unique<PdfPrintService>(pdf));
    button("Edit")->trigger();
    for (const char *command : { "mnuPrint", "mnuPreview" }) {
        const QString typed =
            command == QByteArray("mnuPrint") ? QStringLiteral("55.55") : QStringLiteral("66.66");
        goToRow(0); // A-100 Anchor, $12.50
        QLineEdit *price = window->ui().TxtPrice;
        price->setFocus();
        price->selectAll();
        QTest::keyClicks(price, typed);
        action(command)->trigger();
        EXPECT_TRUE(pdfText(pdf).contains(QLatin1Char('$') + typed)) << command;
        EXPECT_FALSE(pdfText(pdf).contains(QStringLiteral("$12.50"))) << command;
    }
}

} // namespace
