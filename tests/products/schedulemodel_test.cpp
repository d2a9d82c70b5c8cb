#include "catalogue/productrecord.h"
#include "catalogue/table.h"
#include "products/priceladder.h"
#include "products/productrow.h"
#include "products/schedulemodel.h"
#include "support/testlocale.h"

#include <QSignalSpy>

#include <gtest/gtest.h>

using namespace tarnwick;

namespace {

using tarnwick::test::EnUs;

class ScheduleModelTest : public ::testing::Test
{
protected:
    ScheduleModelTest() : schedule(5, 2), model(schedule, EnUs) { }

    QString shown(int row, int column) const { return model.index(row, column).data().toString(); }

    Table schedule;
    ScheduleModel model;
};

TEST_F(ScheduleModelTest, ShowsFiveRowsOfPricePointAndPrice)
{
    EXPECT_EQ(model.rowCount(), 5);
    EXPECT_EQ(model.columnCount(), 2);
    EXPECT_EQ(model.headerData(0, Qt::Horizontal).toString(), QStringLiteral("Price Point"));
    EXPECT_EQ(model.headerData(1, Qt::Horizontal).toString(), QStringLiteral("Price"));
}

TEST_F(ScheduleModelTest, QuantitiesShowWithThousandsSeparatorsAndPricesAsCurrency)
{
    schedule.put(1, 1, "1000");
    schedule.put(1, 2, "9.5");
    schedule.put(2, 1, Cell(qint32(25)));
    schedule.put(2, 2, Cell(1234.5f));
    schedule.put(3, 1, "0");
    EXPECT_EQ(shown(0, 0), QStringLiteral("1,000"));
    EXPECT_EQ(shown(0, 1), QStringLiteral("$9.50"));
    EXPECT_EQ(shown(1, 0), QStringLiteral("25"));
    EXPECT_EQ(shown(1, 1), QStringLiteral("$1,234.50"));
    EXPECT_EQ(shown(2, 0), QString()); // zero shows as an empty cell
    EXPECT_EQ(shown(4, 1), QString());
    EXPECT_EQ(model.index(0, 0).data(Qt::EditRole).toString(), QStringLiteral("1000"));
}

TEST_F(ScheduleModelTest, CellsAreReadOnlyUntilTheModelIsMadeEditable)
{
    const QModelIndex cell = model.index(0, 0);
    EXPECT_FALSE(model.flags(cell).testFlag(Qt::ItemIsEditable));
    EXPECT_FALSE(model.setData(cell, "10"));
    EXPECT_TRUE(schedule.get(1, 1).isEmpty());

    model.setEditable(true);
    EXPECT_TRUE(model.flags(cell).testFlag(Qt::ItemIsEditable));
    QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
    EXPECT_TRUE(model.setData(cell, "10"));
    EXPECT_EQ(schedule.get(1, 1), Cell("10"));
    EXPECT_EQ(changed.count(), 1);

    model.setEditable(false);
    EXPECT_FALSE(model.setData(cell, "20"));
    EXPECT_EQ(schedule.get(1, 1), Cell("10"));
}

// A price point typed under German is kept in the German form, as the catalogue keeps every
// price point it reads, so the export writes them all alike.
TEST(ScheduleModelGerman, APricePointTypedIsKeptInTheGermanForm)
{
    const QLocale german(QLocale::German, QLocale::Germany);
    Table schedule(5, 2);
    ScheduleModel model(schedule, german);
    model.setEditable(true);
    EXPECT_TRUE(model.setData(model.index(0, 1), "7.36"));
    EXPECT_EQ(schedule.get(1, 2), Cell("7,36"));
    EXPECT_TRUE(model.setData(model.index(1, 1), QStringLiteral("12,50 \u20ac")));
    EXPECT_EQ(schedule.get(2, 2), Cell("12,5"));
    EXPECT_TRUE(model.setData(model.index(2, 1), "4,5"));
    EXPECT_EQ(schedule.get(3, 2), Cell("4,5")) << "typed in the German form already";
    EXPECT_TRUE(model.setData(model.index(0, 0), "1.000"));
    EXPECT_EQ(schedule.get(1, 1), Cell("1.000")) << "a thousand, grouped as German groups";
    EXPECT_TRUE(model.setData(model.index(3, 1), "call"));
    EXPECT_EQ(schedule.get(4, 2), Cell("call"));
}

TEST_F(ScheduleModelTest, ACommaDecimalTypedInEnglishIsTheNumberTheFileWillRead)
{
    model.setEditable(true);
    EXPECT_TRUE(model.setData(model.index(0, 1), "12,5"));
    EXPECT_EQ(schedule.get(1, 2), Cell("12.5"));
    EXPECT_EQ(shown(0, 1), QStringLiteral("$12.50"));
    EXPECT_TRUE(model.setData(model.index(0, 1), "1,250"));
    EXPECT_EQ(schedule.get(1, 2), Cell("1,250")) << "a thousands separator stays as typed";
}

TEST_F(ScheduleModelTest, AToolTipShowsWhatWasTypedNotMarkup)
{
    model.setEditable(true);
    ASSERT_TRUE(model.setData(model.index(0, 0), "<b>ten</b> & more"));
    const QString tip = model.index(0, 0).data(Qt::ToolTipRole).toString();
    EXPECT_EQ(tip,
        QStringLiteral("<qt style=\"white-space:pre-wrap\">Price Point 1 (&quot;&lt;b&gt;ten&lt;/"
                       "b&gt; &amp; more&quot;) is no quantity.</qt>"));
}

TEST_F(ScheduleModelTest, ACellWithALadderProblemCarriesAMarkerAndItsTextAsToolTip)
{
    model.setListPriceSource([] { return Cell("$10.00"); });
    model.setEditable(true);
    ASSERT_TRUE(model.setData(model.index(0, 0), "25"));
    ASSERT_TRUE(model.setData(model.index(0, 1), "9"));
    EXPECT_FALSE(model.index(0, 0).data(ScheduleModel::ProblemRole).toBool());
    QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
    ASSERT_TRUE(model.setData(model.index(1, 0), "10"));
    EXPECT_EQ(changed.count(), 1);
    EXPECT_TRUE(model.index(1, 0).data(ScheduleModel::ProblemRole).toBool());
    EXPECT_EQ(model.index(1, 0).data(Qt::ToolTipRole).toString(),
        QStringLiteral("Price Point 2 (10) is not above Price Point 1 (25)."));
    EXPECT_EQ(model.index(1, 0).data(Qt::AccessibleDescriptionRole).toString(),
        QStringLiteral("Price Point 2 (10) is not above Price Point 1 (25)."))
        << "assistive tools read the warning sign's reason";
    EXPECT_FALSE(model.index(0, 0).data(Qt::AccessibleDescriptionRole).isValid());
    EXPECT_FALSE(model.index(0, 0).data(ScheduleModel::ProblemRole).toBool());
    EXPECT_EQ(model.index(1, 1).data(Qt::ToolTipRole).toString(),
        QStringLiteral("Price Point 2 (10) has no price."));

    ASSERT_TRUE(model.setData(model.index(1, 1), "11"));
    EXPECT_TRUE(model.index(1, 1).data(ScheduleModel::ProblemRole).toBool());
    EXPECT_EQ(model.index(1, 1).data(Qt::ToolTipRole).toString(),
        QStringLiteral("Price 2 ($11.00) is above the list price ($10.00)."));
    EXPECT_EQ(model.problems().size(), 2u);

    ASSERT_TRUE(model.setData(model.index(1, 0), "50"));
    ASSERT_TRUE(model.setData(model.index(1, 1), "8"));
    EXPECT_TRUE(model.problems().empty());
    EXPECT_FALSE(model.index(1, 0).data(ScheduleModel::ProblemRole).toBool());
    EXPECT_FALSE(model.index(1, 0).data(Qt::ToolTipRole).isValid());
}

TEST_F(ScheduleModelTest, AnEmptyEntryEmptiesTheCell)
{
    schedule.put(2, 2, "$5.00");
    model.setEditable(true);
    EXPECT_TRUE(model.setData(model.index(1, 1), QString()));
    EXPECT_TRUE(schedule.get(2, 2).isEmpty());
}

TEST_F(ScheduleModelTest, EditedPointsAreStoredSortedNumericallyWithEmptyQuantitiesLast)
{
    Table catalogue(1, ProductRecord::FieldCount);
    model.setEditable(true);
    model.setData(model.index(0, 0), "100");
    model.setData(model.index(0, 1), "8");
    model.setData(model.index(1, 1), "7.5"); // a price without quantity
    model.setData(model.index(2, 0), "20");
    model.setData(model.index(2, 1), "9");
    model.setData(model.index(4, 0), "5");
    model.setData(model.index(4, 1), "10");
    ProductRow::writeBack(catalogue, 1, { "12", "", "" }, schedule, EnUs);
    EXPECT_EQ(catalogue.get(1, ProductRecord::PricePoint1), Cell("5"));
    EXPECT_EQ(catalogue.get(1, ProductRecord::Price1), Cell("10"));
    EXPECT_EQ(catalogue.get(1, ProductRecord::PricePoint2), Cell("20"));
    EXPECT_EQ(catalogue.get(1, ProductRecord::PricePoint3), Cell("100"));
    EXPECT_EQ(catalogue.get(1, ProductRecord::Price3), Cell("8"));
    EXPECT_TRUE(catalogue.get(1, ProductRecord::PricePoint4).isBlank());
    EXPECT_EQ(catalogue.get(1, ProductRecord::Price4), Cell("7.5"));
    EXPECT_TRUE(catalogue.get(1, ProductRecord::PricePoint5).isBlank());
}

TEST_F(ScheduleModelTest, ReloadAnnouncesAReset)
{
    QSignalSpy reset(&model, &QAbstractItemModel::modelReset);
    model.reload();
    EXPECT_EQ(reset.count(), 1);
}

TEST_F(ScheduleModelTest, ATypedPointGoesToTheWriterInsteadOfTheTable)
{
    model.setEditable(true);
    int calls = 0;
    model.setCellWriter([&](int row, int column, const Cell &value) {
        ++calls;
        EXPECT_EQ(row, 2);
        EXPECT_EQ(column, 1);
        EXPECT_EQ(value, Cell("25"));
        return true;
    });
    EXPECT_TRUE(model.setData(model.index(1, 0), QStringLiteral("25")));
    EXPECT_EQ(calls, 1);
    EXPECT_TRUE(schedule.get(2, 1).isEmpty());
}

TEST_F(ScheduleModelTest, ACellLeftAsItWasOpenedWritesNothing)
{
    // A point with a quantity and no price yet: its empty price cell opened and left.
    schedule.put(1, 1, Cell("10"));
    schedule.put(1, 2, Cell(QString()));
    model.setEditable(true);
    int written = 0;
    model.setCellWriter([&](int, int, const Cell &) { return ++written > 0; });
    for (const QModelIndex &cell : { model.index(0, 0), model.index(0, 1), model.index(1, 1) })
        EXPECT_TRUE(model.setData(cell, cell.data(Qt::EditRole))) << cell.row() << cell.column();
    EXPECT_EQ(written, 0);
    EXPECT_TRUE(model.setData(model.index(0, 1), "2.5"));
    EXPECT_EQ(written, 1);
}

} // namespace
