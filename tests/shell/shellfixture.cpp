#include "shellfixture.h"

#include "shell/mainwindowactions.h"
#include "shell/settingskeys.h"

#include <QAction>
#include <QLineEdit>

#include <QTest>

namespace tarnwick::test {

QByteArray catalogueLine(const QStringList &fields)
{
    QByteArray line;
    for (int i = 0; i < 15; ++i)
        line += (i < fields.size() ? fields.at(i).toUtf8() : QByteArray()) + "\x7f\x7f\x7f";
    return line + "\r\n";
}

QByteArray sampleCatalogue()
{
    return catalogueLine({ "B-200", "Bolt", "2.5", "Zinc plated", "Nut", "1", "2.5", "100", "2" })
        + catalogueLine({ "A-100", "Anchor", "12.5", "Two lines\r\nof notes", "Washer" })
        + catalogueLine({ "C-300", "Clamp", "", "", "" });
}

void editGridCell(GridView *grid, int row, int column, const QString &text)
{
    grid->setCurrentIndex(grid->model()->index(row, column));
    QTest::keyClick(grid, Qt::Key_F2);
    auto *editor = grid->viewport()->findChild<QLineEdit *>();
    ASSERT_NE(editor, nullptr);
    editor->selectAll();
    QTest::keyClicks(editor, text);
    QTest::keyClick(editor, Qt::Key_Return);
    ASSERT_TRUE(QTest::qWaitFor([grid] { return !grid->isEditing(); }, 10000));
}

QString gridCellText(const GridView *grid, int row, int column)
{
    return grid->model()->index(row, column).data().toString();
}

QStringList quoteTotalBoxes(const frmMain &window)
{
    return { window.ui().TxtTotal->text(), window.ui().TxtDisc->text(),
        window.ui().TxtQdisper->text() };
}

void ShellTest::SetUp()
{
    fakes = std::make_unique<FakeServices>(folder.environment());
}

void ShellTest::TearDown()
{
    mainWindow.reset();
    splash.reset();
}

void ShellTest::start(const QString &commandLine)
{
    startIn(folder.environment(commandLine));
}

void ShellTest::startIn(const AppEnvironment &environment)
{
    fakes->environment = environment;
    services = std::make_unique<AppServices>(fakes->services());
    module = std::make_unique<Module1>(fakes->prompts, fakes->environment, locale);
    splash = std::make_unique<FrmSplash1>(*services, *module, dialogs);
    splash->setTickInterval(tickMilliseconds);
    QObject::connect(splash.get(), &FrmSplash1::started, [this] {
        started = true;
        mainWindow = splash->takeMainWindow();
    });
    splash->Form_Load();
}

frmMain *ShellTest::startAndWait(const QString &commandLine)
{
    start(commandLine);
    EXPECT_TRUE(QTest::qWaitFor([this] { return started; }, 5000));
    return mainWindow.get();
}

frmMain *ShellTest::startWithSampleCatalogue()
{
    folder.writeFile(QStringLiteral("twdata.dat"), sampleCatalogue());
    return startAndWait();
}

void ShellTest::restart()
{
    started = false;
    mainWindow.reset();
    splash.reset();
    startAndWait();
}

void ShellTest::saveSetting(const QString &key, const QString &value)
{
    fakes->settings.save(SettingsKeys::Application, SettingsKeys::Section, key, value);
}

QString ShellTest::setting(const QString &key) const
{
    return fakes->settings.get(
        SettingsKeys::Application, SettingsKeys::Section, key, QStringLiteral("<unset>"));
}

void SampleWindowTest::SetUp()
{
    ShellTest::SetUp();
    window = startWithSampleCatalogue();
    ASSERT_NE(window, nullptr);
    grid = window->ui().GrdMain;
}

void ActiveWindowTest::SetUp()
{
    SampleWindowTest::SetUp();
    quoteGrid = window->ui().GrdQuote;
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window));
}

QAction *SampleWindowTest::button(const char *key) const
{
    return window->actions().button(QString::fromLatin1(key));
}

QAction *SampleWindowTest::action(const char *name) const
{
    return window->actions().action(QString::fromLatin1(name));
}

void SampleWindowTest::goToRow(int gridRow)
{
    grid->setCurrentIndex(grid->model()->index(gridRow, 0));
}

} // namespace tarnwick::test
