#pragma once

#include <QSizeF>

#include <functional>

class QPagedPaintDevice;
class QPaintDevice;
class QPainter;

namespace tarnwick {

/// The size and resolution of the pages a document is laid out for: a printer's printable
/// area in its own device pixels and its dots per inch.
struct PageGeometry
{
    QSizeF size;
    int dpiX = 96;
    int dpiY = 96;

    static PageGeometry of(const QPaintDevice &device);
    bool operator==(const PageGeometry &) const = default;
};

/// A document laid out in pages as they are asked for, so the first page of a long document
/// shows at once and the rest is laid out while the reader looks at it. Nothing of the layout
/// needs the device the pages are painted on: a page is painted on any painter whose device
/// has the geometry's resolution (a printer, or an image of that resolution for the screen).
class PagedDocument
{
public:
    virtual ~PagedDocument() = default;

    /// Starts the layout afresh for pages of geometry.
    virtual void beginLayout(const PageGeometry &geometry) = 0;
    /// Lays out more of the document, for about the given time (at least one row); true once
    /// the whole document is laid out.
    virtual bool layoutMore(int milliseconds) = 0;
    /// Lays out until page (0-based) is settled or the document ends.
    virtual void layoutThroughPage(int page) = 0;
    /// The pages settled so far: every page once isLaidOut().
    virtual int pagesReady() const = 0;
    virtual bool isLaidOut() const = 0;
    /// Paints a settled page; the painter's device has the geometry's resolution and at least
    /// its size.
    virtual void paintPage(QPainter &painter, int page) const = 0;
};

/// What a long print says between pieces of its work: the pages laid out (total 0, the layout
/// still going on) or painted (of total) so far; false stops the print there.
using PrintProgress = std::function<bool(int done, int total)>;

/// Lays out the whole document for device and paints every page on it, one newPage() per
/// further page; returns the number of pages (0 when device could not be painted on). With
/// progress, it is asked between pieces of layout of about a tenth of a second and between
/// pages; when it answers false, nothing more is painted and the result is -1.
int paintAllPages(
    PagedDocument &document, QPagedPaintDevice &device, const PrintProgress &progress = {});

} // namespace tarnwick
