#include "exchange/columnmatch.h"

#include "catalogue/productrecord.h"
#include "exchange/workbook.h"

namespace tarnwick::ColumnMapping {

namespace {

bool isRequiredList(int index)
{
    return index == PartNumberList || index == ProductNameList;
}

/// The header texts that name the field of a list.
QStringList namesOfList(int index)
{
    const int field = catalogueField(index);
    QStringList names { ProductRecord::fieldCaption(field) };
    if (field == ProductRecord::Price)
        names << QStringLiteral("List Price");
    return names;
}

} // namespace

QStringList headerTexts(const IWorkbook &workbook)
{
    QStringList headers;
    for (int column = 0; column < MaxColumns; ++column) {
        QString header = workbook.cellText(column, 1);
        if (header.isEmpty())
            break;
        headers << std::move(header);
    }
    return headers;
}

bool mappingComplete(const std::array<int, ListCount> &positions, ImportAction action)
{
    if (action == ImportAction::UpdateExisting)
        return positions[PartNumberList] >= 0;
    return requiredFieldsMapped(positions);
}

QString columnName(int column)
{
    return QString(QChar(u'A' + column));
}

std::array<int, ListCount> matchHeaders(const QStringList &headers)
{
    std::array<int, ListCount> positions;
    positions.fill(-1);
    for (int index = 0; index < ListCount; ++index) {
        const QStringList names = namesOfList(index);
        for (int column = 0; column < headers.size(); ++column) {
            const QString header = headers[column].trimmed();
            const bool match = std::any_of(names.begin(), names.end(), [&](const QString &name) {
                return header.compare(name, Qt::CaseInsensitive) == 0;
            });
            if (match) {
                positions[std::size_t(index)] = isRequiredList(index) ? column : column + 1;
                break;
            }
        }
    }
    return positions;
}

std::array<int, ListCount> positionsFromLetters(const QString &letters)
{
    std::array<int, ListCount> positions;
    positions.fill(-1);
    for (int index = 0; index < ListCount && index < letters.size(); ++index) {
        const int code = letters[index].unicode();
        if (isRequiredList(index))
            positions[std::size_t(index)] = code >= 'A' ? code - 'A' : -1;
        else
            positions[std::size_t(index)] = code >= '@' ? code - '@' : -1;
    }
    return positions;
}

SampleRows sampleRows(
    const IWorkbook &workbook, const QStringList &headers, int firstRow, int count)
{
    SampleRows sample;
    for (int column = 0; column < headers.size(); ++column)
        sample.captions << columnName(column) + QLatin1Char('\n') + headers[column];
    for (int row = firstRow; row < firstRow + count; ++row) {
        QStringList cells;
        bool empty = true;
        for (int column = 0; column < headers.size(); ++column) {
            cells << workbook.cellText(column, row);
            empty = empty && cells.last().isEmpty();
        }
        if (empty)
            break;
        sample.rows.push_back(std::move(cells));
    }
    return sample;
}

} // namespace tarnwick::ColumnMapping
