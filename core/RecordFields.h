// Field copies between the old record layouts (texts blank-padded, no terminator) and the new
// ones (texts zero-terminated and zero-padded). Converters are one line a field over these.
#pragma once

#include "RESharedHelpers.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

// Old text to new: trailing blanks become NULs, the text is zero-terminated. REQUIRES: the new
// record was zeroed (the converters zero it first).
template <size_t NewWidth, size_t OldWidth>
inline void RETextToNew(char (&newText)[NewWidth], const char (&oldText)[OldWidth]) {
    static_assert(NewWidth > OldWidth, "a new text holds its old width and a terminator");
    gRE_memcpy(newText, oldText, OldWidth);
}

// New text to old: the text for its zero-terminated length, without terminator, cut at the old
// width. REQUIRES: the old record was blank-filled.
template <size_t OldWidth, size_t NewWidth>
inline void RETextToOld(char (&oldText)[OldWidth], const char (&newText)[NewWidth]) {
    std::memcpy(oldText, newText, std::min(strnlen(newText, NewWidth), OldWidth));
}

// The fill of an old record before its fields are copied in.
constexpr int kOldTextFill = ' ';
