#include "products/ui/frmwait.h"

#include <QLabel>
#include <QTimer>

#include <gtest/gtest.h>

using namespace tarnwick;

namespace {

QString labelText(const FrmWait &form)
{
    return form.findChild<QLabel *>(QStringLiteral("Label1"))->text();
}

/// One tick of the form's timer, without waiting for it.
void tick(FrmWait &form)
{
    ASSERT_TRUE(QMetaObject::invokeMethod(&form, "Timer1_Timer", Qt::DirectConnection));
}

TEST(FrmWaitTest, TheFormIsCaptionedProcessingAndTicksEvery250Milliseconds)
{
    FrmWait form;
    EXPECT_EQ(form.objectName(), QStringLiteral("FrmWait"));
    EXPECT_EQ(form.windowTitle(), QStringLiteral("Processing"));
    ASSERT_NE(form.findChild<QLabel *>(QStringLiteral("Label1")), nullptr);
    auto *timer = form.findChild<QTimer *>(QStringLiteral("Timer1"));
    ASSERT_NE(timer, nullptr);
    EXPECT_EQ(timer->interval(), 250);
    EXPECT_TRUE(timer->isActive());
}

TEST(FrmWaitTest, TheLabelRunsThroughTheDotsAndHoldsThreeDotsForTwoTicks)
{
    FrmWait form;
    const QStringList expected { "Please wait", "Please wait.", "Please wait..", "Please wait...",
        "Please wait...", "Please wait.", "Please wait..", "Please wait...", "Please wait...",
        "Please wait." };
    QStringList seen;
    for (int i = 0; i < expected.size(); ++i) {
        tick(form);
        seen << labelText(form);
    }
    EXPECT_EQ(seen, expected);
}

TEST(FrmWaitTest, TheBareTextIsOnlyShownOnTheFirstCycle)
{
    FrmWait form;
    for (int i = 0; i < 4; ++i)
        tick(form);
    for (int i = 0; i < 40; ++i) {
        tick(form);
        EXPECT_NE(labelText(form), QStringLiteral("Please wait")) << i;
    }
}

} // namespace
