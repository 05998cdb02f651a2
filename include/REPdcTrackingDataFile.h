// REPdcTrackingDataFile: what was done to the pieces in the shop, one PDCTRACKFILETYPE per
// tracking entry with its marks, date and size key. Key 0 (duplicates): the number at 0, the
// text at 4 and the two marks; the look-up by number uses key 1 (the number alone), which the
// file must carry for it to succeed. Files of the earlier generation (223-byte records) are
// converted on every read.
// A program opens it with Initialize(path) (CreateNewFile first makes an empty file) and reads
// and writes it through the record-file methods of detail/RERecordFile.h and those below.
#pragma once

#include "REPdcMarkText.h"
#include "SIZEDATKEYREC.h"
#include "detail/PdcFileFamily.h"
#include "tarsel_export.h"

#include <cstddef>
#include <cstdint>
#include <vector>

#pragma pack(push, 1)
struct PDCTRACKFILETYPE {
    int32_t nValue0;    // key segment
    char sText4[9];     // 8 characters; key segment
    char sMark13[17];   // mark text; key segment
    char sMark30[17];   // mark text; key segment
    double dDate47;     // automation date
    int32_t nValue55;
    SIZEDATKEYREC sizeKey;
    char sText140[7];   // 6 characters
    char sText147[7];   // 6 characters
    char sText154[4];   // 3 characters
    char sMark158[17];  // mark text
    char sMark175[17];  // mark text
    uint8_t value192[4];
    uint8_t value196[4];
    char sText200[11];  // 10 characters
    char sText211[11];
    char sText222[11];
};

struct OLD_PDCTRACKFILETYPE {
    int16_t nValue0;
    char sText4[8];
    char cSpare10;
    OLD_MARKTYPE sMark13;
    OLD_MARKTYPE sMark30;
    char dDate47[7];  // date text
    int16_t nValue55;
    OLD_SIZEDATKEYREC sizeKey;
    char sText140[6];
    char cSpare136;
    char sText147[6];
    char cSpare143;
    char sText154[3];
    char cSpare147;
    OLD_MARKTYPE sMark158;
    OLD_MARKTYPE sMark175;
    uint8_t value192[4];
    uint8_t value196[4];
    char sText200[10];
    char cSpare200;
    char sText211[10];
    char cSpare211;
    char sText222[10];
    char cSpare222;
};
#pragma pack(pop)

static_assert(sizeof(PDCTRACKFILETYPE) == 233);
static_assert(offsetof(PDCTRACKFILETYPE, sText4) == 4);
static_assert(offsetof(PDCTRACKFILETYPE, sMark13) == 13);
static_assert(offsetof(PDCTRACKFILETYPE, sMark30) == 30);
static_assert(offsetof(PDCTRACKFILETYPE, dDate47) == 47);
static_assert(offsetof(PDCTRACKFILETYPE, nValue55) == 55);
static_assert(offsetof(PDCTRACKFILETYPE, sizeKey) == 59);
static_assert(offsetof(PDCTRACKFILETYPE, sText140) == 140);
static_assert(offsetof(PDCTRACKFILETYPE, sText147) == 147);
static_assert(offsetof(PDCTRACKFILETYPE, sText154) == 154);
static_assert(offsetof(PDCTRACKFILETYPE, sMark158) == 158);
static_assert(offsetof(PDCTRACKFILETYPE, sMark175) == 175);
static_assert(offsetof(PDCTRACKFILETYPE, value192) == 192);
static_assert(offsetof(PDCTRACKFILETYPE, value196) == 196);
static_assert(offsetof(PDCTRACKFILETYPE, sText200) == 200);
static_assert(offsetof(PDCTRACKFILETYPE, sText211) == 211);
static_assert(offsetof(PDCTRACKFILETYPE, sText222) == 222);
static_assert(sizeof(OLD_PDCTRACKFILETYPE) == 223);
static_assert(offsetof(OLD_PDCTRACKFILETYPE, sText4) == 2);
static_assert(offsetof(OLD_PDCTRACKFILETYPE, sMark13) == 11);
static_assert(offsetof(OLD_PDCTRACKFILETYPE, sMark30) == 28);
static_assert(offsetof(OLD_PDCTRACKFILETYPE, dDate47) == 45);
static_assert(offsetof(OLD_PDCTRACKFILETYPE, nValue55) == 52);
static_assert(offsetof(OLD_PDCTRACKFILETYPE, sizeKey) == 54);
static_assert(offsetof(OLD_PDCTRACKFILETYPE, sText140) == 130);
static_assert(offsetof(OLD_PDCTRACKFILETYPE, sText147) == 137);
static_assert(offsetof(OLD_PDCTRACKFILETYPE, sText154) == 144);
static_assert(offsetof(OLD_PDCTRACKFILETYPE, sMark158) == 148);
static_assert(offsetof(OLD_PDCTRACKFILETYPE, sMark175) == 165);
static_assert(offsetof(OLD_PDCTRACKFILETYPE, value192) == 182);
static_assert(offsetof(OLD_PDCTRACKFILETYPE, value196) == 186);
static_assert(offsetof(OLD_PDCTRACKFILETYPE, sText200) == 190);
static_assert(offsetof(OLD_PDCTRACKFILETYPE, sText211) == 201);
static_assert(offsetof(OLD_PDCTRACKFILETYPE, sText222) == 212);

class TARSEL_API REPdcTrackingDataFile
    : public REPdcFile<REPdcTrackingDataFile, RELayout<PDCTRACKFILETYPE, OLD_PDCTRACKFILETYPE>> {
public:
    REPdcTrackingDataFile();

    static int ResetPdcTrackingDataRecArray(std::vector<PDCTRACKFILETYPE*>& array) { return ResetRecArray(array); }

    // Get Equal on key 1 with `key`'s number at offset 0 (key length 4); 1 on status 0, never
    // a message.
    int GetEqualRecord(PDCTRACKFILETYPE* key, PDCTRACKFILETYPE* out);
    // GetEqualRecord(key), then Update with `newRec`; 0 and nothing written when the look-up
    // fails.
    int UpdateRecord(PDCTRACKFILETYPE* key, PDCTRACKFILETYPE* newRec);

private:
    static const RERecordFileSpec kSpec;
};
