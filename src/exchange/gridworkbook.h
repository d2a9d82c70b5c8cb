#pragma once

#include "exchange/workbook.h"

#include <QByteArray>
#include <QHash>
#include <QString>

namespace tarnwick {

/// A worksheet held as the cells that have a text; the readers of zipped formats fill it.
class GridWorkbook : public IWorkbook
{
public:
    QString cellText(int column, int row) const override { return m_cells.value(key(column, row)); }
    void setCell(int column, int row, const QString &text)
    {
        if (!text.isEmpty()) {
            m_cells.insert(key(column, row), text);
        }
    }

private:
    static quint64 key(int column, int row)
    {
        return (quint64(quint32(row)) << 32) | quint32(column);
    }
    QHash<quint64, QString> m_cells;
};

/// Opens the first worksheet of an Office Open XML workbook (".xlsx").
WorkbookOpenResult openXlsxWorkbook(const QString &path);
/// The same, from the bytes of such a file.
WorkbookOpenResult openXlsxWorkbookData(const QByteArray &bytes);
/// Opens the first table of an OpenDocument spreadsheet (".ods").
WorkbookOpenResult openOdsWorkbook(const QString &path);
/// The same, from the bytes of such a file.
WorkbookOpenResult openOdsWorkbookData(const QByteArray &bytes);

} // namespace tarnwick
