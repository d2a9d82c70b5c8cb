#include "shell/pricingcontroller.h"

#include "catalogue/module1.h"
#include "catalogue/productrecord.h"
#include "commands/catalogueedits.h"
#include "core/conversions.h"
#include "platform/appservices.h"
#include "platform/iprompts.h"
#include "products/pricechange.h"
#include "products/priceladder.h"
#include "products/ui/frmchangeprices.h"
#include "products/ui/frmcheckprices.h"
#include "shell/accessiblenames.h"
#include "shell/gridview.h"
#include "shell/mainwindowui.h"
#include "shell/productgridcontroller.h"

#include <QItemSelectionModel>
#include <QTabWidget>

#include <algorithm>

namespace tarnwick {

namespace {

/// The first catalogue row from which part number reads partNumber; 0 when there is none.
int rowOfPart(const Table &catalogue, int hint, const QString &partNumber, const QLocale &locale)
{
    const auto partOf = [&](int row) {
        const Cell &cell = catalogue.get(row, ProductRecord::PartNumber);
        return cell.isNull() ? QString() : conv::toText(cell, locale);
    };
    if (hint >= 1 && hint <= catalogue.rowCount() && partOf(hint) == partNumber)
        return hint;
    for (int row = 1; row <= catalogue.rowCount(); ++row) {
        if (partOf(row) == partNumber)
            return row;
    }
    return 0;
}

} // namespace

PricingController::PricingController(const AppServices &services, Module1 &module,
    EditHistory &history, MainWindowUi &ui, ProductGridController &grid, QObject *parent)
    : QObject(parent), m_services(services), m_module(module), m_history(history), m_ui(ui),
      m_grid(grid)
{
}

FrmCheckPrices *PricingController::checkPricesWindow() const
{
    return m_checkPrices.data();
}

FrmChangePrices *PricingController::changePricesWindow() const
{
    return m_changePrices.data();
}

void PricingController::showCheckPrices(QWidget *owner)
{
    m_grid.storeEditsBeforeStep();
    if (!m_checkPrices) {
        m_checkPrices = new FrmCheckPrices(owner);
        m_checkPrices->setAttribute(Qt::WA_DeleteOnClose);
        connect(
            m_checkPrices, &FrmCheckPrices::productChosen, this, &PricingController::goToProduct);
        exposeObjectNames(m_checkPrices);
    }
    m_checkPrices->setProblems(
        PriceLadder::checkCatalogue(m_module.Catalogue(), m_module.locale()));
    m_checkPrices->show();
    m_checkPrices->raise();
    m_checkPrices->activateWindow();
}

void PricingController::goToProduct(int row, const QString &partNumber)
{
    const int found = rowOfPart(m_module.Catalogue(), row, partNumber, m_module.locale());
    if (found == 0) {
        m_services.prompts.msgBox(QString(ProductGoneText).arg(partNumber),
            MsgStyle::OkOnly | MsgStyle::Information, QStringLiteral("Check Price Points"));
        return;
    }
    m_ui.SSTabmain->setCurrentIndex(0);
    // As a click on the row: a pending edit is stored in its own row first.
    m_ui.GrdMain->setCurrentIndex(m_ui.GrdMain->model()->index(found - 1, 0));
    m_ui.GrdMain->scrollTo(m_ui.GrdMain->currentIndex());
}

std::vector<int> PricingController::selectedRows() const
{
    std::vector<int> rows;
    for (const QModelIndex &index : m_ui.GrdMain->selectionModel()->selectedRows())
        rows.push_back(index.row() + 1);
    std::sort(rows.begin(), rows.end());
    return rows;
}

void PricingController::showChangePrices(QWidget *owner)
{
    if (m_changePrices) {
        m_changePrices->raise();
        m_changePrices->activateWindow();
        return;
    }
    m_grid.storeEditsBeforeStep();
    const std::vector<int> selected = selectedRows();
    const int shown = m_ui.GrdMain->model()->rowCount();
    auto planner = [this, selected, shown](
                       const PriceChangeRule &rule, bool selectedOnly, std::size_t keepEntries) {
        std::vector<int> rows = selected;
        if (!selectedOnly) {
            rows.resize(std::size_t(shown));
            for (int row = 1; row <= shown; ++row)
                rows[std::size_t(row - 1)] = row;
        }
        return PriceChange::plan(m_module.Catalogue(), rows, rule, m_module.locale(), keepEntries);
    };
    m_changePrices =
        new FrmChangePrices(planner, int(selected.size()), shown, m_module.locale(), owner);
    m_changePrices->setAttribute(Qt::WA_DeleteOnClose);
    exposeObjectNames(m_changePrices);
    connect(m_changePrices, &QDialog::accepted, this, &PricingController::applyChangePrices);
    m_changePrices->open();
}

void PricingController::applyChangePrices()
{
    if (!m_changePrices)
        return;
    const ProductView view = m_grid.currentView();
    if (!CatalogueEdits::changePrices(m_history, view, m_changePrices->plan()))
        return;
    m_grid.MainRefresh();
    m_grid.showCurrentRow();
}

} // namespace tarnwick
