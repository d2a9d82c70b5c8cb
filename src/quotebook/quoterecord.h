#pragma once

#include "catalogue/table.h"
#include "quotes/pricesource.h"

#include <QDate>
#include <QString>

#include <optional>
#include <vector>

namespace tarnwick {

/// Where a saved quote stands with its customer.
enum class QuoteStatus { Draft, Sent, Accepted, Declined };

namespace QuoteStatuses {
/// The word stored in the quote book and shown in the list: "draft", "sent", "accepted",
/// "declined".
QString name(QuoteStatus status);
std::optional<QuoteStatus> fromName(const QString &name);
/// Every status, in the order above.
const std::vector<QuoteStatus> &all();
} // namespace QuoteStatuses

/// Who a quote is for, and the customer's own reference.
struct CustomerDetails
{
    QString customer;
    QString company;
    QString email;
    QString reference;

    bool operator==(const CustomerDetails &) const = default;

    /// The same details without blanks at either end.
    CustomerDetails trimmed() const;
    /// What keeps the details from being saved, in plain words: no name and no company, or an
    /// e-mail address that is none. Empty when they can be saved.
    QString problem() const;
};

/// A quote is valid for this many days from its date unless told otherwise.
inline constexpr int DefaultValidDays = 30;

/// What the quote book keeps about a saved quote besides its lines.
struct QuoteHeader
{
    qint64 id = 0; ///< the quote book's key of this revision; 0 before the first save
    int year = 0; ///< the year of the number (the year of the first save)
    int sequence = 0; ///< the number within the year, from 1
    int revision = 0; ///< 0 for A, 1 for B …
    CustomerDetails customer;
    QDate date;
    QDate validUntil;
    QuoteStatus status = QuoteStatus::Draft;
    QString heading; ///< the quote document's heading text the quote was saved with
    QString ending; ///< and its ending text

    bool isSaved() const { return id != 0; }
    /// "Q-2026-0001"; empty before the first save.
    QString number() const;
    /// "A", "B" …
    QString revisionLetter() const;
    /// "Q-2026-0001 A"; empty before the first save.
    QString numberAndRevision() const;
    /// The customer as the quote names it: "name, company", either alone when the other is
    /// empty.
    QString customerText() const;
};

/// The lines of a quote and how each unit price came about.
struct QuoteContent
{
    Table lines; ///< one row per line, the quote's seven fields
    std::vector<PriceSource> sources; ///< one per row of lines
};

/// One revision of a quote as the quote book keeps it.
struct SavedQuote
{
    QuoteHeader header;
    QuoteContent content;
    double total = 0.0; ///< the sum of the rounded extended prices, as the totals compute it
};

/// One row of the quote list. The texts shown are made when they are shown, so a list of
/// 10,000 quotes costs no more than reading them.
struct QuoteSummary
{
    qint64 id = 0;
    int year = 0;
    int sequence = 0;
    int revision = 0;
    QString customer;
    QString company;
    QDate date;
    QDate validUntil;
    double total = 0.0;
    QuoteStatus status = QuoteStatus::Draft;

    /// "Q-2026-0001"
    QString number() const;
    /// "A"
    QString revisionLetter() const;
    /// The customer as QuoteHeader::customerText gives it.
    QString customerText() const;
};

namespace QuoteNumbers {
/// "name, company"; either alone when the other is empty or the same.
QString customerText(const QString &name, const QString &company);
/// "Q-<year>-<sequence>", the sequence with at least four digits: "Q-2026-0001".
QString number(int year, int sequence);
/// The letter of revision index: 0 → "A" … 25 → "Z", 26 → "AA", 27 → "AB" …
QString revisionLetter(int revision);
/// The revision index of letters ("A" → 0, "AA" → 26), in either case; none for anything else.
std::optional<int> revisionOf(const QString &letters);
/// Whether a quote valid until validUntil has run out on today: a draft or sent quote whose
/// last valid day is before today. An accepted or declined quote never runs out.
bool hasExpired(const QDate &validUntil, QuoteStatus status, const QDate &today);
} // namespace QuoteNumbers

} // namespace tarnwick
