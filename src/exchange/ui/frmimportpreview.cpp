#include "exchange/ui/frmimportpreview.h"

#include "core/celltext.h"
#include "exchange/importplanmodels.h"
#include "exchange/importreport.h"
#include "platform/qt/windowsize.h"

#include <QApplication>
#include <QFontMetrics>
#include <QFontMetricsF>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QStyle>
#include <QStyledItemDelegate>
#include <QTableView>
#include <QVBoxLayout>

namespace tarnwick {

namespace {

/// The old and new values of the changes: each shows the part where it differs from the other.
class ChangeTextDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

protected:
    void initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const override
    {
        QStyledItemDelegate::initStyleOption(option, index);
        const int column = index.column();
        if (column != ImportChangesModel::OldColumn && column != ImportChangesModel::NewColumn)
            return;
        const int otherColumn = column == ImportChangesModel::OldColumn
            ? ImportChangesModel::NewColumn
            : ImportChangesModel::OldColumn;
        // The room for the text: the cell less the style's margins on both sides.
        const int margin = 2
            * (option->widget ? option->widget->style() : QApplication::style())
                  ->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, option->widget);
        const QString shown = FrmImportPreview::shownAround(option->text,
            index.siblingAtColumn(otherColumn).data().toString(), option->rect.width() - margin,
            option->fontMetrics);
        // Shown from the difference on, what does not fit is cut at the end.
        if (shown != option->text) {
            option->text = shown;
            option->textElideMode = Qt::ElideRight;
        }
    }
};

} // namespace

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
    // Two long names that differ at their end (one cut to 75 letters) show their ends too, and
    // two that differ in their middle show it.
    changes->setTextElideMode(Qt::ElideMiddle);
    changes->setItemDelegate(new ChangeTextDelegate(changes));
    auto *changesLabel =
        previewControl(new QLabel(QStringLiteral("&Changes:"), this), QStringLiteral("LblChanges"));
    changesLabel->setBuddy(changes);
    changes->setAccessibleName(QStringLiteral("Changes"));
    QTableView *skipped = createGrid(QStringLiteral("GrdSkipped"), m_skipped);
    // Every caption whole, whatever the font.
    skipped->horizontalHeader()->setResizeContentsPrecision(200);
    skipped->resizeColumnsToContents();
    auto *skippedLabel = previewControl(
        new QLabel(QStringLiteral("S&kipped rows:"), this), QStringLiteral("LblSkippedRows"));
    skippedLabel->setBuddy(skipped);
    skipped->setAccessibleName(QStringLiteral("Skipped rows"));
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

QString FrmImportPreview::shownAround(
    const QString &text, const QString &other, int width, const QFontMetrics &metrics)
{
    // The characters shown before the difference, so it reads in its place.
    constexpr qsizetype Lead = 12;
    if (metrics.horizontalAdvance(text) <= width)
        return text;
    qsizetype first = 0;
    while (first < text.size() && first < other.size() && text.at(first) == other.at(first))
        ++first;
    qsizetype from = first - Lead;
    if (from <= 0)
        return text;
    // Never from the middle of a character (a letter's accent drawn on the ellipsis).
    from = celltext::wholeCharactersBefore(text, from);
    return QStringLiteral("\u2026") + text.mid(from);
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
