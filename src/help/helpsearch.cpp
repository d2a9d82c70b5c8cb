#include "help/helpsearch.h"

#include <QRegularExpression>

#include <algorithm>

namespace tarnwick {

namespace {

QHash<QString, int> countWords(const QString &text)
{
    QHash<QString, int> counts;
    for (const QString &word : HelpSearch::words(text))
        ++counts[word];
    return counts;
}

// The named entities the manual uses; any other named entity reads as a blank.
QString decodeEntities(const QString &text)
{
    static const QHash<QString, QString> named {
        { QStringLiteral("amp"), QStringLiteral("&") },
        { QStringLiteral("lt"), QStringLiteral("<") },
        { QStringLiteral("gt"), QStringLiteral(">") },
        { QStringLiteral("quot"), QStringLiteral("\"") },
        { QStringLiteral("apos"), QStringLiteral("'") },
        { QStringLiteral("nbsp"), QStringLiteral(" ") },
        { QStringLiteral("mdash"), QStringLiteral("\u2014") },
        { QStringLiteral("ndash"), QStringLiteral("\u2013") },
        { QStringLiteral("hellip"), QStringLiteral("\u2026") },
        { QStringLiteral("times"), QStringLiteral("\u00d7") },
        { QStringLiteral("rarr"), QStringLiteral("\u2192") },
    };
    static const QRegularExpression entity(QStringLiteral("&(#?)(\\w+);"));
    QString result;
    qsizetype done = 0;
    for (auto it = entity.globalMatch(text); it.hasNext();) {
        const QRegularExpressionMatch match = it.next();
        result += text.mid(done, match.capturedStart() - done);
        if (match.captured(1).isEmpty())
            result += named.value(match.captured(2), QStringLiteral(" "));
        else
            result += QChar(char16_t(match.captured(2).toUInt()));
        done = match.capturedEnd();
    }
    return result + text.mid(done);
}

} // namespace

void HelpSearch::addTopic(const QString &file, const QString &title, const QString &html)
{
    m_entries.append({ file, title, countWords(title), countWords(plainText(html)) });
}

int HelpSearch::occurrences(const QHash<QString, int> &words, const QString &prefix)
{
    int count = 0;
    for (auto it = words.cbegin(); it != words.cend(); ++it) {
        if (it.key().startsWith(prefix))
            count += it.value();
    }
    return count;
}

QList<SearchHit> HelpSearch::search(const QString &query) const
{
    const QStringList wanted = words(query);
    QList<SearchHit> hits;
    if (wanted.isEmpty())
        return hits;
    for (const Entry &entry : m_entries) {
        int score = 0;
        bool all = true;
        for (const QString &word : wanted) {
            int found =
                10 * occurrences(entry.titleWords, word) + occurrences(entry.bodyWords, word);
            // "backups" finds the pages on backing up: a plural's singular is searched for
            // where the plural itself is not found.
            if (found == 0) {
                if (const QString singular = singularOf(word); !singular.isEmpty()) {
                    found = 10 * occurrences(entry.titleWords, singular)
                        + occurrences(entry.bodyWords, singular);
                }
            }
            all = all && found > 0;
            score += found;
        }
        if (all)
            hits.append({ entry.file, entry.title, score });
    }
    std::stable_sort(hits.begin(), hits.end(),
        [](const SearchHit &a, const SearchHit &b) { return a.score > b.score; });
    return hits;
}

QString HelpSearch::singularOf(const QString &word)
{
    if (word.size() > 4 && word.endsWith(QLatin1String("ies")))
        return word.chopped(3) + QLatin1Char('y');
    if (word.size() > 3 && word.endsWith(QLatin1Char('s')) && !word.endsWith(QLatin1String("ss")))
        return word.chopped(1);
    return QString();
}

QString HelpSearch::plainText(const QString &html)
{
    static const QRegularExpression hidden(QStringLiteral("<(head|style|script)\\b.*?</\\1>"),
        QRegularExpression::DotMatchesEverythingOption | QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression tag(QStringLiteral("<[^>]*>"));
    QString text = html;
    text.remove(hidden);
    text.replace(tag, QStringLiteral(" "));
    return decodeEntities(text).simplified();
}

QStringList HelpSearch::words(const QString &text)
{
    static const QRegularExpression separator(QStringLiteral("[^\\p{L}\\p{N}]+"));
    QStringList result;
    for (const QString &word : text.toLower().split(separator, Qt::SkipEmptyParts)) {
        if (word.size() >= 2)
            result << word;
    }
    return result;
}

} // namespace tarnwick
