#pragma once

#include <QApplication>
#include <QFont>

namespace tarnwick::test {

/// The desktop font at pointSize for as long as it lives (a user's large font); the usual one
/// is given back afterwards.
class LargeFont
{
public:
    explicit LargeFont(qreal pointSize) : m_usual(QApplication::font())
    {
        QFont large = m_usual;
        large.setPointSizeF(pointSize);
        QApplication::setFont(large);
    }
    ~LargeFont() { QApplication::setFont(m_usual); }
    LargeFont(const LargeFont &) = delete;
    LargeFont &operator=(const LargeFont &) = delete;

private:
    QFont m_usual;
};

} // namespace tarnwick::test
