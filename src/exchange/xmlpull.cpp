#include "exchange/xmlpull.h"

#include "exchange/utf8.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

namespace tarnwick {

namespace {

constexpr qint64 XmlReadBytes = qint64(256) << 10;
/// Character data longer than this without markup is handed over in pieces.
constexpr std::size_t XmlTextPieceBytes = std::size_t(256) << 10;

/// The characters that make an attribute value need decoding: references, blanks other than
/// the space (which XML turns into spaces) and '<', which a value may not hold.
constexpr std::array<bool, 256> XmlSpecialInValue = [] {
    std::array<bool, 256> table {};
    for (const char c : { '&', '\t', '\n', '\r', '<' })
        table[std::uint8_t(c)] = true;
    return table;
}();

/// The characters that end an element's name: blanks, '/' and '>'; an attribute's name also
/// ends at '='. The scans also stop at NUL, which the buffer holds after the input: a NUL
/// within the input is scanned past.
constexpr std::array<bool, 256> XmlNameEnd = [] {
    std::array<bool, 256> table {};
    for (const char c : { ' ', '\t', '\n', '\r', '/', '>', '\0' })
        table[std::uint8_t(c)] = true;
    return table;
}();
constexpr std::array<bool, 256> XmlAttributeNameEnd = [] {
    std::array<bool, 256> table = XmlNameEnd;
    table[std::uint8_t('=')] = true;
    return table;
}();

/// Where an attribute value's scan stops: its quote (either), what needs decoding, and NUL.
constexpr std::array<bool, 256> XmlValueStop = [] {
    std::array<bool, 256> table = XmlSpecialInValue;
    for (const char c : { '"', '\'', '\0' })
        table[std::uint8_t(c)] = true;
    return table;
}();

/// The first character from at on that stop holds, or end; the NUL after the input ends the
/// scan without a comparison of at with end for every character.
std::size_t scanTo(
    const char *data, std::size_t at, std::size_t end, const std::array<bool, 256> &stop)
{
    for (;;) {
        while (!stop[std::uint8_t(data[at])])
            ++at;
        if (at >= end || data[at] != '\0')
            return at;
        ++at;
    }
}

bool isXmlBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

bool isBlankText(std::string_view text)
{
    return std::all_of(text.begin(), text.end(), isXmlBlank);
}

/// The character of a reference such as "#10", "#x2F" or "amp" (the text between & and ;), or
/// 0 when there is none.
char32_t entityCharacter(std::string_view entity)
{
    if (entity == "lt")
        return '<';
    if (entity == "gt")
        return '>';
    if (entity == "amp")
        return '&';
    if (entity == "quot")
        return '"';
    if (entity == "apos")
        return '\'';
    if (entity.size() < 2 || entity.front() != '#')
        return 0;
    const bool hex = entity[1] == 'x';
    const std::string_view digits = entity.substr(hex ? 2 : 1);
    if (digits.empty() || digits.size() > 8)
        return 0;
    char32_t value = 0;
    for (const char c : digits) {
        int digit = -1;
        if (c >= '0' && c <= '9')
            digit = c - '0';
        else if (hex && c >= 'a' && c <= 'f')
            digit = c - 'a' + 10;
        else if (hex && c >= 'A' && c <= 'F')
            digit = c - 'A' + 10;
        if (digit < 0)
            return 0;
        value = value * (hex ? 16 : 10) + char32_t(digit);
    }
    if (value == 0 || value > 0x10FFFF || (value >= 0xD800 && value <= 0xDFFF))
        return 0;
    return value;
}

} // namespace

XmlPull::XmlPull(Source source) : m_source(std::move(source))
{
    m_buffer.resize(std::size_t(2 * XmlReadBytes));
}

std::string_view XmlPull::localName() const
{
    const std::size_t colon = m_name.rfind(':');
    return colon == std::string_view::npos ? m_name : m_name.substr(colon + 1);
}

std::string_view XmlPull::attribute(std::string_view name) const
{
    for (std::size_t i = 0; i < m_attributeCount; ++i) {
        const std::string_view candidate = m_attributes[i].name;
        if (isName(candidate, name))
            return m_attributes[i].value;
    }
    return {};
}

bool XmlPull::hasAttribute(std::string_view name) const
{
    return std::any_of(m_attributes.begin(),
        m_attributes.begin() + std::ptrdiff_t(m_attributeCount),
        [name](const Attribute &attribute) { return attribute.name == name; });
}

std::string_view XmlPull::attributeByLocalName(std::string_view localName) const
{
    for (std::size_t i = 0; i < m_attributeCount; ++i) {
        const Attribute &attribute = m_attributes[i];
        const std::size_t colon = attribute.name.rfind(':');
        const std::string_view local =
            colon == std::string_view::npos ? attribute.name : attribute.name.substr(colon + 1);
        if (local == localName)
            return attribute.value;
    }
    return {};
}

bool XmlPull::skipElement()
{
    if (m_token != Token::StartElement)
        return false;
    const int depth = m_depth;
    while (nextWithin(depth)) { }
    return !failed();
}

bool XmlPull::nextWithin(int depth)
{
    const Token token = next();
    return token != Token::End && token != Token::Invalid
        && (token != Token::EndElement || m_depth != depth);
}

std::size_t XmlPull::plainStartTagEnd(std::size_t at) const
{
    const char *data = m_buffer.data();
    const std::size_t end = m_end;
    for (;;) {
        if (at >= end)
            return std::string::npos;
        if (data[at] == '>')
            return at + 1;
        if (data[at] != ' ')
            return std::string::npos;
        const std::size_t nameStart = ++at;
        while (at < end && !XmlAttributeNameEnd[std::uint8_t(data[at])])
            ++at;
        if (at == nameStart || at + 1 >= end || data[at] != '=' || data[at + 1] != '"')
            return std::string::npos;
        for (at += 2; at < end && data[at] != '"'; ++at) {
            if (XmlSpecialInValue[std::uint8_t(data[at])])
                return std::string::npos;
        }
        ++at;
    }
}

bool XmlPull::readPlainContent(std::string_view child, std::string_view &text)
{
    if (m_token != Token::StartElement || m_pendingEnd)
        return false;
    const std::string_view element = std::string_view(m_openNames).substr(m_openStarts.back());
    const char *data = m_buffer.data();
    const std::size_t end = m_end;
    // "<child>", or "<child name="value" ...>" with values that need no decoding
    const std::size_t from = m_consumed;
    if (end - from < child.size() + 2 || data[from] != '<'
        || std::memcmp(data + from + 1, child.data(), child.size()) != 0)
        return false;
    const std::size_t at = plainStartTagEnd(from + 1 + child.size());
    if (at == std::string::npos)
        return false;
    const void *found = std::memchr(data + at, '<', end - at);
    if (found == nullptr)
        return false;
    const auto stop = std::size_t(static_cast<const char *>(found) - data);
    const std::string_view raw(data + at, stop - at);
    if (std::memchr(raw.data(), '&', raw.size()) != nullptr
        || std::memchr(raw.data(), '\r', raw.size()) != nullptr)
        return false;
    // "</child></element>"
    const std::size_t closing = child.size() + element.size() + 6;
    const char *tail = data + stop;
    const std::size_t elementAt = child.size() + 5;
    if (end - stop < closing || tail[1] != '/' || tail[elementAt - 3] != '>'
        || tail[elementAt - 2] != '<' || tail[elementAt - 1] != '/' || tail[closing - 1] != '>'
        || std::memcmp(tail + 2, child.data(), child.size()) != 0
        || std::memcmp(tail + elementAt, element.data(), element.size()) != 0)
        return false;
    m_consumed = stop + closing;
    m_name = std::string_view(tail + elementAt, element.size());
    m_depth = int(m_openStarts.size());
    m_openNames.resize(m_openStarts.back());
    m_openStarts.pop_back();
    m_attributeCount = 0;
    m_text = {};
    m_token = Token::EndElement;
    text = raw;
    return true;
}

bool XmlPull::fill()
{
    if (m_atEnd)
        return false;
    if (m_begin > 0) {
        std::memmove(m_buffer.data(), m_buffer.data() + m_begin, m_end - m_begin);
        m_end -= m_begin;
        m_consumed -= std::min(m_consumed, m_begin);
        m_begin = 0;
    }
    // One byte more than is read, for the NUL after the input that ends the tag scans.
    if (m_buffer.size() - m_end <= std::size_t(XmlReadBytes))
        m_buffer.resize(std::max(m_buffer.size() * 2, m_end + std::size_t(XmlReadBytes) + 1));
    const qint64 count = m_source(m_buffer.data() + m_end, XmlReadBytes);
    if (count <= 0) {
        m_buffer[m_end] = '\0';
        m_atEnd = true;
        m_sourceFailed = count < 0;
        return false;
    }
    m_end += std::size_t(count);
    m_buffer[m_end] = '\0';
    return true;
}

XmlPull::Token XmlPull::fail()
{
    m_token = Token::Invalid;
    m_name = {};
    m_text = {};
    m_attributeCount = 0;
    return m_token;
}

XmlPull::Token XmlPull::next()
{
    if (m_token == Token::Invalid)
        return m_token;
    m_attributeCount = 0;
    m_text = {};
    if (m_pendingEnd) {
        m_pendingEnd = false;
        m_depth = int(m_openStarts.size());
        m_openNames.resize(m_openStarts.back());
        m_openStarts.pop_back();
        m_token = Token::EndElement;
        return m_token;
    }
    for (;;) {
        m_begin = m_consumed;
        if (m_begin == m_end && !fill()) {
            if (m_sourceFailed || !m_openStarts.empty() || !m_sawRoot)
                return fail();
            m_token = Token::End;
            return m_token;
        }
        if (m_atStart) {
            m_atStart = false;
            while (m_end - m_begin < 3 && fill()) { }
            if (m_end - m_begin >= 3
                && std::memcmp(m_buffer.data() + m_begin, "\xEF\xBB\xBF", 3) == 0)
                m_consumed = m_begin + 3;
            continue;
        }
        const Token token = m_buffer[m_begin] == '<' ? readMarkup() : readText();
        if (token == Token::Invalid)
            return fail();
        // Comments, processing instructions and blanks outside the root give no token.
        if (token != Token::End) {
            m_token = token;
            return m_token;
        }
    }
}

XmlPull::Token XmlPull::readText()
{
    std::size_t searched = m_begin;
    std::size_t stop = std::string::npos;
    for (;;) {
        const void *found = std::memchr(m_buffer.data() + searched, '<', m_end - searched);
        if (found != nullptr) {
            stop = std::size_t(static_cast<const char *>(found) - m_buffer.data());
            break;
        }
        if (m_end - m_begin >= XmlTextPieceBytes || m_atEnd)
            break;
        const std::size_t offset = m_end - m_begin;
        if (!fill() && !m_atEnd)
            break;
        searched = m_begin + offset;
    }
    if (stop == std::string::npos) {
        if (m_openStarts.empty() || m_atEnd) {
            // Text at the end of the input: blanks after the root, or a document cut short.
            m_consumed = m_end;
            return m_openStarts.empty() && m_sawRoot && !m_sourceFailed
                    && isBlankText(std::string_view(m_buffer.data() + m_begin, m_end - m_begin))
                ? Token::End
                : Token::Invalid;
        }
        // A long run of characters: handed over in pieces, never inside a reference or
        // between CR and LF.
        stop = m_end;
        const std::string_view piece(m_buffer.data() + m_begin, m_end - m_begin);
        const std::size_t ampersand = piece.rfind('&');
        if (ampersand != std::string_view::npos
            && piece.find(';', ampersand) == std::string_view::npos)
            stop = m_begin + ampersand;
        if (stop > m_begin && m_buffer[stop - 1] == '\r')
            --stop;
        if (stop == m_begin)
            return Token::Invalid;
    }
    const std::string_view raw(m_buffer.data() + m_begin, stop - m_begin);
    m_consumed = stop;
    if (m_openStarts.empty())
        return isBlankText(raw) ? Token::End : Token::Invalid;
    if (std::memchr(raw.data(), '&', raw.size()) == nullptr
        && std::memchr(raw.data(), '\r', raw.size()) == nullptr) {
        m_text = raw;
    } else {
        m_textStore.clear();
        if (!decodeInto(m_textStore, raw, false))
            return Token::Invalid;
        m_text = m_textStore;
    }
    return Token::Text;
}

std::size_t XmlPull::findMarkupEnd(std::string_view terminator)
{
    std::size_t scanned = 1;
    for (;;) {
        const std::string_view data(m_buffer.data() + m_begin, m_end - m_begin);
        const std::size_t from = scanned > terminator.size() ? scanned - terminator.size() : 1;
        const std::size_t at =
            terminator.size() == 1 ? data.find(terminator[0], from) : data.find(terminator, from);
        if (at != std::string_view::npos)
            return m_begin + at + terminator.size();
        scanned = data.size();
        if (qint64(m_end - m_begin) > MaxMarkupBytes || !fill())
            return std::string::npos;
    }
}

XmlPull::Token XmlPull::readMarkup()
{
    while (m_end - m_begin < 9 && fill()) { }
    const std::string_view start(
        m_buffer.data() + m_begin, std::min<std::size_t>(9, m_end - m_begin));
    // Most markup is a start or an end tag: the character after '<' tells them apart at once.
    const char second = start.size() > 1 ? start[1] : '\0';
    if (second != '?' && second != '!') {
        if (second != '/')
            return readStartTag();
        const std::size_t end = findMarkupEnd(">");
        return end == std::string::npos ? Token::Invalid : readEndTag(end);
    }
    std::size_t end = std::string::npos;
    if (second == '?') {
        end = findMarkupEnd("?>");
    } else if (start.substr(0, 4) == "<!--") {
        end = findMarkupEnd("-->");
    } else if (start == "<![CDATA[") {
        end = findMarkupEnd("]]>");
        if (end == std::string::npos || m_openStarts.empty())
            return Token::Invalid;
        const std::string_view raw(m_buffer.data() + m_begin + 9, end - m_begin - 12);
        m_consumed = end;
        // Characters as they stand, only their line ends made LF.
        m_textStore.clear();
        for (std::size_t at = 0; at < raw.size(); ++at) {
            if (raw[at] != '\r')
                m_textStore += raw[at];
            else if (at + 1 >= raw.size() || raw[at + 1] != '\n')
                m_textStore += '\n';
        }
        m_text = m_textStore;
        return Token::Text;
    } else {
        return Token::Invalid;
    }
    if (end == std::string::npos)
        return Token::Invalid;
    m_consumed = end;
    return Token::End;
}

XmlPull::Token XmlPull::readStartTag()
{
    if (m_openStarts.empty() && m_sawRoot)
        return Token::Invalid;
    // The tag is read where it stands; when the input so far ends inside it, more is read and
    // the tag read again from its start.
    for (;;) {
        const TagRead read = readTagInBuffer();
        if (read == TagRead::Invalid)
            return Token::Invalid;
        if (read == TagRead::Complete)
            break;
        if (qint64(m_end - m_begin) > MaxMarkupBytes || !fill())
            return Token::Invalid;
    }
    m_sawRoot = true;
    m_openStarts.push_back(m_openNames.size());
    m_openNames.append(m_name);
    m_depth = int(m_openStarts.size());
    return Token::StartElement;
}

XmlPull::TagRead XmlPull::readTagInBuffer()
{
    const char *data = m_buffer.data();
    const std::size_t end = m_end;
    std::size_t at = scanTo(data, m_begin + 1, end, XmlNameEnd);
    if (at >= end)
        return TagRead::Incomplete;
    if (at == m_begin + 1)
        return TagRead::Invalid;
    m_name = std::string_view(data + m_begin + 1, at - m_begin - 1);
    m_attributeCount = 0;
    m_decodedAt.clear();
    m_decoded.clear();
    for (;;) {
        while (at < end && isXmlBlank(data[at]))
            ++at;
        if (at >= end)
            return TagRead::Incomplete;
        if (data[at] == '>' || data[at] == '/') {
            if (data[at] == '/' && at + 1 >= end)
                return TagRead::Incomplete;
            m_pendingEnd = data[at] == '/';
            if (m_pendingEnd && data[at + 1] != '>')
                return TagRead::Invalid;
            m_consumed = at + (m_pendingEnd ? 2 : 1);
            break;
        }
        const std::size_t nameStart = at;
        at = scanTo(data, at, end, XmlAttributeNameEnd);
        const std::string_view name(data + nameStart, at - nameStart);
        while (at < end && isXmlBlank(data[at]))
            ++at;
        if (at + 1 >= end)
            return TagRead::Incomplete;
        if (name.empty() || data[at] != '=')
            return TagRead::Invalid;
        ++at;
        while (at < end && isXmlBlank(data[at]))
            ++at;
        if (at >= end)
            return TagRead::Incomplete;
        const char quote = data[at];
        if (quote != '"' && quote != '\'')
            return TagRead::Invalid;
        // One pass finds the closing quote and whether the value needs decoding.
        std::size_t close = at + 1;
        bool plain = true;
        for (;;) {
            close = scanTo(data, close, end, XmlValueStop);
            if (close >= end)
                return TagRead::Incomplete;
            if (data[close] == quote)
                break;
            if (XmlSpecialInValue[std::uint8_t(data[close])])
                plain = false;
            ++close;
        }
        const std::string_view raw(data + at + 1, close - at - 1);
        at = close + 1;
        if (plain) {
            addAttribute(name, raw);
            continue;
        }
        // Decoded values are kept in one buffer; their views are made once the tag is read.
        const std::size_t from = m_decoded.size();
        if (!decodeInto(m_decoded, raw, true))
            return TagRead::Invalid;
        m_decodedAt.push_back(DecodedValue { m_attributeCount, from, m_decoded.size() - from });
        addAttribute(name, {});
    }
    for (const DecodedValue &value : m_decodedAt)
        m_attributes[value.attribute].value =
            std::string_view(m_decoded).substr(value.offset, value.size);
    return TagRead::Complete;
}

XmlPull::Token XmlPull::readEndTag(std::size_t end)
{
    std::string_view name(m_buffer.data() + m_begin + 2, end - m_begin - 3);
    while (!name.empty() && isXmlBlank(name.back()))
        name.remove_suffix(1);
    if (m_openStarts.empty() || std::string_view(m_openNames).substr(m_openStarts.back()) != name)
        return Token::Invalid;
    m_depth = int(m_openStarts.size());
    m_openNames.resize(m_openStarts.back());
    m_openStarts.pop_back();
    m_name = name;
    m_consumed = end;
    return Token::EndElement;
}

bool XmlPull::decodeInto(std::string &out, std::string_view raw, bool attributeValue)
{
    std::size_t at = 0;
    while (at < raw.size()) {
        const std::size_t special = raw.find_first_of(attributeValue ? "&\t\n\r<" : "&\r", at);
        if (special == std::string_view::npos) {
            out.append(raw.substr(at));
            break;
        }
        out.append(raw.substr(at, special - at));
        const char c = raw[special];
        at = special + 1;
        if (c == '&') {
            const std::size_t semicolon = raw.find(';', at);
            if (semicolon == std::string_view::npos || semicolon - at > 10)
                return false;
            const char32_t character = entityCharacter(raw.substr(at, semicolon - at));
            if (character == 0)
                return false;
            appendUtf8(out, character);
            at = semicolon + 1;
        } else if (c == '<') {
            return false;
        } else if (c == '\r') {
            // A line end is LF, whether written CR LF or CR; in an attribute it is a blank.
            if (at < raw.size() && raw[at] == '\n')
                ++at;
            out += attributeValue ? ' ' : '\n';
        } else {
            out += ' ';
        }
    }
    return true;
}

} // namespace tarnwick
