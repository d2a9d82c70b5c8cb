#pragma once

#include "quotes/quoteaids.h"

#include <QDialog>
#include <QLocale>

#include <array>
#include <functional>
#include <vector>

class QDialogButtonBox;
class QLabel;
class QLineEdit;
class QTableWidget;

namespace tarnwick {

/// "Price at Quantities": up to five further quantities for one quote line, with the unit and
/// extended price the product has at each (SetPrice), shown as they are typed. OK keeps the
/// quantities with the line; an entry that is no quantity, or a quantity the catalogue gives
/// no price for, is named and OK is greyed out.
class FrmQuantities : public QDialog
{
    Q_OBJECT

public:
    static constexpr QLatin1String Caption { "Price at Quantities" };

    /// The prices of the line's product at some quantities.
    using Pricer = std::function<std::vector<QuantityPrice>(const std::vector<qint32> &)>;

    FrmQuantities(const QString &lineName, const std::vector<qint32> &quantities, Pricer pricer,
        const QLocale &locale, QWidget *parent = nullptr);

    /// The quantities as entered (valid only while OK is enabled).
    std::vector<qint32> quantities() const { return m_entry.quantities; }

private Q_SLOTS:
    void updatePrices();

private:
    Pricer m_pricer;
    QLocale m_locale;
    QuantityEntry m_entry;
    std::array<QLineEdit *, QuoteAids::MaxQuantities> m_boxes {};
    QTableWidget *m_prices = nullptr;
    QLabel *m_message = nullptr;
    QDialogButtonBox *m_buttons = nullptr;
};

} // namespace tarnwick
