#pragma once

#include <QtGlobal>

#include <cstring>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace tarnwick {

/// A small pull parser for the XML parts of the zipped workbooks, read as they are inflated:
/// it holds one piece of the input at a time, never the whole part. It knows what those parts
/// use: elements, attributes, character data with the five named entities and character
/// references, CDATA sections, comments and processing instructions. A document type
/// declaration, an unknown entity, a wrongly nested end tag, a markup item longer than
/// MaxMarkupBytes or non-blank text outside the root element make it Invalid, and it stays so.
/// Names are compared as written (with their prefix); the readers use the prefixes the formats
/// are written with.
///
/// The views it hands out (names, attribute values, text) stay valid until the next call of
/// next(). Long character data may come as several Text tokens in a row.
/// Whether text is name, byte for byte: what == says, without a call to compare memory, for the
/// short names the readers compare for every element.
constexpr bool isName(std::string_view text, std::string_view name)
{
    if (text.size() != name.size())
        return false;
    for (std::size_t i = 0; i < name.size(); ++i) {
        if (text[i] != name[i])
            return false;
    }
    return true;
}

/// The same for a name written in the code: the length is known, so the bytes are compared a
/// word at a time without a call.
template <std::size_t Size> inline bool isName(std::string_view text, const char (&name)[Size])
{
    return text.size() == Size - 1 && std::memcmp(text.data(), name, Size - 1) == 0;
}

class XmlPull
{
public:
    /// Reads up to size bytes into data; returns how many, 0 at the end of the input and -1 when
    /// the input cannot be read.
    using Source = std::function<qint64(char *data, qint64 size)>;
    enum class Token { StartElement, EndElement, Text, End, Invalid };

    static constexpr qint64 MaxMarkupBytes = qint64(16) << 20;

    explicit XmlPull(Source source);

    Token next();
    Token token() const { return m_token; }
    /// Of a start or end element: its name as written ("table:table-cell", "c").
    std::string_view name() const { return m_name; }
    /// The name without its prefix ("table-cell", "c").
    std::string_view localName() const;
    /// The depth of the current element (1 for the root), for its start and its end alike.
    int depth() const { return m_depth; }
    /// Of a start element: the value of the attribute of that name as written, with entities
    /// replaced; absent is an empty view and false from hasAttribute.
    std::string_view attribute(std::string_view name) const;
    bool hasAttribute(std::string_view name) const;
    /// Of a start element: its attributes, for a reader that looks for several in one pass.
    std::size_t attributeCount() const { return m_attributeCount; }
    std::string_view attributeName(std::size_t index) const { return m_attributes[index].name; }
    std::string_view attributeValue(std::size_t index) const { return m_attributes[index].value; }
    /// The value of the first attribute whose name without its prefix is localName.
    std::string_view attributeByLocalName(std::string_view localName) const;
    /// Of a text token: the characters, entities replaced and line ends as LF.
    std::string_view text() const { return m_text; }

    /// After a start element: reads up to and including its end. False when the input ends or
    /// is invalid first.
    bool skipElement();
    /// Reads the next token inside the element at depth, whose start tag has been read; false
    /// at that element's end tag, and false when the input ends or is invalid first, which
    /// failed() then tells. An element's content is read as
    ///     const int depth = xml.depth();
    ///     while (xml.nextWithin(depth)) { ... }
    ///     if (xml.failed()) ...
    bool nextWithin(int depth);
    /// Right after a start tag: when the input held so far goes on with
    /// <child>characters</child></element> (the usual form of a cell's value), the child's
    /// attributes and the characters needing no decoding, reads all of it up to and including the
    /// element's end tag and gives the characters in text (valid as text() is); the parser is then
    /// on the element's end. Otherwise reads nothing and returns false, and the element is read
    /// token by token.
    bool readPlainContent(std::string_view child, std::string_view &text);
    /// Whether the input has ended or proved invalid.
    bool failed() const { return m_token == Token::End || m_token == Token::Invalid; }

private:
    struct Attribute
    {
        std::string_view name;
        std::string_view value;
    };

    bool fill();
    Token fail();
    Token readText();
    Token readMarkup();
    enum class TagRead { Complete, Incomplete, Invalid };
    Token readStartTag();
    /// Reads the start tag at the current position from the input held so far.
    TagRead readTagInBuffer();
    Token readEndTag(std::size_t end);
    /// Finds the end of the markup starting at the current position (the end of an end tag,
    /// comment, processing instruction or CDATA section), reading more input as needed; npos
    /// when there is none.
    std::size_t findMarkupEnd(std::string_view terminator);
    /// Where a start tag whose name ends at at ends when what follows is plain attributes
    /// (name="value" with nothing to decode) held in the input so far: just after its '>';
    /// npos otherwise.
    std::size_t plainStartTagEnd(std::size_t at) const;
    bool decodeInto(std::string &out, std::string_view raw, bool attributeValue);

    Source m_source;
    std::vector<char> m_buffer;
    std::size_t m_begin = 0;
    std::size_t m_end = 0;
    std::size_t m_consumed = 0;
    bool m_atEnd = false;
    bool m_sourceFailed = false;
    bool m_atStart = true;
    bool m_sawRoot = false;
    bool m_pendingEnd = false;

    Token m_token = Token::End;
    std::string_view m_name;
    std::string_view m_text;
    int m_depth = 0;
    struct DecodedValue
    {
        std::size_t attribute;
        std::size_t offset;
        std::size_t size;
    };
    void addAttribute(std::string_view name, std::string_view value)
    {
        if (m_attributeCount == m_attributes.size())
            m_attributes.emplace_back();
        m_attributes[m_attributeCount++] = Attribute { name, value };
    }
    /// The attributes of the current start element: the first m_attributeCount of the list.
    std::vector<Attribute> m_attributes;
    std::size_t m_attributeCount = 0;
    std::vector<DecodedValue> m_decodedAt;
    std::string m_decoded;
    std::string m_textStore;
    std::string m_openNames;
    std::vector<std::size_t> m_openStarts;
};

} // namespace tarnwick
