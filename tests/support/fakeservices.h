#pragma once

#include "platform/appenvironment.h"
#include "platform/appservices.h"
#include "platform/iclipboard.h"
#include "platform/idesktopservices.h"
#include "platform/ieventpump.h"
#include "platform/ifiledialogs.h"
#include "platform/ihelpviewer.h"
#include "platform/iprocesslauncher.h"
#include "support/fakeprompts.h"
#include "support/fakesettingsstore.h"

#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <QUrl>

#include <deque>
#include <optional>
#include <vector>

namespace tarnwick::test {

/// A clipboard in memory that remembers what was put on it.
class FakeClipboard : public IClipboard
{
public:
    void clear() override;
    void setText(const QString &text) override;
    void setRichDocument(const RichClipboardDocument &document) override;
    QString text() const override { return m_text; }
    bool holdsOwnCopy() const override { return m_ownCopy; }
    bool keepsCopyAfterExit() const override { return keepsAfterExit; }
    bool handOverOwnCopy() override
    {
        ++m_handOvers;
        return handsOver;
    }
    /// Another program copied something: the clipboard no longer holds this program's copy.
    void copiedElsewhere() { m_ownCopy = false; }

    bool keepsAfterExit = true;
    /// Whether a hand-over to a keeper succeeds.
    bool handsOver = false;
    int handOverCount() const { return m_handOvers; }

    const std::optional<RichClipboardDocument> &richDocument() const { return m_rich; }
    int clearCount() const { return m_clears; }

private:
    QString m_text;
    std::optional<RichClipboardDocument> m_rich;
    int m_clears = 0;
    int m_handOvers = 0;
    bool m_ownCopy = false;
};

/// File dialogs that record each request and answer from a script (no answer = cancelled).
class FakeFileDialogs : public IFileDialogs
{
public:
    std::optional<FileDialogResult> getOpenFile(const FileDialogRequest &request) override;
    std::optional<FileDialogResult> getSaveFile(const FileDialogRequest &request) override;

    void answer(const std::optional<FileDialogResult> &result) { m_answers.push_back(result); }
    const std::vector<FileDialogRequest> &requests() const { return m_requests; }

private:
    std::optional<FileDialogResult> next(const FileDialogRequest &request);
    std::vector<FileDialogRequest> m_requests;
    std::deque<std::optional<FileDialogResult>> m_answers;
};

/// Records the programs it was asked to start and the links it was asked to open; succeeds
/// unless told otherwise. Finds the programs listed in installed, as "/usr/bin/<name>".
class FakeProcessLauncher : public IProcessLauncher
{
public:
    struct Start
    {
        QString program;
        QStringList arguments;
        QString workingFolder;
        bool shown = false;
    };
    bool startDetached(const QString &program, const QStringList &arguments,
        const QString &workingFolder) override;
    bool startShown(const QString &program, const QStringList &arguments) override;
    QString findProgram(const QString &name) const override;
    bool openUrl(const QString &url) override;

    bool succeed = true;
    QStringList installed;
    std::vector<Start> starts;
    QStringList openedUrls;
    bool urlsOpen = true; ///< whether openUrl finds a program for a link
};

/// Records every call of the help viewer exactly as it was given.
class FakeHelpViewer : public IHelpViewer
{
public:
    void display(const QString &path, int command, qint32 data) override;

    QStringList calls; ///< "<path>|<command>|<data>"
};

/// Counts the times the program let pending events be processed, and processes them.
class FakeEventPump : public IEventPump
{
public:
    void processPendingEvents() override;
    int count = 0;
};

/// Records the URLs it was asked to open; succeeds unless told otherwise. Its cache folder is a
/// temporary folder of its own, removed with it.
class FakeDesktopServices : public IDesktopServices
{
public:
    bool openUrl(const QUrl &url) override;
    QString cacheFolder() const override { return m_cache.path(); }

    bool succeed = true;
    std::vector<QUrl> opened;

private:
    QTemporaryDir m_cache;
};

/// Every fake in one place, and the AppServices that hands them out.
struct FakeServices
{
    explicit FakeServices(AppEnvironment env) : environment(std::move(env)) { }

    FakePrompts prompts;
    FakeClipboard clipboard;
    FakeSettingsStore settings;
    FakeFileDialogs fileDialogs;
    FakeProcessLauncher launcher;
    FakeHelpViewer help;
    FakeEventPump events;
    AppEnvironment environment;
    FakeDesktopServices desktop;

    AppServices services()
    {
        return AppServices { prompts, clipboard, settings, fileDialogs, launcher, help, events,
            environment, desktop };
    }
};

} // namespace tarnwick::test
