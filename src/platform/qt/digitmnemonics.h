#pragma once

#include <QtGlobal>

class QKeyEvent;
class QWidget;

namespace tarnwick {

/// The digit (0 to 9) printed on the key of the keyboard's top row that has the scan code
/// nativeScanCode, as the platform numbers the keys by their place; -1 for any other key and
/// where the platform gives no scan code.
int digitRowPlace(quint32 nativeScanCode);

/// Lets Alt with a key of the top row follow the window's mnemonics "&1" to "&9" (and "&0")
/// by the key's place, as it does on a layout where that key types its digit. On a layout
/// whose top row types other characters without Shift (French AZERTY: & é " ' ( …), Alt with
/// the key marked 1 arrives as Alt+&, which no mnemonic matches: the label's buddy takes the
/// keyboard as the mnemonic would give it. Watches the window and the widgets it has now.
void followDigitMnemonicsByPlace(QWidget *window);

} // namespace tarnwick
