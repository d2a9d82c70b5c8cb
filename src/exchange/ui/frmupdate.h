#pragma once

#include "exchange/ui/frmupdateui.h"
#include "exchange/workbook.h"

#include <QDialog>
#include <QString>

class QCloseEvent;
class QKeyEvent;
class QLocale;

namespace tarnwick {

struct AppServices;
class ImportDriver;
class Products;
class Table;

/// The "Update" window of the workbook import: lists the columns of the first worksheet of the
/// workbook read before it opened in the fifteen field lists, lets the user map them and, on OK,
/// adds every row whose part number is new, from the same cells: the file is not read again. While
/// the import runs the caption alternates between "Please wait" and "N products analyzed"; closing
/// the window stops it after the row in hand. The window is shown not modal; unloading it emits
/// unloaded() so the owner can give the main window back, and catalogueChanged() tells it to show
/// the catalogue again after an import.
class FrmUpdate : public QDialog
{
    Q_OBJECT

public:
    /// Milliseconds between two changes of the caption while the import runs.
    static constexpr int ProgressInterval = 2000;

    FrmUpdate(const AppServices &services, Table &catalogue, Products &products,
        const QLocale &locale, WorkbookOpenResult workbook, QWidget *parent = nullptr);
    ~FrmUpdate() override;

    const FrmUpdateUi &ui() const { return m_ui; }
    ImportDriver &importDriver() const { return *m_driver; }

public Q_SLOTS:
    /// Escape closes the window like Cancel, so the unload always runs.
    void reject() override;

Q_SIGNALS:
    /// The import is over and the catalogue was counted and sorted: show it again.
    void catalogueChanged();
    /// The window was unloaded.
    void unloaded();

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private Q_SLOTS:
    void Form_Load();
    void ListColumns();
    void CmdOK_Click();
    void CmdCancel_Click();
    void CmdHelp_Click();
    void Form_KeyDown(int KeyCode, Qt::KeyboardModifiers Shift);
    void OptAdd_Click();
    void Timer1_Timer();
    void Form_Unload();

private:
    void connectHandlers();
    std::array<int, ColumnMapping::ListCount> selectedPositions() const;
    void setMappingEnabled(bool enabled);
    void showImportErrors();
    void importFinished(int changes);

    const AppServices &m_services;
    /// The workbook read for this window, until OK hands it to the import.
    WorkbookOpenResult m_workbook;
    FrmUpdateUi m_ui;
    ImportDriver *m_driver = nullptr;
};

} // namespace tarnwick
