#pragma once

#include <QAbstractTableModel>
#include <QLocale>

#include <functional>

namespace tarnwick {

class Cell;
class Table;

/// Presents the catalogue table to the product grid: one grid row per table row (grid row =
/// table row − 1, and the table row is the row's bookmark), thirteen columns with the
/// captions and number formats of the product grid. The model reads the shared table in
/// place; whoever changes the table's rows calls reload().
class ProductGridModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    ProductGridModel(Table &catalogue, const QLocale &locale, QObject *parent = nullptr);

    /// The catalogue field a grid column shows (column 0 → field 1).
    static int fieldOfColumn(int column);
    /// The named format of a grid column ("Currency", "General Number" or none).
    static QString formatOfColumn(int column);
    static int columnCountStatic();

    /// The table row of a grid row.
    static int bookmarkOfRow(int gridRow) { return gridRow + 1; }

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(
        int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    /// Stores a typed part number or product name as text (DEL characters removed).
    bool setData(const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) override;

    /// In edit mode the part number and product name columns accept typing; prices and price
    /// points are edited in the side boxes and the schedule.
    void setEditable(bool editable) { m_editable = editable; }
    bool isEditable() const { return m_editable; }

    /// Re-reads the table after rows were added, removed or re-ordered.
    void reload();

    /// While frozen the model reads nothing of the table (another thread works on it): the
    /// row count stays as it was and cells show nothing. The view is expected to keep what it
    /// shows meanwhile, and to be reloaded after.
    void setFrozen(bool frozen);

    /// Stores a typed cell (table row, field, value) and says whether it was taken.
    using CellWriter = std::function<bool(int row, int field, const Cell &value)>;
    /// Typed cells go to writer (the window's history of changes) instead of into the table.
    void setCellWriter(CellWriter writer) { m_writer = std::move(writer); }

private:
    Table &m_catalogue;
    CellWriter m_writer;
    QLocale m_locale;
    bool m_editable = false;
    bool m_frozen = false;
    int m_frozenRows = 0;
};

} // namespace tarnwick
