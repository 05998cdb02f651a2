// A length in the notation of the steel trade: whole feet, whole inches and a fraction of an
// inch. Reads what a detailer types (`5'6 1/2`, `5-6 1/2`, `6 3/8`, `1/2`, `18.5`), gives the
// value back as a number in inches or feet, and prints it as feet, inches and fraction.
//
// The fraction is held as numerator over denominator: sixteenths reduced to lowest terms, or a
// power-of-ten denominator when the fraction is no whole number of sixteenths. Fractions below
// one sixteenth are dropped.
//
// Every operation reports failure by returning 0; after a failed Evaluate the held numbers are
// undefined.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tarsel_export.h"

class TARSEL_API CFPSLMeasureUnit {
public:
    // Unit in which a bare number is read and results are given.
    enum DefaultUnit : int32_t {
        Inch = 0,
        Feet = 1,
        // A value below one foot given in feet; accepted by SetValue only.
        FootFraction = 2,
    };

    CFPSLMeasureUnit(DefaultUnit unit = Inch);
    CFPSLMeasureUnit(const CFPSLMeasureUnit& other);
    CFPSLMeasureUnit& operator=(const CFPSLMeasureUnit& other);
    ~CFPSLMeasureUnit();

    // Parses `text` and gives its value in the object's unit; 1 on success, 0 on failure
    // (`result` is left alone when the text does not parse).
    int Evaluate(const std::string& text, float& result);
    // The same for a zero-terminated text; `result` changes only on success. A null text fails.
    int Evaluate(const char* text, double& result);

    // Holds `value` given in `unit`. FootFraction takes values below 1.0 only.
    int SetValue(const DefaultUnit& unit, const float& value);
    // The held value in `unit` (Inch or Feet); 0 with `result` 0 for any other unit.
    int GetValue(const DefaultUnit& unit, float& result) const;
    // "5- 6 1/2", or "5- 6" when there is no fraction. Always 1.
    int GetFormattedStr(std::string& text) const;

    // Splits a length in inches into feet, whole inches and a fraction, after rounding it to four
    // decimals. A leftover within 0.0001 of a whole inch counts as one more inch, without a carry
    // into the feet (so inches may reach 12). A non-zero `keepSixteenths` leaves the fraction in
    // unreduced sixteenths. Always 1.
    int BreakInchValue(const float& value, float& feet, float& inches, int& numerator, int& denominator,
                       const int& keepSixteenths) const;

    // The object's state, readable by callers: the marks, the "VOID" word, the last text read,
    // the unit, and the held value as feet, inches and numerator over denominator.
    char m_cFractionMark;
    char m_cFootMark;
    char m_cDashMark;
    char m_cPlusMark;
    std::string m_strVoid;
    std::string m_strInput;
    DefaultUnit m_eDefaultUnit;
    float m_fFeet;
    float m_fInches;
    int32_t m_nNumerator;
    int32_t m_nDenominator;
    std::string m_strSpare;

private:
    int _EvaluateString(const std::string& text);
    int _CheckString(const std::string& text) const;
    int _NormalizeString(std::string& text) const;
    int _Break(const std::string& text, std::vector<std::string>& parts) const;
    int _XtractValues(const std::vector<std::string>& parts, float& feet, float& inches, float& fraction) const;
    int _HasAllNumericChars(const std::string& text, float& value, int allowPoint) const;
    int _IsFeet(const std::string& text, float& value) const;
    int _IsFractionalInch(const std::string& text, float& value) const;
    void _GetNumeratorNDenominator(const float& fraction, int& numerator, int& denominator,
                                   const int& keepSixteenths) const;
    void _Reset();

    bool _IsVoid(const std::string& part) const { return part == m_strVoid; }
    // The held value in inches, or in feet, computed in double precision.
    double _InchValue() const;
    double _FeetValue() const;
};
