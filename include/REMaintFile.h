// REMaintFile: the estimating settings (ESTMAINT.dat). Each record is one setting addressed by a
// section, an item and a sequence number, with a generic set of texts and numbers; lists of
// settings fill pick lists, and twelve of them are the steel-mill titles. Files of the earlier
// generation (432-byte records) are read and written in place; callers see the 451-byte record.
// The positional reads walk the file in stored order.
// A program opens it with Initialize(path) (CreateNewFile first makes an empty file) and reads
// and writes it through the record-file methods of detail/RERecordFile.h and those below.
#pragma once

#include "REListControl.h"
#include "detail/RESearchRecordFile.h"
#include "tarsel_export.h"

#include <cstddef>
#include <cstdint>
#include <list>

#pragma pack(push, 1)
// One of the three groups of fields of a setting.
struct MAINTGROUP {
    char szFlag[2];
    char szText2[16];
    char szText18[16];
    int16_t nShort34[3];
    int32_t nValue40[6];
};

struct OLD_MAINTGROUP {
    char szFlag[1];
    char szText2[15];
    char szText18[15];
    int16_t nShort34[3];
    int32_t nValue40[6];
};

struct MAINTRECORD {
    char szSection[21];  // key
    char szItem[21];     // key
    float fSeq;          // key
    char szFlag46[2];
    char szText48[41];
    char szText89[41];
    int16_t nShort130;
    char szValue[41];    // the setting's value text
    MAINTGROUP groupA;
    MAINTGROUP groupB;
    MAINTGROUP groupC;
    char szFlag365[2];
    char szText367[41];
    char szText408[41];
    char szFlag449[2];
};

struct OLD_MAINTRECORD {
    char szSection[20];
    char szItem[20];
    float fSeq;
    char szFlag46[1];
    char szText48[40];
    char szText89[40];
    int16_t nShort130;
    char szValue[40];
    OLD_MAINTGROUP groupA;
    OLD_MAINTGROUP groupB;
    OLD_MAINTGROUP groupC;
    char szFlag365[1];
    char szText367[40];
    char szText408[40];
    char szFlag449[1];
};

// Search keys: zero-filled in the current layout, blank-filled in the old one.
struct MAINTRECORD_KEY {
    char szSection[21];
    char szItem[21];
    float fSeq;
};

struct OLD_MAINTRECORD_KEY {
    char szSection[20];
    char szItem[20];
    float fSeq;
};
#pragma pack(pop)

static_assert(sizeof(MAINTGROUP) == 64);
static_assert(offsetof(MAINTGROUP, szText2) == 2);
static_assert(offsetof(MAINTGROUP, szText18) == 18);
static_assert(offsetof(MAINTGROUP, nShort34) == 34);
static_assert(offsetof(MAINTGROUP, nValue40) == 40);
static_assert(sizeof(OLD_MAINTGROUP) == 61);
static_assert(offsetof(OLD_MAINTGROUP, szText2) == 1);
static_assert(offsetof(OLD_MAINTGROUP, szText18) == 16);
static_assert(offsetof(OLD_MAINTGROUP, nShort34) == 31);
static_assert(offsetof(OLD_MAINTGROUP, nValue40) == 37);

static_assert(sizeof(MAINTRECORD) == 451);
static_assert(offsetof(MAINTRECORD, szItem) == 21);
static_assert(offsetof(MAINTRECORD, fSeq) == 42);
static_assert(offsetof(MAINTRECORD, szFlag46) == 46);
static_assert(offsetof(MAINTRECORD, szText48) == 48);
static_assert(offsetof(MAINTRECORD, szText89) == 89);
static_assert(offsetof(MAINTRECORD, nShort130) == 130);
static_assert(offsetof(MAINTRECORD, szValue) == 132);
static_assert(offsetof(MAINTRECORD, groupA) == 173);
static_assert(offsetof(MAINTRECORD, groupB) == 237);
static_assert(offsetof(MAINTRECORD, groupC) == 301);
static_assert(offsetof(MAINTRECORD, szFlag365) == 365);
static_assert(offsetof(MAINTRECORD, szText367) == 367);
static_assert(offsetof(MAINTRECORD, szText408) == 408);
static_assert(offsetof(MAINTRECORD, szFlag449) == 449);

static_assert(sizeof(OLD_MAINTRECORD) == 432);
static_assert(offsetof(OLD_MAINTRECORD, szItem) == 20);
static_assert(offsetof(OLD_MAINTRECORD, fSeq) == 40);
static_assert(offsetof(OLD_MAINTRECORD, szFlag46) == 44);
static_assert(offsetof(OLD_MAINTRECORD, szText48) == 45);
static_assert(offsetof(OLD_MAINTRECORD, szText89) == 85);
static_assert(offsetof(OLD_MAINTRECORD, nShort130) == 125);
static_assert(offsetof(OLD_MAINTRECORD, szValue) == 127);
static_assert(offsetof(OLD_MAINTRECORD, groupA) == 167);
static_assert(offsetof(OLD_MAINTRECORD, groupB) == 228);
static_assert(offsetof(OLD_MAINTRECORD, groupC) == 289);
static_assert(offsetof(OLD_MAINTRECORD, szFlag365) == 350);
static_assert(offsetof(OLD_MAINTRECORD, szText367) == 351);
static_assert(offsetof(OLD_MAINTRECORD, szText408) == 391);
static_assert(offsetof(OLD_MAINTRECORD, szFlag449) == 431);

static_assert(sizeof(MAINTRECORD_KEY) == 46);
static_assert(offsetof(MAINTRECORD_KEY, fSeq) == 42);
static_assert(sizeof(OLD_MAINTRECORD_KEY) == 44);
static_assert(offsetof(OLD_MAINTRECORD_KEY, fSeq) == 40);

class TARSEL_API REMaintFile
    : public RESearchRecordFile<REMaintFile, RELayout<MAINTRECORD, OLD_MAINTRECORD>, false> {
public:
    // Length of one steel-mill title and number of titles GetMillTitles gives.
    static constexpr int kMillTitleSize = 41;
    static constexpr int kMillTitleCount = 12;

    REMaintFile();

    using RESearchRecordFile::m_isOldFormat;
    using RESearchRecordFile::m_searchActive;

    static int ResetMaintRecList(std::list<MAINTRECORD*>& list) { return ResetRecList(list); }

    // Reads by the full key: equal, at or before, and after `keyRec`'s key (`rec` is zeroed first).
    int GetExactMatch(const char* section, const char* item, float seq, MAINTRECORD* rec);
    int GetMatchLE(const char* section, const char* item, float seq, MAINTRECORD* rec);
    int GetMatchGT(const MAINTRECORD* keyRec, MAINTRECORD* rec);

    // The settings of a section: the section is compared without regard to case, an empty item
    // matches any item, a negative sequence any sequence (else within 0.0001). The first search
    // starts at the key; the next one reads on in key order; a record that fails ends it.
    int SearchFirstRecord(const char* section, const char* item, float seq, MAINTRECORD* rec);
    int SearchNextRecord(const char* section, const char* item, float seq, MAINTRECORD* rec);
    int GetFirstMatch(const char* section, const char* item, MAINTRECORD* rec) {
        return SearchFirstRecord(section, item, -1.0f, rec);
    }
    int GetNextMatch(const char* section, const char* item, MAINTRECORD* rec) {
        return SearchNextRecord(section, item, -1.0f, rec);
    }
    int GetFirstMatch(const char* section, const char* item, float seq, MAINTRECORD* rec) {
        return SearchFirstRecord(section, item, seq, rec);
    }
    int GetNextMatch(const char* section, const char* item, float seq, MAINTRECORD* rec) {
        return SearchNextRecord(section, item, seq, rec);
    }
    int _CheckRecord(const char* section, const char* item, float seq, const MAINTRECORD* rec) const;

    // Adds the value text of every setting of the section and item; 0 when there is none.
    int FillComboWithValue(const char* section, const char* item, REListControl* combo);
    // Appends heap copies of every setting of the section and item; 0 when there is none.
    int GetMatchList(const char* section, const char* item, std::list<MAINTRECORD*>& list);
    // The twelve steel-mill titles, kMillTitleSize characters each, into `titles`
    // (kMillTitleCount * kMillTitleSize bytes): structural, angle, plate and tube, three each. A
    // missing setting repeats the title before it. 1.
    int GetMillTitles(char* titles);

    // Rewrites the setting with `rec`'s key. A refused update shows the file's message; 0.
    int UpdateRecord(MAINTRECORD& rec);

    static int _ConvertToNewRecordFormat(const OLD_MAINTRECORD* oldRec, MAINTRECORD* newRec);
    static int _ConvertToOldRecordFormat(const MAINTRECORD* newRec, OLD_MAINTRECORD* oldRec);

private:
    // Puts the search key of the file's layout into the key buffer, on key 0.
    void _SetKey(const char* section, const char* item, float seq);
    // A keyed read into `rec` (or a local record); `rec` is only written on success.
    int _Read(unsigned op, MAINTRECORD* rec);

    static const RERecordFileSpec kSpec;
};
