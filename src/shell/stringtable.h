#pragma once

#include <QString>

#include <functional>
#include <optional>

namespace tarnwick {

/// The program's string table: the numbered texts (1000 upward) that windows show in place
/// of a numeric caption.
namespace StringTable {

constexpr int HelpMenu = 1026; ///< "&Help"
constexpr int HelpContents = 1027; ///< "&Contents"
constexpr int HelpSearch = 1028; ///< "&Search For Help On..."
constexpr int HelpAbout = 1029; ///< "&About " (the program's title follows)
constexpr int AboutCaption = 1067; ///< "About Tarnwick"
constexpr int SystemInfoButton = 1068; ///< "&System Info..."

/// The entry with that number; nothing when the table has none.
std::optional<QString> LoadResString(int id);

} // namespace StringTable

/// Finds the text of a string-table entry.
using CaptionLookup = std::function<std::optional<QString>(int)>;

/// The text that replaces a caption: when the caption is a whole number and the table has
/// that entry, the entry; otherwise nothing, and the caption stays as it is.
std::optional<QString> numberedCaption(const QString &caption, const CaptionLookup &lookup);

} // namespace tarnwick
