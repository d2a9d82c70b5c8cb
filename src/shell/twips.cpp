#include "shell/twips.h"

#include <QWidget>

#include <cmath>

namespace tarnwick {

double Twips::perPixel(const QWidget *widget)
{
    const int dpi = widget ? widget->logicalDpiX() : 96;
    return 1440.0 / (dpi > 0 ? dpi : 96);
}

int Twips::toPixels(double twips, double twipsPerPixel)
{
    return int(std::lround(twips / twipsPerPixel));
}

} // namespace tarnwick
