#pragma once

#include <QObject>
#include <QPointer>

#include <vector>

class QWidget;

namespace tarnwick {

struct AppServices;
struct MainWindowUi;
class EditHistory;
class FrmChangePrices;
class FrmCheckPrices;
class Module1;
class ProductGridController;

/// The pricing aids of the Products menu: "Check Price Points" (the products whose price
/// points make no sense, each one reached from the list) and "Change Prices..." (list and
/// break prices of many products raised or lowered at once, as one step of the history).
class PricingController : public QObject
{
    Q_OBJECT

public:
    static constexpr QLatin1String ProductGoneText { "%1 is no longer in the price list." };

    PricingController(const AppServices &services, Module1 &module, EditHistory &history,
        MainWindowUi &ui, ProductGridController &grid, QObject *parent = nullptr);

    /// Opens (or brings forward and fills again) the "Check Price Points" window.
    void showCheckPrices(QWidget *owner);
    FrmCheckPrices *checkPricesWindow() const;

    /// Shows the product of catalogue row row in the product grid; when the products moved
    /// since the list was made, the first product with partNumber; a message when there is
    /// none.
    void goToProduct(int row, const QString &partNumber);

    /// Opens "Change Prices" for the selected products (or all shown); OK applies the change
    /// as one step of the history.
    void showChangePrices(QWidget *owner);
    FrmChangePrices *changePricesWindow() const;

private:
    std::vector<int> selectedRows() const;
    void applyChangePrices();

    const AppServices &m_services;
    Module1 &m_module;
    EditHistory &m_history;
    MainWindowUi &m_ui;
    ProductGridController &m_grid;
    QPointer<FrmCheckPrices> m_checkPrices;
    QPointer<FrmChangePrices> m_changePrices;
};

} // namespace tarnwick
