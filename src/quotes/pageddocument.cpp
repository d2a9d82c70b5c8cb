#include "quotes/pageddocument.h"

#include <QPagedPaintDevice>
#include <QPainter>

#include <limits>

namespace tarnwick {

PageGeometry PageGeometry::of(const QPaintDevice &device)
{
    return { QSizeF(device.width(), device.height()), device.logicalDpiX(), device.logicalDpiY() };
}

int paintAllPages(PagedDocument &document, QPagedPaintDevice &device)
{
    document.beginLayout(PageGeometry::of(device));
    while (!document.layoutMore(std::numeric_limits<int>::max())) { }
    QPainter painter;
    if (!painter.begin(&device))
        return 0;
    const int pages = document.pagesReady();
    for (int page = 0; page < pages; ++page) {
        if (page > 0)
            device.newPage();
        document.paintPage(painter, page);
    }
    painter.end();
    return pages;
}

} // namespace tarnwick
