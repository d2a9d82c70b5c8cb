#include "products/productsearch.h"

#include "catalogue/productrecord.h"
#include "catalogue/table.h"
#include "core/conversions.h"
#include "platform/ieventpump.h"
#include "platform/iprompts.h"

#include <algorithm>
#include <cstring>

namespace tarnwick {

/// The text searched for, upper-cased, and its bytes when it is plain ASCII.
struct SearchNeedle
{
    QString text;
    QByteArray ascii; ///< empty when the text is not plain ASCII
};

namespace {

/// The upper-case letter of an ASCII character, whatever the process's locale.
char asciiUpper(char c)
{
    return (c >= 'a' && c <= 'z') ? char(c - 'a' + 'A') : c;
}

char asciiLower(char c)
{
    return (c >= 'A' && c <= 'Z') ? char(c - 'A' + 'a') : c;
}

/// Whether ASCII text contains the upper-cased ASCII needle, ignoring letter case.
bool asciiContains(const char *text, qsizetype size, const QByteArray &needle)
{
    const qsizetype length = needle.size();
    const char first = needle.front();
    const char firstLower = asciiLower(first);
    for (qsizetype i = 0; i + length <= size; ++i) {
        if (text[i] != first && text[i] != firstLower)
            continue;
        qsizetype k = 1;
        while (k < length && asciiUpper(text[i + k]) == needle[k])
            ++k;
        if (k == length)
            return true;
    }
    return false;
}

/// Whether the cell's text contains needle, ignoring letter case. needle is already upper-
/// cased, so this is the comparison of both texts upper-cased, without building an upper-cased
/// copy of every cell. A stored text and needle that are both plain ASCII are searched in
/// their bytes; anything else is upper-cased whole, as a letter may become two ("ß" is "SS").
/// A null cell has no text and never matches.
bool cellContains(const Cell &cell, const SearchNeedle &needle, const QLocale &locale)
{
    if (cell.isNull() || cell.isEmpty())
        return false;
    if (cell.isText()) {
        const CellTextView view = cell.textView();
        // Of the Windows-1252 characters outside ASCII only "ß" becomes ASCII letters when
        // upper-cased, so an ASCII needle is found in other such bytes exactly where the
        // comparison of both texts upper-cased finds it. UTF-8 holds more that do (the long
        // s, the Kelvin sign, ligatures): those texts are searched in their bytes only when
        // they are plain ASCII.
        constexpr char SharpS = '\xDF';
        const bool bytesSearchable = view.encoding == TextEncoding::Windows1252
            ? std::memchr(view.bytes(), SharpS, std::size_t(view.size)) == nullptr
            : view.encoding == TextEncoding::Utf8 && view.isAscii();
        if (!needle.ascii.isEmpty() && bytesSearchable)
            return asciiContains(view.bytes(), view.size, needle.ascii);
        // Both plain ASCII (a text typed in this run): folding each letter is the same as
        // upper-casing, without a copy.
        if (!needle.ascii.isEmpty() && view.isAscii())
            return cell.asText().contains(needle.text, Qt::CaseInsensitive);
        // An accent kept as a mark of its own ("e" and U+0301) is the letter with the accent.
        return cell.asText()
            .toUpper()
            .normalized(QString::NormalizationForm_C)
            .contains(needle.text);
    }
    return conv::toText(cell, locale).toUpper().contains(needle.text);
}

} // namespace

ProductSearch::ProductSearch(IPrompts &prompts, IEventPump *events)
    : m_prompts(prompts), m_events(events)
{
}

QString ProductSearch::prompt() const
{
    return m_remembered.isEmpty() ? QString(FirstPrompt) : QString(AgainPrompt);
}

int ProductSearch::find(
    const QString &entered, int currentGridRow, const Table &catalogue, const QLocale &locale)
{
    if (entered.isEmpty())
        return -1;
    const bool continued = entered == m_remembered;
    m_remembered = entered;
    SearchNeedle needle { entered.toUpper().normalized(QString::NormalizationForm_C), {} };
    const CellTextView view { TextEncoding::Utf16, needle.text.utf16(), needle.text.size() };
    if (view.isAscii())
        needle.ascii = needle.text.toLatin1();
    const int start = continued ? std::max(0, currentGridRow + 1) : 0;
    const int found = scan(needle, start, catalogue, locale);
    if (found >= 0)
        return found;
    if (!continued)
        return reportNoMatches();
    // A continued search goes on from the top for as long as the user answers Yes: each pass
    // that ends without a match asks again.
    while (askToWrap()) {
        if (const int wrapped = scan(needle, 0, catalogue, locale); wrapped >= 0)
            return wrapped;
    }
    return -1;
}

int ProductSearch::scan(
    const SearchNeedle &needle, int fromGridRow, const Table &catalogue, const QLocale &locale)
{
    for (int row = fromGridRow + 1; row <= catalogue.rowCount(); ++row) {
        if (cellContains(catalogue.get(row, ProductRecord::PartNumber), needle, locale)
            || cellContains(catalogue.get(row, ProductRecord::ProductName), needle, locale))
            return row - 1;
    }
    return -1;
}

bool ProductSearch::askToWrap()
{
    const int answer =
        m_prompts.msgBox(WrapQuestion, MsgStyle::YesNo + MsgStyle::Question, FindTitle);
    if (answer != MsgResult::Yes)
        return false;
    if (m_events)
        m_events->processPendingEvents();
    return true;
}

int ProductSearch::reportNoMatches()
{
    m_prompts.msgBox(NoMatchesMessage, MsgStyle::OkOnly, FindTitle);
    return -1;
}

} // namespace tarnwick
