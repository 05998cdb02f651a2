// Text comparisons and copies of the record-file classes' searches: caller texts against fixed
// record fields.
#pragma once

#include <cctype>
#include <cstddef>
#include <cstring>

namespace detail {

// 1 when `text` equals the field, read for at most `width` bytes, ignoring case (a null text
// reads as empty).
inline bool RETextEqualsNoCase(const char* text, const char* field, size_t width) {
    const size_t length = text != nullptr ? std::strlen(text) : 0;
    if (strnlen(field, width) != length)
        return false;
    for (size_t i = 0; i < length; ++i) {
        if (std::toupper(static_cast<unsigned char>(text[i])) != std::toupper(static_cast<unsigned char>(field[i])))
            return false;
    }
    return true;
}

// Text filter of a search: an empty (or null) wanted text matches any field, another one a field
// equal to it ignoring case.
inline bool RETextMatchesNoCase(const char* wanted, const char* field, size_t width) {
    return wanted == nullptr || wanted[0] == '\0' || RETextEqualsNoCase(wanted, field, width);
}

// Copies a text argument into a fixed field of `size` bytes, keeping its last byte for the
// terminator; null reads as empty. REQUIRES: the field was zeroed.
inline void REPutText(char* field, size_t size, const char* text) {
    if (text != nullptr)
        std::memcpy(field, text, strnlen(text, size - 1));
}

}  // namespace detail
