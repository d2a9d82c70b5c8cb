#include "quotebook/quotelistmodel.h"

#include "core/cell.h"
#include "core/formats.h"

#include <array>

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
    m_quotes = std::move(quotes);
    endResetModel();
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
