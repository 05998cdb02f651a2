// RELaborCodeDescFile: the operation codes of each labor code group, one LABOROPDESCRECORD per
// operation with its group and extrapolation values, a description and a flag. Read and written
// a group at a time; files of the earlier generation (42-byte records) are kept in place.
// A program opens it with Initialize(path) (CreateNewFile first makes an empty file) and reads
// and writes it through the record-file methods of detail/RERecordFile.h and those below.
#pragma once

#include "detail/REKeyedRecordFile.h"
#include "tarsel_export.h"

#include <cstddef>
#include <cstdint>
#include <list>
#include <string>

#pragma pack(push, 1)
struct LABOROPDESCRECORD {
    char sGroupName[6];      // key 0: labor code group name
    int16_t nOpCodeNo;       // key 0: operation code number
    int16_t nGroup;          // valid when 1 or more
    int16_t nExtrapolation;  // valid when 1 or more
    char sDescription[31];
    char sFlag[2];
};

struct OLD_LABOROPDESCRECORD {
    char sGroupName[5];
    int16_t nOpCodeNo;
    int16_t nGroup;
    int16_t nExtrapolation;
    char sDescription[30];
    char sFlag[1];
};
#pragma pack(pop)

static_assert(sizeof(LABOROPDESCRECORD) == 45);
static_assert(offsetof(LABOROPDESCRECORD, sGroupName) == 0);
static_assert(offsetof(LABOROPDESCRECORD, nOpCodeNo) == 6);
static_assert(offsetof(LABOROPDESCRECORD, nGroup) == 8);
static_assert(offsetof(LABOROPDESCRECORD, nExtrapolation) == 10);
static_assert(offsetof(LABOROPDESCRECORD, sDescription) == 12);
static_assert(offsetof(LABOROPDESCRECORD, sFlag) == 43);
static_assert(sizeof(OLD_LABOROPDESCRECORD) == 42);
static_assert(offsetof(OLD_LABOROPDESCRECORD, nOpCodeNo) == 5);
static_assert(offsetof(OLD_LABOROPDESCRECORD, nGroup) == 7);
static_assert(offsetof(OLD_LABOROPDESCRECORD, nExtrapolation) == 9);
static_assert(offsetof(OLD_LABOROPDESCRECORD, sDescription) == 11);
static_assert(offsetof(OLD_LABOROPDESCRECORD, sFlag) == 41);

class TARSEL_API RELaborCodeDescFile
    : public REKeyedRecordFile<RELaborCodeDescFile, RELayout<LABOROPDESCRECORD, OLD_LABOROPDESCRECORD>> {
public:
    RELaborCodeDescFile();

    using REKeyedRecordFile::m_isOldFormat;
    using REKeyedRecordFile::m_searchActive;
    using REKeyedRecordFile::AddRecord;

    // Key searches with a filter: an empty group name matches any group, a negative operation
    // number any operation; names compare ignoring case.
    int SearchFirstRecord(const char* groupName, int operationNo, LABOROPDESCRECORD* rec);
    int SearchNextRecord(const char* groupName, int operationNo, LABOROPDESCRECORD* rec);
    int GetFirstMatchGE(const char* groupName, int operationNo, LABOROPDESCRECORD* rec) {
        return SearchFirstRecord(groupName, operationNo, rec);
    }
    int GetNextMatch(const char* groupName, int operationNo, LABOROPDESCRECORD* rec) {
        return SearchNextRecord(groupName, operationNo, rec);
    }
    // The first record past a key of the blank-filled group name and the number (1 or more; else
    // the end of the group), unfiltered: with no number, the first record of the next group.
    int GetNextMatchGT(const char* groupName, int operationNo, LABOROPDESCRECORD* rec);

    // The group names of the file in key order, into an empty list; 1 when there is one.
    int GetLabCodeGrpNames(std::list<std::string>& names);
    // The group's records, into an empty list (else 0). An invalid record is reported with its
    // position in the list and its group and extrapolation are raised to 1. 1.
    int GetRecordListWRTLabCodeGrp(const char* groupName, std::list<LABOROPDESCRECORD*>& list);

    // Each record in order; 0 at the first that fails.
    int AddRecord(std::list<LABOROPDESCRECORD*>& list);
    int UpdateRecord(std::list<LABOROPDESCRECORD*>& list);
    int DeleteRecord(std::list<LABOROPDESCRECORD*>& list);
    // Deletes every record of the group.
    int DeleteRecord(const char* groupName);

    // Writes by the record's own key. Add and delete refuse an invalid record; add refuses a key
    // that exists, update and delete one that does not.
    int _AddRecord(const LABOROPDESCRECORD& rec);
    int _UpdateRecord(const LABOROPDESCRECORD& rec);
    int _DeleteRecord(const LABOROPDESCRECORD& rec);
    // 1 when the operation number is above 0 and group and extrapolation are 1 or more.
    static int _CheckRecordContent(const LABOROPDESCRECORD& rec);

    static int _ConvertToNewRecordFormat(const OLD_LABOROPDESCRECORD* oldRec, LABOROPDESCRECORD* newRec);
    static int _ConvertToOldRecordFormat(const LABOROPDESCRECORD* newRec, OLD_LABOROPDESCRECORD* oldRec);

    // The duplicate search of AddRecord: the record's group name and operation number.
    int _FindDuplicateRecord(const LABOROPDESCRECORD& rec);

private:
    // Applies `write` to each record in order; 0 at the first failure.
    template <class Write>
    int _EachRecord(std::list<LABOROPDESCRECORD*>& list, Write write);

    static const RERecordFileSpec kSpec;
};
