#include "quotes/quotegridmodel.h"

#include "catalogue/table.h"
#include "core/conversions.h"
#include "core/formats.h"
#include "core/storednumber.h"
#include "products/priceedittext.h"
#include "quotes/quoteaids.h"
#include "quotes/quoteline.h"
#include "quotes/quotelist.h"

#include <array>

namespace tarnwick {

namespace {

struct GridColumn
{
    const char *caption;
    const char *format;
};

constexpr std::array<GridColumn, QuoteGridColumn::Count> Columns { {
    { QT_TRANSLATE_NOOP("QuoteGridModel", "Part Number"), "" },
    { QT_TRANSLATE_NOOP("QuoteGridModel", "Product"), "" },
    { QT_TRANSLATE_NOOP("QuoteGridModel", "Price"), "Currency" },
    { QT_TRANSLATE_NOOP("QuoteGridModel", "Quantity"), "" },
    { QT_TRANSLATE_NOOP("QuoteGridModel", "Ext. Price"), "Currency" },
} };

} // namespace

QuoteGridModel::QuoteGridModel(
    Table &quote, const Table &catalogue, const QLocale &locale, QObject *parent)
    : QAbstractTableModel(parent), m_quote(quote), m_catalogue(catalogue), m_locale(locale)
{
}

int QuoteGridModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_quote.rowCount();
}

int QuoteGridModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : qMin(QuoteGridColumn::Count, m_quote.fieldCount());
}

bool QuoteGridModel::isCell(const QModelIndex &index) const
{
    return index.isValid() && index.row() < rowCount() && index.column() < columnCount();
}

QVariant QuoteGridModel::data(const QModelIndex &index, int role) const
{
    if (!isCell(index))
        return {};
    const int row = quoteRowOf(index.row());
    if (role == LockedRole)
        return index.column() == QuoteGridColumn::Price && QuoteLine::isLocked(m_quote, row);
    // The padlock is a picture: assistive tools read it as the cell's description.
    if (role == Qt::AccessibleDescriptionRole)
        return index.column() == QuoteGridColumn::Price && QuoteLine::isLocked(m_quote, row)
            ? QVariant(tr("Price locked: a quantity change keeps it"))
            : QVariant();
    if (role == Qt::ToolTipRole) {
        if (index.column() != QuoteGridColumn::Quantity)
            return {};
        const QString text = QuoteAids::nextBreakText(m_quote, m_catalogue, row, m_locale);
        return text.isEmpty() ? QVariant() : QVariant(plainToolTip(text));
    }
    const Cell &cell = m_quote.get(row, index.column() + 1);
    if (cell.isNull())
        return {};
    const QString format = QString::fromLatin1(Columns[index.column()].format);
    if (role == Qt::DisplayRole)
        return format.isEmpty() ? conv::toText(cell, m_locale)
                                : tarnwick::format(cell, format, m_locale);
    if (role == Qt::EditRole)
        return index.column() == QuoteGridColumn::Price
                || index.column() == QuoteGridColumn::ExtPrice
            ? priceEditText(cell, m_locale)
            : conv::toText(cell, m_locale);
    if (role == Qt::TextAlignmentRole && index.column() >= QuoteGridColumn::Price)
        return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
    return {};
}

QVariant QuoteGridModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role != Qt::DisplayRole)
        return {};
    if (orientation == Qt::Vertical)
        return section + 1;
    if (section < 0 || section >= QuoteGridColumn::Count)
        return {};
    return tr(Columns[section].caption);
}

Qt::ItemFlags QuoteGridModel::flags(const QModelIndex &index) const
{
    if (!isCell(index))
        return Qt::NoItemFlags;
    const Qt::ItemFlags flags = Qt::ItemIsSelectable | Qt::ItemIsEnabled;
    const bool isLine = quoteRowOf(index.row()) < QuoteLine::firstFreeRow(m_quote);
    if (isLine && index.column() != QuoteGridColumn::ExtPrice)
        return flags | Qt::ItemIsEditable;
    return flags;
}

std::optional<Table> QuoteGridModel::linesWithTyping(
    const QModelIndex &index, const QString &typed) const
{
    if (!index.isValid() || !(flags(index) & Qt::ItemIsEditable)
        || (index.column() != QuoteGridColumn::Quantity && index.column() != QuoteGridColumn::Price)
        || typed == data(index, Qt::EditRole).toString())
        return std::nullopt;
    const int row = quoteRowOf(index.row());
    const QString text =
        index.column() == QuoteGridColumn::Price ? stored::asTyped(typed, m_locale) : typed;
    Table lines = m_quote;
    lines.put(row, index.column() + 1, text);
    QuoteList::repriceLine(lines, m_catalogue, row, index.column(), m_locale);
    return lines;
}

bool QuoteGridModel::dropsTyping(const QModelIndex &index, const QString &typed)
{
    return index.isValid() && index.column() == QuoteGridColumn::PartNumber
        && typed.trimmed().isEmpty();
}

bool QuoteGridModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (role != Qt::EditRole || !(flags(index) & Qt::ItemIsEditable))
        return false;
    // A cell left as it was opened changes nothing: a quantity looked at keeps the line's
    // discount or typed price, which re-pricing would replace.
    if (value.toString() == data(index, Qt::EditRole).toString())
        return true;
    const int row = quoteRowOf(index.row());
    QString text = value.toString();
    // A price typed with a comma decimal under an English locale is that price, as the list
    // price box and the schedule take it.
    if (index.column() == QuoteGridColumn::Price)
        text = stored::asTyped(text, m_locale);
    if (m_writer) {
        if (!m_writer(row, index.column(), text))
            return false;
    } else {
        m_quote.put(row, index.column() + 1, text);
        QuoteList::repriceLine(m_quote, m_catalogue, row, index.column(), m_locale);
    }
    // A part number typed empty ends the quote at this row, so the flags of later rows change
    // too; a full reset keeps the view honest about that.
    if (m_quote.get(row, QuoteLine::PartNumber).isBlank())
        reload();
    else
        Q_EMIT dataChanged(
            this->index(index.row(), 0), this->index(index.row(), QuoteGridColumn::Count - 1));
    Q_EMIT quoteChanged();
    return true;
}

void QuoteGridModel::reload()
{
    beginResetModel();
    endResetModel();
}

} // namespace tarnwick
