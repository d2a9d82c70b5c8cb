#pragma once

#include "exchange/importplan.h"

#include <QLocale>
#include <QString>
#include <QStringList>

#include <optional>
#include <utility>

namespace tarnwick::ImportReport {

/// The title of the import's result message when products were added or changed.
inline const QString SuccessTitle = QStringLiteral("Success!");
/// The title of the message that says nothing was added.
inline const QString NothingAddedTitle = QStringLiteral("Input Excel Data");

/// Why a row was skipped, in the user's words: "empty part number", "part number twice in the
/// sheet", "list price that is no number", "part number already exists", "could not be read".
QString reasonText(SkipReason reason);

/// The counts of a plan, one line each, as the preview shows them and the result message
/// repeats them: "Products added: 3", "Products changed: 5", "Products unchanged: 12" and
/// "Rows skipped: 4 (empty part number: 1; part number twice in the sheet: 3)" (the reasons
/// that occur, in a fixed order; "Rows skipped: 0" when there are none); when new products came
/// without a price because theirs is no number, "Products added without a list price, …: 2";
/// and when the plan ended with rows left unread, "Rows not read: every row below row 7, …".
QStringList countLines(const ImportPlan &plan);

/// One of the count lines with the name of the control that shows it in the preview
/// ("LblAdded", "LblWithoutPrice", "LblNotRead" …).
struct CountLine
{
    const char *name;
    QString text;
};
/// The count lines of countLines, each with its control's name.
QList<CountLine> namedCountLines(const ImportPlan &plan);
/// The message after a plan was applied: the count lines, one per line.
QString resultMessage(const ImportPlan &plan);

/// The message after adding new products from a file: "N changes have been made to the
/// knowledge base." when products were added, followed by "M rows were skipped because their
/// part number already exists." when rows were skipped; when nothing was added but rows were
/// skipped, "No products were added: M rows were skipped because their part number already
/// exists."; nothing when nothing was added and nothing skipped. An import that ended after
/// rows it could not read (unreadFrom, the first row not read; 0 for none) says so last:
/// "Rows not read: row 102 and every row below it. …", also when nothing was added.
std::optional<QString> addResultMessage(int added, int skippedExisting, int unreadFrom = 0);
/// The title of that message: SuccessTitle when products were added, else NothingAddedTitle.
QString addResultTitle(int added);

/// The import window's caption at the next tick of its timer: "Please wait" and
/// "<row> products analyzed" in turn.
QString progressCaption(const QString &caption, int row);

/// A field's value as the preview shows it: the list price and the five prices in the
/// locale's currency form ("$12.50"), a text that is no number as it stands, the quantities and
/// texts as they are.
QString displayText(int field, const Cell &value, const QLocale &locale);
/// The old and the new value of a changed field as the preview shows them: as displayText
/// does, except that two prices that differ below the cent ($2.67 for 2.675 and 2.67) show
/// all their digits, and texts that differ only in their blanks show in quotes (“Cutter ”), so
/// the change can be seen.
std::pair<QString, QString> changeTexts(
    int field, const Cell &before, const Cell &after, const QLocale &locale);

} // namespace tarnwick::ImportReport
