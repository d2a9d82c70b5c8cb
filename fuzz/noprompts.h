#pragma once

#include "platform/iprompts.h"

namespace tarnwick::fuzzing {

/// Prompts for code that must not ask anything: every box counts and answers Cancel.
class NoPrompts : public IPrompts
{
public:
    int msgBox(const QString &, int = MsgStyle::OkOnly, const QString & = QString()) override
    {
        ++m_shown;
        return MsgResult::Cancel;
    }
    QString inputBox(
        const QString &, const QString & = QString(), const QString & = QString()) override
    {
        ++m_shown;
        return QString();
    }
    int shown() const { return m_shown; }

private:
    int m_shown = 0;
};

} // namespace tarnwick::fuzzing
