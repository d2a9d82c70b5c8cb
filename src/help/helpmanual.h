#pragma once

#include "help/helpsearch.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <QtGlobal>

#include <optional>

namespace tarnwick {

/// One page of the manual, as the contents list it.
struct HelpTopic
{
    QString file; ///< the page's file name, relative to the manual's folder
    QString title;
    int level = 0; ///< depth in the contents tree (0 = top)
    QList<qint32> contexts; ///< context numbers that open this page
    QStringList keywords; ///< index entries, from the page's "keywords" meta tag
    QString html;
};

/// An entry of the manual's index: a keyword and the page it leads to.
struct HelpIndexEntry
{
    QString keyword;
    QString file;
    QString title;
    /// What the index shows: the keyword, followed by the page's title when the keyword leads
    /// to several pages ("price list — Printing the price list").
    QString label;
};

/// The program's manual: its contents (docs/help/contents.txt: one page a line, indented four
/// spaces per level, "file | title | context numbers"), the pages, the index built from their
/// keywords and the full-text search.
class HelpManual
{
public:
    /// Where the manual is compiled into the program.
    static const QString ResourceFolder;

    /// Reads the contents and every page it lists from folder; false (with errorString) when
    /// the contents or a page cannot be read.
    bool load(const QString &folder = ResourceFolder);
    QString errorString() const { return m_error; }
    QString folder() const { return m_folder; }

    const QList<HelpTopic> &topics() const { return m_topics; }
    /// The page with that file name, or null.
    const HelpTopic *topic(const QString &file) const;
    /// The page a context number opens.
    std::optional<QString> topicForContext(qint32 context) const;
    /// The first page of the contents (the welcome page).
    QString homeTopic() const;

    /// Every keyword with its pages, one entry per page (a keyword named twice by one page
    /// counts once), sorted without regard to case on the keyword, then on the page's title.
    QList<HelpIndexEntry> index() const;
    QList<SearchHit> search(const QString &query) const { return m_search.search(query); }

    /// The link targets (href values) of a page.
    static QStringList linksOf(const QString &html);

private:
    bool readContents(const QString &text);
    bool readPage(HelpTopic &topic);

    QString m_folder;
    QString m_error;
    QList<HelpTopic> m_topics;
    HelpSearch m_search;
};

} // namespace tarnwick
