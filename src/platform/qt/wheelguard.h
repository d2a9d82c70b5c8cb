#pragma once

class QWidget;

namespace tarnwick {

/// Lets a list box (or any box that changes its value under the mouse wheel) change only while
/// it has the keyboard. The wheel turned to scroll a window, passing over such a box on its
/// way, must not change what the box stands for (a quote's status kept in the quote book, a
/// column of the import's mapping); without the keyboard the box lets the wheel pass, and a
/// click gives it the keyboard as before.
void changeOnWheelOnlyWithFocus(QWidget *box);

} // namespace tarnwick
