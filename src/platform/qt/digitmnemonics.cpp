#include "platform/qt/digitmnemonics.h"

#include <QKeyEvent>
#include <QKeySequence>
#include <QLabel>

namespace tarnwick {

namespace {

// The scan code of the key 1; the keys 1 … 9 and 0 lie side by side in the top row, and their
// codes follow that order.
#if defined(Q_OS_WIN)
constexpr quint32 TopRowKeyOne = 0x02; // the PC keyboard's scan codes
#elif defined(Q_OS_UNIX) && !defined(Q_OS_DARWIN)
constexpr quint32 TopRowKeyOne = 10; // X11's and Wayland's key codes: the kernel's codes + 8
#else
constexpr quint32 TopRowKeyOne = 0; // no scan codes known
#endif

class DigitMnemonics : public QObject
{
public:
    explicit DigitMnemonics(QWidget *window) : QObject(window), m_window(window) { }

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() != QEvent::KeyPress)
            return false;
        const auto *key = static_cast<QKeyEvent *>(event);
        if ((key->modifiers() & ~Qt::KeypadModifier) != Qt::AltModifier)
            return false;
        // A layout that types the digit leaves the key to Qt's own mnemonics.
        if (key->key() >= Qt::Key_0 && key->key() <= Qt::Key_9)
            return false;
        const int digit = digitRowPlace(key->nativeScanCode());
        if (digit < 0)
            return false;
        const QKeySequence mnemonic(QKeyCombination(Qt::AltModifier, Qt::Key(Qt::Key_0 + digit)));
        for (QLabel *label : m_window->findChildren<QLabel *>()) {
            QWidget *buddy = label->buddy();
            if (buddy && buddy->isVisible() && buddy->isEnabled()
                && QKeySequence::mnemonic(label->text()) == mnemonic) {
                buddy->setFocus(Qt::ShortcutFocusReason);
                return true;
            }
        }
        return false;
    }

private:
    QWidget *m_window;
};

} // namespace

int digitRowPlace(quint32 nativeScanCode)
{
    if (TopRowKeyOne == 0 || nativeScanCode < TopRowKeyOne || nativeScanCode > TopRowKeyOne + 9)
        return -1;
    return int(nativeScanCode - TopRowKeyOne + 1) % 10;
}

void followDigitMnemonicsByPlace(QWidget *window)
{
    auto *filter = new DigitMnemonics(window);
    window->installEventFilter(filter);
    for (QWidget *child : window->findChildren<QWidget *>())
        child->installEventFilter(filter);
}

} // namespace tarnwick
