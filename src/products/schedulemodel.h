#pragma once

#include <QAbstractTableModel>
#include <QLocale>

#include <functional>
#include <vector>

namespace tarnwick {

class Cell;
class Table;
struct LadderProblem;

/// Presents the price-schedule table (5 rows of quantity and price) to the "Price Schedule"
/// grid: column 0 "Price Point" in the "#,###" format, column 1 "Price" in "Currency". The
/// cells accept typed texts only while the model is editable (the product list's edit mode);
/// a typed text is stored as typed and an empty one empties the cell. A cell that a problem of
/// the price points is about (PriceLadder) carries ProblemRole and the problem as its tool tip.
class ScheduleModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    /// True on a cell with a problem of the price points; the grid shows a marker there.
    static constexpr int ProblemRole = Qt::UserRole + 1;

    ScheduleModel(Table &schedule, const QLocale &locale, QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(
        int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) override;

    bool isEditable() const { return m_editable; }
    /// Turns editing on (edit mode) or off (browse mode).
    void setEditable(bool editable);

    /// Re-reads the table after PriceUpdate or ClearPrice changed it.
    void reload();

    /// The list price the break prices are compared with (what the list-price box shows).
    using ListPriceSource = std::function<Cell()>;
    void setListPriceSource(ListPriceSource source) { m_listPrice = std::move(source); }
    /// The problems of the points the schedule shows now, in point order.
    std::vector<LadderProblem> problems() const;
    /// Every marker and tool tip shown again (after the list price changed).
    void recheck();

    /// Stores a typed cell (schedule row 1..5, column 1..2, value) and says whether it was
    /// taken.
    using CellWriter = std::function<bool(int row, int column, const Cell &value)>;
    /// Typed cells go to writer (the window's history of changes) instead of into the table.
    void setCellWriter(CellWriter writer) { m_writer = std::move(writer); }

private:
    bool isCell(const QModelIndex &index) const;
    QVariant problemData(const QModelIndex &index, int role) const;

    Table &m_schedule;
    CellWriter m_writer;
    ListPriceSource m_listPrice;
    QLocale m_locale;
    bool m_editable = false;
};

} // namespace tarnwick
