#include "shell/filedialogwatch.h"

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
    if (event->type() == QEvent::Hide && !m_pending && qobject_cast<QFileDialog *>(watched)) {
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
