#include "quotebook/quotelistmodel.h"

#include "core/cell.h"
#include "core/formats.h"
#include "quotebook/quotebookrows.h"

#include <algorithm>
#include <array>
#include <tuple>
#include <utility>

namespace tarnwick {

namespace {

constexpr std::array<const char *, QuoteListModel::ColumnCount> ListCaptions {
    QT_TRANSLATE_NOOP("QuoteListModel", "Number"),
    QT_TRANSLATE_NOOP("QuoteListModel", "Revision"),
    QT_TRANSLATE_NOOP("QuoteListModel", "Customer"),
    QT_TRANSLATE_NOOP("QuoteListModel", "Date"),
    QT_TRANSLATE_NOOP("QuoteListModel", "Total"),
    QT_TRANSLATE_NOOP("QuoteListModel", "Status"),
    QT_TRANSLATE_NOOP("QuoteListModel", "Valid Until"),
};

} // namespace

QuoteListModel::QuoteListModel(const QLocale &locale, QObject *parent)
    : QAbstractTableModel(parent), m_locale(locale)
{
}

int QuoteListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_quotes.size());
}

int QuoteListModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant QuoteListModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= m_quotes.size())
        return {};
    const QuoteSummary &quote = m_quotes.at(index.row());
    if (role == Qt::TextAlignmentRole && index.column() == Total)
        return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
    if (role != Qt::DisplayRole)
        return {};
    switch (index.column()) {
    case Number:
        return quote.number();
    case Revision:
        return quote.revisionLetter();
    case Customer:
        return quote.customerText();
    case Date:
        return m_locale.toString(quote.date, QLocale::ShortFormat);
    case Total:
        return format(Cell(quote.total), QStringLiteral("Currency"), m_locale);
    case Status:
        return QuoteStatuses::name(quote.status);
    case ValidUntil:
        return validUntilText(
            quote.validUntil, QuoteNumbers::hasExpired(quote.validUntil, quote.status, m_today));
    default:
        return {};
    }
}

QVariant QuoteListModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role != Qt::DisplayRole || orientation != Qt::Horizontal || section < 0
        || section >= ColumnCount)
        return {};
    return tr(ListCaptions.at(std::size_t(section)));
}

void QuoteListModel::setQuotes(QList<QuoteSummary> quotes)
{
    beginResetModel();
    m_given = std::move(quotes);
    arrange();
    endResetModel();
}

void QuoteListModel::setStatusAt(int row, QuoteStatus status)
{
    const qint64 id = idAt(row);
    if (id == 0)
        return;
    m_quotes[row].status = status;
    for (QuoteSummary &quote : m_given) {
        if (quote.id == id)
            quote.status = status;
    }
    Q_EMIT dataChanged(index(row, 0), index(row, ColumnCount - 1));
}

void QuoteListModel::sort(int column, Qt::SortOrder order)
{
    Q_EMIT layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
    const QModelIndexList before = persistentIndexList();
    QList<qint64> ids;
    for (const QModelIndex &index : before)
        ids << idAt(index.row());
    m_sortColumn = column >= 0 && column < ColumnCount ? column : -1;
    m_sortOrder = order;
    arrange();
    QModelIndexList after;
    for (qsizetype i = 0; i < before.size(); ++i) {
        const auto found = std::find_if(m_quotes.cbegin(), m_quotes.cend(),
            [id = ids.at(i)](const QuoteSummary &quote) { return quote.id == id; });
        after << (found == m_quotes.cend()
                ? QModelIndex()
                : index(int(found - m_quotes.cbegin()), before.at(i).column()));
    }
    changePersistentIndexList(before, after);
    Q_EMIT layoutChanged({}, QAbstractItemModel::VerticalSortHint);
}

void QuoteListModel::arrange()
{
    m_quotes = m_given;
    if (m_sortColumn < 0)
        return;
    const auto key = [this](const QuoteSummary &quote) -> std::tuple<QVariant, QVariant, QVariant> {
        switch (m_sortColumn) {
        case Number:
        case Revision:
            return { quote.year, quote.sequence, quote.revision };
        case Customer:
            // By the letters the search knows them by: "Émile" under E, "Łukasz" under L.
            return { QuoteBookRows::searchable(quote.customerText()), quote.customerText(), {} };
        case Date:
            return { quote.date, quote.year, quote.sequence };
        case Total:
            return { quote.total, {}, {} };
        case Status:
            return { int(quote.status), {}, {} };
        default:
            return { quote.validUntil, {}, {} };
        }
    };
    const auto less = [&key](const QuoteSummary &a, const QuoteSummary &b) {
        const auto x = key(a);
        const auto y = key(b);
        for (const auto &[left, right] : { std::pair { std::get<0>(x), std::get<0>(y) },
                 std::pair { std::get<1>(x), std::get<1>(y) },
                 std::pair { std::get<2>(x), std::get<2>(y) } }) {
            const QPartialOrdering order = QVariant::compare(left, right);
            if (order == QPartialOrdering::Less)
                return true;
            if (order == QPartialOrdering::Greater)
                return false;
        }
        return false;
    };
    std::stable_sort(
        m_quotes.begin(), m_quotes.end(), [&](const QuoteSummary &a, const QuoteSummary &b) {
            return m_sortOrder == Qt::AscendingOrder ? less(a, b) : less(b, a);
        });
}

QString QuoteListModel::validUntilText(const QDate &day, bool expired) const
{
    const QString shown = m_locale.toString(day, QLocale::ShortFormat);
    return expired ? tr("%1 (expired)").arg(shown) : shown;
}

void QuoteListModel::setToday(const QDate &today)
{
    beginResetModel();
    m_today = today;
    endResetModel();
}

qint64 QuoteListModel::idAt(int row) const
{
    return row >= 0 && row < m_quotes.size() ? m_quotes.at(row).id : 0;
}

} // namespace tarnwick
