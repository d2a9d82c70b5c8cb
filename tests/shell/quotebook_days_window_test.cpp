// The day on the real main window: the frame above the quote says "(expired)" once the quote
// on screen has run out, at midnight and after a computer that slept past it. (The book's other
// commands: quotebook_window_test.cpp.)
#include "quotebookwindowfixture.h"

#include <QDate>
#include <QMetaObject>
#include <QTimer>

#include <memory>

using namespace tarnwick;
using namespace tarnwick::test;

namespace {

class QuoteBookDaysTest : public QuoteBookWindowTest
{
protected:
    /// Saves a quote on June 11, 2026 (valid until July 11); the day the program takes for
    /// today is the one the returned date holds.
    std::shared_ptr<QDate> savedOnJune11()
    {
        auto today = std::make_shared<QDate>(2026, 6, 11);
        mainWindow->quoteBook().setToday([today] { return *today; });
        addToQuote(1);
        bookDialogs->customers.push_back(Acme);
        action("mnuQuoteSave")->trigger();
        return today;
    }
};

// Left open overnight: at midnight the frame says that the quote on screen has run out.
TEST_F(QuoteBookDaysTest, AtMidnightTheFrameSaysTheQuoteOnScreenHasRunOut)
{
    const auto today = savedOnJune11();
    *today = QDate(2026, 7, 11);
    mainWindow->quoteBook().dayChanged();
    EXPECT_EQ(window->ui().FraQuote->title(),
        QStringLiteral("Quote Details: Q-2026-0001 A, ACME Plumbing"));
    *today = QDate(2026, 7, 12);
    mainWindow->quoteBook().dayChanged();
    EXPECT_EQ(window->ui().FraQuote->title(),
        QStringLiteral("Quote Details: Q-2026-0001 A, ACME Plumbing (expired)"));
}

// The computer slept over midnight, or its clock was set forward: the timer's clock stood
// still, and the date is looked at once a minute as well.
TEST_F(QuoteBookDaysTest, ADayPassedWhileTheComputerSleptIsSeenWithinAMinute)
{
    const auto today = savedOnJune11();
    auto *watch = mainWindow->quoteBook().findChild<QTimer *>(QStringLiteral("dayWatch"));
    ASSERT_NE(watch, nullptr);
    EXPECT_TRUE(watch->isActive());
    EXPECT_LE(watch->interval(), 60 * 1000);

    watch->stop(); // as when it runs out
    ASSERT_TRUE(QMetaObject::invokeMethod(watch, "timeout")); // the same day
    EXPECT_EQ(window->ui().FraQuote->title(),
        QStringLiteral("Quote Details: Q-2026-0001 A, ACME Plumbing"));
    EXPECT_TRUE(watch->isActive());

    *today = QDate(2026, 7, 13); // woken two days after its last day
    watch->stop(); // as when it runs out
    ASSERT_TRUE(QMetaObject::invokeMethod(watch, "timeout"));
    EXPECT_EQ(window->ui().FraQuote->title(),
        QStringLiteral("Quote Details: Q-2026-0001 A, ACME Plumbing (expired)"));
    EXPECT_TRUE(watch->isActive());
    EXPECT_LE(watch->interval(), 60 * 1000);
}

} // namespace
