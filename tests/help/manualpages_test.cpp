// The manual written out as plain pages for the desktop's web browser: the pages, the pictures,
// the contents page and the messages when the folder or the browser fails.
#include "help/manualpages.h"

#include "help/helpmanual.h"
#include "support/fakeprompts.h"
#include "support/fakeservices.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QUrl>

#include <gtest/gtest.h>

namespace tarnwick {
namespace {

using test::FakeDesktopServices;
using test::FakePrompts;

QByteArray readAll(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

class ManualPagesTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(manual.load()) << qPrintable(manual.errorString());
        ASSERT_TRUE(target.isValid());
    }

    HelpManual manual;
    QTemporaryDir target;
};

TEST_F(ManualPagesTest, TheContentsPageLinksEveryPageByItsTitleInTheContentsOrder)
{
    const QString page = QString::fromUtf8(ManualPages::indexPage(manual));
    EXPECT_TRUE(page.startsWith(QStringLiteral("<!DOCTYPE html>")));
    qsizetype from = 0;
    for (const HelpTopic &topic : manual.topics()) {
        const QString link = QStringLiteral("<a href=\"%1\">%2</a>")
                                 .arg(topic.file.toHtmlEscaped(), topic.title.toHtmlEscaped());
        const qsizetype at = page.indexOf(link, from);
        ASSERT_GE(at, 0) << qPrintable(link);
        from = at + link.size();
    }
    EXPECT_EQ(page.count(QStringLiteral("<ul>")), page.count(QStringLiteral("</ul>")));
    EXPECT_EQ(page.count(QStringLiteral("<li>")), manual.topics().size());
    EXPECT_EQ(page.count(QStringLiteral("</li>")), manual.topics().size());
}

TEST_F(ManualPagesTest, WritingPutsEveryPageAndPictureBesideTheContentsPage)
{
    const QString folder = target.filePath(QStringLiteral("new/manual"));
    const ManualPages::WriteResult written = ManualPages::write(manual, folder);
    ASSERT_TRUE(written.ok) << qPrintable(written.reason);
    EXPECT_EQ(written.startPage, QDir(folder).filePath(QStringLiteral("index.html")));
    EXPECT_EQ(readAll(written.startPage), ManualPages::indexPage(manual));
    for (const HelpTopic &topic : manual.topics())
        EXPECT_EQ(readAll(QDir(folder).filePath(topic.file)), topic.html.toUtf8())
            << qPrintable(topic.file);
    const QDir pictures(QDir(manual.folder()).filePath(QStringLiteral("images")));
    for (const QString &name : pictures.entryList(QDir::Files))
        EXPECT_EQ(readAll(QDir(folder).filePath(QStringLiteral("images/") + name)),
            readAll(pictures.filePath(name)))
            << qPrintable(name);
}

TEST_F(ManualPagesTest, AnEarlierCopyIsReplaced)
{
    const QString folder = target.path();
    const QString first = QDir(folder).filePath(manual.topics().first().file);
    QFile stale(first);
    ASSERT_TRUE(stale.open(QIODevice::WriteOnly));
    stale.write("old page");
    stale.close();
    ASSERT_TRUE(ManualPages::write(manual, folder).ok);
    EXPECT_EQ(readAll(first), manual.topics().first().html.toUtf8());
}

TEST_F(ManualPagesTest, TheBrowserIsGivenTheContentsPageInTheCacheFolder)
{
    FakeDesktopServices desktop;
    FakePrompts prompts;
    EXPECT_TRUE(ManualPages::openInBrowser(manual, desktop, prompts));
    ASSERT_EQ(desktop.opened.size(), 1U);
    const QString start = QDir(desktop.cacheFolder()).filePath(QStringLiteral("manual/index.html"));
    EXPECT_EQ(desktop.opened.front(), QUrl::fromLocalFile(start));
    EXPECT_TRUE(QFileInfo(start).isFile());
    EXPECT_TRUE(prompts.shown().empty());
}

TEST_F(ManualPagesTest, ABrowserThatDoesNotStartIsReportedWithTheFolder)
{
    FakeDesktopServices desktop;
    desktop.succeed = false;
    FakePrompts prompts;
    EXPECT_FALSE(ManualPages::openInBrowser(manual, desktop, prompts));
    ASSERT_EQ(prompts.shown().size(), 1U);
    const test::ShownPrompt &box = prompts.shown().front();
    EXPECT_EQ(box.title, ManualPages::Title);
    EXPECT_EQ(box.text,
        QStringLiteral("No web browser could open the manual. Its pages are in:\n")
            + QDir::toNativeSeparators(
                QDir(desktop.cacheFolder()).filePath(QStringLiteral("manual"))));
    EXPECT_EQ(box.style, MsgStyle::OkOnly | MsgStyle::Exclamation);
}

TEST_F(ManualPagesTest, ACacheFolderThatCannotBeMadeIsReportedAndNothingIsOpened)
{
    // A file stands where the cache folder would be.
    class BlockedCache : public FakeDesktopServices
    {
    public:
        explicit BlockedCache(QString path) : m_path(std::move(path)) { }
        QString cacheFolder() const override { return m_path; }

    private:
        QString m_path;
    };
    const QString blocker = target.filePath(QStringLiteral("cache"));
    QFile file(blocker);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.close();
    BlockedCache desktop(blocker);
    FakePrompts prompts;
    EXPECT_FALSE(ManualPages::openInBrowser(manual, desktop, prompts));
    EXPECT_TRUE(desktop.opened.empty());
    ASSERT_EQ(prompts.shown().size(), 1U);
    EXPECT_TRUE(prompts.shown().front().text.startsWith(
        QStringLiteral("The pages of the manual could not be written to ")))
        << qPrintable(prompts.shown().front().text);
    EXPECT_EQ(prompts.shown().front().title, ManualPages::Title);
}

} // namespace
} // namespace tarnwick
