#pragma once

#include <QtGlobal>

#include <array>

namespace tarnwick::HelpContext {

/// The context numbers with which the program opens a topic of its help. The manual maps
/// each of them to the topic that explains the situation (docs/help/contents.txt).
constexpr qint32 ImportWindow = 1090; ///< F1 in the spreadsheet import window
constexpr qint32 StartupRemedies = 2020; ///< "Tarnwick did not install correctly" → Yes
constexpr qint32 HandheldConverter = 2050; ///< the handheld converter could not be started

/// Every context number above, for the check that each opens a topic.
constexpr std::array<qint32, 3> All { ImportWindow, StartupRemedies, HandheldConverter };

} // namespace tarnwick::HelpContext
