#include "platform/qt/helpwindow.h"

#include "help/helpmanual.h"
#include "help/helprequest.h"
#include "platform/chelp.h"
#include "platform/helpcontexts.h"
#include "platform/qt/qthelpviewer.h"

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QScreen>
#include <QScrollBar>
#include <QTabWidget>
#include <QTest>
#include <QTextBrowser>
#include <QTreeWidget>

#include <gtest/gtest.h>

namespace tarnwick {
namespace {

class HelpWindowTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(manual.load()) << qPrintable(manual.errorString());
        window = std::make_unique<HelpWindow>(manual);
    }
    QString shownText() const { return window->browser()->toPlainText(); }

    HelpManual manual;
    std::unique_ptr<HelpWindow> window;
};

TEST_F(HelpWindowTest, EveryContextNumberOfTheProgramOpensItsTopic)
{
    for (const qint32 context : HelpContext::All) {
        window->showRequest(parseHelpRequest(QStringLiteral("x.chm"), 15, context));
        const HelpTopic *topic = manual.topic(window->currentTopic());
        ASSERT_NE(topic, nullptr) << context;
        EXPECT_EQ(topic->contexts.contains(context), true) << context;
        EXPECT_TRUE(shownText().contains(topic->title)) << context;
        EXPECT_GT(shownText().size(), 300) << context;
    }
}

TEST_F(HelpWindowTest, MainOpensTheContentsAtTheFirstPage)
{
    window->showTopic(QStringLiteral("password.html"));
    window->showRequest(parseHelpRequest(QStringLiteral("x.chm>Main"), 0, 0));
    EXPECT_EQ(window->currentTopic(), QStringLiteral("welcome.html"));
    EXPECT_EQ(window->navigation()->currentIndex(), 0);
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(window->contentsTree()->currentItem()->text(0), manual.topics().first().title);
}

// The page follows the topic the arrow keys move to in the contents, as it follows a click.
TEST_F(HelpWindowTest, ThePageFollowsTheArrowKeysInTheContents)
{
    window->showRequest(parseHelpRequest(QStringLiteral("x.chm>Main"), 0, 0));
    QTreeWidget *tree = window->contentsTree();
    window->activateWindow();
    tree->setFocus();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    ASSERT_TRUE(tree->hasFocus());
    QTest::keyClick(tree, Qt::Key_Down);
    const QString second = manual.topics().at(1).file;
    EXPECT_EQ(tree->currentItem()->text(0), manual.topics().at(1).title);
    EXPECT_EQ(window->currentTopic(), second);
    EXPECT_TRUE(shownText().contains(manual.topics().at(1).title));
    QTest::keyClick(tree, Qt::Key_Up);
    EXPECT_EQ(window->currentTopic(), manual.topics().first().file);
}

TEST_F(HelpWindowTest, SearchOpensTheSearchWithTheFocusInItsBox)
{
    window->showRequest(parseHelpRequest(QStringLiteral("x.chm>Search"), 0, 0));
    EXPECT_EQ(window->navigation()->currentIndex(), 2);
    EXPECT_FALSE(window->currentTopic().isEmpty()) << "a page is shown beside the search";
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    EXPECT_EQ(QApplication::focusWidget(), window->searchBox());
}

TEST_F(HelpWindowTest, TypingWordsAndEnterListsThePagesThatContainThem)
{
    window->showRequest(parseHelpRequest(QStringLiteral("x.chm>Search"), 0, 0));
    QTest::keyClicks(window->searchBox(), QStringLiteral("backup"));
    QTest::keyClick(window->searchBox(), Qt::Key_Return);
    ASSERT_GT(window->searchResults()->count(), 0);
    QStringList titles;
    for (int i = 0; i < window->searchResults()->count(); ++i)
        titles << window->searchResults()->item(i)->text();
    EXPECT_TRUE(titles.contains(manual.topic(QStringLiteral("datafiles.html"))->title));
    window->search(QStringLiteral("xylophone"));
    EXPECT_EQ(window->searchResults()->count(), 0);
    EXPECT_EQ(
        window->searchStatus()->text(), QStringLiteral("No page contains all of these words."));
}

TEST_F(HelpWindowTest, TheBestMatchIsShownAndDownLeadsIntoTheResults)
{
    window->showRequest(parseHelpRequest(QStringLiteral("x.chm>Search"), 0, 0));
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    QTest::keyClicks(window->searchBox(), QStringLiteral("twdata.bak"));
    QTest::keyClick(window->searchBox(), Qt::Key_Return);
    EXPECT_EQ(window->currentTopic(), QStringLiteral("datafiles.html"));
    ASSERT_GT(window->searchResults()->count(), 1);
    EXPECT_EQ(window->searchStatus()->text(),
        QStringLiteral("%1 pages found.").arg(window->searchResults()->count()));
    QTest::keyClick(window->searchBox(), Qt::Key_Down);
    EXPECT_EQ(QApplication::focusWidget(), window->searchResults());
    QTest::keyClick(window->searchResults(), Qt::Key_Down);
    QTest::keyClick(window->searchResults(), Qt::Key_Return);
    EXPECT_EQ(
        manual.topic(window->currentTopic())->title, window->searchResults()->item(1)->text());
}

TEST_F(HelpWindowTest, ActivatingAResultOpensItsPage)
{
    window->search(QStringLiteral("Handdesk converter"));
    ASSERT_GT(window->searchResults()->count(), 0);
    QListWidgetItem *first = window->searchResults()->item(0);
    Q_EMIT window->searchResults()->itemActivated(first);
    EXPECT_EQ(manual.topic(window->currentTopic())->title, first->text());
}

TEST_F(HelpWindowTest, TheIndexFiltersByTheTypedBeginningAndOpensTheEntry)
{
    window->showIndex();
    QTest::keyClicks(window->indexBox(), QStringLiteral("passw"));
    ASSERT_GT(window->indexList()->count(), 0);
    for (int i = 0; i < window->indexList()->count(); ++i)
        EXPECT_TRUE(window->indexList()->item(i)->text().startsWith(
            QStringLiteral("passw"), Qt::CaseInsensitive));
    QTest::keyClick(window->indexBox(), Qt::Key_Return);
    EXPECT_EQ(window->currentTopic(), QStringLiteral("password.html"));
}

TEST_F(HelpWindowTest, BackAndForwardRetraceThePagesShown)
{
    window->showTopic(QStringLiteral("welcome.html"));
    window->showTopic(QStringLiteral("pricepoints.html"));
    window->showTopic(QStringLiteral("discounts.html"));
    window->show();
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    window->browser()->setFocus();
    QTest::keyClick(window->browser(), Qt::Key_Left, Qt::AltModifier);
    EXPECT_EQ(window->currentTopic(), QStringLiteral("pricepoints.html"));
    QTest::keyClick(window->browser(), Qt::Key_Left, Qt::AltModifier);
    EXPECT_EQ(window->currentTopic(), QStringLiteral("welcome.html"));
    QTest::keyClick(window->browser(), Qt::Key_Right, Qt::AltModifier);
    EXPECT_EQ(window->currentTopic(), QStringLiteral("pricepoints.html"));
}

TEST_F(HelpWindowTest, ATabChosenByItsLetterTakesTheKeyboardToItsBox)
{
    window->showTopic(QStringLiteral("welcome.html"));
    window->show();
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    window->browser()->setFocus(); // reading a page
    QTest::keyClick(window->browser(), Qt::Key_I, Qt::AltModifier);
    EXPECT_EQ(window->navigation()->currentIndex(), 1);
    EXPECT_EQ(QApplication::focusWidget(), window->indexBox());
    QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("quote"));
    EXPECT_EQ(window->indexBox()->text(), QStringLiteral("quote"));

    window->browser()->setFocus();
    QTest::keyClick(window->browser(), Qt::Key_S, Qt::AltModifier);
    EXPECT_EQ(window->navigation()->currentIndex(), 2);
    EXPECT_EQ(QApplication::focusWidget(), window->searchBox());

    QTest::keyClick(window->searchBox(), Qt::Key_Escape);
    EXPECT_FALSE(window->isVisible()) << "Escape puts the help away";
}

TEST_F(HelpWindowTest, ALinkInAPageOpensTheLinkedPage)
{
    window->showTopic(QStringLiteral("welcome.html"));
    const QStringList links =
        HelpManual::linksOf(manual.topic(QStringLiteral("welcome.html"))->html);
    ASSERT_FALSE(links.isEmpty());
    window->browser()->setSource(window->browser()->source().resolved(QUrl(links.first())));
    EXPECT_EQ(window->currentTopic(), QUrl(links.first()).path());
    EXPECT_GT(shownText().size(), 300);
}

TEST_F(HelpWindowTest, EveryPageShowsItsTextAndItsImages)
{
    for (const HelpTopic &topic : manual.topics()) {
        ASSERT_TRUE(window->showTopic(topic.file)) << qPrintable(topic.file);
        EXPECT_TRUE(shownText().contains(topic.title)) << qPrintable(topic.file);
    }
    EXPECT_FALSE(window->showTopic(QStringLiteral("no-such-page.html")));
}

TEST(QtHelpViewer, OneWindowServesEveryCallAndFollowsIt)
{
    QtHelpViewer viewer;
    CHelp help(viewer);
    help.Show(QStringLiteral("/somewhere/Tarnwick Help.chm"), CHelp::MainWindow);
    HelpWindow *window = viewer.window();
    ASSERT_NE(window, nullptr);
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(window->currentTopic(), QStringLiteral("welcome.html"));
    help.Show(
        QStringLiteral("/somewhere/Tarnwick Help.chm"), QString(), HelpContext::HandheldConverter);
    EXPECT_EQ(viewer.window(), window);
    EXPECT_EQ(window->currentTopic(), QStringLiteral("handheldconverter.html"));
    help.Show(QStringLiteral("/somewhere/Tarnwick Help.chm"), CHelp::SearchWindow);
    EXPECT_EQ(window->navigation()->currentIndex(), 2);
}

// Every picture of the manual fits the topic pane of the window as it first opens: none is
// cut or needs the pane scrolled sideways.
TEST_F(HelpWindowTest, EveryPictureFitsTheTopicAtTheWindowsFirstSize)
{
    window->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window.get()));
    for (const HelpTopic &topic : manual.topics()) {
        window->showTopic(topic.file);
        QApplication::processEvents();
        EXPECT_EQ(window->browser()->horizontalScrollBar()->maximum(), 0) << qPrintable(topic.file);
    }
}

// Opened the first time, the window is no larger than the screen holds (with a large font
// its first size can be), leaving room for the desktop's frame.
TEST_F(HelpWindowTest, ItOpensOverTheWindowTheUserWorksInAndStaysWhereItWasLeft)
{
    QWidget main;
    const QRect room = main.screen()->availableGeometry();
    main.setGeometry(
        room.left() + room.width() / 2, room.top() + 40, room.width() / 3, room.height() / 2);
    main.show();
    QApplication::setActiveWindow(&main);
    ASSERT_TRUE(QTest::qWaitForWindowActive(&main));
    window->resize(room.width() / 4, room.height() / 4); // smaller than the window below it
    window->showRequest(parseHelpRequest(QStringLiteral("x.chm>Main"), 0, 0));
    const QPoint centre = window->frameGeometry().center();
    EXPECT_LE((centre - main.frameGeometry().center()).manhattanLength(), 4)
        << "centre " << centre.x() << "," << centre.y();
    EXPECT_TRUE(room.contains(window->frameGeometry().topLeft()));

    const QPoint left = room.topLeft() + QPoint(10, 10);
    window->move(left);
    window->hide();
    window->showRequest(parseHelpRequest(QStringLiteral("x.chm>Main"), 0, 0));
    EXPECT_EQ(window->pos(), left);
}

TEST_F(HelpWindowTest, OverAWindowLowOnTheScreenItLeavesRoomForItsTitleBar)
{
    QWidget main;
    const QRect room = main.screen()->availableGeometry();
    main.setGeometry(
        room.left(), room.bottom() - room.height() / 4, room.width() / 3, room.height() / 4);
    main.show();
    QApplication::setActiveWindow(&main);
    ASSERT_TRUE(QTest::qWaitForWindowActive(&main));
    window->resize(room.width() / 4, room.height() / 3);
    window->showRequest(parseHelpRequest(QStringLiteral("x.chm>Main"), 0, 0));
    // About two lines are left below it for the title bar the desktop adds (at least one).
    EXPECT_LE(window->frameGeometry().bottom() + window->fontMetrics().height(), room.bottom());
    EXPECT_GE(window->geometry().top(), room.top());
}

TEST_F(HelpWindowTest, TheFirstOpeningFitsTheScreen)
{
    const QSize room = window->screen()->availableGeometry().size();
    window->resize(room + QSize(400, 300));
    window->showRequest(parseHelpRequest(QStringLiteral("x.chm>Main"), 0, 0));
    EXPECT_LT(window->width(), room.width());
    EXPECT_LT(window->height(), room.height());
}

} // namespace
} // namespace tarnwick
