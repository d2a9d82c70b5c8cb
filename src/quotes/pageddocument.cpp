#include "quotes/pageddocument.h"

#include <QPagedPaintDevice>
#include <QPainter>

#include <limits>

namespace tarnwick {

PageGeometry PageGeometry::of(const QPaintDevice &device)
{
    return { QSizeF(device.width(), device.height()), device.logicalDpiX(), device.logicalDpiY() };
}

int paintAllPages(PagedDocument &document, QPagedPaintDevice &device, const PrintProgress &progress)
{
    document.beginLayout(PageGeometry::of(device));
    // Without anyone to tell, the layout runs in one go.
    const int piece = progress ? 100 : std::numeric_limits<int>::max();
    while (!document.layoutMore(piece)) {
        if (progress && !progress(document.pagesReady(), 0))
            return -1;
    }
    QPainter painter;
    if (!painter.begin(&device))
        return 0;
    const int pages = document.pagesReady();
    for (int page = 0; page < pages; ++page) {
        if (progress && !progress(page, pages)) {
            painter.end();
            return -1;
        }
        if (page > 0)
            device.newPage();
        document.paintPage(painter, page);
    }
    painter.end();
    if (progress)
        progress(pages, pages);
    return pages;
}

} // namespace tarnwick
