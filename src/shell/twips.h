#pragma once

class QWidget;

namespace tarnwick {

/// Positions and sizes of the main window are kept in twips (1/1440 inch). At the screen's
/// logical resolution of 96 dpi a pixel is 15 twips.
class Twips
{
public:
    /// Twips per pixel at the widget's logical resolution (15 at 96 dpi).
    static double perPixel(const QWidget *widget);
    /// Rounded to the nearest pixel, and kept within a million pixels either way.
    static int toPixels(double twips, double twipsPerPixel);
    static double fromPixels(int pixels, double twipsPerPixel) { return pixels * twipsPerPixel; }
};

} // namespace tarnwick
