#include "platform/qt/windowsize.h"

#include <QFontMetricsF>
#include <QScreen>
#include <QStyle>
#include <QWidget>

#include <algorithm>
#include <cmath>

namespace tarnwick::WindowSize {

QSize scaled(const QSize &designed, qreal lineHeight)
{
    const qreal factor = std::max<qreal>(1.0, lineHeight / DesignLineHeight);
    return QSize(
        int(std::lround(designed.width() * factor)), int(std::lround(designed.height() * factor)));
}

QSize forFont(const QWidget &window, const QSize &designed)
{
    const QSize wanted = scaled(designed, QFontMetricsF(window.font()).height());
    const QWidget *owner = window.parentWidget() != nullptr ? window.parentWidget() : &window;
    const QScreen *screen = owner->screen();
    if (screen == nullptr)
        return wanted;
    const int titleBar = window.style()->pixelMetric(QStyle::PM_TitleBarHeight, nullptr, &window);
    return wanted.boundedTo(screen->availableGeometry().size() - QSize(0, titleBar));
}

} // namespace tarnwick::WindowSize
