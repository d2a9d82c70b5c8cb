#pragma once

#include <QObject>

#include <functional>

namespace tarnwick {

/// Calls back once after a dialog that reads the files it lists has closed: a print dialog
/// (its "Print to File" browser and its output file box list the files of a folder) or a file
/// dialog other than Tarnwick's own. Qt's
/// file dialog reads the first bytes of the files it lists to find their types, and on POSIX
/// systems closing such a read drops every lock this process holds on that file: the quote book
/// takes its locks anew after a dialog has listed its folder.
class FileDialogWatch : public QObject
{
public:
    /// Watches every widget of the application; closed runs from the event loop.
    FileDialogWatch(std::function<void()> closed, QObject *parent);

    /// A dialog that reads the files it lists to find their types: a print dialog, and any
    /// file dialog but Tarnwick's own.
    static bool listsFilesTheUsualWay(const QObject *watched);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    std::function<void()> m_closed;
    bool m_pending = false;
};

} // namespace tarnwick
