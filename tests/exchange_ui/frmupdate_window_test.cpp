// The "Update" window by itself: its controls, the columns it lists from real workbooks, the
// keyboard, help, and the messages about files and mappings it cannot use.
#include "frmupdatefixture.h"

#include "exchange/columnmapping.h"
#include "support/keyplaces.h"

#include <QAccessible>
#include <QAccessibleActionInterface>
#include <QApplication>
#include <QCheckBox>
#include <QCoreApplication>
#include <QGroupBox>
#include <QKeyEvent>
#include <QKeySequence>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QScopeGuard>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QStyle>
#include <QTest>
#include <QTimer>

#include <algorithm>
#include <set>

using namespace tarnwick;
using namespace tarnwick::test;

namespace {

const QStringList SampleEntries { "Col 0-  Part Number", "Col 1-  Product Name", "Col 2-  Price",
    "Col 3-  Notes", "Col 4-  Includes", "Col 5-  Price Point 1", "Col 6-  Price 1" };

QString helpFileIn(const TempAppFolder &folder)
{
    return folder.filePath(QStringLiteral("Tarnwick Help.chm"));
}

} // namespace

TEST_F(FrmUpdateTest, EveryNamedControlCarriesItsNameForAssistiveTools)
{
    FrmUpdate &form = open(workbook("sample.xls"));
    EXPECT_EQ(form.objectName(), "FrmUpdate");
    EXPECT_EQ(form.windowTitle(), "Update");
    QStringList names { "ChkIgnore", "OptAdd", "Label1", "Label2", "CmdOK", "CmdCancel",
        "CmdHelp" };
    for (int index = 0; index < ColumnMapping::ListCount; ++index)
        names << QStringLiteral("CmbField(%1)").arg(index);
    for (const QString &name : names) {
        auto *widget = form.findChild<QWidget *>(name);
        ASSERT_NE(widget, nullptr) << name.toStdString();
        EXPECT_EQ(widget->accessibleDescription(), name);
    }
    auto *timer = form.findChild<QTimer *>(QStringLiteral("Timer1"));
    ASSERT_NE(timer, nullptr);
    EXPECT_EQ(timer->interval(), 2000);
    EXPECT_FALSE(timer->isActive());
}

TEST_F(FrmUpdateTest, CaptionsOfTheControls)
{
    FrmUpdate &form = open(workbook("sample.xls"));
    const auto text = [&](const char *name) {
        auto *widget = form.findChild<QWidget *>(QString::fromLatin1(name));
        if (auto *label = qobject_cast<QLabel *>(widget))
            return label->text();
        if (auto *button = qobject_cast<QAbstractButton *>(widget))
            return button->text();
        return QString();
    };
    EXPECT_EQ(
        text("Label1"), "Select the spreadsheet column that corresponds to the Tarnwick category.");
    EXPECT_EQ(text("Label2"), "Spreadsheet Column");
    EXPECT_EQ(text("ChkIgnore").remove('&'), "First row contains descriptions");
    EXPECT_EQ(text("OptAdd").remove('&'), "Add new products to Brevary");
    EXPECT_EQ(text("CmdOK"), "OK");
    EXPECT_EQ(text("CmdCancel"), "Cancel");
    EXPECT_EQ(text("CmdHelp").remove('&'), "Help");
    EXPECT_TRUE(form.findChild<QCheckBox *>("ChkIgnore")->isChecked());
    EXPECT_TRUE(form.findChild<QRadioButton *>("OptAdd")->isChecked());
    const auto *actions = qobject_cast<QGroupBox *>(form.findChild<QWidget *>("OptAdd")->parent());
    ASSERT_NE(actions, nullptr);
    EXPECT_EQ(actions->title(), "Actions");
}

TEST_F(FrmUpdateTest, TheListsSitInTheirFramesWithTheirLabels)
{
    FrmUpdate &form = open(workbook("sample.xls"));
    const QStringList labels { "Part Number:", "Product Name:", "Price Point 1:", "List Price:",
        "Price 1:", "Price Point 2:", "Includes:", "Notes:", "Price 2:", "Price Point 3:",
        "Price 3:", "Price Point 4:", "Price 4:", "Price Point 5:", "Price 5:" };
    const std::set<int> productLists { 0, 1, 3, 6, 7 };
    for (int index = 0; index < ColumnMapping::ListCount; ++index) {
        QComboBox *box = list(index);
        const QLabel *label = nullptr;
        for (const QLabel *candidate : form.findChildren<QLabel *>())
            if (candidate->buddy() == box)
                label = candidate;
        ASSERT_NE(label, nullptr) << index;
        EXPECT_EQ(label->text().remove('&'), labels[index]) << index;
        const auto *frame = qobject_cast<QGroupBox *>(box->parentWidget());
        ASSERT_NE(frame, nullptr) << index;
        EXPECT_EQ(
            frame->title(), productLists.count(index) ? "Product Information" : "Discount Schedule")
            << index;
        EXPECT_EQ(label->parentWidget(), frame) << index;
    }
    // Price points on the left, their prices on the right, one level per row.
    const std::pair<int, int> levels[] = { { 2, 4 }, { 5, 8 }, { 9, 10 }, { 11, 12 }, { 13, 14 } };
    for (const auto &[point, price] : levels) {
        EXPECT_LT(list(point)->x(), list(price)->x()) << point;
        EXPECT_EQ(list(point)->y(), list(price)->y()) << point;
    }
    EXPECT_LT(list(2)->y(), list(5)->y());
}

TEST_F(FrmUpdateTest, ListsTheColumnsOfTheFirstWorksheet)
{
    open(workbook("sample.xls"));
    for (int index = 0; index < ColumnMapping::ListCount; ++index) {
        QComboBox *box = list(index);
        QStringList items;
        for (int i = 0; i < box->count(); ++i)
            items << box->itemText(i);
        if (index <= 1) {
            EXPECT_EQ(items, SampleEntries) << index;
            EXPECT_EQ(box->currentIndex(), -1) << index;
            EXPECT_EQ(box->placeholderText(), "Required");
        } else {
            EXPECT_EQ(items, QStringList { "Skip Field" } + SampleEntries) << index;
            EXPECT_EQ(box->currentText(), "Skip Field") << index;
        }
    }
    EXPECT_TRUE(fakes.prompts.shown().empty());
}

TEST_F(FrmUpdateTest, EveryFormatListsTheSameColumns)
{
    for (const char *name : { "sample.xlsx", "sample.ods", "sample.txt" }) {
        open(workbook(QString::fromLatin1(name)));
        QStringList items;
        for (int i = 0; i < list(0)->count(); ++i)
            items << list(0)->itemText(i);
        EXPECT_EQ(items, SampleEntries) << name;
    }
}

TEST_F(FrmUpdateTest, AnEmptyHeaderCellHidesTheColumnsToItsRight)
{
    open(workbook("gap.xls"));
    EXPECT_EQ(list(0)->count(), 2);
    EXPECT_EQ(list(14)->count(), 3);
}

TEST_F(FrmUpdateTest, AFileThatIsNoWorkbookIsReportedAndChangesNothing)
{
    open(workbook("notaworkbook.xls"));
    const int number = openWorkbook(workbook("notaworkbook.xls")).errorNumber;
    ASSERT_EQ(fakes.prompts.shown().size(), 1U);
    EXPECT_EQ(fakes.prompts.shown()[0].text, "This file is not an Excel 97 file.");
    EXPECT_EQ(fakes.prompts.shown()[0].title, QStringLiteral("Error %1").arg(number));
    EXPECT_EQ(list(0)->count(), 0);
    EXPECT_EQ(list(3)->count(), 1);
    clickOk();
    EXPECT_EQ(fakes.prompts.texts().last(), "Missing required fields");
    EXPECT_EQ(catalogue.rowCount(), 1);
    EXPECT_EQ(products.Count(), 1);
    EXPECT_TRUE(window->isVisible());
}

// The system gave no reader (too many files open): the message says so, not that the file is
// no workbook.
TEST_F(FrmUpdateTest, AReaderThatCouldNotBeStartedIsNotBlamedOnTheFile)
{
    WorkbookReaderOptions options = testReader();
    options.program = folder.filePath(QStringLiteral("no-such-reader"));
    FrmUpdate update(
        services, catalogue, [](ProductChanges) {}, locale,
        WorkbookReaderProcess::read(workbook("sample.xls"), options));
    ASSERT_EQ(fakes.prompts.shown().size(), 1U);
    EXPECT_TRUE(fakes.prompts.shown()[0].text.startsWith(
        QStringLiteral("The spreadsheet could not be read: Tarnwick could not start the part of "
                       "itself that reads spreadsheets (")))
        << fakes.prompts.shown()[0].text.toStdString();
}

TEST_F(FrmUpdateTest, EmptyA1ListsNothingAndOkAsksForTheRequiredFields)
{
    open(workbook("a1empty.xls"));
    EXPECT_EQ(list(0)->count(), 0);
    clickOk();
    ASSERT_EQ(fakes.prompts.shown().size(), 1U);
    EXPECT_EQ(fakes.prompts.shown()[0].text, "Missing required fields");
    EXPECT_EQ(fakes.prompts.shown()[0].title, "Input error");
    EXPECT_EQ(fakes.prompts.shown()[0].style, MsgStyle::OkOnly);
    EXPECT_TRUE(window->isVisible());
}

TEST_F(FrmUpdateTest, OkWithoutTheProductNameImportsNothing)
{
    open(workbook("sample.xls"));
    choose(0, 0);
    clickOk();
    EXPECT_EQ(fakes.prompts.texts(), QStringList { "Missing required fields" });
    EXPECT_EQ(catalogue.rowCount(), 1);
    EXPECT_FALSE(window->findChild<QTimer *>("Timer1")->isActive());
}

TEST_F(FrmUpdateTest, OptAddAsksForTheProductNameAgain)
{
    open(workbook("sample.xls"));
    choose(1, 1);
    auto *optAdd = window->findChild<QRadioButton *>("OptAdd");
    QTest::mouseClick(optAdd, Qt::LeftButton, {}, QPoint(4, optAdd->height() / 2));
    EXPECT_EQ(list(1)->currentIndex(), -1);
    EXPECT_EQ(list(1)->currentText(), "");
}

TEST_F(FrmUpdateTest, AnActionChosenByAnAssistiveToolIsTakenAsAClickWould)
{
    open(workbook("sample.xls"));
    auto *optUpdate = window->findChild<QRadioButton *>("OptUpdate");
    QAccessibleInterface *accessible = QAccessible::queryAccessibleInterface(optUpdate);
    ASSERT_NE(accessible, nullptr);
    ASSERT_NE(accessible->actionInterface(), nullptr);
    accessible->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
    ASSERT_TRUE(optUpdate->isChecked());
    EXPECT_EQ(list(1)->placeholderText(), ColumnMapping::SkipField)
        << "updating needs no product name";
    auto *optAdd = window->findChild<QRadioButton *>("OptAdd");
    QAccessible::queryAccessibleInterface(optAdd)->actionInterface()->doAction(
        QAccessibleActionInterface::toggleAction());
    ASSERT_TRUE(optAdd->isChecked());
    EXPECT_EQ(list(1)->placeholderText(), ColumnMapping::Required);
}

TEST_F(FrmUpdateTest, F1OpensTheWindowsHelpTopicAndHelpTheHelpFile)
{
    open(workbook("sample.xls"));
    list(3)->setFocus();
    QTest::keyClick(list(3), Qt::Key_F1);
    QTest::mouseClick(window->findChild<QPushButton *>("CmdHelp"), Qt::LeftButton);
    EXPECT_EQ(fakes.help.calls,
        QStringList({ helpFileIn(folder) + "|15|1090", helpFileIn(folder) + ">Main|0|0" }));
    EXPECT_TRUE(window->isVisible());
}

TEST_F(FrmUpdateTest, MnemonicsAreUniqueAndReachTheirControls)
{
    FrmUpdate &form = open(workbook("sample.xls"));
    std::set<QString> keys;
    int count = 0;
    const auto add = [&](const QString &text) {
        const QKeySequence key = QKeySequence::mnemonic(text);
        if (key.isEmpty())
            return;
        ++count;
        keys.insert(key.toString());
    };
    for (const QLabel *label : form.findChildren<QLabel *>())
        add(label->text());
    for (const QAbstractButton *button : form.findChildren<QAbstractButton *>())
        add(button->text());
    EXPECT_EQ(int(keys.size()), count);
    EXPECT_GE(count, 13);
    QTest::keyClick(&form, Qt::Key_N, Qt::AltModifier);
    EXPECT_EQ(QApplication::focusWidget(), list(1));
    QTest::keyClick(&form, Qt::Key_3, Qt::AltModifier);
    EXPECT_EQ(QApplication::focusWidget(), list(9));
    // On French AZERTY the key marked 1 types "&": Alt with it still reaches Price Point 1.
    QKeyEvent azerty(QEvent::KeyPress, Qt::Key_Ampersand, Qt::AltModifier, topRowScanCode(1), 0, 0,
        QStringLiteral("&"));
    QApplication::sendEvent(QApplication::focusWidget(), &azerty);
    EXPECT_EQ(QApplication::focusWidget(), list(2));
}

TEST_F(FrmUpdateTest, TabGoesThroughTheListsInTheirVisualOrder)
{
    FrmUpdate &form = open(workbook("sample.xls"));
    list(0)->setFocus();
    ASSERT_TRUE(QTest::qWaitFor([&] { return QApplication::focusWidget() == list(0); }));
    QList<QWidget *> expected;
    for (const int index : { 1, 3, 7, 6, 2, 4, 5, 8, 9, 10, 11, 12, 13, 14 })
        expected << list(index);
    // Under the lists the mapping helpers and the sample (no mapping is kept yet, so "Last
    // Mapping" is disabled), then the options (the two actions are one stop, the arrow keys
    // choose between them) and the buttons.
    for (const char *name :
        { "CmdMatch", "GrdSample", "ChkIgnore", "OptAdd", "CmdOK", "CmdCancel", "CmdHelp" })
        expected << form.findChild<QWidget *>(QString::fromLatin1(name));
    for (QWidget *next : expected) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        EXPECT_EQ(QApplication::focusWidget(), next) << next->objectName().toStdString();
    }
}

TEST_F(FrmUpdateTest, EscapeAndCancelUnloadTheWindow)
{
    open(workbook("sample.xls"));
    QTest::keyClick(list(0), Qt::Key_Escape);
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(unloads, 1);
    open(workbook("sample.xls"));
    QTest::mouseClick(window->findChild<QPushButton *>("CmdCancel"), Qt::LeftButton);
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(unloads, 2);
    EXPECT_EQ(catalogueChanges, 0);
    EXPECT_EQ(catalogue.rowCount(), 1);
}

// A font half as big again (a 144 dpi desktop) on a 1280×800 screen: the window still fits,
// its buttons and actions stay in view, and the mapping scrolls, following the keyboard.
TEST_F(FrmUpdateTest, WithALargeFontTheMappingScrollsAndTheButtonsStayOnTheScreen)
{
    const QFont usual = QApplication::font();
    QFont large = usual;
    large.setPointSizeF(usual.pointSizeF() * 1.5);
    QApplication::setFont(large);
    const auto restore = qScopeGuard([&usual] { QApplication::setFont(usual); });
    FrmUpdate &update = open(workbook("sample.xlsx"));
    const QScreen *screen = update.screen();
    ASSERT_NE(screen, nullptr);
    const int titleBar = update.style()->pixelMetric(QStyle::PM_TitleBarHeight, nullptr, &update);
    const QSize room = screen->availableGeometry().size() - QSize(0, titleBar);
    auto *area = update.findChild<QScrollArea *>(QStringLiteral("MappingArea"));
    ASSERT_NE(area, nullptr);
    const QSize least = area->widget()->minimumSizeHint();
    ASSERT_TRUE(least.width() > area->viewport()->width() || least.height() > room.height())
        << "with this font the mapping alone needs more room than the window has: " << least.width()
        << "x" << least.height();
    EXPECT_LE(update.width(), room.width());
    EXPECT_LE(update.height(), room.height());
    const QRect inside = update.rect();
    for (const char *name :
        { "OptAdd", "OptUpdate", "ChkIgnore", "CmdOK", "CmdCancel", "CmdHelp" }) {
        const auto *control = update.findChild<QWidget *>(QString::fromLatin1(name));
        ASSERT_NE(control, nullptr) << name;
        const QRect place(control->mapTo(&update, QPoint(0, 0)), control->size());
        EXPECT_TRUE(inside.contains(place)) << name;
    }
    EXPECT_GT(area->horizontalScrollBar()->maximum() + area->verticalScrollBar()->maximum(), 0);
    // Tab through the lists to the sample rows: each control it reaches is brought into view.
    update.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&update));
    list(0)->setFocus();
    // The first list, as the window opens with it, stays beside its label: the mapping is not
    // scrolled sideways to show the list's right end.
    EXPECT_EQ(area->horizontalScrollBar()->value(), 0);
    const QRect view = area->viewport()->rect();
    for (int step = 0; step < 20 && !update.findChild<QWidget *>("GrdSample")->hasFocus(); ++step) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        const QWidget *focused = QApplication::focusWidget();
        const QRect place(focused->mapTo(area->viewport(), QPoint(0, 0)), focused->size());
        // Whole, or as much of it as the view can show (the sample grid is as wide as the
        // mapping).
        const QRect shown = place.intersected(view);
        EXPECT_EQ(shown.height(), place.height()) << focused->objectName().toStdString();
        EXPECT_EQ(shown.width(), std::min(place.width(), view.width()))
            << focused->objectName().toStdString();
    }
    EXPECT_TRUE(update.findChild<QWidget *>("GrdSample")->hasFocus());
    // A list's letter brings it into view too, wherever the mapping was scrolled (a window
    // made low, so that it scrolls up and down).
    update.resize(update.width(), 420);
    QCoreApplication::processEvents();
    ASSERT_GT(area->verticalScrollBar()->maximum(), 0);
    area->verticalScrollBar()->setValue(area->verticalScrollBar()->maximum());
    QTest::keyClick(&update, Qt::Key_P, Qt::AltModifier);
    ASSERT_TRUE(list(0)->hasFocus());
    const QRect place(list(0)->mapTo(area->viewport(), QPoint(0, 0)), list(0)->size());
    EXPECT_EQ(place.intersected(area->viewport()->rect()).height(), place.height());
}

TEST_F(FrmUpdateTest, TheWindowFitsItsScreenWithTheActionsAndButtonsOnIt)
{
    FrmUpdate &update = open(workbook("sample.xlsx"));
    const QScreen *screen = update.screen();
    ASSERT_NE(screen, nullptr);
    const int titleBar = update.style()->pixelMetric(QStyle::PM_TitleBarHeight, nullptr, &update);
    const int room = screen->availableGeometry().height() - titleBar;
    // The offscreen screen of the tests is 800 pixels high, as a 1280×800 screen: the window
    // can be made that small, and is no taller than the screen's free area.
    ASSERT_LE(update.minimumSizeHint().height(), room);
    EXPECT_LE(update.height(), room);
    const QRect inside = update.rect();
    for (const char *name :
        { "OptAdd", "OptUpdate", "ChkIgnore", "CmdOK", "CmdCancel", "CmdHelp", "GrdSample" }) {
        const auto *control = update.findChild<QWidget *>(QString::fromLatin1(name));
        ASSERT_NE(control, nullptr) << name;
        const QRect place(control->mapTo(&update, QPoint(0, 0)), control->size());
        EXPECT_TRUE(inside.contains(place)) << name;
    }
    // The sample grid shows its five rows where there is room, and gives them up first.
    const auto *grid = update.findChild<QWidget *>(QStringLiteral("GrdSample"));
    EXPECT_TRUE(update.height() >= room || grid->height() == grid->maximumHeight())
        << update.height() << " " << room;
}
