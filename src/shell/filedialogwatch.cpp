#include "shell/filedialogwatch.h"

#include "platform/qt/qtfiledialogs.h"

#include <QAbstractPrintDialog>
#include <QCoreApplication>
#include <QEvent>
#include <QFileDialog>
#include <QTimer>

namespace tarnwick {

FileDialogWatch::FileDialogWatch(std::function<void()> closed, QObject *parent)
    : QObject(parent), m_closed(std::move(closed))
{
    QCoreApplication::instance()->installEventFilter(this);
}

bool FileDialogWatch::listsFilesTheUsualWay(const QObject *watched)
{
    // Tarnwick's own file dialogs know files by their names (FileIconsByName) and read none.
    // The print dialog lists files too: its output file box suggests the names of the folder
    // typed into it, and its "..." opens a file dialog of Qt's.
    if (const auto *files = qobject_cast<const QFileDialog *>(watched))
        return !dynamic_cast<const FileIconsByName *>(files->iconProvider());
    return qobject_cast<const QAbstractPrintDialog *>(watched) != nullptr;
}

bool FileDialogWatch::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Hide && !m_pending && listsFilesTheUsualWay(watched)) {
        m_pending = true;
        QTimer::singleShot(0, this, [this] {
            m_pending = false;
            if (m_closed)
                m_closed();
        });
    }
    return QObject::eventFilter(watched, event);
}

} // namespace tarnwick
