// Numeric tests of entered text, the sixteenths column, and sortable number fields.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "CNumericTest.h"
#include "RecordBuilders.h"
#include "SrtStr2Float.h"

namespace {

TEST(NumericTest, IntegerAndFloatTexts)
{
    const struct {
        const char* text;
        int isInteger;
        int isFloat;
    } cases[] = {
        {"", 1, 1},      {"-", 1, 1},     {"0", 1, 1},     {"-123", 1, 1},  {"--5", 0, 0},
        {"+5", 0, 0},    {"5 ", 0, 0},    {" 5", 0, 0},    {"-1.25", 0, 1}, {".", 0, 1},
        {"5.", 0, 1},    {".5", 0, 1},    {"-.5", 0, 1},   {"1.2.3", 0, 0}, {"1e5", 0, 0},
        {"1.5e3", 0, 0}, {"5-", 0, 0},    {"1,5", 0, 0},   {"12a", 0, 0},   {"-1.-2", 0, 0},
    };
    const CNumericTest test;
    for (const auto& c : cases) {
        EXPECT_EQ(test.IsInteger(c.text), c.isInteger) << '"' << c.text << '"';
        EXPECT_EQ(test.IsFloat(c.text), c.isFloat) << '"' << c.text << '"';
    }
}

TEST(NumericTest, CompareAsNumbers)
{
    const struct {
        const char* a;
        const char* b;
        int result;
    } cases[] = {
        {"1.50", "1.5", 0}, {"abc", "0", 0},  {"2", "1", -1},     {"1", "2", -1},
        {" 7x", "7", 0},    {"-0", "0", 0},   {"1e2", "100", 0},  {"0.1", "0.10000001", -1},
    };
    const CNumericTest test;
    for (const auto& c : cases)
        EXPECT_EQ(test.CompareToStringwrtDouble(c.a, c.b), c.result) << c.a << " vs " << c.b;
}

TEST(NumericTest, DecimalDigits)
{
    const CNumericTest test;
    EXPECT_EQ(test.GetnDecimalDigit("3.125"), 3);
    EXPECT_EQ(test.GetnDecimalDigit("125"), 3);  // no point: the whole length
    EXPECT_EQ(test.GetnDecimalDigit("12.50"), 2);
    EXPECT_EQ(test.GetnDecimalDigit("12."), 0);
    EXPECT_EQ(test.GetnDecimalDigit(""), 0);
    EXPECT_EQ(test.GetnDecimalDigit("1.2.34"), 4);
}

TEST(NumericTest, SixteenthsColumn)
{
    const struct {
        float value;
        const char* text;
    } cases[] = {
        {0.0f, " 0     "},  {7.0f, " 7     "},    {5.5f, " 5 1/ 2"},     {5.75f, " 5 3/ 4"},
        {5.0625f, " 5 1/16"}, {5.125f, " 5 1/ 8"}, {5.9375f, " 515/16"}, {5.3f, " 5 1/ 4"},
        {5.01f, " 5 0/ 8"}, {12.03f, "12 0/ 8"},  {-2.5f, "-2-1/ 2"},    {123.25f, "123 1/ 4"},
        {3.0e9f, "3000000000     "},
    };
    const CNumericTest test;
    for (const auto& c : cases)
        EXPECT_EQ(test.GetNumeratorNDenominator(c.value), c.text) << c.value;
    // No crash and no undefined conversion on values no int holds.
    for (const float v : {std::numeric_limits<float>::infinity(), -3.0e38f, std::numeric_limits<float>::quiet_NaN()})
        EXPECT_FALSE(test.GetNumeratorNDenominator(v).empty());
}

using testsupport::Sortable;

float Decode(std::initializer_list<unsigned char> bytes)
{
    float value = 0;
    std::memcpy(&value, std::data(bytes), sizeof value);
    SrtStr2Float(&value);
    return value;
}

TEST(SortableNumber, DecodesKnownBytes)
{
    EXPECT_EQ(Decode({0xBF, 0x80, 0x00, 0x00}), 1.0f);
    EXPECT_EQ(Decode({0x40, 0x7F, 0xFF, 0xFF}), -1.0f);
    const float plusZero = Decode({0x80, 0x00, 0x00, 0x00});
    const float minusZero = Decode({0x7F, 0xFF, 0xFF, 0xFF});
    EXPECT_EQ(plusZero, 0.0f);
    EXPECT_FALSE(std::signbit(plusZero));
    EXPECT_EQ(minusZero, 0.0f);
    EXPECT_TRUE(std::signbit(minusZero));
    SrtStr2Float(nullptr);
}

TEST(SortableNumber, ByteOrderIsNumericOrderAndDecodesBack)
{
    std::vector<float> values = {-1.0e30f, -1234.5f, -1.0f, -0.001f, 0.0f, 1.0e-30f, 0.5f, 1.0f, 18.5f, 3.0e38f};
    std::vector<float> stored;
    for (const float v : values)
        stored.push_back(Sortable(v));
    for (size_t i = 0; i + 1 < stored.size(); ++i)
        EXPECT_LT(std::memcmp(&stored[i], &stored[i + 1], sizeof(float)), 0) << values[i];
    for (size_t i = 0; i < values.size(); ++i) {
        float decoded = stored[i];
        SrtStr2Float(&decoded);
        EXPECT_EQ(decoded, values[i]);
        SrtStr2Float(&decoded);
        EXPECT_NE(decoded, values[i]);  // not its own inverse
    }
}

} // namespace
