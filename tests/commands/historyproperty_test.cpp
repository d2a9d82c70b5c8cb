// Random sequences of 200 changes of every kind, made through the history as the windows make
// them, each checked against a plain model of the catalogue and the quote kept here; then
// everything is undone (the catalogue file's bytes are those the run started with) and redone
// (the bytes are those of the end), each undo and redo checked against the model as it was.
#include "historyfixture.h"

#include "catalogue/cataloguewriter.h"
#include "catalogue/productrecord.h"
#include "catalogue/products.h"
#include "commands/catalogueedits.h"
#include "commands/quoteedits.h"
#include "core/conversions.h"
#include "core/formats.h"
#include "products/productcommands.h"
#include "quotes/quotediscount.h"
#include "quotes/quoteline.h"
#include "support/testlocale.h"

#include <QFile>
#include <QTemporaryDir>

#include <algorithm>
#include <array>
#include <optional>
#include <random>

using namespace tarnwick;
using namespace tarnwick::test;

namespace {

namespace P = ProductRecord;
namespace Q = QuoteLine;

using Product = std::array<Cell, P::FieldCount>;
using Line = std::array<Cell, Q::FieldCount>;

/// The catalogue and the quote as plain rows, changed by plain code. The pricing of quote
/// lines follows QuoteList's and Discount's rules, which have tests of their own: the model
/// applies them to a table of its own.
struct Model
{
    std::vector<Product> products;
    qint32 count = 0;
    bool sortedByPart = true;
    std::vector<Line> quote = std::vector<Line>(std::size_t(Q::MaxLines));
};

enum class Kind {
    CellTyped,
    SideBox,
    Schedule,
    ClearSchedule,
    Insert,
    Delete,
    DeleteAll,
    Sort,
    Import,
    AddLine,
    RemoveLine,
    RemoveAll,
    QuoteCell,
    ResetPrices,
    DiscountAll,
    DiscountLine,
    KindCount
};

using tarnwick::test::EnUs;

/// The key of a numeric sort: numbers and texts that read as numbers; none for the rest.
std::optional<double> numberKey(const Cell &cell)
{
    if (cell.isNumber())
        return cell.asNumber();
    if (!cell.isText() || cell.asText().isEmpty())
        return std::nullopt;
    return conv::parseNumber(cell.asText(), EnUs);
}

QString textKey(const Cell &cell)
{
    return cell.isEmpty() ? QString() : conv::toText(cell, EnUs);
}

/// Stable, ascending; numbers before the cells without one; texts by their folded form, then
/// as they are.
bool lessOnField(const Product &a, const Product &b, int field)
{
    const Cell &x = a[std::size_t(field - 1)];
    const Cell &y = b[std::size_t(field - 1)];
    if (P::isNumberField(field)) {
        const auto kx = numberKey(x);
        const auto ky = numberKey(y);
        if (kx && ky)
            return *kx < *ky;
        return kx.has_value() && !ky.has_value();
    }
    const QString fx = textKey(x).toCaseFolded();
    const QString fy = textKey(y).toCaseFolded();
    if (fx != fy)
        return fx < fy;
    return textKey(x) < textKey(y);
}

/// The model sorted on field as a header click sorts the catalogue: a sort that moves no row is
/// no step and changes nothing, not even what the catalogue is known to be sorted by.
void sortModel(Model &model, int field)
{
    const std::vector<Product> before = model.products;
    model.products.resize(std::size_t(std::max(0, int(model.count))));
    std::stable_sort(model.products.begin(), model.products.end(),
        [field](const Product &a, const Product &b) { return lessOnField(a, b, field); });
    if (model.products != before)
        model.sortedByPart = field == P::PartNumber;
}

Table tableOf(const std::vector<Product> &products)
{
    Table table(int(products.size()), P::FieldCount);
    for (std::size_t r = 0; r < products.size(); ++r) {
        for (int f = 1; f <= P::FieldCount; ++f)
            table.put(int(r) + 1, f, products[r][std::size_t(f - 1)]);
    }
    return table;
}

Table quoteTableOf(const std::vector<Line> &quote)
{
    Table table(int(quote.size()), Q::FieldCount);
    for (std::size_t r = 0; r < quote.size(); ++r) {
        for (int f = 1; f <= Q::FieldCount; ++f)
            table.put(int(r) + 1, f, quote[r][std::size_t(f - 1)]);
    }
    return table;
}

std::vector<Line> linesOf(const Table &table)
{
    std::vector<Line> quote(std::size_t(table.rowCount()));
    for (int r = 1; r <= table.rowCount(); ++r) {
        for (int f = 1; f <= Q::FieldCount; ++f)
            quote[std::size_t(r - 1)][std::size_t(f - 1)] = table.get(r, f);
    }
    return quote;
}

/// The first quote row whose part number is blank (one past the end when all are used).
int modelFirstFree(const Model &model)
{
    for (std::size_t r = 0; r < model.quote.size(); ++r) {
        if (model.quote[r][Q::PartNumber - 1].isBlank())
            return int(r) + 1;
    }
    return int(model.quote.size()) + 1;
}

class HistoryPropertyTest : public HistoryTest
{
protected:
    /// A catalogue of random products, written as a catalogue file and read back as the
    /// program reads it at start.
    void startFromFile(std::mt19937 &random, int products)
    {
        Table made(products, P::FieldCount);
        for (int row = 1; row <= products; ++row) {
            made.put(row, P::PartNumber, partNumber(random));
            made.put(row, P::ProductName, name(random));
            made.put(row, P::Price,
                QStringLiteral("%1.%2").arg(pick(random, 1, 90)).arg(pick(random, 10, 99)));
            if (pick(random, 0, 2) == 0)
                made.put(row, P::Notes, name(random) + QStringLiteral(" notes"));
            if (pick(random, 0, 2) == 0) {
                made.put(row, P::PricePoint1, QString::number(pick(random, 2, 50)));
                made.put(row, P::Price1, QStringLiteral("%1.00").arg(pick(random, 1, 20)));
            }
        }
        made.sortRows(1, products, P::PartNumber, Table::SortKind::Text, EnUs);
        ASSERT_TRUE(folder.isValid());
        // Written, read as at start and written again, the file keeps its bytes from then on.
        readFile(catalogueFileBytes(made, EnUs, products).bytes);
        original = fileBytes();
        readFile(original);
        ASSERT_EQ(fileBytes(), original) << "the catalogue file reads and writes back as it was";
        model.products.clear();
        for (int row = 1; row <= catalogue().rowCount(); ++row) {
            Product product;
            for (int f = 1; f <= P::FieldCount; ++f)
                product[std::size_t(f - 1)] = catalogue().get(row, f);
            model.products.push_back(product);
        }
        model.count = count();
        model.sortedByPart = module.SortedByPart = true;
    }

    /// Reads a catalogue file's bytes into the catalogue as the program does at start.
    void readFile(const QByteArray &bytes)
    {
        const QString path = folder.filePath(QStringLiteral("twdata.dat"));
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(bytes);
        file.close();
        catalogue().redim(1000, P::FieldCount);
        ASSERT_EQ(module.AllProducts().ReadProds(path).status, CatalogueReadResult::Status::Ok);
        ProductCommands::sortCatalogue(catalogue(), module.AllProducts(), P::PartNumber, EnUs);
    }

    static int pick(std::mt19937 &random, int low, int high)
    {
        return std::uniform_int_distribution<int>(low, high)(random);
    }
    static QString partNumber(std::mt19937 &random)
    {
        const QString part =
            QStringLiteral("P-%1").arg(pick(random, 0, 60), 2, 10, QLatin1Char('0'));
        return pick(random, 0, 4) == 0 ? part.toLower() : part;
    }
    static QString name(std::mt19937 &random)
    {
        static const char *names[] = { "Anchor", "bolt", "Bolt", "Clamp", "washer", "Nut", "nut",
            "Zinc screw", "Eye bolt" };
        return QString::fromLatin1(names[pick(random, 0, 8)]);
    }
    /// A price or quantity as users type and files hold them.
    static Cell value(std::mt19937 &random)
    {
        switch (pick(random, 0, 5)) {
        case 0:
            return Cell();
        case 1:
            return Cell(float(pick(random, 1, 400)) / 4.0f);
        case 2:
            return Cell(QStringLiteral("call"));
        default:
            return Cell(QString::number(pick(random, 1, 120)));
        }
    }

    /// One random change of the given kind, through the history and in the model.
    void change(std::mt19937 &random, Kind kind)
    {
        const int rows = int(model.products.size());
        const int row = rows > 0 ? pick(random, 1, rows) : 0;
        switch (kind) {
        case Kind::CellTyped: {
            if (row == 0)
                return;
            const int field = pick(random, 0, 1) ? P::PartNumber : P::ProductName;
            const Cell typed =
                field == P::PartNumber ? Cell(partNumber(random)) : Cell(name(random));
            CatalogueEdits::setCell(history, { row, field - 1 }, row, field, typed);
            model.products[std::size_t(row - 1)][std::size_t(field - 1)] = typed;
            return;
        }
        case Kind::SideBox: {
            if (row == 0)
                return;
            const int fields[] = { P::Price, P::Includes, P::Notes };
            const int field = fields[pick(random, 0, 2)];
            const SideBoxTexts boxes { conv::toText(value(random), EnUs), name(random),
                name(random) + QStringLiteral("\r\nsecond line") };
            CatalogueEdits::setSideBox(history, { row, 0 }, row, field, boxes);
            const Cell stored = field == P::Price
                ? Cell(format(Cell(boxes.price), QStringLiteral("currency"), EnUs))
                : Cell(field == P::Includes ? boxes.includes : boxes.notes);
            model.products[std::size_t(row - 1)][std::size_t(field - 1)] = stored;
            return;
        }
        case Kind::Schedule: {
            if (row == 0)
                return;
            Product &product = model.products[std::size_t(row - 1)];
            Table shown(P::PricePointCount, 2);
            for (int k = 1; k <= P::PricePointCount; ++k) {
                shown.put(k, 1, product[std::size_t(P::pricePointField(k) - 1)]);
                shown.put(k, 2, product[std::size_t(P::pricePointPriceField(k) - 1)]);
            }
            shown.put(pick(random, 1, 5), pick(random, 1, 2), value(random));
            CatalogueEdits::setSchedule(history, { row, 0 }, row, shown);
            std::vector<std::pair<Cell, Cell>> points;
            for (int k = 1; k <= P::PricePointCount; ++k)
                points.emplace_back(shown.get(k, 1), shown.get(k, 2));
            std::stable_sort(points.begin(), points.end(), [](const auto &a, const auto &b) {
                const auto ka = numberKey(a.first);
                const auto kb = numberKey(b.first);
                if (ka && kb)
                    return *ka < *kb;
                return ka.has_value() && !kb.has_value();
            });
            for (int k = 1; k <= P::PricePointCount; ++k) {
                product[std::size_t(P::pricePointField(k) - 1)] = points[std::size_t(k - 1)].first;
                product[std::size_t(P::pricePointPriceField(k) - 1)] =
                    points[std::size_t(k - 1)].second;
            }
            return;
        }
        case Kind::ClearSchedule:
            if (row == 0)
                return;
            CatalogueEdits::clearSchedule(history, { row, 0 }, row);
            for (int f = P::PricePoint1; f <= P::Price5; ++f)
                model.products[std::size_t(row - 1)][std::size_t(f - 1)] = Cell();
            return;
        case Kind::Insert: {
            const int at = pick(random, 0, rows); // 0: no current row
            const int inserted = CatalogueEdits::insertProduct(history, { at, 0 }, at);
            EXPECT_EQ(inserted, std::max(at, 1));
            model.products.insert(model.products.begin() + (inserted - 1), Product {});
            ++model.count;
            return;
        }
        case Kind::Delete:
            if (row == 0)
                return;
            CatalogueEdits::deleteProduct(history, { row, 0 }, row);
            model.products.erase(model.products.begin() + (row - 1));
            --model.count;
            return;
        case Kind::DeleteAll:
            CatalogueEdits::deleteAll(history, { row, 0 });
            if (model.count > 0) {
                model.products.clear();
                model.count = 0;
            }
            return;
        case Kind::Sort: {
            // Part number, name and price half the time: most price points are empty, and a
            // sort that moves no row is no step.
            const int field =
                pick(random, 0, 1) ? pick(random, 1, 3) : pick(random, 1, P::FieldCount);
            CatalogueEdits::sort(history, { row, 0 }, field);
            sortModel(model, field);
            return;
        }
        case Kind::Import:
            importSome(random);
            return;
        default:
            changeQuote(random, kind);
        }
    }

    void importSome(std::mt19937 &random)
    {
        ProductChanges changes;
        const int added = pick(random, 0, 4);
        changes.added.redim(added, P::FieldCount);
        for (int r = 1; r <= added; ++r) {
            changes.added.put(r, P::PartNumber, partNumber(random));
            changes.added.put(r, P::ProductName, name(random));
            changes.added.put(r, P::Price, value(random));
        }
        const int rows = int(model.products.size());
        for (int k = pick(random, 0, 3); k > 0 && rows > 0; --k)
            changes.updated.push_back(
                { pick(random, 1, rows), pick(random, 2, P::FieldCount), value(random) });
        const bool sorted = std::is_sorted(model.products.begin(), model.products.end(),
            [](const Product &a, const Product &b) { return lessOnField(a, b, P::PartNumber); });
        const bool nothing = added == 0 && changes.updated.empty();
        for (const CellUpdate &update : changes.updated)
            model.products[std::size_t(update.row - 1)][std::size_t(update.field - 1)] =
                update.value;
        for (int r = 1; r <= added; ++r) {
            Product product;
            for (int f = 1; f <= P::FieldCount; ++f)
                product[std::size_t(f - 1)] = changes.added.get(r, f);
            model.products.push_back(product);
        }
        model.count += added;
        CatalogueEdits::import(history, { 1, 0 }, std::move(changes));
        if (!(nothing && sorted)) {
            sortModel(model, P::PartNumber);
            model.sortedByPart = true; // an import's sort says so even when it moved no row
        }
    }

    void changeQuote(std::mt19937 &random, Kind kind)
    {
        const int lines = modelFirstFree(model) - 1;
        const int line = lines > 0 ? pick(random, 1, lines) : 0;
        Table priced = quoteTableOf(model.quote);
        switch (kind) {
        case Kind::AddLine: {
            const int rows = int(model.products.size());
            if (rows == 0)
                return;
            const int from = pick(random, 1, rows);
            const QuoteList::AddLineResult added =
                QuoteEdits::addProduct(history, {}, from, QStringLiteral("Includes"));
            const int at = modelFirstFree(model);
            if (at > Q::MaxLines) {
                EXPECT_EQ(added.status, QuoteList::AddStatus::QuoteFull);
                return;
            }
            const Product &product = model.products[std::size_t(from - 1)];
            model.quote[std::size_t(at - 1)] = { product[0], product[1], product[2],
                Cell(qint32(1)), product[2], product[2], Cell(QStringLiteral("Includes")) };
            return;
        }
        case Kind::RemoveLine:
            if (line == 0)
                return;
            QuoteEdits::removeLine(history, {}, line);
            model.quote.erase(model.quote.begin() + (line - 1));
            model.quote.emplace_back();
            return;
        case Kind::RemoveAll: {
            QuoteEdits::removeAll(history, {});
            const int removed = std::min(modelFirstFree(model), Q::MaxLines);
            model.quote.erase(model.quote.begin(), model.quote.begin() + removed);
            model.quote.resize(std::size_t(Q::MaxLines));
            return;
        }
        case Kind::QuoteCell: {
            if (line == 0)
                return;
            const int column =
                pick(random, 0, 1) ? QuoteGridColumn::Quantity : QuoteGridColumn::Price;
            const QString typed = QString::number(pick(random, 0, 60));
            QuoteEdits::setCell(history, {}, line, column, typed);
            priced.put(line, column + 1, typed);
            const Table products = tableOf(model.products);
            QuoteList::repriceLine(priced, products, line, column, EnUs);
            break;
        }
        case Kind::ResetPrices:
            QuoteEdits::resetPrices(history, {});
            Discount::resetPrices(priced, EnUs);
            break;
        case Kind::DiscountAll:
            QuoteEdits::discountAll(history, {}, rate(random), QStringLiteral("5%"));
            Discount::applyToAllLines(priced, lastRate, EnUs);
            break;
        case Kind::DiscountLine:
            QuoteEdits::discountLine(history, {}, line, rate(random), QStringLiteral("10%"));
            Discount::applyToLine(priced, line, lastRate, EnUs);
            break;
        default:
            ADD_FAILURE() << "unknown kind";
        }
        model.quote = linesOf(priced);
    }

    /// A discount's multiplier, kept as lastRate for the model.
    float rate(std::mt19937 &random)
    {
        static const float rates[] = { 0.99f, 0.95f, 0.9f, 0.85f, 0.75f, 1.0f };
        lastRate = rates[pick(random, 0, 5)];
        return lastRate;
    }

    /// The program's tables against a model.
    void expectAsModel(const Model &expected, const std::string &where)
    {
        ASSERT_EQ(catalogue().rowCount(), int(expected.products.size())) << where;
        EXPECT_EQ(count(), expected.count) << where;
        EXPECT_EQ(module.SortedByPart, expected.sortedByPart) << where;
        for (int r = 1; r <= catalogue().rowCount(); ++r) {
            for (int f = 1; f <= P::FieldCount; ++f)
                ASSERT_EQ(catalogue().get(r, f),
                    expected.products[std::size_t(r - 1)][std::size_t(f - 1)])
                    << where << ": product " << r << ", field " << f;
        }
        ASSERT_EQ(quote().rowCount(), Q::MaxLines) << where;
        for (int r = 1; r <= Q::MaxLines; ++r) {
            for (int f = 1; f <= Q::FieldCount; ++f)
                ASSERT_EQ(quote().get(r, f), expected.quote[std::size_t(r - 1)][std::size_t(f - 1)])
                    << where << ": quote row " << r << ", field " << f;
        }
    }

    void runSequence(unsigned seed)
    {
        std::mt19937 random(seed);
        startFromFile(random, 30);
        const QByteArray start = fileBytes();
        // Kinds at random (Delete All and Remove All rarely, or most changes would find
        // nothing to change), then every kind once more in a random order.
        std::vector<Kind> kinds;
        std::discrete_distribution<int> weighted(
            { 14, 14, 10, 3, 8, 8, 0.5, 8, 6, 14, 5, 0.5, 12, 3, 4, 4 });
        static_assert(int(Kind::KindCount) == 16);
        while (kinds.size() < 200 - std::size_t(Kind::KindCount))
            kinds.push_back(Kind(weighted(random)));
        std::vector<Kind> each;
        each.reserve(std::size_t(Kind::KindCount));
        for (int k = 0; k < int(Kind::KindCount); ++k)
            each.push_back(Kind(k));
        std::shuffle(each.begin(), each.end(), random);
        kinds.insert(kinds.end(), each.begin(), each.end());
        std::vector<Model> states { model };
        std::array<int, std::size_t(Kind::KindCount)> steps {};
        for (std::size_t k = 0; k < kinds.size(); ++k) {
            const int before = history.count();
            change(random, kinds[k]);
            const std::string where =
                "seed " + std::to_string(seed) + ", change " + std::to_string(k);
            expectAsModel(model, where);
            if (HasFatalFailure())
                return;
            if (history.count() > before) {
                states.push_back(model);
                ++steps[std::size_t(kinds[k])];
            }
            ASSERT_EQ(history.count(), int(states.size()) - 1) << where;
        }
        for (std::size_t kind = 0; kind < steps.size(); ++kind)
            EXPECT_GT(steps[kind], 0) << "no step of kind " << kind << " with seed " << seed;
        EXPECT_GE(history.count(), 130) << "most changes change something";
        const QByteArray end = fileBytes();
        for (int k = int(states.size()) - 2; k >= 0; --k) {
            history.undo();
            expectAsModel(states[std::size_t(k)], "undo to " + std::to_string(k));
            if (HasFatalFailure())
                return;
        }
        EXPECT_FALSE(history.canUndo());
        EXPECT_EQ(fileBytes(), start);
        EXPECT_EQ(fileBytes(), original);
        EXPECT_TRUE(history.catalogueSaved());
        for (std::size_t k = 1; k < states.size(); ++k) {
            history.redo();
            expectAsModel(states[k], "redo to " + std::to_string(k));
            if (HasFatalFailure())
                return;
        }
        EXPECT_FALSE(history.canRedo());
        EXPECT_EQ(fileBytes(), end);
    }

    QTemporaryDir folder;
    QByteArray original;
    Model model;
    float lastRate = 1.0f;
};

TEST_F(HistoryPropertyTest, RandomChangesUndoToTheFileTheRunStartedWithAndRedoToTheEnd)
{
    runSequence(20261125u);
}

TEST_F(HistoryPropertyTest, AnotherSequence)
{
    runSequence(7u);
}

TEST_F(HistoryPropertyTest, AThirdSequence)
{
    runSequence(4242u);
}

} // namespace
