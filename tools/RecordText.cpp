#include "tools/RecordText.h"

#include "CFPSLMeasureUnit.h"

#include <cerrno>
#include <cinttypes>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace tool {
namespace {

ColumnForm FormOf(REFieldKind kind, uint32_t size) {
    const bool wordSize = size == 1 || size == 2 || size == 4 || size == 8;
    switch (kind) {
    case REFieldKind::kText: return ColumnForm::kText;
    case REFieldKind::kInteger: return wordSize ? ColumnForm::kInteger : ColumnForm::kHex;
    case REFieldKind::kReal: return size == 4 || size == 8 ? ColumnForm::kReal : ColumnForm::kHex;
    // Old generations store some dates as text.
    case REFieldKind::kDate: return size == 8 ? ColumnForm::kDate : ColumnForm::kText;
    case REFieldKind::kLength: return size == 4 || size == 8 ? ColumnForm::kLength : ColumnForm::kHex;
    case REFieldKind::kBytes:
    case REFieldKind::kRecord: return ColumnForm::kHex;
    }
    return ColumnForm::kHex;
}

void AddColumns(const REFieldTable& table, bool old, uint32_t base, const std::string& prefix,
                std::vector<Column>& columns) {
    for (const REField& field : table.fields) {
        if (old && field.rule == REFieldRule::kNewOnly)
            continue;
        const uint32_t offset = base + (old ? field.oldOffset : field.newOffset);
        const uint32_t size = old ? field.oldSize : field.newSize;
        for (uint32_t i = 0; i < field.count; ++i) {
            std::string name = prefix + field.name;
            if (field.count > 1)
                name += "[" + std::to_string(i) + "]";
            const uint32_t at = offset + i * size;
            if (field.kind == REFieldKind::kRecord && field.nested != nullptr) {
                AddColumns(*field.nested, old, at, name + ".", columns);
                continue;
            }
            columns.push_back(Column{name, FormOf(field.kind, size), at, size, old});
        }
    }
}

template <class T>
T Read(const std::vector<uint8_t>& record, uint32_t offset) {
    T value{};
    if (offset + sizeof value <= record.size())
        std::memcpy(&value, record.data() + offset, sizeof value);
    return value;
}

int64_t ReadInteger(const std::vector<uint8_t>& record, const Column& c) {
    switch (c.size) {
    case 1: return Read<int8_t>(record, c.offset);
    case 2: return Read<int16_t>(record, c.offset);
    case 4: return Read<int32_t>(record, c.offset);
    default: return Read<int64_t>(record, c.offset);
    }
}

double ReadReal(const std::vector<uint8_t>& record, const Column& c) {
    return c.size == 4 ? static_cast<double>(Read<float>(record, c.offset)) : Read<double>(record, c.offset);
}

std::string FormatReal(double value, int digits) {
    char text[40];
    std::snprintf(text, sizeof text, "%.*g", digits, value);
    return text;
}

Value RealValue(double value, int digits) {
    return Value{FormatReal(value, digits), std::isfinite(value)};
}

bool ParseNumber(const std::string& text, double& value) {
    if (text.empty())
        return false;
    char* end = nullptr;
    errno = 0;
    value = std::strtod(text.c_str(), &end);
    return end == text.c_str() + text.size() && errno != ERANGE;
}

// Days from 1970-01-01 of a civil date, and back (proleptic Gregorian).
int64_t DaysFromCivil(int64_t y, unsigned m, unsigned d) {
    y -= m <= 2;
    const int64_t era = (y >= 0 ? y : y - 399) / 400;
    const unsigned yoe = static_cast<unsigned>(y - era * 400);
    const unsigned doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
    const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + static_cast<int64_t>(doe) - 719468;
}

void CivilFromDays(int64_t z, int64_t& y, unsigned& m, unsigned& d) {
    z += 719468;
    const int64_t era = (z >= 0 ? z : z - 146096) / 146097;
    const unsigned doe = static_cast<unsigned>(z - era * 146097);
    const unsigned yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
    y = static_cast<int64_t>(yoe) + era * 400;
    const unsigned doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
    const unsigned mp = (5 * doy + 2) / 153;
    d = doy - (153 * mp + 2) / 5 + 1;
    m = mp < 10 ? mp + 3 : mp - 9;
    y += m <= 2;
}

// 1899-12-30, the automation epoch, in days from 1970-01-01.
const int64_t kEpoch = DaysFromCivil(1899, 12, 30);

int HexDigit(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

template <class T>
void Write(std::vector<uint8_t>& record, uint32_t offset, T value) {
    std::memcpy(record.data() + offset, &value, sizeof value);
}

}  // namespace

std::vector<Column> Columns(const REFieldTable* table, bool old, uint32_t recordLength) {
    std::vector<Column> columns;
    if (table == nullptr)
        columns.push_back(Column{"hex", ColumnForm::kHex, 0, recordLength, false});
    else
        AddColumns(*table, old, 0, "", columns);
    return columns;
}

std::vector<uint8_t> BlankRecord(uint32_t length, bool old) { return std::vector<uint8_t>(length, old ? ' ' : 0); }

std::string FormatDate(double days, bool exact) {
    if (days == 0.0)
        return "";
    if (!std::isfinite(days) || std::fabs(days) > 3e6)
        return FormatReal(days, 17);
    const double whole = std::floor(days);
    const long seconds = std::lround((days - whole) * 86400.0);
    int64_t y;
    unsigned m, d;
    CivilFromDays(static_cast<int64_t>(whole) + kEpoch, y, m, d);
    char text[64];
    if (seconds == 0)
        std::snprintf(text, sizeof text, "%04" PRId64 "-%02u-%02u", y, m, d);
    else
        std::snprintf(text, sizeof text, "%04" PRId64 "-%02u-%02u %02ld:%02ld:%02ld", y, m, d, seconds / 3600,
                      seconds / 60 % 60, seconds % 60);
    double back = 0;
    if (exact && (!ParseDate(text, back) || back != days))
        return FormatReal(days, 17);
    return text;
}

bool ParseDate(const std::string& text, double& days) {
    if (text.empty()) {
        days = 0.0;
        return true;
    }
    long long y = 0;
    unsigned m = 0, d = 0, hh = 0, mm = 0, ss = 0;
    int used = 0;
    const int n = std::sscanf(text.c_str(), "%lld-%u-%u%n %u:%u:%u%n", &y, &m, &d, &used, &hh, &mm, &ss, &used);
    if ((n == 3 || n == 6) && static_cast<size_t>(used) == text.size() && m >= 1 && m <= 12 && d >= 1 &&
        d <= 31 && hh < 24 && mm < 60 && ss < 60) {
        int64_t cy;
        unsigned cm, cd;
        const int64_t z = DaysFromCivil(y, m, d);
        CivilFromDays(z, cy, cm, cd);
        if (cy != y || cm != m || cd != d)
            return false;
        days = static_cast<double>(z - kEpoch) + (hh * 3600.0 + mm * 60.0 + ss) / 86400.0;
        return true;
    }
    return ParseNumber(text, days);
}

Value Decode(const Column& c, const std::vector<uint8_t>& record, ValueStyle style) {
    switch (c.form) {
    case ColumnForm::kText: {
        std::string text;
        for (uint32_t i = 0; i < c.size && c.offset + i < record.size(); ++i) {
            const char ch = static_cast<char>(record[c.offset + i]);
            if (ch == '\0')
                break;
            text += ch;
        }
        if (c.blankPadded)
            text.erase(text.find_last_not_of(' ') + 1);
        return Value{text, false};
    }
    case ColumnForm::kInteger: return Value{std::to_string(ReadInteger(record, c)), true};
    case ColumnForm::kReal:
        return RealValue(ReadReal(record, c), style == ValueStyle::kReadable ? 6 : (c.size == 4 ? 9 : 17));
    case ColumnForm::kDate: return Value{FormatDate(Read<double>(record, c.offset), style == ValueStyle::kExact), false};
    case ColumnForm::kLength: {
        const double inches = ReadReal(record, c);
        if (style == ValueStyle::kExact || !std::isfinite(inches))
            return RealValue(inches, c.size == 4 ? 9 : 17);
        CFPSLMeasureUnit unit(CFPSLMeasureUnit::Inch);
        const float value = static_cast<float>(inches);
        std::string text;
        unit.SetValue(CFPSLMeasureUnit::Inch, value);
        unit.GetFormattedStr(text);
        return Value{text, false};
    }
    case ColumnForm::kHex: break;
    }
    static const char kDigits[] = "0123456789abcdef";
    std::string hex;
    for (uint32_t i = 0; i < c.size; ++i) {
        const uint8_t byte = c.offset + i < record.size() ? record[c.offset + i] : 0;
        hex += kDigits[byte >> 4];
        hex += kDigits[byte & 15];
    }
    return Value{hex, false};
}

bool Encode(const Column& c, const std::string& text, std::vector<uint8_t>& record, std::string& error) {
    if (c.offset + c.size > record.size()) {
        error = "lies outside the record";
        return false;
    }
    uint8_t* at = record.data() + c.offset;
    switch (c.form) {
    case ColumnForm::kText:
        if (text.size() > c.size) {
            error = "text longer than " + std::to_string(c.size) + " characters";
            return false;
        }
        if (text.find('\0') != std::string::npos) {
            error = "text holds a NUL character";
            return false;
        }
        std::memset(at, c.blankPadded ? ' ' : 0, c.size);
        std::memcpy(at, text.data(), text.size());
        return true;
    case ColumnForm::kInteger: {
        char* end = nullptr;
        errno = 0;
        const long long value = std::strtoll(text.c_str(), &end, 10);
        const int bits = static_cast<int>(c.size * 8);
        const long long low = bits == 64 ? std::numeric_limits<long long>::min() : -(1LL << (bits - 1));
        const long long high = bits == 64 ? std::numeric_limits<long long>::max() : (1LL << (bits - 1)) - 1;
        if (text.empty() || end != text.c_str() + text.size() || errno == ERANGE || value < low || value > high) {
            error = "not a whole number of " + std::to_string(bits) + " bits: \"" + text + "\"";
            return false;
        }
        switch (c.size) {
        case 1: Write(record, c.offset, static_cast<int8_t>(value)); break;
        case 2: Write(record, c.offset, static_cast<int16_t>(value)); break;
        case 4: Write(record, c.offset, static_cast<int32_t>(value)); break;
        default: Write(record, c.offset, static_cast<int64_t>(value)); break;
        }
        return true;
    }
    case ColumnForm::kReal:
    case ColumnForm::kLength: {
        double value = 0;
        if (!ParseNumber(text, value)) {
            // A length may also be given in feet and inches ("5-6 1/2").
            CFPSLMeasureUnit unit(CFPSLMeasureUnit::Inch);
            if (c.form != ColumnForm::kLength || !unit.Evaluate(text.c_str(), value)) {
                error = "not a number: \"" + text + "\"";
                return false;
            }
        }
        if (c.size == 4)
            Write(record, c.offset, static_cast<float>(value));
        else
            Write(record, c.offset, value);
        return true;
    }
    case ColumnForm::kDate: {
        double days = 0;
        if (!ParseDate(text, days)) {
            error = "not a date (YYYY-MM-DD [HH:MM:SS], or days since 1899-12-30): \"" + text + "\"";
            return false;
        }
        Write(record, c.offset, days);
        return true;
    }
    case ColumnForm::kHex: break;
    }
    if (text.size() != 2 * size_t{c.size} && !text.empty()) {
        error = "expected " + std::to_string(2 * c.size) + " hex digits";
        return false;
    }
    for (size_t i = 0; i < text.size(); ++i) {
        if (HexDigit(text[i]) < 0) {
            error = "not a hex digit: '" + std::string(1, text[i]) + "'";
            return false;
        }
    }
    for (uint32_t i = 0; i < c.size; ++i)
        at[i] = text.empty() ? 0 : static_cast<uint8_t>(HexDigit(text[2 * i]) << 4 | HexDigit(text[2 * i + 1]));
    return true;
}

}  // namespace tool
