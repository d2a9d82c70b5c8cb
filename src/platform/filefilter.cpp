#include "platform/filefilter.h"

#include <QFileInfo>
#include <QList>

#include <utility>

namespace tarnwick {

namespace {

/// The patterns of one filter entry in Qt's form: split on ";" (and blanks), "*.*" becomes
/// "*" because Qt's "*.*" would hide files without an extension. An entry without any
/// pattern means every file.
QStringList qtPatterns(const QString &patterns)
{
    QStringList result;
    const QStringList parts = QString(patterns)
                                  .replace(QLatin1Char(';'), QLatin1Char(' '))
                                  .split(QLatin1Char(' '), Qt::SkipEmptyParts);
    for (const QString &part : parts) {
        const QString pattern = part == QLatin1String("*.*") ? QStringLiteral("*") : part;
        if (!result.contains(pattern))
            result << pattern;
    }
    if (result.isEmpty())
        result << QStringLiteral("*");
    return result;
}

/// The description without a trailing "(…)" that shows patterns (one holding "*" or "?"),
/// since Qt reads the patterns from that last parenthesis. Any other trailing parenthesis,
/// such as "(old format)", is ordinary text and stays.
QString withoutShownPatterns(const QString &description)
{
    if (!description.endsWith(QLatin1Char(')')))
        return description;
    const qsizetype open = description.lastIndexOf(QLatin1Char('('));
    if (open < 0)
        return description;
    const QString shown = description.mid(open + 1, description.size() - open - 2);
    if (!shown.contains(QLatin1Char('*')) && !shown.contains(QLatin1Char('?')))
        return description;
    return description.left(open).trimmed();
}

/// One Qt name filter, "Description (*.a *.b)"; a blank description gives the bare
/// patterns, which Qt also accepts.
QString qtNameFilter(const QString &description, const QString &patterns)
{
    const QString text = withoutShownPatterns(description.trimmed());
    QString joined = qtPatterns(patterns).join(QLatin1Char(' '));
    if (text.isEmpty())
        return joined;
    return text + QStringLiteral(" (") + joined + QLatin1Char(')');
}

} // namespace

namespace {

/// The complete description/pattern pairs of filter, in order; a last description without a
/// pattern after it is not a pair and is left out.
QList<std::pair<QString, QString>> filterPairs(const QString &filter)
{
    QList<std::pair<QString, QString>> pairs;
    if (filter.trimmed().isEmpty())
        return pairs;
    const QStringList parts = filter.split(QLatin1Char('|'));
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2)
        pairs.append({ parts.at(i), parts.at(i + 1) });
    return pairs;
}

} // namespace

// Every complete description/pattern pair gives exactly one entry, even when its pattern is
// blank, so that the n-th pair stays the n-th entry and filter indexes keep their meaning.
QStringList toQtNameFilters(const QString &filter)
{
    QStringList result;
    for (const auto &[description, pattern] : filterPairs(filter))
        result << qtNameFilter(description, pattern);
    return result;
}

QStringList filterDescriptions(const QString &filter)
{
    QStringList result;
    for (const auto &[description, pattern] : filterPairs(filter))
        result << description;
    return result;
}

QString withDefaultSuffix(const QString &path, const QString &suffix)
{
    const QString name = QFileInfo(path).fileName();
    if (suffix.isEmpty() || name.isEmpty() || name.contains(QLatin1Char('.')))
        return path;
    return path + QLatin1Char('.') + suffix;
}

} // namespace tarnwick
