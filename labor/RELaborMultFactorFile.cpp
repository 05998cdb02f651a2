// The labor multiplication factor file: its record-file settings and conversions, the key searches
// (the filtered one, whose equal step value never matches, and the one past a key), and the
// factor tables of a group read in ascending step value.
#include "RELaborMultFactorFile.h"
#include "labor/LaborGroupTraits.h"

#include "REErrorMessages.h"

#include <cctype>
#include <cstdlib>
#include <cstring>

namespace {

// Least difference of step values that counts as "another value".
constexpr double kStepTolerance = 0.0001;

// The filter of the searches: type and name empty or equal ignoring case, and a step value that
// differs from the record's. The difference is taken in unsigned arithmetic, so a larger record
// value wraps round to a large positive difference and matches too.
bool FactorMatches(const char* type, const char* name, uint32_t stepValue, const LABORMULTFACTORRECORD& rec) {
    return detail::RETextMatchesNoCase(type, rec.sFactorType, sizeof rec.sFactorType) &&
           detail::RETextMatchesNoCase(name, rec.sGroupName, sizeof rec.sGroupName) &&
           static_cast<double>(static_cast<uint32_t>(stepValue - rec.nStepValue)) > kStepTolerance;
}

// Exact filter of a text: empty matches any, else equal bytes.
bool SameText(const char* wanted, const char* field, size_t width) {
    const size_t length = wanted != nullptr ? std::strlen(wanted) : 0;
    return length == 0 || (strnlen(field, width) == length && std::memcmp(wanted, field, length) == 0);
}

std::string GroupName(const LABORMULTFACTORRECORD& rec) {
    return std::string(rec.sGroupName, strnlen(rec.sGroupName, sizeof rec.sGroupName));
}

}  // namespace

const RERecordFileSpec RELaborMultFactorFile::kSpec = REMakeSpec<LaborMultFactorTraits, RELaborMultFactorFile>();

RELaborMultFactorFile::RELaborMultFactorFile() : REKeyedRecordFile(kSpec) {}

int RELaborMultFactorFile::_ConvertToNewRecordFormat(const OLD_LABORMULTFACTORRECORD* oldRec,
                                                     LABORMULTFACTORRECORD* newRec) {
    return REConvertToNew(LaborMultFactorTraits::kFieldTable, oldRec, newRec);
}

int RELaborMultFactorFile::_ConvertToOldRecordFormat(const LABORMULTFACTORRECORD* newRec,
                                                     OLD_LABORMULTFACTORRECORD* oldRec) {
    return REConvertToOld(LaborMultFactorTraits::kFieldTable, newRec, oldRec);
}

// Key 0 in the file's layout: type and name zero-filled in a new file, blank-filled in an old one.
int RELaborMultFactorFile::_SetSearchKey(const char* type, const char* name, uint32_t stepValue) {
    LABORMULTFACTORRECORD key{};
    detail::REPutText(key.sFactorType, sizeof key.sFactorType, type);
    detail::REPutText(key.sGroupName, sizeof key.sGroupName, name);
    key.nStepValue = stepValue;
    _SetRecordKey(key, LaborMultFactorTraits::kKeyLength, LaborMultFactorTraits::kOldKeyLength);
    return 1;
}

int RELaborMultFactorFile::SearchFirstRecord(const char* type, const char* name, uint32_t stepValue,
                                             LABORMULTFACTORRECORD* rec) {
    _SetSearchKey(type, name, stepValue);
    return _SearchStep(kOpGetGreaterOrEqual, true, rec, [&](const LABORMULTFACTORRECORD& found) {
        return FactorMatches(type, name, stepValue, found);
    });
}

int RELaborMultFactorFile::SearchNextRecord(const char* type, const char* name, uint32_t stepValue,
                                            LABORMULTFACTORRECORD* rec) {
    return _SearchStep(kOpGetNext, false, rec, [&](const LABORMULTFACTORRECORD& found) {
        return FactorMatches(type, name, stepValue, found);
    });
}

int RELaborMultFactorFile::GetMatchGT(const char* type, const char* name, uint32_t stepValue,
                                      LABORMULTFACTORRECORD* rec) {
    _SetSearchKey(type, name, stepValue);
    return _SearchStep(kOpGetGreater, true, rec, [&](const LABORMULTFACTORRECORD& found) {
        return SameText(type, found.sFactorType, sizeof found.sFactorType) &&
               SameText(name, found.sGroupName, sizeof found.sGroupName);
    });
}

int RELaborMultFactorFile::GetXistingLabCodeGrps(std::vector<std::string>& names) {
    LABORMULTFACTORRECORD rec;
    for (int found = GetFirstRecord(&rec); found; found = GetNextRecord(&rec)) {
        const std::string name = GroupName(rec);
        if (!name.empty() && _FindInStrArray(name, names) < 0)
            names.push_back(name);
    }
    return names.empty() ? 0 : 1;
}

int RELaborMultFactorFile::GetFactorsWRTLabCodeGrp(FactorType factorType, const char* name,
                                                   std::list<LABORMULTFACTORRECORD*>& list) {
    const char* type = factorType == Weight ? LaborMultFactorTraits::kWeightType : LaborMultFactorTraits::kQuantityType;
    LABORMULTFACTORRECORD rec;
    for (uint32_t value = 0; GetMatchGT(type, name, value, &rec); value = rec.nStepValue) {
        auto* copy = static_cast<LABORMULTFACTORRECORD*>(std::malloc(sizeof rec));
        std::memcpy(copy, &rec, sizeof rec);
        list.push_back(copy);
    }
    return list.empty() ? 0 : 1;
}

int RELaborMultFactorFile::AddRecords(std::list<LABORMULTFACTORRECORD*>& list) {
    for (const LABORMULTFACTORRECORD* rec : list) {
        if (!_AddRecord(*rec))
            return 0;
    }
    return 1;
}

int RELaborMultFactorFile::DeleteRecords(std::list<LABORMULTFACTORRECORD*>& list) {
    int deleted = 1;
    for (const LABORMULTFACTORRECORD* rec : list) {
        if (!_DeleteRecord(*rec)) {
            deleted = 0;
            break;
        }
    }
    DeAllocateRecList(list);
    return deleted;
}

int RELaborMultFactorFile::_SearchOwnKey(const LABORMULTFACTORRECORD& rec) {
    const std::string name = GroupName(rec);
    const std::string type(rec.sFactorType, strnlen(rec.sFactorType, sizeof rec.sFactorType));
    return SearchFirstRecord(type.c_str(), name.c_str(), rec.nStepValue, nullptr);
}

int RELaborMultFactorFile::_AddRecord(const LABORMULTFACTORRECORD& rec) {
    if (_SearchOwnKey(rec))
        return 0;
    // The insert is judged like a read: a refusal (a duplicate key among them) is reported.
    const int16_t status = _WriteStatus(kOpInsert, rec);
    if (status != kStatusSuccess)
        ShowErrorMessage(LaborMultFactorTraits::kMessages.unknownError, status);
    return status == kStatusSuccess ? 1 : 0;
}

int RELaborMultFactorFile::_DeleteRecord(const LABORMULTFACTORRECORD& rec) {
    return _SearchOwnKey(rec) && _DeleteCurrent();
}

int RELaborMultFactorFile::_FindInStrArray(const std::string& name, const std::vector<std::string>& names) {
    for (size_t i = 0; i < names.size(); ++i) {
        if (detail::RETextEqualsNoCase(name.c_str(), names[i].c_str(), names[i].size()))
            return static_cast<int>(i);
    }
    return -1;
}
