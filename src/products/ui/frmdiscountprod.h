#pragma once

#include "products/ui/discountform.h"

namespace tarnwick {

/// "Discount Product": applies the chosen discount to the quote grid's current line, when its
/// list price is numeric.
class FrmDiscountprod : public DiscountForm
{
    Q_OBJECT

public:
    /// currentGridRow: the quote grid's current row, counted from 0 (-1 for none).
    FrmDiscountprod(
        Table &quote, int currentGridRow, const QLocale &locale, QWidget *parent = nullptr);

    int currentGridRow() const { return m_currentGridRow; }
    void setCurrentGridRow(int row) { m_currentGridRow = row; }

protected:
    void applyDiscount(float multiplier) override;

private:
    int m_currentGridRow;
};

} // namespace tarnwick
