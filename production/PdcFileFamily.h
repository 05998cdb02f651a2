// What the production data-collection files tell the record-file machinery alike: positional
// reads on the current key, old layouts that are read but never written, keys that allow
// duplicates, and the field converters of their old layouts (marks, dates stored as text,
// trimmed texts and texts joined from several old fields).
#pragma once

#include "RESharedHelpers.h"
#include "core/RecordFieldTable.h"
#include "core/RecordFileSpec.h"
#include "production/PdcMarkFields.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstring>
#include <span>
#include <string>
#include <type_traits>

// Key segments of keys that allow duplicates.
constexpr uint16_t kPdcDupInnerSegment = kKeyInnerSegment | kKeyDuplicates;
constexpr uint16_t kPdcDupLastSegment = kKeyLastSegment | kKeyDuplicates;

// The traits every production file derives from.
struct PdcFileTraits {
    // First, last, next and previous read on whichever key the last search selected.
    static constexpr void Customize(RERecordFileSpec& spec) { REReadOnCurrentKey(spec); }
};

// The field table of a production record: converted toward the current layout on every read,
// never written toward the old one.
constexpr REFieldTable PdcFieldTable(std::span<const REField> fields, size_t newSize, size_t oldSize) {
    return REFieldTable{fields, static_cast<uint32_t>(newSize), static_cast<uint32_t>(oldSize), nullptr, true};
}

// An old date of 7 characters to an automation date; a date too short to read stays 0.
inline int PdcOldDateToNew(const void* oldDate, void* newDate) {
    char text[8] = {};
    std::memcpy(text, oldDate, 7);
    double date = 0.0;
    ConvertOldDateToNew(text, date);
    std::memcpy(newDate, &date, sizeof date);
    return 1;
}

// An old text copied and trimmed of blanks on both sides.
template <size_t OldWidth, size_t NewWidth>
int PdcTrimmedText(const void* oldText, void* newText) {
    char text[OldWidth + 1] = {};
    std::memcpy(text, oldText, OldWidth);
    gStrTrimRight(gStrTrimLeft(text));
    std::memcpy(newText, text, std::min(OldWidth, NewWidth));
    return 1;
}

// Consecutive old text fields joined into one: each part trimmed on both sides, the parts put
// together with nothing between them, cut to what the new field holds with its terminator.
template <size_t Parts, size_t PartWidth, size_t NewWidth>
int PdcJoinedText(const void* oldParts, void* newText) {
    char joined[NewWidth] = {};
    size_t used = 0;
    for (size_t p = 0; p < Parts; ++p) {
        char part[PartWidth + 1] = {};
        std::memcpy(part, static_cast<const char*>(oldParts) + p * PartWidth, PartWidth);
        gStrTrimRight(gStrTrimLeft(part));
        const size_t length = std::min(std::strlen(part), NewWidth - 1 - used);
        std::memcpy(joined + used, part, length);
        used += length;
    }
    std::memcpy(newText, joined, NewWidth);
    return 1;
}

// A text field of `width` bytes against a name, both read up to `width` characters: equal
// exactly, or equal ignoring letter case.
inline bool PdcSameText(const char* field, size_t width, const std::string& name, bool ignoreCase = false) {
    const size_t length = strnlen(field, width);
    if (strnlen(name.c_str(), width) != length)
        return false;
    for (size_t i = 0; i < length; ++i) {
        const auto a = static_cast<unsigned char>(field[i]);
        const auto b = static_cast<unsigned char>(name[i]);
        if (ignoreCase ? std::tolower(a) != std::tolower(b) : a != b)
            return false;
    }
    return true;
}

// Field-table entries of these conversions (inside a traits struct naming Record, OldRecord).
#define RE_PDC_DATE(field) RE_CUSTOM(field, field, kDate, &PdcOldDateToNew, nullptr)
#define RE_PDC_TRIMMED(field) \
    RE_CUSTOM(field, field, kText, (&PdcTrimmedText<sizeof(OldRecord::field), sizeof(Record::field)>), nullptr)
#define RE_PDC_JOINED(field, oldParts)                                                                 \
    RE_CUSTOM(field, oldParts, kText,                                                                  \
              (&PdcJoinedText<std::extent_v<decltype(OldRecord::oldParts)>,                            \
                              std::extent_v<decltype(OldRecord::oldParts), 1>, sizeof(Record::field)>), \
              nullptr)
