#include "shell/filedialogwatch.h"

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

bool FileDialogWatch::eventFilter(QObject *watched, QEvent *event)
{
    // The print dialog lists files too: its output file box suggests the names of the folder
    // typed into it, read the same way.
    if (event->type() == QEvent::Hide && !m_pending
        && (qobject_cast<QFileDialog *>(watched)
            || qobject_cast<QAbstractPrintDialog *>(watched))) {
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
