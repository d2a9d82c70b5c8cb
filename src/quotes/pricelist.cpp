#include "quotes/pricelist.h"

#include "catalogue/productrecord.h"
#include "catalogue/table.h"
#include "core/conversions.h"
#include "core/formats.h"
#include "products/priceladder.h"
#include "quotes/printcodes.h"

#include <QElapsedTimer>
#include <QFont>
#include <QImage>
#include <QPainter>
#include <QTextOption>

#include <algorithm>
#include <array>

namespace tarnwick {

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

/// Column shares of the page width and their alignment. The list price's column holds
/// "$99,999,999.99" in the body font on Letter and A4 paper.
constexpr std::array<qreal, 4> Shares { 0.18, 0.38, 0.18, 0.26 };
const std::array<Qt::Alignment, 4> Alignments { Qt::AlignLeft, Qt::AlignLeft, Qt::AlignRight,
    Qt::AlignLeft };

const std::array<QString, 4> Headings { QStringLiteral("Part Number"), QStringLiteral("Product"),
    QStringLiteral("List Price"), QStringLiteral("Price Breaks") };

std::array<QString, 4> cellsOf(const PriceListEntry &entry)
{
    return { entry.partNumber, entry.name, entry.price, entry.breaks.join(QLatin1Char('\n')) };
}

QTextOption optionOf(int column)
{
    // Part numbers and names may be one long word; a price is never broken inside its
    // number, where "$10,000,000.0" over a lone "0" would read as another price.
    QTextOption wrap(Alignments.at(std::size_t(column)) | Qt::AlignTop);
    wrap.setWrapMode(
        column < 2 ? QTextOption::WrapAtWordBoundaryOrAnywhere : QTextOption::WordWrap);
    return wrap;
}

} // namespace

/// The fonts, the column rectangles and the heights of the page's parts for one page
/// geometry. Texts are measured on a small image of the geometry's resolution, so the layout
/// never needs the device the pages are painted on, and measures alike for every device.
class PriceListDocument::Metrics
{
public:
    explicit Metrics(const PageGeometry &geometry)
        : m_page(QPointF(0, 0), geometry.size), m_image(8, 8, QImage::Format_ARGB32_Premultiplied)
    {
        // QImage keeps its resolution in dots per metre.
        m_image.setDotsPerMeterX(qRound(geometry.dpiX / 0.0254));
        m_image.setDotsPerMeterY(qRound(geometry.dpiY / 0.0254));
        m_measure.begin(&m_image);
        body = QFont(PriceList::FontFamily);
        body.setPointSizeF(10);
        bold = body;
        bold.setBold(true);
        header = body;
        header.setPointSizeF(12);
        header.setItalic(true);
        footer = body;
        footer.setPointSizeF(9);
        gap = textHeight(body) * 0.4;
        headerHeight = textHeight(header) + gap;
        footerHeight = textHeight(footer) + gap;
        headingHeight = rowHeight(Headings, bold);
        room = m_page.height() - headerHeight - footerHeight - headingHeight;
    }

    qreal textHeight(const QFont &font) const { return QFontMetricsF(font, &m_image).height(); }

    QRectF column(int index, qreal top, qreal height) const
    {
        qreal left = m_page.left();
        for (int i = 0; i < index; ++i)
            left += m_page.width() * Shares.at(std::size_t(i));
        return { left + gap / 2, top, m_page.width() * Shares.at(std::size_t(index)) - gap,
            height };
    }

    qreal rowHeight(const std::array<QString, 4> &texts, const QFont &font)
    {
        m_measure.setFont(font);
        qreal height = textHeight(font);
        for (int i = 0; i < 4; ++i) {
            const QRectF space = column(i, 0, 1e9);
            height = std::max(height,
                m_measure.boundingRect(space, texts.at(std::size_t(i)), optionOf(i)).height());
        }
        return height + gap;
    }

    void paintRow(QPainter &painter, const std::array<QString, 4> &texts, const QFont &font,
        qreal top, qreal height) const
    {
        painter.setFont(font);
        for (int i = 0; i < 4; ++i)
            painter.drawText(
                column(i, top + gap / 2, height), texts.at(std::size_t(i)), optionOf(i));
    }

    void paintPageText(QPainter &painter, const PageText &text, const QFont &font, qreal top) const
    {
        painter.setFont(font);
        const QRectF line(m_page.left(), top, m_page.width(), textHeight(font));
        painter.drawText(line, Qt::AlignLeft | Qt::AlignVCenter, text.left);
        painter.drawText(line, Qt::AlignHCenter | Qt::AlignVCenter, text.centre);
        painter.drawText(line, Qt::AlignRight | Qt::AlignVCenter, text.right);
    }

    void rule(QPainter &painter, qreal y) const
    {
        QPen pen(Qt::black);
        pen.setWidthF(gap / 8);
        painter.setPen(pen);
        painter.drawLine(QPointF(m_page.left(), y), QPointF(m_page.right(), y));
        painter.setPen(Qt::black);
    }

    qreal pageHeight() const { return m_page.height(); }

    QFont body, bold, header, footer;
    qreal gap = 0;
    qreal headerHeight = 0;
    qreal footerHeight = 0;
    qreal headingHeight = 0;
    qreal room = 0; ///< the height rows may take on a page

private:
    QRectF m_page;
    QImage m_image;
    QPainter m_measure;
};

namespace PriceList {

std::optional<PriceListEntry> entryOfRow(const Table &catalogue, int row, const QLocale &locale)
{
    const Cell &part = catalogue.get(row, ProductRecord::PartNumber);
    const Cell &name = catalogue.get(row, ProductRecord::ProductName);
    if (part.isBlank() && name.isBlank())
        return std::nullopt;
    return PriceListEntry { textOf(part, locale), textOf(name, locale),
        format(catalogue.get(row, ProductRecord::Price), QStringLiteral("Currency"), locale),
        breaksOf(catalogue, row, locale) };
}

std::vector<PriceListEntry> entries(const Table &catalogue, const QLocale &locale)
{
    std::vector<PriceListEntry> list;
    for (int row = 1; row <= catalogue.rowCount(); ++row) {
        if (auto entry = entryOfRow(catalogue, row, locale))
            list.push_back(std::move(*entry));
    }
    return list;
}

int paint(QPagedPaintDevice &device, const std::vector<PriceListEntry> &entries,
    const PriceListPageText &pageText)
{
    PriceListDocument document(entries, pageText);
    return paintAllPages(document, device);
}

} // namespace PriceList

PriceListDocument::PriceListDocument(
    const Table &catalogue, const QLocale &locale, PriceListPageText pageText)
    : m_catalogue(&catalogue), m_locale(locale), m_pageText(std::move(pageText))
{
}

PriceListDocument::PriceListDocument(
    std::vector<PriceListEntry> entries, PriceListPageText pageText)
    : m_entries(std::move(entries)), m_pageText(std::move(pageText))
{
}

PriceListDocument::~PriceListDocument() = default;

int PriceListDocument::itemCount() const
{
    return m_catalogue ? m_catalogue->rowCount() : int(m_entries.size());
}

std::optional<PriceListEntry> PriceListDocument::itemAt(int index) const
{
    if (m_catalogue)
        return PriceList::entryOfRow(*m_catalogue, index + 1, m_locale);
    return m_entries.at(std::size_t(index));
}

void PriceListDocument::beginLayout(const PageGeometry &geometry)
{
    m_metrics = std::make_unique<Metrics>(geometry);
    m_pageStarts.assign(1, 0);
    m_next = 0;
    m_used = 0;
    m_pageHasRows = false;
    m_done = false;
}

bool PriceListDocument::layoutNextRow()
{
    // A row that does not fit below the rows already on the page starts the next page; a row
    // taller than a whole page has a page of its own.
    for (; m_next < itemCount(); ++m_next) {
        const std::optional<PriceListEntry> entry = itemAt(m_next);
        if (!entry)
            continue;
        const qreal height = m_metrics->rowHeight(cellsOf(*entry), m_metrics->body);
        if (m_used + height > m_metrics->room && m_pageHasRows) {
            m_pageStarts.push_back(m_next);
            m_used = 0;
        }
        m_pageHasRows = true;
        m_used += height;
        ++m_next;
        return true;
    }
    m_done = true;
    return false;
}

bool PriceListDocument::layoutMore(int milliseconds)
{
    QElapsedTimer clock;
    clock.start();
    while (!m_done && layoutNextRow()) {
        if (clock.elapsed() >= milliseconds)
            break;
    }
    return m_done;
}

void PriceListDocument::layoutThroughPage(int page)
{
    while (!m_done && pagesReady() <= page)
        layoutNextRow();
}

int PriceListDocument::pagesReady() const
{
    // The last page started takes rows until one does not fit or the rows end.
    const int started = int(m_pageStarts.size());
    return m_done ? started : started - 1;
}

int PriceListDocument::endOfPage(int page) const
{
    const auto next = std::size_t(page) + 1;
    if (next < m_pageStarts.size())
        return m_pageStarts.at(next);
    return m_done ? itemCount() : m_next;
}

std::vector<PriceListDocument::PlacedRow> PriceListDocument::rowsOfPage(int page) const
{
    std::vector<PlacedRow> rows;
    if (!m_metrics || page < 0 || page >= pagesReady())
        return rows;
    qreal top = m_metrics->headerHeight + m_metrics->headingHeight;
    for (int index = m_pageStarts.at(std::size_t(page)); index < endOfPage(page); ++index) {
        const std::optional<PriceListEntry> entry = itemAt(index);
        if (!entry)
            continue;
        const qreal height = m_metrics->rowHeight(cellsOf(*entry), m_metrics->body);
        rows.push_back({ index, top, height });
        top += height;
    }
    return rows;
}

qreal PriceListDocument::footerTop() const
{
    return m_metrics ? m_metrics->pageHeight() - m_metrics->footerHeight : 0;
}

void PriceListDocument::paintPage(QPainter &painter, int page) const
{
    if (!m_metrics || page < 0 || page >= pagesReady())
        return;
    const Metrics &metrics = *m_metrics;
    // "\\P" counts the pages laid out so far until the whole list is.
    const int pageCount = pagesReady();
    metrics.paintPageText(
        painter, expandPrintCodes(m_pageText.header, page + 1, pageCount), metrics.header, 0);
    const qreal headingTop = metrics.headerHeight;
    metrics.paintRow(painter, Headings, metrics.bold, headingTop, metrics.headingHeight);
    metrics.rule(painter, headingTop + metrics.headingHeight);
    for (const PlacedRow &row : rowsOfPage(page)) {
        if (const std::optional<PriceListEntry> entry = itemAt(row.item))
            metrics.paintRow(painter, cellsOf(*entry), metrics.body, row.top, row.height);
    }
    metrics.paintPageText(painter, expandPrintCodes(m_pageText.footer, page + 1, pageCount),
        metrics.footer, metrics.pageHeight() - metrics.textHeight(metrics.footer));
}

} // namespace tarnwick
