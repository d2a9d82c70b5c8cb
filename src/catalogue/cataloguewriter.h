#pragma once

#include <QByteArray>
#include <QLocale>
#include <QString>

namespace tarnwick {

class Table;

/// The text of the catalogue file for a table, and the product count the writing leaves.
struct CatalogueFileText
{
    QString text;
    /// Count after writing: the index of the last row if it was written, else one less (a row
    /// index, not the number of lines); unchanged for a table without rows.
    qint32 count = 0;
    int rowsWritten = 0;
};

/// Builds the catalogue file's text: every row whose part number is neither the empty text
/// nor null becomes one line of its fifteen fields as text, each followed by the field end,
/// then CR LF. The price and the price points are written with "." as the decimal separator
/// and no grouping whatever the locale; a single in the shortest form that reads back as the
/// same single. Rows without a part number are left out wherever they lie. Raises VbError 9
/// when the table has fewer than fifteen fields.
CatalogueFileText catalogueFileText(const Table &table, const QLocale &locale, qint32 count);

/// The bytes of the catalogue file for a table, and the product count the writing leaves.
struct CatalogueFileBytes
{
    QByteArray bytes;
    qint32 count = 0; ///< as CatalogueFileText::count
    int rowsWritten = 0;
};

/// The same file as encodeCatalogueText(catalogueFileText(...).text), byte for byte, built
/// in one pass into one buffer: text cells are copied as the bytes they are kept in when
/// they already have the file's encoding, without a QString per cell.
CatalogueFileBytes catalogueFileBytes(const Table &table, const QLocale &locale, qint32 count);

} // namespace tarnwick
