// The labor group file: its record-file settings and conversions, the filtered key search and the
// change of a group's description.
#include "RELaborGroupFile.h"
#include "labor/LaborGroupTraits.h"

#include <cstring>

namespace {

bool GroupMatches(const char* name, int groupNo, const LABORGROUPRECORD& rec) {
    return detail::RETextMatchesNoCase(name, rec.sGroupName, sizeof rec.sGroupName) &&
           (groupNo < 0 || rec.nGroupNo == groupNo);
}

}  // namespace

const RERecordFileSpec RELaborGroupFile::kSpec = REMakeSpec<LaborGroupTraits, RELaborGroupFile>();

RELaborGroupFile::RELaborGroupFile() : REKeyedRecordFile(kSpec) {}

int RELaborGroupFile::_ConvertToNewRecordFormat(const OLD_LABORGROUPRECORD* oldRec, LABORGROUPRECORD* newRec) {
    return REConvertToNew(LaborGroupTraits::kFieldTable, oldRec, newRec);
}

int RELaborGroupFile::_ConvertToOldRecordFormat(const LABORGROUPRECORD* newRec, OLD_LABORGROUPRECORD* oldRec) {
    return REConvertToOld(LaborGroupTraits::kFieldTable, newRec, oldRec);
}

int RELaborGroupFile::SearchFirstRecord(const char* name, int groupNo, LABORGROUPRECORD* rec) {
    LABORGROUPRECORD key{};
    detail::REPutText(key.sGroupName, sizeof key.sGroupName, name);
    key.nGroupNo = static_cast<int16_t>(groupNo);
    _SetRecordKey(key, LaborGroupTraits::kKeyLength, LaborGroupTraits::kOldKeyLength);
    return _SearchStep(kOpGetGreaterOrEqual, true, rec,
                       [&](const LABORGROUPRECORD& found) { return GroupMatches(name, groupNo, found); });
}

int RELaborGroupFile::SearchNextRecord(const char* name, int groupNo, LABORGROUPRECORD* rec) {
    return _SearchStep(kOpGetNext, false, rec,
                       [&](const LABORGROUPRECORD& found) { return GroupMatches(name, groupNo, found); });
}

int RELaborGroupFile::ModifyDescription(int groupNo, const char* text) {
    LABORGROUPRECORD rec;
    if (!SearchFirstRecord(groupNo, &rec))
        return 0;
    std::memset(rec.sDescription, 0, sizeof rec.sDescription);
    detail::REPutText(rec.sDescription, sizeof rec.sDescription, text);
    return _UpdateRecord(rec);
}
