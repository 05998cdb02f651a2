// One labor operation entry of an estimate job item, in the current layout and in the layout
// of the earlier generation of files, and the conversions between the two.
//
// Current layout: codes zero-terminated and zero-padded. Earlier layout: codes blank-padded
// without terminator. The numbers are the same in both.
#pragma once

#include "tarsel_export.h"

#include <cstddef>
#include <cstdint>

#pragma pack(push, 1)
struct OPERATIONTYPE {
    char sCode1[5];     // first code, 4 characters
    int16_t nValue5;
    int32_t nValue7;
    char sCode2[5];     // second code, 4 characters
    char sCode3[5];     // third code, 4 characters
    int32_t nValue21;
};

struct OLD_OPERATIONTYPE {
    char sCode1[4];
    int16_t nValue5;
    int32_t nValue7;
    char sCode2[4];
    char sCode3[4];
    int32_t nValue21;
};
#pragma pack(pop)

static_assert(sizeof(OPERATIONTYPE) == 25);
static_assert(offsetof(OPERATIONTYPE, sCode1) == 0);
static_assert(offsetof(OPERATIONTYPE, nValue5) == 5);
static_assert(offsetof(OPERATIONTYPE, nValue7) == 7);
static_assert(offsetof(OPERATIONTYPE, sCode2) == 11);
static_assert(offsetof(OPERATIONTYPE, sCode3) == 16);
static_assert(offsetof(OPERATIONTYPE, nValue21) == 21);

static_assert(sizeof(OLD_OPERATIONTYPE) == 22);
static_assert(offsetof(OLD_OPERATIONTYPE, sCode1) == 0);
static_assert(offsetof(OLD_OPERATIONTYPE, nValue5) == 4);
static_assert(offsetof(OLD_OPERATIONTYPE, nValue7) == 6);
static_assert(offsetof(OLD_OPERATIONTYPE, sCode2) == 10);
static_assert(offsetof(OLD_OPERATIONTYPE, sCode3) == 14);
static_assert(offsetof(OLD_OPERATIONTYPE, nValue21) == 18);

// Old to current: the new entry is zeroed, each code loses its trailing blanks and is
// zero-terminated, the numbers are copied. Returns 1 (0 when either pointer is null).
TARSEL_API int gConvertOperationTypeToNewFormat(const OLD_OPERATIONTYPE* oldRec, OPERATIONTYPE* newRec);

// Current to old: the old entry is filled with blanks, each code is copied without its
// terminator, the numbers are copied. Returns 1 (0 when either pointer is null).
TARSEL_API int gConvertOperationTypeToOldFormat(const OPERATIONTYPE* newRec, OLD_OPERATIONTYPE* oldRec);

// The same conversions on references.
inline int gConvertOperationTypeToNewFormat(const OLD_OPERATIONTYPE& oldRec, OPERATIONTYPE& newRec) {
    return gConvertOperationTypeToNewFormat(&oldRec, &newRec);
}
inline int gConvertOperationTypeToOldFormat(const OPERATIONTYPE& newRec, OLD_OPERATIONTYPE& oldRec) {
    return gConvertOperationTypeToOldFormat(&newRec, &oldRec);
}
