#include "platform/qt/qteventpump.h"

#include <QCoreApplication>

namespace tarnwick {

void QtEventPump::processPendingEvents()
{
    QCoreApplication::processEvents();
}

} // namespace tarnwick
