#pragma once

#include "catalogue/module1.h"
#include "shell/frmmain.h"
#include "shell/frmsplash1.h"
#include "shell/gridview.h"
#include "shell/shelldialogs.h"
#include "support/fakeservices.h"
#include "support/tempappfolder.h"

#include <QByteArray>
#include <QDir>
#include <QLocale>
#include <QStringList>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <vector>

namespace tarnwick::test {

/// The name of the recovery file in the application folder.
inline const QString RecoveryFile = QStringLiteral("twdata-recovery.dat");

/// A workbook of the exchange tests' data folder.
inline QString workbook(const char *name)
{
    return QDir(QStringLiteral(TARNWICK_WORKBOOKS)).filePath(QString::fromLatin1(name));
}

/// Answers the shell's dialogs from a script: the password prompt with `answer` (counting
/// the times it was asked), the input dialog with the queued texts (recording each request).
class FakeShellDialogs : public IShellDialogs
{
public:
    struct TextRequest
    {
        QString caption;
        QString prompt;
        QString text;
    };

    QString askPassword() override
    {
        ++asked;
        closedWhileAsking = false;
        if (whileAsking)
            whileAsking();
        return closedWhileAsking ? QString() : answer;
    }
    void closePasswordPrompt() override
    {
        ++closeRequests;
        closedWhileAsking = true;
    }
    QString askText(const QString &caption, const QString &prompt, const QString &text) override
    {
        textRequests.push_back({ caption, prompt, text });
        if (textAnswers.isEmpty()) {
            ADD_FAILURE() << "Unexpected input dialog: " << prompt.toStdString();
            return QString();
        }
        return textAnswers.takeFirst();
    }

    QString answer;
    int asked = 0;
    /// Times the program closed the prompt itself, and whether it did so for the one up.
    int closeRequests = 0;
    bool closedWhileAsking = false;
    /// Runs while the prompt is up, before the answer is given.
    std::function<void()> whileAsking;
    QStringList textAnswers;
    std::vector<TextRequest> textRequests;
};

/// One catalogue line: the fifteen fields each followed by three DEL characters, then CR LF.
QByteArray catalogueLine(const QStringList &fields);
/// A small catalogue of three products, out of part-number order.
QByteArray sampleCatalogue();
/// The recovery file a run leaves for catalogue: its bytes, then the end-of-file mark and the
/// line that says how many bytes come before it.
inline QByteArray recoveryFileBytes(const QByteArray &catalogue)
{
    return catalogue + "\x1aTarnwick recovery file: " + QByteArray::number(catalogue.size())
        + " bytes\r\n";
}

/// Edits a grid cell (0-based) from the keyboard as a user does: F2, the text over the old
/// one, Enter; returns once the edit is done. A failure is reported to the running test.
void editGridCell(GridView *grid, int row, int column, const QString &text);
/// The text a grid shows in a cell (0-based).
QString gridCellText(const GridView *grid, int row, int column);
/// The quote's total boxes: the total, the discount and the discount percentage.
QStringList quoteTotalBoxes(const frmMain &window);

/// A start of the real program in a temporary application folder, with fake desktop services.
class ShellTest : public ::testing::Test
{
protected:
    void SetUp() override;
    void TearDown() override;

    /// Builds the splash and runs its start with the given command line; the tick wait is
    /// shortened to tickMilliseconds per tick.
    void start(const QString &commandLine = QString());
    /// The same start in another application folder.
    void startIn(const AppEnvironment &environment);
    /// Runs the start and waits until the main window is shown.
    frmMain *startAndWait(const QString &commandLine = QString());
    /// Puts sampleCatalogue() into the folder, then starts and waits.
    frmMain *startWithSampleCatalogue();
    /// Drops the current windows and starts again in the same folder.
    void restart();
    void saveSetting(const QString &key, const QString &value);
    QString setting(const QString &key) const;

    TempAppFolder folder;
    std::unique_ptr<FakeServices> fakes;
    std::unique_ptr<Module1> module;
    FakeShellDialogs dialogs;
    std::unique_ptr<AppServices> services;
    std::unique_ptr<FrmSplash1> splash;
    std::unique_ptr<frmMain> mainWindow;
    bool started = false;
    /// The splash's tick interval for the next start.
    int tickMilliseconds = 1;
    /// The regional settings the program runs with; set before the start.
    QLocale locale { QLocale::English, QLocale::UnitedStates };
};

/// The real main window started on sampleCatalogue(), with helpers to reach its controls.
class SampleWindowTest : public ShellTest
{
protected:
    void SetUp() override;

    Table &catalogue() { return module->Catalogue(); }
    /// A toolbar button by its key ("Edit", "Insert" …).
    QAction *button(const char *key) const;
    /// A menu item by its control name ("mnuDelAll" …).
    QAction *action(const char *name) const;
    /// Makes a product grid row (0-based) current, as a click on it would.
    void goToRow(int gridRow);

    frmMain *window = nullptr;
    GridView *grid = nullptr;
};

/// The sample catalogue's window as the user has it: in front, with the keyboard (keys and
/// shortcuts reach a window only then), and its quote grid at hand.
class ActiveWindowTest : public SampleWindowTest
{
protected:
    void SetUp() override;

    GridView *quoteGrid = nullptr;
};

} // namespace tarnwick::test
