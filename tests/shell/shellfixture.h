#pragma once

#include "catalogue/module1.h"
#include "shell/frmmain.h"
#include "shell/frmsplash1.h"
#include "shell/ipasswordprompt.h"
#include "support/fakeservices.h"
#include "support/tempappfolder.h"

#include <QByteArray>
#include <QStringList>

#include <gtest/gtest.h>

#include <memory>

namespace tarnwick::test {

/// Answers the start-up password prompt from a script and counts the times it was asked.
class FakePasswordPrompt : public IPasswordPrompt
{
public:
    QString askPassword() override
    {
        ++asked;
        return answer;
    }
    QString answer;
    int asked = 0;
};

/// One catalogue line: the fifteen fields each followed by three DEL characters, then CR LF.
QByteArray catalogueLine(const QStringList &fields);
/// A small catalogue of three products, out of part-number order.
QByteArray sampleCatalogue();

/// A start of the real program in a temporary application folder, with fake desktop services.
class ShellTest : public ::testing::Test
{
protected:
    void SetUp() override;
    void TearDown() override;

    /// Builds the splash and runs its start with the given command line; the tick wait is
    /// shortened to a millisecond per tick.
    void start(const QString &commandLine = QString());
    /// Runs the start and waits until the main window is shown.
    frmMain *startAndWait(const QString &commandLine = QString());
    void saveSetting(const QString &key, const QString &value);
    QString setting(const QString &key) const;

    TempAppFolder folder;
    std::unique_ptr<FakeServices> fakes;
    std::unique_ptr<Module1> module;
    FakePasswordPrompt passwordPrompt;
    std::unique_ptr<AppServices> services;
    std::unique_ptr<FrmSplash1> splash;
    std::unique_ptr<frmMain> mainWindow;
    bool started = false;
};

} // namespace tarnwick::test
