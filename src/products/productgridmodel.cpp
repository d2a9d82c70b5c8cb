#include "products/productgridmodel.h"

#include "catalogue/cataloguetext.h"
#include "catalogue/productrecord.h"
#include "catalogue/table.h"
#include "core/conversions.h"
#include "core/formats.h"
#include "products/priceedittext.h"

#include <array>

namespace tarnwick {

namespace {

struct GridColumn
{
    const char *caption;
    int field;
    const char *format;
};

// The captions keep their mixed capitals ("vol1" beside "Vol2") as users know them.
constexpr std::array<GridColumn, 13> Columns { {
    { "Part Number", ProductRecord::PartNumber, "" },
    { "Product Name", ProductRecord::ProductName, "" },
    { "Price", ProductRecord::Price, "Currency" },
    { "Price1", ProductRecord::Price1, "Currency" },
    { "vol1", ProductRecord::PricePoint1, "General Number" },
    { "Price2", ProductRecord::Price2, "Currency" },
    { "Vol2", ProductRecord::PricePoint2, "General Number" },
    { "Price3", ProductRecord::Price3, "Currency" },
    { "vol3", ProductRecord::PricePoint3, "General Number" },
    { "Price4", ProductRecord::Price4, "Currency" },
    { "vol4", ProductRecord::PricePoint4, "General Number" },
    { "Price5", ProductRecord::Price5, "Currency" },
    { "vol5", ProductRecord::PricePoint5, "General Number" },
} };

} // namespace

ProductGridModel::ProductGridModel(Table &catalogue, const QLocale &locale, QObject *parent)
    : QAbstractTableModel(parent), m_catalogue(catalogue), m_locale(locale)
{
}

int ProductGridModel::fieldOfColumn(int column)
{
    return (column >= 0 && column < int(Columns.size())) ? Columns[column].field : 0;
}

QString ProductGridModel::formatOfColumn(int column)
{
    if (column < 0 || column >= int(Columns.size()))
        return {};
    return QString::fromLatin1(Columns[column].format);
}

int ProductGridModel::columnCountStatic()
{
    return int(Columns.size());
}

int ProductGridModel::rowCount(const QModelIndex &parent) const
{
    if (parent.isValid())
        return 0;
    return m_frozen ? m_frozenRows : m_catalogue.rowCount();
}

int ProductGridModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : columnCountStatic();
}

QVariant ProductGridModel::data(const QModelIndex &index, int role) const
{
    if (m_frozen || !index.isValid() || index.row() >= m_catalogue.rowCount())
        return {};
    const int field = fieldOfColumn(index.column());
    if (field < 1 || field > m_catalogue.fieldCount())
        return {};
    const Cell &cell = m_catalogue.get(bookmarkOfRow(index.row()), field);
    if (cell.isNull())
        return {};
    const QString format = formatOfColumn(index.column());
    if (role == Qt::DisplayRole)
        return format.isEmpty() ? conv::toText(cell, m_locale)
                                : tarnwick::format(cell, format, m_locale);
    if (role == Qt::EditRole)
        return format == QLatin1String("Currency") ? priceEditText(cell, m_locale)
                                                   : conv::toText(cell, m_locale);
    if (role == Qt::TextAlignmentRole && !format.isEmpty())
        return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
    return {};
}

QVariant ProductGridModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    // The caption doubles as tool tip, so a narrow column's caption can still be read whole.
    if (role != Qt::DisplayRole && !(role == Qt::ToolTipRole && orientation == Qt::Horizontal))
        return {};
    if (orientation == Qt::Horizontal)
        return (section >= 0 && section < columnCountStatic())
            ? QVariant(QString::fromLatin1(Columns[section].caption))
            : QVariant();
    return section + 1;
}

Qt::ItemFlags ProductGridModel::flags(const QModelIndex &index) const
{
    Qt::ItemFlags result = QAbstractTableModel::flags(index);
    const int field = fieldOfColumn(index.column());
    if (m_editable && (field == ProductRecord::PartNumber || field == ProductRecord::ProductName))
        result |= Qt::ItemIsEditable;
    return result;
}

bool ProductGridModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (m_frozen || role != Qt::EditRole || !(flags(index) & Qt::ItemIsEditable)
        || index.row() >= m_catalogue.rowCount())
        return false;
    // A cell left as it was opened changes nothing (no step of the history either).
    if (value.toString() == data(index, Qt::EditRole).toString())
        return true;
    const int row = bookmarkOfRow(index.row());
    const int field = fieldOfColumn(index.column());
    const Cell typed(withoutFieldEndCharacters(value.toString()));
    if (m_writer) {
        if (!m_writer(row, field, typed))
            return false;
    } else {
        m_catalogue.put(row, field, typed);
    }
    Q_EMIT dataChanged(index, index);
    return true;
}

void ProductGridModel::setFrozen(bool frozen)
{
    if (frozen && !m_frozen)
        m_frozenRows = m_catalogue.rowCount();
    m_frozen = frozen;
}

void ProductGridModel::reload()
{
    beginResetModel();
    endResetModel();
}

} // namespace tarnwick
