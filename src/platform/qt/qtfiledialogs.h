#pragma once

#include "platform/ifiledialogs.h"

#include <QString>
#include <QStringList>

#include <functional>

class QFileDialog;
class QWidget;

namespace tarnwick {

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

/// Sets up an open dialog as the request asks: one existing file, the name filters with the
/// requested one selected, and the request's places in the side panel of Qt's own dialog (a
/// dialog of the desktop shows the desktop's places itself).
void prepareOpenDialog(QFileDialog &dialog, const FileDialogRequest &request);

/// Open and save dialogs through QFileDialog, over the program's active window.
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
