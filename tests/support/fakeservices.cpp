#include "support/fakeservices.h"

#include <QCoreApplication>

namespace tarnwick::test {

void FakeClipboard::clear()
{
    ++m_clears;
    m_text.clear();
    m_rich.reset();
    m_ownCopy = false;
}

void FakeClipboard::setText(const QString &text)
{
    m_text = text;
    m_rich.reset();
    m_ownCopy = true;
}

void FakeClipboard::setRichDocument(const RichClipboardDocument &document)
{
    m_rich = document;
    m_text = document.plainText;
    m_ownCopy = true;
}

std::optional<FileDialogResult> FakeFileDialogs::getOpenFile(const FileDialogRequest &request)
{
    return next(request);
}

std::optional<FileDialogResult> FakeFileDialogs::getSaveFile(const FileDialogRequest &request)
{
    return next(request);
}

std::optional<FileDialogResult> FakeFileDialogs::next(const FileDialogRequest &request)
{
    m_requests.push_back(request);
    if (m_answers.empty())
        return std::nullopt;
    const bool chosen = m_answers.front().has_value();
    FileDialogResult answer = chosen ? *m_answers.front() : FileDialogResult {};
    m_answers.pop_front();
    if (!chosen)
        return std::nullopt;
    return answer;
}

bool FakeProcessLauncher::startDetached(
    const QString &program, const QStringList &arguments, const QString &workingFolder)
{
    starts.push_back({ program, arguments, workingFolder, false });
    return succeed;
}

bool FakeProcessLauncher::startShown(const QString &program, const QStringList &arguments)
{
    starts.push_back({ program, arguments, QString(), true });
    return succeed;
}

QString FakeProcessLauncher::findProgram(const QString &name) const
{
    return installed.contains(name) ? QStringLiteral("/usr/bin/") + name : QString();
}

bool FakeProcessLauncher::openUrl(const QString &url)
{
    openedUrls << url;
    return urlsOpen;
}

void FakeHelpViewer::display(const QString &path, int command, qint32 data)
{
    calls << QStringLiteral("%1|%2|%3").arg(path).arg(command).arg(data);
}

bool FakeDesktopServices::openUrl(const QUrl &url)
{
    opened.push_back(url);
    return succeed;
}

void FakeEventPump::processPendingEvents()
{
    ++count;
    QCoreApplication::processEvents();
}

} // namespace tarnwick::test
