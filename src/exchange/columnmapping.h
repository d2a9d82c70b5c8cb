#pragma once

#include "exchange/workbook.h"

#include <QString>
#include <QStringList>

#include <array>

namespace tarnwick::ColumnMapping {

/// The number of field lists of the import window, and how many columns (A to R) it offers.
constexpr int ListCount = 15;
constexpr int MaxColumns = 18;
/// The index of the lists that must be mapped, and the first entry of every other list.
constexpr int PartNumberList = 0;
constexpr int ProductNameList = 1;
inline const QString SkipField = QStringLiteral("Skip Field");
inline const QString Required = QStringLiteral("Required");

/// The catalogue field (1 to 15) that list index fills; asked for every cell an import reads.
inline int catalogueField(int listIndex)
{
    constexpr std::array<int, ListCount> FieldOfList { 1, 2, 6, 3, 7, 8, 5, 4, 9, 10, 11, 12, 13,
        14, 15 };
    return FieldOfList.at(std::size_t(listIndex));
}

/// The column entries of the worksheet's header row: "Col 0-  Part Number" … for columns A
/// to R, stopping at the first column whose row-1 cell is empty.
QStringList columnEntries(const IWorkbook &workbook);

/// The positions to preselect, by list index (-1: none), from the entries of list 0 as the
/// window compares them: the whole entry text against the plain header words.
std::array<int, ListCount> preselection(const QStringList &entries);

/// The column letter table from the selected position of each list (-1 for no selection):
/// "A" + position for the required lists, "@" + position for the others (so "Skip Field" gives
/// "@"); no selection gives "@" for the required lists and "?" for the others.
QString columnLetters(const std::array<int, ListCount> &positions);

/// True when both required lists have a column selected (a position of 0 or more); the import
/// window otherwise says "Missing required fields".
inline bool requiredFieldsMapped(const std::array<int, ListCount> &positions)
{
    return positions[PartNumberList] >= 0 && positions[ProductNameList] >= 0;
}

/// What the import window lists for a workbook that was read: the column entries of its header
/// row and the positions to preselect, or, when the file could not be read as a workbook, the
/// error number its message shows.
struct ColumnListing
{
    bool opened = false;
    int errorNumber = 0;
    QStringList entries;
    std::array<int, ListCount> preselection {};
};
ColumnListing listColumns(const WorkbookOpenResult &read);

/// True when the letter means that the field is not read.
inline bool isUnread(QChar letter)
{
    return letter == QLatin1Char('@') || letter == QLatin1Char('?');
}

} // namespace tarnwick::ColumnMapping
