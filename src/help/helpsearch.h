#pragma once

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

namespace tarnwick {

/// One topic found by the search, with how well it matched.
struct SearchHit
{
    QString file;
    QString title;
    int score = 0;
};

/// The full-text search of the manual: each topic's words, from its title and its text.
/// A topic is found when every word of the query begins a word of the topic ("pric" finds
/// "price" and "prices"); topics are ranked by how often the words occur, a word of the title
/// counting ten times.
class HelpSearch
{
public:
    /// Adds a topic; html is the page's source.
    void addTopic(const QString &file, const QString &title, const QString &html);
    /// The topics that contain every word of the query, best first (ties in the order added).
    QList<SearchHit> search(const QString &query) const;

    /// The visible text of an HTML page: no tags, no head, entities decoded.
    static QString plainText(const QString &html);
    /// The words of a text in lower case (letters and digits; shorter than two are left out).
    static QStringList words(const QString &text);
    /// The singular of an English plural ("backups" → "backup", "copies" → "copy"); empty for
    /// a word that does not look like one.
    static QString singularOf(const QString &word);

private:
    struct Entry
    {
        QString file;
        QString title;
        QHash<QString, int> titleWords;
        QHash<QString, int> bodyWords;
    };
    static int occurrences(const QHash<QString, int> &words, const QString &prefix);
    QList<Entry> m_entries;
};

} // namespace tarnwick
