#pragma once

#include "core/vberror.h"

#include <optional>
#include <utility>

namespace tarnwick {

/// Runs the steps of a handler the way the program's handlers are written: an error in one
/// step is remembered and the next step still runs. Use it instead of a try/catch per line.
///
///     ErrorTrap trap;
///     trap.step([&] { table.put(r, 3, conv::toSingle(text, locale)); });
///     trap.step([&] { ... });
///     if (trap.failed()) ...
class ErrorTrap
{
public:
    /// Runs f; returns false (and remembers the error) when it raised a VbError.
    template <typename F> bool step(F &&f)
    {
        try {
            std::forward<F>(f)();
            return true;
        } catch (const VbError &error) {
            record(error);
            return false;
        }
    }

    /// Remembers error as a step that raised it would: for an error found without raising.
    void record(const VbError &error)
    {
        if (!m_first)
            m_first = error;
        m_last = error;
    }

    bool failed() const { return m_first.has_value(); }
    const std::optional<VbError> &firstError() const { return m_first; }
    const std::optional<VbError> &lastError() const { return m_last; }

private:
    std::optional<VbError> m_first;
    std::optional<VbError> m_last;
};

} // namespace tarnwick
