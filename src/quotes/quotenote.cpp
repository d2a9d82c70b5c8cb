#include "quotes/quotenote.h"

#include "catalogue/cataloguetext.h"
#include "core/conversions.h"
#include "core/storednumber.h"
#include "core/vberror.h"
#include "platform/isettingsstore.h"

#include <QDir>
#include <QFile>

namespace tarnwick::QuoteNote {

namespace {

const QString Application = QStringLiteral("Tarnwick");
const QString Section = QStringLiteral("Settings");
const QString NoIncludesKey = QStringLiteral("NoIncludes");
const QString VolumePricesKey = QStringLiteral("VolumePrices");

} // namespace

QString headingPath(const QString &folder)
{
    const QDir dir(folder);
    for (const QLatin1String name : { HeadingFileName, HeadingFileSaveName }) {
        if (dir.exists(name))
            return dir.filePath(name);
    }
    return dir.filePath(HeadingFileSaveName);
}

QString endingPath(const QString &folder)
{
    return QDir(folder).filePath(EndingFileName);
}

QString readText(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QString text = decodeCatalogueBytes(file.readAll());
    text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    text.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    return text;
}

QByteArray fileBytes(const QString &text)
{
    QString lines = text;
    lines.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    lines.replace(QLatin1String("\n"), QLatin1String("\r\n"));
    return encodeCatalogueText(lines);
}

FileWriteResult saveText(const QString &path, const QString &text)
{
    return writeFileWhole(path, fileBytes(text));
}

FileWriteResult saveNotes(const QString &folder, const QString &heading, const QString &ending)
{
    return writeFilesWhole({ FileContent { endingPath(folder), fileBytes(ending) },
        FileContent { headingPath(folder), fileBytes(heading) } });
}

QString readHeading(const QString &folder)
{
    return readText(headingPath(folder));
}

QString readEnding(const QString &folder)
{
    return readText(endingPath(folder));
}

QuoteTexts readTexts(const QString &folder)
{
    return { readHeading(folder), readEnding(folder) };
}

namespace {

int integerSetting(const ISettingsStore &settings, const QString &key)
{
    // Read as the window's numbers are: "1", " 1 ", "1.0" and "1,0" are all 1, "1.5" rounds to
    // 2; a value that is no number or is beyond the integer's range counts as 0.
    const std::optional<double> number =
        stored::readNumber(settings.get(Application, Section, key, QStringLiteral("0")));
    if (!number)
        return 0;
    try {
        return conv::toInt16(Cell(*number), QLocale::c());
    } catch (const VbError &) {
        return 0;
    }
}

} // namespace

int noIncludes(const ISettingsStore &settings)
{
    return integerSetting(settings, NoIncludesKey);
}

int volumePrices(const ISettingsStore &settings)
{
    return integerSetting(settings, VolumePricesKey);
}

bool saveVolumePrices(ISettingsStore &settings, int value)
{
    return settings.save(Application, Section, VolumePricesKey, QString::number(value));
}

bool saveNoIncludes(ISettingsStore &settings, int value)
{
    return settings.save(Application, Section, NoIncludesKey, QString::number(value));
}

} // namespace tarnwick::QuoteNote
