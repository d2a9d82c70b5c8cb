#include "products/ui/frmdiscountprod.h"

#include "quotes/quotediscount.h"

namespace tarnwick {

FrmDiscountprod::FrmDiscountprod(
    Table &quote, int currentGridRow, const QLocale &locale, QWidget *parent)
    : DiscountForm(quote, locale, QStringLiteral("FrmDiscountprod"), parent),
      m_currentGridRow(currentGridRow)
{
}

void FrmDiscountprod::applyDiscount(float multiplier)
{
    Discount::applyToLine(quote(), m_currentGridRow + 1, multiplier, locale());
}

} // namespace tarnwick
