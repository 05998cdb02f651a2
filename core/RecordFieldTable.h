// Field tables: one entry per field of a record, relating its place in the current layout to its
// place in the layout of the earlier generation of files. One table drives both conversions
// (and a tool that decodes records by name and kind), so a field is written once.
//
// A table is declared inside a class's traits, where `Record` and `OldRecord` name the two
// layouts:
//
//     static constexpr REField kFields[] = {
//         RE_TEXT(sCode1),            // blank-padded old text <-> zero-terminated new text
//         RE_NUMBER(nPageNo, kInteger),  // integer copied, widened or narrowed
//         RE_RECORD(sizeKey, SizeKeyFields),  // a sub-record with its own table
//         RE_NEW_ONLY(nValue602, kInteger),   // no old counterpart: zero in converted records
//     };
//
// Conversion to the current layout zeroes the record first, conversion to the old layout fills
// it with blanks; then every entry copies its field by its rule.
#pragma once

#include "tarsel_export.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <type_traits>

// What a field holds, for decoding.
enum class REFieldKind : uint8_t { kText, kInteger, kReal, kDate, kLength, kBytes, kRecord };

// How a field moves between the layouts.
enum class REFieldRule : uint8_t {
    kText,     // old blank-padded text <-> new zero-terminated text
    kTextRunOn,  // as kText, but toward old a text longer than its slot runs on into the next
                 // fields (never past the record)
    kNumber,   // signed integer: sign-extended toward new, cut toward old
    kCopy,     // bytes as they are, for the shorter of the two widths
    kReal,     // floating point: widened (4 -> 8 bytes) or narrowed, or copied at equal widths
    kRecord,   // sub-record converted by its own table, element by element
    kCustom,   // element by element through the entry's own converters
    kNewOnly,  // only in the current layout: zero after conversion, not written to old
};

struct REFieldTable;
using REFieldConverter = int (*)(const void* from, void* to);

struct REField {
    const char* name;
    REFieldKind kind;
    REFieldRule rule;
    uint32_t newOffset;
    uint32_t newSize;  // bytes of one element
    uint32_t oldOffset;
    uint32_t oldSize;
    uint32_t count;    // elements of an array field, 1 for a plain field
    const REFieldTable* nested = nullptr;
    REFieldConverter toNew = nullptr;  // kCustom: old element -> new element
    REFieldConverter toOld = nullptr;  // kCustom: new element -> old element; null: not written
};

struct REFieldTable {
    std::span<const REField> fields;
    uint32_t newSize;
    uint32_t oldSize;  // 0: the record has one layout
    // Run on the converted record after every field was copied (a flag normalised, say).
    void (*afterToNew)(void* newRec) = nullptr;
    // The old layout is read, never written: conversion toward it succeeds without writing.
    bool oldReadOnly = false;
};

// Elements and element type of a field's declared type.
template <class T>
struct REFieldExtent {
    using Element = T;
    static constexpr uint32_t kCount = 1;
};
template <class T, size_t N>
struct REFieldExtent<T[N]> {
    using Element = T;
    static constexpr uint32_t kCount = N;
};

namespace refield {

template <class T>
constexpr uint32_t ElementSize() {
    return sizeof(typename REFieldExtent<T>::Element);
}

constexpr REField Make(const char* name, REFieldKind kind, REFieldRule rule, size_t newOffset, size_t newSize,
                       size_t oldOffset, size_t oldSize, uint32_t count, const REFieldTable* nested = nullptr,
                       REFieldConverter toNew = nullptr, REFieldConverter toOld = nullptr) {
    return REField{name,
                   kind,
                   rule,
                   static_cast<uint32_t>(newOffset),
                   static_cast<uint32_t>(newSize),
                   static_cast<uint32_t>(oldOffset),
                   static_cast<uint32_t>(oldSize),
                   count,
                   nested,
                   toNew,
                   toOld};
}

}  // namespace refield

// A text field of both layouts.
#define RE_TEXT(field)                                                                                              \
    refield::Make(#field, REFieldKind::kText, REFieldRule::kText, offsetof(Record, field), sizeof(Record::field), \
                  offsetof(OldRecord, field), sizeof(OldRecord::field), 1)
// A text field whose overlong text runs on into the following old fields.
#define RE_TEXT_RUN_ON(field)                                                                                   \
    refield::Make(#field, REFieldKind::kText, REFieldRule::kTextRunOn, offsetof(Record, field),                \
                  sizeof(Record::field), offsetof(OldRecord, field), sizeof(OldRecord::field), 1)
// A text field stored at another name in the old layout.
#define RE_TEXT_FROM(field, oldField)                                                                               \
    refield::Make(#field, REFieldKind::kText, REFieldRule::kText, offsetof(Record, field), sizeof(Record::field), \
                  offsetof(OldRecord, oldField), sizeof(OldRecord::oldField), 1)
// A signed integer of both layouts (or an array of them), widened or cut element by element.
#define RE_NUMBER(field, kind)                                                                                  \
    refield::Make(#field, REFieldKind::kind, REFieldRule::kNumber, offsetof(Record, field),                    \
                  refield::ElementSize<decltype(Record::field)>(), offsetof(OldRecord, field),                  \
                  refield::ElementSize<decltype(OldRecord::field)>(), REFieldExtent<decltype(Record::field)>::kCount)
// A floating-point field (or array) whose width may differ between the layouts.
#define RE_REAL(field)                                                                                        \
    refield::Make(#field, REFieldKind::kReal, REFieldRule::kReal, offsetof(Record, field),                    \
                  refield::ElementSize<decltype(Record::field)>(), offsetof(OldRecord, field),                  \
                  refield::ElementSize<decltype(OldRecord::field)>(), REFieldExtent<decltype(Record::field)>::kCount)
// A field copied as it is (reals, opaque values, arrays of them).
#define RE_COPY(field, kind)                                                                                    \
    refield::Make(#field, REFieldKind::kind, REFieldRule::kCopy, offsetof(Record, field), sizeof(Record::field), \
                  offsetof(OldRecord, field), sizeof(OldRecord::field), 1)
// A sub-record (or an array of sub-records) with its own field table.
#define RE_RECORD(field, table)                                                                                 \
    refield::Make(#field, REFieldKind::kRecord, REFieldRule::kRecord, offsetof(Record, field),                 \
                  refield::ElementSize<decltype(Record::field)>(), offsetof(OldRecord, field),                  \
                  refield::ElementSize<decltype(OldRecord::field)>(),                                           \
                  REFieldExtent<decltype(Record::field)>::kCount, &(table))
// A field converted by its own functions (toOld may be null: not written).
#define RE_CUSTOM(field, oldField, kind, toNew, toOld)                                                             \
    refield::Make(#field, REFieldKind::kind, REFieldRule::kCustom, offsetof(Record, field), sizeof(Record::field), \
                  offsetof(OldRecord, oldField), sizeof(OldRecord::oldField), 1, nullptr, toNew, toOld)
// An array field converted element by element by its own functions.
#define RE_CUSTOM_EACH(field, oldField, kind, toNew, toOld)                                                     \
    refield::Make(#field, REFieldKind::kind, REFieldRule::kCustom, offsetof(Record, field),                    \
                  refield::ElementSize<decltype(Record::field)>(), offsetof(OldRecord, oldField),               \
                  refield::ElementSize<decltype(OldRecord::oldField)>(),                                        \
                  REFieldExtent<decltype(Record::field)>::kCount, nullptr, toNew, toOld)
// A field of the current layout only.
#define RE_NEW_ONLY(field, kind)                                                                                     \
    refield::Make(#field, REFieldKind::kind, REFieldRule::kNewOnly, offsetof(Record, field), sizeof(Record::field), \
                  0, 0, 1)
// A field of a record with one layout (named for decoding only).
#define RE_FIELD(field, kind)                                                                                        \
    refield::Make(#field, REFieldKind::kind, REFieldRule::kNewOnly, offsetof(Record, field), sizeof(Record::field), \
                  0, 0, 1)

// True when every entry lies inside both records and every conversion fits its widths: checked
// at compile time by the traits (static_assert(REFieldsFit(...))).
constexpr bool REFieldsFit(std::span<const REField> fields, size_t newSize, size_t oldSize) {
    for (const REField& f : fields) {
        if (f.count == 0 || f.newOffset + f.newSize * f.count > newSize)
            return false;
        if (f.rule == REFieldRule::kNewOnly)
            continue;
        if (oldSize == 0 || f.oldOffset + f.oldSize * f.count > oldSize)
            return false;
        if (f.rule == REFieldRule::kNumber && (f.newSize > 8 || f.oldSize > 8 || f.newSize < f.oldSize))
            return false;
        if (f.rule == REFieldRule::kReal && ((f.newSize != 4 && f.newSize != 8) || (f.oldSize != 4 && f.oldSize != 8)))
            return false;
        if (f.rule == REFieldRule::kRecord && (f.nested == nullptr || f.nested->newSize != f.newSize ||
                                              f.nested->oldSize != f.oldSize))
            return false;
        if (f.rule == REFieldRule::kCustom && f.toNew == nullptr)
            return false;
    }
    return true;
}

// Old record -> current record by the table; 1.
TARSEL_API int REConvertToNew(const REFieldTable& table, const void* oldRec, void* newRec);
// Current record -> old record by the table; 1.
TARSEL_API int REConvertToOld(const REFieldTable& table, const void* newRec, void* oldRec);

// The two conversions of one table as untyped converter functions.
template <const REFieldTable& Table>
struct RETableConverter {
    static int ToNew(const void* from, void* to) { return REConvertToNew(Table, from, to); }
    static int ToOld(const void* from, void* to) { return REConvertToOld(Table, from, to); }
};
