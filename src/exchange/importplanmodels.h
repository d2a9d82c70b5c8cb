#pragma once

#include <QAbstractTableModel>
#include <QLocale>

#include <vector>

namespace tarnwick {

struct ImportPlan;

/// Every change of an import plan, one line per field, product by product in the order of the
/// sheet: "Row" (of the sheet), "Part Number", "Action" ("Add" or "Change"), "Field", "Old" and
/// "New", prices in the locale's currency form. A new product lists each field it gets a value
/// in. Read-only; the plan must outlive the model.
class ImportChangesModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column { RowColumn, PartNumberColumn, ActionColumn, FieldColumn, OldColumn, NewColumn };
    static constexpr int ColumnCount = 6;

    ImportChangesModel(const ImportPlan &plan, const QLocale &locale, QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(
        int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

private:
    /// One line: a new product (added >= 0) or a changed one (changed >= 0) and the field.
    struct Line
    {
        int added = -1;
        int changed = -1;
        int field = 0;
    };
    QString text(const Line &line, int column) const;

    const ImportPlan &m_plan;
    QLocale m_locale;
    std::vector<Line> m_lines;
};

/// The rows of an import plan that change nothing: "Row", "Part Number" and "Reason".
class SkippedRowsModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    static constexpr int ColumnCount = 3;

    explicit SkippedRowsModel(const ImportPlan &plan, QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(
        int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

private:
    const ImportPlan &m_plan;
};

} // namespace tarnwick
