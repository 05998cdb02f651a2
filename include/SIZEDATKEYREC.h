// The size key: the record that names one steel size (section, shape, two code fields, five
// dimension values, two further values, a dimension text and one last value). It leads the size
// catalogue's key and is embedded whole in the job item, tracking and cut-data records.
//
// SIZEDATKEYREC is the current form (81 bytes, texts zero-terminated and zero-padded);
// OLD_SIZEDATKEYREC the form the earlier generation of files stores (76 bytes, texts
// blank-padded without terminator). The 4-byte values are opaque here and keep their bits.
#pragma once

#include "tarsel_export.h"

#include <cstddef>
#include <cstdint>

#pragma pack(push, 1)
struct SIZEDATKEYREC {
    char szSection[4];   // section code, up to 3 characters
    char szShape[5];     // shape code, up to 4 characters
    char szCode9[3];     // code field, up to 2 characters
    char szCode12[11];   // code field, up to 10 characters; follows the shape in key order
    float fDim1;         // dimension values 1 to 5
    float fDim2;
    float fDim3;
    float fDim4;
    float fDim5;
    int32_t nValue43;    // values 6 and 7
    int32_t nValue47;
    char szDimText[26];  // dimension text, up to 25 characters
    int32_t nValue77;    // value 8
};

struct OLD_SIZEDATKEYREC {
    char szSection[3];
    char szShape[4];
    char szCode9[2];
    char szCode12[10];
    float fDim1;
    float fDim2;
    float fDim3;
    float fDim4;
    float fDim5;
    int32_t nValue43;
    int32_t nValue47;
    char szDimText[25];
    int32_t nValue77;
};
#pragma pack(pop)

static_assert(sizeof(SIZEDATKEYREC) == 81);
static_assert(offsetof(SIZEDATKEYREC, szSection) == 0);
static_assert(offsetof(SIZEDATKEYREC, szShape) == 4);
static_assert(offsetof(SIZEDATKEYREC, szCode9) == 9);
static_assert(offsetof(SIZEDATKEYREC, szCode12) == 12);
static_assert(offsetof(SIZEDATKEYREC, fDim1) == 23);
static_assert(offsetof(SIZEDATKEYREC, fDim2) == 27);
static_assert(offsetof(SIZEDATKEYREC, fDim3) == 31);
static_assert(offsetof(SIZEDATKEYREC, fDim4) == 35);
static_assert(offsetof(SIZEDATKEYREC, fDim5) == 39);
static_assert(offsetof(SIZEDATKEYREC, nValue43) == 43);
static_assert(offsetof(SIZEDATKEYREC, nValue47) == 47);
static_assert(offsetof(SIZEDATKEYREC, szDimText) == 51);
static_assert(offsetof(SIZEDATKEYREC, nValue77) == 77);

static_assert(sizeof(OLD_SIZEDATKEYREC) == 76);
static_assert(offsetof(OLD_SIZEDATKEYREC, szSection) == 0);
static_assert(offsetof(OLD_SIZEDATKEYREC, szShape) == 3);
static_assert(offsetof(OLD_SIZEDATKEYREC, szCode9) == 7);
static_assert(offsetof(OLD_SIZEDATKEYREC, szCode12) == 9);
static_assert(offsetof(OLD_SIZEDATKEYREC, fDim1) == 19);
static_assert(offsetof(OLD_SIZEDATKEYREC, fDim5) == 35);
static_assert(offsetof(OLD_SIZEDATKEYREC, nValue43) == 39);
static_assert(offsetof(OLD_SIZEDATKEYREC, nValue47) == 43);
static_assert(offsetof(OLD_SIZEDATKEYREC, szDimText) == 47);
static_assert(offsetof(OLD_SIZEDATKEYREC, nValue77) == 72);

// Stored form to current form: texts lose their trailing blanks and are zero-terminated, the
// values are copied bit for bit. Returns 1 (0 when either pointer is null).
TARSEL_API int gConvertSizeKeyRecToNewFormat(const OLD_SIZEDATKEYREC* oldKey, SIZEDATKEYREC* newKey);

// Current form to stored form: the stored key is blank-filled, each text copied for its length
// without terminator (a text longer than its stored width runs on into the next field), the
// values copied bit for bit. Returns 1 (0 when either pointer is null).
TARSEL_API int gConvertSizeKeyRecToOldFormat(const SIZEDATKEYREC* newKey, OLD_SIZEDATKEYREC* oldKey);
