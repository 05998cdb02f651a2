// REJobFile: the item lines of one estimating job, one ESTJOBFILERECORD per line, keyed by two
// codes, a page number and a line number. Files of the earlier generation (516-byte records)
// are read and written in place in their own layout; callers always see the 606-byte record.
// A program opens it with Initialize(path) (CreateNewFile first makes an empty file) and reads
// and writes it through the record-file methods of detail/RERecordFile.h and those below.
#pragma once

#include "OPERATIONTYPE.h"
#include "SIZEDATKEYREC.h"
#include "detail/RERecordFile.h"
#include "tarsel_export.h"

#include <cstddef>
#include <cstdint>
#include <list>
#include <vector>

#pragma pack(push, 1)
struct ESTJOBFILERECORD {
    char sCode1[5];   // first key code
    char sCode2[26];  // second key code
    int32_t nPageNo;  // key
    int32_t nLineNo;  // key: line within the page
    int32_t nValue39;
    SIZEDATKEYREC sizeKey;
    char sText124[11];
    char sText135[7];
    int16_t nShort142[6];
    int32_t nValue154;
    int32_t nValue158;
    char sText162[4];
    char sText166[7];
    char sText173[7];
    char sText180[2];
    char sText182[9];
    int32_t nValue191;
    int32_t nValue195;
    char sText199[2];
    OPERATIONTYPE operations[15];
    uint8_t reserved576[26];
    int32_t nValue602;  // zero in records converted from the old layout
};

struct OLD_ESTJOBFILERECORD {
    char sCode1[4];
    char sCode2[25];
    int32_t nPageNo;
    int32_t nLineNo;
    int32_t nValue39;
    OLD_SIZEDATKEYREC sizeKey;
    char sText124[10];
    char sText135[6];
    int16_t nShort142[6];
    int32_t nValue154;
    int32_t nValue158;
    char sText162[3];
    char sText166[6];
    char sText173[6];
    char sText180[1];
    char sText182[8];
    int32_t nValue191;
    int32_t nValue195;
    char sText199[1];
    OLD_OPERATIONTYPE operations[15];
};

// Search keys of key 0: zero-filled in the new layout, blank-filled in the old one.
struct ESTJOBFILERECORD_KEY {
    char sCode1[5];
    char sCode2[26];
    int32_t nPageNo;
    int32_t nLineNo;
};

struct OLD_ESTJOBFILERECORD_KEY {
    char sCode1[4];
    char sCode2[25];
    int32_t nPageNo;
    int32_t nLineNo;
};
#pragma pack(pop)

static_assert(sizeof(ESTJOBFILERECORD) == 606);
static_assert(offsetof(ESTJOBFILERECORD, sCode1) == 0);
static_assert(offsetof(ESTJOBFILERECORD, sCode2) == 5);
static_assert(offsetof(ESTJOBFILERECORD, nPageNo) == 31);
static_assert(offsetof(ESTJOBFILERECORD, nLineNo) == 35);
static_assert(offsetof(ESTJOBFILERECORD, nValue39) == 39);
static_assert(offsetof(ESTJOBFILERECORD, sizeKey) == 43);
static_assert(offsetof(ESTJOBFILERECORD, sText124) == 124);
static_assert(offsetof(ESTJOBFILERECORD, sText135) == 135);
static_assert(offsetof(ESTJOBFILERECORD, nShort142) == 142);
static_assert(offsetof(ESTJOBFILERECORD, nValue154) == 154);
static_assert(offsetof(ESTJOBFILERECORD, nValue158) == 158);
static_assert(offsetof(ESTJOBFILERECORD, sText162) == 162);
static_assert(offsetof(ESTJOBFILERECORD, sText166) == 166);
static_assert(offsetof(ESTJOBFILERECORD, sText173) == 173);
static_assert(offsetof(ESTJOBFILERECORD, sText180) == 180);
static_assert(offsetof(ESTJOBFILERECORD, sText182) == 182);
static_assert(offsetof(ESTJOBFILERECORD, nValue191) == 191);
static_assert(offsetof(ESTJOBFILERECORD, nValue195) == 195);
static_assert(offsetof(ESTJOBFILERECORD, sText199) == 199);
static_assert(offsetof(ESTJOBFILERECORD, operations) == 201);
static_assert(offsetof(ESTJOBFILERECORD, reserved576) == 576);
static_assert(offsetof(ESTJOBFILERECORD, nValue602) == 602);

static_assert(sizeof(OLD_ESTJOBFILERECORD) == 516);
static_assert(offsetof(OLD_ESTJOBFILERECORD, sCode1) == 0);
static_assert(offsetof(OLD_ESTJOBFILERECORD, sCode2) == 4);
static_assert(offsetof(OLD_ESTJOBFILERECORD, nPageNo) == 29);
static_assert(offsetof(OLD_ESTJOBFILERECORD, nLineNo) == 33);
static_assert(offsetof(OLD_ESTJOBFILERECORD, nValue39) == 37);
static_assert(offsetof(OLD_ESTJOBFILERECORD, sizeKey) == 41);
static_assert(offsetof(OLD_ESTJOBFILERECORD, sText124) == 117);
static_assert(offsetof(OLD_ESTJOBFILERECORD, sText135) == 127);
static_assert(offsetof(OLD_ESTJOBFILERECORD, nShort142) == 133);
static_assert(offsetof(OLD_ESTJOBFILERECORD, nValue154) == 145);
static_assert(offsetof(OLD_ESTJOBFILERECORD, nValue158) == 149);
static_assert(offsetof(OLD_ESTJOBFILERECORD, sText162) == 153);
static_assert(offsetof(OLD_ESTJOBFILERECORD, sText166) == 156);
static_assert(offsetof(OLD_ESTJOBFILERECORD, sText173) == 162);
static_assert(offsetof(OLD_ESTJOBFILERECORD, sText180) == 168);
static_assert(offsetof(OLD_ESTJOBFILERECORD, sText182) == 169);
static_assert(offsetof(OLD_ESTJOBFILERECORD, nValue191) == 177);
static_assert(offsetof(OLD_ESTJOBFILERECORD, nValue195) == 181);
static_assert(offsetof(OLD_ESTJOBFILERECORD, sText199) == 185);
static_assert(offsetof(OLD_ESTJOBFILERECORD, operations) == 186);

static_assert(sizeof(ESTJOBFILERECORD_KEY) == 39);
static_assert(offsetof(ESTJOBFILERECORD_KEY, sCode2) == 5);
static_assert(offsetof(ESTJOBFILERECORD_KEY, nPageNo) == 31);
static_assert(offsetof(ESTJOBFILERECORD_KEY, nLineNo) == 35);
static_assert(sizeof(OLD_ESTJOBFILERECORD_KEY) == 37);
static_assert(offsetof(OLD_ESTJOBFILERECORD_KEY, sCode2) == 4);
static_assert(offsetof(OLD_ESTJOBFILERECORD_KEY, nPageNo) == 29);
static_assert(offsetof(OLD_ESTJOBFILERECORD_KEY, nLineNo) == 33);

class TARSEL_API REJobFile : public RERecordFile<REJobFile, RELayout<ESTJOBFILERECORD, OLD_ESTJOBFILERECORD>> {
public:
    REJobFile();

    // 1 while the open file has the 516-byte layout (also before the first open); 1 while a key
    // search runs, 0 after one found nothing. Readable by callers like the base's state.
    using RERecordFile::m_isOldFormat;
    using RERecordFile::m_searchActive;

    static int ResetJobRecList(std::list<ESTJOBFILERECORD*>& list) { return ResetRecList(list); }
    static int ResetJobRecArray(std::vector<ESTJOBFILERECORD*>& array) { return ResetRecArray(array); }

    // Key searches with a filter. The filter lets an empty (or null) code match any code and a
    // negative page or line any number. The first search reads by Get Greater or Equal from the
    // key built from the arguments, whose page and line segments are unsigned: a negative number
    // counts there as one of the largest, so the search starts past every record of the given
    // codes (for a negative line: of the given codes and page). A negative number therefore
    // works as "any" only behind a code left empty: ("A", "", -1, -1) walks every record of
    // code "A", ("", "", 1, -1) starts at the first record and walks while the page is 1, but
    // ("A", "BEAM", -1, -1) and ("A", "BEAM", 1, -1) find nothing. The next search moves on in
    // key order; the first record that fails the filter ends the search (0).
    int SearchFirstRecord(const char* code1, const char* code2, int pageNo, int lineNo, ESTJOBFILERECORD* rec);
    int SearchNextRecord(const char* code1, const char* code2, int pageNo, int lineNo, ESTJOBFILERECORD* rec);
    // The record at or before the key, without filter.
    int SearchFirstMatchLE(const char* code1, const char* code2, int pageNo, int lineNo, ESTJOBFILERECORD* rec);

    int DeleteRecord(ESTJOBFILERECORD& rec);
    // Deletes the first record, in key order, with this page and line under any codes.
    int DeleteRecord(int pageNo, int lineNo);
    // Replaces the record with `keyRec`'s key by `newRec` (whose key may differ).
    int UpdateRecord(ESTJOBFILERECORD& keyRec, ESTJOBFILERECORD& newRec);
    int UpdateRecord(const char* code1, const char* code2, int pageNo, int lineNo, ESTJOBFILERECORD& newRec);

    // Field-by-field conversions between the 516-byte and the 606-byte layouts. 1.
    static int _ConvertToNewRecordFormat(const OLD_ESTJOBFILERECORD* oldRec, ESTJOBFILERECORD* newRec);
    static int _ConvertToOldRecordFormat(const ESTJOBFILERECORD* newRec, OLD_ESTJOBFILERECORD* oldRec);

    // Get Greater or Equal on the key buffer as it stands; in a 516-byte file a given old-form
    // key is put into the key buffer first.
    int _GetFirstMatchGE(OLD_ESTJOBFILERECORD_KEY* key, ESTJOBFILERECORD* rec);
    // Builds the old-form (blank-filled) search key; 1.
    int _CreateKey(const char* code1, const char* code2, int pageNo, int lineNo, OLD_ESTJOBFILERECORD_KEY* key);
    // The search filter: 1 when the record passes every non-wildcard argument.
    int _CheckRecord(const char* code1, const char* code2, int pageNo, int lineNo, const ESTJOBFILERECORD* rec);
    // The greatest page number in the file, 0 when it is empty.
    int _GetMaxPageNo();

    // The record-file hooks: AddRecord's duplicate search on the record's own key, and the page
    // renumbering of appended records.
    int _FindDuplicateRecord(const ESTJOBFILERECORD& rec);
    bool _AdjustCopied(ESTJOBFILERECORD& rec);

protected:
    void _BeginCopy(int srcIsOld) override;

private:
    int _SetSearchKey(const char* code1, const char* code2, int pageNo, int lineNo);


    static const RERecordFileSpec kSpec;
    int32_t m_appendPageOffset;  // added to the page numbers of appended records
};
