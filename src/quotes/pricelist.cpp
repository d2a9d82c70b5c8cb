#include "quotes/pricelist.h"

#include "catalogue/productrecord.h"
#include "catalogue/table.h"
#include "core/conversions.h"
#include "core/formats.h"
#include "products/priceladder.h"
#include "quotes/printcodes.h"

#include <QFont>
#include <QPagedPaintDevice>
#include <QPainter>
#include <QTextOption>

#include <algorithm>
#include <array>

namespace tarnwick::PriceList {

namespace {

QString textOf(const Cell &cell, const QLocale &locale)
{
    return cell.isNull() ? QString() : conv::toText(cell, locale);
}

/// "from <quantity>: <price>" for every break in ascending quantity, with the price a quote
/// charges from that quantity on (SetPrice's price, whatever order the points are kept in).
QStringList breaksOf(const Table &catalogue, int row, const QLocale &locale)
{
    QStringList breaks;
    for (const PriceBreak &entry : PriceLadder::breaks(catalogue, row, locale)) {
        breaks.append(QLatin1String("from ")
            + format(Cell(entry.quantity), QStringLiteral("#,###"), locale) + QLatin1String(": ")
            + format(Cell(entry.price), QStringLiteral("Currency"), locale));
    }
    return breaks;
}

/// Column shares of the page width and their alignment.
constexpr std::array<qreal, 4> Shares { 0.18, 0.42, 0.14, 0.26 };
const std::array<Qt::Alignment, 4> Alignments { Qt::AlignLeft, Qt::AlignLeft, Qt::AlignRight,
    Qt::AlignLeft };

/// Lays out and paints the list on one painter.
class Layout
{
public:
    Layout(QPainter &painter, const QRectF &page) : m_painter(painter), m_page(page)
    {
        m_body = QFont(FontFamily);
        m_body.setPointSizeF(10);
        m_bold = m_body;
        m_bold.setBold(true);
        m_header = m_body;
        m_header.setPointSizeF(12);
        m_header.setItalic(true);
        m_footer = m_body;
        m_footer.setPointSizeF(9);
        m_gap = QFontMetricsF(m_body, painter.device()).height() * 0.4;
    }

    std::array<QString, 4> cells(const PriceListEntry &entry) const
    {
        return { entry.partNumber, entry.name, entry.price, entry.breaks.join(QLatin1Char('\n')) };
    }

    QRectF column(int index, qreal top, qreal height) const
    {
        qreal left = m_page.left();
        for (int i = 0; i < index; ++i)
            left += m_page.width() * Shares.at(i);
        const qreal padding = m_gap;
        return { left + padding / 2, top, m_page.width() * Shares.at(index) - padding, height };
    }

    QTextOption option(int index) const
    {
        QTextOption wrap(Alignments.at(index) | Qt::AlignTop);
        wrap.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
        return wrap;
    }

    qreal rowHeight(const std::array<QString, 4> &texts, const QFont &font)
    {
        m_painter.setFont(font);
        qreal height = QFontMetricsF(font, m_painter.device()).height();
        for (int i = 0; i < 4; ++i) {
            const QRectF room = column(i, 0, 1e9);
            height =
                std::max(height, m_painter.boundingRect(room, texts.at(i), option(i)).height());
        }
        return height + m_gap;
    }

    void paintRow(const std::array<QString, 4> &texts, const QFont &font, qreal top, qreal height)
    {
        m_painter.setFont(font);
        for (int i = 0; i < 4; ++i)
            m_painter.drawText(column(i, top + m_gap / 2, height), texts.at(i), option(i));
    }

    qreal textHeight(const QFont &font) const
    {
        return QFontMetricsF(font, m_painter.device()).height();
    }

    void paintPageText(const PageText &text, const QFont &font, qreal top)
    {
        m_painter.setFont(font);
        const QRectF line(m_page.left(), top, m_page.width(), textHeight(font));
        m_painter.drawText(line, Qt::AlignLeft | Qt::AlignVCenter, text.left);
        m_painter.drawText(line, Qt::AlignHCenter | Qt::AlignVCenter, text.centre);
        m_painter.drawText(line, Qt::AlignRight | Qt::AlignVCenter, text.right);
    }

    void rule(qreal y, qreal width)
    {
        QPen pen(Qt::black);
        pen.setWidthF(width);
        m_painter.setPen(pen);
        m_painter.drawLine(QPointF(m_page.left(), y), QPointF(m_page.right(), y));
        m_painter.setPen(Qt::black);
    }

    QPainter &m_painter;
    QRectF m_page;
    QFont m_body, m_bold, m_header, m_footer;
    qreal m_gap = 0;
};

const std::array<QString, 4> Headings { QStringLiteral("Part Number"), QStringLiteral("Product"),
    QStringLiteral("List Price"), QStringLiteral("Price Breaks") };

/// Splits the rows into pages: each page takes whole rows while they fit below the headings.
std::vector<std::vector<int>> paginate(const std::vector<qreal> &heights, qreal room)
{
    std::vector<std::vector<int>> pages(1);
    qreal used = 0;
    for (int i = 0; i < int(heights.size()); ++i) {
        if (used + heights.at(i) > room && !pages.back().empty()) {
            pages.emplace_back();
            used = 0;
        }
        pages.back().push_back(i);
        used += heights.at(i);
    }
    return pages;
}

} // namespace

std::vector<PriceListEntry> entries(const Table &catalogue, const QLocale &locale)
{
    std::vector<PriceListEntry> list;
    for (int row = 1; row <= catalogue.rowCount(); ++row) {
        const Cell part = catalogue.get(row, ProductRecord::PartNumber);
        const Cell name = catalogue.get(row, ProductRecord::ProductName);
        if (part.isBlank() && name.isBlank())
            continue;
        list.push_back({ textOf(part, locale), textOf(name, locale),
            format(catalogue.get(row, ProductRecord::Price), QStringLiteral("Currency"), locale),
            breaksOf(catalogue, row, locale) });
    }
    return list;
}

int paint(QPagedPaintDevice &device, const std::vector<PriceListEntry> &entries,
    const PriceListPageText &pageText)
{
    QPainter painter;
    if (!painter.begin(&device))
        return 0;
    Layout layout(painter, QRectF(0, 0, device.width(), device.height()));
    const qreal headerHeight = layout.textHeight(layout.m_header) + layout.m_gap;
    const qreal footerHeight = layout.textHeight(layout.m_footer) + layout.m_gap;
    const qreal headingHeight = layout.rowHeight(Headings, layout.m_bold);
    std::vector<qreal> heights;
    for (const PriceListEntry &entry : entries)
        heights.push_back(layout.rowHeight(layout.cells(entry), layout.m_body));
    const qreal room = device.height() - headerHeight - footerHeight - headingHeight;
    const auto pages = paginate(heights, room);
    const int pageCount = int(pages.size());
    for (int p = 0; p < pageCount; ++p) {
        if (p > 0)
            device.newPage();
        layout.paintPageText(
            expandPrintCodes(pageText.header, p + 1, pageCount), layout.m_header, 0);
        qreal top = headerHeight;
        layout.paintRow(Headings, layout.m_bold, top, headingHeight);
        top += headingHeight;
        layout.rule(top, layout.m_gap / 8);
        for (const int index : pages.at(std::size_t(p))) {
            layout.paintRow(layout.cells(entries.at(std::size_t(index))), layout.m_body, top,
                heights.at(std::size_t(index)));
            top += heights.at(std::size_t(index));
        }
        layout.paintPageText(expandPrintCodes(pageText.footer, p + 1, pageCount), layout.m_footer,
            device.height() - layout.textHeight(layout.m_footer));
    }
    painter.end();
    return pageCount;
}

} // namespace tarnwick::PriceList
