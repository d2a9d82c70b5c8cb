// The diagnostic boxes ReadProds shows when the whole command line is "test".
#include "cataloguefixture.h"

namespace tarnwick::test {
namespace {

struct Box
{
    QString text;
    QString title;
    int style;
};

std::vector<Box> boxesOf(const FakePrompts &prompts)
{
    std::vector<Box> boxes;
    for (const ShownPrompt &shown : prompts.shown()) {
        EXPECT_EQ(shown.kind, ShownPrompt::Kind::Message);
        boxes.push_back({ shown.text, shown.title, shown.style });
    }
    return boxes;
}

// The first product's notes hold a line break, so its record spans two physical lines.
const QByteArray TwoRecords = "A-100" FE "Widget" FE "12.5" FE
                              "line one\r\nline two" FE FE FE FE FE FE FE FE FE FE FE FE "\r\n"
                              "B-200" FE "Gadget" FE FE FE FE FE FE FE FE FE FE FE FE FE FE "\r\n";

class TestCommandLineTest : public CatalogueFixture
{
protected:
    TestCommandLineTest() : CatalogueFixture(QStringLiteral("test")) { }
};

TEST_F(TestCommandLineTest, ShowsOpenedThenReadLineAndPartNumberPerRecord)
{
    writeDataFile(TwoRecords);
    // The OK/Cancel boxes take these answers, which make no difference to the reading.
    prompts.answerMessage(MsgResult::Cancel);
    prompts.answerMessage(MsgResult::Ok);

    const CatalogueReadResult result = products.ReadProds(dataFile());

    EXPECT_EQ(result.status, CatalogueReadResult::Status::Ok);
    EXPECT_EQ(products.Count(), 2);
    EXPECT_EQ(catalogue.get(1, 4), Cell("line one\r\nline two"));
    const std::vector<Box> boxes = boxesOf(prompts);
    ASSERT_EQ(boxes.size(), 5u);
    EXPECT_EQ(boxes[0].text, QStringLiteral("Opened Filename"));
    EXPECT_EQ(boxes[0].title, QStringLiteral("test"));
    EXPECT_EQ(boxes[0].style, 0);
    // Only the record's first physical line.
    EXPECT_EQ(boxes[1].text,
        QStringLiteral("read line A-100\x7f\x7f\x7fWidget\x7f\x7f\x7f"
                       "12.5\x7f\x7f\x7fline one"));
    EXPECT_EQ(boxes[1].title, QStringLiteral("Test"));
    EXPECT_EQ(boxes[1].style, 0);
    EXPECT_EQ(boxes[2].text, QStringLiteral("array 1 is A-100"));
    EXPECT_EQ(boxes[2].title, QStringLiteral("test"));
    EXPECT_EQ(boxes[2].style, 1);
    EXPECT_EQ(boxes[3].text,
        QString::fromLatin1(
            QByteArray("read line B-200" FE "Gadget") + QByteArray(14 * 3, '\x7f')));
    EXPECT_EQ(boxes[3].title, QStringLiteral("Test"));
    EXPECT_EQ(boxes[3].style, 0);
    EXPECT_EQ(boxes[4].text, QStringLiteral("array 1 is B-200"));
    EXPECT_EQ(boxes[4].title, QStringLiteral("test"));
    EXPECT_EQ(boxes[4].style, 1);
    EXPECT_EQ(prompts.unusedAnswers(), 0);
}

TEST_F(TestCommandLineTest, FailedReadShowsTheBoxesUpToTheFailure)
{
    writeDataFile("A-1" FE "cut off\r\n");
    const CatalogueReadResult result = products.ReadProds(dataFile());
    EXPECT_EQ(result.status, CatalogueReadResult::Status::Failed);
    EXPECT_EQ(result.errorNumber, 62);
    EXPECT_EQ(prompts.texts(),
        (QStringList { QStringLiteral("Opened Filename"),
            QStringLiteral("read line A-1\x7f\x7f\x7f"
                           "cut off") }));
}

TEST_F(TestCommandLineTest, MissingFileShowsNoBox)
{
    EXPECT_EQ(products.ReadProds(dataFile()).status, CatalogueReadResult::Status::Missing);
    EXPECT_TRUE(prompts.shown().empty());
}

TEST_F(TestCommandLineTest, WritingShowsNoBox)
{
    catalogue.put(1, 1, Cell("A"));
    ASSERT_TRUE(products.WriteProds(dataFile()).ok);
    EXPECT_TRUE(prompts.shown().empty());
}

class OtherCommandLineTest : public CatalogueFixture,
                             public ::testing::WithParamInterface<const char *>
{
protected:
    OtherCommandLineTest() : CatalogueFixture(QString::fromUtf8(GetParam())) { }
};

TEST_P(OtherCommandLineTest, ShowsNoBoxes)
{
    writeDataFile(TwoRecords);
    const CatalogueReadResult result = products.ReadProds(dataFile());
    EXPECT_EQ(result.status, CatalogueReadResult::Status::Ok);
    EXPECT_EQ(products.Count(), 2);
    EXPECT_TRUE(prompts.shown().empty()) << prompts.texts().join(QLatin1Char('|')).toStdString();
}

INSTANTIATE_TEST_SUITE_P(NotExactlyTest, OtherCommandLineTest,
    ::testing::Values("", "Test", "test ", " test", "test x", "TEST"));

} // namespace
} // namespace tarnwick::test
