#include "exchange/importreport.h"

#include "catalogue/productrecord.h"
#include "core/conversions.h"
#include "core/errortrap.h"
#include "core/formats.h"

namespace tarnwick::ImportReport {

namespace {

/// The rows an import left unread after MaxUnreadableRows rows in a row it could not read.
QString unreadRowsText(int firstNotRead)
{
    return QStringLiteral("Rows not read: row %1 and every row below it. The %2 rows above it "
                          "could not be read, which ends the import.")
        .arg(firstNotRead)
        .arg(ImportPlanner::MaxUnreadableRows);
}

namespace P = ProductRecord;

/// The order in which the reasons are counted.
constexpr SkipReason Reasons[] = { SkipReason::EmptyPartNumber, SkipReason::RepeatedPartNumber,
    SkipReason::PriceNotANumber, SkipReason::PriceTooLarge, SkipReason::PriceBelowZero,
    SkipReason::PricePointNotANumber, SkipReason::PricePointBelowZero, SkipReason::PartNumberExists,
    SkipReason::Unreadable };

bool isPriceField(int field)
{
    return field == P::Price
        || (field >= P::Price1 && field <= P::Price5 && (field - P::Price1) % 2 == 0);
}

/// The text in quotes, its blanks other than the plain one and its invisible characters named:
/// a no-break space looks like a blank, a tab like several, a zero-width space like nothing.
QString quotedWithBlanks(const QString &text)
{
    QString shown;
    for (const QChar c : text) {
        if (c == u' ' || (!c.isSpace() && c.category() != QChar::Other_Format))
            shown += c;
        else if (c == u'\t')
            shown += QStringLiteral("\u27E8tab\u27E9");
        else if (c == QChar(0xA0))
            shown += QStringLiteral("\u27E8no-break space\u27E9");
        else if (c == u'\r')
            shown += QStringLiteral("\u27E8CR\u27E9");
        else if (c == u'\n')
            shown += QStringLiteral("\u27E8LF\u27E9");
        else
            shown += QStringLiteral("\u27E8U+%1\u27E9")
                         .arg(c.unicode(), 4, 16, QLatin1Char('0'))
                         .toUpper();
    }
    return QStringLiteral("\u201C%1\u201D").arg(shown);
}

/// The text as it looks: blanks of every kind as one blank, and no invisible characters (a
/// zero-width space, a soft hyphen).
QString looks(const QString &text)
{
    QString seen;
    for (const QChar c : text) {
        if (c.category() != QChar::Other_Format)
            seen += c;
    }
    return seen.simplified();
}

QString skippedRows(int rows)
{
    return rows == 1 ? QStringLiteral("1 row was skipped because its part number already exists.")
                     : QStringLiteral("%1 rows were skipped because their part number already "
                                      "exists.")
                           .arg(rows);
}

} // namespace

QString reasonText(SkipReason reason)
{
    switch (reason) {
    case SkipReason::EmptyPartNumber:
        return QStringLiteral("empty part number");
    case SkipReason::RepeatedPartNumber:
        return QStringLiteral("part number twice in the sheet");
    case SkipReason::PriceNotANumber:
        return QStringLiteral("list price that is no number");
    case SkipReason::PriceTooLarge:
        return QStringLiteral("list price too large");
    case SkipReason::PriceBelowZero:
        return QStringLiteral("list price below zero");
    case SkipReason::PricePointNotANumber:
        return QStringLiteral("price point or price that is no number");
    case SkipReason::PricePointBelowZero:
        return QStringLiteral("price point or price below zero");
    case SkipReason::PartNumberExists:
        return QStringLiteral("part number already exists");
    case SkipReason::Unreadable:
        break;
    }
    return QStringLiteral("could not be read");
}

QList<CountLine> namedCountLines(const ImportPlan &plan)
{
    QStringList reasons;
    for (const SkipReason reason : Reasons) {
        if (const int count = plan.skippedCount(reason); count > 0)
            reasons << QStringLiteral("%1: %2").arg(reasonText(reason)).arg(count);
    }
    QString skipped = QStringLiteral("Rows skipped: %1").arg(plan.skippedCount());
    if (!reasons.isEmpty())
        skipped += QStringLiteral(" (%1)").arg(reasons.join(QStringLiteral("; ")));
    QList<CountLine> lines { { "LblAdded",
                                 QStringLiteral("Products added: %1").arg(plan.addedCount()) },
        { "LblChanged", QStringLiteral("Products changed: %1").arg(plan.changed.size()) },
        { "LblUnchanged", QStringLiteral("Products unchanged: %1").arg(plan.unchanged) },
        { "LblSkipped", skipped } };
    if (plan.addedWithoutPrice > 0)
        lines.append({ "LblWithoutPrice",
            QStringLiteral("Products added without a list price, as their price is no number: %1")
                .arg(plan.addedWithoutPrice) });
    if (plan.unreadCells > 0)
        lines.append({ "LblUnreadCells",
            QStringLiteral("Cells that could not be read (an error value, or a formula whose "
                           "result the file does not hold), their fields left as they were: %1")
                .arg(plan.unreadCells) });
    if (plan.readWithSheetMark > 0)
        lines.append({ "LblDecimalMark",
            QStringLiteral("Numbers read with a decimal %1, as the sheet's other numbers are "
                           "written: %2 (row %3: \"%4\" is %5)")
                .arg(plan.sheetMark == decimalmark::Mark::Comma ? QStringLiteral("comma")
                                                                : QStringLiteral("point"))
                .arg(plan.readWithSheetMark)
                .arg(plan.firstSheetMarkRow)
                .arg(plan.firstSheetMarkText.trimmed(), plan.firstSheetMarkReading) });
    if (plan.caseTwins > 0) {
        QStringList examples;
        for (const auto &[partNumber, known] : plan.caseTwinExamples)
            examples << QStringLiteral("\"%1\" beside \"%2\"").arg(partNumber, known);
        if (plan.caseTwins > int(plan.caseTwinExamples.size()))
            examples << QStringLiteral("\u2026");
        lines.append({ "LblCaseTwins",
            QStringLiteral("New part numbers that differ from one in the catalogue only in "
                           "letter case, added as new products: %1 (%2)")
                .arg(plan.caseTwins)
                .arg(examples.join(QStringLiteral(", "))) });
    }
    if (plan.rowsLeftBelow > 0 && plan.endedAfterUnreadableRows) {
        lines.append({ "LblNotRead", unreadRowsText(plan.rowsLeftBelow) });
    } else if (plan.rowsLeftBelow > 0 && plan.endedWithoutPartNumber) {
        lines.append({ "LblNotRead",
            QStringLiteral("Rows not read: row %1 and every row below it. Row %1 has no part "
                           "number, which ends the import.")
                .arg(plan.rowsLeftBelow) });
    } else if (plan.rowsLeftBelow > 0) {
        lines.append({ "LblNotRead",
            QStringLiteral("Rows not read: every row below row %1, which is empty in the mapped "
                           "columns and ends the import.")
                .arg(plan.rowsLeftBelow) });
    }
    return lines;
}

QStringList countLines(const ImportPlan &plan)
{
    QStringList texts;
    for (const CountLine &line : namedCountLines(plan))
        texts << line.text;
    return texts;
}

QString resultMessage(const ImportPlan &plan)
{
    return countLines(plan).join(QLatin1Char('\n'));
}

std::optional<QString> addResultMessage(int added, int skippedExisting, int unreadFrom)
{
    const QString notRead = unreadFrom > 0 ? unreadRowsText(unreadFrom) : QString();
    QString text;
    if (added == 0 && skippedExisting == 0) {
        if (notRead.isEmpty())
            return std::nullopt;
        text = QStringLiteral("No products were added.");
    } else if (added == 0) {
        text = QStringLiteral("No products were added: ") + skippedRows(skippedExisting);
    } else {
        text = QStringLiteral("%1 changes have been made to the knowledge base.").arg(added);
        if (skippedExisting > 0)
            text += QLatin1Char(' ') + skippedRows(skippedExisting);
    }
    if (!notRead.isEmpty())
        text += QLatin1Char(' ') + notRead;
    return text;
}

QString addResultTitle(int added)
{
    return added > 0 ? SuccessTitle : NothingAddedTitle;
}

QString progressCaption(const QString &caption, int row)
{
    const QString wait = QStringLiteral("Please wait");
    return caption != wait ? wait : QStringLiteral("%1 products analyzed").arg(row);
}

QString displayText(int field, const Cell &value, const QLocale &locale)
{
    QString text;
    ErrorTrap trap;
    // A value that cannot be shown in a form (an infinite number) is shown as its text.
    const bool shown = trap.step([&] {
        text = isPriceField(field) ? format(value, QStringLiteral("Currency"), locale)
                                   : conv::toText(value, locale);
    });
    return shown ? text : value.asText();
}

std::pair<QString, QString> changeTexts(
    int field, const Cell &before, const Cell &after, const QLocale &locale)
{
    std::pair<QString, QString> texts { displayText(field, before, locale),
        displayText(field, after, locale) };
    if (texts.first == texts.second && isPriceField(field)) {
        ErrorTrap trap;
        trap.step([&] { texts = { conv::toText(before, locale), conv::toText(after, locale) }; });
    }
    // Texts that differ only in their blanks (one at the end, two in a row) look alike in a
    // cell: in quotes, where they end and how they are spaced shows.
    if (texts.first != texts.second && looks(texts.first) == looks(texts.second))
        texts = { quotedWithBlanks(texts.first), quotedWithBlanks(texts.second) };
    return texts;
}

} // namespace tarnwick::ImportReport
