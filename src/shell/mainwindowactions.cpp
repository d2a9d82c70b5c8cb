#include "shell/mainwindowactions.h"

#include <QAccessible>
#include <QAction>
#include <QApplication>
#include <QKeySequence>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QStyle>
#include <QTimer>
#include <QToolBar>
#include <QToolButton>

#include <utility>

namespace tarnwick {

namespace {

// Menu items are written "controlName=Caption"; "-" is a separator.
const QStringList FileItems { "mnuFileNew=&New", "mnuFileOpen=&Open...", "MnuFileClose=&Close",
    "mnuFileSave=&Save", "mnuFileSaveAs=Save &As...", "mnuFileSaveAll=Save A&ll", "-",
    "mnuFileProperties=Propert&ies", "-", "mnuFileSend=Sen&d...", "-", "mnuFileExit=E&xit" };
const QStringList EditItems { "mnuEditUndo=&Undo", "mnuEditRedo=&Redo", "-", "mnuEditCut=Cu&t",
    "mnuEditCopy=&Copy", "mnuEditPaste=&Paste", "mnuEditPasteSpecial=Paste &Special..." };
const QStringList ViewItems { "mnuViewRefresh=&Refresh", "mnuViewWebBrowser=&Web Browser" };
const QStringList ProductItems { "mnuAddProd=&Add", "mnuEditProd=&Edit", "-",
    "mnucopyproduct=&Copy Product Info", "-", "mnuDelProd=&Delete", "mnuDelAll=Delete &All", "-",
    "mnuCheckPrices=Chec&k Price Points", "mnuChangePrices=C&hange Prices..." };
const QStringList PrintItems { "mnuPreview=Setup", "mnuPrint=Print Price List" };
const QStringList SettingsItems { "mnuUserOptions=&Password" };
// The Help menu's captions are string-table numbers, replaced when the main window loads.
const QStringList HelpItems { "mnuHelpContents=1027", "mnuHelpSearchForHelpOn=1028", "-",
    "mnuHelpAbout=1029" };
const QStringList GridItems { "mnuGrdMainQuote=Add to &Quote",
    "mnuCopyProductInfo=&Copy Product Info" };
const QStringList QuoteItems { "mnuQuoteDelete=Remove &Product", "mnuquoteclear=Remove &All", "-",
    "mnuResetPrices=&Reset Prices", "mnudiscountAll=Discount &All", "mnuDiscprod=Discount &Product",
    "mnuQuoteLock=&Lock Price", "mnuQuoteQuantities=Price a&t Quantities...", "-",
    "mnuquotecopy=&Copy", "-", "mnuQuoteNote=&Quote Note", "-", "mnuQuoteSave=&Save Quote...",
    "mnuQuoteOpen=&Open Quote...", "mnuQuoteRevision=&New Revision",
    "mnuQuoteDuplicate=&Duplicate Quote", "mnuQuotePdf=Save as PD&F..." };
const QStringList ScheduleItems { "mnuclearprices=&Clear" };
const QStringList TrayItems { "mnushow=&Show", "mnuremove=&Close" };

struct ToolButton
{
    const char *key;
    const char *toolTip;
    const char *themeIcon;
    QStyle::StandardPixmap fallback;
};

const ToolButton Buttons[] = {
    { "Edit", "Edit products", "document-edit", QStyle::SP_FileDialogDetailedView },
    { "DelProd", "Delete product", "edit-delete", QStyle::SP_TrashIcon },
    { "Insert", "Insert product", "list-add", QStyle::SP_FileDialogNewFolder },
    { "Palm", "Send to handheld", "pda", QStyle::SP_DriveFDIcon },
    { "Export", "Export to spreadsheet file", "document-export", QStyle::SP_ArrowRight },
    { "Find", "Find product", "edit-find", QStyle::SP_FileDialogContentsView },
    { "New", "Modify products from a spreadsheet", "document-new", QStyle::SP_FileIcon },
    { "Open", "Open spreadsheet", "document-open", QStyle::SP_DialogOpenButton },
    { "Save", "Save", "document-save", QStyle::SP_DialogSaveButton },
    { "Print", "Copy product report", "document-print", QStyle::SP_FileDialogListView },
    { "Help", "Help", "help-contents", QStyle::SP_DialogHelpButton },
};

} // namespace

MainWindowActions::MainWindowActions(QMainWindow *window)
{
    createMenuBar(window);
    createContextMenus(window);
    createToolBar(window);
}

QMenu *MainWindowActions::addMenu(QMenu *menu, const QString &name, const QStringList &items)
{
    menu->setObjectName(name);
    // Opened from the keyboard, a menu highlights its first item, and a letter then goes to
    // the next item with that letter: in Products, A would pass "&Add" for "Delete &All". The
    // highlight is taken off once the menu shows, so a letter starts from the top; assistive
    // tools, told of the first item as it was highlighted, are told the menu has the keyboard
    // (Enter chooses nothing yet).
    QObject::connect(menu, &QMenu::aboutToShow, menu, [menu] {
        QTimer::singleShot(0, menu, [menu] {
            menu->setActiveAction(nullptr);
            if (QAccessible::isActive()) {
                QAccessibleEvent focus(menu, QAccessible::Focus);
                QAccessible::updateAccessibility(&focus);
            }
        });
    });
    for (const QString &item : items) {
        if (item == QLatin1String("-")) {
            menu->addSeparator();
            continue;
        }
        const QString control = item.section(QLatin1Char('='), 0, 0);
        QAction *action = menu->addAction(item.section(QLatin1Char('='), 1));
        action->setObjectName(control);
        m_actions.insert(control, action);
    }
    return menu;
}

void MainWindowActions::createMenuBar(QMainWindow *window)
{
    QMenuBar *bar = window->menuBar();
    addMenu(bar->addMenu(QObject::tr("&File")), QStringLiteral("mnuFile"), FileItems);
    addMenu(bar->addMenu(QObject::tr("&Edit")), QStringLiteral("mnuEdit"), EditItems);
    addMenu(bar->addMenu(QObject::tr("&View")), QStringLiteral("mnuView"), ViewItems);
    addMenu(bar->addMenu(QObject::tr("&Products")), QStringLiteral("mnuProducts"), ProductItems);
    addMenu(bar->addMenu(QObject::tr("P&rint")), QStringLiteral("mnuPrintMenu"), PrintItems);
    addMenu(bar->addMenu(QObject::tr("&Settings")), QStringLiteral("mnuSettings"), SettingsItems);
    addMenu(bar->addMenu(QStringLiteral("1026")), QStringLiteral("mnuHelp"), HelpItems);
    action(QStringLiteral("mnuEditCut"))->setShortcut(QKeySequence::Cut);
    action(QStringLiteral("mnuEditCopy"))->setShortcut(QKeySequence::Copy);
    action(QStringLiteral("mnuEditPaste"))->setShortcut(QKeySequence::Paste);
    action(QStringLiteral("mnuEditUndo"))->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Z));
    action(QStringLiteral("mnuEditRedo"))
        ->setShortcuts(
            { QKeySequence(Qt::CTRL | Qt::Key_Y), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z) });
    action(QStringLiteral("mnuFileExit"))->setShortcut(QKeySequence::Quit);
    action(QStringLiteral("mnuFileNew"))->setShortcut(QKeySequence::New);
    action(QStringLiteral("mnuFileSave"))->setShortcut(QKeySequence::Save);
    // QKeySequence::SaveAs is Ctrl+Shift+S only on some desktops and nothing on the others.
    action(QStringLiteral("mnuFileSaveAs"))
        ->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_S));
    action(QStringLiteral("mnuHelpContents"))->setShortcut(QKeySequence::HelpContents);
    action(QStringLiteral("mnuViewRefresh"))->setShortcut(QKeySequence::Refresh);
}

void MainWindowActions::createContextMenus(QMainWindow *window)
{
    m_mnuMainGrid = addMenu(
        new QMenu(QStringLiteral("MainGrid"), window), QStringLiteral("mnuMainGrid"), GridItems);
    m_mnuQuote =
        addMenu(new QMenu(QObject::tr("&Quote"), window), QStringLiteral("mnuQuote"), QuoteItems);
    m_mnups = addMenu(
        new QMenu(QObject::tr("Price Schedule"), window), QStringLiteral("mnups"), ScheduleItems);
    m_mnusystray = addMenu(
        new QMenu(QStringLiteral("Tarnwick"), window), QStringLiteral("mnusystray"), TrayItems);
    // The grid's menu is not part of the window, so its key is given to the window as well.
    QAction *addToQuote = action(QStringLiteral("mnuGrdMainQuote"));
    addToQuote->setShortcut(addToQuoteShortcut());
    addToQuote->setShortcutVisibleInContextMenu(true);
    window->addAction(addToQuote);
}

void MainWindowActions::createToolBar(QMainWindow *window)
{
    m_toolBar = window->addToolBar(QObject::tr("Products"));
    m_toolBar->setObjectName(QStringLiteral("tbToolBar"));
    m_toolBar->setMovable(false);
    QStyle *style = window->style();
    for (const ToolButton &entry : Buttons) {
        const QString key = QString::fromLatin1(entry.key);
        const QIcon icon = QIcon::fromTheme(
            QString::fromLatin1(entry.themeIcon), style->standardIcon(entry.fallback));
        QAction *button = m_toolBar->addAction(icon, key);
        button->setObjectName(QStringLiteral("tb") + key);
        button->setData(key);
        button->setToolTip(QObject::tr(entry.toolTip));
        // The buttons show only their icons: assistive tools read what the button does as its
        // name, and its key as its description, as every named control has.
        QWidget *widget = m_toolBar->widgetForAction(button);
        widget->setAccessibleName(QObject::tr(entry.toolTip));
        widget->setAccessibleDescription(key);
        m_buttons.insert(key, button);
    }
    // The button that shows the buttons a narrow window has no room for.
    if (auto *more = m_toolBar->findChild<QToolButton *>(QStringLiteral("qt_toolbar_ext_button")))
        more->setAccessibleName(QObject::tr("More buttons"));
    // The buttons no menu item stands for get keys of their own, shown in their tool tips: the
    // toolbar never takes the keyboard, and every command must be reachable without a mouse.
    const auto giveKey = [this, window](const char *key, const QKeySequence &sequence) {
        QAction *button = m_buttons.value(QString::fromLatin1(key));
        button->setShortcut(sequence);
        // The window answers the key, whatever becomes of the toolbar.
        window->addAction(button);
        button->setToolTip(QStringLiteral("%1 (%2)").arg(
            button->toolTip(), sequence.toString(QKeySequence::NativeText)));
    };
    giveKey("Find", QKeySequence(QKeySequence::Find));
    giveKey("Palm", handheldShortcut());
    giveKey("Export", exportShortcut());
    giveKey("New", modifyShortcut());
    // The buttons a menu item with a key stands for show that key as well.
    for (const auto &[key, item] :
        { std::pair { "Save", "mnuFileSave" }, std::pair { "Help", "mnuHelpContents" } }) {
        QAction *button = m_buttons.value(QString::fromLatin1(key));
        const QKeySequence sequence = action(QString::fromLatin1(item))->shortcut();
        if (!sequence.isEmpty())
            button->setToolTip(QStringLiteral("%1 (%2)").arg(
                button->toolTip(), sequence.toString(QKeySequence::NativeText)));
    }
    // The toolbar holds commands no menu has: it cannot be hidden.
    m_toolBar->toggleViewAction()->setVisible(false);
    QAction *editButton = m_buttons.value(QStringLiteral("Edit"));
    editButton->setCheckable(true);
    // Products → Edit carries the button's state as its check mark, whichever of the two
    // the user pressed.
    // Quote → Lock Price shows whether the current line's price is locked.
    action(QStringLiteral("mnuQuoteLock"))->setCheckable(true);
    QAction *editItem = action(QStringLiteral("mnuEditProd"));
    editItem->setCheckable(true);
    QObject::connect(editButton, &QAction::toggled, editItem, &QAction::setChecked);
}

QAction *MainWindowActions::action(const QString &name) const
{
    QAction *found = m_actions.value(name);
    Q_ASSERT_X(found, "MainWindowActions::action", qPrintable(name));
    return found;
}

QAction *MainWindowActions::button(const QString &key) const
{
    return m_buttons.value(key);
}

QKeySequence MainWindowActions::addToQuoteShortcut()
{
    return QKeySequence(Qt::CTRL | Qt::Key_D);
}

QKeySequence MainWindowActions::handheldShortcut()
{
    return QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_H);
}

QKeySequence MainWindowActions::exportShortcut()
{
    return QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_E);
}

QKeySequence MainWindowActions::modifyShortcut()
{
    return QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_M);
}

QStringList MainWindowActions::buttonKeys()
{
    QStringList keys;
    for (const ToolButton &entry : Buttons)
        keys << QString::fromLatin1(entry.key);
    return keys;
}

} // namespace tarnwick
