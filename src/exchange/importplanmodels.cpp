#include "exchange/importplanmodels.h"

#include "catalogue/productrecord.h"
#include "core/formats.h"
#include "exchange/importplan.h"
#include "exchange/importreport.h"

#include <limits>
#include <span>

namespace tarnwick {

namespace {

namespace P = ProductRecord;

const char *const ChangeHeaders[ImportChangesModel::ColumnCount] = { "Row", "Part Number", "Action",
    "Field", "Old", "New" };
const char *const SkippedHeaders[SkippedRowsModel::ColumnCount] = { "Row", "Part Number",
    "Reason" };

QVariant headerText(
    const char *const *headers, int count, int section, Qt::Orientation orientation, int role)
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section < 0 || section >= count)
        return {};
    return QString::fromLatin1(headers[section]);
}

} // namespace

ImportChangesModel::ImportChangesModel(
    const ImportPlan &plan, const QLocale &locale, QObject *parent)
    : QAbstractTableModel(parent), m_plan(plan), m_locale(locale)
{
    // New and changed products merged in the order of their sheet rows.
    std::size_t next = 0;
    const auto addChangedUpTo = [&](int sheetRow) {
        for (; next < plan.changed.size() && plan.changed[next].sheetRow < sheetRow; ++next) {
            for (const ImportPlan::FieldChange &change : plan.changed[next].fields)
                m_lines.push_back({ -1, int(next), change.field });
        }
    };
    for (int added = 0; added < plan.addedCount(); ++added) {
        addChangedUpTo(plan.addedSheetRows[std::size_t(added)]);
        const std::span<const Cell> cells = plan.addedProduct(added);
        m_lines.push_back({ added, -1, P::PartNumber });
        for (int field = P::ProductName; field <= P::FieldCount; ++field) {
            if (!cells[std::size_t(field - 1)].isBlank())
                m_lines.push_back({ added, -1, field });
        }
    }
    addChangedUpTo(std::numeric_limits<int>::max());
}

int ImportChangesModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_lines.size());
}

int ImportChangesModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QString ImportChangesModel::text(const Line &line, int column) const
{
    const bool added = line.added >= 0;
    const ImportPlan::ChangedProduct *changed =
        added ? nullptr : &m_plan.changed[std::size_t(line.changed)];
    switch (column) {
    case RowColumn:
        return QString::number(
            added ? m_plan.addedSheetRows[std::size_t(line.added)] : changed->sheetRow);
    case PartNumberColumn:
        return added ? m_plan.addedProduct(line.added)[0].asText() : changed->partNumber;
    case ActionColumn:
        return added ? QStringLiteral("Add") : QStringLiteral("Change");
    case FieldColumn:
        return P::fieldCaption(line.field);
    default:
        break;
    }
    if (added) {
        const Cell &value = m_plan.addedProduct(line.added)[std::size_t(line.field - 1)];
        return column == NewColumn ? ImportReport::displayText(line.field, value, m_locale)
                                   : QString();
    }
    for (const ImportPlan::FieldChange &change : changed->fields) {
        if (change.field == line.field) {
            const auto [before, after] =
                ImportReport::changeTexts(line.field, change.before, change.after, m_locale);
            return column == OldColumn ? before : after;
        }
    }
    return QString();
}

QVariant ImportChangesModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= int(m_lines.size()))
        return {};
    if (role == Qt::DisplayRole)
        return text(m_lines[std::size_t(index.row())], index.column());
    if (role == Qt::ToolTipRole)
        return plainToolTip(text(m_lines[std::size_t(index.row())], index.column()));
    return {};
}

QVariant ImportChangesModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    return headerText(ChangeHeaders, ColumnCount, section, orientation, role);
}

SkippedRowsModel::SkippedRowsModel(const ImportPlan &plan, QObject *parent)
    : QAbstractTableModel(parent), m_plan(plan)
{
}

int SkippedRowsModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_plan.skipped.size());
}

int SkippedRowsModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant SkippedRowsModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount() || role != Qt::DisplayRole)
        return {};
    const ImportPlan::SkippedRow &row = m_plan.skipped[std::size_t(index.row())];
    switch (index.column()) {
    case 0:
        return QString::number(row.sheetRow);
    case 1:
        return row.partNumber;
    default:
        return ImportReport::reasonText(row.reason);
    }
}

QVariant SkippedRowsModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    return headerText(SkippedHeaders, ColumnCount, section, orientation, role);
}

} // namespace tarnwick
