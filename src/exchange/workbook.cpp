#include "exchange/workbook.h"

#include "exchange/gridworkbook.h"
#include "exchange/textworkbook.h"
#include "exchange/xlsworkbook.h"

#include <QFile>
#include <QFileInfo>
#include <QLocale>

namespace tarnwick {

QString numberCellText(double value)
{
    return QString::number(value, 'g', QLocale::FloatingPointShortest);
}

WorkbookOpenResult notAWorkbook(int errorNumber)
{
    return WorkbookOpenResult { nullptr, errorNumber,
        QStringLiteral("This file is not an Excel 97 file.") };
}

WorkbookOpenResult openWorkbook(const QString &path)
{
    const QString suffix = QFileInfo(path).suffix().toLower();
    if (suffix == QLatin1String("txt") || suffix == QLatin1String("tab")
        || suffix == QLatin1String("tsv")) {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly)) {
            return WorkbookOpenResult { nullptr, int(file.error()), file.errorString() };
        }
        return WorkbookOpenResult { std::make_unique<TextWorkbook>(file.readAll()), 0, {} };
    }
    if (suffix == QLatin1String("xlsx")) {
        return openXlsxWorkbook(path);
    }
    if (suffix == QLatin1String("ods")) {
        return openOdsWorkbook(path);
    }
    return openXlsWorkbook(path);
}

} // namespace tarnwick
