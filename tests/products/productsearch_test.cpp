#include "catalogue/productrecord.h"
#include "catalogue/table.h"
#include "products/productsearch.h"
#include "support/fakeprompts.h"
#include "support/fakeservices.h"
#include "support/testlocale.h"

#include <gtest/gtest.h>

using namespace tarnwick;

namespace {

using tarnwick::test::EnUs;

/// A small catalogue (grid rows 0..4) and a search with recording prompts and event pump.
class ProductSearchTest : public ::testing::Test
{
protected:
    ProductSearchTest() : search(prompts, &events)
    {
        add("AB-100", "Widget Large");
        add("AB-200", "Gadget");
        add("XK-7", "widget small");
        add("ZZ-1", "Sprocket");
        add("WID-9", "Bracket");
    }

    void add(const QString &part, const QString &name)
    {
        const int row = catalogue.rowCount() + 1;
        catalogue.redimPreserve(row, ProductRecord::FieldCount);
        catalogue.put(row, ProductRecord::PartNumber, part);
        catalogue.put(row, ProductRecord::ProductName, name);
    }

    int find(const QString &text, int currentGridRow)
    {
        return search.find(text, currentGridRow, catalogue, EnUs);
    }

    /// The last box shown, which must be a message with the given text, style and title "Find".
    void expectLastMessage(QLatin1String text, int style) const
    {
        ASSERT_FALSE(prompts.shown().empty());
        const test::ShownPrompt &last = prompts.shown().back();
        EXPECT_EQ(last.kind, test::ShownPrompt::Kind::Message);
        EXPECT_EQ(last.text, QString(text));
        EXPECT_EQ(last.title, QStringLiteral("Find"));
        EXPECT_EQ(last.style, style);
    }

    test::FakePrompts prompts;
    test::FakeEventPump events;
    ProductSearch search;
    Table catalogue;
};

TEST(ProductSearchTexts, TextsAreExact)
{
    EXPECT_EQ(QString(ProductSearch::Title), QStringLiteral("Locate Product"));
    EXPECT_EQ(
        QString(ProductSearch::FirstPrompt), QStringLiteral("Enter the product name to locate."));
    EXPECT_EQ(QString(ProductSearch::AgainPrompt),
        QStringLiteral("Enter new Product or click OK to keep searching"));
    EXPECT_EQ(QString(ProductSearch::FindTitle), QStringLiteral("Find"));
    EXPECT_EQ(QString(ProductSearch::NoMatchesMessage), QStringLiteral("No matches found."));
    EXPECT_EQ(QString(ProductSearch::WrapQuestion),
        QStringLiteral("Match not found. Search from beginning?"));
}

TEST_F(ProductSearchTest, PromptAsksForANameUntilATextIsRemembered)
{
    EXPECT_EQ(search.prompt(), QStringLiteral("Enter the product name to locate."));
    EXPECT_EQ(search.rememberedText(), QString());
    find(QStringLiteral("gadget"), 0);
    EXPECT_EQ(search.prompt(), QStringLiteral("Enter new Product or click OK to keep searching"));
    EXPECT_EQ(search.rememberedText(), QStringLiteral("gadget"));
}

TEST_F(ProductSearchTest, EmptyEntryShowsNothingAndKeepsTheRow)
{
    EXPECT_EQ(find(QString(), 2), -1);
    EXPECT_TRUE(prompts.shown().empty());
    EXPECT_EQ(search.rememberedText(), QString());
    EXPECT_EQ(search.prompt(), QString(ProductSearch::FirstPrompt));
}

TEST_F(ProductSearchTest, EmptyEntryAfterASearchKeepsTheRememberedText)
{
    find(QStringLiteral("Gadget"), 0);
    EXPECT_EQ(find(QString(), 1), -1);
    EXPECT_TRUE(prompts.shown().empty());
    EXPECT_EQ(search.rememberedText(), QStringLiteral("Gadget"));
}

TEST_F(ProductSearchTest, NewSearchStartsAtTheFirstRowWhateverTheCurrentRow)
{
    EXPECT_EQ(find(QStringLiteral("AB-"), 3), 0);
    EXPECT_TRUE(prompts.shown().empty());
}

TEST_F(ProductSearchTest, TextFoundOnlyInThePartNumberMatches)
{
    EXPECT_EQ(find(QStringLiteral("ZZ-1"), 0), 3);
    EXPECT_TRUE(prompts.shown().empty());
}

TEST_F(ProductSearchTest, TextMatchesAnywhereInsideTheName)
{
    EXPECT_EQ(find(QStringLiteral("rock"), 0), 3);
}

TEST_F(ProductSearchTest, LowerCaseTextMatchesCapitalsInThePartNumber)
{
    EXPECT_EQ(find(QStringLiteral("xk-7"), 0), 2);
}

TEST_F(ProductSearchTest, LowerCaseTextMatchesCapitalsInTheName)
{
    EXPECT_EQ(find(QStringLiteral("gadget"), 0), 1);
}

TEST_F(ProductSearchTest, UpperCaseTextMatchesLowerCaseName)
{
    EXPECT_EQ(find(QStringLiteral("SMALL"), 0), 2);
}

TEST_F(ProductSearchTest, NewSearchWithoutMatchSaysNoMatchesAndDoesNotAskToWrap)
{
    EXPECT_EQ(find(QStringLiteral("nothing like it"), 2), -1);
    ASSERT_EQ(prompts.shown().size(), 1u);
    expectLastMessage(ProductSearch::NoMatchesMessage, 0);
    EXPECT_EQ(events.count, 0);
    EXPECT_EQ(search.rememberedText(), QStringLiteral("nothing like it"));
}

TEST_F(ProductSearchTest, ContinuedSearchWalksThroughSuccessiveMatches)
{
    // "wid" is in rows 0 and 2 (names) and row 4 (part number).
    int row = find(QStringLiteral("wid"), 1);
    EXPECT_EQ(row, 0);
    row = find(QStringLiteral("wid"), row);
    EXPECT_EQ(row, 2);
    row = find(QStringLiteral("wid"), row);
    EXPECT_EQ(row, 4);
    EXPECT_TRUE(prompts.shown().empty());
}

TEST_F(ProductSearchTest, ContinuedSearchStartsAfterTheCurrentRowNotAfterTheLastMatch)
{
    EXPECT_EQ(find(QStringLiteral("wid"), 0), 0);
    EXPECT_EQ(find(QStringLiteral("wid"), 3), 4);
}

TEST_F(ProductSearchTest, AfterTheLastMatchAsksToWrapAndYesContinuesFromTheTop)
{
    EXPECT_EQ(find(QStringLiteral("AB-"), 0), 0);
    EXPECT_EQ(find(QStringLiteral("AB-"), 0), 1);
    prompts.answerMessage(MsgResult::Yes);
    EXPECT_EQ(find(QStringLiteral("AB-"), 1), 0);
    ASSERT_EQ(prompts.shown().size(), 1u);
    expectLastMessage(ProductSearch::WrapQuestion, 36);
    EXPECT_EQ(events.count, 1);
}

TEST_F(ProductSearchTest, WrapFindsTheOnlyMatchAtTheCurrentRowAgain)
{
    EXPECT_EQ(find(QStringLiteral("Sprocket"), 0), 3);
    prompts.answerMessage(MsgResult::Yes);
    EXPECT_EQ(find(QStringLiteral("Sprocket"), 3), 3);
    EXPECT_EQ(prompts.texts(), QStringList({ QString(ProductSearch::WrapQuestion) }));
}

TEST_F(ProductSearchTest, NoToTheWrapQuestionKeepsTheRow)
{
    EXPECT_EQ(find(QStringLiteral("AB-"), 0), 0);
    EXPECT_EQ(find(QStringLiteral("AB-"), 0), 1);
    prompts.answerMessage(MsgResult::No);
    EXPECT_EQ(find(QStringLiteral("AB-"), 1), -1);
    ASSERT_EQ(prompts.shown().size(), 1u);
    expectLastMessage(ProductSearch::WrapQuestion, 36);
    EXPECT_EQ(events.count, 0);
    EXPECT_EQ(search.rememberedText(), QStringLiteral("AB-"));
}

TEST_F(ProductSearchTest, ClosingTheWrapQuestionCountsAsNo)
{
    find(QStringLiteral("Bracket"), 0);
    prompts.answerMessage(MsgResult::Cancel);
    EXPECT_EQ(find(QStringLiteral("Bracket"), 4), -1);
    EXPECT_EQ(prompts.shown().size(), 1u);
    EXPECT_EQ(events.count, 0);
}

TEST_F(ProductSearchTest, SameTextAfterNoMatchesIsAContinuedSearchAndAsksToWrap)
{
    EXPECT_EQ(find(QStringLiteral("missing"), 0), -1);
    expectLastMessage(ProductSearch::NoMatchesMessage, 0);
    prompts.answerMessage(MsgResult::No);
    EXPECT_EQ(find(QStringLiteral("missing"), 0), -1);
    ASSERT_EQ(prompts.shown().size(), 2u);
    expectLastMessage(ProductSearch::WrapQuestion, 36);
}

TEST_F(ProductSearchTest, AWrappedSearchWithoutMatchAsksAgainAtEveryPassUntilNo)
{
    find(QStringLiteral("missing"), 0);
    prompts.clear();
    prompts.answerMessage(MsgResult::Yes);
    prompts.answerMessage(MsgResult::Yes);
    prompts.answerMessage(MsgResult::No);
    EXPECT_EQ(find(QStringLiteral("missing"), 2), -1);
    const QString wrap(ProductSearch::WrapQuestion);
    EXPECT_EQ(prompts.texts(), QStringList({ wrap, wrap, wrap }));
    expectLastMessage(ProductSearch::WrapQuestion, 36);
    EXPECT_EQ(events.count, 2) << "the window answers after each wrap";
    EXPECT_EQ(prompts.unusedAnswers(), 0);
}

TEST_F(ProductSearchTest, ANewTextAfterAContinuedSearchStartsOverAtTheTop)
{
    EXPECT_EQ(find(QStringLiteral("wid"), 0), 0);
    EXPECT_EQ(find(QStringLiteral("wid"), 0), 2);
    EXPECT_EQ(find(QStringLiteral("AB"), 2), 0);
    EXPECT_EQ(search.rememberedText(), QStringLiteral("AB"));
    EXPECT_TRUE(prompts.shown().empty());
}

TEST_F(ProductSearchTest, TextsThatDifferOnlyInCaseAreDifferentSearches)
{
    EXPECT_EQ(find(QStringLiteral("wid"), 0), 0);
    EXPECT_EQ(find(QStringLiteral("WID"), 0), 0); // a new search: from the top again
    EXPECT_TRUE(prompts.shown().empty());
}

TEST_F(ProductSearchTest, ContinuedSearchFromTheLastRowAsksToWrapAtOnce)
{
    find(QStringLiteral("AB-"), 0);
    prompts.answerMessage(MsgResult::Yes);
    EXPECT_EQ(find(QStringLiteral("AB-"), 4), 0);
    EXPECT_EQ(prompts.texts(), QStringList({ QString(ProductSearch::WrapQuestion) }));
}

TEST_F(ProductSearchTest, NumbersInTheSearchedCellsAreReadAsText)
{
    catalogue.put(3, ProductRecord::PartNumber, qint32(4711)); // grid row 2
    catalogue.put(5, ProductRecord::ProductName, 12.5); // grid row 4
    EXPECT_EQ(find(QStringLiteral("471"), 0), 2);
    EXPECT_EQ(find(QStringLiteral("2.5"), 0), 4);
}

TEST_F(ProductSearchTest, OtherFieldsAreNotSearched)
{
    catalogue.put(1, ProductRecord::Notes, "hidden note");
    catalogue.put(2, ProductRecord::Includes, "hidden include");
    EXPECT_EQ(find(QStringLiteral("hidden"), 0), -1);
    expectLastMessage(ProductSearch::NoMatchesMessage, 0);
}

TEST_F(ProductSearchTest, EmptyAndNullCellsNeverMatch)
{
    catalogue.put(2, ProductRecord::PartNumber, Cell()); // the row of "Gadget"
    catalogue.put(2, ProductRecord::ProductName, Cell::null());
    EXPECT_EQ(find(QStringLiteral("Gadget"), 0), -1);
    expectLastMessage(ProductSearch::NoMatchesMessage, 0);
}

TEST_F(ProductSearchTest, EmptyCatalogueSaysNoMatches)
{
    catalogue.redim(0, ProductRecord::FieldCount);
    EXPECT_EQ(find(QStringLiteral("x"), -1), -1);
    expectLastMessage(ProductSearch::NoMatchesMessage, 0);
}

TEST_F(ProductSearchTest, WorksWithoutAnEventPump)
{
    ProductSearch quiet(prompts);
    EXPECT_EQ(quiet.find(QStringLiteral("Gadget"), 0, catalogue, EnUs), 1);
    prompts.answerMessage(MsgResult::Yes);
    EXPECT_EQ(quiet.find(QStringLiteral("Gadget"), 1, catalogue, EnUs), 1);
    EXPECT_EQ(events.count, 0);
}

/// A catalogue of three products whose names are kept as a file's bytes in encoding (or typed,
/// for UTF-16), the second being "Straße fitting".
Table sharpSCatalogue(TextEncoding encoding)
{
    const QString names[] = { QStringLiteral("Elbow"), QStringLiteral("Straße fitting"),
        QStringLiteral("Tee") };
    Table catalogue(3, ProductRecord::FieldCount);
    if (encoding == TextEncoding::Utf16) {
        for (int row = 1; row <= 3; ++row) {
            catalogue.put(row, ProductRecord::PartNumber, QStringLiteral("K-%1").arg(row));
            catalogue.put(row, ProductRecord::ProductName, names[row - 1]);
        }
        return catalogue;
    }
    auto *block = new CellTextBlock;
    for (int row = 1; row <= 3; ++row) {
        QByteArray bytes = names[row - 1].toUtf8();
        if (encoding == TextEncoding::Windows1252)
            bytes.replace("\xC3\x9F", "\xDF");
        const qsizetype offset = block->bytes.size();
        block->bytes += bytes;
        catalogue.put(row, ProductRecord::PartNumber, QStringLiteral("K-%1").arg(row));
        catalogue.put(
            row, ProductRecord::ProductName, Cell::inBlock(block, offset, bytes.size(), encoding));
    }
    block->ref.fetch_sub(1);
    return catalogue;
}

TEST(ProductSearchSharpS, SharpSIsFoundAsBothTextsUpperCasedFindIt)
{
    const QString entries[] = { QStringLiteral("ß"), QStringLiteral("straße"),
        QStringLiteral("STRAßE"), QStringLiteral("STRASSE"), QStringLiteral("strasse"),
        QStringLiteral("ss") };
    for (const TextEncoding encoding :
        { TextEncoding::Windows1252, TextEncoding::Utf8, TextEncoding::Utf16 }) {
        const Table catalogue = sharpSCatalogue(encoding);
        ASSERT_EQ(catalogue.get(2, ProductRecord::ProductName).textView().encoding, encoding);
        ASSERT_EQ(catalogue.get(2, ProductRecord::ProductName).asText(),
            QStringLiteral("Straße fitting"));
        for (const QString &entry : entries) {
            test::FakePrompts prompts;
            ProductSearch search(prompts);
            EXPECT_EQ(search.find(entry, 0, catalogue, EnUs), 1)
                << qPrintable(entry) << " in encoding " << int(encoding);
            EXPECT_TRUE(prompts.shown().empty()) << qPrintable(entry);
        }
        test::FakePrompts prompts;
        ProductSearch search(prompts);
        EXPECT_EQ(search.find(QStringLiteral("strase"), 0, catalogue, EnUs), -1);
    }
}

// An accent typed or kept as a mark of its own after its letter ("e" and U+0301, as some
// programs and keyboards write it) is the accented letter: each form finds the other.
TEST(ProductSearchAccents, ALetterAndItsAccentMarkFindTheAccentedLetter)
{
    Table catalogue(2, ProductRecord::FieldCount);
    catalogue.put(1, ProductRecord::PartNumber, QStringLiteral("T-1"));
    catalogue.put(1, ProductRecord::ProductName, QStringLiteral("Cafe\u0301 table"));
    catalogue.put(2, ProductRecord::PartNumber, QStringLiteral("B-2"));
    catalogue.put(2, ProductRecord::ProductName, QStringLiteral("Cr\u00E8me br\u00FBl\u00E9e"));
    test::FakePrompts prompts;
    ProductSearch search(prompts);
    EXPECT_EQ(search.find(QStringLiteral("caf\u00E9"), 1, catalogue, EnUs), 0);
    EXPECT_EQ(search.find(QStringLiteral("CAFE\u0301"), 1, catalogue, EnUs), 0);
    EXPECT_EQ(search.find(QStringLiteral("cre\u0300me"), 0, catalogue, EnUs), 1);
    EXPECT_TRUE(prompts.shown().empty());
}

TEST(ProductSearchSharpS, OtherLettersOfAFileStillMatchIgnoringCase)
{
    Table catalogue = sharpSCatalogue(TextEncoding::Windows1252);
    catalogue.put(3, ProductRecord::ProductName, QStringLiteral("ÉCROU inox"));
    test::FakePrompts prompts;
    ProductSearch search(prompts);
    EXPECT_EQ(search.find(QStringLiteral("écrou"), 0, catalogue, EnUs), 2);
    EXPECT_EQ(search.find(QStringLiteral("FITTING"), 0, catalogue, EnUs), 1);
    EXPECT_EQ(search.find(QStringLiteral("elb"), 0, catalogue, EnUs), 0);
}

TEST(ProductSearchLarge, HundredThousandProductsAreSearchedToTheEnd)
{
    constexpr int Rows = 100000;
    Table catalogue(Rows, ProductRecord::FieldCount);
    for (int row = 1; row <= Rows; ++row) {
        catalogue.put(row, ProductRecord::PartNumber, QStringLiteral("P-%1").arg(row));
        catalogue.put(
            row, ProductRecord::ProductName, QStringLiteral("Product number %1").arg(row));
    }
    catalogue.put(Rows, ProductRecord::ProductName, "The Last One");
    test::FakePrompts prompts;
    ProductSearch search(prompts);

    EXPECT_EQ(search.find(QStringLiteral("last one"), 0, catalogue, EnUs), Rows - 1);
    EXPECT_EQ(search.find(QStringLiteral("no such product"), 0, catalogue, EnUs), -1);
    EXPECT_EQ(prompts.texts(), QStringList({ QString(ProductSearch::NoMatchesMessage) }));
}

} // namespace
