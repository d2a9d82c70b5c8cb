#pragma once

#include "catalogue/products.h"
#include "catalogue/table.h"

#include <QLocale>
#include <QString>

#include <memory>

namespace tarnwick {

class AppEnvironment;
class IPrompts;

/// The program-wide shared state: the catalogue file's path, the catalogue table, the one
/// Products object and the quote and price-schedule tables. One instance lives for the whole
/// run and is handed to whoever needs it; the catalogue and AllProducts are created on first use.
class Module1
{
public:
    Module1(IPrompts &prompts, const AppEnvironment &environment, const QLocale &locale);
    ~Module1();

    /// Full path of "twdata.dat" in the application folder, set at start-up.
    QString DataFile;
    /// True while the catalogue is ordered by part number, false by product name.
    bool SortedByPart = true;

    Table &Catalogue();
    Products &AllProducts();
    /// The quote: 250 rows of 7 fields once start-up has sized it.
    Table &QuoteTable() { return m_quote; }
    /// The current product's price points: 5 rows of quantity and price.
    Table &ScheduleTable() { return m_schedule; }

    const QLocale &locale() const { return m_locale; }
    const AppEnvironment &environment() const { return m_environment; }

private:
    IPrompts &m_prompts;
    const AppEnvironment &m_environment;
    QLocale m_locale;
    std::unique_ptr<Table> m_catalogue;
    std::unique_ptr<Products> m_products;
    Table m_quote;
    Table m_schedule;
};

} // namespace tarnwick
