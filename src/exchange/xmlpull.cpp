#include "exchange/xmlpull.h"

#include <algorithm>
#include <cstring>

namespace tarnwick {

namespace {

constexpr qint64 XmlReadBytes = qint64(256) << 10;
/// Character data longer than this without markup is handed over in pieces.
constexpr std::size_t XmlTextPieceBytes = std::size_t(256) << 10;

bool isXmlBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

bool isBlankText(std::string_view text)
{
    return std::all_of(text.begin(), text.end(), isXmlBlank);
}

void appendCodePoint(std::string &out, char32_t c)
{
    if (c < 0x80) {
        out += char(c);
    } else if (c < 0x800) {
        out += char(0xC0 | (c >> 6));
        out += char(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        out += char(0xE0 | (c >> 12));
        out += char(0x80 | ((c >> 6) & 0x3F));
        out += char(0x80 | (c & 0x3F));
    } else {
        out += char(0xF0 | (c >> 18));
        out += char(0x80 | ((c >> 12) & 0x3F));
        out += char(0x80 | ((c >> 6) & 0x3F));
        out += char(0x80 | (c & 0x3F));
    }
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
    for (const Attribute &attribute : m_attributes) {
        if (attribute.name == name)
            return attribute.value;
    }
    return {};
}

bool XmlPull::hasAttribute(std::string_view name) const
{
    return std::any_of(m_attributes.begin(), m_attributes.end(),
        [name](const Attribute &attribute) { return attribute.name == name; });
}

std::string_view XmlPull::attributeByLocalName(std::string_view localName) const
{
    for (const Attribute &attribute : m_attributes) {
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
    const int depth = m_depth;
    if (m_token != Token::StartElement)
        return false;
    for (;;) {
        const Token token = next();
        if (token == Token::End || token == Token::Invalid)
            return false;
        if (token == Token::EndElement && m_depth == depth)
            return true;
    }
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
    if (m_buffer.size() - m_end < std::size_t(XmlReadBytes))
        m_buffer.resize(std::max(m_buffer.size() * 2, m_end + std::size_t(XmlReadBytes)));
    const qint64 count = m_source(m_buffer.data() + m_end, XmlReadBytes);
    if (count <= 0) {
        m_atEnd = true;
        m_sourceFailed = count < 0;
        return false;
    }
    m_end += std::size_t(count);
    return true;
}

XmlPull::Token XmlPull::fail()
{
    m_token = Token::Invalid;
    m_name = {};
    m_text = {};
    m_attributes.clear();
    return m_token;
}

XmlPull::Token XmlPull::next()
{
    if (m_token == Token::Invalid)
        return m_token;
    m_attributes.clear();
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
    if (raw.find_first_of("&\r") == std::string_view::npos) {
        m_text = raw;
    } else {
        m_textStore.clear();
        if (!decodeInto(m_textStore, raw, false))
            return Token::Invalid;
        m_text = m_textStore;
    }
    return Token::Text;
}

std::size_t XmlPull::findMarkupEnd(std::string_view terminator, bool quotes)
{
    std::size_t scanned = 1;
    char quote = 0;
    for (;;) {
        const std::string_view data(m_buffer.data() + m_begin, m_end - m_begin);
        if (quotes) {
            for (; scanned < data.size(); ++scanned) {
                const char c = data[scanned];
                if (quote != 0) {
                    if (c == quote)
                        quote = 0;
                } else if (c == '"' || c == '\'') {
                    quote = c;
                } else if (c == '>') {
                    return m_begin + scanned + 1;
                }
            }
        } else {
            const std::size_t from = scanned > terminator.size() ? scanned - terminator.size() : 1;
            const std::size_t at = data.find(terminator, from);
            if (at != std::string_view::npos)
                return m_begin + at + terminator.size();
            scanned = data.size();
        }
        if (qint64(m_end - m_begin) > MaxMarkupBytes || !fill())
            return std::string::npos;
    }
}

XmlPull::Token XmlPull::readMarkup()
{
    while (m_end - m_begin < 9 && fill()) { }
    const std::string_view start(
        m_buffer.data() + m_begin, std::min<std::size_t>(9, m_end - m_begin));
    std::size_t end = std::string::npos;
    if (start.substr(0, 2) == "<?") {
        end = findMarkupEnd("?>", false);
    } else if (start.substr(0, 4) == "<!--") {
        end = findMarkupEnd("-->", false);
    } else if (start == "<![CDATA[") {
        end = findMarkupEnd("]]>", false);
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
    } else if (start.substr(0, 2) == "<!") {
        return Token::Invalid;
    } else if (start.substr(0, 2) == "</") {
        end = findMarkupEnd(">", false);
        return end == std::string::npos ? Token::Invalid : readEndTag(end);
    } else {
        end = findMarkupEnd(">", true);
        return end == std::string::npos ? Token::Invalid : readStartTag(end);
    }
    if (end == std::string::npos)
        return Token::Invalid;
    m_consumed = end;
    return Token::End;
}

XmlPull::Token XmlPull::readStartTag(std::size_t end)
{
    if (m_openStarts.empty() && m_sawRoot)
        return Token::Invalid;
    const std::string_view tag(m_buffer.data() + m_begin, end - m_begin);
    const bool empty = tag.size() >= 3 && tag[tag.size() - 2] == '/';
    const std::string_view body = tag.substr(1, tag.size() - (empty ? 3 : 2));
    std::size_t at = 0;
    while (at < body.size() && !isXmlBlank(body[at]))
        ++at;
    const std::string_view name = body.substr(0, at);
    if (name.empty())
        return Token::Invalid;
    m_decoded.clear();
    m_decoded.reserve(tag.size());
    for (;;) {
        while (at < body.size() && isXmlBlank(body[at]))
            ++at;
        if (at >= body.size())
            break;
        const std::size_t nameStart = at;
        while (at < body.size() && body[at] != '=' && !isXmlBlank(body[at]))
            ++at;
        const std::string_view attributeName = body.substr(nameStart, at - nameStart);
        while (at < body.size() && isXmlBlank(body[at]))
            ++at;
        if (attributeName.empty() || at + 1 >= body.size() || body[at] != '=')
            return Token::Invalid;
        ++at;
        while (at < body.size() && isXmlBlank(body[at]))
            ++at;
        const char quote = at < body.size() ? body[at] : 0;
        const std::size_t close =
            quote == '"' || quote == '\'' ? body.find(quote, at + 1) : std::string_view::npos;
        if (close == std::string_view::npos)
            return Token::Invalid;
        const std::string_view raw = body.substr(at + 1, close - at - 1);
        at = close + 1;
        std::string_view value = raw;
        if (raw.find_first_of("&\t\n\r") != std::string_view::npos) {
            const std::size_t from = m_decoded.size();
            if (!decodeInto(m_decoded, raw, true))
                return Token::Invalid;
            value = std::string_view(m_decoded).substr(from);
        }
        m_attributes.push_back(Attribute { attributeName, value });
    }
    m_sawRoot = true;
    m_name = name;
    m_openStarts.push_back(m_openNames.size());
    m_openNames.append(name);
    m_depth = int(m_openStarts.size());
    m_pendingEnd = empty;
    m_consumed = end;
    return Token::StartElement;
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
        const std::size_t special = raw.find_first_of(attributeValue ? "&\t\n\r" : "&\r", at);
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
            appendCodePoint(out, character);
            at = semicolon + 1;
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
