// The history itself: unlimited steps, undo and redo texts, and whether the catalogue is as
// last saved, which follows the steps that change the catalogue and ignores those of the quote.
#include "historyfixture.h"

#include "catalogue/productrecord.h"
#include "commands/catalogueedits.h"
#include "commands/quoteedits.h"

#include <QSignalSpy>

using namespace tarnwick;
using namespace tarnwick::test;

namespace {

namespace P = ProductRecord;

class EditHistoryTest : public HistoryTest
{
protected:
    void SetUp() override { loadProducts({ { "A-100", "Anchor", "1.25" }, { "B-200", "Bolt" } }); }
    void rename(const QString &name)
    {
        CatalogueEdits::setCell(history, { 1, 1 }, 1, P::ProductName, Cell(name));
    }
    void addToQuote() { QuoteEdits::addProduct(history, {}, 1, QString()); }
};

TEST_F(EditHistoryTest, AnEmptyHistoryHasNothingToUndoOrRedoAndIsSaved)
{
    EXPECT_FALSE(history.canUndo());
    EXPECT_FALSE(history.canRedo());
    EXPECT_EQ(history.undoText(), QString());
    EXPECT_TRUE(history.catalogueSaved());
}

TEST_F(EditHistoryTest, TheHistoryKeepsEveryStepWithoutALimit)
{
    for (int k = 0; k < 1000; ++k)
        rename(QStringLiteral("Name %1").arg(k));
    EXPECT_EQ(history.count(), 1000);
    for (int k = 0; k < 1000; ++k)
        history.undo();
    EXPECT_EQ(catalogue().get(1, P::ProductName), Cell("Anchor"));
    EXPECT_FALSE(history.canUndo());
}

TEST_F(EditHistoryTest, UndoingBackToTheSavedStateMakesTheCatalogueSavedAgain)
{
    QSignalSpy saved(&history, &EditHistory::catalogueSavedChanged);
    rename(QStringLiteral("First"));
    EXPECT_FALSE(history.catalogueSaved());
    history.setSaved();
    EXPECT_TRUE(history.catalogueSaved());
    history.undo();
    EXPECT_FALSE(history.catalogueSaved()) << "an undo after a save is an unsaved change";
    history.redo();
    EXPECT_TRUE(history.catalogueSaved()) << "back at the saved state";
    history.undo();
    history.undo();
    EXPECT_TRUE(history.canRedo());
    EXPECT_FALSE(history.catalogueSaved());
    ASSERT_EQ(saved.count(), 5);
    EXPECT_EQ(saved.at(0).at(0).toBool(), false);
    EXPECT_EQ(saved.at(1).at(0).toBool(), true);
    EXPECT_EQ(saved.at(4).at(0).toBool(), false);
}

TEST_F(EditHistoryTest, StepsOfTheQuoteLeaveTheCatalogueSaved)
{
    addToQuote();
    EXPECT_TRUE(history.canUndo());
    EXPECT_TRUE(history.catalogueSaved());
    rename(QStringLiteral("Changed"));
    history.setSaved();
    addToQuote();
    history.undo();
    history.undo();
    EXPECT_FALSE(history.catalogueSaved());
    history.redo();
    history.redo();
    EXPECT_TRUE(history.catalogueSaved());
}

TEST_F(EditHistoryTest, ANewStepAfterUndoingPastTheSaveCannotReachTheSavedStateAgain)
{
    rename(QStringLiteral("Saved"));
    history.setSaved();
    history.undo();
    rename(QStringLiteral("Other"));
    EXPECT_FALSE(history.catalogueSaved());
    history.undo();
    EXPECT_FALSE(history.catalogueSaved()) << "the saved name is gone from the history";
}

TEST_F(EditHistoryTest, DroppingOnlyQuoteStepsKeepsTheSavedState)
{
    rename(QStringLiteral("Saved"));
    addToQuote();
    history.setSaved();
    history.undo(); // the quote line
    addToQuote();
    EXPECT_TRUE(history.catalogueSaved());
    history.undo();
    history.undo();
    EXPECT_FALSE(history.catalogueSaved());
    history.redo();
    EXPECT_TRUE(history.catalogueSaved());
}

TEST_F(EditHistoryTest, StepsChangedTellsOfEveryMove)
{
    QSignalSpy steps(&history, &EditHistory::stepsChanged);
    rename(QStringLiteral("One"));
    const int afterPush = int(steps.count());
    EXPECT_GE(afterPush, 1);
    history.undo();
    EXPECT_GT(steps.count(), afterPush);
    EXPECT_EQ(history.redoText(), QStringLiteral("Edit Product Name A-100"));
}

} // namespace
