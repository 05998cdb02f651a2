// Surface area, perimeter and further values of a section by kind, and the cost by price unit.
// Every input differs from the others, so that an argument read in the wrong place shows.
#include <gtest/gtest.h>

#include <string>

#include "REWeightCalc.h"

namespace {

TEST(SectionCalc, SurfaceAreaOfEveryKind)
{
    // a1 = 3 pieces, a7 = 10 feet long; a5 is not used.
    const struct {
        int kind;
        double piece;
    } cases[] = {
        {1, 25.833333333333}, {2, 18.326}, {3, 23.333333333333}, {4, 13.7445}, {5, 8.958333333333},
        {6, 25.065538194444}, {7, 23.333333333333}, {8, 15.0}, {9, 15.416666666667}, {0, 0}, {10, 0}, {-1, 0},
    };
    for (const auto& c : cases) {
        double total = -1, piece = -1;
        EXPECT_EQ(gCalculateSurfaceArea(static_cast<int16_t>(c.kind), 3, 5, 6, 9, 100, 4, 10, 7, 0.5, 2, &total, &piece), 1);
        EXPECT_NEAR(piece, c.piece, 1e-9) << c.kind;
        EXPECT_NEAR(total, 3 * c.piece, 1e-9) << c.kind;
    }
}

TEST(SectionCalc, PerimeterOfEveryKind)
{
    // p4 is not used.
    const struct {
        int kind;
        double perimeter;
    } cases[] = {
        {1, 32}, {2, 21.9912}, {3, 28}, {4, 16.4934}, {5, 10.75}, {6, 29.25},
        {7, 28}, {8, 18},      {10, 16.8861}, {9, 0}, {0, 0},    {11, 0},
    };
    for (const auto& c : cases) {
        double perimeter = -1;
        EXPECT_EQ(gCalculatePerimeter(static_cast<int16_t>(c.kind), 5, 6, 9, 100, 4, 7, 2, &perimeter), 1);
        EXPECT_NEAR(perimeter, c.perimeter, 1e-9) << c.kind;
    }
}

TEST(SectionCalc, MiscPropertiesOfEveryFormat)
{
    // m1 = 1.5, D1..D4 = 2, 3, 5, 7, m6 = 11.
    const struct {
        int dmFmt;
        double r[4];
    } cases[] = {
        {1, {0, 11, 0, 0}},           {2, {4.5, 5.4375, 1.5, 3}},   {3, {3.4375, 1.625, 0, 0}},
        {16, {3.4375, 1.625, 0, 0}},  {18, {3.4375, 1.625, 0, 0}},  {4, {3.4375, 1.5, 0, 0}},
        {21, {3.4375, 1.5, 0, 0}},    {23, {3.4375, 1.5, 0, 0}},    {9, {67, 1.625, 0, 0}},
        {11, {67, 1.625, 0, 0}},      {14, {67, 1.625, 0, 0}},      {13, {2.1875, 1.5, 0, 0}},
        {34, {5.4375, 1.625, 0, 0}},  {35, {5.4375, 1.625, 0, 0}},  {41, {5.4375, 1.625, 0, 0}},
        {37, {0, 3, 1.5, 2}},         {0, {0, 0, 0, 0}},            {5, {0, 0, 0, 0}},
        {42, {0, 0, 0, 0}},           {-7, {0, 0, 0, 0}},
    };
    for (const auto& c : cases) {
        double r[4] = {-1, -1, -1, -1};
        EXPECT_EQ(gGetMiscProperties(c.dmFmt, 1.5, 2, 3, 5, 7, 11, &r[0], &r[1], &r[2], &r[3]), 1);
        for (int i = 0; i < 4; ++i)
            EXPECT_DOUBLE_EQ(r[i], c.r[i]) << "format " << c.dmFmt << " value " << i + 1;
    }
}

TEST(CostCalc, EveryPriceUnit)
{
    // 2 pieces at 50, each 10.5 feet, 40 square feet and 816 pounds.
    const struct {
        int unit;
        const char* label;
        double piece;
    } cases[] = {
        {1, "$/CWT   ", 408},  {2, "$/Foot  ", 525},  {3, "$/Each  ", 50},   {4, "$/100   ", 0.5},
        {5, "$/1000  ", 0.05}, {6, "$/SqFt  ", 2000}, {7, "$/square", 20},   {8, "$/CFT   ", 5.25},
        {9, "$       ", 0},    {0, "$       ", 0},    {-1, "$       ", 0},
    };
    for (const auto& c : cases) {
        double total = -1, piece = -1;
        EXPECT_EQ(gCalcCost(c.unit, 2, 50, 10.5, 40, 816, &total, &piece), 1);
        EXPECT_DOUBLE_EQ(piece, c.piece) << c.unit;
        EXPECT_DOUBLE_EQ(total, 2 * c.piece) << c.unit;
        std::string label = "previous";
        EXPECT_EQ(gGetPriceUintString(c.unit, label), 1);
        EXPECT_EQ(label, c.label);
        EXPECT_EQ(label.size(), 8u);
    }
    EXPECT_EQ(gCalcCost(1, 2, 50, 1, 1, 1, nullptr, nullptr), 1);
}

} // namespace
