// Sending a quote: the mail program through xdg-email with the PDF attached, a "mailto:" link
// where xdg-email is not there, and a clear result when neither starts. The desktop's programs
// are faked through the process launcher.
#include "quotebook/quotemail.h"
#include "support/fakeservices.h"

#include <gtest/gtest.h>

using namespace tarnwick;
using namespace tarnwick::test;

namespace {

QuoteHeader savedHeader()
{
    QuoteHeader header;
    header.id = 3;
    header.year = 2026;
    header.sequence = 12;
    header.revision = 1;
    header.customer = { QStringLiteral("Ann Smith"), QStringLiteral("ACME Plumbing"),
        QStringLiteral(" ann@acme.test "), QStringLiteral("PO 4711") };
    return header;
}

TEST(QuoteMailTest, TheMailNamesTheQuoteAndCarriesThePdf)
{
    const QuoteMail mail =
        QuoteMailer::mailFor(savedHeader(), QStringLiteral("out/Q-2026-0012-B.pdf"));
    EXPECT_EQ(mail.to, QStringLiteral("ann@acme.test"));
    EXPECT_EQ(mail.subject, QStringLiteral("Quote Q-2026-0012 B (your reference: PO 4711)"));
    EXPECT_EQ(mail.body, QStringLiteral("Please find our quote Q-2026-0012 B attached."));
    EXPECT_EQ(QuoteMailer::xdgEmailArguments(mail),
        (QStringList { "--utf8", "--subject", "Quote Q-2026-0012 B (your reference: PO 4711)",
            "--body", "Please find our quote Q-2026-0012 B attached.", "--attach",
            "out/Q-2026-0012-B.pdf", "ann@acme.test" }));
    EXPECT_EQ(QuoteMailer::mailtoUrl(mail),
        QStringLiteral("mailto:ann@acme.test?subject=Quote%20Q-2026-0012%20B%20%28your%20"
                       "reference%3A%20PO%204711%29&body=Please%20find%20our%20quote%20"
                       "Q-2026-0012%20B%20attached."));
}

TEST(QuoteMailTest, WithoutAnAddressTheMailProgramAsksForOne)
{
    QuoteHeader header = savedHeader();
    header.customer.email.clear();
    header.customer.reference.clear();
    const QuoteMail mail = QuoteMailer::mailFor(header, QStringLiteral("/q.pdf"));
    EXPECT_EQ(mail.subject, QStringLiteral("Quote Q-2026-0012 B"));
    EXPECT_EQ(QuoteMailer::xdgEmailArguments(mail).last(), QStringLiteral("/q.pdf"));
}

TEST(QuoteMailTest, XdgEmailOpensTheMailProgram)
{
    FakeProcessLauncher launcher;
    launcher.installed << QStringLiteral("xdg-email");
    const QuoteMail mail = QuoteMailer::mailFor(savedHeader(), QStringLiteral("/q.pdf"));
    EXPECT_EQ(QuoteMailer::send(launcher, mail), QuoteMailer::Way::MailProgram);
    ASSERT_EQ(launcher.starts.size(), 1U);
    EXPECT_EQ(launcher.starts[0].program, QStringLiteral("/usr/bin/xdg-email"));
    EXPECT_TRUE(launcher.starts[0].shown);
    EXPECT_EQ(launcher.starts[0].arguments, QuoteMailer::xdgEmailArguments(mail));
    EXPECT_TRUE(launcher.openedUrls.isEmpty());
}

TEST(QuoteMailTest, WithoutXdgEmailAMailtoLinkOpens)
{
    FakeProcessLauncher launcher;
    const QuoteMail mail = QuoteMailer::mailFor(savedHeader(), QStringLiteral("/q.pdf"));
    EXPECT_EQ(QuoteMailer::send(launcher, mail), QuoteMailer::Way::MailtoLink);
    EXPECT_TRUE(launcher.starts.empty());
    EXPECT_EQ(launcher.openedUrls, QStringList { QuoteMailer::mailtoUrl(mail) });
}

TEST(QuoteMailTest, AnXdgEmailThatDoesNotStartFallsBackToTheLink)
{
    FakeProcessLauncher launcher;
    launcher.installed << QStringLiteral("xdg-email");
    launcher.succeed = false;
    EXPECT_EQ(
        QuoteMailer::send(launcher, QuoteMailer::mailFor(savedHeader(), QStringLiteral("/q.pdf"))),
        QuoteMailer::Way::MailtoLink);
    launcher.urlsOpen = false;
    EXPECT_EQ(
        QuoteMailer::send(launcher, QuoteMailer::mailFor(savedHeader(), QStringLiteral("/q.pdf"))),
        QuoteMailer::Way::Failed);
}

} // namespace
