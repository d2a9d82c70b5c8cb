#pragma once

#include "catalogue/table.h"

#include <QLocale>
#include <QString>

#include <gtest/gtest.h>

namespace tarnwick::test {

/// A catalogue of a few products with price points and an empty quote of 250 rows.
class QuoteFixture : public ::testing::Test
{
protected:
    QuoteFixture();

    /// Adds the catalogue product with the given part number; returns the new quote row.
    int add(const QString &partNumber);
    /// Types a quantity or a price into quote row (1-based), as the quote grid stores it, and
    /// re-prices the line.
    void typeQuantity(int row, const QString &text);
    void typePrice(int row, const QString &text);

    double number(int row, int field) const { return quote.get(row, field).asNumber(); }

    const QLocale locale { QLocale::English, QLocale::UnitedStates };
    Table catalogue;
    Table quote;
};

} // namespace tarnwick::test
