// What the record-manager files of a production project share: their messages, named in the
// order the production files list them, the switches in which they differ from the other file
// classes, and the main-or-accessory flag that the piece and mark records carry.
#pragma once

#include "core/RecordFileSpec.h"

#include <cstring>

// A production file's messages: wrong record length at open, Create failure, record-manager
// failure on a read (shown with the status).
constexpr REMessageCodes REPdcMessages(unsigned open, unsigned create, unsigned read) {
    return REMessageCodes{.corrupt = open, .unknownError = read, .create = create};
}

// The piece, mark and link files: reads on the current key, and Initialize of an open object
// only closes it.
constexpr void REPdcPieceFileSwitches(RERecordFileSpec& spec) {
    REReadOnCurrentKey(spec);
    spec.initializeOnOpenCloses = true;
}

// The main-or-accessory flag: "M" for a main-mark row, "a" for an accessory row.
constexpr char kPdcMainFlag[] = "M";
constexpr char kPdcAccessoryFlag[] = "a";

// True when the flag field (a 2-byte text) holds `flag` ignoring letter case.
inline bool REPdcFlagIs(const char* field, const char* flag) {
    auto lower = [](char c) { return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c; };
    return lower(field[0]) == lower(flag[0]) && field[1] == '\0';
}

// Old files wrote the flag in either case: "m" becomes "M" and "A" becomes "a".
inline void REPdcNormaliseFlag(char* field) {
    if (REPdcFlagIs(field, kPdcMainFlag))
        std::memcpy(field, kPdcMainFlag, sizeof kPdcMainFlag);
    else if (REPdcFlagIs(field, kPdcAccessoryFlag))
        std::memcpy(field, kPdcAccessoryFlag, sizeof kPdcAccessoryFlag);
}

// Puts a mark argument into a 17-byte mark field: at most 16 characters, the rest zero. A null
// mark reads as empty.
inline void REPdcPutMark(char* field, const char* mark) {
    std::memset(field, 0, 17);
    if (mark != nullptr)
        std::memcpy(field, mark, strnlen(mark, 16));
}

// Two texts of at most `width` bytes alike up to their end, ignoring letter case.
inline bool REPdcSameText(const char* a, const char* b, size_t width) {
    auto lower = [](unsigned char c) { return (c >= 'A' && c <= 'Z') ? c - 'A' + 'a' : c; };
    for (size_t i = 0; i < width; ++i) {
        if (lower(a[i]) != lower(b[i]))
            return false;
        if (a[i] == '\0')
            return true;
    }
    return true;
}
