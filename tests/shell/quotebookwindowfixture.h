#pragma once

// The main window with its quote book, "Save Quote" and "Quotes" answered from a script, for
// the window tests of the quote book.
#include "shellfixture.h"

#include "quotebook/ui/quotebookdialogs.h"
#include "quotes/quoteline.h"
#include "shell/quotebookcontroller.h"

#include <QGroupBox>
#include <QTableView>

#include <deque>
#include <functional>

namespace tarnwick::test {

/// "Save Quote" and "Quotes" answered from a script; an unexpected window fails the test.
class FakeQuoteBookDialogs : public IQuoteBookDialogs
{
public:
    std::optional<CustomerDetails> askCustomer(
        QWidget *, const CustomerDetails &, const QString &intro) override
    {
        intros << intro;
        if (customers.empty()) {
            ADD_FAILURE() << "Unexpected Save Quote window";
            return std::nullopt;
        }
        auto answer = customers.front();
        customers.pop_front();
        return answer;
    }
    std::optional<qint64> chooseQuote(QWidget *, QuoteBook &book) override
    {
        ++chooserShown;
        if (whileChoosing)
            whileChoosing(book);
        if (!chooseNumber)
            return std::nullopt;
        for (const QuoteSummary &quote : book.list()) {
            if (quote.number() + QLatin1Char(' ') + quote.revisionLetter() == *chooseNumber)
                return quote.id;
        }
        ADD_FAILURE() << "No quote " << chooseNumber->toStdString();
        return std::nullopt;
    }

    std::deque<std::optional<CustomerDetails>> customers;
    QStringList intros;
    std::optional<QString> chooseNumber;
    int chooserShown = 0;
    /// What the user does in the Quotes window before choosing (sets a status, say).
    std::function<void(QuoteBook &)> whileChoosing;
};

inline const CustomerDetails Acme { QStringLiteral("ACME Plumbing"), QString(),
    QStringLiteral("buy@acme.test"), QString() };

class QuoteBookWindowTest : public SampleWindowTest
{
protected:
    void SetUp() override
    {
        SampleWindowTest::SetUp();
        installFakes();
    }
    void installFakes()
    {
        auto fake = std::make_unique<FakeQuoteBookDialogs>();
        bookDialogs = fake.get();
        mainWindow->quoteBook().setDialogs(std::move(fake));
        mainWindow->quoteBook().setToday([] { return QDate(2026, 5, 12); });
        window = mainWindow.get();
        grid = window->ui().GrdMain;
    }
    void addToQuote(int gridRow)
    {
        goToRow(gridRow);
        action("mnuGrdMainQuote")->trigger();
    }
    QStringList quoteColumn(int column) const
    {
        QStringList texts;
        const QAbstractItemModel *model = window->ui().GrdQuote->model();
        for (int row = 0; row < QuoteLine::lineCount(module->QuoteTable()); ++row)
            texts << model->index(row, column).data().toString();
        return texts;
    }
    QStringList totals() const { return quoteTotalBoxes(*window); }
    QuoteBook &book() { return window->quoteBook().book(); }
    /// Closes the window as the user would and starts the program again in the same folder.
    void closeAndStart()
    {
        ASSERT_TRUE(window->close());
        restart();
        installFakes();
    }

    FakeQuoteBookDialogs *bookDialogs = nullptr;
};

} // namespace tarnwick::test
