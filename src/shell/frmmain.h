#pragma once

#include "core/vberror.h"
#include "shell/cataloguelifecycle.h"
#include "shell/mainwindowui.h"

#include <QMainWindow>

#include <memory>
#include <optional>

class QSystemTrayIcon;

namespace tarnwick {

struct AppServices;
class MainWindowActions;
class Module1;
class ProductGridModel;

/// The main window: the product grid, the tab control with the side boxes and the quote, the
/// toolbar, the menus and the status bar. Form_Load restores it from the settings and loads
/// the catalogue; closing it (Form_Unload) writes the catalogue back and saves the settings.
class frmMain : public QMainWindow
{
    Q_OBJECT

public:
    frmMain(const AppServices &services, Module1 &module, QWidget *parent = nullptr);
    ~frmMain() override;

    /// Restores placement and split, loads the catalogue and binds the grids; the window stays
    /// hidden. Returns the error of a setting that could not be read, after the catalogue has
    /// been loaded all the same (so a bad setting never costs the user their products).
    std::optional<VbError> Form_Load();

    /// Shows the main window (restoring it when minimised).
    void showme();

    const MainWindowUi &ui() const { return m_ui; }
    MainWindowActions &actions() const { return *m_actions; }
    qint16 screenSplit() const { return m_screenSplit; }
    qint16 colwidth() const { return m_colwidth; }

Q_SIGNALS:
    /// Form_Unload has run: the catalogue was written and the settings saved.
    void unloaded();

protected:
    void closeEvent(QCloseEvent *event) override;

private Q_SLOTS:
    void GrdMain_RowColChange(const QModelIndex &current, const QModelIndex &previous);
    void Frame1_Moved(int position, int index);
    void tbToolBar_ButtonClick(QAction *button);
    void mnuFileExit_Click();
    void mnuEditCopy_Click();
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
    void mnuEditCut_Click();
    void mnuEditPaste_Click();
    void mnuEditPasteSpecial_Click();
    void mnuViewRefresh_Click();
    void mnuViewWebBrowser_Click();

private:
    bool Form_Unload();
    void connectHandlers();
    void connectTemplateItems();
    void disableLaterCommands();
    void restorePlacement(const struct MainWindowSettings &settings);
    void savePlacement();
    void applyScreenSplit();
    void bindGrids();
    void showCurrentRow();
    void storePendingEdit();
    void addTrayIcon();
    void removeTrayIcon();
    void addCodeMessage(const char *handler);
    int currentBookmark() const;

    const AppServices &m_services;
    Module1 &m_module;
    MainWindowUi m_ui;
    std::unique_ptr<MainWindowActions> m_actions;
    ProductGridModel *m_gridModel = nullptr;
    CatalogueLifecycle m_catalogue;
    QSystemTrayIcon *m_tray = nullptr;
    qint16 m_screenSplit = 50;
    qint16 m_colwidth = 1100;
    bool m_loaded = false;
    bool m_unloaded = false;
};

} // namespace tarnwick
