#include "support/fakeservices.h"

#include <QCoreApplication>

namespace tarnwick::test {

void FakeClipboard::clear()
{
    ++m_clears;
    m_text.clear();
    m_rich.reset();
}

void FakeClipboard::setText(const QString &text)
{
    m_text = text;
    m_rich.reset();
}

void FakeClipboard::setRichDocument(const RichClipboardDocument &document)
{
    m_rich = document;
    m_text = document.plainText;
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
    starts.push_back({ program, arguments, workingFolder });
    return succeed;
}

bool FakeHelpViewer::showTopic(const QString &helpFile, const QString &topic)
{
    calls << QStringLiteral("topic:%1#%2").arg(helpFile, topic);
    return true;
}

bool FakeHelpViewer::showContext(const QString &helpFile, int contextNumber)
{
    calls << QStringLiteral("context:%1#%2").arg(helpFile).arg(contextNumber);
    return true;
}

void FakeEventPump::processPendingEvents()
{
    ++count;
    QCoreApplication::processEvents();
}

} // namespace tarnwick::test
