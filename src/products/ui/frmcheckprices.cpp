#include "products/ui/frmcheckprices.h"

#include "core/formats.h"
#include "platform/qt/windowsize.h"

#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

namespace tarnwick {

FrmCheckPrices::FrmCheckPrices(QWidget *parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("FrmCheckPrices"));
    setWindowTitle(Caption);
    m_label = new QLabel(this);
    m_label->setObjectName(QStringLiteral("LblProblems"));
    m_label->setWordWrap(true);
    m_grid = new QTableWidget(0, 2, this);
    m_grid->setObjectName(QStringLiteral("GrdProblems"));
    m_grid->setAccessibleName(tr("Products whose price points need attention"));
    m_grid->setHorizontalHeaderLabels({ tr("Part Number"), tr("What Is Wrong") });
    m_grid->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_grid->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_grid->setSelectionMode(QAbstractItemView::SingleSelection);
    // A list to choose from: Tab goes on to Close, the arrows move between the products.
    m_grid->setTabKeyNavigation(false);
    m_grid->setWordWrap(true);
    m_grid->horizontalHeader()->setStretchLastSection(true);
    m_grid->verticalHeader()->setVisible(false);
    m_label->setBuddy(m_grid);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    m_close = buttons->button(QDialogButtonBox::Close);
    m_close->setObjectName(QStringLiteral("CmdClose"));
    // Enter chooses a row of the list; it must not also press Close.
    m_close->setAutoDefault(false);
    m_close->setDefault(false);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::close);
    // A double-click and Enter both activate a row.
    connect(m_grid, &QAbstractItemView::activated, this, &FrmCheckPrices::GrdProblems_DblClick);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_label);
    layout->addWidget(m_grid, 1);
    layout->addWidget(buttons);
    resize(WindowSize::forFont(*this, QSize(620, 360)));
    // Row heights follow the width the reasons get once the window is laid out.
    connect(m_grid->horizontalHeader(), &QHeaderView::sectionResized, this, [this](int section) {
        if (section == 1)
            fitRows();
    });
}

void FrmCheckPrices::showEvent(QShowEvent *event)
{
    QDialog::showEvent(event);
    fitRows();
}

void FrmCheckPrices::fitRows()
{
    // Wrapped reasons for a list a person reads through; a very long list keeps one line per
    // row (the whole reason is in the tool tip), so the window never waits on the layout.
    constexpr int MostRowsFitted = 500;
    if (m_grid->rowCount() <= MostRowsFitted)
        m_grid->resizeRowsToContents();
}

void FrmCheckPrices::setProblems(const std::vector<ProductLadderProblems> &problems)
{
    m_problems = problems;
    m_grid->setRowCount(int(problems.size()));
    for (int i = 0; i < int(problems.size()); ++i) {
        const ProductLadderProblems &entry = problems.at(std::size_t(i));
        m_grid->setItem(i, 0, new QTableWidgetItem(entry.partNumber));
        auto *what = new QTableWidgetItem(entry.text);
        what->setToolTip(plainToolTip(entry.text));
        m_grid->setItem(i, 1, what);
    }
    m_grid->resizeColumnToContents(0);
    if (isVisible())
        fitRows();
    m_label->setText(problems.empty()
            ? QString(NoProblemsText)
            : tr("Products whose price points need &attention (double-click one to go to it):"));
    // With nothing to list, the list is no place for the keyboard: Close has it, and Enter
    // presses it.
    m_grid->setEnabled(!problems.empty());
    m_close->setDefault(problems.empty());
    if (problems.empty())
        m_close->setFocus();
    else
        m_grid->setCurrentCell(0, 0);
}

void FrmCheckPrices::GrdProblems_DblClick(const QModelIndex &index)
{
    if (!index.isValid() || index.row() >= int(m_problems.size()))
        return;
    const ProductLadderProblems &entry = m_problems.at(std::size_t(index.row()));
    Q_EMIT productChosen(entry.row, entry.partNumber);
}

} // namespace tarnwick
