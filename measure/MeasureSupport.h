// Small numeric and text helpers shared by the measure classes.
#pragma once

#include <cfloat>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <limits>
#include <string>

namespace measure_detail {

// double -> float without the undefined conversion of a finite value beyond the float range:
// such values become the infinity of their sign.
inline float NarrowToFloat(double value)
{
    if (value > FLT_MAX)
        return std::numeric_limits<float>::infinity();
    if (value < -FLT_MAX)
        return -std::numeric_limits<float>::infinity();
    return static_cast<float>(value);
}

// True when `value` truncated toward zero fits a 32-bit int (false for NaN and infinities).
inline bool FitsInt32(double value)
{
    return value > -2147483649.0 && value < 2147483648.0;
}

// printf into a std::string of whatever length the format needs.
#if defined(__GNUC__)
__attribute__((format(printf, 1, 2)))
#endif
inline std::string FormatText(const char* format, ...)
{
    va_list args;
    va_start(args, format);
    va_list copy;
    va_copy(copy, args);
    const int length = std::vsnprintf(nullptr, 0, format, copy);
    va_end(copy);
    std::string text;
    if (length > 0) {
        text.resize(static_cast<size_t>(length) + 1);
        std::vsnprintf(text.data(), text.size(), format, args);
        text.resize(static_cast<size_t>(length));
    }
    va_end(args);
    return text;
}

inline bool IsWhite(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\v' || c == '\f';
}

// Removes white space from both ends.
inline void TrimWhite(std::string& text)
{
    size_t end = text.size();
    while (end > 0 && IsWhite(text[end - 1]))
        --end;
    size_t begin = 0;
    while (begin < end && IsWhite(text[begin]))
        ++begin;
    text = text.substr(begin, end - begin);
}

} // namespace measure_detail
