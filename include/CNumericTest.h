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
    int IsInteger(std::string text) const;
    // 1 when the text, after one leading '-', is digits or digits '.' digits (either side may
    // be empty). No sign '+', exponent or blank.
    int IsFloat(std::string text) const;
    // 0 when both texts read as decimal numbers (as atof reads them) are equal, else -1.
    int CompareToStringwrtDouble(std::string a, std::string b) const;
    // Characters after the first '.'; a text without a point gives its whole length.
    int GetnDecimalDigit(const std::string& text) const;
    // Whole inches and a fraction in sixteenths in seven columns: " 5 1/ 2", " 5     ",
    // " 5 0/ 8" (remainder below a sixteenth), "-2-1/ 2". Values beyond the int range, and NaN,
    // print as the whole number alone.
    std::string GetNumeratorNDenominator(const float& value) const;

private:
    // 1 when every character is a digit (no sign).
    int _IsIntegerEx(const std::string& text) const;
};
