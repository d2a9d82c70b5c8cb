#pragma once

#include "platform/ifiledialogs.h"

#include <QLatin1String>
#include <QString>
#include <QStringList>

#include <functional>

#include <QFileIconProvider>
#include <QMimeDatabase>

class QFileDialog;
class QWidget;

namespace tarnwick {

/// The icons and types of the files a dialog lists, known from their names alone. Qt's own
/// provider reads the first bytes of a file whose name does not tell its type (quotes.db,
/// quotes.db-wal), and on POSIX systems closing that read drops every lock this process holds
/// on the file: SQLite would go on writing the quote book as if it still held its locks.
class FileIconsByName : public QFileIconProvider
{
public:
    FileIconsByName();
    QIcon icon(const QFileInfo &info) const override;
    QString type(const QFileInfo &info) const override;

private:
    QMimeDatabase m_types;
};

/// Qt's own dialog, whatever the desktop offers (a desktop's dialog reads the files it lists
/// to find their types), listing files with icons and types known from their names.
void listFilesByName(QFileDialog &dialog, FileIconsByName &icons);

/// The name filter to select for a filter index counted from 1; the first one when the index
/// is out of range, the empty text when there are no filters.
QString nameFilterAt(const QStringList &nameFilters, int filterIndex);
/// The index (from 1) of the name filter the user selected; fallbackIndex when the dialog
/// reported none of the offered filters.
int nameFilterIndex(
    const QStringList &nameFilters, const QString &selectedFilter, int fallbackIndex);
/// Where the dialog opens: the proposed file name in the initial folder, either one alone, or
/// the empty text (the dialog's own choice).
QString initialDialogPath(const FileDialogRequest &request);

/// Shows each type in the dialog's list of file types under its description exactly as the
/// request's filter writes it ("All Files (*.*)", "Text Files(*.txt)"), while the dialog lists
/// the files of the patterns Qt was given ("*" for "*.*"). A blank description keeps Qt's text.
void showFilterDescriptions(QFileDialog &dialog, const QString &filter);
/// The index (from 1) of the file type chosen in the dialog's list; fallbackIndex when the
/// list is not there or nothing is chosen.
int chosenFilterIndex(const QFileDialog &dialog, int fallbackIndex);

/// What the side panel calls the user's home folder.
inline constexpr QLatin1String HomePlaceName { "Home" };

/// Shows folders in the side panel of Qt's dialog, the home folder as "Home"; none leaves the
/// panel as it is.
void showPlaces(QFileDialog &dialog, const QStringList &folders);

/// Sets up an open dialog as the request asks: one existing file, the name filters with the
/// requested one selected, and the request's places in the side panel.
void prepareOpenDialog(QFileDialog &dialog, const FileDialogRequest &request);

/// Said when a name typed into a save dialog holds a double quote, which Qt's dialog would take
/// for the quotes around one of several names.
inline constexpr const char *QuoteInFileNameMessage =
    "A file name here cannot hold a double quote (\"). Choose a name without one (for inches, "
    "in or two single quotes '' will do).";

/// Open and save dialogs through QFileDialog, over the program's active window; a request
/// that names no places shows the desktop's.
class QtFileDialogs : public IFileDialogs
{
public:
    /// parentProvider gives the window that owns each dialog; without one, the active window.
    explicit QtFileDialogs(std::function<QWidget *()> parentProvider = {});

    std::optional<FileDialogResult> getOpenFile(const FileDialogRequest &request) override;
    std::optional<FileDialogResult> getSaveFile(const FileDialogRequest &request) override;

private:
    std::optional<FileDialogResult> runSave(const FileDialogRequest &request) const;
    std::optional<FileDialogResult> runOpen(const FileDialogRequest &request) const;
    QWidget *parentWidget() const;
    std::function<QWidget *()> m_parentProvider;
};

} // namespace tarnwick
