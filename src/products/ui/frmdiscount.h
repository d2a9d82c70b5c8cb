#pragma once

#include "products/ui/discountform.h"

namespace tarnwick {

/// "Discount All": applies the chosen discount to every line of the quote whose unit price is
/// numeric.
class FrmDiscount : public DiscountForm
{
    Q_OBJECT

public:
    FrmDiscount(Table &quote, const QLocale &locale, QWidget *parent = nullptr);

protected:
    void applyDiscount(float multiplier) override;
};

} // namespace tarnwick
