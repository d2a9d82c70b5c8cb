#pragma once

#include <QString>

namespace tarnwick {

class ISettingsStore;

/// The user's own heading and ending of the quote document, kept as plain text files in the
/// application folder, and the "NoIncludes" setting.
namespace QuoteNote {

/// The heading file is read as "QuoteNoteHead.txt" and written as "QuoteNotehead.txt"; on a
/// file system that tells case apart these are two names of the one file (see headingPath).
inline constexpr QLatin1String HeadingFileName("QuoteNoteHead.txt");
inline constexpr QLatin1String HeadingFileSaveName("QuoteNotehead.txt");
inline constexpr QLatin1String EndingFileName("QuoteNote.txt");

/// The heading file of folder: the one of the two names that exists ("QuoteNoteHead.txt"
/// first); when neither exists, the name it is saved under.
QString headingPath(const QString &folder);
QString endingPath(const QString &folder);

/// The text of a note file, line ends as line feeds; a missing or unreadable file gives the
/// empty text. Characters as in the catalogue file (UTF-8, else Windows-1252).
QString readText(const QString &path);
/// Saves text as plain text with CR LF line ends, safely (a failed save keeps the old file).
/// Returns false when the file could not be written.
bool saveText(const QString &path, const QString &text);

QString readHeading(const QString &folder);
QString readEnding(const QString &folder);

/// "NoIncludes" as an integer (default 0; a value that is no whole number counts as 0).
int noIncludes(const ISettingsStore &settings);
void saveNoIncludes(ISettingsStore &settings, int value);

} // namespace QuoteNote

} // namespace tarnwick
