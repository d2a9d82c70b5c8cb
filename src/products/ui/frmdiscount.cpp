#include "products/ui/frmdiscount.h"

#include "quotes/quotediscount.h"

namespace tarnwick {

FrmDiscount::FrmDiscount(Table &quote, const QLocale &locale, QWidget *parent)
    : DiscountForm(quote, locale, QStringLiteral("FrmDiscount"), parent)
{
    setScope(tr("Every line of the quote"));
}

void FrmDiscount::applyDiscount(float multiplier)
{
    Discount::applyToAllLines(quote(), multiplier, locale());
}

} // namespace tarnwick
