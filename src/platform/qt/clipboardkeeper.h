#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <optional>

class QMimeData;

namespace tarnwick::ClipboardKeeper {

/// The argument that starts this program as the keeper of what it copied: the program ends,
/// the keeper stays and serves the copy on the X11 clipboard until something else is copied.
inline constexpr char KeepClipboardArgument[] = "--keep-clipboard";

/// The largest copy handed to the keeper (a quote or a product report is a few kilobytes).
inline constexpr qsizetype MaxTargetBytes = 4 * 1024 * 1024;

/// One form of the copy as the X11 clipboard offers it: the target's name and its bytes.
struct Target
{
    QByteArray name;
    QByteArray data;
    friend bool operator==(const Target &, const Target &) = default;
};

/// The targets the program's own clipboard offers for this data, each with the bytes a
/// program asking for it receives: every MIME format under its own name, and the plain text
/// also as UTF8_STRING, STRING and TEXT (both Latin-1, as the X11 conventions have it).
QList<Target> targetsFor(const QMimeData &data);

/// The targets as the keeper reads them from its hand-over file.
QByteArray encode(const QList<Target> &targets);
/// The targets of a hand-over file; nothing for bytes that are not one written by encode()
/// (cut short, too long, or a target without a name).
std::optional<QList<Target>> decode(const QByteArray &bytes);

/// Started with KeepClipboardArgument and a hand-over file: reads and deletes the file, takes
/// the clipboard and serves it until another program takes it or the display goes; returns
/// the exit code. Otherwise nothing.
std::optional<int> runIfAsked(int argc, char *argv[]);

/// Starts a keeper for the clipboard's present contents and waits until it holds them.
/// Whether it does; false where there is no X11 display, the copy is too large, or the
/// keeper did not take the clipboard within a few seconds.
bool handOver(const QMimeData &data);

} // namespace tarnwick::ClipboardKeeper
