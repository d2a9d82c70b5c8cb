#pragma once

#include "quotebook/quoterecord.h"

#include <QAbstractTableModel>
#include <QList>
#include <QLocale>

namespace tarnwick {

/// The saved quotes as the "Quotes" window lists them: number, revision, customer, date,
/// total, status and the last day the quote is valid ("6/11/26 (expired)" once that day has
/// passed for a draft or sent quote), one row per revision, in the order given (newest first)
/// or sorted on a column (its header clicked): by number and revision, customer (ignoring
/// case), date, total, status or last valid day, each ascending or descending; column -1 is the
/// order given. A new list keeps the sort.
class QuoteListModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column { Number, Revision, Customer, Date, Total, Status, ValidUntil, ColumnCount };

    explicit QuoteListModel(const QLocale &locale, QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(
        int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

    void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;

    void setQuotes(QList<QuoteSummary> quotes);
    const QList<QuoteSummary> &quotes() const { return m_quotes; }
    /// The status of the quote at row changed in the book: the row shows it, in place.
    void setStatusAt(int row, QuoteStatus status);
    /// The quote book's key of a row; 0 outside the list.
    qint64 idAt(int row) const;
    /// The day against which quotes run out (the computer's date unless set).
    void setToday(const QDate &today);
    /// The Valid Until column's text of a quote valid until day: "6/11/26", or
    /// "6/11/26 (expired)" when it has run out.
    QString validUntilText(const QDate &day, bool expired) const;

private:
    QLocale m_locale;
    QDate m_today = QDate::currentDate();
    /// Puts m_quotes in the order of the sort column, or as given.
    void arrange();

    QList<QuoteSummary> m_given;
    QList<QuoteSummary> m_quotes;
    int m_sortColumn = -1;
    Qt::SortOrder m_sortOrder = Qt::AscendingOrder;
};

} // namespace tarnwick
