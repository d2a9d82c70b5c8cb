#pragma once

#include <QAbstractTableModel>
#include <QLocale>
#include <QStringList>

namespace tarnwick {

class Table;

/// Presents a small shared table (the quote, the price schedule) to a grid: row r of the grid
/// is table row r + 1, column c is field c + 1, each column with its caption and named format.
class TableModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    struct Column
    {
        QString caption;
        QString format; ///< a named format, or empty for the cell's text
    };

    TableModel(
        Table &table, QList<Column> columns, const QLocale &locale, QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(
        int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

    /// Re-reads the table after it changed.
    void reload();

private:
    Table &m_table;
    QList<Column> m_columns;
    QLocale m_locale;
};

} // namespace tarnwick
