#include "shell/twips.h"

#include <QWidget>

#include <algorithm>
#include <cmath>

namespace tarnwick {

double Twips::perPixel(const QWidget *widget)
{
    const int dpi = widget ? widget->logicalDpiX() : 96;
    return 1440.0 / (dpi > 0 ? dpi : 96);
}

int Twips::toPixels(double twips, double twipsPerPixel)
{
    // A damaged setting may hold any single (1e30): far beyond every screen, it is as far as
    // a screen's width can be measured, not a number the conversion cannot hold.
    constexpr double Farthest = 1'000'000.0;
    const double pixels = twips / twipsPerPixel;
    if (std::isnan(pixels))
        return 0;
    return int(std::lround(std::clamp(pixels, -Farthest, Farthest)));
}

} // namespace tarnwick
