// Dates and numbers as the oldest files stored them.
#include "RESharedHelpers.h"

#include <algorithm>
#include <cctype>
#include <chrono>
#include <cmath>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace {

// Shortest text that can hold a date (YYMMDD, or M/D/YY).
constexpr size_t kShortestDate = 6;
// Years below kShortYearLimit are written without their century, which is kShortYearBase.
constexpr int kShortYearLimit = 100;
constexpr int kShortYearBase = 1900;
// Range of years an automation date can hold.
constexpr int kFirstYear = 100;
constexpr int kLastYear = 9999;
// A stored value below this is a stored zero.
constexpr double kSmallestMbfValue = 1e-10;

// Decimal number at the front of `text` (leading blanks and a sign allowed), 0 when there is
// none; saturates instead of overflowing.
int LeadingNumber(std::string_view text) {
    size_t i = 0;
    while (i < text.size() && std::isspace(static_cast<unsigned char>(text[i])))
        ++i;
    bool negative = false;
    if (i < text.size() && (text[i] == '+' || text[i] == '-'))
        negative = text[i++] == '-';
    long value = 0;
    for (; i < text.size() && text[i] >= '0' && text[i] <= '9'; ++i)
        value = std::min(value * 10 + (text[i] - '0'), 1000000L);
    return static_cast<int>(negative ? -value : value);
}

// The non-empty pieces of `text` between any of the characters in `delimiters`.
std::vector<std::string_view> Split(std::string_view text, std::string_view delimiters) {
    std::vector<std::string_view> tokens;
    size_t start = text.find_first_not_of(delimiters);
    while (start != std::string_view::npos) {
        size_t end = text.find_first_of(delimiters, start);
        tokens.push_back(text.substr(start, end == std::string_view::npos ? end : end - start));
        start = end == std::string_view::npos ? end : text.find_first_not_of(delimiters, end);
    }
    return tokens;
}

// Days since 30 December 1899 of a calendar day; 0.0 for a day that does not exist.
double AutomationDate(int year, int month, int day) {
    using namespace std::chrono;
    if (year < kShortYearLimit)
        year += kShortYearBase;
    if (year < kFirstYear || year > kLastYear || month < 1 || month > 12 || day < 1 || day > 31)
        return 0.0;
    const year_month_day date{std::chrono::year{year}, std::chrono::month{static_cast<unsigned>(month)},
                              std::chrono::day{static_cast<unsigned>(day)}};
    if (!date.ok())
        return 0.0;
    constexpr year_month_day kEpoch{std::chrono::year{1899}, December, std::chrono::day{30}};
    return static_cast<double>((sys_days{date} - sys_days{kEpoch}).count());
}

}  // namespace

int ConvertOldDateToNew(const char* oldDate, double& date) {
    if (oldDate == nullptr)
        return 0;
    std::string text(oldDate);
    gStrTrimLeft(text.data());
    text.resize(std::strlen(text.c_str()));
    if (text.size() < kShortestDate)
        return 0;

    const std::string_view view(text);
    if (view.find_first_of("/-") == std::string_view::npos && std::strlen(oldDate) <= kShortestDate) {
        date = AutomationDate(LeadingNumber(view.substr(0, 2)), LeadingNumber(view.substr(2, 2)),
                              LeadingNumber(view.substr(4, 2)));
        return 1;
    }
    // Month, day and year; a text without all three names no day.
    const std::vector<std::string_view> parts = Split(view, "/-");
    if (parts.size() < 3) {
        date = 0.0;
        return 1;
    }
    date = AutomationDate(LeadingNumber(parts[2]), LeadingNumber(parts[0]), LeadingNumber(parts[1]));
    return 1;
}

double cvsmbf(const char* fourBytes) {
    if (fourBytes == nullptr)
        return 0.0;
    const auto* b = reinterpret_cast<const unsigned char*>(fourBytes);
    const int exponent = b[3];
    double value = std::ldexp(1.0, exponent - 129);
    if (b[2] > 0)
        value += std::ldexp(b[2], exponent - 136);
    if (b[1] > 0)
        value += std::ldexp(b[1], exponent - 144);
    if (b[0] > 0)
        value += std::ldexp(b[0], exponent - 152);
    return value < kSmallestMbfValue ? 0.0 : value;
}
