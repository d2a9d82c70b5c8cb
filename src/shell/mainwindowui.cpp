#include "shell/mainwindowui.h"

#include "shell/amountbox.h"
#include "shell/gridview.h"
#include "shell/statustext.h"

#include <QFormLayout>
#include <QFrame>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QPlainTextEdit>
#include <QStatusBar>
#include <QTabWidget>
#include <QTableView>
#include <QVBoxLayout>

namespace tarnwick {

namespace {

template <typename W> W *named(W *widget, const char *name)
{
    widget->setObjectName(QString::fromLatin1(name));
    return widget;
}

void setUpGrid(QTableView *grid, const QString &accessibleName)
{
    grid->setAccessibleName(accessibleName);
    grid->setSelectionBehavior(QAbstractItemView::SelectRows);
    grid->setSelectionMode(QAbstractItemView::SingleSelection);
    grid->setEditTriggers(QAbstractItemView::NoEditTriggers);
    grid->setAlternatingRowColors(true);
    grid->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    grid->horizontalHeader()->setHighlightSections(false);
    grid->verticalHeader()->setDefaultSectionSize(grid->fontMetrics().height() + 6);
    grid->verticalHeader()->setMinimumWidth(
        grid->fontMetrics().horizontalAdvance(QStringLiteral("0000")));
}

QPlainTextEdit *createTextBox(QGroupBox *frame, const char *name)
{
    auto *box = named(new QPlainTextEdit(frame), name);
    box->setReadOnly(true);
    box->setTabChangesFocus(true);
    // Two lines at the least, so the whole window still fits its default 6500-twip height.
    box->setMinimumHeight(box->fontMetrics().lineSpacing() * 2 + 2 * box->frameWidth() + 8);
    box->setAccessibleName(frame->title().remove(QLatin1Char('&')));
    auto *layout = new QVBoxLayout(frame);
    layout->setContentsMargins(6, 4, 6, 6);
    layout->addWidget(box);
    return box;
}

QLineEdit *createTotalBox(QWidget *parent, const char *name)
{
    auto *box = named(new AmountBox(parent), name);
    box->setReadOnly(true);
    box->setAlignment(Qt::AlignRight);
    return box;
}

} // namespace

void MainWindowUi::setupUi(QMainWindow *window)
{
    Client = named(new QWidget(window), "Client");
    GrdMain = named(new GridView(Client), "GrdMain");
    setUpGrid(GrdMain, QObject::tr("Products"));
    // Ctrl and Shift clicks choose several products for the handheld export.
    GrdMain->setSelectionMode(QAbstractItemView::ExtendedSelection);
    Frame1 = named(new QFrame(Client), "Frame1");
    Frame1->setFrameShape(QFrame::VLine);
    Frame1->setFrameShadow(QFrame::Raised);
    Frame1->setCursor(Qt::SplitHCursor);
    Frame1->setAccessibleName(QObject::tr("Splitter between products and details"));
    SSTabmain = named(new QTabWidget(Client), "SSTabmain");
    SSTabmain->addTab(createProductPage(SSTabmain), QObject::tr("Pr&oduct"));
    SSTabmain->addTab(createQuotePage(SSTabmain), QObject::tr("&Quote"));
    window->setCentralWidget(Client);
    QWidget::setTabOrder(GrdMain, SSTabmain);

    window->statusBar()->setObjectName(QStringLiteral("sbStatusBar"));
    sbPanel1 = named(new StatusText(window), "sbPanel1");
    sbPanel1->setMinimumWidth(160);
    window->statusBar()->addWidget(sbPanel1, 1);
    sbUnsafe = named(new UnsafeMark(window->statusBar()), "sbUnsafe");
    sbUnsafe->setAccessibleName(QObject::tr("Warning"));
}

QWidget *MainWindowUi::createProductPage(QWidget *parent)
{
    auto *page = new QWidget(parent);
    page->setObjectName(QStringLiteral("tabProduct"));
    FraPrice = named(new QGroupBox(QObject::tr("Price"), page), "FraPrice");
    TxtPrice = named(new AmountBox(FraPrice), "TxtPrice");
    TxtPrice->setReadOnly(true);
    auto *priceLabel = new QLabel(QObject::tr("List pri&ce:"), FraPrice);
    priceLabel->setBuddy(TxtPrice);
    LblPriceSchedule =
        named(new QLabel(QObject::tr("Price Schedule"), FraPrice), "LblPriceSchedule");
    PriceSchedule = named(new GridView(FraPrice), "PriceSchedule");
    setUpGrid(PriceSchedule, QObject::tr("Price Schedule"));
    PriceSchedule->setSelectionBehavior(QAbstractItemView::SelectItems);
    LblPriceSchedule->setBuddy(PriceSchedule);
    PriceSchedule->setMinimumHeight(PriceSchedule->verticalHeader()->defaultSectionSize() * 3);
    auto *priceLayout = new QFormLayout(FraPrice);
    priceLayout->setContentsMargins(6, 4, 6, 6);
    priceLayout->setVerticalSpacing(4);
    priceLayout->addRow(priceLabel, TxtPrice);
    priceLayout->addRow(LblPriceSchedule);
    priceLayout->addRow(PriceSchedule);

    FraMain = named(new QGroupBox(QObject::tr("&Includes"), page), "FraMain");
    Txtincludes = createTextBox(FraMain, "Txtincludes");
    FraNotes = named(new QGroupBox(QObject::tr("&Notes"), page), "FraNotes");
    Txtnotes = createTextBox(FraNotes, "Txtnotes");

    auto *layout = new QVBoxLayout(page);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->setSpacing(4);
    layout->addWidget(FraPrice, 3);
    layout->addWidget(FraMain, 2);
    layout->addWidget(FraNotes, 2);
    return page;
}

QWidget *MainWindowUi::createQuotePage(QWidget *parent)
{
    auto *page = new QWidget(parent);
    page->setObjectName(QStringLiteral("tabQuote"));
    FraQuote = named(new QGroupBox(QObject::tr("Quote Details"), page), "FraQuote");
    GrdQuote = named(new GridView(FraQuote), "GrdQuote");
    setUpGrid(GrdQuote, QObject::tr("Quote"));
    TxtTotal = createTotalBox(FraQuote, "TxtTotal");
    TxtDisc = createTotalBox(FraQuote, "TxtDisc");
    TxtQdisper = createTotalBox(FraQuote, "TxtQdisper");
    auto *totals = new QFormLayout;
    auto *lblTotal = named(new QLabel(QObject::tr("Total:"), FraQuote), "LblTotal");
    auto *lblDisc = named(new QLabel(QObject::tr("Discount Amount:"), FraQuote), "LblDisc");
    auto *lblPercent =
        named(new QLabel(QObject::tr("Discount Percent:"), FraQuote), "LblQDiscpercent");
    lblTotal->setBuddy(TxtTotal);
    lblDisc->setBuddy(TxtDisc);
    lblPercent->setBuddy(TxtQdisper);
    totals->addRow(lblTotal, TxtTotal);
    totals->addRow(lblDisc, TxtDisc);
    totals->addRow(lblPercent, TxtQdisper);
    LblNextBreak = named(new QLabel(FraQuote), "LblNextBreak");
    LblNextBreak->setTextFormat(Qt::PlainText); // names a part number
    LblNextBreak->setWordWrap(true);
    // Assistive tools read the label's own text, as they read any label.
    auto *frameLayout = new QVBoxLayout(FraQuote);
    frameLayout->addWidget(GrdQuote, 1);
    frameLayout->addLayout(totals);
    frameLayout->addWidget(LblNextBreak);
    auto *layout = new QVBoxLayout(page);
    layout->addWidget(FraQuote);
    return page;
}

} // namespace tarnwick
