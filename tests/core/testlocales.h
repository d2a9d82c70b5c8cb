#pragma once

#include "core/vberror.h"

#include <QLocale>

#include <gtest/gtest.h>

namespace tarnwick::testing {

/// The locales the core tests pass explicitly, so no result depends on the machine.
inline QLocale enUS()
{
    return QLocale(QLocale::English, QLocale::UnitedStates);
}

inline QLocale deDE()
{
    return QLocale(QLocale::German, QLocale::Germany);
}

inline QLocale frFR()
{
    return QLocale(QLocale::French, QLocale::France);
}

/// Runs f and returns the number of the VbError it raised, or -1 when it raised none.
template <typename F> int errorNumberOf(F &&f)
{
    try {
        f();
    } catch (const VbError &error) {
        return error.number();
    }
    return -1;
}

} // namespace tarnwick::testing
