#include "exchange/ui/frmimportpreview.h"

#include "exchange/importplanmodels.h"
#include "exchange/importreport.h"
#include "platform/qt/windowsize.h"

#include <QFontMetricsF>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QStyle>
#include <QTableView>
#include <QVBoxLayout>

namespace tarnwick {

namespace {

/// Gives a control of the preview its name as object name and accessible description.
template <typename W> W *previewControl(W *widget, const QString &name)
{
    widget->setObjectName(name);
    widget->setAccessibleDescription(name);
    return widget;
}

} // namespace

FrmImportPreview::FrmImportPreview(ImportPlan plan, const QLocale &locale, QWidget *parent)
    : QDialog(parent), m_plan(std::move(plan))
{
    m_changes = new ImportChangesModel(m_plan, locale, this);
    m_skipped = new SkippedRowsModel(m_plan, this);
    setupUi();
    connect(m_apply, &QPushButton::clicked, this, &FrmImportPreview::CmdApply_Click);
    connect(m_cancel, &QPushButton::clicked, this, &FrmImportPreview::CmdCancel_Click);
}

FrmImportPreview::~FrmImportPreview() = default;

QTableView *FrmImportPreview::createGrid(const QString &name, QAbstractItemModel *model)
{
    auto *grid = previewControl(new QTableView(this), name);
    grid->setModel(model);
    grid->setEditTriggers(QAbstractItemView::NoEditTriggers);
    grid->setSelectionBehavior(QAbstractItemView::SelectRows);
    grid->setTabKeyNavigation(false);
    grid->setWordWrap(false);
    grid->setAlternatingRowColors(true);
    grid->verticalHeader()->hide();
    grid->horizontalHeader()->setStretchLastSection(true);
    return grid;
}

void FrmImportPreview::setupUi()
{
    previewControl(this, QStringLiteral("FrmImportPreview"));
    setWindowTitle(QStringLiteral("Import Preview"));
    auto *layout = new QVBoxLayout(this);
    for (const ImportReport::CountLine &line : ImportReport::namedCountLines(m_plan)) {
        auto *label = previewControl(new QLabel(line.text, this), QString::fromLatin1(line.name));
        label->setWordWrap(true);
        layout->addWidget(label);
    }
    QTableView *changes = createGrid(QStringLiteral("GrdChanges"), m_changes);
    // The row, part number, action and field take what they show; the old and the new value,
    // what the user checks before Apply, share the rest.
    QHeaderView *header = changes->horizontalHeader();
    header->setResizeContentsPrecision(200);
    for (const int column : { ImportChangesModel::RowColumn, ImportChangesModel::PartNumberColumn,
             ImportChangesModel::ActionColumn, ImportChangesModel::FieldColumn })
        changes->resizeColumnToContents(column);
    header->setSectionResizeMode(ImportChangesModel::OldColumn, QHeaderView::Stretch);
    header->setSectionResizeMode(ImportChangesModel::NewColumn, QHeaderView::Stretch);
    // Two long names that differ at their end (one cut to 75 letters) show their ends too.
    changes->setTextElideMode(Qt::ElideMiddle);
    auto *changesLabel =
        previewControl(new QLabel(QStringLiteral("&Changes:"), this), QStringLiteral("LblChanges"));
    changesLabel->setBuddy(changes);
    QTableView *skipped = createGrid(QStringLiteral("GrdSkipped"), m_skipped);
    // Every caption whole, whatever the font.
    skipped->horizontalHeader()->setResizeContentsPrecision(200);
    skipped->resizeColumnsToContents();
    auto *skippedLabel = previewControl(
        new QLabel(QStringLiteral("S&kipped rows:"), this), QStringLiteral("LblSkippedRows"));
    skippedLabel->setBuddy(skipped);
    layout->addWidget(changesLabel);
    layout->addWidget(changes, 3);
    layout->addWidget(skippedLabel);
    layout->addWidget(skipped, 1);

    m_apply =
        previewControl(new QPushButton(QStringLiteral("&Apply"), this), QStringLiteral("CmdApply"));
    m_apply->setDefault(true);
    m_cancel = previewControl(
        new QPushButton(QStringLiteral("Cancel"), this), QStringLiteral("CmdCancel"));
    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(m_apply);
    buttons->addWidget(m_cancel);
    layout->addLayout(buttons);
    setTabOrder(changes, skipped);
    setTabOrder(skipped, m_apply);
    setTabOrder(m_apply, m_cancel);
    const QWidget *owner = parentWidget() != nullptr ? parentWidget() : this;
    const QScreen *on = owner->screen();
    // The least size grows with the font, so a large one still shows old and new side by side.
    const QSize least = WindowSize::scaled(QSize(720, 520), QFontMetricsF(font()).height());
    if (on == nullptr) {
        resize(least);
        return;
    }
    const int titleBar = style()->pixelMetric(QStyle::PM_TitleBarHeight, nullptr, this);
    resize(sizeFor(on->availableGeometry().size() - QSize(0, titleBar), least));
}

QSize FrmImportPreview::sizeFor(const QSize &room, const QSize &least)
{
    const QSize share(room.width() * 3 / 5, room.height() * 3 / 5);
    return least.expandedTo(share).boundedTo(room);
}

void FrmImportPreview::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_F1 && m_help) {
        m_help();
        event->accept();
        return;
    }
    QDialog::keyPressEvent(event);
}

void FrmImportPreview::CmdApply_Click()
{
    accept();
}

void FrmImportPreview::CmdCancel_Click()
{
    reject();
}

} // namespace tarnwick
