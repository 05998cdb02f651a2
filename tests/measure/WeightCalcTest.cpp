// Weight, plate width and area by dimension format, and the weight units.
#include <gtest/gtest.h>

#include <map>

#include "REWeightCalc.h"

namespace {

// A size with four distinct dimensions and a length of 10' 6 8/16".
constexpr double kD1 = 7, kD2 = 48, kD3 = 30, kD4 = 8;
constexpr double kLI = 126.5;
constexpr double kLF = 10.0 + 6.5 / 12;

struct Plate {
    double width;  // inches, as reported
    double area;   // square feet
};

// What each format gives for that size; formats not listed give 0 and 0.
const std::map<int, Plate>& PlateByFormat()
{
    constexpr double kFeetWidth = 30 + 8.0 / 12;
    static const std::map<int, Plate> plates = {
        {3, {48.5, 48.5 * kLI / 144}},  {4, {48.5, 48.5 * kLI / 144}},  {16, {48.5, 48.5 * kLI / 144}},
        {18, {48.5, 48.5 * kLI / 144}}, {21, {48.5, 48.5 * kLI / 144}}, {23, {48.5, 48.5 * kLI / 144}},
        {13, {10.0, 10.0 * kLI / 144}}, {34, {30.5, 30.5 * kLI / 144}}, {35, {30.5, 30.5 * kLI / 144}},
        // Reports the D2 width but computes the area on D3.
        {41, {48.5, 30.5 * kLI / 144}},
        {9, {kFeetWidth * 12, kFeetWidth * kLF}}, {11, {kFeetWidth * 12, kFeetWidth * kLF}},
        {14, {kFeetWidth * 12, kFeetWidth * kLF}},
    };
    return plates;
}

bool IsWeightless(int dmFmt)
{
    for (const int f : {19, 31, 32, 33, 40, 42})
        if (f == dmFmt)
            return true;
    return false;
}

struct Weight {
    double total = -1, piece = -1, lf = -1, li = -1, area = -1;
};

Weight Weigh(int dmFmt, int unit, double unitWeight = 20.4, double quantity = 2)
{
    Weight w;
    EXPECT_EQ(gCalculateWeight(static_cast<int16_t>(dmFmt), static_cast<int16_t>(unit), unitWeight, quantity, 999.0,
                               kD1, kD2, kD3, kD4, 10, 6, 8, &w.total, &w.piece, &w.lf, &w.li, &w.area),
              1);
    return w;
}

TEST(WeightCalc, AreaAndWeightOfEveryFormat)
{
    for (int dmFmt = -1; dmFmt <= 45; ++dmFmt) {
        SCOPED_TRACE(dmFmt);
        const auto found = PlateByFormat().find(dmFmt);
        const Plate plate = found != PlateByFormat().end() ? found->second : Plate{0, 0};
        const double area = plate.area;
        const double unitWeight = IsWeightless(dmFmt) ? 0.0 : 20.4;

        const Weight perArea = Weigh(dmFmt, 2);
        EXPECT_DOUBLE_EQ(perArea.li, kLI);
        EXPECT_DOUBLE_EQ(perArea.lf, kLF);
        EXPECT_DOUBLE_EQ(perArea.area, area);
        EXPECT_DOUBLE_EQ(perArea.piece, unitWeight * area);
        EXPECT_DOUBLE_EQ(perArea.total, 2 * unitWeight * area);

        // Pounds per foot need no area, but weightless formats still weigh nothing.
        EXPECT_DOUBLE_EQ(Weigh(dmFmt, 1).piece, unitWeight * kLF);

        double width = -1, li = -1, widthArea = -1;
        EXPECT_EQ(gCalcWidthAndLengthInInches(static_cast<int16_t>(dmFmt), 999.0, kD1, kD2, kD3, kD4, 10, 6, 8, &width,
                                              &li, &widthArea),
                  1);
        EXPECT_DOUBLE_EQ(li, kLI);
        EXPECT_DOUBLE_EQ(widthArea, area);
        EXPECT_DOUBLE_EQ(width, plate.width);
    }
}

TEST(WeightCalc, WeightUnits)
{
    const double area = 48.5 * kLI / 144;
    const struct {
        int unit;
        double piece;
    } cases[] = {
        {1, 20.4 * kLF}, {2, 20.4 * area}, {3, 20.4}, {4, 0.204}, {5, 0.0204}, {6, 0}, {0, 0}, {-3, 0},
    };
    for (const auto& c : cases) {
        const Weight w = Weigh(3, c.unit);
        EXPECT_DOUBLE_EQ(w.piece, c.piece) << c.unit;
        EXPECT_DOUBLE_EQ(w.total, 2 * c.piece) << c.unit;
    }
}

TEST(WeightCalc, PlateExampleAndFeetOnlyForm)
{
    double total = 0, piece = 0, lf = 0, li = 0, area = 0;
    gCalculateWeight(3, 2, 20.4, 2, 0, 0, 48, 0, 0, 10, 0, 0, &total, &piece, &lf, &li, &area);
    EXPECT_DOUBLE_EQ(area, 40.0);
    EXPECT_DOUBLE_EQ(piece, 816.0);
    EXPECT_DOUBLE_EQ(total, 1632.0);

    EXPECT_EQ(gCalculateWeight(2, 1, 20.4, 3, 0, 1, 2, 3, 4, 10.5, &total, &piece, &lf, &li, &area), 1);
    EXPECT_DOUBLE_EQ(lf, 10.5);
    EXPECT_DOUBLE_EQ(li, 126.0);
    EXPECT_DOUBLE_EQ(area, 0.0);
    EXPECT_DOUBLE_EQ(piece, 20.4 * 10.5);
    EXPECT_DOUBLE_EQ(total, 3 * 20.4 * 10.5);

    // Results the caller has no place for are skipped.
    EXPECT_EQ(gCalculateWeight(3, 2, 1, 1, 0, 1, 2, 3, 4, 5, 6, 7, nullptr, nullptr, nullptr, nullptr, nullptr), 1);
    EXPECT_EQ(gCalcWidthAndLengthInInches(3, 0, 1, 2, 3, 4, 5, 6, 7, nullptr, nullptr, nullptr), 1);
}

} // namespace
