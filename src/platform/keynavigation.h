#pragma once

#include <QKeyCombination>

namespace tarnwick::KeyNavigation {

/// Tab (1) or Shift+Tab (-1), with or without Ctrl; anything else 0.
inline int tabDirection(const QKeyCombination &key)
{
    const Qt::KeyboardModifiers modifiers = key.keyboardModifiers() & ~Qt::KeypadModifier;
    if (modifiers & (Qt::AltModifier | Qt::MetaModifier))
        return 0;
    // Shift+Tab arrives as Backtab on most desktops, as Tab with Shift on others.
    if (key.key() == Qt::Key_Backtab
        || (key.key() == Qt::Key_Tab && (modifiers & Qt::ShiftModifier)))
        return -1;
    return key.key() == Qt::Key_Tab ? 1 : 0;
}

/// Ctrl+Tab (1) or Ctrl+Shift+Tab (-1), which leave a list or grid whose Tab stays inside it
/// (Qt's convention); anything else 0.
inline int ctrlTabDirection(const QKeyCombination &key)
{
    return key.keyboardModifiers() & Qt::ControlModifier ? tabDirection(key) : 0;
}

} // namespace tarnwick::KeyNavigation
