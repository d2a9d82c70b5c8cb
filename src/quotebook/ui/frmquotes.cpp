#include "quotebook/ui/frmquotes.h"

#include "platform/iprompts.h"
#include "platform/keynavigation.h"
#include "platform/qt/wheelguard.h"
#include "quotebook/quotebook.h"
#include "quotebook/quotelistmodel.h"

#include <QComboBox>
#include <QCoreApplication>
#include <QDate>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QStyle>
#include <QTableView>
#include <QVBoxLayout>

#include <algorithm>

namespace tarnwick {

namespace {

template <typename W> W *quotesControl(W *widget, const char *name)
{
    const QString text = QString::fromLatin1(name);
    widget->setObjectName(text);
    widget->setAccessibleDescription(text);
    return widget;
}

} // namespace

FrmQuotes::FrmQuotes(QuoteBook &book, IPrompts &prompts, const QLocale &locale, QWidget *parent)
    : QDialog(parent), m_book(book), m_prompts(prompts), m_locale(locale),
      m_model(new QuoteListModel(locale, this))
{
    setObjectName(QStringLiteral("FrmQuotes"));
    setAccessibleDescription(objectName());
    setWindowTitle(tr("Quotes"));
    m_txtFind = quotesControl(new QLineEdit(this), "TxtFind");
    m_txtFind->setPlaceholderText(
        tr("Number, customer, company, e-mail, reference or part number"));
    m_txtFind->setClearButtonEnabled(true);
    auto *findLabel = new QLabel(tr("&Find:"), this);
    findLabel->setBuddy(m_txtFind);
    m_grdQuotes = quotesControl(new QTableView(this), "GrdQuotes");
    m_grdQuotes->setModel(m_model);
    // A click on a header sorts on that column, a second click the other way; until then the
    // list is newest first.
    m_grdQuotes->horizontalHeader()->setSortIndicatorClearable(true);
    m_grdQuotes->horizontalHeader()->setSortIndicator(-1, Qt::AscendingOrder);
    m_grdQuotes->setSortingEnabled(true);
    m_grdQuotes->setAccessibleName(tr("Saved quotes"));
    m_grdQuotes->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_grdQuotes->setSelectionMode(QAbstractItemView::SingleSelection);
    m_grdQuotes->setEditTriggers(QAbstractItemView::NoEditTriggers);
    // A list to choose from: Tab goes on to the next control, the arrows move between quotes.
    m_grdQuotes->setTabKeyNavigation(false);
    m_grdQuotes->setWordWrap(false);
    m_grdQuotes->verticalHeader()->hide();
    // Rows of one height: the view never measures 10,000 rows to draw twenty.
    m_grdQuotes->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    m_grdQuotes->horizontalHeader()->setSectionResizeMode(2, QHeaderView::Stretch);
    m_count = quotesControl(new QLabel(this), "LblCount");
    m_cmbStatus = quotesControl(new QComboBox(this), "CmbStatus");
    for (const QuoteStatus status : QuoteStatuses::all())
        m_cmbStatus->addItem(QuoteStatuses::name(status));
    // A status is a record of what the customer did: the wheel scrolling past never changes it.
    changeOnWheelOnlyWithFocus(m_cmbStatus);
    auto *statusLabel = new QLabel(tr("&Status:"), this);
    statusLabel->setBuddy(m_cmbStatus);
    m_cmdOpen = quotesControl(new QPushButton(tr("&Open"), this), "CmdOpen");
    m_cmdCancel = quotesControl(new QPushButton(tr("&Cancel"), this), "CmdCancel");
    m_cmdOpen->setDefault(true);
    layOut(findLabel, statusLabel);
    connectHandlers();
    refresh();
    fitColumns();
}

void FrmQuotes::fitColumns()
{
    // Every column as wide as its caption and the quotes listed, the customer the room left,
    // and the window wide enough for all six, as far as the screen goes.
    QHeaderView *header = m_grdQuotes->horizontalHeader();
    header->setSectionResizeMode(QuoteListModel::Customer, QHeaderView::Interactive);
    // The rows on screen are the newest quotes: the status and validity columns are made wide
    // enough for any of theirs ("declined", "12/31/26 (expired)") further down the list too.
    QStringList widest;
    for (const QuoteStatus status : QuoteStatuses::all())
        widest << QuoteStatuses::name(status);
    const QString expired = m_model->validUntilText(QDate(2026, 12, 31), true);
    const int padding = 2 * fontMetrics().averageCharWidth();
    const auto atLeast = [&](int column, const QStringList &texts) {
        int wanted = 0;
        for (const QString &text : texts)
            wanted = std::max(wanted, m_grdQuotes->fontMetrics().horizontalAdvance(text) + padding);
        if (header->sectionSize(column) < wanted)
            header->resizeSection(column, wanted);
    };
    int width = 0;
    for (int column = 0; column < QuoteListModel::ColumnCount; ++column) {
        if (column != QuoteListModel::Customer) {
            m_grdQuotes->resizeColumnToContents(column);
            if (column == QuoteListModel::Status)
                atLeast(column, widest);
            if (column == QuoteListModel::ValidUntil)
                atLeast(column, { expired });
            width += header->sectionSize(column);
        }
    }
    const int customer = fontMetrics().averageCharWidth() * 32;
    header->setSectionResizeMode(QuoteListModel::Customer, QHeaderView::Stretch);
    const int frame = 2 * m_grdQuotes->frameWidth()
        + m_grdQuotes->style()->pixelMetric(QStyle::PM_ScrollBarExtent) + 2 * layout()->spacing()
        + layout()->contentsMargins().left() + layout()->contentsMargins().right();
    int wanted = width + customer + frame;
    if (const QScreen *on = screen())
        wanted = std::min(wanted, on->availableGeometry().width() * 9 / 10);
    if (wanted > this->width())
        resize(wanted, height());
}

void FrmQuotes::layOut(QLabel *findLabel, QLabel *statusLabel)
{
    auto *find = new QHBoxLayout;
    find->addWidget(findLabel);
    find->addWidget(m_txtFind, 1);
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(m_count);
    buttons->addStretch();
    buttons->addWidget(statusLabel);
    buttons->addWidget(m_cmbStatus);
    buttons->addWidget(m_cmdOpen);
    buttons->addWidget(m_cmdCancel);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(find);
    layout->addWidget(m_grdQuotes, 1);
    layout->addLayout(buttons);
    resize(fontMetrics().horizontalAdvance(QLatin1Char('M')) * 52, fontMetrics().height() * 28);
}

void FrmQuotes::connectHandlers()
{
    connect(m_txtFind, &QLineEdit::textChanged, this, &FrmQuotes::TxtFind_Change);
    connect(m_cmdOpen, &QPushButton::clicked, this, &FrmQuotes::CmdOpen_Click);
    connect(m_cmdCancel, &QPushButton::clicked, this, &FrmQuotes::CmdCancel_Click);
    connect(m_cmbStatus, &QComboBox::activated, this, &FrmQuotes::CmbStatus_Click);
    connect(m_grdQuotes, &QTableView::doubleClicked, this, &FrmQuotes::CmdOpen_Click);
    connect(m_grdQuotes->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
        &FrmQuotes::showCurrentStatus);
    m_txtFind->installEventFilter(this);
    m_grdQuotes->installEventFilter(this);
}

bool FrmQuotes::eventFilter(QObject *watched, QEvent *event)
{
    // Up, Down, Page Up and Page Down in the search box move through the list, so a quote is
    // found and chosen without leaving the keyboard's place.
    if (watched == m_txtFind && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent *>(event)->key();
        if (key == Qt::Key_Up || key == Qt::Key_Down || key == Qt::Key_PageUp
            || key == Qt::Key_PageDown) {
            QKeyEvent copy(QEvent::KeyPress, key, Qt::NoModifier);
            QCoreApplication::sendEvent(m_grdQuotes, &copy);
            return true;
        }
    }
    // Ctrl+Tab and Ctrl+Shift+Tab leave the list too, as they leave the main window's grids.
    if (watched == m_grdQuotes && event->type() == QEvent::KeyPress) {
        const auto *key = static_cast<QKeyEvent *>(event);
        if (const int direction = KeyNavigation::ctrlTabDirection(key->keyCombination())) {
            focusNextPrevChild(direction > 0);
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}

void FrmQuotes::refresh()
{
    m_model->setQuotes(m_book.list(m_txtFind->text()));
    const int count = m_model->rowCount();
    m_count->setText(count == 1 ? tr("1 quote") : tr("%1 quotes").arg(m_locale.toString(count)));
    // An empty list from a book that could not be read is no "0 quotes": it says why.
    if (m_book.listFailed())
        m_count->setText(tr("The saved quotes cannot be read: %1.").arg(m_book.errorString()));
    if (count > 0)
        m_grdQuotes->setCurrentIndex(m_model->index(0, 0));
    m_cmdOpen->setEnabled(count > 0);
    m_cmbStatus->setEnabled(count > 0);
    showCurrentStatus();
}

int FrmQuotes::currentRow() const
{
    const QModelIndex current = m_grdQuotes->currentIndex();
    return current.isValid() ? current.row() : -1;
}

void FrmQuotes::showCurrentStatus()
{
    const int row = currentRow();
    if (row >= 0)
        m_cmbStatus->setCurrentIndex(int(m_model->quotes().at(row).status));
}

void FrmQuotes::TxtFind_Change()
{
    refresh();
}

void FrmQuotes::CmdOpen_Click()
{
    m_chosen = m_model->idAt(currentRow());
    if (m_chosen != 0)
        accept();
}

void FrmQuotes::CmdCancel_Click()
{
    m_chosen = 0;
    reject();
}

void FrmQuotes::CmbStatus_Click(int index)
{
    const int row = currentRow();
    const qint64 id = m_model->idAt(row);
    if (id == 0 || index < 0)
        return;
    const QuoteStatus status = QuoteStatuses::all().at(std::size_t(index));
    if (!m_book.setStatus(id, status)) {
        m_prompts.msgBox(tr("The status could not be saved: %1.").arg(m_book.errorString()),
            MsgStyle::Exclamation, windowTitle());
        showCurrentStatus();
        return;
    }
    m_model->setStatusAt(row, status);
    // "accepted" is wider than "draft": the column grows with it (and the validity with it).
    m_grdQuotes->resizeColumnToContents(QuoteListModel::Status);
    m_grdQuotes->resizeColumnToContents(QuoteListModel::ValidUntil);
    m_grdQuotes->setCurrentIndex(m_model->index(row, 0));
}

} // namespace tarnwick
