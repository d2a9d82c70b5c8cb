// The main window's pricing aids: Products → Check Price Points and Change Prices go to its
// PricingController, the quote menu's Lock Price and Price at Quantities to its QuoteController.
#include "shell/frmmain.h"

#include "shell/mainwindowactions.h"
#include "shell/pricingcontroller.h"
#include "shell/quotecontroller.h"

#include <QAction>

namespace tarnwick {

void frmMain::connectPricingItems()
{
    m_pricing = new PricingController(m_services, m_module, *m_history, m_ui, *m_grid, this);
    const auto on = [this](const char *name, void (frmMain::*slot)()) {
        connect(m_actions->action(QString::fromLatin1(name)), &QAction::triggered, this, slot);
    };
    on("mnuCheckPrices", &frmMain::mnuCheckPrices_Click);
    on("mnuChangePrices", &frmMain::mnuChangePrices_Click);
    on("mnuQuoteLock", &frmMain::mnuQuoteLock_Click);
    on("mnuQuoteQuantities", &frmMain::mnuQuoteQuantities_Click);
}

void frmMain::mnuCheckPrices_Click()
{
    m_pricing->showCheckPrices(this);
}

void frmMain::mnuChangePrices_Click()
{
    m_pricing->showChangePrices(this);
}

void frmMain::mnuQuoteLock_Click()
{
    m_quote->toggleLock();
}

void frmMain::mnuQuoteQuantities_Click()
{
    m_quote->showQuantities(this);
}

} // namespace tarnwick
