// RELaborMultFactorFile: labor multiplication factors, per factor type ("W" by weight, "Q" by
// quantity) and labor code group a table of factors stepped by an unsigned value. Files of the
// earlier generation (14-byte records) are kept in place.
// A program opens it with Initialize(path) (CreateNewFile first makes an empty file) and reads
// and writes it through the record-file methods of detail/RERecordFile.h and those below.
#pragma once

#include "detail/REKeyedRecordFile.h"
#include "tarsel_export.h"

#include <cstddef>
#include <cstdint>
#include <list>
#include <string>
#include <vector>

#pragma pack(push, 1)
struct LABORMULTFACTORRECORD {
    char sFactorType[2];  // key 0: "W" or "Q"
    char sGroupName[6];   // key 0: labor code group name
    uint32_t nStepValue;  // key 0: the step the factor applies from
    uint8_t factor[4];    // the caller's value, copied unchanged
};

struct OLD_LABORMULTFACTORRECORD {
    char sFactorType[1];
    char sGroupName[5];
    uint32_t nStepValue;
    uint8_t factor[4];
};
#pragma pack(pop)

static_assert(sizeof(LABORMULTFACTORRECORD) == 16);
static_assert(offsetof(LABORMULTFACTORRECORD, sFactorType) == 0);
static_assert(offsetof(LABORMULTFACTORRECORD, sGroupName) == 2);
static_assert(offsetof(LABORMULTFACTORRECORD, nStepValue) == 8);
static_assert(offsetof(LABORMULTFACTORRECORD, factor) == 12);
static_assert(sizeof(OLD_LABORMULTFACTORRECORD) == 14);
static_assert(offsetof(OLD_LABORMULTFACTORRECORD, sGroupName) == 1);
static_assert(offsetof(OLD_LABORMULTFACTORRECORD, nStepValue) == 6);
static_assert(offsetof(OLD_LABORMULTFACTORRECORD, factor) == 10);

class TARSEL_API RELaborMultFactorFile
    : public REKeyedRecordFile<RELaborMultFactorFile, RELayout<LABORMULTFACTORRECORD, OLD_LABORMULTFACTORRECORD>> {
public:
    enum FactorType { Weight = 0, Quantity = 1 };

    RELaborMultFactorFile();

    using REKeyedRecordFile::m_isOldFormat;
    using REKeyedRecordFile::m_searchActive;

    // Key searches with a filter: type and name empty or equal ignoring case, and a step value
    // that differs from the given one (an equal value never matches).
    int SearchFirstRecord(const char* type, const char* name, uint32_t stepValue, LABORMULTFACTORRECORD* rec);
    int SearchNextRecord(const char* type, const char* name, uint32_t stepValue, LABORMULTFACTORRECORD* rec);
    int GetFirstMatchGE(const char* type, const char* name, uint32_t stepValue, LABORMULTFACTORRECORD* rec) {
        return SearchFirstRecord(type, name, stepValue, rec);
    }
    int GetNextMatch(const char* type, const char* name, uint32_t stepValue, LABORMULTFACTORRECORD* rec) {
        return SearchNextRecord(type, name, stepValue, rec);
    }
    // The first record past the key of type, name and value that has the same type and name
    // (exact; an empty one matches any).
    int GetMatchGT(const char* type, const char* name, uint32_t stepValue, LABORMULTFACTORRECORD* rec);

    // The group names of the file, each once (ignoring case), in key order; 1 when there is one.
    int GetXistingLabCodeGrps(std::vector<std::string>& names);
    // The group's factors of the type (Weight: "W", any other: "Q") in ascending step value;
    // 1 when there is one.
    int GetFactorsWRTLabCodeGrp(FactorType factorType, const char* name, std::list<LABORMULTFACTORRECORD*>& list);

    // Adds each record in order; 0 at the first failure. The list stays the caller's.
    int AddRecords(std::list<LABORMULTFACTORRECORD*>& list);
    // Deletes each record in order, 0 at the first failure; the list's records are freed either way.
    int DeleteRecords(std::list<LABORMULTFACTORRECORD*>& list);
    static void DeAllocateRecList(std::list<LABORMULTFACTORRECORD*>& list) { ResetRecList(list); }

    // Add unless the search on the record's key matches (a record of the type and group with
    // another value comes next); delete the record that search reaches when it matches.
    int _AddRecord(const LABORMULTFACTORRECORD& rec);
    int _DeleteRecord(const LABORMULTFACTORRECORD& rec);
    // Index of the first name equal to `name` ignoring case, or -1.
    static int _FindInStrArray(const std::string& name, const std::vector<std::string>& names);

    static int _ConvertToNewRecordFormat(const OLD_LABORMULTFACTORRECORD* oldRec, LABORMULTFACTORRECORD* newRec);
    static int _ConvertToOldRecordFormat(const LABORMULTFACTORRECORD* newRec, OLD_LABORMULTFACTORRECORD* oldRec);

private:
    int _SetSearchKey(const char* type, const char* name, uint32_t stepValue);
    // SearchFirstRecord with the record's own type, name and step value.
    int _SearchOwnKey(const LABORMULTFACTORRECORD& rec);

    static const RERecordFileSpec kSpec;
};
