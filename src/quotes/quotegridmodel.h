#pragma once

#include <QAbstractTableModel>
#include <QLocale>

#include <functional>
#include <optional>

namespace tarnwick {

class Table;

/// Presents the quote table to the quote grid: grid row r is quote row r + 1, columns "Part
/// Number", "Product", "Price" ("Currency"), "Quantity", "Ext. Price" ("Currency") show
/// fields 1 to 5. The cells of the quote's lines take typed texts, except the computed
/// extended price; rows from the first free row on are not editable. A typed quantity or
/// price re-prices its line, and every accepted edit ends with quoteChanged(), after which
/// the totals are due.
class QuoteGridModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    /// True on the Price cell of a line whose unit price is locked; the grid shows a lock mark
    /// there. The Quantity cell's tool tip names the line's next break (QuoteAids).
    static constexpr int LockedRole = Qt::UserRole + 1;

    QuoteGridModel(
        Table &quote, const Table &catalogue, const QLocale &locale, QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(
        int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) override;

    /// The quote row of a grid row.
    static int quoteRowOf(int gridRow) { return gridRow + 1; }

    /// What a crash should keep of typing not stored yet: the quote's lines as storing typed
    /// into the cell at index would leave them, re-priced as setData stores it. Only a quantity
    /// or a price counts (a part number half typed, or emptied to be typed again, would end the
    /// quote at its line or name another product); none, too, when typed is what the cell holds
    /// or the cell takes no typing.
    std::optional<Table> linesWithTyping(const QModelIndex &index, const QString &typed) const;
    /// Whether typing not stored yet is dropped rather than stored when a command or a close
    /// takes it in: a part number emptied to be typed again, which stored would end the quote
    /// at its line and leave out every line below it.
    static bool dropsTyping(const QModelIndex &index, const QString &typed);

    /// Re-reads the table after lines were added, removed, discounted or reset.
    void reload();

    /// Stores a typed cell (quote row, grid column, text) with the re-pricing of its line and
    /// says whether it was taken.
    using CellWriter = std::function<bool(int row, int column, const QString &text)>;
    /// Typed cells go to writer (the window's history of changes) instead of into the table.
    void setCellWriter(CellWriter writer) { m_writer = std::move(writer); }

Q_SIGNALS:
    /// A cell of a line was edited (and the line re-priced); the totals need recomputing.
    void quoteChanged();

private:
    bool isCell(const QModelIndex &index) const;

    Table &m_quote;
    const Table &m_catalogue;
    QLocale m_locale;
    CellWriter m_writer;
};

} // namespace tarnwick
