#pragma once

#include "exchange/importplan.h"

#include <QDialog>
#include <QLocale>

#include <functional>

class QAbstractItemModel;
class QFontMetrics;
class QKeyEvent;
class QLabel;
class QPushButton;
class QTableView;

namespace tarnwick {

class ImportChangesModel;
class SkippedRowsModel;

/// The window "Import Preview": what an import would do, before anything changes. It shows the
/// counts of products added, changed and unchanged and of rows skipped with their reasons
/// (LblAdded, LblChanged, LblUnchanged, LblSkipped), every change product by product and field
/// by field with its old and new value (GrdChanges), the skipped rows with the reason
/// (GrdSkipped), "Apply" (CmdApply, accepts) and "Cancel" (CmdCancel and Escape, rejects); F1
/// asks for help. The window holds the plan; whoever opened it applies plan() when it is
/// accepted.
class FrmImportPreview : public QDialog
{
    Q_OBJECT

public:
    FrmImportPreview(ImportPlan plan, const QLocale &locale, QWidget *parent = nullptr);
    ~FrmImportPreview() override;

    const ImportPlan &plan() const { return m_plan; }
    /// The window's size on a screen with room (its available area less a title bar): least at
    /// least (720 × 520 for the usual font, more for a larger one), three fifths of a larger
    /// screen (long names readable), never more than the room (a large font on a laptop).
    static QSize sizeFor(const QSize &room, const QSize &least = QSize(720, 520));
    /// What an old or new value too wide for its cell shows, given the value on the other side:
    /// from a few characters before the first difference on ("…3/4 inch, hard drawn", cut at
    /// its end where it is still too wide), so the change is in view wherever it lies in a long
    /// name; text itself when it fits or when the two differ within their first characters.
    static QString shownAround(
        const QString &text, const QString &other, int width, const QFontMetrics &metrics);
    /// What F1 does: the owner opens the import's help topic.
    void setHelpRequest(std::function<void()> help) { m_help = std::move(help); }

protected:
    void keyPressEvent(QKeyEvent *event) override;

private Q_SLOTS:
    void CmdApply_Click();
    void CmdCancel_Click();

private:
    void setupUi();
    QTableView *createGrid(const QString &name, QAbstractItemModel *model);

    ImportPlan m_plan;
    ImportChangesModel *m_changes = nullptr;
    SkippedRowsModel *m_skipped = nullptr;
    QPushButton *m_apply = nullptr;
    QPushButton *m_cancel = nullptr;
    std::function<void()> m_help;
};

} // namespace tarnwick
