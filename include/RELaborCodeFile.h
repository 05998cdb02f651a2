// RELaborCodeFile: the labor standards, one LABORCODERECORD per labor code group and sub-code,
// with a description and two tables of 100 values. Read and written a group at a time. Files of
// the earlier generation (441-byte records, blank-padded texts) are read and written in place.
// A program opens it with Initialize(path) (CreateNewFile first makes an empty file) and reads
// and writes it through the record-file methods of detail/RERecordFile.h and those below.
#pragma once

#include "detail/REKeyedRecordFile.h"
#include "tarsel_export.h"

#include <cstddef>
#include <cstdint>
#include <list>

#pragma pack(push, 1)
struct LABORCODERECORD {
    char sGroupName[6];    // key 0: labor code group name
    char sSubCode[7];      // key 0: sub-code
    char sDescription[31];
    int16_t nTable1[100];  // the code's standard values, stored as given
    int16_t nTable2[100];
};

struct OLD_LABORCODERECORD {
    char sGroupName[5];
    char sSubCode[6];
    char sDescription[30];
    int16_t nTable1[100];
    int16_t nTable2[100];
};
#pragma pack(pop)

static_assert(sizeof(LABORCODERECORD) == 444);
static_assert(offsetof(LABORCODERECORD, sGroupName) == 0);
static_assert(offsetof(LABORCODERECORD, sSubCode) == 6);
static_assert(offsetof(LABORCODERECORD, sDescription) == 13);
static_assert(offsetof(LABORCODERECORD, nTable1) == 44);
static_assert(offsetof(LABORCODERECORD, nTable2) == 244);
static_assert(sizeof(OLD_LABORCODERECORD) == 441);
static_assert(offsetof(OLD_LABORCODERECORD, sSubCode) == 5);
static_assert(offsetof(OLD_LABORCODERECORD, sDescription) == 11);
static_assert(offsetof(OLD_LABORCODERECORD, nTable1) == 41);
static_assert(offsetof(OLD_LABORCODERECORD, nTable2) == 241);

class TARSEL_API RELaborCodeFile
    : public REKeyedRecordFile<RELaborCodeFile, RELayout<LABORCODERECORD, OLD_LABORCODERECORD>> {
public:
    RELaborCodeFile();

    using REKeyedRecordFile::m_isOldFormat;
    using REKeyedRecordFile::m_searchActive;

    // Key searches with a filter: an empty group name matches any record (the sub-code is then
    // not compared), a null sub-code any sub-code; names and sub-codes compare ignoring case.
    // The first search starts at the key built from the arguments; the next moves on in key order.
    int SearchFirstRecord(const char* groupName, const char* subCode, LABORCODERECORD* rec);
    int SearchNextRecord(const char* groupName, const char* subCode, LABORCODERECORD* rec);
    int GetFirstMatchGE(const char* groupName, const char* subCode, LABORCODERECORD* rec) {
        return SearchFirstRecord(groupName, subCode, rec);
    }
    int GetNextMatch(const char* groupName, const char* subCode, LABORCODERECORD* rec) {
        return SearchNextRecord(groupName, subCode, rec);
    }

    // Appends heap copies of the group's records in key order; 1.
    int GetRecordList(const char* groupName, std::list<LABORCODERECORD*>& list);
    // Replaces the group's records by the list's. 0 when a record of the group cannot be
    // deleted, or at the first list record of another group or that cannot be added (the group
    // is then partly written).
    int SaveRecordList(const char* groupName, std::list<LABORCODERECORD*>& list);
    static void DeallocateRecList(std::list<LABORCODERECORD*>& list) { ResetRecList(list); }

    // Writes by the record's own key: add refuses a key that exists, update and delete one that
    // does not.
    int _AddRecord(const LABORCODERECORD& rec);
    int _UpdateRecord(const LABORCODERECORD& rec);
    int _DeleteRecord(const LABORCODERECORD& rec);

    static int _ConvertToNewRecordFormat(const OLD_LABORCODERECORD* oldRec, LABORCODERECORD* newRec);
    static int _ConvertToOldRecordFormat(const LABORCODERECORD* newRec, OLD_LABORCODERECORD* oldRec);

    // The duplicate search of AddRecord: the record's group name and sub-code.
    int _FindDuplicateRecord(const LABORCODERECORD& rec);

private:
    static const RERecordFileSpec kSpec;
};
