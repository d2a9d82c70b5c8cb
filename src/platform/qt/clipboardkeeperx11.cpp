#include "platform/qt/clipboardkeeperx11.h"

#include <QGuiApplication>

#if defined(TARNWICK_HAVE_XCB) && QT_CONFIG(xcb)
#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>
#include <optional>
#include <vector>

#include <sys/prctl.h>
#endif

namespace tarnwick::ClipboardKeeper {

#if defined(TARNWICK_HAVE_XCB) && QT_CONFIG(xcb)

namespace {

/// Frees what libxcb hands out with malloc.
struct FreeDeleter
{
    void operator()(void *pointer) const { std::free(pointer); }
};
template <typename T> using XcbReply = std::unique_ptr<T, FreeDeleter>;

struct Atoms
{
    xcb_atom_t clipboard = XCB_ATOM_NONE;
    xcb_atom_t targets = XCB_ATOM_NONE;
    xcb_atom_t timestamp = XCB_ATOM_NONE;
    xcb_atom_t text = XCB_ATOM_NONE;
    std::vector<xcb_atom_t> offered; // one per target, in the targets' order
};

xcb_atom_t internAtom(xcb_connection_t *connection, const QByteArray &name)
{
    const XcbReply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection,
        xcb_intern_atom(connection, 0, uint16_t(name.size()), name.constData()), nullptr));
    return reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
}

/// The server's time now, from the notice of a change to a property of the keeper's window
/// (the conventions ask owners for a real time instead of CurrentTime).
std::optional<xcb_timestamp_t> serverTime(xcb_connection_t *connection, xcb_window_t window)
{
    xcb_change_property(
        connection, XCB_PROP_MODE_APPEND, window, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 8, 0, nullptr);
    xcb_flush(connection);
    while (true) {
        const XcbReply<xcb_generic_event_t> event(xcb_wait_for_event(connection));
        if (!event)
            return std::nullopt;
        if ((event->response_type & 0x7f) == XCB_PROPERTY_NOTIFY) {
            const auto *notify = reinterpret_cast<const xcb_property_notify_event_t *>(event.get());
            if (notify->window == window)
                return notify->time;
        }
    }
}

/// Answers one request for the clipboard: the list of targets, the time it was taken, or the
/// bytes of one target; a target not offered (or too large to send in one piece) is refused.
void answer(xcb_connection_t *connection, const xcb_selection_request_event_t &request,
    const Atoms &atoms, const QList<Target> &targets, xcb_timestamp_t ownedSince, uint32_t maxBytes)
{
    // Clients of the oldest conventions name no property: the target's name stands for it.
    const xcb_atom_t property =
        request.property == XCB_ATOM_NONE ? request.target : request.property;
    bool served = false;
    if (request.selection == atoms.clipboard) {
        if (request.target == atoms.targets) {
            std::vector<xcb_atom_t> list { atoms.targets, atoms.timestamp };
            list.insert(list.end(), atoms.offered.begin(), atoms.offered.end());
            xcb_change_property(connection, XCB_PROP_MODE_REPLACE, request.requestor, property,
                XCB_ATOM_ATOM, 32, uint32_t(list.size()), list.data());
            served = true;
        } else if (request.target == atoms.timestamp) {
            xcb_change_property(connection, XCB_PROP_MODE_REPLACE, request.requestor, property,
                XCB_ATOM_INTEGER, 32, 1, &ownedSince);
            served = true;
        } else {
            for (qsizetype i = 0; i < targets.size() && !served; ++i) {
                const QByteArray &data = targets.at(i).data;
                if (atoms.offered.at(size_t(i)) != request.target
                    || qint64(data.size()) > qint64(maxBytes))
                    continue;
                const xcb_atom_t type =
                    request.target == atoms.text ? xcb_atom_t(XCB_ATOM_STRING) : request.target;
                xcb_change_property(connection, XCB_PROP_MODE_REPLACE, request.requestor, property,
                    type, 8, uint32_t(data.size()), data.constData());
                served = true;
            }
        }
    }
    xcb_selection_notify_event_t notify {};
    notify.response_type = XCB_SELECTION_NOTIFY;
    notify.time = request.time;
    notify.requestor = request.requestor;
    notify.selection = request.selection;
    notify.target = request.target;
    notify.property = served ? property : xcb_atom_t(XCB_ATOM_NONE);
    xcb_send_event(connection, 0, request.requestor, XCB_EVENT_MASK_NO_EVENT,
        reinterpret_cast<const char *>(&notify));
    xcb_flush(connection);
}

int serve(xcb_connection_t *connection, xcb_window_t window, const QList<Target> &targets)
{
    Atoms atoms;
    atoms.clipboard = internAtom(connection, QByteArrayLiteral("CLIPBOARD"));
    atoms.targets = internAtom(connection, QByteArrayLiteral("TARGETS"));
    atoms.timestamp = internAtom(connection, QByteArrayLiteral("TIMESTAMP"));
    atoms.text = internAtom(connection, QByteArrayLiteral("TEXT"));
    for (const Target &target : targets)
        atoms.offered.push_back(internAtom(connection, target.name));

    const std::optional<xcb_timestamp_t> now = serverTime(connection, window);
    if (!now)
        return 1;
    xcb_set_selection_owner(connection, window, atoms.clipboard, *now);
    const XcbReply<xcb_get_selection_owner_reply_t> owner(xcb_get_selection_owner_reply(
        connection, xcb_get_selection_owner(connection, atoms.clipboard), nullptr));
    if (!owner || owner->owner != window)
        return 1;

    // A property of more than one request's worth would need the incremental protocol; a
    // copy of Tarnwick's is far smaller, and such a target is refused rather than cut.
    const uint32_t maxBytes = xcb_get_maximum_request_length(connection) * 4U - 64U;
    while (true) {
        const XcbReply<xcb_generic_event_t> event(xcb_wait_for_event(connection));
        if (!event)
            return 0; // the display went
        const uint8_t type = event->response_type & 0x7f;
        if (type == XCB_SELECTION_CLEAR)
            return 0; // something else was copied
        if (type == XCB_SELECTION_REQUEST) {
            answer(connection,
                *reinterpret_cast<const xcb_selection_request_event_t *>(event.get()), atoms,
                targets, *now, maxBytes);
        }
    }
}

/// The program's own connection to its X11 display, or none.
xcb_connection_t *programConnection()
{
    const auto *x11 =
        qGuiApp ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    return x11 != nullptr ? x11->connection() : nullptr;
}

} // namespace

bool x11DisplayRuns()
{
    return programConnection() != nullptr;
}

bool desktopKeeperRuns()
{
    xcb_connection_t *connection = programConnection();
    if (connection == nullptr)
        return true;
    // Only if the atom exists (some program asked for it) can a keeper own it.
    static const char Keeper[] = "CLIPBOARD_MANAGER";
    const XcbReply<xcb_intern_atom_reply_t> atom(xcb_intern_atom_reply(
        connection, xcb_intern_atom(connection, 1, uint16_t(sizeof(Keeper) - 1), Keeper), nullptr));
    if (!atom)
        return true;
    if (atom->atom == XCB_ATOM_NONE)
        return false;
    const XcbReply<xcb_get_selection_owner_reply_t> owner(xcb_get_selection_owner_reply(
        connection, xcb_get_selection_owner(connection, atom->atom), nullptr));
    return !owner || owner->owner != XCB_WINDOW_NONE;
}

int serveOnX11Clipboard(const QList<Target> &targets)
{
    int screenNumber = 0;
    xcb_connection_t *connection = xcb_connect(nullptr, &screenNumber);
    if (xcb_connection_has_error(connection) != 0) {
        xcb_disconnect(connection);
        return 1;
    }
    // Named apart from the program, so that nothing takes the keeper for a running Tarnwick.
    prctl(PR_SET_NAME, "tarnwick-clip", 0, 0, 0);
    xcb_screen_iterator_t screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (int i = 0; i < screenNumber && screens.rem > 0; ++i)
        xcb_screen_next(&screens);
    if (screens.rem <= 0) {
        xcb_disconnect(connection);
        return 1;
    }
    // A window never shown: it owns the clipboard and hears of property changes.
    const xcb_window_t window = xcb_generate_id(connection);
    const uint32_t eventMask = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, window, screens.data->root, 0, 0, 1, 1, 0,
        XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &eventMask);
    const int code = serve(connection, window, targets);
    xcb_disconnect(connection);
    return code;
}

#else

bool x11DisplayRuns()
{
    return false;
}

bool desktopKeeperRuns()
{
    return true;
}

int serveOnX11Clipboard(const QList<Target> &)
{
    return 1;
}

#endif

} // namespace tarnwick::ClipboardKeeper
