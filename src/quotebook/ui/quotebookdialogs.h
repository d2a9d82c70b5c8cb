#pragma once

#include "quotebook/quoterecord.h"

#include <QLocale>
#include <QString>

#include <optional>

class QWidget;

namespace tarnwick {

class IPrompts;
class QuoteBook;

/// The quote book's windows as the commands use them; tests answer them from a script.
class IQuoteBookDialogs
{
public:
    virtual ~IQuoteBookDialogs() = default;

    /// "Save Quote" with the given details filled in and intro above them; the details typed,
    /// or none when the user cancelled.
    virtual std::optional<CustomerDetails> askCustomer(
        QWidget *owner, const CustomerDetails &initial, const QString &intro) = 0;
    /// "Quotes": the book's key of the quote the user opened, or none when cancelled.
    virtual std::optional<qint64> chooseQuote(QWidget *owner, QuoteBook &book) = 0;
};

/// FrmSaveQuote and FrmQuotes, shown modally.
class QtQuoteBookDialogs : public IQuoteBookDialogs
{
public:
    QtQuoteBookDialogs(IPrompts &prompts, const QLocale &locale);

    std::optional<CustomerDetails> askCustomer(
        QWidget *owner, const CustomerDetails &initial, const QString &intro) override;
    std::optional<qint64> chooseQuote(QWidget *owner, QuoteBook &book) override;

private:
    IPrompts &m_prompts;
    QLocale m_locale;
};

} // namespace tarnwick
