#include "quotebook/quotepdf.h"

#include "catalogue/table.h"
#include "core/conversions.h"
#include "core/formats.h"
#include "platform/filewrite.h"
#include "quotes/quoteaids.h"
#include "quotes/quoteline.h"

#include <QBuffer>
#include <QFontMetricsF>
#include <QPageLayout>
#include <QPagedPaintDevice>
#include <QPainter>
#include <QPdfWriter>
#include <QTextOption>

#include <algorithm>
#include <vector>

namespace tarnwick::QuotePdf {

namespace {

/// A piece of a block: one paragraph, wrapped to the page's width, or the parts of a price
/// line set in columns.
struct Piece
{
    QStringList texts;
    QFont font;
    bool columns = false;
    qreal height = 0;
};

/// What is never split by a page break: a paragraph of the heading or ending, a quote line,
/// the totals.
struct Block
{
    std::vector<Piece> pieces;
    qreal gapAfter = 0;
    qreal height() const
    {
        qreal sum = gapAfter;
        for (const Piece &piece : pieces)
            sum += piece.height;
        return sum;
    }
};

QFont fontOf(qreal points, bool bold = false, bool italic = false)
{
    QFont font(FontFamily);
    font.setPointSizeF(points);
    font.setBold(bold);
    font.setItalic(italic);
    return font;
}

QString cellText(const Cell &cell, const QLocale &locale)
{
    return cell.isNull() ? QString() : conv::toText(cell, locale);
}

/// Where each part of a price line starts, as shares of the page's width.
std::vector<qreal> columnStarts(qsizetype parts)
{
    if (parts == 3)
        return { 0.0, 0.30, 0.62 };
    if (parts == 5)
        return { 0.0, 0.17, 0.38, 0.59, 0.79 };
    std::vector<qreal> starts;
    for (qsizetype i = 0; i < parts; ++i)
        starts.push_back(qreal(i) / qreal(qMax<qsizetype>(parts, 1)));
    return starts;
}

class PageLayout
{
public:
    PageLayout(QPainter &painter, const QRectF &body)
        : m_painter(painter), m_body(body), m_tabStops(halfInchTabStops(painter))
    {
    }

    QTextOption wrapping() const
    {
        QTextOption option(Qt::AlignLeft | Qt::AlignTop);
        option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
        option.setTabStopDistance(m_tabStops);
        return option;
    }

    /// The tab stop distance that puts a tab's stops every half inch, as in a word processor
    /// (Qt's default of 80 units is a blank's width at the PDF's resolution). Qt scales the
    /// distance by the device's resolution over the screen's when it lays out for a printer,
    /// so the distance is found by measuring one tab rather than assumed.
    static qreal halfInchTabStops(QPainter &painter)
    {
        const qreal halfInch = painter.device()->logicalDpiX() / 2.0;
        QTextOption option(Qt::AlignLeft | Qt::AlignTop);
        option.setWrapMode(QTextOption::NoWrap);
        option.setTabStopDistance(halfInch);
        const QRectF room(0, 0, 1e9, 1e9);
        const qreal tab = painter.boundingRect(room, QStringLiteral("\tx"), option).width()
            - painter.boundingRect(room, QStringLiteral("x"), option).width();
        return tab > 0 ? halfInch * halfInch / tab : halfInch;
    }

    QRectF columnRect(const Piece &piece, qsizetype index, qreal top, qreal height) const
    {
        const auto starts = columnStarts(piece.texts.size());
        const qreal left = m_body.left() + m_body.width() * starts.at(std::size_t(index));
        const qreal right = index + 1 < piece.texts.size()
            ? m_body.left() + m_body.width() * starts.at(std::size_t(index + 1))
            : m_body.right();
        const qreal padding = QFontMetricsF(piece.font, m_painter.device()).averageCharWidth();
        return { left, top, qMax(right - left - padding, padding), height };
    }

    void measure(Piece &piece)
    {
        m_painter.setFont(piece.font);
        qreal height = QFontMetricsF(piece.font, m_painter.device()).height();
        for (qsizetype i = 0; i < piece.texts.size(); ++i) {
            const QRectF room = piece.columns ? columnRect(piece, i, 0, 1e9)
                                              : QRectF(m_body.left(), 0, m_body.width(), 1e9);
            if (!piece.texts.at(i).isEmpty())
                height = std::max(
                    height, m_painter.boundingRect(room, piece.texts.at(i), wrapping()).height());
        }
        piece.height = height;
    }

    void paint(const Piece &piece, qreal top)
    {
        m_painter.setFont(piece.font);
        for (qsizetype i = 0; i < piece.texts.size(); ++i) {
            const QRectF room = piece.columns
                ? columnRect(piece, i, top, piece.height)
                : QRectF(m_body.left(), top, m_body.width(), piece.height);
            m_painter.drawText(room, piece.texts.at(i), wrapping());
        }
    }

    /// One line of up to three texts: at the left, in the middle, at the right. The middle one
    /// (the customer) never runs into the others: it is centred on the page where it has the
    /// room, moved aside where it has not, and cut with an ellipsis where even that is too
    /// narrow.
    void pageText(const QStringList &texts, const QFont &font, qreal top)
    {
        m_painter.setFont(font);
        const QFontMetricsF metrics(font, m_painter.device());
        const QRectF line(m_body.left(), top, m_body.width(), lineHeight(font));
        const QString left = texts.value(0);
        const QString middle = texts.value(1);
        const QString right = texts.value(2);
        m_painter.drawText(line, Qt::AlignLeft | Qt::AlignVCenter, left);
        m_painter.drawText(line, Qt::AlignRight | Qt::AlignVCenter, right);
        const qreal gap = 2 * metrics.averageCharWidth();
        const qreal from =
            line.left() + (left.isEmpty() ? 0 : metrics.horizontalAdvance(left) + gap);
        const qreal to =
            line.right() - (right.isEmpty() ? 0 : metrics.horizontalAdvance(right) + gap);
        if (middle.isEmpty() || to <= from)
            return;
        const QString shown = metrics.elidedText(middle, Qt::ElideRight, to - from);
        const qreal width = std::min(metrics.horizontalAdvance(shown), to - from);
        const qreal x = std::clamp(line.center().x() - width / 2, from, to - width);
        m_painter.drawText(
            QRectF(x, top, to - x, line.height()), Qt::AlignLeft | Qt::AlignVCenter, shown);
    }

    qreal lineHeight(const QFont &font) const
    {
        return QFontMetricsF(font, m_painter.device()).height();
    }

private:
    QPainter &m_painter;
    QRectF m_body;
    qreal m_tabStops;
};

/// Each line of text as a block of its own, so long texts may run onto the next page.
void addParagraphs(std::vector<Block> &blocks, const QString &text, const QFont &font)
{
    QString lines = text;
    lines.replace(QLatin1String("\r\n"), QLatin1String("\n"))
        .replace(QLatin1Char('\r'), QLatin1Char('\n'));
    for (const QString &line : lines.split(QLatin1Char('\n')))
        blocks.push_back({ { Piece { { line }, font } }, 0 });
}

/// Under the price line, as in the quote document: the cheaper volume prices when they are asked
/// for, then the small table of the line's further quantities.
void addPricingAids(Block &block, const Table &quote, int row, const QuoteDocumentInput &document,
    const QLocale &locale)
{
    if (!document.catalogue)
        return;
    const Table &catalogue = *document.catalogue;
    if (document.volumePrices == 1) {
        for (const QString &line : QuoteAids::volumePriceLines(quote, catalogue, row, locale))
            block.pieces.push_back({ { line }, fontOf(10) });
    }
    const auto prices = QuoteAids::linePricesAt(quote, catalogue, row, locale);
    if (prices.empty())
        return;
    block.pieces.push_back({ { QStringLiteral("Quantity"), QStringLiteral("Unit Price"),
                                 QStringLiteral("Extended Price") },
        fontOf(10), true });
    const QString currency = QStringLiteral("Currency");
    for (const QuantityPrice &price : prices) {
        block.pieces.push_back({ { format(Cell(price.quantity), QStringLiteral("#,###"), locale),
                                     format(Cell(price.unitPrice), currency, locale),
                                     format(Cell(price.extended), currency, locale) },
            fontOf(10), true });
    }
}

/// A quote line: its name, price line and pricing aids with the first line of its includes
/// text, kept together; the further lines of the includes follow as blocks of their own, so a
/// long one runs onto the next page instead of off the paper.
void addLine(std::vector<Block> &blocks, const Table &quote, int row, const QuotePdfInput &input,
    const QLocale &locale, qreal gap)
{
    Block block;
    const QString title = cellText(quote.get(row, QuoteLine::PartNumber), locale)
        + QLatin1String("  ") + cellText(quote.get(row, QuoteLine::ProductName), locale);
    block.pieces.push_back({ { title }, fontOf(10, true) });
    const QStringList parts =
        QuoteDocument::priceLine(quote, row, locale).split(QLatin1Char('\t'), Qt::SkipEmptyParts);
    block.pieces.push_back({ parts, fontOf(10), true });
    addPricingAids(block, quote, row, input.document, locale);
    QString includes = cellText(quote.get(row, QuoteLine::Includes), locale);
    const bool withIncludes = input.document.noIncludes != 1 && !includes.isEmpty();
    const qsizetype firstEnd = withIncludes ? includes.indexOf(QLatin1Char('\n')) : -1;
    if (withIncludes)
        block.pieces.push_back(
            { { includes.left(firstEnd).remove(QLatin1Char('\r')) }, fontOf(10) });
    blocks.push_back(block);
    if (firstEnd >= 0)
        addParagraphs(blocks, includes.mid(firstEnd + 1), fontOf(10));
    blocks.back().gapAfter = gap;
}

std::vector<Block> blocksOf(
    const Table &quote, const QuotePdfInput &input, const QLocale &locale, qreal gap)
{
    std::vector<Block> blocks;
    // Whom the quote is for, whole (the page header may cut a long name short), and the
    // customer's own reference, which their reply and their order quote.
    const CustomerDetails &customer = input.header.customer;
    if (const QString who = input.header.customerText(); !who.isEmpty()) {
        Block addressee;
        addressee.gapAfter = gap;
        addressee.pieces.push_back({ { QStringLiteral("For: ") + who }, fontOf(10) });
        if (!customer.reference.trimmed().isEmpty())
            addressee.pieces.push_back(
                { { QStringLiteral("Your reference: ") + customer.reference.trimmed() },
                    fontOf(10) });
        blocks.push_back(addressee);
    }
    addParagraphs(blocks, input.document.heading, fontOf(12, true));
    blocks.back().gapAfter = gap;
    const int end = QuoteLine::firstFreeRow(quote);
    for (int row = 1; row < end && row <= quote.rowCount(); ++row)
        addLine(blocks, quote, row, input, locale, gap);
    const QuoteTotalTexts totals = QuoteDocument::totalTexts(input.document, locale);
    Block sums;
    sums.gapAfter = gap;
    if (!totals.discount.isEmpty())
        sums.pieces.push_back({ { totals.discount }, fontOf(10, true) });
    sums.pieces.push_back({ { totals.total }, fontOf(10, true) });
    if (input.header.validUntil.isValid())
        sums.pieces.push_back(
            { { QStringLiteral("Valid until %1.")
                      .arg(locale.toString(input.header.validUntil, QLocale::LongFormat)) },
                fontOf(10) });
    blocks.push_back(sums);
    // The ending follows in the totals' bold, as in the quote document.
    addParagraphs(blocks, input.document.ending, fontOf(10, true));
    return blocks;
}

/// A block taller than a page is split into its pieces, each a block of its own.
std::vector<Block> fitted(std::vector<Block> blocks, qreal room)
{
    std::vector<Block> result;
    for (Block &block : blocks) {
        if (block.height() - block.gapAfter <= room || block.pieces.size() < 2) {
            result.push_back(std::move(block));
            continue;
        }
        for (Piece &piece : block.pieces)
            result.push_back({ { std::move(piece) }, 0 });
        result.back().gapAfter = block.gapAfter;
    }
    return result;
}

/// Whole blocks go on a page while they fit; a block taller than a page (one paragraph longer
/// than a page) gets one to itself.
std::vector<std::vector<std::size_t>> paginate(const std::vector<Block> &blocks, qreal room)
{
    std::vector<std::vector<std::size_t>> pages(1);
    qreal used = 0;
    for (std::size_t i = 0; i < blocks.size(); ++i) {
        const qreal height = blocks[i].height() - blocks[i].gapAfter;
        if (used + height > room && !pages.back().empty()) {
            pages.emplace_back();
            used = 0;
        }
        pages.back().push_back(i);
        used += blocks[i].height();
    }
    return pages;
}

} // namespace

QStringList pageHeader(const QuoteHeader &header, const QLocale &locale)
{
    const QString number = header.numberAndRevision();
    return { number.isEmpty() ? QStringLiteral("Quote") : QStringLiteral("Quote ") + number,
        header.customerText(),
        header.date.isValid() ? locale.toString(header.date, QLocale::LongFormat) : QString() };
}

int paint(QPagedPaintDevice &device, const Table &quote, const QuotePdfInput &input,
    const QLocale &locale)
{
    QPainter painter;
    if (!painter.begin(&device))
        return 0;
    const QRectF page(0, 0, device.width(), device.height());
    PageLayout layout(painter, page);
    const QFont headerFont = fontOf(9, false, true);
    const QFont footerFont = fontOf(9);
    const qreal gap = layout.lineHeight(fontOf(10)) * 0.8;
    const qreal top = layout.lineHeight(headerFont) + gap;
    const qreal room = page.height() - top - layout.lineHeight(footerFont) - gap;
    std::vector<Block> blocks = blocksOf(quote, input, locale, gap);
    for (Block &block : blocks) {
        for (Piece &piece : block.pieces)
            layout.measure(piece);
    }
    blocks = fitted(std::move(blocks), room);
    const auto pages = paginate(blocks, room);
    const int pageCount = int(pages.size());
    for (int p = 0; p < pageCount; ++p) {
        if (p > 0)
            device.newPage();
        layout.pageText(pageHeader(input.header, locale), headerFont, 0);
        qreal y = top;
        for (const std::size_t index : pages.at(std::size_t(p))) {
            for (const Piece &piece : blocks[index].pieces) {
                layout.paint(piece, y);
                y += piece.height;
            }
            y += blocks[index].gapAfter;
        }
        layout.pageText({ QString(), QStringLiteral("Page %1 of %2").arg(p + 1).arg(pageCount) },
            footerFont, page.height() - layout.lineHeight(footerFont));
    }
    painter.end();
    return pageCount;
}

QPageSize pageSizeFor(const QLocale &locale)
{
    return QPageSize(locale.measurementSystem() == QLocale::ImperialUSSystem ? QPageSize::Letter
                                                                             : QPageSize::A4);
}

bool write(const QString &path, const Table &quote, const QuotePdfInput &input,
    const QLocale &locale, QString &error)
{
    // A quote's few pages are made in memory, then written as the program writes every file:
    // checked, on the disk before they take the old file's name, and the cause of a failure in
    // plain words (a full disk, a file that could not be flushed).
    QByteArray bytes;
    {
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        QPdfWriter writer(&buffer);
        writer.setTitle(pageHeader(input.header, locale).first());
        writer.setCreator(QStringLiteral("Tarnwick"));
        writer.setPageSize(pageSizeFor(locale));
        writer.setPageMargins(QMarginsF(15, 15, 15, 15), QPageLayout::Millimeter);
        if (paint(writer, quote, input, locale) == 0) {
            error = QStringLiteral("the pages could not be laid out");
            return false;
        }
    }
    const FileWriteResult written = writeFileWhole(path, bytes);
    if (!written)
        error = written.reason;
    return written.ok;
}

} // namespace tarnwick::QuotePdf
