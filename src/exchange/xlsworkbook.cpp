// The only file that uses freexl.
#include "exchange/xlsworkbook.h"

#include <QFile>
#include <QStringList>

#include <freexl.h>

#include <vector>

namespace tarnwick {

namespace {

class XlsWorkbook : public IWorkbook
{
public:
    XlsWorkbook(int columns, std::vector<QStringList> rows)
        : m_columns(columns), m_rows(std::move(rows))
    {
    }
    QString cellText(int column, int row) const override
    {
        if (row < 1 || row > int(m_rows.size()) || column < 0 || column >= m_columns) {
            return QString();
        }
        return m_rows[std::size_t(row - 1)][column];
    }

private:
    int m_columns;
    std::vector<QStringList> m_rows;
};

QString cellValueText(const FreeXL_CellValue &value)
{
    switch (value.type) {
    case FREEXL_CELL_INT:
        return QString::number(value.value.int_value);
    case FREEXL_CELL_DOUBLE:
        return numberCellText(value.value.double_value);
    case FREEXL_CELL_TEXT:
    case FREEXL_CELL_SST_TEXT:
    case FREEXL_CELL_DATE:
    case FREEXL_CELL_DATETIME:
    case FREEXL_CELL_TIME:
        return QString::fromUtf8(value.value.text_value);
    default:
        return QString();
    }
}

WorkbookOpenResult failure(int code)
{
    return notAWorkbook(code < 0 ? -code : code);
}

/// Reads every cell of the selected sheet; returns a freexl error code or FREEXL_OK.
int readSheet(const void *handle, int &columns, std::vector<QStringList> &rows)
{
    unsigned int rowCount = 0;
    unsigned short columnCount = 0;
    int code = freexl_worksheet_dimensions(handle, &rowCount, &columnCount);
    columns = columnCount;
    for (unsigned int r = 0; code == FREEXL_OK && r < rowCount; ++r) {
        QStringList cells;
        for (unsigned short c = 0; c < columnCount; ++c) {
            FreeXL_CellValue value;
            code = freexl_get_cell_value(handle, r, c, &value);
            if (code != FREEXL_OK) {
                break;
            }
            cells << cellValueText(value);
        }
        rows.push_back(cells);
    }
    return code;
}

} // namespace

WorkbookOpenResult openXlsWorkbook(const QString &path)
{
    const void *handle = nullptr;
    int code = freexl_open(QFile::encodeName(path).constData(), &handle);
    if (code != FREEXL_OK) {
        freexl_close(handle);
        return failure(code);
    }
    int columns = 0;
    std::vector<QStringList> rows;
    code = freexl_select_active_worksheet(handle, 0);
    if (code == FREEXL_OK) {
        code = readSheet(handle, columns, rows);
    }
    freexl_close(handle);
    if (code != FREEXL_OK) {
        return failure(code);
    }
    return WorkbookOpenResult { std::make_unique<XlsWorkbook>(columns, std::move(rows)), 0, {} };
}

} // namespace tarnwick
