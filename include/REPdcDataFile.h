// REPdcDataFile: the pieces of a production job, one PDCDATATYPE per main mark and per accessory
// (piece) mark attached to it. Files of the earlier generation (145-byte records, the two
// leading marks in the other order) are read and converted on every read; writes always pass
// the 154-byte record.
// A program opens it with Initialize(path) (CreateNewFile first makes an empty file) and reads
// and writes it through the record-file methods of detail/RERecordFile.h and those below.
#pragma once

#include "REPdcMarkText.h"
#include "detail/RERecordFile.h"
#include "tarsel_export.h"

#include <cstddef>
#include <cstdint>
#include <list>
#include <string>
#include <vector>

#pragma pack(push, 1)
// OFFSET SIZE FIELD
//      0   17 szMainMark     main mark
//     17   17 szSecondMark   second identifier of the row
//     34    2 szMainOrAcc    "M" for the main-mark row, "a" for an accessory row
//     36   17 szPieceMark    accessory mark
//     53    4 nValue53
//     57    4 nValue57
//     61   11 szText61
//     72    7 szText72       key 3
//     79    7 szText79       keys 3 and 4
//     86   16 szText86 ... 134 szText134
//    150    4 reserved150    zero
struct PDCDATATYPE {
    char szMainMark[17];
    char szSecondMark[17];
    char szMainOrAcc[2];
    char szPieceMark[17];
    int32_t nValue53;
    int32_t nValue57;
    char szText61[11];
    char szText72[7];
    char szText79[7];
    char szText86[16];
    char szText102[16];
    char szText118[16];
    char szText134[16];
    uint8_t reserved150[4];
};

// The earlier layout: blank-padded texts, each followed by a spare byte.
struct OLD_PDCDATATYPE {
    OLD_MARKTYPE szSecondMark;
    OLD_MARKTYPE szMainMark;
    char szMainOrAcc[1];
    OLD_MARKTYPE szPieceMark;
    int16_t nValue53;
    int16_t nValue57;
    char szText61[10];
    char cSpare66;
    char szText72[6];
    char cSpare73;
    char szText79[6];
    char cSpare80;
    char szText86[15];
    char cSpare96;
    char szText102[15];
    char cSpare112;
    char szText118[15];
    char cSpare128;
    char szText134[15];
    char cSpare144;
};
#pragma pack(pop)

static_assert(sizeof(PDCDATATYPE) == 154);
static_assert(offsetof(PDCDATATYPE, szSecondMark) == 17);
static_assert(offsetof(PDCDATATYPE, szMainOrAcc) == 34);
static_assert(offsetof(PDCDATATYPE, szPieceMark) == 36);
static_assert(offsetof(PDCDATATYPE, nValue53) == 53);
static_assert(offsetof(PDCDATATYPE, nValue57) == 57);
static_assert(offsetof(PDCDATATYPE, szText61) == 61);
static_assert(offsetof(PDCDATATYPE, szText72) == 72);
static_assert(offsetof(PDCDATATYPE, szText79) == 79);
static_assert(offsetof(PDCDATATYPE, szText86) == 86);
static_assert(offsetof(PDCDATATYPE, szText102) == 102);
static_assert(offsetof(PDCDATATYPE, szText118) == 118);
static_assert(offsetof(PDCDATATYPE, szText134) == 134);
static_assert(offsetof(PDCDATATYPE, reserved150) == 150);

static_assert(sizeof(OLD_PDCDATATYPE) == 145);
static_assert(offsetof(OLD_PDCDATATYPE, szMainMark) == 17);
static_assert(offsetof(OLD_PDCDATATYPE, szMainOrAcc) == 34);
static_assert(offsetof(OLD_PDCDATATYPE, szPieceMark) == 35);
static_assert(offsetof(OLD_PDCDATATYPE, nValue53) == 52);
static_assert(offsetof(OLD_PDCDATATYPE, nValue57) == 54);
static_assert(offsetof(OLD_PDCDATATYPE, szText61) == 56);
static_assert(offsetof(OLD_PDCDATATYPE, szText72) == 67);
static_assert(offsetof(OLD_PDCDATATYPE, szText79) == 74);
static_assert(offsetof(OLD_PDCDATATYPE, szText86) == 81);
static_assert(offsetof(OLD_PDCDATATYPE, szText102) == 97);
static_assert(offsetof(OLD_PDCDATATYPE, szText118) == 113);
static_assert(offsetof(OLD_PDCDATATYPE, szText134) == 129);

// 1 when the two rows agree, texts compared ignoring case; the trailing four bytes do not count.
TARSEL_API int gIsEqual(const PDCDATATYPE* a, const PDCDATATYPE* b);

class TARSEL_API REPdcDataFile : public RERecordFile<REPdcDataFile, RELayout<PDCDATATYPE, OLD_PDCDATATYPE>> {
public:
    // The keys of the file.
    enum Key : int {
        kKeyRow = 0,           // main mark, second identifier, flag, piece mark
        kKeyMainPiece = 1,     // main mark, piece mark (duplicates)
        kKeyMainFlag = 2,      // main mark, flag, piece mark
        kKeyText72 = 3,
        kKeyText79 = 4,
        kKeyFlagPiece = 5,     // duplicates
        kKeyPiece = 6,         // piece mark (duplicates)
    };

    // Assumes the old layout until a file is opened.
    REPdcDataFile();

    using RERecordFile::m_isOldFormat;
    using RERecordFile::GetEqualMatch;

    static int ResetPdcDataRecArray(std::vector<PDCDATATYPE*>& array) { return ResetRecArray(array); }

    // Every record in key-2 order (main mark, flag, piece mark).
    int GetAllRecords(std::vector<PDCDATATYPE*>& array);
    int GetAllRecords(std::list<PDCDATATYPE*>& list);

    // Inserts the record; the file's keys alone refuse a duplicate.
    using RERecordFile::AddRecord;
    int AddRecord(PDCDATATYPE* rec) { return rec != nullptr ? AddRecord(*rec) : 0; }
    int AddNewRecord(PDCDATATYPE& rec) { return AddRecord(rec); }

    // The row of this main and piece mark (on key 1); `out` may be null.
    int GetEqualMatch(const char* mainMark, const char* pieceMark, PDCDATATYPE* out);
    // The first row at or after this main mark (on key 1).
    int GetGreaterMatch(const char* mainMark, PDCDATATYPE* out);

    int DeleteRecord(PDCDATATYPE& rec);
    // Replaces the stored row equal to `oldRec` (gIsEqual) by `newRec`.
    int UpdateRecord(PDCDATATYPE& oldRec, PDCDATATYPE& newRec);
    // Replaces the row of these marks by `newRec`, whatever it holds.
    int UpdateRecord(const char* mainMark, const char* pieceMark, PDCDATATYPE& newRec);
    int UpdateRecord(const char* mainMark, const char* pieceMark, PDCDATATYPE* newRec);

    // Appends a heap copy of every row of this main mark (case counts); 1 even when none.
    int GetAllSelectedRecords(const char* mainMark, std::vector<PDCDATATYPE*>& array);
    // One entry, the main mark, for each row after the main mark's first row; 1 when any.
    int GetAllPcMarks(const char* mainMark, std::vector<std::string>& marks);
    // The main-mark rows ("M" in either case), as copies or as their main marks; 1 when any.
    int GetAllMainMarks(std::vector<PDCDATATYPE*>& array);
    int GetAllMainMarks(std::vector<std::string>& marks);
    // The main mark of the row of this piece mark; "Invalid" and 0 when there is none.
    int GetMainMarkWRTAccMark(const char* pieceMark, std::string& mainMark);
    // Deletes the accessory rows of this main mark; its main row stays. 1.
    int DeleteAllPcMarks(const char* mainMark);

    // Old layout to current; 1.
    static int _ConvertPdcDataTypeToNewFormat(const OLD_PDCDATATYPE* oldRec, PDCDATATYPE* newRec);
    // Old files are never written in their own layout: succeeds without writing.
    static int _ConvertPdcDataTypeToOldFormat(const PDCDATATYPE* newRec, OLD_PDCDATATYPE* oldRec);

private:
    static const RERecordFileSpec kSpec;

    // Puts the main mark into a key value of `length` bytes, the rest zero, on `key`.
    int _SeekMain(int key, const char* mainMark, size_t length, unsigned op, PDCDATATYPE* found);
    // Sets the key buffer to the two marks back to back on key 1.
    void _SetMainPieceKey(const char* mainMark, const char* pieceMark);
};
