#include "quotebook/ui/quotebookdialogs.h"

#include "quotebook/ui/frmquotes.h"
#include "quotebook/ui/frmsavequote.h"

namespace tarnwick {

QtQuoteBookDialogs::QtQuoteBookDialogs(IPrompts &prompts, const QLocale &locale)
    : m_prompts(prompts), m_locale(locale)
{
}

std::optional<CustomerDetails> QtQuoteBookDialogs::askCustomer(
    QWidget *owner, const CustomerDetails &initial, const QString &intro)
{
    FrmSaveQuote window(owner);
    window.setIntro(intro);
    window.setDetails(initial);
    if (window.exec() != QDialog::Accepted)
        return std::nullopt;
    return window.details();
}

std::optional<qint64> QtQuoteBookDialogs::chooseQuote(QWidget *owner, QuoteBook &book)
{
    FrmQuotes window(book, m_prompts, m_locale, owner);
    if (window.exec() != QDialog::Accepted || window.chosenQuote() == 0)
        return std::nullopt;
    return window.chosenQuote();
}

} // namespace tarnwick
