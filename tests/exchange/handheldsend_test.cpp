#include "catalogue/productrecord.h"
#include "catalogue/table.h"
#include "exchange/handheldexport.h"
#include "exchange/handheldsend.h"
#include "platform/qt/qtprocesslauncher.h"
#include "support/diskfaults.h"
#include "support/fakeservices.h"
#include "support/filegroups.h"
#include "support/tempappfolder.h"
#include "support/testlocale.h"

#include <QDir>
#include <QFile>
#include <QTest>

#include <gtest/gtest.h>

using namespace tarnwick;
namespace P = ProductRecord;
using HandheldExport::SendResult;

namespace {

using tarnwick::test::EnUs;

Table threeProducts()
{
    Table catalogue(3, P::FieldCount);
    catalogue.put(1, P::PartNumber, "A1");
    catalogue.put(2, P::PartNumber, "B2");
    catalogue.put(3, P::PartNumber, "C3");
    return catalogue;
}

class HandheldSend : public ::testing::Test
{
protected:
    test::TempAppFolder folder;
    test::FakeServices fakes { folder.environment() };
    AppServices services = fakes.services();

    SendResult send(const std::vector<int> &selection = {}, int currentRow = 1)
    {
        return HandheldExport::Palmpilot(services, threeProducts(), selection, currentRow, EnUs);
    }
};

const QByteArray HeaderLine = "Quote,Cat Number,Description,Price,Includes,Notes,Discounts\r\n";

} // namespace

TEST_F(HandheldSend, CancelOnTheQuestionWritesNothing)
{
    fakes.prompts.answerMessage(MsgResult::Cancel);
    EXPECT_EQ(send(), SendResult::NotAsked);
    EXPECT_EQ(fakes.prompts.shown()[0].text, "Send products shown to palm computer?");
    EXPECT_EQ(fakes.prompts.shown()[0].style, MsgStyle::OkCancel + MsgStyle::Question);
    EXPECT_TRUE(fakes.launcher.starts.empty());
    EXPECT_TRUE(folder.fileNames().filter(".CSV").isEmpty());
}

TEST_F(HandheldSend, EmptyGroupNameWritesNothing)
{
    fakes.prompts.answerMessage(MsgResult::Ok);
    fakes.prompts.answerInput(QString());
    EXPECT_EQ(send({ 2 }), SendResult::NotAsked);
    EXPECT_EQ(fakes.prompts.shown()[0].text, "Send selected products to Palm Computer?");
    EXPECT_EQ(fakes.prompts.shown()[1].text, "What should this group of products be called?");
    EXPECT_EQ(fakes.prompts.shown()[1].title, "Palmpilot category");
    EXPECT_EQ(fakes.prompts.shown()[1].defaultText, "Products");
    EXPECT_TRUE(fakes.launcher.starts.empty());
}

TEST_F(HandheldSend, RefusedGroupNameWritesNothing)
{
    folder.writeFile("twdata.dat", "keep");
    fakes.prompts.answerMessage(MsgResult::Ok);
    fakes.prompts.answerInput("../twdata");
    EXPECT_EQ(send(), SendResult::RefusedName);
    EXPECT_TRUE(fakes.launcher.starts.empty());
    EXPECT_EQ(folder.readFile("twdata.dat"), "keep");
    EXPECT_EQ(fakes.prompts.shown().size(), 3U);
}

TEST_F(HandheldSend, AllProductsAreSentAndTheFilesDeletedAfterSuccess)
{
    fakes.prompts.answerMessage(MsgResult::Ok);
    fakes.prompts.answerInput("Products");
    folder.writeFile("Products.pdb", "made by the converter");
    EXPECT_EQ(send(), SendResult::Sent);
    ASSERT_EQ(fakes.launcher.starts.size(), 1U);
    const auto expected = HandheldExport::converterCommand(folder.path(), "Products");
    EXPECT_EQ(fakes.launcher.starts[0].program, expected.program);
    EXPECT_EQ(fakes.launcher.starts[0].arguments, expected.arguments);
    EXPECT_EQ(fakes.prompts.shown().back().text,
        "After you hotsync the selected products will be in your Palmpilot.");
    EXPECT_EQ(fakes.prompts.shown().back().title, "Success");
    EXPECT_FALSE(folder.exists("Products.CSV"));
    EXPECT_FALSE(folder.exists("Products.pdb"));
}

TEST_F(HandheldSend, ConverterThatCannotStartOpensHelpAndKeepsTheFile)
{
    fakes.prompts.answerMessage(MsgResult::Ok);
    fakes.prompts.answerInput("Pumps");
    fakes.launcher.succeed = false;
    EXPECT_EQ(send({ 3 }, 1), SendResult::ConverterFailed);
    ASSERT_EQ(fakes.help.calls.size(), 1);
    EXPECT_EQ(fakes.help.calls[0], folder.filePath("Tarnwick Help.chm") + "|15|2050");
    EXPECT_EQ(folder.readFile("Pumps.CSV"),
        HeaderLine + "0,C3,,\"\",\"\",\"\",\r\n0,A1,,\"\",\"\",\"\",\r\n");
}

// The file holds the catalogue's prices: beside a catalogue kept private it is private too,
// and it has the catalogue's group, whatever the folder gives new files.
TEST_F(HandheldSend, TheFileTakesTheCataloguesPermissionsAndGroup)
{
    folder.writeFile("twdata.dat", "A1\x7f\x7f\x7f\r\n");
    const QString catalogue = folder.filePath("twdata.dat");
    ASSERT_TRUE(QFile::setPermissions(catalogue, QFile::ReadOwner | QFile::WriteOwner));
    const long group = test::giveOtherGroup(catalogue);
    fakes.prompts.answerMessage(MsgResult::Ok);
    fakes.prompts.answerInput("Pumps");
    fakes.launcher.succeed = false; // the file stays
    ASSERT_EQ(send(), SendResult::ConverterFailed);
    EXPECT_EQ(test::modeOf(folder.filePath("Pumps.CSV")), 0600U);
    EXPECT_EQ(test::groupOf(folder.filePath("Pumps.CSV")), group);
}

namespace {

Table manyProducts()
{
    Table catalogue(1000, P::FieldCount);
    for (int row = 1; row <= catalogue.rowCount(); ++row) {
        catalogue.put(row, P::PartNumber, QStringLiteral("PN-%1").arg(row));
        catalogue.put(row, P::ProductName, QStringLiteral("Product number %1").arg(row));
    }
    return catalogue;
}

} // namespace

TEST_F(HandheldSend, AFileThatFailsPartWayIsReportedAndNoConverterStarts)
{
    folder.writeFile("Products.CSV", "the previous file");
    fakes.prompts.answerMessage(MsgResult::Ok);
    fakes.prompts.answerInput("Products");
    SendResult sent = SendResult::Sent;
    {
        test::FileSizeLimit fullDisk(16384);
        ASSERT_TRUE(fullDisk.active());
        sent = HandheldExport::Palmpilot(services, manyProducts(), {}, 1, EnUs);
    }
    EXPECT_EQ(sent, SendResult::WriteFailed);
    EXPECT_TRUE(fakes.launcher.starts.empty());
    ASSERT_EQ(fakes.prompts.shown().size(), 3U);
    const test::ShownPrompt &box = fakes.prompts.shown()[2];
    EXPECT_EQ(box.text,
        QStringLiteral("Error creating file for Palm application\n\n\"%1\" could not be "
                       "written: the file would be larger than the system allows.")
            .arg(folder.filePath("Products.CSV")));
    EXPECT_EQ(box.title, "Error:61");
    EXPECT_EQ(box.style, MsgStyle::OkOnly);
    EXPECT_EQ(folder.readFile("Products.CSV"), "the previous file");
    EXPECT_EQ(folder.fileNames(), QStringList { "Products.CSV" });
}

TEST_F(HandheldSend, AFullDiskIsReportedAndTheOldFileKept)
{
    test::TinyDisk disk(folder.filePath("app"), 64);
    if (!disk.mounted())
        FAIL() << "the full-disk check needs a small file system, which cannot be mounted here "
                  "(the tests run as root): "
               << disk.failure().toStdString();
    const AppEnvironment onDisk(folder.filePath("app"), QString());
    AppServices tiny { fakes.prompts, fakes.clipboard, fakes.settings, fakes.fileDialogs,
        fakes.launcher, fakes.help, fakes.events, onDisk, fakes.desktop };
    folder.writeFile("app/Products.CSV", "the previous file");
    disk.fillLeaving(8192);
    fakes.prompts.answerMessage(MsgResult::Ok);
    fakes.prompts.answerInput("Products");
    EXPECT_EQ(
        HandheldExport::Palmpilot(tiny, manyProducts(), {}, 1, EnUs), SendResult::WriteFailed);
    EXPECT_TRUE(fakes.launcher.starts.empty());
    ASSERT_EQ(fakes.prompts.shown().size(), 3U);
    EXPECT_TRUE(fakes.prompts.shown()[2].text.endsWith(
        QStringLiteral("could not be written: the disk is full.")));
    EXPECT_EQ(fakes.prompts.shown()[2].title, "Error:61");
    EXPECT_EQ(folder.readFile("app/Products.CSV"), "the previous file");
    EXPECT_EQ(QDir(folder.filePath("app")).entryList(QDir::Files),
        (QStringList { "filler.bin", "Products.CSV" }));
}

TEST_F(HandheldSend, AnApplicationFolderThatTakesNoNewFilesKeepsTheOldFile)
{
    const QString app = folder.filePath("app");
    ASSERT_TRUE(QDir().mkpath(app));
    folder.writeFile("app/Products.CSV", "the previous file");
    QFile::setPermissions(folder.filePath("app/Products.CSV"), QFileDevice::Permissions(0x6666));
    const AppEnvironment readOnlyApp(app, QString());
    AppServices readOnly { fakes.prompts, fakes.clipboard, fakes.settings, fakes.fileDialogs,
        fakes.launcher, fakes.help, fakes.events, readOnlyApp, fakes.desktop };
    fakes.prompts.answerMessage(MsgResult::Ok);
    fakes.prompts.answerInput("Products");
    SendResult sent = SendResult::Sent;
    {
        test::UnwritableFolder refusing(app, folder.path());
        ASSERT_TRUE(refusing.blocksNewFiles());
        sent = HandheldExport::Palmpilot(readOnly, threeProducts(), {}, 1, EnUs);
    }
    EXPECT_EQ(sent, SendResult::WriteFailed);
    ASSERT_EQ(fakes.prompts.shown().size(), 3U);
    EXPECT_EQ(fakes.prompts.shown()[2].text,
        QStringLiteral("Error creating file for Palm application\n\n\"%1\" could not be "
                       "written: you have no permission to write there.")
            .arg(folder.filePath("app/Products.CSV")));
    EXPECT_EQ(fakes.prompts.shown()[2].title, "Error:70");
    EXPECT_EQ(folder.readFile("app/Products.CSV"), "the previous file");
    EXPECT_EQ(QDir(app).entryList(QDir::Files), QStringList { "Products.CSV" });
    EXPECT_TRUE(fakes.launcher.starts.empty());
}

TEST_F(HandheldSend, AGroupFolderThatIsAFileIsReported)
{
    folder.writeFile("Pumps", "a plain file");
    fakes.prompts.answerMessage(MsgResult::Ok);
    fakes.prompts.answerInput("Pumps");
    const QString appFolder = folder.filePath("Pumps");
    const AppEnvironment belowAFile(appFolder, QString());
    AppServices broken { fakes.prompts, fakes.clipboard, fakes.settings, fakes.fileDialogs,
        fakes.launcher, fakes.help, fakes.events, belowAFile, fakes.desktop };
    EXPECT_EQ(
        HandheldExport::Palmpilot(broken, threeProducts(), {}, 1, EnUs), SendResult::WriteFailed);
    ASSERT_EQ(fakes.prompts.shown().size(), 3U);
    EXPECT_EQ(fakes.prompts.shown()[2].title, "Error:76");
    EXPECT_EQ(folder.readFile("Pumps"), "a plain file");
    EXPECT_TRUE(fakes.launcher.starts.empty());
}

#ifdef Q_OS_UNIX
TEST_F(HandheldSend, FakeConverterScriptReceivesTheExactArguments)
{
    const QByteArray script = "#!/bin/sh\n"
                              "for a in \"$@\"; do printf '%s\\n' \"$a\"; done > args.part\n"
                              "mv args.part args.txt\n";
    folder.writeFile("Handdesk.exe", script);
    QFile::setPermissions(
        folder.filePath("Handdesk.exe"), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    QtProcessLauncher launcher;
    AppServices real { fakes.prompts, fakes.clipboard, fakes.settings, fakes.fileDialogs, launcher,
        fakes.help, fakes.events, fakes.environment, fakes.desktop };
    fakes.prompts.answerMessage(MsgResult::Ok);
    fakes.prompts.answerInput("Products");
    const auto sent = HandheldExport::Palmpilot(real, threeProducts(), {}, 1, EnUs);
    EXPECT_EQ(sent, SendResult::Sent);
    ASSERT_TRUE(QTest::qWaitFor([&] { return folder.exists("args.txt"); }, 10000));
    const auto expected = HandheldExport::converterCommand(folder.path(), "Products");
    EXPECT_EQ(QString::fromUtf8(folder.readFile("args.txt")), expected.arguments.join('\n') + '\n');
}
#endif
