#pragma once

#include <QtGlobal>

#include <array>

namespace tarnwick::HelpContext {

/// The context numbers with which the program opens a topic of its help. The manual maps
/// each of them to the topic that explains the situation (docs/help/contents.txt).
constexpr qint32 ImportWindow = 1090; ///< F1 in the spreadsheet import window
constexpr qint32 StartupRemedies = 2020; ///< "Tarnwick did not install correctly" → Yes
constexpr qint32 HandheldConverter = 2050; ///< the handheld converter could not be started
// F1 in the windows that have a page of their own.
constexpr qint32 ChangePricesWindow = 1100; ///< "Change Prices"
constexpr qint32 CheckPricesWindow = 1101; ///< "Check Price Points"
constexpr qint32 QuantitiesWindow = 1102; ///< "Price at Quantities"
constexpr qint32 DiscountWindow = 1103; ///< the discount of the quote or of one line
constexpr qint32 SaveQuoteWindow = 1104; ///< the customer's details before a save
constexpr qint32 QuotesWindow = 1105; ///< the quote book's list of quotes
constexpr qint32 QuoteNoteWindow = 1106; ///< the quote's heading and ending
constexpr qint32 PropertiesWindow = 1107; ///< "Catalogue Properties"
constexpr qint32 AboutWindow = 1108; ///< the About box
constexpr qint32 PrintPreviewWindow = 1109; ///< the price list's print preview
constexpr qint32 HelpWindow = 1110; ///< the help window itself: how to use it
// F1 in the messages that have a page of their own.
constexpr qint32 CatalogueUnreadMessage = 1111; ///< the catalogue file could not be read
constexpr qint32 CatalogueSaveMessage = 1112; ///< the catalogue could not be saved
constexpr qint32 RecoveryMessage = 1113; ///< changes of a session that did not end cleanly

/// Every context number above, for the check that each opens a topic.
constexpr std::array<qint32, 17> All { ImportWindow, StartupRemedies, HandheldConverter,
    ChangePricesWindow, CheckPricesWindow, QuantitiesWindow, DiscountWindow, SaveQuoteWindow,
    QuotesWindow, QuoteNoteWindow, PropertiesWindow, AboutWindow, PrintPreviewWindow, HelpWindow,
    CatalogueUnreadMessage, CatalogueSaveMessage, RecoveryMessage };

} // namespace tarnwick::HelpContext
