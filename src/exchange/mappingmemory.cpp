#include "exchange/mappingmemory.h"

#include "exchange/columnmapping.h"
#include "platform/isettingsstore.h"

#include <QCryptographicHash>

namespace tarnwick::MappingMemory {

namespace {

/// Whether letters is a letter table for a sheet of columns columns.
bool isLetterTable(const QString &letters, int columns)
{
    if (letters.size() != ColumnMapping::ListCount)
        return false;
    const QChar last = QChar(u'A' + columns - 1);
    for (int index = 0; index < letters.size(); ++index) {
        const QChar letter = letters[index];
        const bool required =
            index == ColumnMapping::PartNumberList || index == ColumnMapping::ProductNameList;
        const bool unread = letter == QLatin1Char('@') || (!required && letter == QLatin1Char('?'));
        if (!unread && (letter < QLatin1Char('A') || letter > last))
            return false;
    }
    return true;
}

} // namespace

QString settingsKey(const QStringList &headers)
{
    const QByteArray hash = QCryptographicHash::hash(
        headers.join(QLatin1Char('\t')).toUtf8(), QCryptographicHash::Sha256);
    return QStringLiteral("Mapping") + QString::fromLatin1(hash.left(8).toHex().toUpper());
}

bool remember(ISettingsStore &settings, const QStringList &headers, const QString &letters)
{
    if (headers.isEmpty())
        return false;
    return settings.save(Application, Section, settingsKey(headers), letters);
}

std::optional<QString> recall(const ISettingsStore &settings, const QStringList &headers)
{
    if (headers.isEmpty())
        return std::nullopt;
    const QString letters = settings.get(Application, Section, settingsKey(headers));
    if (!isLetterTable(letters, int(headers.size())))
        return std::nullopt;
    return letters;
}

} // namespace tarnwick::MappingMemory
