#pragma once

#include "catalogue/module1.h"
#include "commands/edithistory.h"
#include "platform/appenvironment.h"
#include "support/fakeprompts.h"

#include <QByteArray>
#include <QLocale>
#include <QStringList>

#include <gtest/gtest.h>

#include <vector>

namespace tarnwick::test {

/// The program's shared state (catalogue, quote, schedule) with a history of changes over it,
/// recording what the steps tell the windows.
class HistoryTest : public ::testing::Test
{
protected:
    HistoryTest();

    /// Puts one product per line into the catalogue: part number, name, list price (a number
    /// when it reads as one), notes, includes; Count follows.
    void loadProducts(const std::vector<QStringList> &products);
    /// The catalogue as the catalogue file holds it.
    QByteArray fileBytes();
    /// The texts of one field of every catalogue row.
    QStringList column(int field);
    /// The texts of one field of the quote's first rows.
    QStringList quoteColumn(int field, int rows = 4);
    Table &catalogue() { return module.Catalogue(); }
    Table &quote() { return module.QuoteTable(); }
    qint32 count() { return module.AllProducts().Count(); }

    FakePrompts prompts;
    AppEnvironment environment { QStringLiteral("/nonexistent"), QString() };
    const QLocale locale { QLocale::English, QLocale::UnitedStates };
    Module1 module { prompts, environment, locale };
    EditHistory history { module };
    std::vector<ProductChange> productChanges;
    std::vector<QuoteChange> quoteChanges;
};

} // namespace tarnwick::test
