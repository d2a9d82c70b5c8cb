#pragma once

#include "core/vberror.h"
#include "shell/cataloguelifecycle.h"
#include "shell/mainlayout.h"
#include "shell/mainwindowui.h"
#include "shell/windowsettings.h"

#include <QMainWindow>
#include <QPointer>

#include <memory>
#include <optional>

class QSystemTrayIcon;

namespace tarnwick {

struct AppServices;
class EditHistory;
class HistoryController;
class IShellDialogs;
class DocumentsController;
class EditController;
class ExchangeController;
class SaveController;
class MainWindowActions;
class Module1;
class PricingController;
class ProductGridController;
class QuoteBookController;
class QuoteController;

/// The main window: the product grid, the tab control with the side boxes and the quote, the
/// toolbar, the menus and the status bar. Form_Load restores it from the settings and loads
/// the catalogue; closing it (Form_Unload) writes the catalogue back and saves the settings.
/// Grid and product handlers are forwarded to its ProductGridController, the exchange commands
/// to its ExchangeController.
class frmMain : public QMainWindow
{
    Q_OBJECT

public:
    /// The close's question while the clipboard holds a copy the desktop would drop with the
    /// program.
    static const QString ClipboardLostQuestion;
    static const QString ClipboardLostTitle;

    frmMain(const AppServices &services, Module1 &module, IShellDialogs &dialogs,
        QWidget *parent = nullptr);
    ~frmMain() override;

    /// Restores placement and split, loads the catalogue and binds the grids; the window stays
    /// hidden. Returns the error of a setting that could not be read, after the catalogue has
    /// been loaded all the same (so a bad setting never costs the user their products).
    std::optional<VbError> Form_Load();

    /// Start-up, after the password: what reading the catalogue file found wrong (its messages
    /// name products, so they wait for the password).
    void showCatalogueMessages();
    /// Start-up, after the password and before the window shows: offers the changes a run
    /// that did not end cleanly left in the recovery file, then keeps that file up to date.
    void offerRecovery();
    /// The desktop session ends (log-out): the recovery file takes every change at once.
    void sessionEnding();
    /// A close asked for from outside (a log-out, a shut-down, Ctrl+C): closes as the user
    /// would, unless a close is already asking its questions; then their answers decide.
    void requestClose();

    /// Shows the main window (restoring it when minimised).
    void showme();
    /// Lays out the panes by the window's layout rule.
    void Form_Resize();

    const MainWindowUi &ui() const { return m_ui; }
    MainWindowActions &actions() const { return *m_actions; }
    ProductGridController &grid() const { return *m_grid; }
    QuoteController &quote() const { return *m_quote; }
    QuoteBookController &quoteBook() const { return *m_book; }
    DocumentsController &documents() const { return *m_documents; }
    ExchangeController &exchange() const { return *m_exchange; }
    PricingController &pricing() const { return *m_pricing; }
    SaveController &saving() const { return *m_save; }
    /// The history of changes of the run (Edit → Undo and Redo).
    EditHistory &history() const { return *m_history; }
    CatalogueLifecycle &catalogue() { return m_catalogue; }
    qint16 screenSplit() const { return m_screenSplit; }
    qint16 colwidth() const { return m_colwidth; }
    /// Twips per pixel of this window (15 at 96 dpi).
    double twipsPerPixel() const;

Q_SIGNALS:
    /// Form_Unload has run: the catalogue was written and the settings saved.
    void unloaded();

protected:
    void closeEvent(QCloseEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void moveEvent(QMoveEvent *event) override;
    void keepFrameOnScreen();
    bool keepCopyOnClipboard();
    bool eventFilter(QObject *watched, QEvent *event) override;

private Q_SLOTS:
    void tbToolBar_ButtonClick(QAction *button);
    void mnuAddProd_Click();
    void mnuEditProd_Click();
    void mnuDelProd_Click();
    void mnuDelAll_Click();
    void mnuclearprices_Click();
    void mnuGrdMainQuote_Click();
    void mnuQuoteDelete_Click();
    void mnuquoteclear_Click();
    void mnuResetPrices_Click();
    void mnudiscountAll_Click();
    void mnuDiscprod_Click();
    void mnuquotecopy_Click();
    void mnuQuoteNote_Click();
    void mnucopyproduct_Click();
    void mnuCopyProductInfo_Click();
    void mnuPreview_Click();
    void mnuPrint_Click();
    void mnuFileExit_Click();
    void MnuFileClose_Click();
    void mnuFileOpen_Click();
    void mnuUserOptions_Click();
    void mnushow_Click();
    void mnuremove_Click();
    void mnuFileNew_Click();
    void mnuFileSave_Click();
    void mnuFileSaveAs_Click();
    void mnuFileSaveAll_Click();
    void mnuFileProperties_Click();
    void mnuFileSend_Click();
    void mnuEditUndo_Click();
    void mnuEditRedo_Click();
    void mnuEditCut_Click();
    void mnuEditCopy_Click();
    void mnuEditPaste_Click();
    void mnuEditPasteSpecial_Click();
    void mnuViewRefresh_Click();
    void mnuViewWebBrowser_Click();
    void mnuHelpContents_Click();
    void mnuHelpSearchForHelpOn_Click();
    void mnuHelpAbout_Click();
    void mnuQuoteSave_Click();
    void mnuQuoteOpen_Click();
    void mnuQuoteRevision_Click();
    void mnuQuoteDuplicate_Click();
    void mnuQuotePdf_Click();
    void mnuCheckPrices_Click();
    void mnuChangePrices_Click();
    void mnuQuoteLock_Click();
    void mnuQuoteQuantities_Click();

private:
    bool Form_Unload();
    void Frame1_MouseDown(Qt::MouseButton Button);
    void Frame1_MouseMove(int X);
    void Frame1_MouseUp();
    void Form_MouseMove();
    void FraQuote_MouseMove();
    void FraQuote_MouseDown(Qt::MouseButton Button, const QPoint &globalPosition);
    void tbToolBar_MouseMove();
    void connectHandlers();
    void connectTemplateItems();
    void connectHelpItems();
    void connectQuoteBookItems();
    /// The Edit menu: Undo and Redo over the history of changes, Cut, Copy, Paste and Paste
    /// Special (frmmainedit.cpp).
    void connectEditItems();
    /// The pricing aids of the Products and Quote menus (frmmainpricing.cpp).
    void connectPricingItems();
    void loadCaptions();
    void watchMouse();
    QList<QWidget *> watchedWidgets() const;
    void restorePlacement(const MainWindowSettings &settings, bool sizeStored);
    qint16 minimumTabShare() const;
    void widenColumnsToContents();
    void rememberStartSettings(const MainWindowSettingsRead &read);
    MainWindowSettings currentSettings();
    void savePlacement();
    void applyPlacement(const TwipRect &grid, const TwipRect &frame1, const TwipRect &tab);
    MainLayoutInput layoutInput() const;
    int toolbarHeight() const;
    void addTrayIcon();
    void removeTrayIcon();
    void showProperties();
    void refreshView();
    void openManualInBrowser();

    const AppServices &m_services;
    Module1 &m_module;
    IShellDialogs &m_dialogs;
    MainWindowUi m_ui;
    std::unique_ptr<MainWindowActions> m_actions;
    EditHistory *m_history = nullptr;
    HistoryController *m_undo = nullptr;
    ProductGridController *m_grid = nullptr;
    QuoteController *m_quote = nullptr;
    QuoteBookController *m_book = nullptr;
    DocumentsController *m_documents = nullptr;
    ExchangeController *m_exchange = nullptr;
    SaveController *m_save = nullptr;
    EditController *m_edit = nullptr;
    PricingController *m_pricing = nullptr;
    CatalogueLifecycle m_catalogue;
    QSystemTrayIcon *m_tray = nullptr;
    TwipRect m_gridRect;
    TwipRect m_frame1Rect { 0, 0, 75, 0 };
    TwipRect m_tabRect;
    /// The settings as read at the start, and as the window applied them after clamping.
    MainWindowSettings m_startStored;
    MainWindowSettings m_startApplied;
    qint16 m_screenSplit = 50;
    qint16 m_colwidth = 1100;
    bool m_dragging = false;
    /// A start: the product columns are fitted when the window first shows; after a first run,
    // the part number keeps its stored width.
    bool m_fitColumnsOnShow = false;
    bool m_keepPartNumberWidth = false;
    bool m_loaded = false;
    bool m_unloaded = false;
    bool m_closing = false; ///< a close is asking its questions
    /// The close was asked for from outside (a termination signal): it asks nothing it can do
    /// without. Kept until the close has run, also when it first waits for the catalogue's work.
    bool m_closeFromOutside = false;
    /// The window was shown and the frame the desktop puts round it is still to be fitted onto
    /// the screen (once, at the first show).
    bool m_fitFramePending = false;
    bool m_shownOnce = false;
};

} // namespace tarnwick
