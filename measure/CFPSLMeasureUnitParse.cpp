// CFPSLMeasureUnit: reading a typed length. The text is checked, normalised, broken into the
// three slots feet, inches and fraction (an absent slot holds "VOID"), and the slots are read
// into the object's feet, inches and fraction.
#include "CFPSLMeasureUnit.h"

#include <cstdlib>

#include "measure/MeasureSupport.h"

using measure_detail::NarrowToFloat;

namespace {

enum Slot { FeetSlot = 0, InchSlot = 1, FractionSlot = 2, SlotCount = 3 };

// Stands for a slot that was not given while the slots are read.
constexpr float kNotGiven = -100.0f;
constexpr float kInchesPerFoot = 12.0f;
constexpr char kBlank = ' ';
constexpr char kTab = '\t';

} // namespace

int CFPSLMeasureUnit::_EvaluateString(const std::string& text)
{
    std::string work = text;
    float number = 0;
    if ((m_eDefaultUnit == Inch || m_eDefaultUnit == Feet) && _HasAllNumericChars(work, number, 1)) {
        const float inches = m_eDefaultUnit == Inch ? number : NarrowToFloat(number * 12.0);
        BreakInchValue(inches, m_fFeet, m_fInches, m_nNumerator, m_nDenominator, 0);
        return 1;
    }

    std::vector<std::string> parts;
    float fraction = 0;
    if (!_CheckString(work) || !_NormalizeString(work) || !_Break(work, parts) ||
        !_XtractValues(parts, m_fFeet, m_fInches, fraction))
        return 0;
    _GetNumeratorNDenominator(fraction, m_nNumerator, m_nDenominator, 0);
    return 1;
}

int CFPSLMeasureUnit::_CheckString(const std::string& text) const
{
    int footMarks = 0;
    int fractionMarks = 0;
    int points = 0;
    for (const char c : text) {
        if (c == m_cFootMark || c == m_cDashMark || c == m_cPlusMark)
            ++footMarks;
        else if (c == m_cFractionMark)
            ++fractionMarks;
        else if (c == '.')
            ++points;
        if (footMarks > 1 || fractionMarks > 1 || points > 1)
            return 0;
    }
    return 1;
}

int CFPSLMeasureUnit::_NormalizeString(std::string& text) const
{
    measure_detail::TrimWhite(text);
    if (text.empty())
        return 0;

    // Runs of blanks and tabs become one blank.
    std::string single(1, text[0]);
    for (size_t i = 1; i < text.size(); ++i) {
        const char c = text[i] == kTab ? kBlank : text[i];
        const char before = text[i - 1] == kTab ? kBlank : text[i - 1];
        if (c == kBlank && before == kBlank)
            continue;
        single += c;
    }
    if (single.empty())
        return 0;

    // No blank next to a fraction or foot mark.
    const auto isMark = [this](char c) {
        return c == m_cFractionMark || c == m_cFootMark || c == m_cDashMark || c == m_cPlusMark;
    };
    std::string tight(1, single[0]);
    for (size_t i = 1; i < single.size(); ++i) {
        if (single[i] == kBlank) {
            const bool markAfter = i + 1 < single.size() && isMark(single[i + 1]);
            if (markAfter || isMark(single[i - 1]))
                continue;
        }
        tight += single[i];
    }
    if (tight.empty())
        return 0;
    text = tight;
    return 1;
}

int CFPSLMeasureUnit::_Break(const std::string& text, std::vector<std::string>& parts) const
{
    parts.clear();
    size_t mark = text.find(m_cFootMark);
    if (mark == std::string::npos)
        mark = text.find(m_cDashMark);
    if (mark == std::string::npos)
        mark = text.find(m_cPlusMark);

    std::string rest = text;
    if (mark != std::string::npos) {
        const std::string feet = text.substr(0, mark);
        float value = 0;
        if (!_HasAllNumericChars(feet, value, 0))
            return 0;
        parts.push_back(feet);
        rest = text.substr(mark + 1);
    } else {
        parts.push_back(m_strVoid);
    }

    const size_t blank = rest.find(kBlank);
    if (blank == std::string::npos) {
        float value = 0;
        if (_IsFractionalInch(rest, value)) {
            parts.push_back(m_strVoid);
            parts.push_back(rest);
        } else {
            parts.push_back(rest.empty() ? m_strVoid : rest);
        }
    } else {
        if (rest.find(kBlank, blank + 1) != std::string::npos)
            return 0;
        const std::string after = rest.substr(blank + 1);
        parts.push_back(rest.substr(0, blank));
        parts.push_back(after.empty() ? m_strVoid : after);
    }
    while (parts.size() < SlotCount)
        parts.push_back(m_strVoid);
    return 1;
}

int CFPSLMeasureUnit::_XtractValues(const std::vector<std::string>& parts, float& feet, float& inches,
                                    float& fraction) const
{
    feet = 0;
    inches = 0;
    fraction = 0;
    if (parts.size() < SlotCount)
        return 0;
    const std::string& feetText = parts[FeetSlot];
    const std::string& inchText = parts[InchSlot];
    const std::string& fractionText = parts[FractionSlot];

    if (_IsFractionalInch(fractionText, fraction)) {
        if (fraction >= 1.0f)
            return 0;
    } else if (_IsVoid(fractionText)) {
        fraction = kNotGiven;
    } else {
        return 0;
    }

    bool readFeet = true;
    float value = 0;
    const int allowPoint = _IsVoid(fractionText) ? 1 : 0;
    if (!_HasAllNumericChars(inchText, value, allowPoint)) {
        if (!_IsVoid(inchText))
            return 0;
        inches = 0;
    } else if (m_eDefaultUnit != Inch && _IsVoid(feetText)) {
        // A bare number before a fraction is feet in every unit but Inch.
        feet = value;
        inches = kNotGiven;
    } else {
        if (value >= kInchesPerFoot && !(m_eDefaultUnit == Inch && _IsVoid(feetText)))
            return 0;
        float brokenFeet = 0;
        float wholeInches = 0;
        int numerator = 0;
        int denominator = 0;
        BreakInchValue(value, brokenFeet, wholeInches, numerator, denominator, 0);
        inches = wholeInches;
        if (fraction == kNotGiven)
            fraction = denominator != 0 ? NarrowToFloat(static_cast<double>(numerator) / denominator) : 0.0f;
        if (m_eDefaultUnit == Inch && _IsVoid(feetText)) {
            // Inches without feet may run past a foot: the split gives the feet.
            feet = brokenFeet;
            readFeet = false;
        }
    }

    if (readFeet) {
        if (_IsFeet(feetText, value))
            feet = value;
        else if (!_IsVoid(feetText))
            return 0;
    }

    if (feet == kNotGiven)
        feet = 0;
    if (inches == kNotGiven)
        inches = 0;
    if (fraction == kNotGiven)
        fraction = 0;
    return 1;
}

int CFPSLMeasureUnit::_HasAllNumericChars(const std::string& text, float& value, int allowPoint) const
{
    value = 0;
    bool pointSeen = false;
    for (const char c : text) {
        if (c >= '0' && c <= '9')
            continue;
        if (c == '.' && allowPoint != 0 && !pointSeen) {
            pointSeen = true;
            continue;
        }
        return 0;
    }
    value = NarrowToFloat(std::strtod(text.c_str(), nullptr));
    return 1;
}

int CFPSLMeasureUnit::_IsFeet(const std::string& text, float& value) const
{
    return _HasAllNumericChars(text, value, 1);
}

int CFPSLMeasureUnit::_IsFractionalInch(const std::string& text, float& value) const
{
    value = 0;
    const size_t slash = text.find(m_cFractionMark);
    if (slash == std::string::npos || slash + 1 == text.size())
        return 0;
    float numerator = 0;
    float denominator = 0;
    if (!_HasAllNumericChars(text.substr(0, slash), numerator, 0) ||
        !_HasAllNumericChars(text.substr(slash + 1), denominator, 0) || denominator == 0)
        return 0;
    value = NarrowToFloat(static_cast<double>(numerator) / denominator);
    return 1;
}
