// Tests of entered text (integer, decimal number, equal numbers, digits after the point) and
// the fixed-width column form of a length in inches and sixteenths. Holds no data.
#pragma once

#include <string>

#include "tarsel_export.h"

class TARSEL_API CNumericTest {
public:
    CNumericTest() = default;
    CNumericTest(const CNumericTest&) = default;
    CNumericTest& operator=(const CNumericTest& other);

    // 1 when the text, after one leading '-', is digits only (the empty text passes).
    static int IsInteger(std::string text);
    // 1 when the text, after one leading '-', is digits or digits '.' digits (either side may
    // be empty). No sign '+', exponent or blank.
    static int IsFloat(std::string text);
    // 0 when both texts read as decimal numbers (as atof reads them) are equal, else -1.
    static int CompareToStringwrtDouble(std::string a, std::string b);
    // Characters after the first '.'; a text without a point gives its whole length.
    static int GetnDecimalDigit(const std::string& text);
    // Whole inches and a fraction in sixteenths in seven columns: " 5 1/ 2", " 5     ",
    // " 5 0/ 8" (remainder below a sixteenth), "-2-1/ 2". Values beyond the int range, and NaN,
    // print as the whole number alone.
    static std::string GetNumeratorNDenominator(const float& value);

private:
    // 1 when every character is a digit (no sign).
    static int _IsIntegerEx(const std::string& text);
};
