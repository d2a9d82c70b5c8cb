// The catalogue file is the same in every locale: numbers are written with "." and no
// grouping, and a file written under one locale reads back unchanged under any other.
#include "cataloguefixture.h"

#include "catalogue/cataloguetext.h"
#include "catalogue/cataloguewriter.h"
#include "catalogue/productrecord.h"
#include "core/conversions.h"

#include <QFile>
#include <QFileInfo>

namespace tarnwick::test {
namespace {

using Status = CatalogueReadResult::Status;

QLocale localeNamed(const QString &name)
{
    if (name == QLatin1String("de_DE"))
        return QLocale(QLocale::German, QLocale::Germany);
    if (name == QLatin1String("fr_FR"))
        return QLocale(QLocale::French, QLocale::France);
    if (name == QLatin1String("en_US"))
        return QLocale(QLocale::English, QLocale::UnitedStates);
    return QLocale::c();
}

/// Prices of every kind: short ones, 7- and 8-digit ones, price points with decimals.
QByteArray mixedCatalogue()
{
    return productLine({ "A-100", "Anchor", "12.5", "Notes \xe9", "Washer", "10", "11.25", "100",
               "10.5", "1000", "9.75" })
        + productLine({ "B-200", "Bolt", "49.99", "", "", "5", "1234.5" })
        + productLine({ "C-300", "Crate", "123456.78", "", "", "2", "123000.5" })
        + productLine({ "D-400", "Dock", "12345678" })
        + productLine({ "E-500", "Eye", "1.5", "", "", "1", "1.25" });
}

/// Reads the data file under one locale and writes it back.
QByteArray readAndWrite(const QString &file, const QLocale &locale, Table &table)
{
    FakePrompts prompts;
    const AppEnvironment environment(QFileInfo(file).absolutePath(), QString());
    table.redim(1000, 15);
    Products products(table, prompts, environment, locale);
    EXPECT_EQ(products.ReadProds(file).status, Status::Ok);
    table.redimPreserve(products.Count(), 15);
    EXPECT_TRUE(products.WriteProds(file).ok);
    QFile written(file);
    EXPECT_TRUE(written.open(QIODevice::ReadOnly));
    return written.readAll();
}

class CatalogueLocaleTest : public CatalogueFixture,
                            public ::testing::WithParamInterface<std::tuple<QString, QString>>
{
};

TEST_P(CatalogueLocaleTest, WrittenUnderOneLocaleReadsBackUnchangedUnderAnother)
{
    const QLocale first = localeNamed(std::get<0>(GetParam()));
    const QLocale second = localeNamed(std::get<1>(GetParam()));
    writeDataFile(mixedCatalogue());
    Table underFirst;
    EXPECT_EQ(readAndWrite(dataFile(), first, underFirst), mixedCatalogue());
    Table underSecond;
    EXPECT_EQ(readAndWrite(dataFile(), second, underSecond), mixedCatalogue());

    for (int row = 1; row <= 5; ++row) {
        EXPECT_EQ(underSecond.get(row, ProductRecord::Price), underFirst.get(row, 3));
        for (int field = ProductRecord::PricePoint1; field <= 15; ++field) {
            const Cell &a = underFirst.get(row, field);
            const Cell &b = underSecond.get(row, field);
            // The same number, each in a form its own locale reads.
            EXPECT_EQ(a.isBlank(), b.isBlank());
            if (!a.isBlank()) {
                EXPECT_EQ(conv::toDouble(a, first), conv::toDouble(b, second))
                    << row << "/" << field;
            }
        }
    }
    EXPECT_EQ(underSecond.get(3, ProductRecord::Price), Cell(123456.78f));
    EXPECT_EQ(underSecond.get(4, ProductRecord::Price), Cell(12345678.0f));
}

INSTANTIATE_TEST_SUITE_P(EveryPair, CatalogueLocaleTest,
    ::testing::Combine(::testing::Values(QStringLiteral("de_DE"), QStringLiteral("fr_FR"),
                           QStringLiteral("en_US"), QStringLiteral("C")),
        ::testing::Values(QStringLiteral("de_DE"), QStringLiteral("fr_FR"), QStringLiteral("en_US"),
            QStringLiteral("C"))));

TEST_F(CatalogueFixture, LegacyCommaFileReadsUnderEnglishAndIsWrittenWithDots)
{
    writeDataFile(productLine({ "A-1", "Schraube", "12,5", "", "", "10", "11,25" })
        + productLine({ "B-2", "Mutter", "1234,5", "", "", "100", "1000,75" }));
    const CatalogueReadResult result = products.ReadProds(dataFile());
    ASSERT_EQ(result.status, Status::Ok);
    EXPECT_TRUE(result.unreadNumbers.isEmpty());
    EXPECT_EQ(catalogue.get(1, ProductRecord::Price), Cell(12.5f));
    EXPECT_EQ(catalogue.get(2, ProductRecord::Price), Cell(1234.5f));
    EXPECT_EQ(conv::toDouble(catalogue.get(1, ProductRecord::Price1), locale), 11.25);
    EXPECT_EQ(conv::toDouble(catalogue.get(2, ProductRecord::Price1), locale), 1000.75);

    catalogue.redimPreserve(products.Count(), 15);
    ASSERT_TRUE(products.WriteProds(dataFile()).ok);
    EXPECT_EQ(dataFileBytes(),
        productLine({ "A-1", "Schraube", "12.5", "", "", "10", "11.25" })
            + productLine({ "B-2", "Mutter", "1234.5", "", "", "100", "1000.75" }));
}

TEST_F(CatalogueFixture, UnderEnglishThousandsTypedWithCommasAreThousands)
{
    // An earlier version kept price points as typed: "2,450" by an English-speaking user.
    writeDataFile(productLine({ "B-1", "Boiler", "2,500.00", "", "", "5", "2,450", "10", "0,125" })
        + productLine({ "B-2", "Burner", "1,234", "", "", "", "" }));
    const CatalogueReadResult result = products.ReadProds(dataFile());
    ASSERT_EQ(result.status, Status::Ok);
    EXPECT_TRUE(result.unreadNumbers.isEmpty());
    EXPECT_EQ(catalogue.get(1, ProductRecord::Price), Cell(2500.0f));
    EXPECT_EQ(conv::toDouble(catalogue.get(1, ProductRecord::Price1), locale), 2450.0);
    EXPECT_EQ(conv::toDouble(catalogue.get(1, ProductRecord::Price2), locale), 0.125)
        << "no thousands start with a zero: a comma decimal";
    EXPECT_EQ(catalogue.get(2, ProductRecord::Price), Cell(1234.0f));
    catalogue.redimPreserve(products.Count(), 15);
    ASSERT_TRUE(products.WriteProds(dataFile()).ok);
    EXPECT_EQ(dataFileBytes(),
        productLine({ "B-1", "Boiler", "2500", "", "", "5", "2450", "10", "0.125" })
            + productLine({ "B-2", "Burner", "1234", "", "", "", "" }));
}

TEST_F(CatalogueFixture, UnderGermanAPricePointLikeAGroupedNumberIsReadInTheStoredForm)
{
    // "2.500" in the file is two and a half, as the file writes numbers in every locale; in
    // German it would read as two thousand five hundred.
    const QLocale german(QLocale::German, QLocale::Germany);
    writeDataFile(
        productLine({ "A-1", "Anchor", "2.500", "", "", "10", "2.500", "1.000", "1.250" }));
    Table table(1000, 15);
    Products germanProducts(table, prompts, environment, german);
    ASSERT_EQ(germanProducts.ReadProds(dataFile()).status, Status::Ok);
    EXPECT_EQ(table.get(1, ProductRecord::Price), Cell(2.5f));
    EXPECT_EQ(conv::toDouble(table.get(1, ProductRecord::Price1), german), 2.5);
    EXPECT_EQ(conv::toDouble(table.get(1, ProductRecord::PricePoint2), german), 1.0);
    EXPECT_EQ(conv::toDouble(table.get(1, ProductRecord::Price2), german), 1.25);
    table.redimPreserve(germanProducts.Count(), 15);
    ASSERT_TRUE(germanProducts.WriteProds(dataFile()).ok);
    EXPECT_EQ(
        dataFileBytes(), productLine({ "A-1", "Anchor", "2.5", "", "", "10", "2.5", "1", "1.25" }));
}

TEST_F(CatalogueFixture, TypedGermanNumbersAreWrittenWithDots)
{
    const QLocale german(QLocale::German, QLocale::Germany);
    Table table(1, 15);
    table.put(1, 1, Cell("A-1"));
    table.put(1, 3, Cell(QStringLiteral("1.234,50 €")));
    table.put(1, 6, Cell("1.000"));
    table.put(1, 7, Cell("12,50"));
    table.put(1, 8, Cell("call us"));
    const CatalogueFileText text = catalogueFileText(table, german, 1);
    EXPECT_EQ(encodeCatalogueText(text.text),
        productLine({ "A-1", "", "1234.5", "", "", "1000", "12.5", "call us" }));
}

TEST_F(CatalogueFixture, FrenchPriceTextWithNarrowSpaceStillGoesOutAsWindows1252)
{
    // The price box's French text holds U+202F, which Windows-1252 lacks; written as a plain
    // number the file keeps Windows-1252 for the note's "é".
    const QLocale french(QLocale::French, QLocale::France);
    Table table(1, 15);
    table.put(1, 1, Cell("A-1"));
    table.put(1, 3, Cell(QStringLiteral("1\u202f234,50\u00a0€")));
    table.put(1, 4, Cell(QStringLiteral("Notes é")));
    const CatalogueFileText text = catalogueFileText(table, french, 1);
    EXPECT_EQ(encodeCatalogueText(text.text), productLine({ "A-1", "", "1234.5", "Notes \xe9" }));
}

// Every price point read under German is kept in the German form, whichever way the file
// writes it, so the export and the handheld file write them all alike ("7,36" beside "7,676",
// never "7.36" beside "7,676"); the file gets the "." form back.
TEST_F(CatalogueFixture, UnderGermanEveryPricePointIsKeptInTheGermanForm)
{
    const QLocale german(QLocale::German, QLocale::Germany);
    writeDataFile(productLine({ "M-1", "Valve", "12.5", "", "", "10", "7.676", "100", "7.36",
        "1000", "7.340", "5000", "call" }));
    Table table(1000, 15);
    Products germanProducts(table, prompts, environment, german);
    ASSERT_EQ(germanProducts.ReadProds(dataFile()).status, Status::Ok);
    EXPECT_EQ(table.get(1, ProductRecord::PricePoint1), Cell("10"));
    EXPECT_EQ(table.get(1, ProductRecord::Price1), Cell("7,676"));
    EXPECT_EQ(table.get(1, ProductRecord::Price2), Cell("7,36"));
    EXPECT_EQ(table.get(1, ProductRecord::Price3), Cell("7,34"));
    EXPECT_EQ(table.get(1, ProductRecord::PricePoint4), Cell("5000"));
    EXPECT_EQ(table.get(1, ProductRecord::Price4), Cell("call"));
    table.redimPreserve(germanProducts.Count(), 15);
    ASSERT_TRUE(germanProducts.WriteProds(dataFile()).ok);
    EXPECT_EQ(dataFileBytes(),
        productLine({ "M-1", "Valve", "12.5", "", "", "10", "7.676", "100", "7.36", "1000", "7.34",
            "5000", "call" }));
}

} // namespace
} // namespace tarnwick::test
