#pragma once

#include "platform/iprompts.h"

#include <QString>
#include <QStringList>

#include <deque>
#include <functional>
#include <vector>

namespace tarnwick::test {

/// One box the program showed, as the fake recorded it.
struct ShownPrompt
{
    enum class Kind { Message, Input, Password };
    Kind kind;
    QString text; ///< message text or input prompt
    QString title;
    int style = 0; ///< message boxes only
    QString defaultText; ///< input boxes only
};

/// Recording message and input boxes. Message boxes with only an OK button answer Ok by
/// themselves; every other box takes the next scripted answer of its kind, and a box with
/// nothing scripted fails the test and answers Cancel (or the empty text).
class FakePrompts : public IPrompts
{
public:
    int msgBox(const QString &text, int style, const QString &title) override;
    QString inputBox(
        const QString &prompt, const QString &title, const QString &defaultText) override;
    /// A password box takes the scripted input answers too, recorded as Kind::Password.
    QString passwordBox(const QString &prompt, const QString &title) override;

    /// Scripts the answer of the next message box (MsgResult::Yes …).
    void answerMessage(int result) { m_messageAnswers.push_back(result); }
    /// Scripts the text typed into the next input box (empty = Cancel).
    void answerInput(const QString &text) { m_inputAnswers.push_back(text); }
    /// Runs action while each message box is up, before it answers: a real box runs the event
    /// loop meanwhile, so timers and queued calls of the program go on.
    void whileShown(std::function<void()> action) { m_whileShown = std::move(action); }

    const std::vector<ShownPrompt> &shown() const { return m_shown; }
    /// The texts of every box shown, in order.
    QStringList texts() const;
    /// Scripted answers that no box has taken yet.
    int unusedAnswers() const { return int(m_messageAnswers.size() + m_inputAnswers.size()); }
    void clear();

private:
    std::vector<ShownPrompt> m_shown;
    std::deque<int> m_messageAnswers;
    std::deque<QString> m_inputAnswers;
    std::function<void()> m_whileShown;
};

} // namespace tarnwick::test
