#pragma once

#include "catalogue/table.h"
#include "core/cell.h"
#include "quotes/quotedocument.h"
#include "quotes/quoteline.h"

#include <QString>

#include <gtest/gtest.h>

namespace tarnwick::test {

/// An empty quote of 250 rows and the note texts around it, for the tests of the quote
/// document and its clipboard forms; the discount and total boxes are the test's own.
class QuoteDocumentFixture : public ::testing::Test
{
protected:
    QuoteDocumentFixture(const QString &discountBox, const QString &totalBox)
        : quote(QuoteLine::MaxLines, QuoteLine::FieldCount)
    {
        input.heading = QStringLiteral("Dear customer,");
        input.ending = QStringLiteral("Kind regards");
        input.discountBox = discountBox;
        input.totalBox = totalBox;
    }

    /// Fills quote row (1-based) as the quote grid stores a line.
    void addLine(int row, const char *part, const char *name, const Cell &unit, const Cell &qty,
        const Cell &ext, const Cell &list, const char *includes)
    {
        quote.put(row, QuoteLine::PartNumber, part);
        quote.put(row, QuoteLine::ProductName, name);
        quote.put(row, QuoteLine::UnitPrice, unit);
        quote.put(row, QuoteLine::Quantity, qty);
        quote.put(row, QuoteLine::ExtendedPrice, ext);
        quote.put(row, QuoteLine::ListPrice, list);
        quote.put(row, QuoteLine::Includes, includes);
    }

    Table quote;
    QuoteDocumentInput input;
};

} // namespace tarnwick::test
