// The Excel 97 workbook reader: the "Workbook" stream of the compound document, read by the
// BIFF8 reader.
#include "exchange/biffworkbook.h"
#include "exchange/compounddocument.h"
#include "exchange/workbookformats.h"

namespace tarnwick {

bool readXlsSheet(QByteArrayView bytes, SheetCells &cells)
{
    const std::optional<QByteArray> stream = readCompoundStream(bytes, "Workbook");
    return stream.has_value() && Biff::readWorkbookStream(*stream, cells);
}

} // namespace tarnwick
