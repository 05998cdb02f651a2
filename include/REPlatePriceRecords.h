// Records of the plate price lists (Beth and Us plate). Their length and quantity records are
// those of the mill price lists (REMillPriceRecords.h).
//
// Packed; a text field of N characters takes N + 1 bytes, zero-terminated and zero-padded,
// without trailing blanks; integers 32-bit, reals 64-bit IEEE, both little-endian.
#pragma once

#include "REMillPriceRecords.h"

#include <cstddef>
#include <cstdint>

#pragma pack(push, 1)

struct BASEPRICEPLATERECORD {
    char sGroupDesig[21];
    double dBasePrice;
};
static_assert(sizeof(BASEPRICEPLATERECORD) == 29);
static_assert(offsetof(BASEPRICEPLATERECORD, dBasePrice) == 21);

struct US_BASEPRICEPLATERECORD {
    char sGroupDesig[20];
    double dBasePrice;
};
static_assert(sizeof(US_BASEPRICEPLATERECORD) == 28);
static_assert(offsetof(US_BASEPRICEPLATERECORD, dBasePrice) == 20);

struct PLATEDISCOUNTRECORD {
    int32_t nNumber;
    char sDescription[26];
    double dDiscount;
};
static_assert(sizeof(PLATEDISCOUNTRECORD) == 38);
static_assert(offsetof(PLATEDISCOUNTRECORD, sDescription) == 4);
static_assert(offsetof(PLATEDISCOUNTRECORD, dDiscount) == 30);

struct US_PLATEDISCOUNTRECORD {
    int32_t nNumber;
    char sDescription[25];
    double dDiscount;
};
static_assert(sizeof(US_PLATEDISCOUNTRECORD) == 37);
static_assert(offsetof(US_PLATEDISCOUNTRECORD, sDescription) == 4);
static_assert(offsetof(US_PLATEDISCOUNTRECORD, dDiscount) == 29);

// Code, description, four values (thickness and width ranges as the mill defines them), an
// integer and the extra.
struct PLATESECTIONEXTRARECORD {
    char sCode[5];
    char sDescription[51];
    double dValue1;
    double dValue2;
    double dValue3;
    double dValue4;
    int32_t nValue;
    double dExtra;
};
static_assert(sizeof(PLATESECTIONEXTRARECORD) == 100);
static_assert(offsetof(PLATESECTIONEXTRARECORD, sDescription) == 5);
static_assert(offsetof(PLATESECTIONEXTRARECORD, dValue1) == 56);
static_assert(offsetof(PLATESECTIONEXTRARECORD, dValue2) == 64);
static_assert(offsetof(PLATESECTIONEXTRARECORD, dValue3) == 72);
static_assert(offsetof(PLATESECTIONEXTRARECORD, dValue4) == 80);
static_assert(offsetof(PLATESECTIONEXTRARECORD, nValue) == 88);
static_assert(offsetof(PLATESECTIONEXTRARECORD, dExtra) == 92);

struct US_PLATESECTIONEXTRARECORD {
    char sCode[4];
    char sDescription[50];
    double dValue1;
    double dValue2;
    double dValue3;
    double dValue4;
    int32_t nValue;
    double dExtra;
};
static_assert(sizeof(US_PLATESECTIONEXTRARECORD) == 98);
static_assert(offsetof(US_PLATESECTIONEXTRARECORD, sDescription) == 4);
static_assert(offsetof(US_PLATESECTIONEXTRARECORD, dValue1) == 54);
static_assert(offsetof(US_PLATESECTIONEXTRARECORD, dValue2) == 62);
static_assert(offsetof(US_PLATESECTIONEXTRARECORD, dValue3) == 70);
static_assert(offsetof(US_PLATESECTIONEXTRARECORD, dValue4) == 78);
static_assert(offsetof(US_PLATESECTIONEXTRARECORD, nValue) == 86);
static_assert(offsetof(US_PLATESECTIONEXTRARECORD, dExtra) == 90);

struct PLATESPECIFICATIONEXTRARECORD {
    char sSpecification[51];
    char sText2[11];
    double dValue1;
    double dValue2;
    double dExtra;
};
static_assert(sizeof(PLATESPECIFICATIONEXTRARECORD) == 86);
static_assert(offsetof(PLATESPECIFICATIONEXTRARECORD, sText2) == 51);
static_assert(offsetof(PLATESPECIFICATIONEXTRARECORD, dValue1) == 62);
static_assert(offsetof(PLATESPECIFICATIONEXTRARECORD, dValue2) == 70);
static_assert(offsetof(PLATESPECIFICATIONEXTRARECORD, dExtra) == 78);

struct US_PLATESPECIFICATIONEXTRARECORD {
    char sSpecification[50];
    char sText2[10];
    double dValue1;
    double dValue2;
    double dExtra;
};
static_assert(sizeof(US_PLATESPECIFICATIONEXTRARECORD) == 84);
static_assert(offsetof(US_PLATESPECIFICATIONEXTRARECORD, sText2) == 50);
static_assert(offsetof(US_PLATESPECIFICATIONEXTRARECORD, dValue1) == 60);
static_assert(offsetof(US_PLATESPECIFICATIONEXTRARECORD, dValue2) == 68);
static_assert(offsetof(US_PLATESPECIFICATIONEXTRARECORD, dExtra) == 76);

#pragma pack(pop)
