// Weight of a piece, and width and area of plate-like sizes, by dimension format.
#include "REWeightCalc.h"

#include "measure/CalcSupport.h"

using measure_detail::Put;

namespace {

// How a dimension format gives the width of a plate-like item.
enum class AreaRule {
    WidthD2,       // width D2 + D4 / 16 inches
    WidthD1,       // width D1 + D2 / 16 inches
    WidthD3,       // width D3 + D4 / 16 inches
    FeetD3InchD4,  // width D3 feet and D4 inches
    Weightless,    // no area, and the unit weight counts as 0
    None,          // no area
};

struct AreaRow {
    int16_t dmFmt;
    AreaRule rule;
};

constexpr AreaRow kAreaRules[] = {
    {3, AreaRule::WidthD2},       {4, AreaRule::WidthD2},       {16, AreaRule::WidthD2},
    {18, AreaRule::WidthD2},      {21, AreaRule::WidthD2},      {23, AreaRule::WidthD2},
    {13, AreaRule::WidthD1},      {34, AreaRule::WidthD3},      {35, AreaRule::WidthD3},
    {41, AreaRule::WidthD3},      {9, AreaRule::FeetD3InchD4},  {11, AreaRule::FeetD3InchD4},
    {14, AreaRule::FeetD3InchD4}, {19, AreaRule::Weightless},   {31, AreaRule::Weightless},
    {32, AreaRule::Weightless},   {33, AreaRule::Weightless},   {40, AreaRule::Weightless},
    {42, AreaRule::Weightless},
};

// Formats whose reported width differs from the width their area is computed on.
constexpr AreaRow kReportedWidth[] = {
    {41, AreaRule::WidthD2},
};

enum class WeightBasis { PerFoot, PerSquareFoot, Each };

struct WeightUnitRow {
    int16_t code;
    WeightBasis basis;
    double divisor;
};

constexpr WeightUnitRow kWeightUnits[] = {
    {1, WeightBasis::PerFoot, 1.0},
    {2, WeightBasis::PerSquareFoot, 1.0},
    {3, WeightBasis::Each, 1.0},
    {4, WeightBasis::Each, 100.0},
    {5, WeightBasis::Each, 1000.0},
};

template <size_t N>
AreaRule FindRule(const AreaRow (&table)[N], int16_t dmFmt)
{
    for (const AreaRow& row : table)
        if (row.dmFmt == dmFmt)
            return row.rule;
    return AreaRule::None;
}

struct Dimensions {
    double d1, d2, d3, d4;
};

// Width in inches for the plate rules; the feet-based rule in inches too.
double WidthInches(AreaRule rule, const Dimensions& d)
{
    switch (rule) {
    case AreaRule::WidthD2:
        return d.d2 + d.d4 / measure_detail::kSixteenthsPerInch;
    case AreaRule::WidthD1:
        return d.d1 + d.d2 / measure_detail::kSixteenthsPerInch;
    case AreaRule::WidthD3:
        return d.d3 + d.d4 / measure_detail::kSixteenthsPerInch;
    case AreaRule::FeetD3InchD4:
        return (d.d3 + d.d4 / measure_detail::kInchesPerFoot) * measure_detail::kInchesPerFoot;
    case AreaRule::Weightless:
    case AreaRule::None:
        break;
    }
    return 0.0;
}

double AreaSquareFeet(AreaRule rule, const Dimensions& d, const measure_detail::Length& length)
{
    switch (rule) {
    case AreaRule::WidthD2:
    case AreaRule::WidthD1:
    case AreaRule::WidthD3:
        return WidthInches(rule, d) * length.inches / measure_detail::kSquareInchesPerSquareFoot;
    case AreaRule::FeetD3InchD4:
        return (d.d3 + d.d4 / measure_detail::kInchesPerFoot) * length.feet;
    case AreaRule::Weightless:
    case AreaRule::None:
        break;
    }
    return 0.0;
}

} // namespace

int gCalculateWeight(int16_t dmFmt, int16_t weightUnit, double unitWeight, double quantity, double /*unused*/,
                     double d1, double d2, double d3, double d4, double lengthFeet, double lengthInches,
                     double lengthSixteenths, double* totalWeight, double* pieceWeight, double* lengthInFeet,
                     double* lengthInInches, double* area)
{
    const measure_detail::Length length = measure_detail::MakeLength(lengthFeet, lengthInches, lengthSixteenths);
    Put(lengthInFeet, length.feet);
    Put(lengthInInches, length.inches);

    const AreaRule rule = FindRule(kAreaRules, dmFmt);
    const double itemArea = AreaSquareFeet(rule, {d1, d2, d3, d4}, length);
    if (rule == AreaRule::Weightless)
        unitWeight = 0.0;
    Put(area, itemArea);

    double weight = 0.0;
    for (const WeightUnitRow& row : kWeightUnits) {
        if (row.code != weightUnit)
            continue;
        const double per = row.basis == WeightBasis::PerFoot         ? length.feet
                           : row.basis == WeightBasis::PerSquareFoot ? itemArea
                                                                     : 1.0;
        weight = unitWeight * per / row.divisor;
    }
    Put(pieceWeight, weight);
    Put(totalWeight, quantity * weight);
    return 1;
}

int gCalculateWeight(int16_t dmFmt, int16_t weightUnit, double unitWeight, double quantity, double unused,
                     double d1, double d2, double d3, double d4, double lengthFeet, double* totalWeight,
                     double* pieceWeight, double* lengthInFeet, double* lengthInInches, double* area)
{
    return gCalculateWeight(dmFmt, weightUnit, unitWeight, quantity, unused, d1, d2, d3, d4, lengthFeet, 0.0, 0.0,
                            totalWeight, pieceWeight, lengthInFeet, lengthInInches, area);
}

int gCalcWidthAndLengthInInches(int16_t dmFmt, double /*unused*/, double d1, double d2, double d3, double d4,
                                double lengthFeet, double lengthInches, double lengthSixteenths,
                                double* widthInInches, double* lengthInInches, double* area)
{
    const measure_detail::Length length = measure_detail::MakeLength(lengthFeet, lengthInches, lengthSixteenths);
    Put(lengthInInches, length.inches);

    const Dimensions dims{d1, d2, d3, d4};
    const AreaRule rule = FindRule(kAreaRules, dmFmt);
    const AreaRule reported = FindRule(kReportedWidth, dmFmt);
    Put(widthInInches, WidthInches(reported != AreaRule::None ? reported : rule, dims));
    Put(area, AreaSquareFeet(rule, dims, length));
    return 1;
}
