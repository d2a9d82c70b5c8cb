#include "help/helpsearch.h"

#include <gtest/gtest.h>

namespace tarnwick {
namespace {

HelpSearch twoPages()
{
    HelpSearch search;
    search.addTopic(QStringLiteral("a.html"), QStringLiteral("Price points"),
        QStringLiteral(
            "<html><head><title>ignored words zebra</title></head><body>"
            "<p>A quantity of 10 takes the <b>price</b> of its point.</p></body></html>"));
    search.addTopic(QStringLiteral("b.html"), QStringLiteral("Quotes"),
        QStringLiteral("<p>Each quote line has a quantity; prices, prices and prices.</p>"));
    return search;
}

QStringList files(const QList<SearchHit> &hits)
{
    QStringList result;
    for (const SearchHit &hit : hits)
        result << hit.file;
    return result;
}

TEST(HelpSearch, EveryWordOfTheQueryMustOccur)
{
    const HelpSearch search = twoPages();
    EXPECT_EQ(
        files(search.search(QStringLiteral("quantity"))), QStringList({ "a.html", "b.html" }));
    EXPECT_EQ(files(search.search(QStringLiteral("quantity line"))), QStringList { "b.html" });
    EXPECT_TRUE(search.search(QStringLiteral("quantity elephant")).isEmpty());
}

TEST(HelpSearch, TwoLetterWordsAreFound)
{
    HelpSearch search;
    search.addTopic(QStringLiteral("order.html"), QStringLiteral("Orders"),
        QStringLiteral("<p>Write the PO number on every quote.</p>"));
    search.addTopic(QStringLiteral("other.html"), QStringLiteral("Other"),
        QStringLiteral("<p>Nothing of that here.</p>"));
    EXPECT_EQ(files(search.search(QStringLiteral("po"))), QStringList { "order.html" });
    EXPECT_EQ(files(search.search(QStringLiteral("PO number"))), QStringList { "order.html" });
    // Single letters are no words.
    EXPECT_EQ(HelpSearch::words(QStringLiteral("a PO x")), QStringList { "po" });
}

TEST(HelpSearch, WordsMatchByTheirBeginningAndInAnyCase)
{
    const HelpSearch search = twoPages();
    EXPECT_EQ(files(search.search(QStringLiteral("QUOT"))), QStringList { "b.html" });
}

TEST(HelpSearch, APluralFindsItsSingularWhereItIsNotFoundItself)
{
    HelpSearch search;
    search.addTopic(QStringLiteral("backup.html"), QStringLiteral("Backing up"),
        QStringLiteral("<p>Make a backup of the folder. Keep a copy elsewhere.</p>"));
    search.addTopic(QStringLiteral("many.html"), QStringLiteral("Many"),
        QStringLiteral("<p>Several backups are kept.</p>"));
    EXPECT_EQ(files(search.search(QStringLiteral("backup"))),
        QStringList({ "backup.html", "many.html" }));
    // The plural where a page has it; its singular for the page that has only that.
    EXPECT_EQ(files(search.search(QStringLiteral("backups"))),
        QStringList({ "backup.html", "many.html" }));
    EXPECT_EQ(files(search.search(QStringLiteral("copies"))), QStringList { "backup.html" });
    EXPECT_EQ(HelpSearch::singularOf(QStringLiteral("prices")), QStringLiteral("price"));
    EXPECT_TRUE(HelpSearch::singularOf(QStringLiteral("address")).isEmpty());
    EXPECT_TRUE(HelpSearch::singularOf(QStringLiteral("tax")).isEmpty());
}

TEST(HelpSearch, TitleWordsRankFirst)
{
    const HelpSearch search = twoPages();
    const QList<SearchHit> hits = search.search(QStringLiteral("price"));
    ASSERT_EQ(hits.size(), 2);
    EXPECT_EQ(hits[0].file, QStringLiteral("a.html")) << "one title word outweighs three in text";
    EXPECT_GT(hits[0].score, hits[1].score);
}

TEST(HelpSearch, TagsAndTheHeadAreNotSearched)
{
    const HelpSearch search = twoPages();
    EXPECT_TRUE(search.search(QStringLiteral("zebra")).isEmpty());
    EXPECT_TRUE(search.search(QStringLiteral("html")).isEmpty());
    EXPECT_TRUE(search.search(QStringLiteral("   ")).isEmpty());
}

TEST(HelpSearch, PlainTextDecodesEntities)
{
    EXPECT_EQ(
        HelpSearch::plainText(QStringLiteral("<p>Help &rarr; About &amp; more&nbsp;&#233;</p>")),
        QStringLiteral("Help \u2192 About & more \u00e9"));
}

} // namespace
} // namespace tarnwick
