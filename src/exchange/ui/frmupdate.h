#pragma once

#include "exchange/importdriver.h"
#include "exchange/importplan.h"
#include "exchange/ui/frmupdateui.h"
#include "exchange/workbook.h"

#include <QDialog>
#include <QLocale>
#include <QPointer>
#include <QString>
#include <QStringList>

#include <memory>

class QCloseEvent;
class QKeyEvent;

namespace tarnwick {

struct AppServices;
class FrmImportPreview;
class Table;

/// The "Update" window of the workbook import: lists the columns of the first worksheet of the
/// workbook read before it opened in the fifteen field lists, shows its first rows, lets the user
/// map them (by hand, by "Match Headers" or as last time with "Last Mapping") and, on OK, imports
/// from the same cells: the file is not read again.
///
/// With "Add new products to Brevary" OK adds every row whose part number is new. With "Update
/// existing products" (and for rows pasted from the clipboard, whichever action) OK first plans
/// the import and shows it in "Import Preview"; nothing changes until its "Apply", and its
/// "Cancel" comes back here. While rows are read the caption alternates between "Please wait"
/// and "N products analyzed"; closing the window stops after the row in hand. The window is shown
/// not modal; unloading it emits unloaded() so the owner can give the main window back, and
/// catalogueChanged() tells it to show the catalogue again after an import.
class FrmUpdate : public QDialog
{
    Q_OBJECT

public:
    /// Milliseconds between two changes of the caption while the import runs.
    static constexpr int ProgressInterval = 2000;

    /// The catalogue is only read (to plan); apply puts what an import comes to into it.
    FrmUpdate(const AppServices &services, const Table &catalogue, ImportDriver::Applier apply,
        const QLocale &locale, WorkbookOpenResult workbook, QWidget *parent = nullptr);
    ~FrmUpdate() override;

    const FrmUpdateUi &ui() const { return m_ui; }
    ImportDriver &importDriver() const { return *m_driver; }
    /// The preview of the planned import while it is open, or nullptr.
    FrmImportPreview *previewWindow() const;
    /// Rows pasted from the clipboard: every import is shown in the preview first.
    void setPreviewAlways(bool always) { m_previewAlways = always; }

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
    void CmdMatch_Click();
    void CmdLast_Click();
    void Form_KeyDown(int KeyCode, Qt::KeyboardModifiers Shift);
    void OptAdd_Click();
    void OptUpdate_Click();
    void ChkIgnore_Click();
    void Timer1_Timer();
    void Form_Unload();

private:
    void connectHandlers();
    /// What list index shows while no column is chosen ("Required", "Skip Field"), on screen
    /// and in the name assistive tools read.
    void showUnchosenAs(int index, const QString &text);
    /// The name assistive tools read for list index: its label, and the grey word while no
    /// column is chosen.
    void nameList(int index);
    ImportAction action() const;
    std::array<int, ColumnMapping::ListCount> selectedPositions() const;
    void selectPositions(const std::array<int, ColumnMapping::ListCount> &positions);
    void setMappingEnabled(bool enabled);
    void showSample();
    void fitToScreen();
    void showImportErrors();
    void importFinished(int changes);
    void showPreview();
    void applyPreviewedPlan();
    void backToMapping();

    const AppServices &m_services;
    QLocale m_locale;
    /// The worksheet read for this window, or the error of a file that could not be read.
    std::shared_ptr<const IWorkbook> m_sheet;
    int m_openError = 0;
    /// What the reading said of a file it could not read (most often that it is no workbook).
    QString m_openErrorText;
    QStringList m_headers;
    FrmUpdateUi m_ui;
    ImportDriver *m_driver = nullptr;
    QPointer<FrmImportPreview> m_preview;
    bool m_previewAlways = false;
};

} // namespace tarnwick
