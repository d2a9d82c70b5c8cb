#include "platform/qt/clipboardkeeper.h"
#include "platform/qt/qtclipboard.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QMimeData>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

namespace tarnwick {
namespace {

using ClipboardKeeper::Target;

QByteArray bytesOf(const QList<Target> &targets, const QByteArray &name)
{
    for (const Target &target : targets) {
        if (target.name == name)
            return target.data;
    }
    ADD_FAILURE() << "no target " << name.constData();
    return {};
}

/// Runs the keeper as the program's command line would start it.
std::optional<int> runKeeper(const QString &file)
{
    std::string program = "tarnwick";
    std::string argument = ClipboardKeeper::KeepClipboardArgument;
    std::string path = QFile::encodeName(file).toStdString();
    std::vector<char *> argv { program.data(), argument.data(), path.data(), nullptr };
    return ClipboardKeeper::runIfAsked(3, argv.data());
}

QString writeFile(const QTemporaryDir &dir, const QByteArray &bytes)
{
    const QString path = dir.filePath(QStringLiteral("handed-over"));
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
    return path;
}

TEST(ClipboardKeeperTest, AQuoteIsKeptInEveryFormTheClipboardOffered)
{
    const std::unique_ptr<QMimeData> data(
        richDocumentMimeData(RichClipboardDocument { QStringLiteral("{\\rtf1 caf\\'e9}"),
            QStringLiteral("<b>café</b>"), QStringLiteral("Quote café €5") }));
    const QList<Target> targets = ClipboardKeeper::targetsFor(*data);

    EXPECT_EQ(bytesOf(targets, "text/plain"), QStringLiteral("Quote café €5").toUtf8());
    EXPECT_EQ(bytesOf(targets, "UTF8_STRING"), QStringLiteral("Quote café €5").toUtf8());
    // STRING and TEXT are Latin-1: what it cannot hold becomes a question mark.
    EXPECT_EQ(bytesOf(targets, "STRING"), QByteArray("Quote caf\xe9 ?5"));
    EXPECT_EQ(bytesOf(targets, "TEXT"), QByteArray("Quote caf\xe9 ?5"));
    EXPECT_EQ(bytesOf(targets, "text/html"), QStringLiteral("<b>café</b>").toUtf8());
    EXPECT_EQ(bytesOf(targets, "text/rtf"), QByteArray("{\\rtf1 caf\\'e9}"));
    EXPECT_EQ(bytesOf(targets, "application/rtf"), QByteArray("{\\rtf1 caf\\'e9}"));
    EXPECT_EQ(targets.size(), 7);
}

TEST(ClipboardKeeperTest, TheHandOverFileReadsBackAsWritten)
{
    const QList<Target> targets { Target { "UTF8_STRING", QByteArray("line 1\nline 2") },
        Target { "text/rtf", QByteArray() }, Target { "x", QByteArray(70000, '\0') } };
    const std::optional<QList<Target>> read =
        ClipboardKeeper::decode(ClipboardKeeper::encode(targets));
    ASSERT_TRUE(read.has_value());
    EXPECT_EQ(*read, targets);
}

TEST(ClipboardKeeperTest, AFileCutShortAtAnyByteIsRefused)
{
    const QByteArray whole = ClipboardKeeper::encode(
        { Target { "text/plain", QByteArray("Pump") }, Target { "STRING", QByteArray("P") } });
    for (qsizetype size = 0; size < whole.size(); ++size)
        EXPECT_FALSE(ClipboardKeeper::decode(whole.left(size)).has_value()) << size;
    EXPECT_FALSE(ClipboardKeeper::decode(whole + QByteArray("x")).has_value())
        << "bytes after the last target";
}

TEST(ClipboardKeeperTest, SizesBeyondTheLimitsAreRefusedBeforeAnythingIsRead)
{
    QByteArray tooMany("TWCLIP1\n");
    tooMany.append(QByteArray::fromHex("00000041")); // 65 targets
    EXPECT_FALSE(ClipboardKeeper::decode(tooMany).has_value());

    QByteArray hugeName("TWCLIP1\n");
    hugeName.append(QByteArray::fromHex("00000001"
                                        "ffffffff"));
    EXPECT_FALSE(ClipboardKeeper::decode(hugeName).has_value());

    QByteArray hugeData("TWCLIP1\n");
    hugeData.append(QByteArray::fromHex("00000001"
                                        "00000001")
        + "x" + QByteArray::fromHex("7fffffff"));
    EXPECT_FALSE(ClipboardKeeper::decode(hugeData).has_value());

    const QByteArray noName =
        ClipboardKeeper::encode({ Target { QByteArray(), QByteArray("Pump") } });
    EXPECT_FALSE(ClipboardKeeper::decode(noName).has_value()) << "a target without a name";
    EXPECT_FALSE(ClipboardKeeper::decode(QByteArray("TWCLIP2\n")).has_value());
}

TEST(ClipboardKeeperTest, OnlyTheKeepersCommandLineStartsIt)
{
    std::string program = "tarnwick";
    std::string other = "--read-workbook";
    std::string path = "x";
    std::vector<char *> argv { program.data(), other.data(), path.data(), nullptr };
    EXPECT_FALSE(ClipboardKeeper::runIfAsked(3, argv.data()).has_value());
    EXPECT_FALSE(ClipboardKeeper::runIfAsked(1, argv.data()).has_value());
}

TEST(ClipboardKeeperTest, AKeeperWithoutItsFileOrWithADamagedOneEndsAtOnce)
{
    const QTemporaryDir dir;
    EXPECT_EQ(runKeeper(dir.filePath(QStringLiteral("gone"))), 2);

    const QString damaged = writeFile(dir, QByteArray("TWCLIP1\n\x00\x00", 10));
    EXPECT_EQ(runKeeper(damaged), 2);
    EXPECT_FALSE(QFile::exists(damaged)) << "the hand-over file is the keeper's to delete";
}

// The keeper deletes the file it is handed; a file that is no hand-over (a catalogue named on
// the command line by mistake) stays where it is.
TEST(ClipboardKeeperTest, AKeeperLeavesAFileThatIsNoHandOver)
{
    const QTemporaryDir dir;
    const QString catalogue = writeFile(dir, QByteArray("P-1\x7f\x7f\x7fPump\r\n"));
    EXPECT_EQ(runKeeper(catalogue), 2);
    EXPECT_TRUE(QFile::exists(catalogue));
}

TEST(ClipboardKeeperTest, AKeeperThatFindsNoDisplayEndsAndLeavesNoFile)
{
    const QTemporaryDir dir;
    const QString path =
        writeFile(dir, ClipboardKeeper::encode({ Target { "UTF8_STRING", QByteArray("Pump") } }));
    const QByteArray display = qgetenv("DISPLAY");
    qputenv("DISPLAY", ":987654");
    EXPECT_EQ(runKeeper(path), 1);
    if (display.isNull())
        qunsetenv("DISPLAY");
    else
        qputenv("DISPLAY", display);
    EXPECT_FALSE(QFile::exists(path));
}

TEST(ClipboardKeeperTest, WithoutAnX11DisplayNothingIsHandedOver)
{
    // The tests run on the offscreen platform: there is no X11 clipboard to hand over.
    QMimeData data;
    data.setText(QStringLiteral("Pump"));
    EXPECT_FALSE(ClipboardKeeper::handOver(data));
}

} // namespace
} // namespace tarnwick
