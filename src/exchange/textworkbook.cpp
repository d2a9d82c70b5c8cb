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
/// quote. The search for the closing quote goes no further than a cell may hold.
bool readQuotedCell(const QString &text, qsizetype &at, QString &cell)
{
    cell.clear();
    qsizetype from = at + 1;
    for (;;) {
        const qsizetype quote = text.indexOf(QLatin1Char('"'), from);
        if (quote < 0 || quote - at > qsizetype(SheetCells::MaxCellBytes))
            return false;
        cell += QStringView(text).sliced(from, quote - from);
        const qsizetype after = quote + 1;
        if (after < text.size() && text[after] == QLatin1Char('"')) {
            cell += QLatin1Char('"');
            from = after + 1;
            continue;
        }
        if (after == text.size() || text[after] == QLatin1Char('\t') || isLineEnd(text, after)) {
            at = after;
            return true;
        }
        return false;
    }
}

/// Reads the cells of one line (or of several, where a quoted cell holds line breaks) from
/// text[at]; moves at past its line end. The first cell of a line that goes on with a field
/// of the line before (continuing) is the middle of that field, taken as it stands.
QStringList readRecord(const QString &text, qsizetype &at, bool continuing = false)
{
    QStringList cells;
    QString cell;
    for (bool first = true;; first = false) {
        if (!(first && continuing) && at < text.size() && text[at] == QLatin1Char('"')
            && readQuotedCell(text, at, cell)) {
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
    const QString text = decodeSheetText(bytes);
    qsizetype at = 0;
    qsizetype width = 0;
    QStringList next;
    bool hasNext = false;
    for (int row = 1; (hasNext || at < text.size()) && !cells.stopped() && !cells.overflowed();
         ++row) {
        QStringList record = hasNext ? next : readRecord(text, at);
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
                next = readRecord(text, at, true);
                if (record.size() + next.size() - 1 > width) {
                    at = lineStart;
                    next = readRecord(text, at);
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
