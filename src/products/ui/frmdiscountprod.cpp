#include "products/ui/frmdiscountprod.h"

#include "catalogue/table.h"
#include "quotes/quotediscount.h"

namespace tarnwick {

FrmDiscountprod::FrmDiscountprod(
    Table &quote, int currentGridRow, const QLocale &locale, QWidget *parent)
    : DiscountForm(quote, locale, QStringLiteral("FrmDiscountprod"), parent),
      m_currentGridRow(currentGridRow)
{
    const int line = currentGridRow + 1;
    const QString part =
        line >= 1 && line <= quote.rowCount() ? quote.get(line, 1).asText() : QString();
    setScope(part.isEmpty() ? tr("Line %1 of the quote").arg(line)
                            : tr("Line %1 of the quote: %2").arg(QString::number(line), part));
}

void FrmDiscountprod::applyDiscount(float multiplier)
{
    Discount::applyToLine(quote(), m_currentGridRow + 1, multiplier, locale());
}

} // namespace tarnwick
