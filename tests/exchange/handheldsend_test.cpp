#include "catalogue/productrecord.h"
#include "catalogue/table.h"
#include "exchange/handheldexport.h"
#include "exchange/handheldsend.h"
#include "platform/qt/qtprocesslauncher.h"
#include "support/fakeservices.h"
#include "support/tempappfolder.h"

#include <QFile>
#include <QTest>

#include <gtest/gtest.h>

using namespace tarnwick;
namespace P = ProductRecord;
using HandheldExport::SendResult;

namespace {

const QLocale EnUs(QLocale::English, QLocale::UnitedStates);

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
        fakes.help, fakes.events, fakes.environment };
    fakes.prompts.answerMessage(MsgResult::Ok);
    fakes.prompts.answerInput("Products");
    const auto sent = HandheldExport::Palmpilot(real, threeProducts(), {}, 1, EnUs);
    EXPECT_EQ(sent, SendResult::Sent);
    for (int waited = 0; waited < 10000 && !folder.exists("args.txt"); waited += 50) {
        QTest::qWait(50);
    }
    ASSERT_TRUE(folder.exists("args.txt"));
    const auto expected = HandheldExport::converterCommand(folder.path(), "Products");
    EXPECT_EQ(QString::fromUtf8(folder.readFile("args.txt")), expected.arguments.join('\n') + '\n');
}
#endif
