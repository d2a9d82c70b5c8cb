#pragma once

#include <QObject>
#include <QStringList>

class QMainWindow;

namespace tarnwick {

struct AppServices;
class CatalogueLifecycle;
class EditHistory;
struct MainWindowUi;
class Module1;
class ProductGridController;

/// File → Save and Save As, the window's mark for unsaved changes and the recovery file (both
/// follow the history of changes: undoing back to the saved catalogue clears the mark):
/// the main window's handlers come here, and so does the start-up's offer to restore the
/// changes a run that did not end cleanly left behind.
class SaveController : public QObject
{
    Q_OBJECT

public:
    SaveController(const AppServices &services, Module1 &module, CatalogueLifecycle &catalogue,
        EditHistory &history, ProductGridController &grid, MainWindowUi &ui, QMainWindow *window);

    /// File → Save, Ctrl+S and the toolbar's "Save": stores the pending edit and saves the
    /// catalogue at once (the previous file becomes "twdata.bak").
    void save();
    /// File → Save As: a copy of the catalogue in a file the user picks; the program goes on
    /// using its own catalogue file.
    void saveAs();

    /// Before the main window shows: offers the changes left in the recovery file and starts
    /// keeping the recovery file.
    void offerRecovery();

    /// The session ends (log-out): the recovery file is brought up to date at once.
    void sessionEnding();

private:
    /// An open cell editor and the side boxes of the product being edited go into the table.
    void storeEdits();
    /// The files Tarnwick keeps beside the catalogue for itself (its backup, the recovery file,
    /// the quote book and its copy, Quote Note's files, the lock), which a copy never takes.
    QStringList ownFiles() const;

    const AppServices &m_services;
    Module1 &m_module;
    CatalogueLifecycle &m_catalogue;
    ProductGridController &m_grid;
    MainWindowUi &m_ui;
    QMainWindow *m_window;
    /// What the status bar said at the last save, taken back once the catalogue changes.
    QString m_savedText;
};

} // namespace tarnwick
