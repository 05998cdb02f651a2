// Cost of a piece by price unit, and the price unit's label.
#include "REWeightCalc.h"

#include "measure/CalcSupport.h"

using measure_detail::Put;

namespace {

// What the price is paid on.
enum class PriceBasis { Weight, Length, Each, Area };

struct PriceUnitRow {
    int32_t code;
    const char* label;  // exactly eight characters
    PriceBasis basis;
    double divisor;
};

constexpr PriceUnitRow kPriceUnits[] = {
    {1, "$/CWT   ", PriceBasis::Weight, 100.0},
    {2, "$/Foot  ", PriceBasis::Length, 1.0},
    {3, "$/Each  ", PriceBasis::Each, 1.0},
    {4, "$/100   ", PriceBasis::Each, 100.0},
    {5, "$/1000  ", PriceBasis::Each, 1000.0},
    {6, "$/SqFt  ", PriceBasis::Area, 1.0},
    {7, "$/square", PriceBasis::Area, 100.0},
    {8, "$/CFT   ", PriceBasis::Length, 100.0},
};

constexpr const char* kUnknownLabel = "$       ";

const PriceUnitRow* FindPriceUnit(int32_t code)
{
    for (const PriceUnitRow& row : kPriceUnits)
        if (row.code == code)
            return &row;
    return nullptr;
}

} // namespace

int gCalcCost(int32_t priceUnit, double quantity, double price, double length, double area, double pieceWeight,
              double* totalCost, double* pieceCost)
{
    double cost = 0.0;
    if (const PriceUnitRow* row = FindPriceUnit(priceUnit)) {
        const double per = row->basis == PriceBasis::Weight   ? pieceWeight
                           : row->basis == PriceBasis::Length ? length
                           : row->basis == PriceBasis::Area   ? area
                                                              : 1.0;
        cost = price * per / row->divisor;
    }
    Put(pieceCost, cost);
    Put(totalCost, quantity * cost);
    return 1;
}

int gGetPriceUintString(int32_t priceUnit, std::string& label)
{
    const PriceUnitRow* row = FindPriceUnit(priceUnit);
    label = row != nullptr ? row->label : kUnknownLabel;
    return 1;
}
