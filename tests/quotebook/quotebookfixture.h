#pragma once

#include "commands/cellchanges.h"
#include "quotebook/quotebook.h"
#include "quotebook/quotesession.h"
#include "support/tempappfolder.h"

#include <QDate>
#include <QLocale>

#include <gtest/gtest.h>

#include <memory>

namespace tarnwick::test {

/// The heading and ending the quote book's tests save with their quotes, and their "today".
inline const QuoteTexts SampleTexts { QStringLiteral("Heading"), QStringLiteral("Ending") };
inline const QDate SampleToday(2026, 5, 12);

/// Quote lines for tests: lines part numbers "<prefix>-1" … "<prefix>-<count>", each at list
/// price $2.50 with quantity its line number.
QuoteContent sampleContent(int count, const QString &prefix = QStringLiteral("P"));

/// A saved quote for customer, dated date, with sampleContent(lines).
SavedQuote sampleQuote(const QString &customer, const QDate &date, int lines = 3,
    const QString &prefix = QStringLiteral("P"));

/// A quote book in a temporary application folder.
class QuoteBookTest : public ::testing::Test
{
protected:
    void SetUp() override;
    QString bookPath() const { return folder.filePath(QStringLiteral("quotes.db")); }
    /// Closes the book and opens it again from its file.
    QuoteBook::OpenResult reopen();

    const QLocale locale { QLocale::English, QLocale::UnitedStates };
    TempAppFolder folder;
    std::unique_ptr<QuoteBook> book;
};

} // namespace tarnwick::test
