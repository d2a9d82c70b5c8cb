#pragma once

// Keys by their place on the keyboard, for layouts that type something else on them.
#include <QtGlobal>

namespace tarnwick::test {

/// The platform's scan code of the top-row key marked digit (1 … 9, 0).
inline quint32 topRowScanCode(int digit)
{
    const quint32 place = digit == 0 ? 9 : quint32(digit - 1);
#if defined(Q_OS_WIN)
    return 0x02 + place;
#else
    return 10 + place;
#endif
}

} // namespace tarnwick::test
