#include "platform/qt/wheelguard.h"

#include <QEvent>
#include <QWidget>

namespace tarnwick {

namespace {

class WheelGuard : public QObject
{
public:
    using QObject::QObject;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() != QEvent::Wheel)
            return false;
        const auto *box = static_cast<QWidget *>(watched);
        if (box->hasFocus())
            return false;
        // Not for this box: the wheel goes on to the window around it.
        event->ignore();
        return true;
    }
};

} // namespace

void changeOnWheelOnlyWithFocus(QWidget *box)
{
    // A wheel focus would give the box the keyboard with the first turn of the wheel.
    if (box->focusPolicy() == Qt::WheelFocus)
        box->setFocusPolicy(Qt::StrongFocus);
    box->installEventFilter(new WheelGuard(box));
}

} // namespace tarnwick
