#include "shell/columnwidths.h"

#include "quotes/quotegridmodel.h"
#include "quotes/quotelist.h"

#include <QHeaderView>
#include <QLocale>
#include <QScrollBar>
#include <QStyle>
#include <QTableView>

#include <algorithm>

namespace tarnwick {

namespace ColumnWidths {

namespace {

/// The room a cell leaves around its text.
int cellPadding(const QTableView *grid)
{
    return 2 * (grid->style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, grid) + 1)
        + grid->fontMetrics().horizontalAdvance(QLatin1Char(' '));
}

int textWidth(const QTableView *grid, const QString &text)
{
    return grid->fontMetrics().horizontalAdvance(text) + cellPadding(grid);
}

} // namespace

int captionWidth(const QTableView *grid, int column)
{
    return grid->horizontalHeader()->sectionSizeHint(column);
}

int nameWidth(int wanted, int caption, int room)
{
    return std::max(caption, std::min(wanted, room));
}

void fitProductGrid(QTableView *grid, int nameColumn, int keptColumn)
{
    const int columns = grid->model()->columnCount();
    // A width kept from a larger screen leaves the name and the price room on a smaller one:
    // at most half the grid.
    if (keptColumn >= 0 && keptColumn < columns) {
        const int most = std::max(captionWidth(grid, keptColumn), grid->viewport()->width() / 2);
        if (grid->columnWidth(keptColumn) > most)
            grid->setColumnWidth(keptColumn, most);
    }
    for (int column = 0; column < columns; ++column) {
        if (column == nameColumn || column == keptColumn)
            continue;
        const int before = grid->columnWidth(column);
        grid->resizeColumnToContents(column);
        grid->setColumnWidth(column, std::max(before, grid->columnWidth(column)));
    }
    // Nor does a long part number on a first run take more than half the grid.
    for (int column = 0; column < nameColumn; ++column) {
        const int most = std::max(captionWidth(grid, column), grid->viewport()->width() / 2);
        if (grid->columnWidth(column) > most)
            grid->setColumnWidth(column, most);
    }
    // The part number before the name and the price after it stay in view; a scroll bar is
    // allowed for, as a long list shows one.
    int room = grid->viewport()->width();
    if (!grid->verticalScrollBar()->isVisible())
        room -= grid->style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, grid);
    for (int column = 0; column < nameColumn; ++column)
        room -= grid->columnWidth(column);
    if (nameColumn + 1 < columns)
        room -= grid->columnWidth(nameColumn + 1);
    // QTableView keeps the longest value's width protected; the item view offers it.
    const int longest = static_cast<const QAbstractItemView *>(grid)->sizeHintForColumn(nameColumn);
    grid->setColumnWidth(nameColumn, nameWidth(longest, captionWidth(grid, nameColumn), room));
}

void fitQuoteGrid(QTableView *grid, const QLocale &locale)
{
    const QString money = locale.toCurrencyString(99999.99);
    const QString values[QuoteGridColumn::Count] = { QStringLiteral("WWW-0000"), QString(), money,
        locale.toString(99999), money };
    QHeaderView *header = grid->horizontalHeader();
    for (int column = 0; column < QuoteGridColumn::Count; ++column) {
        if (column == QuoteGridColumn::Product)
            continue;
        grid->setColumnWidth(
            column, std::max(captionWidth(grid, column), textWidth(grid, values[column])));
    }
    // The product name takes the room the others leave; a stretched column never shrinks
    // below the header's smallest section, which is therefore its caption's width.
    header->setMinimumSectionSize(captionWidth(grid, QuoteGridColumn::Product));
    header->setSectionResizeMode(QuoteGridColumn::Product, QHeaderView::Stretch);
}

int largestAmountWidth(const QTableView *grid, const QLocale &locale)
{
    return textWidth(grid, locale.toCurrencyString(-999999999999.99));
}

void fitQuoteValues(QTableView *grid, const QLocale &locale)
{
    const int largest = largestAmountWidth(grid, locale);
    const QAbstractItemModel *model = grid->model();
    const int lockWidth = grid->style()->pixelMetric(QStyle::PM_SmallIconSize, nullptr, grid);
    for (const int column :
        { QuoteGridColumn::Price, QuoteGridColumn::Quantity, QuoteGridColumn::ExtPrice }) {
        int wanted = 0;
        for (int row = 0; row < model->rowCount(); ++row) {
            const QModelIndex index = model->index(row, column);
            const QString text = index.data().toString();
            if (text.isEmpty())
                continue;
            // The padlock of a locked price is drawn before its amount.
            const int mark = index.data(QuoteGridModel::LockedRole).toBool() ? lockWidth : 0;
            wanted = std::max(wanted, textWidth(grid, text) + mark);
        }
        // An amount of a trillion or more, which no price change makes and only a damaged
        // file or a pasted row of digits gives, widens its column no further than the largest
        // amount below it: the other columns stay in view for the rest of the session.
        wanted = std::min(wanted, largest);
        if (wanted > grid->columnWidth(column))
            grid->setColumnWidth(column, wanted);
    }
}

} // namespace ColumnWidths

} // namespace tarnwick
