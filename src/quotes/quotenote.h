#pragma once

#include "platform/filewrite.h"

#include <QString>

namespace tarnwick {

class ISettingsStore;

/// The heading and ending of a quote document: Quote Note's two files as they are, and the
/// texts a quote is saved with.
struct QuoteTexts
{
    QString heading;
    QString ending;

    bool operator==(const QuoteTexts &) const = default;
};

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
/// text as a note file holds it: plain text, CR LF line ends, characters as in the catalogue.
QByteArray fileBytes(const QString &text);
/// Saves text as plain text with CR LF line ends, whole or not at all (a failed save keeps the
/// old file and says why).
FileWriteResult saveText(const QString &path, const QString &text);
/// Saves the heading and the ending of folder together: both files are written completely
/// before either replaces its old file, so a failure keeps both old files as they were.
FileWriteResult saveNotes(const QString &folder, const QString &heading, const QString &ending);

QString readHeading(const QString &folder);
QString readEnding(const QString &folder);
/// Both files of folder at once.
QuoteTexts readTexts(const QString &folder);

/// "NoIncludes" as an integer (default 0; a number is rounded half to even, and a value that
/// is no number, or one beyond the range of a 16-bit integer, counts as 0).
int noIncludes(const ISettingsStore &settings);
/// False when the setting could not be written (the store's writeError() says why).
bool saveNoIncludes(ISettingsStore &settings, int value);

/// "VolumePrices" as an integer, read as "NoIncludes" is (default 0); 1
/// shows the cheaper volume prices under the quote document's lines.
int volumePrices(const ISettingsStore &settings);
bool saveVolumePrices(ISettingsStore &settings, int value);

} // namespace QuoteNote

} // namespace tarnwick
