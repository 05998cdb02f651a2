// CNumericTest: numeric tests of entered text and the sixteenths column format.
#include "CNumericTest.h"

#include <climits>
#include <cmath>
#include <cstdlib>

#include "measure/MeasureSupport.h"

namespace {

constexpr char kMinus = '-';
constexpr char kPoint = '.';
constexpr float kSixteenth = 0.0625f;
constexpr int kSixteenths = 16;

void DropLeadingMinus(std::string& text)
{
    if (!text.empty() && text[0] == kMinus)
        text.erase(0, 1);
}

} // namespace

CNumericTest& CNumericTest::operator=(const CNumericTest&)
{
    return *this;
}

int CNumericTest::_IsIntegerEx(const std::string& text)
{
    for (const char c : text)
        if (c < '0' || c > '9')
            return 0;
    return 1;
}

int CNumericTest::IsInteger(std::string text)
{
    DropLeadingMinus(text);
    return _IsIntegerEx(text);
}

int CNumericTest::IsFloat(std::string text)
{
    DropLeadingMinus(text);
    const size_t point = text.find(kPoint);
    if (point == std::string::npos)
        return _IsIntegerEx(text);
    if (!_IsIntegerEx(text.substr(0, point)))
        return 0;
    return _IsIntegerEx(text.substr(point + 1));
}

int CNumericTest::CompareToStringwrtDouble(std::string a, std::string b)
{
    return std::atof(a.c_str()) == std::atof(b.c_str()) ? 0 : -1;
}

int CNumericTest::GetnDecimalDigit(const std::string& text)
{
    const size_t point = text.find(kPoint);
    const size_t digits = point == std::string::npos ? text.size() : text.size() - point - 1;
    return digits > static_cast<size_t>(INT_MAX) ? INT_MAX : static_cast<int>(digits);
}

std::string CNumericTest::GetNumeratorNDenominator(const float& value)
{
    const float whole = std::trunc(value);
    if (!measure_detail::FitsInt32(whole)) {
        // Such floats have no fraction; the whole number keeps the column form.
        return measure_detail::FormatText("%2.0f     ", static_cast<double>(whole));
    }
    const float remainder = value - whole;
    const int wholeInches = static_cast<int>(whole);
    if (remainder == 0)
        return measure_detail::FormatText("%2d     ", wholeInches);

    // |remainder| < 1, so the sixteenths fit. An even numerator is halved, the first time
    // even when it is 0 (a remainder below a sixteenth shows as 0/8).
    int numerator = static_cast<int>(remainder / kSixteenth);
    int denominator = kSixteenths;
    while (numerator % 2 == 0) {
        numerator /= 2;
        denominator /= 2;
        if (numerator == 0)
            break;
    }
    return measure_detail::FormatText("%2d%2d/%2d", wholeInches, numerator, denominator);
}
