#include "exchange/columnmapping.h"

namespace tarnwick::ColumnMapping {

namespace {

bool isOneOf(const QString &text, std::initializer_list<const char *> words)
{
    for (const char *word : words) {
        if (text == QLatin1String(word)) {
            return true;
        }
    }
    return false;
}

} // namespace

QStringList columnEntries(const IWorkbook &workbook)
{
    QStringList entries;
    for (int column = 0; column < MaxColumns; ++column) {
        const QString header = workbook.cellText(column, 1);
        if (header.isEmpty()) {
            break;
        }
        entries << QStringLiteral("Col %1-  %2").arg(column).arg(header);
    }
    return entries;
}

std::array<int, ListCount> preselection(const QStringList &entries)
{
    std::array<int, ListCount> positions;
    positions.fill(-1);
    for (int i = 0; i < entries.size(); ++i) {
        const QString &entry = entries[i];
        if (isOneOf(entry, { "Part Number", "Part number", "part number" })) {
            positions[0] = i;
        } else if (isOneOf(entry, { "Product Name", "product name", "Product name" })) {
            positions[1] = i;
        } else if (isOneOf(entry, { "Price", "price" })) {
            positions[3] = i + 1;
        } else if (isOneOf(entry, { "Includes", "includes" })) {
            positions[6] = i + 1;
        } else if (isOneOf(entry, { "Notes", "notes" })) {
            positions[7] = i + 1;
        }
    }
    return positions;
}

ColumnListing listColumns(const WorkbookOpenResult &read)
{
    ColumnListing listing;
    if (!read.workbook) {
        listing.errorNumber = read.errorNumber;
        return listing;
    }
    listing.opened = true;
    listing.entries = columnEntries(*read.workbook);
    listing.preselection = preselection(listing.entries);
    return listing;
}

QString columnLetters(const std::array<int, ListCount> &positions)
{
    QString letters;
    for (int index = 0; index < ListCount; ++index) {
        const int position = positions[std::size_t(index)];
        const bool required = index == PartNumberList || index == ProductNameList;
        if (position < 0) {
            letters += required ? QLatin1Char('@') : QLatin1Char('?');
        } else {
            letters += QChar((required ? 65 : 64) + position);
        }
    }
    return letters;
}

} // namespace tarnwick::ColumnMapping
