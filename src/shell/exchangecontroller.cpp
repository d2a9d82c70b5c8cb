#include "shell/exchangecontroller.h"

#include "catalogue/module1.h"
#include "catalogue/productchanges.h"
#include "commands/catalogueedits.h"
#include "exchange/clipboardrows.h"
#include "exchange/exchangecommands.h"
#include "exchange/handheldexport.h"
#include "exchange/handheldsend.h"
#include "exchange/ui/frmupdate.h"
#include "exchange/ui/workbookreaddialog.h"
#include "platform/appenvironment.h"
#include "platform/appservices.h"
#include "platform/iclipboard.h"
#include "platform/iprompts.h"
#include "platform/isettingsstore.h"
#include "products/productgridmodel.h"
#include "shell/gridview.h"
#include "shell/mainwindowui.h"
#include "shell/productgridcontroller.h"
#include "shell/settingskeys.h"

#include <QAction>
#include <QDir>
#include <QFileInfo>
#include <QMainWindow>
#include <QMenuBar>
#include <QToolBar>

namespace tarnwick {

ExchangeController::ExchangeController(const AppServices &services, Module1 &module,
    EditHistory &history, MainWindowUi &ui, ProductGridController &grid, QAction *editButton,
    QToolBar *toolBar, QMainWindow *owner)
    : QObject(owner), m_services(services), m_module(module), m_history(history), m_ui(ui),
      m_grid(grid), m_editButton(editButton), m_toolBar(toolBar), m_owner(owner)
{
}

ExchangeController::~ExchangeController() = default;

void ExchangeController::exportOnClose()
{
    if (ExchangeCommands::askExportOnClose(m_services.prompts))
        Export();
}

void ExchangeController::exportFromToolbar()
{
    if (ExchangeCommands::askExport(m_services.prompts))
        Export();
}

void ExchangeController::Export()
{
    ExchangeCommands::Export(m_services.fileDialogs, m_services.prompts, m_module.Catalogue(),
        m_module.locale(), [this] { storePendingEdits(); });
}

void ExchangeController::storePendingEdits()
{
    // The file holds what the user sees: the cell being typed, the side boxes and the schedule.
    m_grid.storePendingEdit();
}

void ExchangeController::openWorkbook()
{
    if (m_update || m_read || !ExchangeCommands::askOpenWorkbook(m_services.prompts))
        return;
    Getfile();
    readImportFile();
}

void ExchangeController::modifyWithWorkbook()
{
    if (m_update || m_read || !ExchangeCommands::askModifyWithWorkbook(m_services.prompts))
        return;
    Getfile();
    readImportFile();
}

QString ExchangeController::Getfile()
{
    m_importFile = ExchangeCommands::Getfile(
        m_services.fileDialogs, m_services.environment.appFolder(), lastWorkbook());
    // Only where the dialog starts depends on it: a store that cannot be written is no reason
    // to stop the import.
    if (!m_importFile.isEmpty())
        m_services.settings.save(SettingsKeys::Application, SettingsKeys::Section,
            SettingsKeys::LastWorkbook, m_importFile);
    return m_importFile;
}

QString ExchangeController::lastWorkbook() const
{
    QString stored = m_services.settings.get(
        SettingsKeys::Application, SettingsKeys::Section, SettingsKeys::LastWorkbook);
    if (stored.isEmpty() || !QFileInfo(stored).absoluteDir().exists())
        return QString();
    return stored;
}

void ExchangeController::pasteSpecial()
{
    if (m_update || m_read)
        return;
    std::unique_ptr<IWorkbook> rows = ClipboardRows::workbook(m_services.clipboard.text());
    if (!rows) {
        m_services.prompts.msgBox(ClipboardRows::NoRowsMessage,
            MsgStyle::OkOnly + MsgStyle::Information, ClipboardRows::Title);
        return;
    }
    storePendingEdits();
    leaveEditMode();
    setMainWindowBusy(true);
    showImportWindow(WorkbookOpenResult { std::move(rows), 0, {} }, true);
}

/// Reads the chosen workbook in its reader process; the main window is busy meanwhile and the
/// "Update" window opens when the cells are in.
void ExchangeController::readImportFile()
{
    if (m_importFile.isEmpty())
        return;
    // The import re-sorts the catalogue: what is being edited is stored first, as a sort does.
    storePendingEdits();
    leaveEditMode();
    setMainWindowBusy(true);
    m_read = new WorkbookReadDialog(m_readerOptions, m_importFile, m_owner);
    // Queued: the window opens from the event loop, not from inside the reader's signal.
    connect(m_read, &WorkbookReadDialog::readOver, this, &ExchangeController::workbookRead,
        Qt::QueuedConnection);
    m_read->start();
}

/// A read that was cancelled gives the main window back; any other end opens "Update", which
/// lists the columns or says that the file is no workbook.
void ExchangeController::workbookRead(WorkbookReaderProcess::Outcome outcome)
{
    if (!m_read)
        return;
    WorkbookOpenResult workbook = m_read->reader().takeResult();
    m_read->deleteLater();
    m_read = nullptr;
    if (outcome == WorkbookReaderProcess::Outcome::Cancelled) {
        setMainWindowBusy(false);
        return;
    }
    showImportWindow(std::move(workbook));
}

void ExchangeController::showImportWindow(WorkbookOpenResult workbook, bool fromClipboard)
{
    // The whole import is one step of the history: Edit → Undo takes it back at once.
    auto apply = [this](ProductChanges changes) {
        CatalogueEdits::import(m_history, m_grid.currentView(), std::move(changes));
    };
    m_update = new FrmUpdate(m_services, m_module.Catalogue(), std::move(apply), m_module.locale(),
        std::move(workbook), m_owner);
    m_update->setPreviewAlways(fromClipboard);
    m_update->setAttribute(Qt::WA_DeleteOnClose);
    connect(
        m_update, &FrmUpdate::catalogueChanged, this, &ExchangeController::showImportedCatalogue);
    connect(m_update, &FrmUpdate::unloaded, this, [this] { setMainWindowBusy(false); });
    m_update->show();
}

void ExchangeController::leaveEditMode()
{
    // Releasing the "Edit" button runs its own command, which stores the row and locks the boxes.
    if (m_grid.editMode())
        m_editButton->trigger();
}

void ExchangeController::setMainWindowBusy(bool busy)
{
    if (busy)
        m_owner->setCursor(Qt::WaitCursor);
    else
        m_owner->unsetCursor();
    m_owner->menuBar()->setEnabled(!busy);
    m_toolBar->setEnabled(!busy);
    m_owner->centralWidget()->setEnabled(!busy);
    // The keys the window itself answers (Add to Quote, Find product, Send to handheld) wait
    // too.
    for (QAction *action : m_owner->actions())
        action->setEnabled(!busy);
}

void ExchangeController::showImportedCatalogue()
{
    m_grid.MainRefresh(false);
    m_grid.moveToRow(0);
}

void ExchangeController::closeImportWindow()
{
    if (m_read) {
        m_read->reader().cancel();
        m_read->deleteLater();
        m_read = nullptr;
        setMainWindowBusy(false);
    }
    if (m_update)
        m_update->close();
}

WorkbookReadDialog *ExchangeController::readWindow() const
{
    return m_read.data();
}

FrmUpdate *ExchangeController::importWindow() const
{
    return m_update.data();
}

std::vector<int> ExchangeController::selectedBookmarks() const
{
    std::vector<int> rows;
    for (const QModelIndex &index : m_ui.GrdMain->selectionModel()->selectedRows())
        rows.push_back(ProductGridModel::bookmarkOfRow(index.row()));
    return rows;
}

void ExchangeController::Palmpilot()
{
    storePendingEdits();
    AppServices services = m_services;
    const int current = m_grid.currentBookmark();
    HandheldExport::Palmpilot(services, m_module.Catalogue(),
        HandheldExport::gridSelection(selectedBookmarks(), current), current, m_module.locale());
}

} // namespace tarnwick
