// Alt with a key of the top row reaches the window's digit mnemonics by the key's place, also
// where the layout types another character on that key (French AZERTY's & é " ' ().
#include "platform/qt/digitmnemonics.h"
#include "support/keyplaces.h"

#include <QApplication>
#include <QComboBox>
#include <QFormLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QTest>
#include <QWidget>

#include <gtest/gtest.h>

using namespace tarnwick;
using tarnwick::test::topRowScanCode;

namespace {

/// Alt with the key marked digit as a layout that types character on it sends it.
void pressAltWithKey(QWidget *focus, int digit, Qt::Key key, const QString &character)
{
    QKeyEvent press(QEvent::KeyPress, key, Qt::AltModifier, topRowScanCode(digit), 0, 0, character);
    QApplication::sendEvent(focus, &press);
}

class DigitMnemonicsTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        auto *layout = new QFormLayout(&window);
        for (const char *caption : { "Price Point &1:", "&List Price:", "Price Point &2:" }) {
            auto *box = new QComboBox(&window);
            box->addItems({ "(None)", "A", "B" });
            layout->addRow(new QLabel(QString::fromLatin1(caption), &window), box);
            boxes.push_back(box);
            qobject_cast<QLabel *>(layout->labelForField(box))->setBuddy(box);
        }
        followDigitMnemonicsByPlace(&window);
        window.show();
        window.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
        boxes[1]->setFocus();
        ASSERT_TRUE(QTest::qWaitFor([this] { return boxes[1]->hasFocus(); }));
    }

    QWidget window;
    std::vector<QComboBox *> boxes;
};

TEST(DigitRowPlace, TheTopRowsKeysGiveTheirDigitsAndNoOtherKeyDoes)
{
    for (int digit = 0; digit <= 9; ++digit) {
#if defined(Q_OS_DARWIN)
        EXPECT_EQ(digitRowPlace(topRowScanCode(digit)), -1) << "no scan codes known there";
#else
        EXPECT_EQ(digitRowPlace(topRowScanCode(digit)), digit);
#endif
    }
    EXPECT_EQ(digitRowPlace(topRowScanCode(1) - 1), -1);
    EXPECT_EQ(digitRowPlace(topRowScanCode(0) + 1), -1);
    EXPECT_EQ(digitRowPlace(0), -1) << "no scan code given";
}

TEST_F(DigitMnemonicsTest, AltWithTheKeyMarkedOneOnAzertyGoesToTheListOfMnemonicOne)
{
    pressAltWithKey(boxes[1], 1, Qt::Key_Ampersand, QStringLiteral("&"));
    EXPECT_TRUE(boxes[0]->hasFocus());
    pressAltWithKey(boxes[0], 2, Qt::Key_Eacute, QStringLiteral("é"));
    EXPECT_TRUE(boxes[2]->hasFocus());
}

TEST_F(DigitMnemonicsTest, KeysWithoutAltOrWithoutAMnemonicGoWhereTheyWent)
{
    // Typed without Alt, the character goes to the list as before.
    QKeyEvent typed(
        QEvent::KeyPress, Qt::Key_Ampersand, Qt::NoModifier, topRowScanCode(1), 0, 0, "&");
    QApplication::sendEvent(boxes[1], &typed);
    EXPECT_TRUE(boxes[1]->hasFocus());
    // No label has the mnemonic 3.
    pressAltWithKey(boxes[1], 3, Qt::Key_QuoteDbl, QStringLiteral("\""));
    EXPECT_TRUE(boxes[1]->hasFocus());
    // A disabled list keeps the keyboard where it is.
    boxes[0]->setEnabled(false);
    pressAltWithKey(boxes[1], 1, Qt::Key_Ampersand, QStringLiteral("&"));
    EXPECT_TRUE(boxes[1]->hasFocus());
}

} // namespace
