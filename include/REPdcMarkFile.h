// REPdcMarkFile: the marks of a production job with their measures, one PDCMARKDATATYPE per
// mark. Files of the earlier generation (198-byte records, numbers in single precision, some in
// sortable form) are read and converted on every read; writes always pass the 257-byte record.
// A program opens it with Initialize(path) (CreateNewFile first makes an empty file) and reads
// and writes it through the record-file methods of detail/RERecordFile.h and those below.
#pragma once

#include "REPdcMarkText.h"
#include "detail/RERecordFile.h"
#include "tarsel_export.h"

#include <cstddef>
#include <cstdint>
#include <vector>

#pragma pack(push, 1)
// OFFSET SIZE FIELD
//      0   17 szMark          key 0
//     17    2 szMainOrAcc     "M" / "a"
//     19    4 szText19        key 2
//     23    7 szText23        key 3
//     30   17 szSecondMark    key 4
//     47    2 szText47        key 6 (duplicates)
//     49    7 szText49        key 5
//     56 .. 68                texts of 3, 4, 2 and 10 characters
//     79   28 fMeasure79      7 floats
//    107   26 szText107
//    133    4 fMeasure133
//    137   16 szText137
//    153  104 dMeasure153 .. dMeasure249: 13 doubles
struct PDCMARKDATATYPE {
    char szMark[17];
    char szMainOrAcc[2];
    char szText19[4];
    char szText23[7];
    char szSecondMark[17];
    char szText47[2];
    char szText49[7];
    char szText56[4];
    char szText60[5];
    char szText65[3];
    char szText68[11];
    float fMeasure79[7];
    char szText107[26];
    float fMeasure133;
    char szText137[16];
    double dMeasure153[7];
    double dMeasure209[2];
    double dMeasure225[3];
    double dMeasure249;
};

// The earlier layout: blank-padded texts, single-precision numbers (those at 19 and 72 in
// sortable form).
struct OLD_PDCMARKDATATYPE {
    char szText56[3];
    char szText60[4];
    char szText65[2];
    char szText68[10];
    float fMeasure79[7];
    char szText107[25];
    float fMeasure133;
    char szMainOrAcc[1];
    OLD_MARKTYPE szMark;
    char szText137[15];
    char cSpare109;
    char szText23[6];
    char cSpare116;
    float dMeasure153[7];
    OLD_MARKTYPE szSecondMark;
    float dMeasure209[2];
    char szText47[1];
    char szText19[3];
    char cSpare174;
    float dMeasure225[3];
    char szText49[6];
    char cSpare193;
    float dMeasure249;
};
#pragma pack(pop)

static_assert(sizeof(PDCMARKDATATYPE) == 257);
static_assert(offsetof(PDCMARKDATATYPE, szMainOrAcc) == 17);
static_assert(offsetof(PDCMARKDATATYPE, szText19) == 19);
static_assert(offsetof(PDCMARKDATATYPE, szText23) == 23);
static_assert(offsetof(PDCMARKDATATYPE, szSecondMark) == 30);
static_assert(offsetof(PDCMARKDATATYPE, szText47) == 47);
static_assert(offsetof(PDCMARKDATATYPE, szText49) == 49);
static_assert(offsetof(PDCMARKDATATYPE, szText56) == 56);
static_assert(offsetof(PDCMARKDATATYPE, szText60) == 60);
static_assert(offsetof(PDCMARKDATATYPE, szText65) == 65);
static_assert(offsetof(PDCMARKDATATYPE, szText68) == 68);
static_assert(offsetof(PDCMARKDATATYPE, fMeasure79) == 79);
static_assert(offsetof(PDCMARKDATATYPE, szText107) == 107);
static_assert(offsetof(PDCMARKDATATYPE, fMeasure133) == 133);
static_assert(offsetof(PDCMARKDATATYPE, szText137) == 137);
static_assert(offsetof(PDCMARKDATATYPE, dMeasure153) == 153);
static_assert(offsetof(PDCMARKDATATYPE, dMeasure209) == 209);
static_assert(offsetof(PDCMARKDATATYPE, dMeasure225) == 225);
static_assert(offsetof(PDCMARKDATATYPE, dMeasure249) == 249);

static_assert(sizeof(OLD_PDCMARKDATATYPE) == 198);
static_assert(offsetof(OLD_PDCMARKDATATYPE, szText60) == 3);
static_assert(offsetof(OLD_PDCMARKDATATYPE, szText65) == 7);
static_assert(offsetof(OLD_PDCMARKDATATYPE, szText68) == 9);
static_assert(offsetof(OLD_PDCMARKDATATYPE, fMeasure79) == 19);
static_assert(offsetof(OLD_PDCMARKDATATYPE, szText107) == 47);
static_assert(offsetof(OLD_PDCMARKDATATYPE, fMeasure133) == 72);
static_assert(offsetof(OLD_PDCMARKDATATYPE, szMainOrAcc) == 76);
static_assert(offsetof(OLD_PDCMARKDATATYPE, szMark) == 77);
static_assert(offsetof(OLD_PDCMARKDATATYPE, szText137) == 94);
static_assert(offsetof(OLD_PDCMARKDATATYPE, szText23) == 110);
static_assert(offsetof(OLD_PDCMARKDATATYPE, dMeasure153) == 117);
static_assert(offsetof(OLD_PDCMARKDATATYPE, szSecondMark) == 145);
static_assert(offsetof(OLD_PDCMARKDATATYPE, dMeasure209) == 162);
static_assert(offsetof(OLD_PDCMARKDATATYPE, szText47) == 170);
static_assert(offsetof(OLD_PDCMARKDATATYPE, szText19) == 171);
static_assert(offsetof(OLD_PDCMARKDATATYPE, dMeasure225) == 175);
static_assert(offsetof(OLD_PDCMARKDATATYPE, szText49) == 187);
static_assert(offsetof(OLD_PDCMARKDATATYPE, dMeasure249) == 194);

class TARSEL_API REPdcMarkFile : public RERecordFile<REPdcMarkFile, RELayout<PDCMARKDATATYPE, OLD_PDCMARKDATATYPE>> {
public:
    REPdcMarkFile();

    using RERecordFile::m_isOldFormat;
    using RERecordFile::AddRecord;

    static int ResetPdcMarkRecArray(std::vector<PDCMARKDATATYPE*>& array) { return ResetRecArray(array); }

    int AddRecord(PDCMARKDATATYPE* rec) { return rec != nullptr ? AddRecord(*rec) : 0; }
    // The record of this mark (on key 0); `out` may be null.
    int GetEqualMatch(const char* mark, PDCMARKDATATYPE* out);
    // Replaces the record of this mark by `rec`.
    int UpdateRecord(const char* mark, PDCMARKDATATYPE& rec);
    int UpdateRecord(const char* mark, PDCMARKDATATYPE* rec);
    // Deletes the record of `rec`'s mark.
    int DeleteRecord(PDCMARKDATATYPE& rec);

    // Old layout to current; 1.
    static int _ConvertPdcMarkDataTypeToNewFormat(const OLD_PDCMARKDATATYPE* oldRec, PDCMARKDATATYPE* newRec);
    // Old files are never written in their own layout: succeeds without writing.
    static int _ConvertPdcMarkDataTypeToOldFormat(const PDCMARKDATATYPE* newRec, OLD_PDCMARKDATATYPE* oldRec);

private:
    static const RERecordFileSpec kSpec;
};
