#pragma once

#include <QByteArray>
#include <QFileDevice>
#include <QLocale>
#include <QString>

#include <span>

namespace tarnwick {

class Cell;
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

/// Whether the file keeps a row with this part number cell: a row without a part number (an
/// empty cell or an empty text) is not written.
bool hasPartNumber(const Cell &cell, const QLocale &locale);

/// Whether a row (its cells from the part number on) is a product the file would not keep:
/// no part number, but a name, a price, a note or a price point typed into it (a row added
/// and left empty is no product yet).
bool isProductWithoutPartNumber(std::span<const Cell> row, const QLocale &locale);

/// What becomes of rows without a part number: the catalogue file drops them (it keeps a
/// product by its part number); the recovery file keeps those with something in them, so a
/// crash loses nothing typed (a row added and left empty is no product and is dropped).
enum class RowsWithoutPartNumber { Dropped, KeptWithContent };

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

/// Takes the catalogue file's bytes piece by piece, so a large catalogue is saved without
/// holding a second copy of it in memory.
class CatalogueByteSink
{
public:
    virtual ~CatalogueByteSink() = default;
    /// Appends the next piece; false stops the writing.
    virtual bool write(const QByteArray &piece) = 0;
    /// Forgets every piece written so far: the file starts again from its first byte, in
    /// another encoding. False stops the writing.
    virtual bool restart() = 0;
};

/// Writes the pieces into an open file (the temporary file of a save); starting again
/// rewinds it, and finish() cuts the file to what the second writing left.
class CatalogueFileSink : public CatalogueByteSink
{
public:
    explicit CatalogueFileSink(QFileDevice &file) : m_file(file) { }

    bool write(const QByteArray &piece) override { return m_file.write(piece) == piece.size(); }
    bool restart() override
    {
        m_restarted = true;
        return m_file.seek(0);
    }
    bool finish() { return !m_restarted || m_file.resize(m_file.pos()); }

private:
    QFileDevice &m_file;
    bool m_restarted = false;
};

/// What streaming the catalogue file came to: the count and rows as CatalogueFileBytes, and
/// whether every piece was taken.
struct CatalogueStreamResult
{
    bool ok = true;
    qint32 count = 0;
    int rowsWritten = 0;
};

/// The size of the pieces a catalogue file is written in.
inline constexpr qsizetype CataloguePieceSize = 1024 * 1024;

/// The bytes of catalogueFileBytes, given to sink in pieces of about pieceSize bytes that
/// each end with a line. The file is written in Windows-1252 first; when a character turns
/// out to have no byte there, or the finished file would read back as UTF-8, the sink is
/// restarted and the file written again in UTF-8 (rare: nearly every catalogue fits
/// Windows-1252 and is written once).
CatalogueStreamResult streamCatalogueFile(const Table &table, const QLocale &locale, qint32 count,
    CatalogueByteSink &sink, qsizetype pieceSize = CataloguePieceSize,
    RowsWithoutPartNumber rows = RowsWithoutPartNumber::Dropped);

} // namespace tarnwick
