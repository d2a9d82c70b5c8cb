// A file's stamp tells one version of it from another without reading it.
#include "platform/filestamp.h"
#include "support/tempappfolder.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

using namespace tarnwick;
using tarnwick::test::TempAppFolder;

namespace {

TEST(FileStampTest, AFileWrittenAgainInPlaceIsTheSameFileInAnotherVersion)
{
    TempAppFolder folder;
    const QString path = folder.filePath(QStringLiteral("a.dat"));
    folder.writeFile(QStringLiteral("a.dat"), "one");
    const std::optional<FileStamp> before = fileStamp(path);
    ASSERT_TRUE(before.has_value());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Append));
    file.write("and more");
    file.close();
    const std::optional<FileStamp> after = fileStamp(path);
    ASSERT_TRUE(after.has_value());
    EXPECT_NE(after, before);
    EXPECT_TRUE(after->isSameFile(*before));
}

#ifdef Q_OS_UNIX
// Where the system gives each file a number, a file of the same size and time renamed into
// place is still another file.
TEST(FileStampTest, TellsAFileRenamedIntoPlaceFromTheOneBefore)
{
    TempAppFolder folder;
    const QString path = folder.filePath(QStringLiteral("a.dat"));
    folder.writeFile(QStringLiteral("a.dat"), "same");
    const std::optional<FileStamp> before = fileStamp(path);
    ASSERT_TRUE(before.has_value());
    EXPECT_EQ(fileStamp(path), before);
    folder.writeFile(QStringLiteral("b.dat"), "same");
    ASSERT_TRUE(QFile::remove(path));
    ASSERT_TRUE(QFile::rename(folder.filePath(QStringLiteral("b.dat")), path));
    EXPECT_NE(fileStamp(path), before);
    EXPECT_FALSE(fileStamp(path)->isSameFile(*before));
    EXPECT_EQ(fileStamp(folder.filePath(QStringLiteral("none.dat"))), std::nullopt);
}
#endif

TEST(FileStampTest, APathNamesTheSameFileThroughALinkOrAnotherWayThere)
{
    TempAppFolder folder;
    folder.writeFile(QStringLiteral("twdata.dat"), "catalogue");
    folder.writeFile(QStringLiteral("other.dat"), "catalogue");
    const QString file = folder.filePath(QStringLiteral("twdata.dat"));
    ASSERT_TRUE(QFile::link(file, folder.filePath(QStringLiteral("link.dat"))));
    ASSERT_TRUE(QDir(folder.path()).mkdir(QStringLiteral("sub")));

    EXPECT_TRUE(namesSameFile(file, file));
    EXPECT_TRUE(namesSameFile(folder.filePath(QStringLiteral("sub/../twdata.dat")), file));
    EXPECT_TRUE(namesSameFile(folder.filePath(QStringLiteral("link.dat")), file));
    EXPECT_FALSE(namesSameFile(folder.filePath(QStringLiteral("other.dat")), file))
        << "the same bytes in another file";
    EXPECT_TRUE(namesSameFile(folder.filePath(QStringLiteral("gone.dat")),
        folder.filePath(QStringLiteral("sub/../gone.dat"))))
        << "a file not there is named by its path";
    EXPECT_FALSE(namesSameFile(folder.filePath(QStringLiteral("gone.dat")), file));
    // A file not there yet, through a link to its folder.
    ASSERT_TRUE(QFile::link(folder.path(), folder.filePath(QStringLiteral("sub/again"))));
    EXPECT_TRUE(namesSameFile(folder.filePath(QStringLiteral("sub/again/gone.dat")),
        folder.filePath(QStringLiteral("gone.dat"))));
    EXPECT_FALSE(namesSameFile(folder.filePath(QStringLiteral("sub/again/other-gone.dat")),
        folder.filePath(QStringLiteral("gone.dat"))));
}

} // namespace
