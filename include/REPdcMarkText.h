// The piece mark of the production files. Current records hold a mark as 17 bytes: up to 16
// characters, zero-terminated and zero-padded. The earlier generation of files stores it as
// OLD_MARKTYPE: one leading byte that means nothing, then 16 character bytes that may hold
// embedded NULs and blanks.
#pragma once

#include "tarsel_export.h"

#include <cstddef>

constexpr size_t kPdcMarkSize = 17;

#pragma pack(push, 1)
struct OLD_MARKTYPE {
    char cLead;
    char sMark[16];
};
#pragma pack(pop)
static_assert(sizeof(OLD_MARKTYPE) == 17);

// Old mark to current: the 16 character bytes with their NULs squeezed out, then trimmed of
// blanks on both sides; `newMark` holds 17 bytes. Returns 1 (0 when either pointer is null).
TARSEL_API int gConvertMarkTypeToNewFormat(OLD_MARKTYPE* oldMark, char* newMark);
// Old files are read, never written in their own layout: succeeds without writing. Returns 1.
TARSEL_API int gConvertMarkTypeToOldFormat(const char* newMark, OLD_MARKTYPE* oldMark);
