#include "shell/savecontroller.h"

#include "catalogue/cataloguefile.h"
#include "catalogue/module1.h"
#include "catalogue/recoveryfile.h"
#include "commands/edithistory.h"
#include "platform/appenvironment.h"
#include "platform/appservices.h"
#include "platform/filefilter.h"
#include "platform/filestamp.h"
#include "platform/ifiledialogs.h"
#include "platform/iprompts.h"
#include "products/productcommands.h"
#include "quotes/quotenote.h"
#include "shell/cataloguelifecycle.h"
#include "shell/mainwindowui.h"
#include "shell/productgridcontroller.h"
#include "shell/quotebookcontroller.h"
#include "shell/statustext.h"

#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QPlainTextEdit>

namespace tarnwick {

namespace {
const QString CopyFilter = QStringLiteral("Catalogue Files (*.dat)|*.dat|All Files (*.*)|*.*");
const QString RecoveredMessage = QStringLiteral("Unsaved changes are kept safe again.");
} // namespace

SaveController::SaveController(const AppServices &services, Module1 &module,
    CatalogueLifecycle &catalogue, EditHistory &history, ProductGridController &grid,
    MainWindowUi &ui, QMainWindow *window)
    : QObject(window), m_services(services), m_module(module), m_catalogue(catalogue), m_grid(grid),
      m_ui(ui), m_window(window)
{
    CatalogueRecovery &recovery = m_catalogue.recovery();
    recovery.setPendingRow([this](Table &row) { return m_grid.pendingRow(row); });
    // Unsaved means: steps that change the catalogue lie between the saved state and now.
    recovery.setSavedState(
        { [&history] { return history.catalogueSaved(); }, [&history] { history.setSaved(); } });
    // Queued: the window shows the step completely before the catalogue is looked at.
    connect(&history, &EditHistory::catalogueSavedChanged, &recovery, &CatalogueRecovery::checkNow,
        Qt::QueuedConnection);
    // Undone back to what the file holds, the catalogue counts as unchanged again: the next
    // save (every close saves) leaves twdata.bak as it is, which may hold the only copy of
    // what an earlier "Delete All" removed.
    connect(&history, &EditHistory::catalogueSavedChanged, this, [this](bool saved) {
        if (saved)
            m_module.AllProducts().markAsFile();
    });
    connect(
        &recovery, &CatalogueRecovery::modifiedChanged, m_window, &QMainWindow::setWindowModified);
    // Typing in a side box changes the catalogue before any step: the title's mark follows the
    // keys at once (a close asked for right after them finds the window as it now reads), not
    // at the next look of the recovery timer.
    connect(m_ui.TxtPrice, &QLineEdit::textChanged, &recovery, &CatalogueRecovery::checkNow,
        Qt::QueuedConnection);
    for (QPlainTextEdit *box : { m_ui.Txtincludes, m_ui.Txtnotes })
        connect(box, &QPlainTextEdit::textChanged, &recovery, &CatalogueRecovery::checkNow,
            Qt::QueuedConnection);
    // "Catalogue saved" is no longer true once the catalogue changes again; saved (or undone
    // back to what the file holds), it has nothing left to keep safe.
    connect(&recovery, &CatalogueRecovery::modifiedChanged, this, [this](bool modified) {
        if (modified)
            m_ui.sbPanel1->takeBack(m_savedText);
        else
            m_ui.sbUnsafe->clearReason(QStringLiteral("catalogue"));
    });
    connect(&recovery, &CatalogueRecovery::writeFailed, this, [this](const QString &detail) {
        const QString text =
            QStringLiteral("Unsaved changes cannot be kept safe: %1. Save the catalogue.")
                .arg(detail);
        m_ui.sbPanel1->setText(text);
        m_ui.sbUnsafe->setReason(QStringLiteral("catalogue"), text);
    });
    connect(&recovery, &CatalogueRecovery::writeRecovered, this, [this] {
        m_ui.sbPanel1->setText(RecoveredMessage);
        m_ui.sbUnsafe->clearReason(QStringLiteral("catalogue"));
    });
}

void SaveController::storeEdits()
{
    m_grid.storePendingEdit();
}

void SaveController::save()
{
    storeEdits();
    if (!m_catalogue.saveNow())
        return;
    // Products without a part number are not in the file: the message says so while they
    // are still on screen to be given one.
    m_savedText = ProductCommands::savedText(int(
        ProductCommands::rowsWithoutPartNumber(m_module.Catalogue(), m_module.locale()).size()));
    m_ui.sbPanel1->setText(m_savedText);
}

void SaveController::saveAs()
{
    FileDialogRequest request;
    request.title = QStringLiteral("Save a Copy of the Catalogue");
    request.filter = CopyFilter;
    request.initialFolder = m_services.environment.appFolder();
    request.fileName = QStringLiteral("twdata-copy.dat");
    request.defaultSuffix = QStringLiteral("dat");
    const std::optional<FileDialogResult> chosen = m_services.fileDialogs.getSaveFile(request);
    if (!chosen || chosen->path.isEmpty())
        return;
    // A name typed without an extension is a catalogue file all the same: ".dat" is added (the
    // desktop's dialog adds it before it asks about an existing file), so the copy can be told
    // for what it is and put back in place of twdata.dat.
    const QString path = withDefaultSuffix(chosen->path, request.defaultSuffix);
    storeEdits();
    // The program's own file chosen as the copy is simply saved, with its backup; chosen so,
    // it is written even where it has gone from its folder.
    if (namesSameFile(path, m_module.DataFile)) {
        m_module.AllProducts().acceptFileGone();
        save();
        return;
    }
    // The files Tarnwick keeps for itself are its to replace and remove: a copy under such a
    // name would be gone with the next save or close, or taken for something it is not.
    for (const QString &kept : ownFiles()) {
        if (namesSameFile(path, kept)) {
            m_services.prompts.msgBox(QStringLiteral("%1 is a file Tarnwick keeps for itself and "
                                                     "replaces on its own. Choose another name "
                                                     "for the copy.")
                                          .arg(QFileInfo(path).fileName()),
                MsgStyle::OkOnly + MsgStyle::Exclamation, request.title);
            return;
        }
    }
    if (m_catalogue.saveCopy(path))
        m_ui.sbPanel1->setText(
            QStringLiteral("Copy saved as %1").arg(QDir::toNativeSeparators(path)));
}

QStringList SaveController::ownFiles() const
{
    const QString backup = catalogueBackupPath(m_module.DataFile);
    QStringList files { backup, backup + QStringLiteral(".link"),
        recoveryFilePath(m_module.DataFile), recoveryBasePath(m_module.DataFile) };
    const QString book = QuoteBookController::BookFileName;
    const QString bookCopy = QuoteBookController::BackupFileName;
    for (const QString &name : { book, book + QStringLiteral("-wal"), book + QStringLiteral("-shm"),
             book + QStringLiteral("-journal"), bookCopy, bookCopy + QStringLiteral(".new"),
             bookCopy + QStringLiteral(".new-journal"), QString(QuoteNote::EndingFileName),
             QString(QuoteNote::HeadingFileName), QString(QuoteNote::HeadingFileSaveName),
             QStringLiteral("tarnwick.lock") })
        files << m_services.environment.pathInAppFolder(name);
    return files;
}

void SaveController::offerRecovery()
{
    if (m_catalogue.offerRecovery())
        m_grid.catalogueReplaced();
    // Changes the user did not restore are not thrown away: say where they are.
    if (const QString kept = m_catalogue.keptRecoveryFile(); !kept.isEmpty())
        m_ui.sbPanel1->setText(QStringLiteral("The changes of the last session are kept as %1.")
                                   .arg(QDir::toNativeSeparators(kept)));
    else if (const QString backup = m_catalogue.keptBackupFile(); !backup.isEmpty())
        m_ui.sbPanel1->setText(
            QStringLiteral("The backup is kept as %1.").arg(QDir::toNativeSeparators(backup)));
    else if (m_module.AllProducts().Count() <= 0)
        // A first start in a folder of its own shows an empty grid: say how to fill it.
        m_ui.sbPanel1->setText(tr("The catalogue is empty: press Insert product on the toolbar "
                                  "to add a product, or Open spreadsheet to bring in a price "
                                  "list."));
    m_window->setWindowModified(m_catalogue.recovery().isModified());
}

void SaveController::sessionEnding()
{
    storeEdits();
    m_catalogue.recovery().writeNow();
}

} // namespace tarnwick
