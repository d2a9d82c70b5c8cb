#include "products/schedulemodel.h"

#include "catalogue/table.h"
#include "core/conversions.h"
#include "core/formats.h"
#include "core/storednumber.h"
#include "products/priceedittext.h"
#include "products/priceladder.h"

namespace tarnwick {

namespace {

constexpr int ColumnCount = 2;

QString columnFormat(int column)
{
    return column == 0 ? QStringLiteral("#,###") : QStringLiteral("Currency");
}

} // namespace

ScheduleModel::ScheduleModel(Table &schedule, const QLocale &locale, QObject *parent)
    : QAbstractTableModel(parent), m_schedule(schedule), m_locale(locale)
{
}

int ScheduleModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_schedule.rowCount();
}

int ScheduleModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : qMin(ColumnCount, m_schedule.fieldCount());
}

bool ScheduleModel::isCell(const QModelIndex &index) const
{
    return index.isValid() && index.row() < rowCount() && index.column() < columnCount();
}

QVariant ScheduleModel::data(const QModelIndex &index, int role) const
{
    if (!isCell(index))
        return {};
    // Assistive tools read the warning sign's reason as the cell's description.
    if (role == ProblemRole || role == Qt::ToolTipRole || role == Qt::AccessibleDescriptionRole)
        return problemData(index, role);
    const Cell &cell = m_schedule.get(index.row() + 1, index.column() + 1);
    if (cell.isNull())
        return {};
    if (role == Qt::DisplayRole)
        return format(cell, columnFormat(index.column()), m_locale);
    if (role == Qt::EditRole)
        return index.column() == 1 ? priceEditText(cell, m_locale) : conv::toText(cell, m_locale);
    if (role == Qt::TextAlignmentRole)
        return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
    return {};
}

std::vector<LadderProblem> ScheduleModel::problems() const
{
    const Cell listPrice = m_listPrice ? m_listPrice() : Cell();
    return PriceLadder::check(PriceLadder::pointsOfSchedule(m_schedule), listPrice, m_locale);
}

QVariant ScheduleModel::problemData(const QModelIndex &index, int role) const
{
    QStringList texts;
    for (const LadderProblem &problem : problems()) {
        if (problem.point == index.row() + 1 && problem.column == index.column() + 1)
            texts << problem.text;
    }
    if (role == ProblemRole)
        return !texts.isEmpty();
    if (role == Qt::AccessibleDescriptionRole)
        return texts.isEmpty() ? QVariant() : QVariant(texts.join(QLatin1Char(' ')));
    return texts.isEmpty() ? QVariant() : QVariant(plainToolTip(texts.join(QLatin1Char('\n'))));
}

void ScheduleModel::recheck()
{
    if (rowCount() > 0)
        Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1),
            { ProblemRole, Qt::ToolTipRole, Qt::AccessibleDescriptionRole });
}

QVariant ScheduleModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role != Qt::DisplayRole)
        return {};
    if (orientation == Qt::Vertical)
        return section + 1;
    if (section == 0)
        return tr("Price Point");
    return section == 1 ? QVariant(tr("Price")) : QVariant();
}

Qt::ItemFlags ScheduleModel::flags(const QModelIndex &index) const
{
    if (!isCell(index))
        return Qt::NoItemFlags;
    const Qt::ItemFlags flags = Qt::ItemIsSelectable | Qt::ItemIsEnabled;
    return m_editable ? flags | Qt::ItemIsEditable : flags;
}

bool ScheduleModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (!m_editable || role != Qt::EditRole || !isCell(index))
        return false;
    const QString text = value.toString();
    // A cell left as it was opened changes nothing (no step of the history either).
    if (text == data(index, Qt::EditRole).toString())
        return true;
    // A comma decimal under an English locale means now what the catalogue file reads it as;
    // a number is kept in the user's own form, as the catalogue keeps its price points.
    const Cell typed = text.isEmpty() ? Cell() : Cell(stored::pointText(text, m_locale));
    if (m_writer) {
        if (!m_writer(index.row() + 1, index.column() + 1, typed))
            return false;
    } else {
        m_schedule.put(index.row() + 1, index.column() + 1, typed);
    }
    // Another cell's marker may come or go with this one.
    Q_EMIT dataChanged(this->index(0, 0), this->index(rowCount() - 1, columnCount() - 1));
    return true;
}

void ScheduleModel::setEditable(bool editable)
{
    if (m_editable == editable)
        return;
    m_editable = editable;
    if (rowCount() > 0)
        Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1));
}

void ScheduleModel::reload()
{
    beginResetModel();
    endResetModel();
}

} // namespace tarnwick
