#pragma once

#include "quotes/pageddocument.h"

#include <QLocale>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>
#include <vector>

class QPagedPaintDevice;

namespace tarnwick {

class Table;

/// One product of the printed price list.
struct PriceListEntry
{
    QString partNumber;
    QString name;
    QString price; ///< the list price as currency
    QStringList breaks; ///< one text per break in ascending quantity, e.g. "from 10: $9.00"
};

/// The page header and footer of the price list, with the print codes of expandPrintCodes.
struct PriceListPageText
{
    QString header = QStringLiteral("Tarnwick Price list");
    QString footer = QStringLiteral("\\tPage: \\p");
};

/// The price list made for paper: part number, name, list price and the price breaks of every
/// product, laid out in pages whose rows are never split and whose column headings repeat.
namespace PriceList {

inline constexpr QLatin1String FontFamily("Arial");

/// The products of the catalogue in catalogue order; rows whose part number and name are
/// both blank are left out.
std::vector<PriceListEntry> entries(const Table &catalogue, const QLocale &locale);

/// The entry of one catalogue row; none for a row whose part number and name are both blank.
std::optional<PriceListEntry> entryOfRow(const Table &catalogue, int row, const QLocale &locale);

/// Paints the list on device, one newPage() per further page, and returns the number of pages
/// (0 when the device could not be painted on).
int paint(QPagedPaintDevice &device, const std::vector<PriceListEntry> &entries,
    const PriceListPageText &pageText = {});

} // namespace PriceList

/// The price list as a document laid out page by page: a page takes rows while they fit
/// below the headings, so its rows are known as soon as the rows before them are measured,
/// and the first page of a list of a million products shows as quickly as that of ten. The
/// rows are read from the catalogue as they are laid out and painted; the catalogue must not
/// change while the document is in use.
class PriceListDocument : public PagedDocument
{
public:
    PriceListDocument(
        const Table &catalogue, const QLocale &locale, PriceListPageText pageText = {});
    explicit PriceListDocument(
        std::vector<PriceListEntry> entries, PriceListPageText pageText = {});
    ~PriceListDocument() override;

    void beginLayout(const PageGeometry &geometry) override;
    bool layoutMore(int milliseconds) override;
    void layoutThroughPage(int page) override;
    int pagesReady() const override;
    bool isLaidOut() const override { return m_done; }
    void paintPage(QPainter &painter, int page) const override;

    /// A row of a page: the printed item (the catalogue row − 1, or the entry), where its top
    /// lies on the page and its height, in the geometry's pixels.
    struct PlacedRow
    {
        int item = 0;
        qreal top = 0;
        qreal height = 0;
    };
    /// The rows of a settled page, top to bottom.
    std::vector<PlacedRow> rowsOfPage(int page) const;
    /// Where the footer starts: no row reaches below it unless it is a page's only row.
    qreal footerTop() const;

private:
    class Metrics;

    int itemCount() const;
    std::optional<PriceListEntry> itemAt(int index) const;
    /// Lays out the next row that is printed; false once every row is laid out.
    bool layoutNextRow();
    /// The first item after the last one of page (0-based).
    int endOfPage(int page) const;

    const Table *m_catalogue = nullptr;
    QLocale m_locale;
    std::vector<PriceListEntry> m_entries;
    PriceListPageText m_pageText;
    std::unique_ptr<Metrics> m_metrics;
    std::vector<int> m_pageStarts; ///< the first item of each page
    int m_next = 0; ///< the next item to lay out
    qreal m_used = 0; ///< the height the last page's rows take so far
    bool m_pageHasRows = false;
    bool m_done = false;
};

} // namespace tarnwick
