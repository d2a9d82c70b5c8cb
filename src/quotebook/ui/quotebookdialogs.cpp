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
    // Modal to its owner only: the help window F1 opens from here takes input beside it.
    window.setWindowModality(Qt::WindowModal);
    if (window.exec() != QDialog::Accepted)
        return std::nullopt;
    return window.details();
}

std::optional<qint64> QtQuoteBookDialogs::chooseQuote(QWidget *owner, QuoteBook &book)
{
    FrmQuotes window(book, m_prompts, m_locale, owner);
    window.setWindowModality(Qt::WindowModal);
    if (window.exec() != QDialog::Accepted || window.chosenQuote() == 0)
        return std::nullopt;
    return window.chosenQuote();
}

} // namespace tarnwick
