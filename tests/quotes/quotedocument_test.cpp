#include "quotedocumentfixture.h"

#include "catalogue/table.h"
#include "quotes/documentclipboard.h"
#include "quotes/quotedocument.h"
#include "quotes/quoteline.h"
#include "quotes/rtfwriter.h"
#include "support/testlocale.h"

#include <QTextCursor>
#include <QTextDocument>

#include <gtest/gtest.h>

using namespace tarnwick;

namespace {

using tarnwick::test::EnUs;

class QuoteDocumentTest : public tarnwick::test::QuoteDocumentFixture
{
protected:
    QuoteDocumentTest()
        : QuoteDocumentFixture(QStringLiteral("$0.00"), QStringLiteral("$25.00")) { }
    QString plain() const { return QuoteDocument::build(quote, input, EnUs)->toPlainText(); }
};

TEST_F(QuoteDocumentTest, OnePlainLine)
{
    addLine(1, "A-1", "Widget", "$12.50", qint32(2), 25.0, "$12.50", "Box and cable");
    EXPECT_EQ(plain(),
        QStringLiteral("Dear customer,\n\n"
                       "A-1 \tWidget\n"
                       "Quantity 2\t\tPrice $12.50\t\t\tExtended Price  $25.00\n"
                       "Box and cable\n"
                       "\n"
                       "\n"
                       "\n"
                       "Order Total = $25.00\n\n"
                       "Kind regards"));
}

TEST_F(QuoteDocumentTest, PlainAndDiscountedLinesWithTheDiscountAmount)
{
    addLine(1, "A-1", "Widget", "$12.50", qint32(1), 12.5, "$12.50", "Cable");
    addLine(2, "B-2", "Gadget", 9.0f, qint32(3), 27.0, "$10.00", "Manual");
    input.discountBox = QStringLiteral("$3.00");
    input.totalBox = QStringLiteral("$39.50");
    EXPECT_EQ(plain(),
        QStringLiteral("Dear customer,\n\n"
                       "A-1 \tWidget\n"
                       "Quantity 1\t\tPrice $12.50\t\t\tExtended Price  $12.50\n"
                       "Cable\n\n"
                       "B-2 \tGadget\n"
                       "Quantity 3\tList: $10.00\tPrice: $9.00\tDiscount: 10.00%\tExt.: $27.00\n"
                       "Manual\n\n"
                       "\n"
                       "Discount Amount = $3.00\n"
                       "\n"
                       "Order Total = $39.50\n\n"
                       "Kind regards"));
}

TEST_F(QuoteDocumentTest, TheDiscountIsTheSingleRatioInThePercentFormat)
{
    // (10 − 9.01) ÷ 10 as a single is 0.0990000. → 9.90%
    addLine(1, "B-2", "Gadget", 9.01f, qint32(1), 9.01, "$10.00", "");
    EXPECT_TRUE(plain().contains(QStringLiteral("Discount: 9.90%\t")));
}

TEST_F(QuoteDocumentTest, ADiscountBeyondASingleLeavesTheFigureOut)
{
    // A unit price typed as 1E+40 against a list price of $12.85, and a price against a list
    // price too small to divide by: neither ratio fits a single.
    addLine(1, "B-2", "Gadget", Cell(1e40), qint32(1), 0.0, "$12.85", "");
    addLine(2, "C-3", "Gizmo", Cell(5.0), qint32(1), 5.0, Cell(1e-40), "");
    QString text;
    ASSERT_NO_THROW(text = plain());
    EXPECT_TRUE(text.contains(QStringLiteral("\tDiscount: \tExt.: $0.00\n"))) << text.toStdString();
    EXPECT_TRUE(text.contains(QStringLiteral("Price: $5.00\tDiscount: \tExt.: $5.00\n")))
        << text.toStdString();
}

TEST_F(QuoteDocumentTest, NoIncludesOneLeavesTheIncludesOutAnyOtherValueShowsThem)
{
    addLine(1, "A-1", "Widget", "$12.50", qint32(1), 12.5, "$12.50", "Cable");
    input.noIncludes = 1;
    EXPECT_FALSE(plain().contains(QStringLiteral("Cable")));
    EXPECT_TRUE(plain().contains(QStringLiteral("$12.50\n\n\n\nOrder")));
    input.noIncludes = 2;
    EXPECT_TRUE(plain().contains(QStringLiteral("$12.50\nCable\n\n")));
    input.noIncludes = 0;
    EXPECT_TRUE(plain().contains(QStringLiteral("Cable")));
}

TEST_F(QuoteDocumentTest, NoDiscountLineWhileTheDiscountBoxIsZeroOrLess)
{
    addLine(1, "A-1", "Widget", "$12.50", qint32(1), 12.5, "$12.50", "");
    for (const char *box : { "$0.00", "($1.00)", "" }) {
        input.discountBox = QString::fromLatin1(box);
        EXPECT_FALSE(plain().contains(QStringLiteral("Discount Amount"))) << box;
    }
}

TEST_F(QuoteDocumentTest, EmptyHeadingAndEndingGiveTheBareDocument)
{
    input.heading.clear();
    input.ending.clear();
    input.totalBox = QStringLiteral("$0.00");
    EXPECT_EQ(plain(), QStringLiteral("\n\n\n\nOrder Total = $0.00\n\n"));
}

TEST_F(QuoteDocumentTest, TheTotalsAreTheBoxTextsAsShown)
{
    addLine(1, "A-1", "Widget", "$12.50", qint32(1), 12.5, "$12.50", "");
    input.totalBox = QStringLiteral("whatever the box shows");
    input.discountBox = QStringLiteral("$1.25");
    EXPECT_TRUE(plain().contains(QStringLiteral("Discount Amount = $1.25\n")));
    EXPECT_TRUE(plain().contains(QStringLiteral("Order Total = whatever the box shows\n")));
}

TEST_F(QuoteDocumentTest, HeadingIsTwelvePointBoldAndLinesTenPoint)
{
    addLine(1, "A-1", "Widget", "$12.50", qint32(1), 12.5, "$12.50", "Cable");
    const auto document = QuoteDocument::build(quote, input, EnUs);
    const auto formatAt = [&](const QString &text) {
        QTextCursor cursor = document->find(text);
        return cursor.charFormat();
    };
    EXPECT_EQ(formatAt(QStringLiteral("Dear")).fontPointSize(), 12.0);
    EXPECT_EQ(formatAt(QStringLiteral("Dear")).fontWeight(), QFont::Bold);
    EXPECT_EQ(formatAt(QStringLiteral("Widget")).fontWeight(), QFont::Bold);
    EXPECT_EQ(formatAt(QStringLiteral("Quantity")).fontWeight(), QFont::Normal);
    EXPECT_EQ(formatAt(QStringLiteral("Quantity")).fontPointSize(), 10.0);
    EXPECT_EQ(formatAt(QStringLiteral("Order Total")).fontWeight(), QFont::Bold);
    EXPECT_EQ(formatAt(QStringLiteral("Kind")).fontWeight(), QFont::Bold);
    EXPECT_EQ(formatAt(QStringLiteral("Kind")).fontFamilies().toStringList(),
        QStringList { QStringLiteral("Times New Roman") });
}

TEST_F(QuoteDocumentTest, TheClipboardFormsHoldTheWholeDocument)
{
    addLine(1, "A-1", "Widget", "$12.50", qint32(1), 12.5, "$12.50", "Cable");
    const auto document = QuoteDocument::build(quote, input, EnUs);
    const RichClipboardDocument forms = clipboardForms(*document);
    EXPECT_EQ(forms.plainText, document->toPlainText());
    EXPECT_TRUE(forms.plainText.startsWith(QStringLiteral("Dear")));
    EXPECT_TRUE(forms.html.contains(QStringLiteral("Dear customer,")));
    EXPECT_TRUE(forms.rtf.startsWith(QStringLiteral("{\\rtf1")));
}

} // namespace
