#pragma once

#include "exchange/workbookreaderprocess.h"

#include <QObject>
#include <QPointer>
#include <QString>

#include <vector>

class QAction;
class QMainWindow;
class QToolBar;

namespace tarnwick {

struct AppServices;
struct MainWindowUi;
class EditHistory;
class FrmUpdate;
class WorkbookReadDialog;
class Module1;
class ProductGridController;

/// The main window's data exchange: the spreadsheet export (the file menu's "&Close" and the
/// toolbar's "Export"), the workbook import through the "Update" window (File → "&Open...",
/// the toolbar's "New" and "Open") and the handheld export (the toolbar's "Palm"). While the
/// "Update" window is open the main window shows the busy pointer and takes no commands. The
/// workbook is read once, before "Update" opens, in a reader process of its own (see
/// WorkbookReaderProcess) while a small window shows the progress and offers Cancel. Whatever
/// an import does (products added from a workbook, products updated after "Import Preview",
/// rows pasted with Paste Special) goes into the catalogue at its end as one step of the
/// history of changes.
class ExchangeController : public QObject
{
    Q_OBJECT

public:
    ExchangeController(const AppServices &services, Module1 &module, EditHistory &history,
        MainWindowUi &ui, ProductGridController &grid, QAction *editButton, QToolBar *toolBar,
        QMainWindow *owner);
    ~ExchangeController() override;

    /// The file menu's "&Close": asks whether to save the products to a file, then exports.
    void exportOnClose();
    /// The toolbar's "Export": asks, then exports.
    void exportFromToolbar();
    /// Asks for the file and writes the catalogue to it, with what the user is still editing.
    void Export();
    /// File → "&Open..." and the toolbar's "Open": asks, lets the user choose the workbook,
    /// reads it and shows the "Update" window.
    void openWorkbook();
    /// The toolbar's "New": asks in its own words, then as openWorkbook.
    void modifyWithWorkbook();
    /// The open dialog: the chosen workbook, or the empty text. The choice is kept as the
    /// import file name, and in the settings ("LastWorkbook") so that the dialog starts at it
    /// next time, also after a restart.
    QString Getfile();
    /// Edit → "Paste Special...": rows copied from a spreadsheet (tab-separated text on the
    /// clipboard, header row first) go through the "Update" window, and every change is shown in
    /// "Import Preview" before anything changes. A clipboard without such rows is reported.
    void pasteSpecial();
    /// The toolbar's "Palm": the selected products, or all, go to the handheld.
    void Palmpilot();
    /// Closes the "Update" window if it is open; an import stops after the row in hand and
    /// keeps what it added. A read still running is cancelled.
    void closeImportWindow();

    FrmUpdate *importWindow() const;
    /// The window of a read still running, or nullptr.
    WorkbookReadDialog *readWindow() const;
    /// The program that reads workbooks (this program unless changed) and its bounds.
    void setReaderOptions(const WorkbookReaderOptions &options) { m_readerOptions = options; }
    QString importFile() const { return m_importFile; }

private:
    void readImportFile();
    void workbookRead(WorkbookReaderProcess::Outcome outcome);
    void showImportWindow(WorkbookOpenResult workbook, bool fromClipboard = false);
    /// The workbook opened last, while its folder is there; else the empty text.
    QString lastWorkbook() const;
    void storePendingEdits();
    void leaveEditMode();
    void setMainWindowBusy(bool busy);
    void showImportedCatalogue();
    std::vector<int> selectedBookmarks() const;

    const AppServices &m_services;
    Module1 &m_module;
    EditHistory &m_history;
    MainWindowUi &m_ui;
    ProductGridController &m_grid;
    QAction *m_editButton;
    QToolBar *m_toolBar;
    QMainWindow *m_owner;
    /// The workbook chosen last ("" when the last choice was cancelled).
    QString m_importFile;
    QPointer<FrmUpdate> m_update;
    QPointer<WorkbookReadDialog> m_read;
    WorkbookReaderOptions m_readerOptions = WorkbookReaderOptions::thisProgram();
};

} // namespace tarnwick
