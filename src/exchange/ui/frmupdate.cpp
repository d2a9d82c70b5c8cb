#include "exchange/ui/frmupdate.h"

#include "exchange/columnmatch.h"
#include "exchange/importdriver.h"
#include "exchange/importreport.h"
#include "exchange/mappingmemory.h"
#include "exchange/ui/frmimportpreview.h"
#include "platform/appenvironment.h"
#include "platform/appservices.h"
#include "platform/chelp.h"
#include "platform/helpcontexts.h"
#include "platform/iprompts.h"
#include "platform/qt/digitmnemonics.h"

#include <QApplication>
#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLayout>
#include <QPushButton>
#include <QRadioButton>
#include <QScreen>
#include <QScrollArea>
#include <QStyle>
#include <QTableWidget>
#include <QTimer>

#include <algorithm>

namespace tarnwick {

namespace {

const QString NotAWorkbook = QStringLiteral("This file is not an Excel 97 file.");
const QString MissingFields = QStringLiteral("Missing required fields");
const QString ImportErrors = QStringLiteral(
    "There were errors importing the spreadsheet. Some of the information will not be imported.");
const QString WindowCaption = QStringLiteral("Update");
/// The widest a sample column gets, in average letters.
constexpr int SampleColumnLetters = 40;

bool isRequired(int index)
{
    return index == ColumnMapping::PartNumberList || index == ColumnMapping::ProductNameList;
}

} // namespace

FrmUpdate::FrmUpdate(const AppServices &services, const Table &catalogue,
    ImportDriver::Applier apply, const QLocale &locale, WorkbookOpenResult workbook,
    QWidget *parent)
    : QDialog(parent), m_services(services), m_locale(locale),
      m_sheet(std::move(workbook.workbook)), m_openError(workbook.errorNumber),
      m_openErrorText(workbook.errorText)
{
    m_ui.setupUi(this);
    // Alt+1 … Alt+5 reach the price points on every layout (on AZERTY the keys type & é " ' ().
    followDigitMnemonicsByPlace(this);
    m_ui.Timer1->setInterval(ProgressInterval);
    m_driver = new ImportDriver(catalogue, locale, std::move(apply), this);
    connectHandlers();
    Form_Load();
    fitToScreen();
    // Where the mapping scrolls, a list reached by its letter (Alt+P) comes into view as one
    // reached by Tab does: its left edge, beside its label, rather than the whole of it (a list
    // a little wider than the room scrolled every label out of view when the window opened).
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget *, QWidget *now) {
        if (now == nullptr)
            return;
        QScrollArea *area = m_ui.MappingArea;
        if (!area->widget()->isAncestorOf(now))
            return;
        constexpr int RowsAround = 50;
        const QPoint at = now->mapTo(area->widget(), QPoint(0, now->height() / 2));
        area->ensureVisible(at.x(), at.y(), 0, now->height() / 2 + RowsAround);
    });
}

FrmUpdate::~FrmUpdate()
{
    // Hiding the window as it goes moves the keyboard, and the window's parts are gone by then.
    disconnect(qApp, &QApplication::focusChanged, this, nullptr);
}

FrmImportPreview *FrmUpdate::previewWindow() const
{
    return m_preview.data();
}

void FrmUpdate::connectHandlers()
{
    for (int index = 0; index < ColumnMapping::ListCount; ++index)
        connect(m_ui.CmbField[std::size_t(index)], &QComboBox::currentIndexChanged, this,
            [this, index] { nameList(index); });
    connect(m_ui.CmdOK, &QPushButton::clicked, this, &FrmUpdate::CmdOK_Click);
    connect(m_ui.CmdCancel, &QPushButton::clicked, this, &FrmUpdate::CmdCancel_Click);
    connect(m_ui.CmdHelp, &QPushButton::clicked, this, &FrmUpdate::CmdHelp_Click);
    connect(m_ui.CmdMatch, &QPushButton::clicked, this, &FrmUpdate::CmdMatch_Click);
    connect(m_ui.CmdLast, &QPushButton::clicked, this, &FrmUpdate::CmdLast_Click);
    // A click runs the handler even on the option already chosen (the product name is asked
    // for again); an assistive tool's toggle chooses without a click.
    connect(m_ui.OptAdd, &QRadioButton::clicked, this, &FrmUpdate::OptAdd_Click);
    connect(m_ui.OptUpdate, &QRadioButton::clicked, this, &FrmUpdate::OptUpdate_Click);
    connect(m_ui.OptAdd, &QRadioButton::toggled, this, [this](bool chosen) {
        if (chosen)
            OptAdd_Click();
    });
    connect(m_ui.OptUpdate, &QRadioButton::toggled, this, [this](bool chosen) {
        if (chosen)
            OptUpdate_Click();
    });
    connect(m_ui.ChkIgnore, &QCheckBox::toggled, this, &FrmUpdate::ChkIgnore_Click);
    connect(m_ui.Timer1, &QTimer::timeout, this, &FrmUpdate::Timer1_Timer);
    connect(m_driver, &ImportDriver::rowsFailed, this, &FrmUpdate::showImportErrors);
    connect(m_driver, &ImportDriver::finished, this, &FrmUpdate::importFinished);
    connect(m_driver, &ImportDriver::planned, this, &FrmUpdate::showPreview);
}

void FrmUpdate::showUnchosenAs(int index, const QString &text)
{
    m_ui.CmbField[std::size_t(index)]->setPlaceholderText(text);
    nameList(index);
}

void FrmUpdate::nameList(int index)
{
    QComboBox *list = m_ui.CmbField[std::size_t(index)];
    QString label = m_ui.LblField[std::size_t(index)]->text();
    label.remove(QLatin1Char('&'));
    if (label.endsWith(QLatin1Char(':')))
        label.chop(1);
    // The grey word shows only on screen while no column is chosen: a screen reader hears it
    // with the list's name then, and the list's label and its choice after.
    list->setAccessibleName(list->currentIndex() < 0
            ? QStringLiteral("%1 (%2)").arg(label, list->placeholderText())
            : label);
}

void FrmUpdate::Form_Load()
{
    for (int index = 0; index < ColumnMapping::ListCount; ++index) {
        QComboBox *list = m_ui.CmbField[std::size_t(index)];
        showUnchosenAs(index, ColumnMapping::Required);
        if (!isRequired(index))
            list->addItem(ColumnMapping::SkipField);
        list->setCurrentIndex(isRequired(index) ? -1 : 0);
    }
    ListColumns();
    showSample();
    m_ui.CmbField[ColumnMapping::PartNumberList]->setFocus();
}

/// The first size: the sample grid at its full height where the screen's free area (less a
/// title bar) has room for it, else shorter, so the actions and buttons
/// stay on the screen; where even the shortest grid does not fit (a large font on a small
/// screen), the mapping scrolls beside them.
void FrmUpdate::fitToScreen()
{
    const QWidget *owner = parentWidget() != nullptr ? parentWidget() : this;
    const QScreen *screen = owner->screen();
    // The mapping's hint has changed with the sheet's columns, which its scroll area does not
    // pass on by itself.
    m_ui.MappingArea->updateGeometry();
    layout()->activate();
    QSize size = sizeHint();
    const QTableWidget *grid = m_ui.GrdSample;
    size.rheight() += std::max(0, grid->maximumHeight() - grid->sizeHint().height());
    if (screen != nullptr) {
        const int titleBar = style()->pixelMetric(QStyle::PM_TitleBarHeight, nullptr, this);
        const QSize room = screen->availableGeometry().size() - QSize(0, titleBar);
        // A scroll bar the mapping needs in one direction takes its room from the other.
        const int bar = style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, this);
        if (size.width() > room.width())
            size.rheight() += bar;
        if (size.height() > room.height())
            size.rwidth() += bar;
        size = size.boundedTo(room);
    }
    resize(size.expandedTo(minimumSizeHint()));
}

/// Offers the columns of the header row in every list, "Skip Field" first in the optional
/// ones; a file that is no workbook leaves the lists as they are and says so.
void FrmUpdate::ListColumns()
{
    if (!m_sheet) {
        m_services.prompts.msgBox(m_openErrorText.isEmpty() ? NotAWorkbook : m_openErrorText,
            MsgStyle::OkOnly, QStringLiteral("Error ") + QString::number(m_openError));
    } else {
        m_headers = ColumnMapping::headerTexts(*m_sheet);
        const QStringList entries = ColumnMapping::columnEntries(*m_sheet);
        for (QComboBox *list : m_ui.CmbField)
            list->addItems(entries);
        selectPositions(ColumnMapping::preselection(entries));
    }
    m_ui.CmdMatch->setEnabled(!m_headers.isEmpty());
    m_ui.CmdLast->setEnabled(MappingMemory::recall(m_services.settings, m_headers).has_value());
}

void FrmUpdate::selectPositions(const std::array<int, ColumnMapping::ListCount> &positions)
{
    for (int index = 0; index < ColumnMapping::ListCount; ++index) {
        QComboBox *list = m_ui.CmbField[std::size_t(index)];
        const int position = positions[std::size_t(index)];
        if (position >= 0 && position < list->count())
            list->setCurrentIndex(position);
    }
}

std::array<int, ColumnMapping::ListCount> FrmUpdate::selectedPositions() const
{
    std::array<int, ColumnMapping::ListCount> positions {};
    for (std::size_t index = 0; index < positions.size(); ++index)
        positions[index] = m_ui.CmbField[index]->currentIndex();
    return positions;
}

ImportAction FrmUpdate::action() const
{
    return m_ui.OptUpdate->isChecked() ? ImportAction::UpdateExisting : ImportAction::AddNew;
}

/// The first rows of the sheet below the header row (from row 1 when it holds no headers).
void FrmUpdate::showSample()
{
    QTableWidget *grid = m_ui.GrdSample;
    grid->clear();
    const int firstRow = m_ui.ChkIgnore->isChecked() ? 2 : 1;
    const ColumnMapping::SampleRows sample = m_sheet
        ? ColumnMapping::sampleRows(*m_sheet, m_headers, firstRow)
        : ColumnMapping::SampleRows {};
    grid->setColumnCount(int(sample.captions.size()));
    grid->setRowCount(int(sample.rows.size()));
    grid->setHorizontalHeaderLabels(sample.captions);
    for (int row = 0; row < int(sample.rows.size()); ++row) {
        grid->setVerticalHeaderItem(row, new QTableWidgetItem(QString::number(firstRow + row)));
        for (int column = 0; column < sample.captions.size(); ++column)
            grid->setItem(row, column, new QTableWidgetItem(sample.rows[std::size_t(row)][column]));
    }
    grid->resizeColumnsToContents();
    // A column of long names would push its header out of view: about forty letters show
    // enough to tell the columns apart.
    const int widest = grid->fontMetrics().averageCharWidth() * SampleColumnLetters;
    for (int column = 0; column < grid->columnCount(); ++column)
        grid->setColumnWidth(column, std::min(grid->columnWidth(column), widest));
}

void FrmUpdate::CmdOK_Click()
{
    const auto positions = selectedPositions();
    if (!ColumnMapping::mappingComplete(positions, action())) {
        m_services.prompts.msgBox(MissingFields, MsgStyle::OkOnly, QStringLiteral("Input error"));
        return;
    }
    const QString letters = ColumnMapping::columnLetters(positions);
    MappingMemory::remember(m_services.settings, m_headers, letters);
    setMappingEnabled(false);
    setCursor(Qt::WaitCursor);
    m_ui.Timer1->start();
    if (action() == ImportAction::AddNew && !m_previewAlways)
        m_driver->start(m_sheet, letters, m_ui.ChkIgnore->isChecked());
    else
        m_driver->startPlan(m_sheet, letters, m_ui.ChkIgnore->isChecked(), action());
}

void FrmUpdate::setMappingEnabled(bool enabled)
{
    for (QComboBox *list : m_ui.CmbField)
        list->setEnabled(enabled);
    for (QWidget *control : std::initializer_list<QWidget *> {
             m_ui.ChkIgnore, m_ui.OptAdd, m_ui.OptUpdate, m_ui.CmdOK })
        control->setEnabled(enabled);
    m_ui.CmdMatch->setEnabled(enabled && !m_headers.isEmpty());
    m_ui.CmdLast->setEnabled(
        enabled && MappingMemory::recall(m_services.settings, m_headers).has_value());
}

void FrmUpdate::showImportErrors()
{
    m_services.prompts.msgBox(
        ImportErrors, MsgStyle::OkOnly + MsgStyle::Exclamation, QStringLiteral("Import Error"));
}

/// The end of an import that adds, whole or stopped: the owner shows the catalogue again, the
/// result is reported and the window unloads.
void FrmUpdate::importFinished(int changes)
{
    m_ui.Timer1->stop();
    unsetCursor();
    Q_EMIT catalogueChanged();
    const QPointer<FrmUpdate> alive(this);
    const int skipped = m_driver->skippedExisting();
    if (const std::optional<QString> message =
            ImportReport::addResultMessage(changes, skipped, m_driver->unreadFrom()))
        m_services.prompts.msgBox(
            *message, MsgStyle::OkOnly, ImportReport::addResultTitle(changes));
    if (alive)
        close();
}

/// The plan is complete: "Import Preview" shows it over this window, which waits for its
/// answer.
void FrmUpdate::showPreview()
{
    m_ui.Timer1->stop();
    unsetCursor();
    setWindowTitle(WindowCaption);
    m_preview = new FrmImportPreview(m_driver->takePlan(), m_locale, this);
    m_preview->setAttribute(Qt::WA_DeleteOnClose);
    m_preview->setHelpRequest([this] { Form_KeyDown(Qt::Key_F1, Qt::NoModifier); });
    connect(m_preview, &QDialog::accepted, this, &FrmUpdate::applyPreviewedPlan);
    connect(m_preview, &QDialog::rejected, this, &FrmUpdate::backToMapping);
    // Not modal: a modal preview would keep the main window's close (its title bar's button, a
    // log-out) from reaching it, and closing "Update" closes the preview with it. The mapping
    // stays disabled while the preview is up.
    m_preview->setWindowModality(Qt::NonModal);
    m_preview->show();
    m_preview->activateWindow();
}

void FrmUpdate::applyPreviewedPlan()
{
    const ImportPlan &plan = m_preview->plan();
    const QString message = ImportReport::resultMessage(plan);
    m_driver->apply(plan);
    Q_EMIT catalogueChanged();
    const QPointer<FrmUpdate> alive(this);
    m_services.prompts.msgBox(message, MsgStyle::OkOnly, ImportReport::SuccessTitle);
    if (alive)
        close();
}

/// "Cancel" in the preview: nothing changed, and the mapping can be changed and tried again.
void FrmUpdate::backToMapping()
{
    setMappingEnabled(true);
    m_ui.CmdOK->setFocus();
}

void FrmUpdate::Timer1_Timer()
{
    setWindowTitle(ImportReport::progressCaption(windowTitle(), m_driver->currentRow()));
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
    showUnchosenAs(ColumnMapping::ProductNameList, ColumnMapping::Required);
    m_ui.CmbField[ColumnMapping::ProductNameList]->setCurrentIndex(-1);
}

/// Updating needs no product name: an unmapped name leaves the names as they are.
void FrmUpdate::OptUpdate_Click()
{
    showUnchosenAs(ColumnMapping::ProductNameList, ColumnMapping::SkipField);
}

void FrmUpdate::ChkIgnore_Click()
{
    showSample();
}

void FrmUpdate::CmdMatch_Click()
{
    selectPositions(ColumnMapping::matchHeaders(m_headers));
}

void FrmUpdate::CmdLast_Click()
{
    if (const auto letters = MappingMemory::recall(m_services.settings, m_headers))
        selectPositions(ColumnMapping::positionsFromLetters(*letters));
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

/// An import still running stops after the row in hand (an import that adds reports what it
/// added); a preview still open closes without changing anything.
void FrmUpdate::Form_Unload()
{
    if (m_preview) {
        m_preview->disconnect(this);
        m_preview->close();
    }
    m_driver->stop();
    m_ui.Timer1->stop();
    unsetCursor();
    Q_EMIT unloaded();
}

} // namespace tarnwick
