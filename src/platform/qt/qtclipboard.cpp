#include "platform/qt/qtclipboard.h"

#include "platform/qt/clipboardkeeper.h"
#include "platform/qt/clipboardkeeperx11.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

namespace tarnwick {

QMimeData *richDocumentMimeData(const RichClipboardDocument &document)
{
    auto *data = new QMimeData;
    // RTF is 7-bit text that escapes everything else itself, so Latin-1 keeps every byte.
    const QByteArray rtf = document.rtf.toLatin1();
    data->setData(QString::fromLatin1(RtfMimeType), rtf);
    data->setData(QString::fromLatin1(RtfApplicationMimeType), rtf);
#ifdef Q_OS_WIN
    // Word processors on Windows read the registered "Rich Text Format" clipboard format.
    data->setData(QStringLiteral("application/x-qt-windows-mime;value=\"Rich Text Format\""), rtf);
#endif
    data->setHtml(document.html);
    data->setText(document.plainText);
    return data;
}

void QtClipboard::clear()
{
    QGuiApplication::clipboard()->clear();
}

void QtClipboard::setText(const QString &text)
{
    QGuiApplication::clipboard()->setText(text);
}

void QtClipboard::setRichDocument(const RichClipboardDocument &document)
{
    // The clipboard takes ownership of the data.
    QGuiApplication::clipboard()->setMimeData(richDocumentMimeData(document));
}

QString QtClipboard::text() const
{
    return QGuiApplication::clipboard()->text();
}

bool QtClipboard::holdsOwnCopy() const
{
    return QGuiApplication::clipboard()->ownsClipboard();
}

bool QtClipboard::keepsCopyAfterExit() const
{
    return ClipboardKeeper::desktopKeeperRuns();
}

bool QtClipboard::handOverOwnCopy()
{
    const QMimeData *data = QGuiApplication::clipboard()->mimeData();
    return data != nullptr && ClipboardKeeper::handOver(*data);
}

} // namespace tarnwick
