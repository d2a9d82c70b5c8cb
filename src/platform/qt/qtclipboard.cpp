#include "platform/qt/qtclipboard.h"

#include "platform/qt/clipboardkeeper.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

#if defined(TARNWICK_HAVE_XCB) && QT_CONFIG(xcb)
#include <xcb/xcb.h>

#include <cstdlib>
#endif

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
#if defined(TARNWICK_HAVE_XCB) && QT_CONFIG(xcb)
    const auto *x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    if (x11 == nullptr || x11->connection() == nullptr)
        return true;
    xcb_connection_t *connection = x11->connection();
    static const char Keeper[] = "CLIPBOARD_MANAGER";
    const xcb_intern_atom_cookie_t atomCookie =
        xcb_intern_atom(connection, 1, uint16_t(sizeof(Keeper) - 1), Keeper);
    xcb_intern_atom_reply_t *atom = xcb_intern_atom_reply(connection, atomCookie, nullptr);
    if (atom == nullptr)
        return true;
    const xcb_atom_t selection = atom->atom;
    std::free(atom);
    if (selection == XCB_ATOM_NONE)
        return false; // no program ever asked for the atom: no keeper runs
    xcb_get_selection_owner_reply_t *owner = xcb_get_selection_owner_reply(
        connection, xcb_get_selection_owner(connection, selection), nullptr);
    if (owner == nullptr)
        return true;
    const bool kept = owner->owner != XCB_WINDOW_NONE;
    std::free(owner);
    return kept;
#else
    return true;
#endif
}

bool QtClipboard::handOverOwnCopy()
{
    const QMimeData *data = QGuiApplication::clipboard()->mimeData();
    return data != nullptr && ClipboardKeeper::handOver(*data);
}

} // namespace tarnwick
