// A list box guarded against the wheel changes only while it has the keyboard: the wheel
// turned over it on the way elsewhere leaves its choice, and gives it no keyboard.
#include "platform/qt/wheelguard.h"

#include <QApplication>
#include <QComboBox>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>
#include <QWheelEvent>
#include <QWidget>

#include <gtest/gtest.h>

using namespace tarnwick;

namespace {

void turnWheelDown(QWidget *box)
{
    const QPointF centre = QRectF(box->rect()).center();
    QWheelEvent wheel(centre, box->mapToGlobal(centre), QPoint(), QPoint(0, -120), Qt::NoButton,
        Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(box, &wheel);
}

TEST(WheelGuard, AListBoxWithoutTheKeyboardKeepsItsChoice)
{
    QWidget window;
    auto *layout = new QVBoxLayout(&window);
    auto *other = new QComboBox(&window);
    auto *box = new QComboBox(&window);
    box->addItems({ "draft", "sent", "accepted" });
    layout->addWidget(other);
    layout->addWidget(box);
    changeOnWheelOnlyWithFocus(box);
    window.show();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    other->setFocus();
    QSignalSpy activated(box, &QComboBox::activated);

    turnWheelDown(box);
    EXPECT_EQ(box->currentIndex(), 0);
    EXPECT_EQ(activated.count(), 0);
    EXPECT_TRUE(other->hasFocus()) << "the wheel gave the box no keyboard";
    EXPECT_EQ(box->focusPolicy(), Qt::StrongFocus);

    box->setFocus();
    ASSERT_TRUE(box->hasFocus());
    turnWheelDown(box);
    EXPECT_EQ(box->currentIndex(), 1);
    EXPECT_EQ(activated.count(), 1);
}

} // namespace
