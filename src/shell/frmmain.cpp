#include "shell/frmmain.h"

#include "catalogue/module1.h"
#include "commands/edithistory.h"
#include "core/conversions.h"
#include "core/errortrap.h"
#include "platform/appenvironment.h"
#include "platform/appservices.h"
#include "platform/iclipboard.h"
#include "platform/iprompts.h"
#include "shell/accessiblenames.h"
#include "shell/columnwidths.h"
#include "shell/dialoghelp.h"
#include "shell/documentscontroller.h"
#include "shell/editcontroller.h"
#include "shell/exchangecontroller.h"
#include "shell/gridview.h"
#include "shell/historycontroller.h"
#include "shell/mainwindowactions.h"
#include "shell/onelineboxes.h"
#include "shell/panefocus.h"
#include "shell/passwordlock.h"
#include "shell/productgridcontroller.h"
#include "shell/quotebookcontroller.h"
#include "shell/quotecontroller.h"
#include "shell/quotenotefollow.h"
#include "shell/savecontroller.h"
#include "shell/shelldialogs.h"
#include "shell/twips.h"
#include "shell/windowsettings.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QFrame>
#include <QGroupBox>
#include <QMenu>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QScreen>
#include <QSystemTrayIcon>
#include <QTabWidget>
#include <QTableView>
#include <QToolBar>

#include <cmath>

namespace tarnwick {

const QString frmMain::ClipboardLostQuestion = QStringLiteral(
    "What you copied from Tarnwick (a quote, a product report, a text) is still on the "
    "clipboard, and this desktop keeps nothing on the clipboard once the program that copied "
    "it has closed.\n\nPaste it where it belongs first, or close now and lose it. Close now?");
const QString frmMain::ClipboardLostTitle = QStringLiteral("Clipboard");

frmMain::frmMain(
    const AppServices &services, Module1 &module, IShellDialogs &dialogs, QWidget *parent)
    : QMainWindow(parent), m_services(services), m_module(module), m_dialogs(dialogs),
      m_catalogue(module, services.prompts)
{
    setObjectName(QStringLiteral("frmMain"));
    // "[*]" shows the desktop's mark for unsaved changes: "Tarnwick*".
    setWindowTitle(QStringLiteral("Tarnwick[*]"));
    m_ui.setupUi(this);
    m_actions = std::make_unique<MainWindowActions>(this);
    m_history = new EditHistory(module, this);
    m_grid = new ProductGridController(services, module, *m_history, m_ui,
        m_actions->button(QStringLiteral("Edit")), m_actions->mnuMainGrid(), m_actions->mnups(),
        this);
    m_quote = new QuoteController(services, module, *m_history, m_ui, m_actions->mnuQuote(), this);
    m_book = new QuoteBookController(services, module, *m_history, m_ui, *m_quote, this);
    m_documents = new DocumentsController(services, module, m_ui, *m_grid, this);
    new QuoteNoteFollow(services, *m_book->session(), *m_documents, this);
    m_book->setSettleNote(
        [this](const QString &title) { return m_documents->settleQuoteNote(title); });
    m_exchange = new ExchangeController(services, module, *m_history, m_ui, *m_grid,
        m_actions->button(QStringLiteral("Edit")), m_actions->toolBar(), this);
    m_save = new SaveController(services, module, m_catalogue, *m_history, *m_grid, m_ui, this);
    m_grid->setCatalogueWork(m_catalogue.attachWork(this));
    m_edit = new EditController(services.clipboard, this);
    new OneLineBoxes(this);
    connectEditItems();
    connectPricingItems();
    connectHandlers();
    new PaneFocus(m_ui, this);
    new DialogHelp(services, this);
    watchMouse();
    m_edit->watch();
    exposeObjectNames(this);
}

frmMain::~frmMain()
{
    m_catalogue.recovery().stop();
    // The handlers stop before any child goes: a child's destruction sends focus and hide
    // events that would otherwise reach this half-destroyed window and its controllers.
    m_edit->stop();
    for (QWidget *widget : watchedWidgets())
        widget->removeEventFilter(this);
    delete m_undo; // no more keys through its filter
    m_undo = nullptr;
    delete m_grid;
    m_grid = nullptr;
    delete m_book;
    m_book = nullptr;
    delete m_quote;
    m_quote = nullptr;
    // The widgets go while the actions their menus and toolbar use still exist.
    delete takeCentralWidget();
}

void frmMain::connectHandlers()
{
    const auto on = [this](const char *name, void (frmMain::*slot)()) {
        connect(m_actions->action(QString::fromLatin1(name)), &QAction::triggered, this, slot);
    };
    on("mnuAddProd", &frmMain::mnuAddProd_Click);
    on("mnuEditProd", &frmMain::mnuEditProd_Click);
    on("mnuDelProd", &frmMain::mnuDelProd_Click);
    on("mnuDelAll", &frmMain::mnuDelAll_Click);
    on("mnuclearprices", &frmMain::mnuclearprices_Click);
    on("mnuGrdMainQuote", &frmMain::mnuGrdMainQuote_Click);
    on("mnuQuoteDelete", &frmMain::mnuQuoteDelete_Click);
    on("mnuquoteclear", &frmMain::mnuquoteclear_Click);
    on("mnuResetPrices", &frmMain::mnuResetPrices_Click);
    on("mnudiscountAll", &frmMain::mnudiscountAll_Click);
    on("mnuDiscprod", &frmMain::mnuDiscprod_Click);
    on("mnuFileExit", &frmMain::mnuFileExit_Click);
    on("mnuUserOptions", &frmMain::mnuUserOptions_Click);
    on("mnushow", &frmMain::mnushow_Click);
    on("mnuremove", &frmMain::mnuremove_Click);
    on("mnuquotecopy", &frmMain::mnuquotecopy_Click);
    on("mnuQuoteNote", &frmMain::mnuQuoteNote_Click);
    on("mnucopyproduct", &frmMain::mnucopyproduct_Click);
    on("mnuCopyProductInfo", &frmMain::mnuCopyProductInfo_Click);
    on("mnuPreview", &frmMain::mnuPreview_Click);
    on("mnuPrint", &frmMain::mnuPrint_Click);
    on("MnuFileClose", &frmMain::MnuFileClose_Click);
    on("mnuFileOpen", &frmMain::mnuFileOpen_Click);
    connectTemplateItems();
    connectHelpItems();
    connectQuoteBookItems();
    connect(
        m_actions->toolBar(), &QToolBar::actionTriggered, this, &frmMain::tbToolBar_ButtonClick);
}

void frmMain::connectTemplateItems()
{
    const auto on = [this](const char *name, void (frmMain::*slot)()) {
        connect(m_actions->action(QString::fromLatin1(name)), &QAction::triggered, this, slot);
    };
    on("mnuFileSave", &frmMain::mnuFileSave_Click);
    on("mnuFileSaveAs", &frmMain::mnuFileSaveAs_Click);
    on("mnuFileProperties", &frmMain::mnuFileProperties_Click);
    on("mnuViewRefresh", &frmMain::mnuViewRefresh_Click);
    on("mnuViewWebBrowser", &frmMain::mnuViewWebBrowser_Click);
}

QList<QWidget *> frmMain::watchedWidgets() const
{
    return { m_ui.Client, m_ui.Frame1, m_ui.FraQuote, m_actions->toolBar() };
}

void frmMain::watchMouse()
{
    for (QWidget *widget : watchedWidgets()) {
        widget->setMouseTracking(true);
        widget->installEventFilter(this);
    }
    // The toolbar's buttons cover most of it: moving over them clears the status bar too.
    for (QWidget *button : m_actions->toolBar()->findChildren<QWidget *>()) {
        button->setMouseTracking(true);
        button->installEventFilter(this);
    }
}

std::optional<VbError> frmMain::Form_Load()
{
    const bool testRun = m_services.environment.isTestRun();
    if (testRun)
        m_services.prompts.msgBox(
            QStringLiteral("Loading form main"), MsgStyle::OkOnly, QStringLiteral("test"));
    loadCaptions();
    const MainWindowSettingsRead settings =
        readMainWindowSettings(m_services.settings, m_module.locale());
    restorePlacement(settings.values, settings.sizeStored);
    m_screenSplit = usableScreenSplit(settings.values.screenSplit, minimumTabShare());
    m_colwidth = settings.values.colwidth;
    if (testRun && !settings.error)
        m_services.prompts.msgBox(QStringLiteral("Past loading registry stuff"), MsgStyle::OkOnly,
            QStringLiteral("test"));
    m_dragging = false;
    Form_Resize();
    m_catalogue.load();
    m_grid->bind(Twips::toPixels(m_colwidth, twipsPerPixel()));
    m_quote->bind();
    m_fitColumnsOnShow = true;
    m_keepPartNumberWidth = settings.sizeStored;
    m_ui.SSTabmain->setCurrentIndex(0);
    rememberStartSettings(settings);
    m_loaded = true;
    return settings.error;
}

double frmMain::twipsPerPixel() const
{
    return Twips::perPixel(this);
}

void frmMain::restorePlacement(const MainWindowSettings &settings, bool sizeStored)
{
    const double tpp = Twips::perPixel(this);
    const QRect stored(Twips::toPixels(settings.left, tpp), Twips::toPixels(settings.top, tpp),
        Twips::toPixels(settings.width, tpp), Twips::toPixels(settings.height, tpp));
    // Damaged or foreign values (a frame off every attached screen, a huge or empty size) are
    // brought onto the screen the frame is on, or the primary screen.
    const QScreen *screen = QGuiApplication::screenAt(stored.center());
    if (!screen)
        screen = QGuiApplication::primaryScreen();
    const QRect frame = screen
        ? placeMainWindow(stored, sizeStored, screen->availableGeometry(), MinimumMainWindowSize)
        : stored;
    move(frame.topLeft());
    resize(frame.size());
}

qint16 frmMain::minimumTabShare() const
{
    // The price box and the schedule need about this many pixels to stay usable.
    constexpr int MinimumTabPixels = 200;
    const int inner = qMax(width(), 1);
    return qint16(qBound(2, (100 * MinimumTabPixels + inner - 1) / inner, 50));
}

void frmMain::widenColumnsToContents()
{
    // Every start makes each product column wide enough for its caption and values, and the
    // product names as wide as the grid can show them beside part number and price; the part
    // number's column keeps the width stored for it ("Colwidth"), once there is one. The grid
    // has its final width only once the window is shown.
    m_fitColumnsOnShow = false;
    ColumnWidths::fitProductGrid(m_ui.GrdMain, 1, m_keepPartNumberWidth ? 0 : -1);
    // What the fit gave the part number's column is what the start applied: a stored width
    // cut to half the grid on a smaller screen is written back as it was stored unless the
    // user changes it, and a first run saves what it opened at.
    const qint16 fitted = currentSettings().colwidth;
    m_startApplied.colwidth = fitted;
    if (!m_keepPartNumberWidth)
        m_startStored.colwidth = fitted;
}

void frmMain::rememberStartSettings(const MainWindowSettingsRead &read)
{
    m_startApplied = currentSettings();
    m_startStored = read.values;
    if (!read.sizeStored) {
        // A first run has nothing stored to keep: what it opened at is what is saved.
        m_startStored.left = m_startApplied.left;
        m_startStored.top = m_startApplied.top;
        m_startStored.width = m_startApplied.width;
        m_startStored.height = m_startApplied.height;
        m_startStored.colwidth = m_startApplied.colwidth;
    }
}

MainWindowSettings frmMain::currentSettings()
{
    const double tpp = Twips::perPixel(this);
    MainWindowSettings settings;
    settings.left = float(Twips::fromPixels(pos().x(), tpp));
    settings.top = float(Twips::fromPixels(pos().y(), tpp));
    settings.width = float(Twips::fromPixels(width(), tpp));
    settings.height = float(Twips::fromPixels(height(), tpp));
    settings.screenSplit = m_screenSplit;
    ErrorTrap trap;
    trap.step([&] {
        m_colwidth = conv::toInt16(
            Cell(Twips::fromPixels(m_ui.GrdMain->columnWidth(0), tpp)), m_module.locale());
    });
    settings.colwidth = m_colwidth;
    return settings;
}

void frmMain::showEvent(QShowEvent *event)
{
    // The tray icon comes with the window, never before it (not behind the password prompt).
    QMainWindow::showEvent(event);
    if (m_loaded && !m_unloaded)
        addTrayIcon();
    if (m_fitColumnsOnShow)
        widenColumnsToContents();
    if (!m_shownOnce) {
        m_shownOnce = true;
        m_fitFramePending = true;
        keepFrameOnScreen();
    }
}

void frmMain::closeEvent(QCloseEvent *event)
{
    m_closing = true;
    const bool closes = m_unloaded || Form_Unload();
    m_closing = false;
    m_closeFromOutside = false;
    event->setAccepted(closes);
}

void frmMain::requestClose()
{
    // While a close asks its questions, Qt would take a second close as done and take the
    // window off the screen, leaving the program running without one: the user's answer to
    // the question decides instead.
    if (m_closing)
        return;
    // Stays so until the close is carried out: while the catalogue's work runs, the close
    // waits for it (CatalogueWork) and still asks nobody anything then.
    m_closeFromOutside = true;
    close();
}

bool frmMain::Form_Unload()
{
    if (!m_loaded)
        return true;
    if (!keepCopyOnClipboard())
        return false;
    m_exchange->closeImportWindow();
    // What is being typed is kept however the window is closed (the title bar's button or
    // Alt+F4 take the keyboard from no box).
    m_grid->storePendingEdit();
    m_quote->storePendingEdit();
    // Typing left in Quote Note belongs to the quote on screen, which the book keeps for the
    // next run: the user saves it with that quote, drops it, or stays. A log-out asks nothing.
    if (m_closeFromOutside)
        m_documents->keepQuoteNoteTyping();
    else if (!m_documents->settleQuoteNote(tr("Quote Note")))
        return false;
    if (!m_book->readyToClose() || !m_catalogue.saveBeforeClose())
        return false;
    m_book->shutDown();
    const QList<QWidget *> others = findChildren<QWidget *>(Qt::FindDirectChildrenOnly);
    for (QWidget *widget : others) {
        if (widget->isWindow() && widget->isVisible())
            widget->close();
    }
    if (!isMinimized())
        savePlacement();
    removeTrayIcon();
    m_unloaded = true;
    Q_EMIT unloaded();
    return true;
}

bool frmMain::keepCopyOnClipboard()
{
    // A quote copied to be pasted into a mail after closing would be gone on a desktop that
    // keeps nothing of a program that has ended: Tarnwick's own keeper serves it on, and where
    // none can, the user pastes first or knowingly not (a termination waits for no answer).
    IClipboard &clipboard = m_services.clipboard;
    if (!clipboard.holdsOwnCopy() || clipboard.keepsCopyAfterExit() || clipboard.handOverOwnCopy()
        || m_closeFromOutside)
        return true;
    return m_services.prompts.msgBox(ClipboardLostQuestion,
               MsgStyle::YesNo | MsgStyle::Exclamation | MsgStyle::DefaultButton2,
               ClipboardLostTitle)
        == MsgResult::Yes;
}

void frmMain::savePlacement()
{
    const QString error = saveMainWindowSettings(m_services.settings,
        settingsToSave(m_startStored, m_startApplied, currentSettings()), m_module.locale());
    // The window closes all the same: the box only says why it will not open as it was left.
    if (!error.isEmpty())
        m_services.prompts.msgBox(settingsNotSavedMessage(error),
            MsgStyle::OkOnly | MsgStyle::Exclamation, SettingsNotSavedTitle);
}

void frmMain::showCatalogueMessages()
{
    m_catalogue.showLoadMessages();
}

void frmMain::offerRecovery()
{
    m_save->offerRecovery();
    m_book->start();
}

void frmMain::sessionEnding()
{
    if (!m_loaded || m_unloaded)
        return;
    m_book->sessionEnding();
    m_save->sessionEnding();
}

void frmMain::showme()
{
    if (isMinimized())
        showNormal();
    else
        show();
    raise();
    activateWindow();
}

void frmMain::addTrayIcon()
{
    if (m_tray || !QSystemTrayIcon::isSystemTrayAvailable())
        return;
    m_tray = new QSystemTrayIcon(windowIcon(), this);
    m_tray->setToolTip(QStringLiteral("Tarnwick"));
    m_tray->setContextMenu(m_actions->mnusystray());
    connect(
        m_tray, &QSystemTrayIcon::activated, this, [this](QSystemTrayIcon::ActivationReason why) {
            if (why == QSystemTrayIcon::DoubleClick)
                showme();
        });
    m_tray->show();
}

void frmMain::removeTrayIcon()
{
    if (m_tray)
        m_tray->hide();
}

void frmMain::tbToolBar_ButtonClick(QAction *button)
{
    const QString key = button->data().toString();
    if (key == QLatin1String("Edit"))
        m_grid->editButtonToggled();
    else if (key == QLatin1String("DelProd"))
        m_grid->deleteProduct();
    else if (key == QLatin1String("Insert"))
        m_grid->insertProduct();
    else if (key == QLatin1String("Palm"))
        m_exchange->Palmpilot();
    else if (key == QLatin1String("Export"))
        m_exchange->exportFromToolbar();
    else if (key == QLatin1String("New"))
        m_exchange->modifyWithWorkbook();
    else if (key == QLatin1String("Open"))
        mnuFileOpen_Click();
    else if (key == QLatin1String("Find"))
        m_grid->findProduct(m_dialogs);
    else if (key == QLatin1String("Save"))
        mnuFileSave_Click();
    else if (key == QLatin1String("Print"))
        m_documents->copyProductInfo();
    else if (key == QLatin1String("Help"))
        mnuHelpContents_Click();
}

void frmMain::mnuquotecopy_Click()
{
    m_quote->sayUnreadCellsAfter(m_documents->copyQuote());
}

void frmMain::mnuQuoteNote_Click()
{
    m_documents->showQuoteNote();
}

void frmMain::mnucopyproduct_Click()
{
    m_documents->copyProductInfo();
}

void frmMain::mnuCopyProductInfo_Click()
{
    m_documents->copyProductInfo();
}

void frmMain::mnuPreview_Click()
{
    m_grid->storePendingEdit(); // the list shows the typing not yet stored too
    m_documents->previewPriceList();
}

void frmMain::mnuPrint_Click()
{
    m_grid->storePendingEdit(); // the list shows the typing not yet stored too
    m_documents->printPriceList();
}

void frmMain::mnuAddProd_Click()
{
    m_grid->insertProduct();
}

void frmMain::mnuEditProd_Click()
{
    // Toggling the button runs the toolbar's own "Edit" command.
    m_actions->button(QStringLiteral("Edit"))->trigger();
}

void frmMain::mnuDelProd_Click()
{
    m_grid->deleteProduct();
}

void frmMain::mnuDelAll_Click()
{
    m_grid->deleteAllProducts();
}

void frmMain::mnuclearprices_Click()
{
    m_grid->ClearPrice();
}

void frmMain::mnuGrdMainQuote_Click()
{
    // The line takes the product as typed so far, name and list price included; a quantity or
    // price still being typed into the quote is taken in first, as every command takes it.
    m_grid->storePendingEdit();
    m_quote->storePendingEdit();
    m_quote->addProduct(m_grid->currentBookmark(), m_ui.Txtincludes->toPlainText());
}

void frmMain::mnuQuoteDelete_Click()
{
    m_quote->removeCurrentLine();
}

void frmMain::mnuquoteclear_Click()
{
    m_book->removeAll();
}

void frmMain::mnuResetPrices_Click()
{
    m_quote->resetPrices();
}

void frmMain::mnudiscountAll_Click()
{
    m_quote->showDiscountAll(this);
}

void frmMain::mnuDiscprod_Click()
{
    m_quote->showDiscountLine(this);
}

void frmMain::mnuFileExit_Click()
{
    close();
}

void frmMain::MnuFileClose_Click()
{
    m_exchange->exportOnClose();
}

void frmMain::mnuFileOpen_Click()
{
    m_exchange->openWorkbook();
}

void frmMain::mnuUserOptions_Click()
{
    PasswordLock::change(m_services.prompts, m_services.settings);
}

void frmMain::mnushow_Click()
{
    showme();
}

void frmMain::mnuremove_Click()
{
    close();
}

void frmMain::mnuFileSave_Click()
{
    m_save->save();
}
void frmMain::mnuFileSaveAs_Click()
{
    m_save->saveAs();
}
void frmMain::mnuFileProperties_Click()
{
    showProperties();
}
void frmMain::mnuViewRefresh_Click()
{
    refreshView();
}
void frmMain::mnuViewWebBrowser_Click()
{
    openManualInBrowser();
}

} // namespace tarnwick
