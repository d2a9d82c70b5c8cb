#include "exchange/ui/frmupdateui.h"

#include "platform/qt/wheelguard.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollArea>
#include <QTableWidget>
#include <QTimer>
#include <QVBoxLayout>

namespace tarnwick {

namespace {

/// The label of each list, by list index, with its mnemonic. The price lists have none: their
/// letters are all taken by the labels around them, and each follows its price point in the
/// tab order.
const char *const FieldLabels[ColumnMapping::ListCount] = { "&Part Number:", "Product &Name:",
    "Price Point &1:", "&List Price:", "Price 1:", "Price Point &2:", "&Includes:", "N&otes:",
    "Price 2:", "Price Point &3:", "Price 3:", "Price Point &4:", "Price 4:", "Price Point &5:",
    "Price 5:" };

/// The lists of the frame "Product Information", top to bottom.
constexpr int ProductLists[] = { 0, 1, 3, 7, 6 };
/// The lists of the frame "Discount Schedule": price point and price of each level.
constexpr int DiscountLists[][2] = { { 2, 4 }, { 5, 8 }, { 9, 10 }, { 11, 12 }, { 13, 14 } };

/// Wide enough for an entry such as "Col 12-  Price Point 3".
constexpr int ListCharacters = 22;
/// Where the screen has no room for that (a large font on a small screen), a list may narrow
/// to this; its open list still shows every entry whole.
constexpr int ShortestListCharacters = 12;
/// The sample grid shows this many rows without scrolling.
constexpr int SampleRows = 5;

/// A scroll area that asks for the whole of its contents: the window decides how much of it the
/// screen has room for (QScrollArea's own hint stops at a fixed number of text lines).
class ContentsScrollArea : public QScrollArea
{
public:
    using QScrollArea::QScrollArea;
    QSize sizeHint() const override
    {
        const int frame = 2 * frameWidth();
        return widget() != nullptr ? widget()->sizeHint() + QSize(frame, frame)
                                   : QScrollArea::sizeHint();
    }
};

/// Gives a control its control name as object name and accessible description.
template <typename W> W *named(W *widget, const QString &name)
{
    widget->setObjectName(name);
    widget->setAccessibleDescription(name);
    return widget;
}

} // namespace

QString FrmUpdateUi::fieldListName(int index)
{
    return QStringLiteral("CmbField(%1)").arg(index);
}

void FrmUpdateUi::setupUi(QDialog *window)
{
    window->setObjectName(QStringLiteral("FrmUpdate"));
    window->setAccessibleDescription(window->objectName());
    window->setWindowTitle(QStringLiteral("Update"));
    createLists(window);

    Label1 = named(new QLabel(QStringLiteral("Select the spreadsheet column that corresponds to "
                                             "the Tarnwick category."),
                       window),
        QStringLiteral("Label1"));
    Label1->setWordWrap(true);
    ChkIgnore = named(new QCheckBox(QStringLiteral("&First row contains descriptions"), window),
        QStringLiteral("ChkIgnore"));
    ChkIgnore->setChecked(true);
    createMappingHelpers(window);

    CmdOK = named(new QPushButton(QStringLiteral("OK"), window), QStringLiteral("CmdOK"));
    CmdOK->setDefault(true);
    CmdCancel =
        named(new QPushButton(QStringLiteral("Cancel"), window), QStringLiteral("CmdCancel"));
    CmdHelp = named(new QPushButton(QStringLiteral("&Help"), window), QStringLiteral("CmdHelp"));
    Timer1 = new QTimer(window);
    Timer1->setObjectName(QStringLiteral("Timer1"));

    auto *fields = new QVBoxLayout;
    fields->addWidget(createProductFrame(window));
    fields->addWidget(createDiscountFrame(window));
    auto *helpers = new QHBoxLayout;
    helpers->addWidget(CmdMatch);
    helpers->addWidget(CmdLast);
    helpers->addStretch();
    fields->addLayout(helpers);
    fields->addWidget(LblSample);
    fields->addWidget(GrdSample, 1);
    // The choices that apply to the whole import stand beside the mapping, under the buttons:
    // below it they made the window taller than a 1280×800 screen.
    auto *buttons = new QVBoxLayout;
    buttons->addWidget(CmdOK);
    buttons->addWidget(CmdCancel);
    buttons->addWidget(CmdHelp);
    buttons->addSpacing(CmdOK->sizeHint().height());
    buttons->addWidget(ChkIgnore);
    buttons->addWidget(createActionsFrame(window));
    buttons->addStretch();
    auto *mapping = new QWidget;
    mapping->setObjectName(QStringLiteral("Mapping"));
    mapping->setLayout(fields);
    fields->setContentsMargins(0, 0, 0, 0);
    MappingArea = new ContentsScrollArea(window);
    MappingArea->setObjectName(QStringLiteral("MappingArea"));
    MappingArea->setFrameShape(QFrame::NoFrame);
    MappingArea->setWidgetResizable(true);
    MappingArea->setWidget(mapping);
    auto *body = new QHBoxLayout;
    body->addWidget(MappingArea, 1);
    body->addLayout(buttons);
    auto *layout = new QVBoxLayout(window);
    layout->addWidget(Label1);
    layout->addLayout(body);
    orderTabs();
}

void FrmUpdateUi::createLists(QDialog *window)
{
    for (int index = 0; index < ColumnMapping::ListCount; ++index) {
        auto *list = named(new QComboBox(window), fieldListName(index));
        list->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
        list->setMinimumContentsLength(ShortestListCharacters);
        list->setMinimumWidth(list->minimumSizeHint().width());
        list->setMinimumContentsLength(ListCharacters);
        // The wheel scrolling past a list never changes the column it maps.
        changeOnWheelOnlyWithFocus(list);
        auto *label = named(new QLabel(QString::fromLatin1(FieldLabels[index]), window),
            QStringLiteral("LblField(%1)").arg(index));
        label->setBuddy(list);
        CmbField[std::size_t(index)] = list;
        LblField[std::size_t(index)] = label;
    }
}

QGroupBox *FrmUpdateUi::createProductFrame(QDialog *window)
{
    FraProductInformation = named(new QGroupBox(QStringLiteral("Product Information"), window),
        QStringLiteral("FraProductInformation"));
    Label2 = named(new QLabel(QStringLiteral("Spreadsheet Column"), FraProductInformation),
        QStringLiteral("Label2"));
    auto *grid = new QGridLayout(FraProductInformation);
    grid->addWidget(Label2, 0, 1);
    int row = 1;
    for (const int index : ProductLists) {
        grid->addWidget(LblField[std::size_t(index)], row, 0);
        grid->addWidget(CmbField[std::size_t(index)], row, 1);
        ++row;
    }
    grid->setColumnStretch(1, 1);
    return FraProductInformation;
}

QGroupBox *FrmUpdateUi::createDiscountFrame(QDialog *window)
{
    FraDiscountSchedule = named(new QGroupBox(QStringLiteral("Discount Schedule"), window),
        QStringLiteral("FraDiscountSchedule"));
    auto *grid = new QGridLayout(FraDiscountSchedule);
    int row = 0;
    for (const auto &level : DiscountLists) {
        for (int side = 0; side < 2; ++side) {
            grid->addWidget(LblField[std::size_t(level[side])], row, 2 * side);
            grid->addWidget(CmbField[std::size_t(level[side])], row, 2 * side + 1);
        }
        ++row;
    }
    grid->setColumnStretch(1, 1);
    grid->setColumnStretch(3, 1);
    return FraDiscountSchedule;
}

QGroupBox *FrmUpdateUi::createActionsFrame(QDialog *window)
{
    FraActions =
        named(new QGroupBox(QStringLiteral("Actions"), window), QStringLiteral("FraActions"));
    OptAdd = named(new QRadioButton(QStringLiteral("&Add new products to Brevary"), FraActions),
        QStringLiteral("OptAdd"));
    OptAdd->setChecked(true);
    OptUpdate = named(new QRadioButton(QStringLiteral("&Update existing products"), FraActions),
        QStringLiteral("OptUpdate"));
    auto *layout = new QVBoxLayout(FraActions);
    layout->addWidget(OptAdd);
    layout->addWidget(OptUpdate);
    return FraActions;
}

void FrmUpdateUi::createMappingHelpers(QDialog *window)
{
    CmdMatch = named(
        new QPushButton(QStringLiteral("&Match Headers"), window), QStringLiteral("CmdMatch"));
    CmdMatch->setToolTip(QStringLiteral("Chooses for every field the column headed with its name"));
    CmdLast =
        named(new QPushButton(QStringLiteral("Las&t Mapping"), window), QStringLiteral("CmdLast"));
    CmdLast->setToolTip(QStringLiteral(
        "Chooses the columns used last time for a sheet with the same column headings"));
    GrdSample = named(new QTableWidget(window), QStringLiteral("GrdSample"));
    GrdSample->setEditTriggers(QAbstractItemView::NoEditTriggers);
    GrdSample->setTabKeyNavigation(false);
    GrdSample->setWordWrap(false);
    GrdSample->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    GrdSample->setAccessibleName(QStringLiteral("Sample rows"));
    // As tall as its rows where there is room; on a small screen it gives up rows first.
    const int rowHeight = GrdSample->verticalHeader()->defaultSectionSize();
    GrdSample->setMinimumHeight(rowHeight * 4);
    GrdSample->setMaximumHeight(rowHeight * (SampleRows + 3));
    GrdSample->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    LblSample =
        named(new QLabel(QStringLiteral("&Sample rows:"), window), QStringLiteral("LblSample"));
    LblSample->setBuddy(GrdSample);
}

void FrmUpdateUi::orderTabs()
{
    QList<QWidget *> order;
    for (const int index : ProductLists)
        order << CmbField[std::size_t(index)];
    for (const auto &level : DiscountLists)
        order << CmbField[std::size_t(level[0])] << CmbField[std::size_t(level[1])];
    order << CmdMatch << CmdLast << GrdSample << ChkIgnore << OptAdd << OptUpdate << CmdOK
          << CmdCancel << CmdHelp;
    for (qsizetype i = 1; i < order.size(); ++i)
        QWidget::setTabOrder(order[i - 1], order[i]);
}

} // namespace tarnwick
