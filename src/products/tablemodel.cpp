#include "products/tablemodel.h"

#include "catalogue/table.h"
#include "core/conversions.h"
#include "core/formats.h"

namespace tarnwick {

TableModel::TableModel(Table &table, QList<Column> columns, const QLocale &locale, QObject *parent)
    : QAbstractTableModel(parent), m_table(table), m_columns(std::move(columns)), m_locale(locale)
{
}

int TableModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_table.rowCount();
}

int TableModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_columns.size());
}

QVariant TableModel::data(const QModelIndex &index, int role) const
{
    const int field = index.column() + 1;
    if (!index.isValid() || index.row() >= m_table.rowCount() || field > m_table.fieldCount())
        return {};
    const Cell &cell = m_table.get(index.row() + 1, field);
    const QString &format = m_columns.at(index.column()).format;
    if (role == Qt::DisplayRole && !cell.isNull())
        return format.isEmpty() ? conv::toText(cell, m_locale)
                                : tarnwick::format(cell, format, m_locale);
    if (role == Qt::TextAlignmentRole && !format.isEmpty())
        return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
    return {};
}

QVariant TableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role != Qt::DisplayRole)
        return {};
    if (orientation == Qt::Horizontal)
        return section < m_columns.size() ? QVariant(m_columns.at(section).caption) : QVariant();
    return section + 1;
}

void TableModel::reload()
{
    beginResetModel();
    endResetModel();
}

} // namespace tarnwick
