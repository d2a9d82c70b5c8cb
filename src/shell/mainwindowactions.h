#pragma once

#include <QHash>
#include <QString>

class QAction;
class QKeySequence;
class QMainWindow;
class QMenu;
class QToolBar;

namespace tarnwick {

/// Builds the main window's menu bar, context menus and toolbar. Every action carries its
/// control name as object name ("mnuAddProd", "mnuFileExit" …); toolbar buttons are found by
/// their key ("Edit", "DelProd", "Insert" …).
class MainWindowActions
{
public:
    explicit MainWindowActions(QMainWindow *window);

    /// The menu action with that control name; asserts that it exists.
    QAction *action(const QString &name) const;
    /// The toolbar button with that key.
    QAction *button(const QString &key) const;

    QToolBar *toolBar() const { return m_toolBar; }
    QMenu *mnuMainGrid() const { return m_mnuMainGrid; }
    QMenu *mnuQuote() const { return m_mnuQuote; }
    QMenu *mnups() const { return m_mnups; }
    QMenu *mnusystray() const { return m_mnusystray; }

    /// The toolbar keys, left to right.
    static QStringList buttonKeys();
    /// The key of "Add to Quote", shown in the grid's menu and working anywhere in the main
    /// window: Ctrl+D, which no standard action of the desktop uses.
    static QKeySequence addToQuoteShortcut();
    /// The key of the toolbar's "Palm" (send to the handheld), which no menu item stands for;
    /// "Find" has the desktop's find key.
    static QKeySequence handheldShortcut();
    /// The keys of the toolbar's "Export" (export to a spreadsheet file) and "New" (modify the
    /// products with a spreadsheet), which no menu item stands for either.
    static QKeySequence exportShortcut();
    static QKeySequence modifyShortcut();

private:
    QMenu *addMenu(QMenu *menu, const QString &name, const QStringList &items);
    void createMenuBar(QMainWindow *window);
    void createContextMenus(QMainWindow *window);
    void createToolBar(QMainWindow *window);

    QHash<QString, QAction *> m_actions;
    QHash<QString, QAction *> m_buttons;
    QToolBar *m_toolBar = nullptr;
    QMenu *m_mnuMainGrid = nullptr;
    QMenu *m_mnuQuote = nullptr;
    QMenu *m_mnups = nullptr;
    QMenu *m_mnusystray = nullptr;
};

} // namespace tarnwick
