#include "platform/filefilter.h"

#include <gtest/gtest.h>

namespace tarnwick {
namespace {

QStringList filters(const char *filter)
{
    return toQtNameFilters(QString::fromUtf8(filter));
}

QStringList list(std::initializer_list<const char *> texts)
{
    QStringList result;
    for (const char *text : texts)
        result << QString::fromUtf8(text);
    return result;
}

TEST(FileFilter, DescriptionsShowingTheirPatternsKeepThemAndAllFilesBecomesStar)
{
    EXPECT_EQ(filters("Text (*.txt)|*.txt|All Files (*.*)|*.*"),
        list({ "Text (*.txt)", "All Files (*)" }));
}

TEST(FileFilter, DescriptionWithoutPatternsGetsThemJoinedByBlanks)
{
    EXPECT_EQ(filters("Excel Files|*.xls;*.xlsx"), list({ "Excel Files (*.xls *.xlsx)" }));
}

TEST(FileFilter, ShownPatternsSeparatedBySemicolonsAreRewrittenForQt)
{
    EXPECT_EQ(
        filters("Excel Files (*.xls;*.xlsx)|*.xls;*.xlsx"), list({ "Excel Files (*.xls *.xlsx)" }));
}

TEST(FileFilter, PatternsOfThePairWinOverDifferentOnesInTheDescription)
{
    EXPECT_EQ(filters("Text (*.txt)|*.txt;*.text"), list({ "Text (*.txt *.text)" }));
}

TEST(FileFilter, ParenthesisWithoutWildcardsIsPartOfTheDescription)
{
    EXPECT_EQ(filters("Catalogue (old format)|*.dat"), list({ "Catalogue (old format) (*.dat)" }));
}

TEST(FileFilter, StarDotStarAmongOtherPatternsBecomesStar)
{
    EXPECT_EQ(filters("Anything|*.txt;*.*"), list({ "Anything (*.txt *)" }));
}

TEST(FileFilter, RepeatedPatternsAppearOnce)
{
    EXPECT_EQ(filters("Text|*.txt;*.txt;*.TXT"), list({ "Text (*.txt *.TXT)" }));
}

TEST(FileFilter, BlanksAroundDescriptionsAndPatternsAreIgnored)
{
    EXPECT_EQ(filters(" Text  | *.txt ; *.csv |All Files (*.*)| *.* "),
        list({ "Text (*.txt *.csv)", "All Files (*)" }));
}

TEST(FileFilter, LastDescriptionWithoutPatternIsLeftOut)
{
    EXPECT_EQ(filters("Text (*.txt)|*.txt|Orphan"), list({ "Text (*.txt)" }));
    EXPECT_EQ(filters("Text (*.txt)|*.txt|"), list({ "Text (*.txt)" }));
}

TEST(FileFilter, PairWithBlankPatternMeansAnyFileAndKeepsItsPlace)
{
    EXPECT_EQ(filters("Anything||Text|*.txt"), list({ "Anything (*)", "Text (*.txt)" }));
}

TEST(FileFilter, BlankDescriptionGivesTheBarePatterns)
{
    EXPECT_EQ(filters("|*.csv;*.txt"), list({ "*.csv *.txt" }));
}

TEST(FileFilter, SingleDescriptionWithoutAnyPairGivesNoFilters)
{
    EXPECT_TRUE(filters("Text (*.txt)").isEmpty());
}

TEST(FileFilter, EmptyOrBlankFilterGivesNoFilters)
{
    EXPECT_TRUE(filters("").isEmpty());
    EXPECT_TRUE(filters("   ").isEmpty());
}

TEST(FileFilter, EveryPairGivesOneEntryInOrder)
{
    const QStringList result =
        filters("Text (*.txt)|*.txt|Data (*.dat)|*.dat|Comma Separated|*.csv|All|*.*");
    EXPECT_EQ(
        result, list({ "Text (*.txt)", "Data (*.dat)", "Comma Separated (*.csv)", "All (*)" }));
}

} // namespace
TEST(FileFilter, ANameWithoutAnExtensionGetsTheDefaultSuffix)
{
    EXPECT_EQ(withDefaultSuffix(QStringLiteral("/home/a/prices"), QStringLiteral("xls")),
        QStringLiteral("/home/a/prices.xls"));
    EXPECT_EQ(withDefaultSuffix(QStringLiteral("/home/a/p1.csv"), QStringLiteral("xls")),
        QStringLiteral("/home/a/p1.csv"));
    EXPECT_EQ(withDefaultSuffix(QStringLiteral("/home/a.b/prices"), QStringLiteral("dat")),
        QStringLiteral("/home/a.b/prices.dat"))
        << "a dot in a folder's name is no extension";
    EXPECT_EQ(withDefaultSuffix(QStringLiteral("/home/a/prices"), QString()),
        QStringLiteral("/home/a/prices"));
}

TEST(FileFilter, EachPairsDescriptionIsKeptAsWritten)
{
    const QString filter = QStringLiteral(
        "All Files (*.*)|*.*|Text Files(*.txt)|*.txt| |*.dat|Excel Files (*.xls)|*.xls|Left over");
    EXPECT_EQ(filterDescriptions(filter),
        QStringList({ QStringLiteral("All Files (*.*)"), QStringLiteral("Text Files(*.txt)"),
            QStringLiteral(" "), QStringLiteral("Excel Files (*.xls)") }));
    EXPECT_EQ(filterDescriptions(filter).size(), toQtNameFilters(filter).size());
    EXPECT_TRUE(filterDescriptions(QStringLiteral("  ")).isEmpty());
}

} // namespace tarnwick
