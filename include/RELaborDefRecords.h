// Records of the labor operation and miscellaneous definition files, and the signature block
// that begins those files.
//
// Definition file:
//   OFFSET  SIZE          DESCRIPTION
//   0       337           signature block: identification string, then zeros
//   337     4             record count (int32)
//   341     4             record size (int32), written as 103
//   345     count x size  the records
#pragma once

#include <cstddef>
#include <cstdint>

#pragma pack(push, 1)

struct LABOROPDEFRECORD {
    char sName[101];    // 100 characters, zero-terminated
    int16_t nGroupNo;
};
static_assert(sizeof(LABOROPDEFRECORD) == 103);
static_assert(offsetof(LABOROPDEFRECORD, nGroupNo) == 101);

struct LABORMISCDEFRECORD {
    char sName[101];    // 100 characters, zero-terminated
    int16_t nGroupNo;
};
static_assert(sizeof(LABORMISCDEFRECORD) == 103);
static_assert(offsetof(LABORMISCDEFRECORD, nGroupNo) == 101);

struct RE_FILE_SIGNATURE {
    char sSignature[337];
};
static_assert(sizeof(RE_FILE_SIGNATURE) == 337);

#pragma pack(pop)
