#include "help/helpmanual.h"

#include "platform/helpcontexts.h"

#include <QFile>
#include <QRegularExpression>
#include <QUrl>

#include <gtest/gtest.h>

#include <algorithm>

namespace tarnwick {
namespace {

class HelpManualTest : public ::testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(manual.load()) << qPrintable(manual.errorString()); }
    HelpManual manual;
};

TEST_F(HelpManualTest, EveryContextNumberOfTheProgramOpensAnExistingTopic)
{
    for (const qint32 context : HelpContext::All) {
        const std::optional<QString> file = manual.topicForContext(context);
        ASSERT_TRUE(file.has_value()) << context;
        ASSERT_NE(manual.topic(*file), nullptr) << context;
    }
    EXPECT_EQ(manual.topicForContext(HelpContext::ImportWindow), QStringLiteral("import.html"));
    EXPECT_EQ(manual.topicForContext(HelpContext::HandheldConverter),
        QStringLiteral("handheldconverter.html"));
    EXPECT_EQ(manual.topicForContext(HelpContext::StartupRemedies),
        QStringLiteral("startupproblems.html"));
    EXPECT_FALSE(manual.topicForContext(4711).has_value());
}

TEST_F(HelpManualTest, NoTopicIsEmpty)
{
    ASSERT_GE(manual.topics().size(), 20);
    for (const HelpTopic &topic : manual.topics()) {
        const QString text = HelpSearch::plainText(topic.html);
        EXPECT_GE(HelpSearch::words(text).size(), 60) << qPrintable(topic.file);
        EXPECT_TRUE(text.contains(topic.title)) << qPrintable(topic.file) << " shows its title";
    }
}

TEST_F(HelpManualTest, EveryLinkBetweenTopicsResolves)
{
    int links = 0;
    for (const HelpTopic &topic : manual.topics()) {
        for (const QString &link : HelpManual::linksOf(topic.html)) {
            const QUrl url(link);
            EXPECT_TRUE(url.scheme().isEmpty()) << qPrintable(topic.file + ": " + link);
            EXPECT_NE(manual.topic(url.path()), nullptr) << qPrintable(topic.file + ": " + link);
            if (url.hasFragment()) {
                EXPECT_TRUE(manual.topic(url.path())
                                ->html.contains(QStringLiteral("id=\"%1\"").arg(url.fragment())))
                    << qPrintable(topic.file + ": " + link);
            }
            ++links;
        }
    }
    EXPECT_GT(links, 30);
}

TEST_F(HelpManualTest, EveryImageOfATopicIsInTheManual)
{
    static const QRegularExpression image(QStringLiteral("<img\\s[^>]*src=\"([^\"]*)\""));
    int images = 0;
    for (const HelpTopic &topic : manual.topics()) {
        for (auto it = image.globalMatch(topic.html); it.hasNext(); ++images) {
            const QString source = it.next().captured(1);
            EXPECT_TRUE(QFile::exists(HelpManual::ResourceFolder + QLatin1Char('/') + source))
                << qPrintable(topic.file + ": " + source);
        }
    }
    EXPECT_GT(images, 3);
}

TEST_F(HelpManualTest, TheContentsStartAtTheWelcomePageAndNestTopics)
{
    EXPECT_EQ(manual.homeTopic(), QStringLiteral("welcome.html"));
    ASSERT_NE(manual.topic(QStringLiteral("pricepoints.html")), nullptr);
    EXPECT_EQ(manual.topic(QStringLiteral("pricepoints.html"))->level, 1);
}

TEST_F(HelpManualTest, SearchingForAWordOfATopicFindsIt)
{
    const QList<SearchHit> hits = manual.search(QStringLiteral("Handdesk"));
    ASSERT_FALSE(hits.isEmpty());
    QStringList files;
    for (const SearchHit &hit : hits)
        files << hit.file;
    EXPECT_TRUE(files.contains(QStringLiteral("handheld.html")));
    EXPECT_EQ(
        manual.search(QStringLiteral("twdata.bak")).first().file, QStringLiteral("datafiles.html"));
}

TEST_F(HelpManualTest, WordsASalesPersonTypesFindTheirPages)
{
    const auto pagesFor = [this](const char *query) {
        QStringList files;
        for (const SearchHit &hit : manual.search(QString::fromLatin1(query)))
            files << hit.file;
        return files;
    };
    EXPECT_TRUE(pagesFor("email").contains(QStringLiteral("quotebook.html")));
    EXPECT_TRUE(pagesFor("tax").contains(QStringLiteral("quotes.html")));
    EXPECT_TRUE(pagesFor("VAT").contains(QStringLiteral("quotes.html")));
    EXPECT_TRUE(pagesFor("currency").contains(QStringLiteral("quotes.html")));
    EXPECT_TRUE(pagesFor("backups").contains(QStringLiteral("datafiles.html")));
    EXPECT_TRUE(pagesFor("delete quote").contains(QStringLiteral("quotebook.html")));
}

TEST_F(HelpManualTest, UndoHasATopicOfItsOwnFoundInTheIndexAndBySearch)
{
    ASSERT_NE(manual.topic(QStringLiteral("undo.html")), nullptr);
    EXPECT_EQ(manual.topic(QStringLiteral("undo.html"))->level, 0);
    bool indexed = false;
    for (const HelpIndexEntry &entry : manual.index())
        indexed = indexed
            || (entry.keyword == QStringLiteral("Ctrl+Z")
                && entry.file == QStringLiteral("undo.html"));
    EXPECT_TRUE(indexed);
    EXPECT_EQ(
        manual.search(QStringLiteral("Ctrl+Shift+Z")).first().file, QStringLiteral("undo.html"));
}

TEST_F(HelpManualTest, TheIndexIsSortedAndLeadsToTopics)
{
    const QList<HelpIndexEntry> index = manual.index();
    ASSERT_GT(index.size(), 40);
    for (qsizetype i = 1; i < index.size(); ++i)
        EXPECT_LE(index[i - 1].keyword.compare(index[i].keyword, Qt::CaseInsensitive), 0);
    bool backup = false;
    for (const HelpIndexEntry &entry : index)
        backup = backup
            || (entry.keyword == QStringLiteral("backup")
                && entry.file == QStringLiteral("datafiles.html"));
    EXPECT_TRUE(backup);
}

TEST_F(HelpManualTest, AKeywordOfSeveralPagesHasOneEntryPerPageNamedByItsTitle)
{
    QStringList labels;
    QList<HelpIndexEntry> priceList;
    for (const HelpIndexEntry &entry : manual.index()) {
        EXPECT_FALSE(labels.contains(entry.label)) << qPrintable(entry.label);
        labels << entry.label;
        ASSERT_NE(manual.topic(entry.file), nullptr) << qPrintable(entry.file);
        EXPECT_EQ(entry.title, manual.topic(entry.file)->title);
        if (entry.keyword.compare(QStringLiteral("price list"), Qt::CaseInsensitive) == 0)
            priceList << entry;
    }
    ASSERT_GE(priceList.size(), 2);
    for (qsizetype i = 0; i < priceList.size(); ++i) {
        EXPECT_EQ(priceList[i].label,
            priceList[i].keyword + QStringLiteral(" \u2014 ") + priceList[i].title);
        EXPECT_NE(priceList[i].file, manual.homeTopic());
        if (i > 0) {
            EXPECT_LT(priceList[i - 1].title.compare(priceList[i].title, Qt::CaseInsensitive), 0);
        }
    }
    const auto printing = std::find_if(priceList.cbegin(), priceList.cend(),
        [](const HelpIndexEntry &entry) { return entry.file == QStringLiteral("pricelist.html"); });
    EXPECT_NE(printing, priceList.cend());
}

TEST_F(HelpManualTest, AKeywordOfOnePageIsShownAsItIs)
{
    const QList<HelpIndexEntry> index = manual.index();
    const auto backup = std::find_if(index.cbegin(), index.cend(),
        [](const HelpIndexEntry &entry) { return entry.keyword == QStringLiteral("twdata.bak"); });
    ASSERT_NE(backup, index.cend());
    EXPECT_EQ(backup->label, QStringLiteral("twdata.bak"));
    EXPECT_EQ(backup->file, QStringLiteral("datafiles.html"));
}

TEST_F(HelpManualTest, TheDataPageLeadsToThePropertiesWindowInPlainWords)
{
    const HelpTopic *page = manual.topic(QStringLiteral("datafiles.html"));
    ASSERT_NE(page, nullptr);
    const QString text = HelpSearch::plainText(page->html);
    EXPECT_TRUE(text.contains(QStringLiteral("File \u2192 Properties"))) << qPrintable(text);
    EXPECT_TRUE(text.contains(QStringLiteral("Open Folder")));
    for (const char *word :
        { "environment variable", "TARNWICK_APP_DIR", "HKEY_", "registry", "/usr/bin" })
        EXPECT_FALSE(page->html.contains(QLatin1String(word), Qt::CaseInsensitive)) << word;
}

TEST(HelpManual, AMissingFolderIsReported)
{
    HelpManual manual;
    EXPECT_FALSE(manual.load(QStringLiteral(":/no-such-help")));
    EXPECT_FALSE(manual.errorString().isEmpty());
}

} // namespace
} // namespace tarnwick
