// The pull parser of the zipped workbooks' XML: what it hands over, whatever the size of the
// pieces the input arrives in, and what it refuses.
#include "exchange/xmlpull.h"

#include <QRandomGenerator>

#include <algorithm>
#include <memory>

#include <gtest/gtest.h>

using namespace tarnwick;
using Token = XmlPull::Token;

namespace {

/// A source that gives the bytes in pieces of at most piece bytes.
XmlPull::Source sourceOf(const std::string &bytes, qint64 piece)
{
    auto at = std::make_shared<std::size_t>(0);
    return [bytes, piece, at](char *data, qint64 size) {
        const auto count =
            std::size_t(std::min<qint64>({ size, piece, qint64(bytes.size() - *at) }));
        std::copy_n(bytes.data() + *at, count, data);
        *at += count;
        return qint64(count);
    };
}

/// The tokens of a document as text: "<name a=v>", "</name>", "'text'", "END" or "INVALID",
/// consecutive texts joined.
std::string tokens(const std::string &xml, qint64 piece = 1 << 20)
{
    XmlPull parser(sourceOf(xml, piece));
    std::string out;
    bool inText = false;
    for (;;) {
        const Token token = parser.next();
        if (token != Token::Text && inText) {
            out += "'";
            inText = false;
        }
        switch (token) {
        case Token::StartElement:
            out += "<" + std::string(parser.name());
            if (parser.hasAttribute("a"))
                out += " a=" + std::string(parser.attribute("a"));
            out += ">";
            break;
        case Token::EndElement:
            out += "</" + std::string(parser.name()) + ">";
            break;
        case Token::Text:
            if (!inText)
                out += "'";
            inText = true;
            out += parser.text();
            break;
        case Token::End:
            return out + "END";
        case Token::Invalid:
            return out + "INVALID";
        }
    }
}

} // namespace

TEST(XmlPull, ElementsAttributesAndText)
{
    const std::string xml = "\xEF\xBB\xBF<?xml version=\"1.0\"?>\n<!-- a comment -->"
                            "<root><c a=\"1\" b='x > y'>text</c><e a='2'/>"
                            "<p>a &lt;b&gt; &amp; &quot;c&quot; &apos;d&apos; &#10;&#x20AC;</p>"
                            "<![CDATA[<raw> & ]]><?pi ?></root>\n";
    const std::string expected =
        "<root><c a=1>'text'</c><e a=2></e><p>'a <b> & \"c\" 'd' \n\xE2\x82\xAC'"
        "</p>'<raw> & '</root>END";
    EXPECT_EQ(tokens(xml), expected);
    for (const qint64 piece : { 1, 2, 3, 7, 64 })
        EXPECT_EQ(tokens(xml, piece), expected) << "pieces of " << piece;
}

TEST(XmlPull, LineEndsAndAttributeValues)
{
    XmlPull parser(sourceOf("<r a=\"x&#10;y\tz\r\nw\" n:b=\"&amp;\">one\r\ntwo\rthree</r>", 5));
    ASSERT_EQ(parser.next(), Token::StartElement);
    EXPECT_EQ(parser.attribute("a"), "x\ny z w");
    EXPECT_EQ(parser.attributeByLocalName("b"), "&");
    EXPECT_EQ(parser.attribute("b"), "") << "names are compared as written";
    EXPECT_EQ(parser.localName(), "r");
    EXPECT_EQ(parser.depth(), 1);
    std::string text;
    while (parser.next() == Token::Text)
        text += parser.text();
    EXPECT_EQ(text, "one\ntwo\nthree");
    EXPECT_EQ(parser.token(), Token::EndElement);
    EXPECT_EQ(parser.depth(), 1);
    EXPECT_EQ(parser.next(), Token::End);
}

TEST(XmlPull, SkipElementReadsToItsEnd)
{
    XmlPull parser(sourceOf("<a><b><c/>x<b>y</b></b><d/></a>", 3));
    ASSERT_EQ(parser.next(), Token::StartElement);
    ASSERT_EQ(parser.next(), Token::StartElement);
    EXPECT_EQ(parser.name(), "b");
    EXPECT_TRUE(parser.skipElement());
    EXPECT_EQ(parser.name(), "b");
    ASSERT_EQ(parser.next(), Token::StartElement);
    EXPECT_EQ(parser.name(), "d");
    EXPECT_EQ(parser.depth(), 2);
}

TEST(XmlPull, NextWithinReadsAnElementsContentUpToItsOwnEnd)
{
    XmlPull parser(sourceOf("<a><b>x<b>y</b><c/></b><d/></a>", 2));
    ASSERT_EQ(parser.next(), Token::StartElement);
    ASSERT_EQ(parser.next(), Token::StartElement);
    const int depth = parser.depth();
    std::string seen;
    while (parser.nextWithin(depth)) {
        if (parser.token() == Token::StartElement)
            seen += "<" + std::string(parser.name()) + ">";
        else if (parser.token() == Token::EndElement)
            seen += "</" + std::string(parser.name()) + ">";
        else if (parser.token() == Token::Text)
            seen += parser.text();
    }
    EXPECT_FALSE(parser.failed());
    EXPECT_EQ(seen, "x<b>y</b><c></c>") << "the inner b's end is not the outer one's";
    EXPECT_EQ(parser.token(), Token::EndElement);
    EXPECT_EQ(parser.name(), "b");
    ASSERT_EQ(parser.next(), Token::StartElement);
    EXPECT_EQ(parser.name(), "d");
}

TEST(XmlPull, PlainContentIsReadAtOnceUpToTheElementsEnd)
{
    XmlPull parser(sourceOf("<row><c r=\"A1\"><v>12.5</v></c><c><v></v></c><c r=\"B1\"/>"
                            "<n:c><n:v>x y</n:v></n:c>"
                            "<si><t xml:space=\"preserve\" b=\"\"> two  blanks </t></si><d/></row>",
        1 << 20));
    ASSERT_EQ(parser.next(), Token::StartElement);
    ASSERT_EQ(parser.next(), Token::StartElement);
    EXPECT_EQ(parser.attribute("r"), "A1");
    std::string_view text;
    ASSERT_TRUE(parser.readPlainContent("v", text));
    EXPECT_EQ(text, "12.5");
    EXPECT_EQ(parser.token(), Token::EndElement);
    EXPECT_EQ(parser.name(), "c");
    EXPECT_EQ(parser.depth(), 2);
    ASSERT_EQ(parser.next(), Token::StartElement);
    ASSERT_TRUE(parser.readPlainContent("v", text));
    EXPECT_EQ(text, "");
    ASSERT_EQ(parser.next(), Token::StartElement);
    EXPECT_FALSE(parser.readPlainContent("v", text)) << "an empty element has no content";
    ASSERT_EQ(parser.next(), Token::EndElement);
    ASSERT_EQ(parser.next(), Token::StartElement);
    ASSERT_TRUE(parser.readPlainContent("n:v", text));
    EXPECT_EQ(text, "x y");
    EXPECT_EQ(parser.name(), "n:c");
    ASSERT_EQ(parser.next(), Token::StartElement);
    ASSERT_TRUE(parser.readPlainContent("t", text)) << "plain attributes of the child";
    EXPECT_EQ(text, " two  blanks ");
    ASSERT_EQ(parser.next(), Token::StartElement);
    EXPECT_EQ(parser.name(), "d");
    EXPECT_EQ(parser.depth(), 2);
    ASSERT_EQ(parser.next(), Token::EndElement);
    ASSERT_EQ(parser.next(), Token::EndElement);
    EXPECT_EQ(parser.name(), "row");
    EXPECT_EQ(parser.next(), Token::End);
}

namespace {

/// A parser on the start of cell, the element xml starts with inside a root element <r>,
/// after readPlainContent("v") declined its content and read nothing.
std::unique_ptr<XmlPull> declinedCell(const std::string &xml)
{
    auto parser = std::make_unique<XmlPull>(sourceOf("<r>" + xml + "</r>", 1 << 20));
    EXPECT_EQ(parser->next(), Token::StartElement);
    EXPECT_EQ(parser->next(), Token::StartElement);
    std::string_view text;
    EXPECT_FALSE(parser->readPlainContent("v", text));
    EXPECT_EQ(parser->token(), Token::StartElement) << "nothing is read";
    return parser;
}

} // namespace

TEST(XmlPull, ContentOfAnotherFormIsLeftToBeReadTokenByToken)
{
    // Each is read token by token after readPlainContent has declined it.
    const std::vector<std::pair<std::string, std::string>> cases {
        { "<c><v>a &amp; b</v></c>", "'a & b'</v></c>" },
        { "<c><v>a\r\nb</v></c>", "'a\nb'</v></c>" },
        { "<c><f>A1*2</f><v>2</v></c>", "<f>'A1*2'</f><v>'2'</v></c>" },
        { "<c><v t='x'>2</v></c>", "'2'</v></c>" },
        { "<c><v t=\"&lt;\">2</v></c>", "'2'</v></c>" },
        { "<c><v  t=\"x\">2</v></c>", "'2'</v></c>" },
        { "<c><v>2</v ></c>", "'2'</v></c>" },
        { "<c><v>2</v></c >", "'2'</v></c>" },
        { "<c><w>2</w></c>", "<w>'2'</w></c>" },
        { "<c><v>2</v><v>3</v></c>", "'2'</v><v>'3'</v></c>" },
    };
    for (const auto &[xml, rest] : cases) {
        SCOPED_TRACE(xml);
        const std::unique_ptr<XmlPull> declined = declinedCell(xml);
        XmlPull &parser = *declined;
        std::string seen;
        for (Token token = parser.next(); token != Token::End && token != Token::Invalid
             && !(token == Token::EndElement && parser.name() == "r");
             token = parser.next()) {
            if (token == Token::StartElement && parser.name() == "v" && seen.empty())
                continue;
            if (token == Token::StartElement)
                seen += "<" + std::string(parser.name()) + ">";
            else if (token == Token::EndElement)
                seen += "</" + std::string(parser.name()) + ">";
            else
                seen += "'" + std::string(parser.text()) + "'";
        }
        EXPECT_EQ(seen, rest);
    }
}

TEST(XmlPull, ContentThatIsNoXmlIsNotReadAsPlainContent)
{
    for (const std::string xml :
        { "<c><v t>2</v></c>", "<c><v t=\"x>2</v></c>", "<c><v>2</w></c>" }) {
        SCOPED_TRACE(xml);
        const std::unique_ptr<XmlPull> declined = declinedCell(xml);
        XmlPull &parser = *declined;
        const int depth = parser.depth();
        while (parser.nextWithin(depth)) { }
        EXPECT_EQ(parser.token(), Token::Invalid);
    }
}

TEST(XmlPull, ANulInANameOrAValueIsPartOfIt)
{
    const std::string xml("<r\0s a\0b=\"x\0y\" c='&lt;\0'>t</r\0s>", 32);
    for (const qint64 piece : { 1, 3, 64 }) {
        SCOPED_TRACE(piece);
        XmlPull parser(sourceOf(xml, piece));
        ASSERT_EQ(parser.next(), Token::StartElement);
        EXPECT_EQ(parser.name(), std::string_view("r\0s", 3));
        EXPECT_EQ(parser.attribute(std::string_view("a\0b", 3)), std::string_view("x\0y", 3));
        EXPECT_EQ(parser.attribute("c"), std::string_view("<\0", 2));
        ASSERT_EQ(parser.next(), Token::Text);
        ASSERT_EQ(parser.next(), Token::EndElement);
        EXPECT_EQ(parser.next(), Token::End);
    }
}

TEST(XmlPull, PlainContentCutByTheEndOfTheInputHeldSoFarIsReadTokenByToken)
{
    const std::string xml = "<r><c><v>1234</v></c></r>";
    for (const qint64 piece : { 1, 4, 8, 12, 16, 20 }) {
        SCOPED_TRACE(piece);
        XmlPull parser(sourceOf(xml, piece));
        ASSERT_EQ(parser.next(), Token::StartElement);
        ASSERT_EQ(parser.next(), Token::StartElement);
        std::string_view text;
        std::string value;
        if (parser.readPlainContent("v", text)) {
            value = text;
        } else {
            const int depth = parser.depth();
            while (parser.nextWithin(depth)) {
                if (parser.token() == Token::Text)
                    value += parser.text();
            }
        }
        EXPECT_EQ(value, "1234");
        EXPECT_EQ(parser.token(), Token::EndElement);
        EXPECT_EQ(parser.name(), "c");
        ASSERT_EQ(parser.next(), Token::EndElement);
        EXPECT_EQ(parser.name(), "r");
        EXPECT_EQ(parser.next(), Token::End);
    }
}

TEST(XmlPull, NextWithinStopsWhenTheInputEndsOrIsInvalidFirst)
{
    for (const std::string xml : { "<a><b>x<c/>", "<a><b>x</c></a>" }) {
        SCOPED_TRACE(xml);
        XmlPull parser(sourceOf(xml, 1 << 10));
        ASSERT_EQ(parser.next(), Token::StartElement);
        ASSERT_EQ(parser.next(), Token::StartElement);
        const int depth = parser.depth();
        int steps = 0;
        while (parser.nextWithin(depth))
            ++steps;
        EXPECT_TRUE(parser.failed());
        EXPECT_FALSE(parser.skipElement());
        EXPECT_LE(steps, 3);
    }
}

TEST(XmlPull, LongTextComesInPiecesNeverInsideAReference)
{
    std::string body;
    for (int i = 0; i < 200000; ++i)
        body += "ab&amp;\r\n";
    XmlPull parser(sourceOf("<t>" + body + "</t>", 4096));
    ASSERT_EQ(parser.next(), Token::StartElement);
    std::string text;
    int pieces = 0;
    while (parser.next() == Token::Text) {
        text += parser.text();
        ++pieces;
    }
    EXPECT_EQ(parser.token(), Token::EndElement);
    EXPECT_GT(pieces, 1);
    std::string expected;
    for (int i = 0; i < 200000; ++i)
        expected += "ab&\n";
    EXPECT_EQ(text, expected);
}

TEST(XmlPull, WhatIsNoDocumentOfTheWorkbooksIsInvalid)
{
    const std::vector<std::pair<const char *, std::string>> cases {
        { "nothing", "" },
        { "blanks only", "  \n" },
        { "a document type", "<!DOCTYPE r [<!ENTITY e \"x\">]><r>&e;</r>" },
        { "an unknown entity", "<r>&nbsp;</r>" },
        { "a reference to nothing", "<r>&#0;</r>" },
        { "a reference beyond Unicode", "<r>&#x110000;</r>" },
        { "an ampersand alone", "<r>a & b</r>" },
        { "wrongly nested", "<a><b></a></b>" },
        { "cut short", "<a><b>text" },
        { "cut inside a tag", "<a><b attr=\"x" },
        { "text outside the root", "<a/>text" },
        { "a second root", "<a/><b/>" },
        { "zero bytes", std::string(100000, '\0') },
        { "an attribute without a value", "<a b></a>" },
        { "an attribute without quotes", "<a b=c></a>" },
        { "an end tag of nothing", "</a>" },
        { "CDATA outside the root", "<![CDATA[x]]><a/>" },
    };
    for (const auto &[what, xml] : cases) {
        const std::string result = tokens(xml);
        EXPECT_EQ(result.substr(result.size() - std::min<std::size_t>(7, result.size())), "INVALID")
            << what << ": " << result;
    }
}

TEST(XmlPull, AFailingSourceMakesTheDocumentInvalid)
{
    int calls = 0;
    XmlPull parser([&calls](char *data, qint64) -> qint64 {
        if (calls++ > 0)
            return -1;
        std::copy_n("<a>", 3, data);
        return 3;
    });
    EXPECT_EQ(parser.next(), Token::StartElement);
    EXPECT_EQ(parser.next(), Token::Invalid);
    EXPECT_EQ(parser.next(), Token::Invalid) << "and stays so";
}

TEST(XmlPull, RandomBytesNeverHurtTheParser)
{
    const std::string valid = "<?xml version=\"1.0\"?><sst><si><t xml:space=\"preserve\">a &amp; "
                              "b</t></si><si><r><t>x</t></r><rPh><t>y</t></rPh></si>"
                              "<![CDATA[z]]><!-- c --></sst>";
    QRandomGenerator random(19);
    for (int round = 0; round < 3000; ++round) {
        std::string xml = valid;
        for (int flips = random.bounded(1, 6); flips > 0; --flips)
            xml[std::size_t(random.bounded(int(xml.size())))] = char(random.bounded(256));
        XmlPull parser(sourceOf(xml, random.bounded(1, 40)));
        int count = 0;
        Token token = Token::Text;
        while (token != Token::End && token != Token::Invalid && count < 10000) {
            token = parser.next();
            ++count;
        }
        EXPECT_LT(count, 10000);
    }
}
