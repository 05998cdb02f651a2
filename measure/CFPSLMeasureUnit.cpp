// CFPSLMeasureUnit: construction, the value in each unit, printing, and the split of a length in
// inches into feet, inches and a fraction. The text parser is in CFPSLMeasureUnitParse.cpp.
#include "CFPSLMeasureUnit.h"

#include <cmath>
#include <cstdlib>

#include "measure/MeasureSupport.h"

using measure_detail::FormatText;
using measure_detail::NarrowToFloat;

namespace {

constexpr int kSixteenths = 16;
constexpr double kSixteenth = 0.0625;
constexpr double kInchesPerFoot = 12.0;
// A leftover this close to 1 counts as a whole inch.
constexpr double kWholeInchLow = 0.9999;
constexpr double kWholeInchHigh = 1.0001;
// Largest power of ten the decimal form of a fraction may take as its denominator. At 10^9 the
// product of any float fraction of at least 1/16 is a whole float, so the search always ends by
// then; should it not, the result is the fraction truncated to nine decimals over 10^9.
constexpr int kMaxDecimalDenominator = 1000000000;

} // namespace

CFPSLMeasureUnit::CFPSLMeasureUnit(DefaultUnit unit)
    : m_cFractionMark('/'), m_cFootMark('\''), m_cDashMark('-'), m_cPlusMark('+'), m_strVoid("VOID"),
      m_eDefaultUnit(unit), m_fFeet(0), m_fInches(0), m_nNumerator(0), m_nDenominator(0)
{
    _Reset();
}

CFPSLMeasureUnit::CFPSLMeasureUnit(const CFPSLMeasureUnit& other) = default;
CFPSLMeasureUnit& CFPSLMeasureUnit::operator=(const CFPSLMeasureUnit& other) = default;
CFPSLMeasureUnit::~CFPSLMeasureUnit() = default;

void CFPSLMeasureUnit::_Reset()
{
    m_fFeet = 0;
    m_fInches = 0;
    m_nNumerator = 0;
    m_nDenominator = 0;
    m_strSpare.clear();
    m_strInput.clear();
}

double CFPSLMeasureUnit::_InchValue() const
{
    // A reset object holds 0/0: no fraction.
    const double fraction = m_nDenominator != 0 ? static_cast<double>(m_nNumerator) / m_nDenominator : 0.0;
    return static_cast<double>(m_fFeet) * kInchesPerFoot + m_fInches + fraction;
}

double CFPSLMeasureUnit::_FeetValue() const
{
    const double fraction = m_nDenominator != 0 ? static_cast<double>(m_nNumerator) / m_nDenominator : 0.0;
    return m_fInches / kInchesPerFoot + m_fFeet + fraction / kInchesPerFoot;
}

int CFPSLMeasureUnit::Evaluate(const std::string& text, float& result)
{
    _Reset();
    // Only what precedes an embedded NUL counts, as with a C string.
    m_strInput = text.c_str();
    measure_detail::TrimWhite(m_strInput);
    if (m_strInput.empty())
        return 0;
    if (!_EvaluateString(m_strInput))
        return 0;

    result = 0;
    switch (m_eDefaultUnit) {
    case Inch:
        result = NarrowToFloat(_InchValue());
        return 1;
    case Feet:
        result = NarrowToFloat(_FeetValue());
        return 1;
    default:
        return 0;
    }
}

int CFPSLMeasureUnit::Evaluate(const char* text, double& result)
{
    if (text == nullptr)
        return 0;
    float value = NarrowToFloat(result);
    if (!Evaluate(std::string(text), value))
        return 0;
    result = value;
    return 1;
}

int CFPSLMeasureUnit::SetValue(const DefaultUnit& unit, const float& value)
{
    float inches = 0;
    switch (unit) {
    case Inch:
        inches = value;
        break;
    case Feet:
        inches = NarrowToFloat(value * kInchesPerFoot);
        break;
    case FootFraction:
        if (value >= 1.0f)
            return 0;
        inches = NarrowToFloat(value * kInchesPerFoot);
        break;
    default:
        return 0;
    }
    BreakInchValue(inches, m_fFeet, m_fInches, m_nNumerator, m_nDenominator, 0);
    return 1;
}

int CFPSLMeasureUnit::GetValue(const DefaultUnit& unit, float& result) const
{
    result = 0;
    switch (unit) {
    case Inch:
        result = NarrowToFloat(_InchValue());
        return 1;
    case Feet:
        result = NarrowToFloat(_FeetValue());
        return 1;
    default:
        return 0;
    }
}

int CFPSLMeasureUnit::GetFormattedStr(std::string& text) const
{
    if (m_nNumerator != 0)
        text = FormatText("%.0f- %.0f %d/%d", static_cast<double>(m_fFeet), static_cast<double>(m_fInches),
                          m_nNumerator, m_nDenominator);
    else
        text = FormatText("%.0f- %.0f", static_cast<double>(m_fFeet), static_cast<double>(m_fInches));
    return 1;
}

int CFPSLMeasureUnit::BreakInchValue(const float& value, float& feet, float& inches, int& numerator,
                                     int& denominator, const int& keepSixteenths) const
{
    feet = 0;
    inches = 0;
    numerator = 0;
    denominator = 0;

    // Printing and reading back rounds to four decimals; the decimal value read back is kept in
    // double so that tenths and hundredths split cleanly.
    const std::string printed = FormatText("%14.4f", static_cast<double>(value));
    const double rounded = std::strtod(printed.c_str(), nullptr);

    double wholeFeet = 0;
    const double inchPart = std::modf(rounded / kInchesPerFoot, &wholeFeet) * kInchesPerFoot;
    double wholeInches = 0;
    const float leftover = NarrowToFloat(std::modf(inchPart, &wholeInches));
    feet = NarrowToFloat(wholeFeet);
    inches = NarrowToFloat(wholeInches);

    if (leftover > kWholeInchLow && leftover < kWholeInchHigh) {
        // Deliberately no carry into the feet: the inches may read 12.
        inches += 1;
        numerator = 0;
        denominator = kSixteenths;
        return 1;
    }
    _GetNumeratorNDenominator(leftover, numerator, denominator, keepSixteenths);
    return 1;
}

void CFPSLMeasureUnit::_GetNumeratorNDenominator(const float& fraction, int& numerator, int& denominator,
                                                 const int& keepSixteenths) const
{
    // Whole values have no fraction to give; neither has NaN, nor (never produced by a split) a
    // value of -1 or below.
    if (fraction == 0 || !(std::fabs(fraction) < 1.0f)) {
        numerator = 0;
        denominator = kSixteenths;
        return;
    }
    // |fraction| < 1 from here: every numerator below fits an int.
    numerator = static_cast<int>(fraction / kSixteenth);
    denominator = kSixteenths;
    if (keepSixteenths != 0)
        return;

    // An even numerator, 0 included, is halved; below a sixteenth that leaves 0 over 8.
    for (;;) {
        if (numerator % 2 == 0) {
            numerator /= 2;
            denominator /= 2;
            if (numerator == 0)
                return;
            continue;
        }
        if (static_cast<double>(numerator) / denominator == static_cast<double>(fraction))
            return;
        // No whole number of sixteenths: give the fraction in tenths, hundredths, ... instead,
        // until the product rounded to single precision is a whole number.
        denominator = 1;
        do {
            denominator *= 10;
            const float product = NarrowToFloat(static_cast<double>(denominator) * fraction);
            numerator = static_cast<int>(product);
            if (numerator == product)
                return;
        } while (denominator < kMaxDecimalDenominator);
        return;
    }
}
