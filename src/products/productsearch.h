#pragma once

#include <QLatin1String>
#include <QLocale>
#include <QString>

namespace tarnwick {

class IEventPump;
class IPrompts;
class Table;
struct SearchNeedle;

/// The "Locate Product" search of the main window: finds the next product whose part number
/// or name contains the entered text, ignoring letter case. It remembers the last text, so
/// entering the same text again continues after the current row and, at the end of the grid,
/// offers to start again from the top.
class ProductSearch
{
public:
    static constexpr QLatin1String Title { "Locate Product" };
    static constexpr QLatin1String FirstPrompt { "Enter the product name to locate." };
    static constexpr QLatin1String AgainPrompt {
        "Enter new Product or click OK to keep searching"
    };
    static constexpr QLatin1String FindTitle { "Find" };
    static constexpr QLatin1String NoMatchesMessage { "No matches found." };
    static constexpr QLatin1String WrapQuestion { "Match not found. Search from beginning?" };

    /// events, when given, is let run after the search wraps to the top, so that the window
    /// stays responsive.
    explicit ProductSearch(IPrompts &prompts, IEventPump *events = nullptr);

    /// The prompt of the search dialog: FirstPrompt while no text is remembered, AgainPrompt
    /// after a search has left one.
    QString prompt() const;
    /// The text of the last search; the dialog's input box starts with it.
    QString rememberedText() const { return m_remembered; }

    /// Searches for entered and returns the 0-based grid row that becomes current (grid row r
    /// shows table row r + 1), or -1 when the current row stays.
    /// - An empty entry does nothing.
    /// - The remembered text again continues after currentGridRow; at the end of the grid it
    ///   asks WrapQuestion and, on Yes, searches again from the top, asking again each time
    ///   it passes the end without a match, until the user answers No.
    /// - Any other text is remembered and searched from the first row; at the end of the grid
    ///   it shows NoMatchesMessage.
    int find(
        const QString &entered, int currentGridRow, const Table &catalogue, const QLocale &locale);

private:
    /// The first grid row from fromGridRow on whose part number or name contains needle (the
    /// entered text, upper-cased); -1 when no row does.
    static int scan(
        const SearchNeedle &needle, int fromGridRow, const Table &catalogue, const QLocale &locale);
    /// Asks whether to search again from the top; true on Yes.
    bool askToWrap();
    int reportNoMatches();

    IPrompts &m_prompts;
    IEventPump *m_events;
    QString m_remembered;
};

} // namespace tarnwick
