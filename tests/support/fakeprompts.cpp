#include "support/fakeprompts.h"

#include <gtest/gtest.h>

namespace tarnwick::test {

int FakePrompts::msgBox(const QString &text, int style, const QString &title)
{
    m_shown.push_back({ ShownPrompt::Kind::Message, text, title, style, {} });
    if (m_whileShown)
        m_whileShown();
    if ((style & 0xF) == MsgStyle::OkOnly)
        return MsgResult::Ok;
    if (!m_messageAnswers.empty()) {
        const int answer = m_messageAnswers.front();
        m_messageAnswers.pop_front();
        return answer;
    }
    ADD_FAILURE() << "Unexpected message box: \"" << text.toStdString() << "\" (title \""
                  << title.toStdString() << "\", style " << style << ")";
    return MsgResult::Cancel;
}

QString FakePrompts::inputBox(
    const QString &prompt, const QString &title, const QString &defaultText)
{
    m_shown.push_back({ ShownPrompt::Kind::Input, prompt, title, 0, defaultText });
    if (!m_inputAnswers.empty()) {
        QString answer = m_inputAnswers.front();
        m_inputAnswers.pop_front();
        return answer;
    }
    ADD_FAILURE() << "Unexpected input box: \"" << prompt.toStdString() << "\"";
    return QString();
}

QString FakePrompts::passwordBox(const QString &prompt, const QString &title)
{
    const QString answer = inputBox(prompt, title, QString());
    m_shown.back().kind = ShownPrompt::Kind::Password;
    return answer;
}

QStringList FakePrompts::texts() const
{
    QStringList result;
    for (const ShownPrompt &prompt : m_shown)
        result << prompt.text;
    return result;
}

void FakePrompts::clear()
{
    m_shown.clear();
    m_messageAnswers.clear();
    m_inputAnswers.clear();
}

} // namespace tarnwick::test
