#include "help/helpmanual.h"

#include <QDir>
#include <QFile>
#include <QHash>
#include <QRegularExpression>
#include <QSet>

#include <algorithm>

namespace tarnwick {

const QString HelpManual::ResourceFolder = QStringLiteral(":/help");

namespace {

constexpr int IndentPerLevel = 4;

std::optional<QString> readUtf8(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    return QString::fromUtf8(file.readAll());
}

QStringList keywordsOf(const QString &html)
{
    static const QRegularExpression meta(
        QStringLiteral("<meta\\s+name=\"keywords\"\\s+content=\"([^\"]*)\""),
        QRegularExpression::CaseInsensitiveOption);
    QStringList keywords;
    const QRegularExpressionMatch match = meta.match(html);
    if (!match.hasMatch())
        return keywords;
    for (const QString &keyword : match.captured(1).split(QLatin1Char(';'), Qt::SkipEmptyParts))
        keywords << HelpSearch::plainText(keyword.trimmed());
    return keywords;
}

} // namespace

bool HelpManual::load(const QString &folder)
{
    m_folder = folder;
    m_error.clear();
    m_topics.clear();
    m_search = HelpSearch();
    const auto contents = readUtf8(QDir(folder).filePath(QStringLiteral("contents.txt")));
    if (!contents) {
        m_error = QStringLiteral("The contents of the help could not be read.");
        return false;
    }
    if (!readContents(*contents))
        return false;
    for (HelpTopic &topic : m_topics) {
        if (!readPage(topic))
            return false;
        m_search.addTopic(topic.file, topic.title, topic.html);
    }
    return true;
}

bool HelpManual::readContents(const QString &text)
{
    for (const QString &line : text.split(QLatin1Char('\n'))) {
        const QString trimmed = line.trimmed();
        if (trimmed.isEmpty() || trimmed.startsWith(QLatin1Char('#')))
            continue;
        const QStringList fields = trimmed.split(QLatin1Char('|'));
        HelpTopic topic;
        topic.file = fields.value(0).trimmed();
        topic.title = fields.value(1).trimmed();
        topic.level = int(line.indexOf(trimmed.front())) / IndentPerLevel;
        for (const QString &number : fields.value(2).split(QLatin1Char(' '), Qt::SkipEmptyParts))
            topic.contexts << number.toInt();
        if (topic.file.isEmpty() || topic.title.isEmpty()) {
            m_error = QStringLiteral("A line of the help's contents names no page: ") + trimmed;
            return false;
        }
        m_topics.append(topic);
    }
    return true;
}

bool HelpManual::readPage(HelpTopic &topic)
{
    const auto html = readUtf8(QDir(m_folder).filePath(topic.file));
    if (!html) {
        m_error = QStringLiteral("The help page %1 could not be read.").arg(topic.file);
        return false;
    }
    topic.html = *html;
    topic.keywords = keywordsOf(topic.html);
    return true;
}

const HelpTopic *HelpManual::topic(const QString &file) const
{
    for (const HelpTopic &topic : m_topics) {
        if (topic.file == file)
            return &topic;
    }
    return nullptr;
}

std::optional<QString> HelpManual::topicForContext(qint32 context) const
{
    for (const HelpTopic &topic : m_topics) {
        if (topic.contexts.contains(context))
            return topic.file;
    }
    return std::nullopt;
}

QString HelpManual::homeTopic() const
{
    return m_topics.isEmpty() ? QString() : m_topics.first().file;
}

QList<HelpIndexEntry> HelpManual::index() const
{
    QList<HelpIndexEntry> entries;
    QHash<QString, int> pagesOfKeyword; // by the keyword in lower case
    for (const HelpTopic &topic : m_topics) {
        QSet<QString> named;
        for (const QString &keyword : topic.keywords) {
            const QString key = keyword.toLower();
            if (named.contains(key))
                continue;
            named.insert(key);
            ++pagesOfKeyword[key];
            entries.append({ keyword, topic.file, topic.title, keyword });
        }
    }
    for (HelpIndexEntry &entry : entries) {
        if (pagesOfKeyword.value(entry.keyword.toLower()) > 1)
            entry.label = entry.keyword + QStringLiteral(" \u2014 ") + entry.title;
    }
    std::stable_sort(entries.begin(), entries.end(), [](const auto &a, const auto &b) {
        const int byKeyword = a.keyword.compare(b.keyword, Qt::CaseInsensitive);
        return byKeyword != 0 ? byKeyword < 0 : a.title.compare(b.title, Qt::CaseInsensitive) < 0;
    });
    return entries;
}

QStringList HelpManual::linksOf(const QString &html)
{
    static const QRegularExpression href(
        QStringLiteral("<a\\s[^>]*href=\"([^\"]*)\""), QRegularExpression::CaseInsensitiveOption);
    QStringList links;
    for (auto it = href.globalMatch(html); it.hasNext();)
        links << it.next().captured(1);
    return links;
}

} // namespace tarnwick
