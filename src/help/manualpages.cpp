#include "help/manualpages.h"

#include "help/helpmanual.h"
#include "platform/filewrite.h"
#include "platform/idesktopservices.h"
#include "platform/iprompts.h"

#include <QDir>
#include <QFile>
#include <QUrl>

namespace tarnwick::ManualPages {

const QString Title = QStringLiteral("Web Browser");

namespace {

constexpr const char *ImagesFolder = "images";

QString link(const HelpTopic &topic)
{
    return QStringLiteral("<a href=\"%1\">%2</a>")
        .arg(topic.file.toHtmlEscaped(), topic.title.toHtmlEscaped());
}

/// The pictures of the manual's folder, with their bytes.
bool addPictures(const HelpManual &manual, const QString &folder, QList<FileContent> &files)
{
    const QDir pictures(QDir(manual.folder()).filePath(QString::fromLatin1(ImagesFolder)));
    for (const QString &name : pictures.entryList(QDir::Files, QDir::Name)) {
        QFile picture(pictures.filePath(name));
        if (!picture.open(QIODevice::ReadOnly))
            return false;
        files.append({ QDir(folder).filePath(QString::fromLatin1(ImagesFolder) + u'/' + name),
            picture.readAll() });
    }
    return true;
}

} // namespace

QByteArray indexPage(const HelpManual &manual)
{
    QString html = QStringLiteral("<!DOCTYPE html>\n<html>\n<head>\n<meta charset=\"utf-8\">\n"
                                  "<title>Tarnwick Help</title>\n</head>\n<body>\n"
                                  "<h1>Tarnwick Help</h1>\n");
    int open = 0; // lists open, one per level
    for (const HelpTopic &topic : manual.topics()) {
        const int depth = topic.level + 1;
        if (depth > open) {
            for (; open < depth; ++open)
                html += QStringLiteral("<ul>\n");
        } else {
            html += QStringLiteral("</li>\n");
            for (; open > depth; --open)
                html += QStringLiteral("</ul>\n</li>\n");
        }
        html += QStringLiteral("<li>") + link(topic);
    }
    if (open > 0)
        html += QStringLiteral("</li>\n");
    for (; open > 0; --open)
        html += open > 1 ? QStringLiteral("</ul>\n</li>\n") : QStringLiteral("</ul>\n");
    html += QStringLiteral("</body>\n</html>\n");
    return html.toUtf8();
}

WriteResult write(const HelpManual &manual, const QString &folder)
{
    WriteResult result;
    if (folder.isEmpty()
        || !QDir().mkpath(QDir(folder).filePath(QString::fromLatin1(ImagesFolder)))) {
        result.reason = QStringLiteral("the folder could not be made");
        return result;
    }
    QList<FileContent> files;
    for (const HelpTopic &topic : manual.topics())
        files.append({ QDir(folder).filePath(topic.file), topic.html.toUtf8() });
    if (!addPictures(manual, folder, files)) {
        result.reason = QStringLiteral("a picture of the manual could not be read");
        return result;
    }
    const QString start = QDir(folder).filePath(QString::fromLatin1(IndexFile));
    files.append({ start, indexPage(manual) });
    const FileWriteResult written = writeFilesWhole(files);
    if (!written) {
        result.reason = written.reason;
        return result;
    }
    result.ok = true;
    result.startPage = start;
    return result;
}

bool openInBrowser(const HelpManual &manual, IDesktopServices &desktop, IPrompts &prompts)
{
    const QString cache = desktop.cacheFolder();
    const QString folder =
        cache.isEmpty() ? QString() : QDir(cache).filePath(QString::fromLatin1(CacheSubfolder));
    const WriteResult written = write(manual, folder);
    if (!written.ok) {
        prompts.msgBox(QStringLiteral("The pages of the manual could not be written to %1: %2.")
                           .arg(QDir::toNativeSeparators(folder), written.reason),
            MsgStyle::OkOnly | MsgStyle::Exclamation, Title);
        return false;
    }
    if (!desktop.openUrl(QUrl::fromLocalFile(written.startPage))) {
        prompts.msgBox(QStringLiteral("No web browser could open the manual. Its pages are in:\n%1")
                           .arg(QDir::toNativeSeparators(folder)),
            MsgStyle::OkOnly | MsgStyle::Exclamation, Title);
        return false;
    }
    return true;
}

} // namespace tarnwick::ManualPages
