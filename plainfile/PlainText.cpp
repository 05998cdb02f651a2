#include "plainfile/PlainText.h"

#include <cctype>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>

namespace plainfile {

namespace {

bool IsWhite(char c) {
    return std::isspace(static_cast<unsigned char>(c)) != 0;
}

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

std::size_t SkipWhite(std::string_view text, std::size_t pos) {
    while (pos < text.size() && IsWhite(text[pos]))
        ++pos;
    return pos;
}

std::size_t SkipDigits(std::string_view text, std::size_t pos) {
    while (pos < text.size() && IsDigit(text[pos]))
        ++pos;
    return pos;
}

// Stores a number only into a field of its own width, so a wrong table entry cannot overrun.
template <class T>
void Store(unsigned char* field, std::size_t width, T value) {
    if (width == sizeof(value))
        std::memcpy(field, &value, sizeof(value));
}

}  // namespace

std::vector<std::string_view> SplitLines(std::string_view text) {
    std::vector<std::string_view> lines;
    std::size_t start = 0;
    while (start <= text.size()) {
        std::size_t end = text.find('\n', start);
        if (end == std::string_view::npos)
            end = text.size();
        if (end > start)
            lines.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    return lines;
}

std::string_view TrimRight(std::string_view text) {
    std::size_t end = text.size();
    while (end > 0 && IsWhite(text[end - 1]))
        --end;
    return text.substr(0, end);
}

bool EqualsIgnoreCase(std::string_view a, std::string_view b) {
    if (a.size() != b.size())
        return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (std::tolower(static_cast<unsigned char>(a[i])) != std::tolower(static_cast<unsigned char>(b[i])))
            return false;
    }
    return true;
}

std::vector<std::string_view> SplitColumns(std::string_view line) {
    std::vector<std::string_view> columns;
    std::size_t start = 0;
    while (start < line.size()) {
        std::size_t end = line.find(',', start);
        if (end == std::string_view::npos)
            end = line.size();
        if (end > start)
            columns.push_back(line.substr(start, end - start));
        start = end + 1;
    }
    return columns;
}

int32_t ReadInteger(std::string_view column) {
    std::size_t pos = SkipWhite(column, 0);
    bool negative = false;
    if (pos < column.size() && (column[pos] == '+' || column[pos] == '-'))
        negative = column[pos++] == '-';
    constexpr int64_t kLimit = int64_t{std::numeric_limits<int32_t>::max()} + 1;
    int64_t value = 0;
    for (; pos < column.size() && IsDigit(column[pos]); ++pos) {
        value = value * 10 + (column[pos] - '0');
        if (value > kLimit)
            value = kLimit;
    }
    if (negative)
        return static_cast<int32_t>(-value);
    return static_cast<int32_t>(value == kLimit ? kLimit - 1 : value);
}

double ReadReal(std::string_view column) {
    std::size_t pos = SkipWhite(column, 0);
    bool negative = false;
    if (pos < column.size() && (column[pos] == '+' || column[pos] == '-'))
        negative = column[pos++] == '-';
    // Take the longest prefix of the form digits[.digits][e[sign]digits].
    const std::size_t start = pos;
    std::size_t end = SkipDigits(column, pos);
    std::size_t digits = end - start;
    if (end < column.size() && column[end] == '.') {
        std::size_t fractionEnd = SkipDigits(column, end + 1);
        digits += fractionEnd - (end + 1);
        end = fractionEnd;
    }
    if (digits == 0)
        return 0.0;
    bool negativeExponent = false;
    if (end < column.size() && (column[end] == 'e' || column[end] == 'E')) {
        std::size_t exponent = end + 1;
        if (exponent < column.size() && (column[exponent] == '+' || column[exponent] == '-'))
            negativeExponent = column[exponent++] == '-';
        if (exponent < column.size() && IsDigit(column[exponent]))
            end = SkipDigits(column, exponent);
        else
            negativeExponent = false;
    }
    double value = 0.0;
    auto result = std::from_chars(column.data() + start, column.data() + end, value, std::chars_format::general);
    if (result.ec == std::errc::result_out_of_range)
        value = negativeExponent ? 0.0 : HUGE_VAL;
    return negative ? -value : value;
}

void CopyFixedText(char* field, std::string_view column, std::size_t chars) {
    std::memset(field, 0, chars + 1);
    std::string_view text = column.substr(0, chars);
    while (!text.empty() && text.back() == ' ')
        text.remove_suffix(1);
    std::memcpy(field, text.data(), text.size());
}

void FillRecord(void* record, std::size_t recordSize, const ColumnTable& table,
                std::span<const std::string_view> columns) {
    auto* bytes = static_cast<unsigned char*>(record);
    for (std::size_t i = 0; i < kMaxColumns && table[i].kind != ColumnKind::None; ++i) {
        const ColumnSpec& spec = table[i];
        if (i >= columns.size())
            break;
        if (spec.width == 0 || std::size_t{spec.offset} + spec.width > recordSize)
            continue;
        unsigned char* field = bytes + spec.offset;
        std::string_view column = columns[i];
        switch (spec.kind) {
        case ColumnKind::Integer:
            Store(field, spec.width, ReadInteger(column));
            break;
        case ColumnKind::Short:
            Store(field, spec.width, static_cast<int16_t>(ReadInteger(column)));
            break;
        case ColumnKind::Real:
            Store(field, spec.width, ReadReal(column));
            break;
        case ColumnKind::IntegerAsReal:
            Store(field, spec.width, static_cast<double>(ReadInteger(column)));
            break;
        case ColumnKind::Text:
            CopyFixedText(reinterpret_cast<char*>(field), column, spec.width - 1u);
            break;
        case ColumnKind::None:
            break;
        }
    }
}

}  // namespace plainfile
