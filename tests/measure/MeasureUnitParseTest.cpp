// Reading typed lengths in each unit: the numeric path, foot marks, blanks and tabs, fractions,
// decimals and the texts that must fail.
#include <gtest/gtest.h>

#include <string>

#include "CFPSLMeasureUnit.h"

namespace {

using Unit = CFPSLMeasureUnit::DefaultUnit;

struct ParseCase {
    const char* text;
    float value;
    const char* formatted;
};

std::string Formatted(const CFPSLMeasureUnit& m)
{
    std::string text;
    m.GetFormattedStr(text);
    return text;
}

void ExpectParses(Unit unit, const ParseCase& c)
{
    SCOPED_TRACE(std::string("text \"") + c.text + "\"");
    CFPSLMeasureUnit m(unit);
    float value = -1;
    ASSERT_EQ(m.Evaluate(std::string(c.text), value), 1);
    EXPECT_FLOAT_EQ(value, c.value);
    EXPECT_EQ(Formatted(m), c.formatted);
}

TEST(MeasureUnitParse, InchUnit)
{
    const ParseCase cases[] = {
        {"18", 18.0f, "1- 6"},
        {"18.5", 18.5f, "1- 6 1/2"},
        {".5", 0.5f, "0- 0 1/2"},
        {"1'6 1/2", 18.5f, "1- 6 1/2"},
        {"5-6 1/2", 66.5f, "5- 6 1/2"},
        {"5+6 1/2", 66.5f, "5- 6 1/2"},
        {"1 - 6", 18.0f, "1- 6"},
        {"  5 ' 6   1 / 2  ", 66.5f, "5- 6 1/2"},
        {"5'\t6\t\t1/2", 66.5f, "5- 6 1/2"},
        {"6 1/2", 6.5f, "0- 6 1/2"},
        {"6\t3/8", 6.375f, "0- 6 3/8"},
        {"1/2", 0.5f, "0- 0 1/2"},
        {"/2", 0.0f, "0- 0"},
        {"30 1/2", 30.5f, "2- 6 1/2"},
        {"5'", 60.0f, "5- 0"},
        {"1'6.5", 18.5f, "1- 6 1/2"},
        {"1'6.3", 18.3f, "1- 6 3/10"},
        {"-5", 5.0f, "0- 5"},
        {"2'0 1/16", 24.0625f, "2- 0 1/16"},
        {"1/32", 0.0f, "0- 0"},
        {"3/32", 0.09375f, "0- 0 9375/100000"},
        {"3/10", 0.3f, "0- 0 3/10"},
        {"1/3", 0.33333334f, "0- 0 33333334/100000000"},
    };
    for (const ParseCase& c : cases)
        ExpectParses(CFPSLMeasureUnit::Inch, c);
}

TEST(MeasureUnitParse, FeetUnit)
{
    const ParseCase cases[] = {
        {"2", 2.0f, "2- 0"},
        {"2.5", 2.5f, "2- 6"},
        {"2'6", 2.5f, "2- 6"},
        {"2'6 1/2", 2.0f + 6.5f / 12, "2- 6 1/2"},
        {"2'6.5", 2.0f + 6.5f / 12, "2- 6 1/2"},
        {"2 1/2", 2.0f + 0.5f / 12, "2- 0 1/2"},
        {"30 1/2", 30.0f + 0.5f / 12, "30- 0 1/2"},
        {"1/2", 0.5f / 12, "0- 0 1/2"},
        {"-6", 0.5f, "0- 6"},
    };
    for (const ParseCase& c : cases)
        ExpectParses(CFPSLMeasureUnit::Feet, c);
}

TEST(MeasureUnitParse, FailuresLeaveTheResultAlone)
{
    const struct {
        Unit unit;
        const char* text;
    } cases[] = {
        {CFPSLMeasureUnit::Inch, ""},          {CFPSLMeasureUnit::Inch, "  \t "},
        {CFPSLMeasureUnit::Inch, "1'12"},      {CFPSLMeasureUnit::Inch, "1'-6"},
        {CFPSLMeasureUnit::Inch, "1/2/3"},     {CFPSLMeasureUnit::Inch, "1.2.3"},
        {CFPSLMeasureUnit::Inch, "1'6 1/2 3"}, {CFPSLMeasureUnit::Inch, "1'6 3/2"},
        {CFPSLMeasureUnit::Inch, "1'61/2"},    {CFPSLMeasureUnit::Inch, "1/0"},
        {CFPSLMeasureUnit::Inch, "1/"},        {CFPSLMeasureUnit::Inch, "5.5'6"},
        {CFPSLMeasureUnit::Inch, "1/2'6"},     {CFPSLMeasureUnit::Inch, "1'6.5 1/2"},
        {CFPSLMeasureUnit::Inch, "1 2"},       {CFPSLMeasureUnit::Inch, "abc"},
        {CFPSLMeasureUnit::Inch, "6 1/2x"},    {CFPSLMeasureUnit::Inch, "-15"},
        {CFPSLMeasureUnit::Feet, "2 6"},       {CFPSLMeasureUnit::Feet, "2'12"},
        {CFPSLMeasureUnit::Feet, "2.5 1/2"},   {CFPSLMeasureUnit::Feet, "2'6 1/2 3"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string("text \"") + c.text + "\"");
        CFPSLMeasureUnit m(c.unit);
        float value = 7.0f;
        EXPECT_EQ(m.Evaluate(std::string(c.text), value), 0);
        EXPECT_EQ(value, 7.0f);
    }
}

TEST(MeasureUnitParse, FootFractionNeverEvaluates)
{
    CFPSLMeasureUnit m(CFPSLMeasureUnit::FootFraction);
    for (const char* text : {"6", "0'6", "1/2", "bad"}) {
        float value = 7.0f;
        EXPECT_EQ(m.Evaluate(std::string(text), value), 0) << text;
    }
}

TEST(MeasureUnitParse, CharacterForm)
{
    CFPSLMeasureUnit m(CFPSLMeasureUnit::Inch);
    double value = 3.0;
    EXPECT_EQ(m.Evaluate("1'6 1/2", value), 1);
    EXPECT_DOUBLE_EQ(value, 18.5);
    EXPECT_EQ(m.Evaluate("1'12", value), 0);
    EXPECT_DOUBLE_EQ(value, 18.5);
    EXPECT_EQ(m.Evaluate(static_cast<const char*>(nullptr), value), 0);
    EXPECT_DOUBLE_EQ(value, 18.5);
    // Text after an embedded NUL is not read.
    float f = 0;
    EXPECT_EQ(m.Evaluate(std::string("12\0junk", 7), f), 1);
    EXPECT_FLOAT_EQ(f, 12.0f);
}

TEST(MeasureUnitParse, CopiesKeepTheValueAndUnit)
{
    CFPSLMeasureUnit original(CFPSLMeasureUnit::Feet);
    float value = 0;
    ASSERT_EQ(original.Evaluate(std::string("3'4 3/4"), value), 1);
    CFPSLMeasureUnit copy(original);
    EXPECT_EQ(Formatted(copy), "3- 4 3/4");
    ASSERT_EQ(copy.Evaluate(std::string("1'6"), value), 1);
    EXPECT_FLOAT_EQ(value, 1.5f);  // still reads feet
}

// The held feet, inches and fraction, and what a new evaluation leaves in them.
TEST(MeasureUnitParse, HeldParts)
{
    CFPSLMeasureUnit inches(CFPSLMeasureUnit::Inch);
    float value = 0;
    ASSERT_EQ(inches.Evaluate(std::string("  30 1/2 "), value), 1);
    EXPECT_EQ(inches.m_strInput, "30 1/2");
    EXPECT_EQ(inches.m_fFeet, 2.0f);
    EXPECT_EQ(inches.m_fInches, 6.0f);
    EXPECT_EQ(inches.m_nNumerator, 1);
    EXPECT_EQ(inches.m_nDenominator, 2);

    ASSERT_EQ(inches.Evaluate(std::string("18"), value), 1);
    EXPECT_EQ(inches.m_fFeet, 1.0f);
    EXPECT_EQ(inches.m_fInches, 6.0f);
    EXPECT_EQ(inches.m_nNumerator, 0);
    EXPECT_EQ(inches.m_nDenominator, 16);
}

} // namespace
