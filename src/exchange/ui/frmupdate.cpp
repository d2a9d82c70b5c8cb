#include "exchange/ui/frmupdate.h"

#include "exchange/importdriver.h"
#include "exchange/workbookimport.h"
#include "platform/appenvironment.h"
#include "platform/appservices.h"
#include "platform/chelp.h"
#include "platform/helpcontexts.h"
#include "platform/iprompts.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QKeyEvent>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>

namespace tarnwick {

namespace {

const QString NotAWorkbook = QStringLiteral("This file is not an Excel 97 file.");
const QString MissingFields = QStringLiteral("Missing required fields");
const QString ImportErrors = QStringLiteral(
    "There were errors importing the spreadsheet. Some of the information will not be imported.");

bool isRequired(int index)
{
    return index == ColumnMapping::PartNumberList || index == ColumnMapping::ProductNameList;
}

} // namespace

FrmUpdate::FrmUpdate(const AppServices &services, Table &catalogue, Products &products,
    const QLocale &locale, WorkbookOpenResult workbook, QWidget *parent)
    : QDialog(parent), m_services(services), m_workbook(std::move(workbook))
{
    m_ui.setupUi(this);
    m_ui.Timer1->setInterval(ProgressInterval);
    m_driver = new ImportDriver(catalogue, products, locale, this);
    connectHandlers();
    Form_Load();
}

FrmUpdate::~FrmUpdate() = default;

void FrmUpdate::connectHandlers()
{
    connect(m_ui.CmdOK, &QPushButton::clicked, this, &FrmUpdate::CmdOK_Click);
    connect(m_ui.CmdCancel, &QPushButton::clicked, this, &FrmUpdate::CmdCancel_Click);
    connect(m_ui.CmdHelp, &QPushButton::clicked, this, &FrmUpdate::CmdHelp_Click);
    connect(m_ui.OptAdd, &QRadioButton::clicked, this, &FrmUpdate::OptAdd_Click);
    connect(m_ui.Timer1, &QTimer::timeout, this, &FrmUpdate::Timer1_Timer);
    connect(m_driver, &ImportDriver::rowsFailed, this, &FrmUpdate::showImportErrors);
    connect(m_driver, &ImportDriver::finished, this, &FrmUpdate::importFinished);
}

void FrmUpdate::Form_Load()
{
    for (int index = 0; index < ColumnMapping::ListCount; ++index) {
        QComboBox *list = m_ui.CmbField[std::size_t(index)];
        list->setPlaceholderText(ColumnMapping::Required);
        if (!isRequired(index))
            list->addItem(ColumnMapping::SkipField);
        list->setCurrentIndex(isRequired(index) ? -1 : 0);
    }
    ListColumns();
    m_ui.CmbField[ColumnMapping::PartNumberList]->setFocus();
}

/// Offers the columns of the header row in every list, "Skip Field" first in the optional
/// ones; a file that is no workbook leaves the lists as they are and says so.
void FrmUpdate::ListColumns()
{
    const ColumnMapping::ColumnListing listing = ColumnMapping::listColumns(m_workbook);
    if (!listing.opened) {
        m_services.prompts.msgBox(NotAWorkbook, MsgStyle::OkOnly + MsgStyle::Exclamation,
            QStringLiteral("Error ") + QString::number(listing.errorNumber));
        return;
    }
    for (QComboBox *list : m_ui.CmbField)
        list->addItems(listing.entries);
    for (int index = 0; index < ColumnMapping::ListCount; ++index) {
        if (const int position = listing.preselection[std::size_t(index)]; position >= 0)
            m_ui.CmbField[std::size_t(index)]->setCurrentIndex(position);
    }
}

std::array<int, ColumnMapping::ListCount> FrmUpdate::selectedPositions() const
{
    std::array<int, ColumnMapping::ListCount> positions {};
    for (std::size_t index = 0; index < positions.size(); ++index)
        positions[index] = m_ui.CmbField[index]->currentIndex();
    return positions;
}

void FrmUpdate::CmdOK_Click()
{
    const auto positions = selectedPositions();
    if (!ColumnMapping::requiredFieldsMapped(positions)) {
        m_services.prompts.msgBox(MissingFields, MsgStyle::OkOnly, QStringLiteral("Input error"));
        return;
    }
    setMappingEnabled(false);
    setCursor(Qt::WaitCursor);
    m_ui.Timer1->start();
    m_driver->start(std::move(m_workbook.workbook), ColumnMapping::columnLetters(positions),
        m_ui.ChkIgnore->isChecked());
}

void FrmUpdate::setMappingEnabled(bool enabled)
{
    for (QComboBox *list : m_ui.CmbField)
        list->setEnabled(enabled);
    m_ui.ChkIgnore->setEnabled(enabled);
    m_ui.OptAdd->setEnabled(enabled);
    m_ui.CmdOK->setEnabled(enabled);
}

void FrmUpdate::showImportErrors()
{
    m_services.prompts.msgBox(
        ImportErrors, MsgStyle::OkOnly + MsgStyle::Exclamation, QStringLiteral("Import Error"));
}

/// The end of an import, whole or stopped: the owner shows the catalogue again, the result
/// is reported and the window unloads.
void FrmUpdate::importFinished(int changes)
{
    m_ui.Timer1->stop();
    unsetCursor();
    Q_EMIT catalogueChanged();
    const QPointer<FrmUpdate> alive(this);
    if (const std::optional<QString> message = resultMessage(changes))
        m_services.prompts.msgBox(*message, MsgStyle::OkOnly, QStringLiteral("Success!"));
    if (alive)
        close();
}

void FrmUpdate::Timer1_Timer()
{
    setWindowTitle(progressCaption(windowTitle(), m_driver->currentRow()));
}

void FrmUpdate::CmdCancel_Click()
{
    close();
}

void FrmUpdate::reject()
{
    close();
}

void FrmUpdate::OptAdd_Click()
{
    m_ui.CmbField[ColumnMapping::ProductNameList]->setCurrentIndex(-1);
}

void FrmUpdate::CmdHelp_Click()
{
    CHelp(m_services.help).Show(CHelp::helpFilePath(m_services.environment), CHelp::MainWindow);
}

void FrmUpdate::Form_KeyDown(int KeyCode, Qt::KeyboardModifiers /*Shift*/)
{
    if (KeyCode == Qt::Key_F1)
        CHelp(m_services.help)
            .Show(
                CHelp::helpFilePath(m_services.environment), QString(), HelpContext::ImportWindow);
}

void FrmUpdate::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_F1) {
        Form_KeyDown(event->key(), event->modifiers());
        event->accept();
        return;
    }
    QDialog::keyPressEvent(event);
}

void FrmUpdate::closeEvent(QCloseEvent *event)
{
    Form_Unload();
    event->accept();
}

/// An import still running stops after the row in hand (and reports what it added).
void FrmUpdate::Form_Unload()
{
    m_driver->stop();
    m_ui.Timer1->stop();
    unsetCursor();
    Q_EMIT unloaded();
}

} // namespace tarnwick
