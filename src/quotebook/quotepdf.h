#pragma once

#include "quotebook/quoterecord.h"
#include "quotes/quotedocument.h"

#include <QLocale>
#include <QPageSize>
#include <QString>

class QPagedPaintDevice;

namespace tarnwick {

class Table;

/// What the quote on paper shows besides its lines.
struct QuotePdfInput
{
    QuoteHeader header; ///< number, revision, customer and date for the page header
    QuoteDocumentInput document; ///< heading, ending, "NoIncludes" and the total boxes
};

/// The quote document laid out for paper: the heading, one block per line (the part number
/// and name in bold, the price line in columns, the volume prices and further quantities as the
/// quote document shows them, the Includes text), the totals and the
/// ending, with the quote's number, customer and date at the top of every page and "Page n of
/// m" at its foot. A line's block is never split by a page break.
namespace QuotePdf {

inline constexpr QLatin1String FontFamily("Times New Roman");

/// Paints the quote on device, one newPage() per further page; returns the number of pages (0
/// when the device could not be painted on).
int paint(QPagedPaintDevice &device, const Table &quote, const QuotePdfInput &input,
    const QLocale &locale);

/// The paper of the locale: Letter where letters are measured in inches (the United States),
/// A4 elsewhere.
QPageSize pageSizeFor(const QLocale &locale);

/// Writes the quote as a PDF file at path, whole or not at all. False when it could not be
/// written; error says why in plain words and an existing file at path is left as it was.
bool write(const QString &path, const Table &quote, const QuotePdfInput &input,
    const QLocale &locale, QString &error);

/// The page header's texts: "Quote Q-2026-0001 A", the customer, the date.
QStringList pageHeader(const QuoteHeader &header, const QLocale &locale);

} // namespace QuotePdf

} // namespace tarnwick
