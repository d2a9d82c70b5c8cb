#include "exchange/textworkbook.h"

#include "catalogue/cataloguetext.h"
#include "exchange/sheetvalue.h"
#include "exchange/workbookformats.h"

#include <QStringList>

namespace tarnwick {

namespace {

/// The characters of tab-separated text: UTF-16 after its byte-order mark, else as the
/// catalogue file's.
QString decodeSheetText(QByteArrayView bytes)
{
    const auto startsWith = [&bytes](const char *mark) {
        return bytes.size() >= 2 && bytes[0] == mark[0] && bytes[1] == mark[1];
    };
    if (startsWith("\xFF\xFE") || startsWith("\xFE\xFF")) {
        const bool little = bytes[0] == '\xFF';
        QString text;
        text.reserve((bytes.size() - 2) / 2);
        for (qsizetype at = 2; at + 1 < bytes.size(); at += 2) {
            const auto low = quint8(bytes[little ? at : at + 1]);
            const auto high = quint8(bytes[little ? at + 1 : at]);
            text += QChar(char16_t(low | (high << 8)));
        }
        return text;
    }
    if (bytes.size() >= 3 && bytes.first(3) == QByteArrayView("\xEF\xBB\xBF", 3))
        bytes = bytes.sliced(3);
    return decodeCatalogueBytes(bytes.toByteArray());
}

bool isLineEnd(const QString &text, qsizetype at)
{
    return at < text.size()
        && (text[at] == QLatin1Char('\n')
            || (text[at] == QLatin1Char('\r') && at + 1 < text.size()
                && text[at + 1] == QLatin1Char('\n')));
}

/// Reads a quoted cell at text[at] (a double quote); on success moves at past its closing
/// quote. The search for the closing quote goes no further than a cell may hold. A cell is
/// taken as quoted only where the file quotes its text cells (quotesText) or where the cell
/// could not be written without quotes (a doubled quote, a tab or a line break in it): the
/// program's own export writes a text that is wholly in quotes ("Best") as it is.
bool readQuotedCell(const QString &text, qsizetype &at, QString &cell, bool quotesText)
{
    cell.clear();
    bool needed = quotesText;
    qsizetype from = at + 1;
    for (;;) {
        const qsizetype quote = text.indexOf(QLatin1Char('"'), from);
        if (quote < 0 || quote - at > qsizetype(SheetCells::MaxCellBytes))
            return false;
        const QStringView part = QStringView(text).sliced(from, quote - from);
        needed = needed || part.contains(QLatin1Char('\t')) || part.contains(QLatin1Char('\n'))
            || part.contains(QLatin1Char('\r'));
        cell += part;
        const qsizetype after = quote + 1;
        if (after < text.size() && text[after] == QLatin1Char('"')) {
            cell += QLatin1Char('"');
            needed = true;
            from = after + 1;
            continue;
        }
        if (after == text.size() || text[after] == QLatin1Char('\t') || isLineEnd(text, after)) {
            if (!needed)
                return false;
            at = after;
            return true;
        }
        return false;
    }
}

/// Reads the cells of one line (or of several, where a quoted cell holds line breaks) from
/// text[at]; moves at past its line end. The first cell of a line that goes on with a field
/// of the line before (continuing) is the middle of that field, taken as it stands.
QStringList readRecord(const QString &text, qsizetype &at, bool quotesText, bool continuing = false)
{
    QStringList cells;
    QString cell;
    for (bool first = true;; first = false) {
        if (!(first && continuing) && at < text.size() && text[at] == QLatin1Char('"')
            && readQuotedCell(text, at, cell, quotesText)) {
            cells << cell;
        } else {
            qsizetype end = at;
            while (end < text.size() && text[end] != QLatin1Char('\t') && !isLineEnd(text, end))
                ++end;
            cells << text.mid(at, end - at);
            at = end;
        }
        if (at < text.size() && text[at] == QLatin1Char('\t')) {
            ++at;
            continue;
        }
        if (at < text.size())
            at += text[at] == QLatin1Char('\r') ? 2 : 1;
        return cells;
    }
}

void putRecord(SheetCells &cells, int row, const QStringList &record)
{
    for (qsizetype column = 0; column < record.size() && column < SheetCells::Columns; ++column) {
        if (record[column].isEmpty())
            continue;
        const QByteArray bytes = record[column].toUtf8();
        const std::size_t start = cells.texts().size();
        SheetValue::appendText(
            cells.texts(), std::string_view(bytes.constData(), std::size_t(bytes.size())));
        cells.put(row, int(column), cells.checkedTextFrom(start));
    }
}

} // namespace

void readTextSheet(QByteArrayView bytes, SheetCells &cells)
{
    QString text = decodeSheetText(bytes);
    // Lines ended by a carriage return alone, as older Mac spreadsheets save text: each one
    // ends a line there (a file with line feeds keeps a lone one inside its cells).
    if (!text.contains(QLatin1Char('\n')) && text.contains(QLatin1Char('\r')))
        text.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    // A spreadsheet that quotes its text cells quotes the header row's first cell too.
    const bool quotesText = text.startsWith(QLatin1Char('"'));
    qsizetype at = 0;
    qsizetype width = 0;
    QStringList next;
    bool hasNext = false;
    for (int row = 1; (hasNext || at < text.size()) && !cells.stopped() && !cells.overflowed();
         ++row) {
        QStringList record = hasNext ? next : readRecord(text, at, quotesText);
        hasNext = false;
        if (row == 1) {
            width = record.size();
        } else {
            // A field that holds a line break continues on the next line.
            while (record.size() > 1 && record.size() < width && at < text.size()) {
                // The line goes on with the last field, so a quote at its start is the
                // field's text (the export's notes with a quoted second line). Only when that
                // reading does not fit the row is the line read as spreadsheets quote it,
                // to join it all the same or to start the next row.
                const qsizetype lineStart = at;
                next = readRecord(text, at, quotesText, true);
                if (record.size() + next.size() - 1 > width) {
                    at = lineStart;
                    next = readRecord(text, at, quotesText);
                    if (record.size() + next.size() - 1 > width) {
                        hasNext = true;
                        break;
                    }
                }
                record.last() += QStringLiteral("\r\n") + next.first();
                record.append(next.mid(1));
            }
        }
        putRecord(cells, row, record);
    }
}

TextWorkbook::TextWorkbook(const QByteArray &bytes)
{
    readTextSheet(bytes, m_cells);
    m_cells.finish();
}

} // namespace tarnwick
