// Holding, giving back and printing a value: the split into feet, inches and a fraction, the
// four-decimal rounding, the whole-inch rule, the decimal form of odd fractions, round trips.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "CFPSLMeasureUnit.h"

namespace {

struct Split {
    float feet;
    float inches;
    int numerator;
    int denominator;
};

Split Break(float inches, int keepSixteenths = 0)
{
    const CFPSLMeasureUnit m(CFPSLMeasureUnit::Inch);
    Split s{-1, -1, -1, -1};
    EXPECT_EQ(m.BreakInchValue(inches, s.feet, s.inches, s.numerator, s.denominator, keepSixteenths), 1);
    return s;
}

std::string Formatted(const CFPSLMeasureUnit& m)
{
    std::string text;
    EXPECT_EQ(m.GetFormattedStr(text), 1);
    return text;
}

TEST(MeasureUnitValue, BreakInchValue)
{
    const struct {
        float value;
        int keep;
        Split expected;
    } cases[] = {
        {18.0f, 0, {1, 6, 0, 16}},
        {18.5f, 0, {1, 6, 1, 2}},
        {30.75f, 0, {2, 6, 3, 4}},
        {6.0625f, 0, {0, 6, 1, 16}},
        {6.5f, 1, {0, 6, 8, 16}},        // sixteenths kept unreduced
        {6.3f, 1, {0, 6, 4, 16}},        // truncated to the sixteenth below
        {6.3f, 0, {0, 6, 3, 10}},        // no whole sixteenths: tenths
        {6.7f, 0, {0, 6, 7, 10}},
        {6.2f, 0, {0, 6, 2, 10}},        // decimal form is not reduced
        {100.45f, 0, {8, 4, 45, 100}},
        {5.1234f, 0, {0, 5, 1234, 10000}},
        {5.9999f, 0, {0, 5, 9999, 10000}},
        {6.03125f, 0, {0, 6, 0, 8}},     // below a sixteenth: dropped
        {6.00004f, 0, {0, 6, 0, 16}},    // rounded to four decimals
        {6.99996f, 0, {0, 7, 0, 16}},
        {13.0f, 0, {1, 1, 0, 16}},       // leftover just under a whole inch counts as one
        {0.0f, 0, {0, 0, 0, 16}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.value);
        const Split s = Break(c.value, c.keep);
        EXPECT_EQ(s.feet, c.expected.feet);
        EXPECT_EQ(s.inches, c.expected.inches);
        EXPECT_EQ(s.numerator, c.expected.numerator);
        EXPECT_EQ(s.denominator, c.expected.denominator);
    }
}

TEST(MeasureUnitValue, WholeInchesNeverLoseAnInchToRounding)
{
    // Whole inches up to 1000 feet: 13, 25, ... divide by 12 inexactly.
    for (int inches = 0; inches <= 12000; ++inches) {
        const Split s = Break(static_cast<float>(inches));
        ASSERT_EQ(s.feet * 12 + s.inches, static_cast<float>(inches)) << inches;
        ASSERT_EQ(s.numerator, 0) << inches;
    }
}

TEST(MeasureUnitValue, SetGetAndFormat)
{
    CFPSLMeasureUnit m(CFPSLMeasureUnit::Inch);
    float value = -1;
    EXPECT_EQ(m.GetValue(CFPSLMeasureUnit::Inch, value), 1);  // nothing held yet
    EXPECT_EQ(value, 0.0f);

    EXPECT_EQ(m.SetValue(CFPSLMeasureUnit::Inch, 18.5f), 1);
    EXPECT_EQ(Formatted(m), "1- 6 1/2");
    EXPECT_EQ(m.SetValue(CFPSLMeasureUnit::Inch, 18.0f), 1);
    EXPECT_EQ(Formatted(m), "1- 6");
    EXPECT_EQ(m.SetValue(CFPSLMeasureUnit::Inch, 6.5f), 1);
    EXPECT_EQ(Formatted(m), "0- 6 1/2");

    EXPECT_EQ(m.SetValue(CFPSLMeasureUnit::Feet, 2.5625f), 1);
    EXPECT_EQ(Formatted(m), "2- 6 3/4");
    EXPECT_EQ(m.GetValue(CFPSLMeasureUnit::Inch, value), 1);
    EXPECT_FLOAT_EQ(value, 30.75f);
    EXPECT_EQ(m.GetValue(CFPSLMeasureUnit::Feet, value), 1);
    EXPECT_FLOAT_EQ(value, 2.5625f);
    EXPECT_EQ(m.GetValue(CFPSLMeasureUnit::FootFraction, value), 0);
    EXPECT_EQ(value, 0.0f);

    EXPECT_EQ(m.SetValue(CFPSLMeasureUnit::FootFraction, 0.5f), 1);
    EXPECT_EQ(Formatted(m), "0- 6");
    EXPECT_EQ(m.SetValue(CFPSLMeasureUnit::FootFraction, 1.0f), 0);
    EXPECT_EQ(Formatted(m), "0- 6");  // unchanged
    EXPECT_EQ(m.SetValue(static_cast<CFPSLMeasureUnit::DefaultUnit>(7), 3.0f), 0);
    EXPECT_EQ(Formatted(m), "0- 6");
}

// Every sixteenth and every tenth of an inch up to 50 feet prints and reads back as itself, in
// inches and in feet.
TEST(MeasureUnitValue, FormatReadsBack)
{
    for (const int step : {16, 10}) {
        for (int n = 0; n <= 600 * step; n += 3) {
            const float inches = static_cast<float>(n) / step;
            for (const auto unit : {CFPSLMeasureUnit::Inch, CFPSLMeasureUnit::Feet}) {
                CFPSLMeasureUnit writer(unit);
                const float given = unit == CFPSLMeasureUnit::Inch ? inches : inches / 12;
                ASSERT_EQ(writer.SetValue(unit, given), 1);
                const std::string text = Formatted(writer);
                CFPSLMeasureUnit reader(unit);
                float back = -1;
                ASSERT_EQ(reader.Evaluate(text, back), 1) << text;
                ASSERT_FLOAT_EQ(back, given) << text;
                ASSERT_EQ(Formatted(reader), text);
            }
        }
    }
}

bool IsAllowedDenominator(int denominator)
{
    for (const int allowed : {2, 4, 8, 16, 10, 100, 1000, 10000, 100000, 1000000, 10000000, 100000000, 1000000000})
        if (denominator == allowed)
            return true;
    return false;
}

// Any fraction k/n gives a power-of-two or power-of-ten denominator no larger than 10^9 and a
// numerator that stays within a millionth of the fraction.
TEST(MeasureUnitValue, DecimalFormIsBounded)
{
    for (int n = 17; n <= 2000; n += 7) {
        for (int k = 1; k < n; k += 5) {
            const std::string text = std::to_string(k) + "/" + std::to_string(n);
            CFPSLMeasureUnit m(CFPSLMeasureUnit::Inch);
            float value = 0;
            ASSERT_EQ(m.Evaluate(text, value), 1) << text;
            int numerator = 0;
            int denominator = 16;
            std::sscanf(Formatted(m).c_str(), "0- 0 %d/%d", &numerator, &denominator);
            ASSERT_TRUE(IsAllowedDenominator(denominator)) << text << " gave " << Formatted(m);
            ASSERT_LT(numerator, denominator) << text;
            if (static_cast<double>(k) / n >= 0.0625) {
                ASSERT_NEAR(static_cast<double>(numerator) / denominator, static_cast<double>(k) / n, 1e-6) << text;
            }
        }
    }
}

} // namespace
