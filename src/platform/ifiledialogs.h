#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace tarnwick {

/// What an open or save dialog is asked to show. The filter is written the program's way,
/// pairs of description and pattern joined by "|": "Text (*.txt)|*.txt|All Files (*.*)|*.*".
/// filterIndex counts the pairs from 1.
struct FileDialogRequest
{
    QString title;
    QString filter;
    int filterIndex = 1;
    QString initialFolder;
    QString fileName;
    /// Folders the dialog offers in its side panel, in order (none: the dialog's own choice).
    QStringList places;
    /// A save dialog asks before an existing file is chosen; false where the caller asks itself,
    /// so the user is asked once.
    bool confirmOverwrite = true;
    /// The extension (without its dot) a save dialog adds to a name typed without one, before
    /// it asks about an existing file; none when empty.
    QString defaultSuffix;
};

/// The file the user chose and the filter (from 1) that was selected.
struct FileDialogResult
{
    QString path;
    int filterIndex = 1;
};

/// Common open and save dialogs. An empty optional means the user cancelled.
class IFileDialogs
{
public:
    virtual ~IFileDialogs() = default;

    virtual std::optional<FileDialogResult> getOpenFile(const FileDialogRequest &request) = 0;
    virtual std::optional<FileDialogResult> getSaveFile(const FileDialogRequest &request) = 0;
};

} // namespace tarnwick
