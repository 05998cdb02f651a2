// RELaborGroupFile: the numbered groups of each labor code group, one LABORGROUPRECORD per group
// with a short description. Files of the earlier generation (17-byte records) are kept in place.
// A program opens it with Initialize(path) (CreateNewFile first makes an empty file) and reads
// and writes it through the record-file methods of detail/RERecordFile.h and those below.
#pragma once

#include "detail/REKeyedRecordFile.h"
#include "tarsel_export.h"

#include <cstddef>
#include <cstdint>

#pragma pack(push, 1)
struct LABORGROUPRECORD {
    char sGroupName[6];  // key 0: labor code group name
    int16_t nGroupNo;    // key 0: group number
    char sDescription[11];
};

struct OLD_LABORGROUPRECORD {
    char sGroupName[5];
    int16_t nGroupNo;
    char sDescription[10];
};
#pragma pack(pop)

static_assert(sizeof(LABORGROUPRECORD) == 19);
static_assert(offsetof(LABORGROUPRECORD, sGroupName) == 0);
static_assert(offsetof(LABORGROUPRECORD, nGroupNo) == 6);
static_assert(offsetof(LABORGROUPRECORD, sDescription) == 8);
static_assert(sizeof(OLD_LABORGROUPRECORD) == 17);
static_assert(offsetof(OLD_LABORGROUPRECORD, nGroupNo) == 5);
static_assert(offsetof(OLD_LABORGROUPRECORD, sDescription) == 7);

class TARSEL_API RELaborGroupFile
    : public REKeyedRecordFile<RELaborGroupFile, RELayout<LABORGROUPRECORD, OLD_LABORGROUPRECORD>> {
public:
    RELaborGroupFile();

    using REKeyedRecordFile::m_isOldFormat;
    using REKeyedRecordFile::m_searchActive;

    // Key searches with a filter: an empty name matches any name (ignoring case otherwise), a
    // negative number any number.
    int SearchFirstRecord(const char* name, int groupNo, LABORGROUPRECORD* rec);
    // The same with an empty name: it starts at the first record of the file.
    int SearchFirstRecord(int groupNo, LABORGROUPRECORD* rec) { return SearchFirstRecord("", groupNo, rec); }
    int SearchNextRecord(const char* name, int groupNo, LABORGROUPRECORD* rec);
    int GetFirstMatchGE(const char* name, int groupNo, LABORGROUPRECORD* rec) {
        return SearchFirstRecord(name, groupNo, rec);
    }
    int GetNextMatch(const char* name, int groupNo, LABORGROUPRECORD* rec) {
        return SearchNextRecord(name, groupNo, rec);
    }

    // Replaces the description (cut to its 10 characters) of the record SearchFirstRecord(groupNo)
    // finds; 0 when none is found or the update fails.
    int ModifyDescription(int groupNo, const char* text);

    // Update of the record the last search reached.
    int _UpdateRecord(const LABORGROUPRECORD& rec) { return _UpdateCurrent(&rec); }

    static int _ConvertToNewRecordFormat(const OLD_LABORGROUPRECORD* oldRec, LABORGROUPRECORD* newRec);
    static int _ConvertToOldRecordFormat(const LABORGROUPRECORD* newRec, OLD_LABORGROUPRECORD* oldRec);

private:
    static const RERecordFileSpec kSpec;
};
