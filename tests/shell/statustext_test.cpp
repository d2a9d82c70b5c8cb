// The status bar's first panel: a message too long for it ends in "…" and is whole in its tool
// tip, instead of being cut in the middle of a word.
#include "shell/statustext.h"

#include <QMainWindow>
#include <QStatusBar>

#include <gtest/gtest.h>

using namespace tarnwick;

namespace {

TEST(StatusTextTest, AMessageTooLongForThePanelEndsInAnEllipsis)
{
    StatusText panel;
    panel.resize(200, panel.sizeHint().height());
    const QString message = QStringLiteral(
        "Unsaved changes cannot be kept safe: the new file could not be written: No such file or "
        "directory. Save the catalogue.");
    panel.setText(message);
    const QString shown = panel.shownText();
    EXPECT_TRUE(shown.endsWith(QChar(0x2026))) << shown.toStdString();
    EXPECT_TRUE(message.startsWith(shown.chopped(1)));
    EXPECT_LE(panel.fontMetrics().horizontalAdvance(shown), panel.contentsRect().width());

    panel.resize(panel.fontMetrics().horizontalAdvance(message) + 20, panel.height());
    EXPECT_EQ(panel.shownText(), message) << "shown whole where there is room";
}

TEST(StatusTextTest, ALineBreakReadsAsABlankOnItsOneLine)
{
    StatusText panel;
    panel.resize(2000, 20);
    panel.setText(QStringLiteral("First line\nsecond line"));
    EXPECT_EQ(panel.shownText(), QStringLiteral("First line second line"));
    EXPECT_EQ(panel.textFormat(), Qt::PlainText);
}

TEST(StatusTextTest, AMessageTakenBackGoesOnlyWhileItIsShown)
{
    StatusText panel;
    panel.setText(QStringLiteral("Catalogue saved"));
    panel.takeBack(QStringLiteral("New quote."));
    EXPECT_EQ(panel.text(), QStringLiteral("Catalogue saved")) << "another message stays";
    panel.takeBack(QStringLiteral("Catalogue saved"));
    EXPECT_EQ(panel.text(), QString());
}

} // namespace

namespace {

// Two things may fail to be kept at once: the mark stays until both are safe again.
TEST(UnsafeMarkTest, TheMarkStaysWhileAnySourceIsUnsafe)
{
    QMainWindow window;
    QStatusBar *bar = window.statusBar();
    auto *mark = new UnsafeMark(bar);
    window.show();
    EXPECT_FALSE(mark->isVisible());
    EXPECT_EQ(mark->parentWidget(), &window) << "no panel of the bar while hidden";
    mark->setReason(QStringLiteral("catalogue"), QStringLiteral("Unsaved changes cannot be kept."));
    mark->setReason(QStringLiteral("quote"), QStringLiteral("The quote cannot be kept."));
    EXPECT_TRUE(mark->isVisible());
    EXPECT_EQ(mark->parentWidget(), bar);
    EXPECT_EQ(mark->toolTip(),
        QStringLiteral("Unsaved changes cannot be kept.\nThe quote cannot be kept."));
    mark->clearReason(QStringLiteral("catalogue"));
    EXPECT_TRUE(mark->isVisible());
    EXPECT_EQ(mark->accessibleDescription(), QStringLiteral("The quote cannot be kept."));
    mark->clearReason(QStringLiteral("quote"));
    EXPECT_FALSE(mark->isVisible());
    EXPECT_EQ(mark->parentWidget(), &window);
}

} // namespace
