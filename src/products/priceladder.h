#pragma once

#include "core/cell.h"

#include <QLocale>
#include <QString>

#include <array>
#include <vector>

namespace tarnwick {

class Table;

/// One thing wrong with a product's price points, and the schedule cell it is about.
struct LadderProblem
{
    enum class Kind {
        UnusableQuantity, ///< a threshold that is no number or above 32,767
        NotAbovePrevious, ///< a threshold not above the one of the point before it
        MissingPrice, ///< a threshold without a price, or a price that is no number
        CostsMore, ///< a higher quantity costs more than a lower one
        AboveListPrice, ///< a break price above the list price
        BelowZero, ///< a break price below zero
        ShownOtherwise, ///< a break price a quote shows as another amount (read as a single)
        ListPriceUnused, ///< a break from the first unit below the list price: it is never charged
        FractionOfCent, ///< a break price with part of a cent, which a quote shows without it
    };

    Kind kind = Kind::NotAbovePrevious;
    int point = 0; ///< the price point (schedule row) 1..5
    int column = 1; ///< the schedule column: 1 the quantity, 2 the price
    QString text;
};

/// One price break as a quote charges it: from quantity on, SetPrice gives price.
struct PriceBreak
{
    qint32 quantity = 0;
    float price = 0;
};

/// A product whose price points have at least one problem.
struct ProductLadderProblems
{
    int row = 0; ///< the catalogue row
    QString partNumber;
    QString text; ///< every problem's text, one after the other
};

/// The sense of a product's price points: what is wrong with them (for the warnings while a
/// schedule is edited and the "Check Price Points" list) and the breaks a quote really gets.
namespace PriceLadder {

/// The five points of a schedule: quantity and price of point k at index k − 1.
struct Points
{
    std::array<Cell, 5> quantity;
    std::array<Cell, 5> price;
};

Points pointsOfProduct(const Table &catalogue, int row);
/// The schedule table (5 rows of quantity and price) as points.
Points pointsOfSchedule(const Table &schedule);

/// Everything wrong with points, in point order; listPrice is the product's list price (a
/// list price that is no number is not compared with).
std::vector<LadderProblem> check(
    const Points &points, const Cell &listPrice, const QLocale &locale);
std::vector<LadderProblem> checkProduct(const Table &catalogue, int row, const QLocale &locale);

/// The problems' texts joined by a blank.
QString describe(const std::vector<LadderProblem> &problems);

/// Every product of the catalogue whose price points have a problem, in catalogue order;
/// rows without a part number and without a name are left out.
std::vector<ProductLadderProblems> checkCatalogue(const Table &catalogue, const QLocale &locale);

/// The breaks of catalogue row in ascending quantity, each with the price SetPrice gives at its
/// quantity (so a point that a later slot overrides shows the price that really applies).
/// Thresholds that SetPrice cannot read are left out, and so are quantities from which it
/// gives no usable price (a point without its price, "call", a price beyond a single's range);
/// a threshold below 1 counts from 1.
std::vector<PriceBreak> breaks(const Table &catalogue, int row, const QLocale &locale);

} // namespace PriceLadder

} // namespace tarnwick
