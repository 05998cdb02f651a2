// The labor code file: its record-file settings and conversions, the key searches with their filter,
// and the group-wise read and replacement of records.
#include "RELaborCodeFile.h"
#include "labor/KeyedWrites.h"
#include "labor/LaborCodeTraits.h"

#include <cstdlib>
#include <cstring>

namespace {

// The search filter: the group name (empty matches any record, and then the sub-code is not
// compared) and the sub-code (null matches any), both ignoring case.
bool CodeMatches(const char* groupName, const char* subCode, const LABORCODERECORD& rec) {
    if (!detail::RETextMatchesNoCase(groupName, rec.sGroupName, sizeof rec.sGroupName))
        return false;
    const bool anyName = groupName == nullptr || groupName[0] == '\0';
    return subCode == nullptr || anyName || detail::RETextEqualsNoCase(subCode, rec.sSubCode, sizeof rec.sSubCode);
}

}  // namespace

const RERecordFileSpec RELaborCodeFile::kSpec = REMakeSpec<LaborCodeTraits, RELaborCodeFile>();

RELaborCodeFile::RELaborCodeFile() : REKeyedRecordFile(kSpec) {}

int RELaborCodeFile::_ConvertToNewRecordFormat(const OLD_LABORCODERECORD* oldRec, LABORCODERECORD* newRec) {
    return REConvertToNew(LaborCodeTraits::kFieldTable, oldRec, newRec);
}

int RELaborCodeFile::_ConvertToOldRecordFormat(const LABORCODERECORD* newRec, OLD_LABORCODERECORD* oldRec) {
    return REConvertToOld(LaborCodeTraits::kFieldTable, newRec, oldRec);
}

int RELaborCodeFile::SearchFirstRecord(const char* groupName, const char* subCode, LABORCODERECORD* rec) {
    LABORCODERECORD key{};
    detail::REPutText(key.sGroupName, sizeof key.sGroupName, groupName);
    detail::REPutText(key.sSubCode, sizeof key.sSubCode, subCode);
    _SetRecordKey(key, LaborCodeTraits::kKeyLength, LaborCodeTraits::kOldKeyLength);
    return _SearchStep(kOpGetGreaterOrEqual, true, rec,
                       [&](const LABORCODERECORD& found) { return CodeMatches(groupName, subCode, found); });
}

int RELaborCodeFile::SearchNextRecord(const char* groupName, const char* subCode, LABORCODERECORD* rec) {
    return _SearchStep(kOpGetNext, false, rec,
                       [&](const LABORCODERECORD& found) { return CodeMatches(groupName, subCode, found); });
}

int RELaborCodeFile::GetRecordList(const char* groupName, std::list<LABORCODERECORD*>& list) {
    LABORCODERECORD rec;
    for (int found = SearchFirstRecord(groupName, nullptr, &rec); found;
         found = SearchNextRecord(groupName, nullptr, &rec)) {
        auto* copy = static_cast<LABORCODERECORD*>(std::malloc(sizeof rec));
        std::memcpy(copy, &rec, sizeof rec);
        list.push_back(copy);
    }
    return 1;
}

int RELaborCodeFile::SaveRecordList(const char* groupName, std::list<LABORCODERECORD*>& list) {
    std::list<LABORCODERECORD*> current;
    GetRecordList(groupName, current);
    for (const LABORCODERECORD* rec : current) {
        if (!_DeleteRecord(*rec)) {
            DeallocateRecList(current);
            return 0;
        }
    }
    DeallocateRecList(current);
    const char* name = groupName != nullptr ? groupName : "";
    for (const LABORCODERECORD* rec : list) {
        if (strncmp(rec->sGroupName, name, sizeof rec->sGroupName) != 0 || !_AddRecord(*rec))
            return 0;
    }
    return 1;
}

int RELaborCodeFile::_FindDuplicateRecord(const LABORCODERECORD& rec) {
    char name[sizeof rec.sGroupName + 1] = {};
    char subCode[sizeof rec.sSubCode + 1] = {};
    std::memcpy(name, rec.sGroupName, sizeof rec.sGroupName);
    std::memcpy(subCode, rec.sSubCode, sizeof rec.sSubCode);
    return SearchFirstRecord(name, subCode, nullptr);
}

int RELaborCodeFile::_AddRecord(const LABORCODERECORD& rec) {
    return REKeyedWrite(*this, REKeyedWriteOp::kAdd, rec, LaborCodeTraits::kAddTrace);
}

int RELaborCodeFile::_UpdateRecord(const LABORCODERECORD& rec) {
    return REKeyedWrite(*this, REKeyedWriteOp::kUpdate, rec, LaborCodeTraits::kUpdateTrace);
}

int RELaborCodeFile::_DeleteRecord(const LABORCODERECORD& rec) {
    return REKeyedWrite(*this, REKeyedWriteOp::kDelete, rec, LaborCodeTraits::kDeleteTrace);
}
