// Fixed-width text fields: blank-padded old fields to NUL-padded new ones, trimming and
// justifying in place.
#include "RESharedHelpers.h"

#include <cstring>

namespace {

// gRE_TrimLeft drops bytes at or below this value and at or above kHighByte (as signed chars).
constexpr signed char kLowestKeptByte = 21;
constexpr signed char kHighByte = 127;

bool IsDroppedByTrimLeft(char c) {
    const auto value = static_cast<signed char>(c);
    return value < kLowestKeptByte || value >= kHighByte;
}

}  // namespace

void gRE_memcpy(char* dst, const char* src, unsigned n) {
    if (dst == nullptr)
        return;
    std::memset(dst, 0, static_cast<size_t>(n) + 1);
    if (src == nullptr)
        return;
    bool inTrailingBlanks = true;
    for (unsigned i = n; i > 0; --i) {
        const char c = src[i - 1];
        if (inTrailingBlanks && c == ' ')
            continue;
        inTrailingBlanks = false;
        dst[i - 1] = c;
    }
}

void gRE_TrimLeft(char* field, unsigned n) {
    if (field == nullptr || n == 0)
        return;
    unsigned skipped = 0;
    while (skipped < n && IsDroppedByTrimLeft(field[skipped]))
        ++skipped;
    if (skipped == n - 1) {
        // The last byte is cleared with the rest, whatever it holds.
        std::memset(field, 0, n);
        return;
    }
    const unsigned kept = n - skipped;
    std::memmove(field, field + skipped, kept);
    std::memset(field + kept, 0, skipped);
}

char* gStrTrimLeft(char* text) {
    if (text == nullptr || text[0] != ' ')
        return text;
    const size_t length = std::strlen(text);
    size_t blanks = 0;
    while (text[blanks] == ' ')
        ++blanks;
    std::memmove(text, text + blanks, length - blanks);
    std::memset(text + length - blanks, 0, blanks);
    return text;
}

char* gStrTrimRight(char* text) {
    if (text == nullptr)
        return text;
    for (size_t i = std::strlen(text); i > 0 && text[i - 1] == ' '; --i)
        text[i - 1] = '\0';
    return text;
}

char* gShiftRightNullCharsToLeft(char* field, int n) {
    if (field == nullptr || n <= 0)
        return field;
    int last = 0;
    for (int i = n - 1; i >= 0; --i) {
        if (field[i] != '\0') {
            last = i;
            break;
        }
    }
    const int shift = n - 1 - last;
    if (shift <= 0)
        return field;
    for (int i = last; i >= 0; --i) {
        field[i + shift] = field[i];
        field[i] = '\0';
    }
    return field;
}

char* gShiftLeftNullCharsToRight(char* field, int n) {
    if (field == nullptr || n <= 0)
        return field;
    int first = 0;
    for (int i = 0; i < n; ++i) {
        if (field[i] != '\0') {
            first = i;
            break;
        }
    }
    if (first < 1)
        return field;
    for (int i = first; i < n; ++i) {
        field[i - first] = field[i];
        field[i] = '\0';
    }
    return field;
}

int CompareStructure(const char* a, const char* b, int n) {
    if (n <= 0)
        return 1;
    if (a == nullptr || b == nullptr)
        return a == b ? 1 : 0;
    return std::memcmp(a, b, static_cast<size_t>(n)) == 0 ? 1 : 0;
}
