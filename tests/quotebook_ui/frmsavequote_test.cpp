// The "Save Quote" window by itself: its named boxes typed into with the keyboard, OK only with
// a name or company and a sound e-mail address, Cancel.
#include "quotebook/ui/frmsavequote.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

using namespace tarnwick;

namespace {

class FrmSaveQuoteTest : public ::testing::Test
{
protected:
    template <typename W> W *child(const char *name) const
    {
        auto *widget = window.findChild<W *>(QString::fromLatin1(name));
        EXPECT_NE(widget, nullptr) << name;
        return widget;
    }
    void type(const char *box, const QString &text)
    {
        auto *edit = child<QLineEdit>(box);
        edit->setFocus();
        QTest::keyClicks(edit, text);
    }

    FrmSaveQuote window;
};

TEST_F(FrmSaveQuoteTest, HasItsTitleAndNamedControls)
{
    EXPECT_EQ(window.windowTitle(), QStringLiteral("Save Quote"));
    EXPECT_EQ(window.objectName(), QStringLiteral("FrmSaveQuote"));
    for (const char *name :
        { "TxtCustomer", "TxtCompany", "TxtEmail", "TxtReference", "CmdOK", "CmdCancel" }) {
        auto *widget = window.findChild<QWidget *>(QString::fromLatin1(name));
        ASSERT_NE(widget, nullptr) << name;
        EXPECT_EQ(widget->accessibleDescription(), QString::fromLatin1(name));
    }
    // Every box has a label assistive tools read, with a letter of its own.
    QStringList captions;
    for (const QLabel *label : window.findChildren<QLabel *>()) {
        if (label->buddy())
            captions << label->text();
    }
    EXPECT_EQ(captions, (QStringList { "&Customer:", "C&ompany:", "&E-mail:", "&Reference:" }));
}

TEST_F(FrmSaveQuoteTest, OkGivesTheDetailsTyped)
{
    window.show();
    type("TxtCustomer", QStringLiteral("  ACME Plumbing "));
    type("TxtCompany", QStringLiteral("ACME Ltd"));
    type("TxtEmail", QStringLiteral("buy@acme.test"));
    type("TxtReference", QStringLiteral("PO 4711"));
    QTest::mouseClick(child<QPushButton>("CmdOK"), Qt::LeftButton);
    EXPECT_EQ(window.result(), QDialog::Accepted);
    EXPECT_EQ(window.details(),
        (CustomerDetails { "ACME Plumbing", "ACME Ltd", "buy@acme.test", "PO 4711" }));
}

TEST_F(FrmSaveQuoteTest, EnterInABoxSavesLikeOk)
{
    window.show();
    type("TxtCompany", QStringLiteral("ACME Ltd"));
    QTest::keyClick(child<QLineEdit>("TxtCompany"), Qt::Key_Return);
    EXPECT_EQ(window.result(), QDialog::Accepted);
    EXPECT_EQ(window.details().company, QStringLiteral("ACME Ltd"));
}

TEST_F(FrmSaveQuoteTest, ANameOrACompanyIsNeeded)
{
    window.show();
    type("TxtEmail", QStringLiteral("buy@acme.test"));
    QTest::mouseClick(child<QPushButton>("CmdOK"), Qt::LeftButton);
    EXPECT_NE(window.result(), QDialog::Accepted);
    EXPECT_TRUE(window.isVisible());
    EXPECT_EQ(window.problemText(), QStringLiteral("Enter the customer's name or company."));
    // The label may hold zero-width breaks; what it says is the problem.
    EXPECT_EQ(child<QLabel>("LblProblem")->text().remove(QChar(0x200B)), window.problemText());
}

TEST_F(FrmSaveQuoteTest, AnEmailAddressMustBeOne)
{
    window.show();
    type("TxtCustomer", QStringLiteral("ACME"));
    type("TxtEmail", QStringLiteral("buy at acme"));
    QTest::mouseClick(child<QPushButton>("CmdOK"), Qt::LeftButton);
    EXPECT_TRUE(window.isVisible());
    EXPECT_EQ(window.problemText(), QStringLiteral("\"buy at acme\" is not an e-mail address."));
    EXPECT_EQ(window.focusWidget(), child<QLineEdit>("TxtEmail"));
    child<QLineEdit>("TxtEmail")->clear();
    QTest::mouseClick(child<QPushButton>("CmdOK"), Qt::LeftButton);
    EXPECT_EQ(window.result(), QDialog::Accepted);
    EXPECT_TRUE(window.problemText().isEmpty());
}

TEST_F(FrmSaveQuoteTest, ALongProblemIsShownWholeAndTheBoxesKeepTheirHeight)
{
    window.show();
    const int boxHeight = child<QLineEdit>("TxtEmail")->height();
    type("TxtCustomer", QStringLiteral("Bob Smith"));
    type("TxtEmail", QStringLiteral("sales at acme plumbing wholesale dot com please call first"));
    QTest::mouseClick(child<QPushButton>("CmdOK"), Qt::LeftButton);
    const QLabel *problem = child<QLabel>("LblProblem");
    ASSERT_TRUE(problem->isVisible());
    EXPECT_GE(problem->height(), problem->heightForWidth(problem->width()))
        << "every line of the problem shows";
    EXPECT_GE(problem->geometry().bottom(), child<QLineEdit>("TxtReference")->geometry().bottom())
        << "under the boxes";
    EXPECT_EQ(child<QLineEdit>("TxtEmail")->height(), boxHeight);
}

TEST_F(FrmSaveQuoteTest, AnAddressWithoutBlanksWrapsInsideTheWindow)
{
    window.show();
    type("TxtCustomer", QStringLiteral("Bob Smith"));
    const QString address =
        QStringLiteral("bob.smith.purchasing.department.north.region.acme-plumbing");
    type("TxtEmail", address);
    QTest::mouseClick(child<QPushButton>("CmdOK"), Qt::LeftButton);
    EXPECT_EQ(
        window.problemText(), QStringLiteral("\"%1\" is not an e-mail address.").arg(address));
    const QLabel *problem = child<QLabel>("LblProblem");
    EXPECT_LE(problem->minimumSizeHint().width(), window.width())
        << "no word of it is wider than the window";
    EXPECT_EQ(problem->accessibleDescription(), window.problemText());
}

TEST_F(FrmSaveQuoteTest, CancelGivesNothing)
{
    window.show();
    type("TxtCustomer", QStringLiteral("ACME"));
    QTest::mouseClick(child<QPushButton>("CmdCancel"), Qt::LeftButton);
    EXPECT_EQ(window.result(), QDialog::Rejected);
}

TEST_F(FrmSaveQuoteTest, TheDetailsGivenAreShownAndTheIntroAboveThem)
{
    window.setDetails({ "Ann", "ACME", "ann@acme.test", "PO 1" });
    window.setIntro(QStringLiteral("The quote is saved under the next quote number."));
    EXPECT_EQ(child<QLineEdit>("TxtCustomer")->text(), QStringLiteral("Ann"));
    EXPECT_EQ(child<QLineEdit>("TxtReference")->text(), QStringLiteral("PO 1"));
    EXPECT_EQ(child<QLabel>("LblIntro")->text(),
        QStringLiteral("The quote is saved under the next quote number."));
}

} // namespace
