// Records of the mill price lists (Beth and Us mills). The length and quantity records are
// shared with the plate price lists of the same mill.
//
// Every record is packed: a double may stand at an odd offset. A text field of N characters
// takes N + 1 bytes, zero-terminated and zero-padded, without trailing blanks. Integers are
// 32-bit and reals 64-bit IEEE, both little-endian. The layouts are a file format.
#pragma once

#include <cstddef>
#include <cstdint>

#pragma pack(push, 1)

struct BASEPRICERECORD {
    int32_t nGroupNo;
    char sGroupDesig[20];
    double dBasePrice;
    double dDiscount;       // set from the text form's "DISCOUNT INFO" section
};
static_assert(sizeof(BASEPRICERECORD) == 40);
static_assert(offsetof(BASEPRICERECORD, sGroupDesig) == 4);
static_assert(offsetof(BASEPRICERECORD, dBasePrice) == 24);
static_assert(offsetof(BASEPRICERECORD, dDiscount) == 32);

// Code, three values and an integer: section extras, angle section extras, group breakdowns.
#define RE_CODE_VALUES_RECORD(NAME)                                                                \
    struct NAME {                                                                                  \
        char sCode[5];                                                                             \
        double dValue1;                                                                            \
        double dValue2;                                                                            \
        double dValue3;                                                                            \
        int32_t nValue;                                                                            \
    };                                                                                             \
    static_assert(sizeof(NAME) == 33);                                                             \
    static_assert(offsetof(NAME, dValue1) == 5);                                                   \
    static_assert(offsetof(NAME, dValue2) == 13);                                                  \
    static_assert(offsetof(NAME, dValue3) == 21);                                                  \
    static_assert(offsetof(NAME, nValue) == 29)

RE_CODE_VALUES_RECORD(SECTIONEXTRARECORD);
RE_CODE_VALUES_RECORD(ANGLESECTIONEXTRARECORD);
RE_CODE_VALUES_RECORD(US_GROUPBREAKDOWNSRECORD);
#undef RE_CODE_VALUES_RECORD

// Code and three values: forced milling.
#define RE_FORCE_MILLING_RECORD(NAME)                                                              \
    struct NAME {                                                                                  \
        char sCode[5];                                                                             \
        double dValue1;                                                                            \
        double dValue2;                                                                            \
        double dValue3;                                                                            \
    };                                                                                             \
    static_assert(sizeof(NAME) == 29);                                                             \
    static_assert(offsetof(NAME, dValue1) == 5);                                                   \
    static_assert(offsetof(NAME, dValue2) == 13);                                                  \
    static_assert(offsetof(NAME, dValue3) == 21)

RE_FORCE_MILLING_RECORD(FORCEMILLINGRECORD);
RE_FORCE_MILLING_RECORD(US_FORCEMILLINGRECORD);
#undef RE_FORCE_MILLING_RECORD

// Two bounds, a description of DESC - 1 characters and one extra.
#define RE_BOUNDS_EXTRA_RECORD(NAME, DESC, SIZE)                                                   \
    struct NAME {                                                                                  \
        double dBound1;                                                                            \
        double dBound2;                                                                            \
        char sDescription[DESC];                                                                   \
        double dExtra;                                                                             \
    };                                                                                             \
    static_assert(sizeof(NAME) == SIZE);                                                           \
    static_assert(offsetof(NAME, dBound2) == 8);                                                   \
    static_assert(offsetof(NAME, sDescription) == 16);                                             \
    static_assert(offsetof(NAME, dExtra) == 16 + DESC)

RE_BOUNDS_EXTRA_RECORD(LENGTHEXTRARECORD, 31, 55);
RE_BOUNDS_EXTRA_RECORD(US_LENGTHEXTRARECORD, 31, 55);
RE_BOUNDS_EXTRA_RECORD(QUANTITYEXTRARECORD, 36, 60);
RE_BOUNDS_EXTRA_RECORD(US_QUANTITYEXTRARECORD, 35, 59);
RE_BOUNDS_EXTRA_RECORD(MILLINGEXTRARECORD, 36, 60);
RE_BOUNDS_EXTRA_RECORD(CAMBEREXTRARECORD, 41, 65);
RE_BOUNDS_EXTRA_RECORD(US_CAMBEREXTRARECORD, 41, 65);
#undef RE_BOUNDS_EXTRA_RECORD

// Two bounds, a description of DESC - 1 characters and two extras.
#define RE_BOUNDS_TWO_EXTRAS_RECORD(NAME, DESC, SIZE)                                              \
    struct NAME {                                                                                  \
        double dBound1;                                                                            \
        double dBound2;                                                                            \
        char sDescription[DESC];                                                                   \
        double dExtra1;                                                                            \
        double dExtra2;                                                                            \
    };                                                                                             \
    static_assert(sizeof(NAME) == SIZE);                                                           \
    static_assert(offsetof(NAME, dBound2) == 8);                                                   \
    static_assert(offsetof(NAME, sDescription) == 16);                                             \
    static_assert(offsetof(NAME, dExtra1) == 16 + DESC);                                           \
    static_assert(offsetof(NAME, dExtra2) == 24 + DESC)

RE_BOUNDS_TWO_EXTRAS_RECORD(ADDITIONALLENGTHEXTRARECORD, 31, 63);
RE_BOUNDS_TWO_EXTRAS_RECORD(US_ADDITIONALLENGTHEXTRARECORD, 30, 62);
#undef RE_BOUNDS_TWO_EXTRAS_RECORD

// Number, two texts and a price or extra.
#define RE_NUMBER_TEXTS_RECORD(NAME)                                                               \
    struct NAME {                                                                                  \
        int32_t nNumber;                                                                           \
        char sText1[21];                                                                           \
        char sText2[11];                                                                           \
        double dValue;                                                                             \
    };                                                                                             \
    static_assert(sizeof(NAME) == 44);                                                             \
    static_assert(offsetof(NAME, sText1) == 4);                                                    \
    static_assert(offsetof(NAME, sText2) == 25);                                                   \
    static_assert(offsetof(NAME, dValue) == 36)

RE_NUMBER_TEXTS_RECORD(SPECIFICATIONEXTRARECORD);
RE_NUMBER_TEXTS_RECORD(US_BASEPRICERECORD);
#undef RE_NUMBER_TEXTS_RECORD

struct US_MILLINGEXTRARECORD {
    double dBound1;
    double dBound2;
    double dBound3;
    double dBound4;
    char sDescription[59];
    double dExtra;
};
static_assert(sizeof(US_MILLINGEXTRARECORD) == 99);
static_assert(offsetof(US_MILLINGEXTRARECORD, dBound2) == 8);
static_assert(offsetof(US_MILLINGEXTRARECORD, dBound3) == 16);
static_assert(offsetof(US_MILLINGEXTRARECORD, dBound4) == 24);
static_assert(offsetof(US_MILLINGEXTRARECORD, sDescription) == 32);
static_assert(offsetof(US_MILLINGEXTRARECORD, dExtra) == 91);

struct US_DISCOUNTRECORD {
    int32_t nNumber;
    char sDescription[26];
    double dDiscount;
};
static_assert(sizeof(US_DISCOUNTRECORD) == 38);
static_assert(offsetof(US_DISCOUNTRECORD, sDescription) == 4);
static_assert(offsetof(US_DISCOUNTRECORD, dDiscount) == 30);

struct US_SPECIALDEDUCTIONSRECORD {
    char sDescription[56];
    double dDeduction;
};
static_assert(sizeof(US_SPECIALDEDUCTIONSRECORD) == 64);
static_assert(offsetof(US_SPECIALDEDUCTIONSRECORD, dDeduction) == 56);

#pragma pack(pop)
