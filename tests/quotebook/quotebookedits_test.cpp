// A quote replaced on screen as one step of the history, without a display: the lines and the
// revision the quote in hand continues go back with an undo and forward with a redo; a step
// that would change neither is not made.
#include "quotebookfixture.h"

#include "catalogue/module1.h"
#include "commands/edithistory.h"
#include "platform/appenvironment.h"
#include "quotebook/quotebookedits.h"
#include "quotebook/quotesession.h"
#include "quotes/quoteline.h"
#include "quotes/quotelist.h"
#include "support/fakeprompts.h"

using namespace tarnwick;
using namespace tarnwick::test;

namespace {

class QuoteBookEditsTest : public QuoteBookTest
{
protected:
    void SetUp() override
    {
        QuoteBookTest::SetUp();
        module.QuoteTable().redim(QuoteLine::MaxLines, QuoteLine::FieldCount);
        session =
            std::make_unique<QuoteSession>(*book, module.QuoteTable(), module.Catalogue(), locale);
        QObject::connect(&history, &EditHistory::quoteChanged,
            [this](const QuoteChange &change) { changes.push_back(change); });
    }
    /// The quote table holding lines.
    Table quoteOf(const QuoteContent &content) const
    {
        Table quote(QuoteLine::MaxLines, QuoteLine::FieldCount);
        QuoteList::replaceLines(quote, content.lines);
        return quote;
    }
    QString firstPart() { return module.QuoteTable().get(1, QuoteLine::PartNumber).asText(); }

    FakePrompts prompts;
    AppEnvironment environment { QStringLiteral("/nonexistent"), QString() };
    Module1 module { prompts, environment, locale };
    EditHistory history { module };
    std::unique_ptr<QuoteSession> session;
    std::vector<QuoteChange> changes;
};

TEST_F(QuoteBookEditsTest, AnOpenedQuoteGoesBackWithItsRevisionAndComesAgain)
{
    SavedQuote saved = sampleQuote(QStringLiteral("ACME"), SampleToday, 3, QStringLiteral("S"));
    ASSERT_TRUE(book->saveNew(saved));
    QuoteList::replaceLines(module.QuoteTable(), sampleContent(2, QStringLiteral("U")).lines);
    const QuoteSession::State unsaved = session->state();

    ASSERT_TRUE(QuoteBookEdits::replaceQuote(history, *session, { { 2, 3, false }, unsaved },
        { { 1, 0, false }, QuoteSession::stateOf(saved) }, quoteOf(saved.content),
        QStringLiteral("Open Quote Q-2026-0001 A")));
    EXPECT_EQ(history.undoText(), QStringLiteral("Open Quote Q-2026-0001 A"));
    EXPECT_EQ(firstPart(), QStringLiteral("S-1"));
    EXPECT_EQ(QuoteLine::lineCount(module.QuoteTable()), 3);
    EXPECT_EQ(session->header().numberAndRevision(), QStringLiteral("Q-2026-0001 A"));
    EXPECT_FALSE(session->isChanged());

    history.undo();
    EXPECT_EQ(firstPart(), QStringLiteral("U-1"));
    EXPECT_EQ(QuoteLine::lineCount(module.QuoteTable()), 2);
    EXPECT_FALSE(session->header().isSaved());
    EXPECT_TRUE(session->isChanged());
    ASSERT_FALSE(changes.empty());
    EXPECT_EQ(changes.back().view.row, 2);
    EXPECT_EQ(changes.back().view.column, 3);
    EXPECT_TRUE(changes.back().replayed);

    history.redo();
    EXPECT_EQ(firstPart(), QStringLiteral("S-1"));
    EXPECT_EQ(session->header().id, saved.header.id);
    EXPECT_EQ(changes.back().view.row, 1);
}

TEST_F(QuoteBookEditsTest, ANewQuoteEmptiesTheTotalsAndAnUndoShowsThemAgain)
{
    QuoteList::replaceLines(module.QuoteTable(), sampleContent(1).lines);
    ASSERT_TRUE(QuoteBookEdits::replaceQuote(history, *session, { { 1, 0, false }, {} },
        { { 0, 0, true }, {} }, Table(QuoteLine::MaxLines, QuoteLine::FieldCount),
        QStringLiteral("New Quote")));
    EXPECT_EQ(QuoteLine::lineCount(module.QuoteTable()), 0);
    history.undo();
    EXPECT_EQ(QuoteLine::lineCount(module.QuoteTable()), 1);
    EXPECT_FALSE(changes.back().view.totalsCleared);
    history.redo();
    EXPECT_TRUE(changes.back().view.totalsCleared);
}

TEST_F(QuoteBookEditsTest, TheSameLinesUnderAnotherRevisionAreAStepAndNothingNewIsNone)
{
    QuoteList::replaceLines(module.QuoteTable(), sampleContent(2).lines);
    ASSERT_TRUE(session->saveNew({ QStringLiteral("ACME"), {}, {}, {} }, SampleTexts, SampleToday));
    const QuoteSession::State original = session->state();
    ASSERT_TRUE(
        session->duplicate({ QStringLiteral("Bolt"), {}, {}, {} }, SampleTexts, SampleToday));
    const QuoteSession::State duplicate = session->state();
    const Table same = module.QuoteTable();

    EXPECT_FALSE(QuoteBookEdits::replaceQuote(
        history, *session, { {}, duplicate }, { {}, duplicate }, same, QStringLiteral("Nothing")));
    EXPECT_EQ(history.count(), 0);

    ASSERT_TRUE(QuoteBookEdits::replaceQuote(history, *session, { {}, original }, { {}, duplicate },
        same, QStringLiteral("Duplicate Quote Q-2026-0002 A")));
    EXPECT_EQ(session->header().numberAndRevision(), QStringLiteral("Q-2026-0002 A"));
    history.undo();
    EXPECT_EQ(session->header().numberAndRevision(), QStringLiteral("Q-2026-0001 A"));
    EXPECT_EQ(session->header().customer.customer, QStringLiteral("ACME"));
    EXPECT_FALSE(session->isChanged());
    EXPECT_EQ(book->quoteCount(), 2);
}

} // namespace
