// The labor code description file: its record-file settings and conversions, the key searches, the
// enumeration of group names, and the group-wise reads and writes with the validity test.
#include "RELaborCodeDescFile.h"
#include "labor/KeyedWrites.h"
#include "labor/LaborCodeTraits.h"

#include "core/Messages.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

// Operation numbers the searches put into a key in place of "any operation".
constexpr int16_t kFirstOperation = 1;
constexpr int16_t kLastOperation = 32767;

// The search filter: the group name (empty matches any) ignoring case, and the operation number
// (negative matches any).
bool OperationMatches(const char* groupName, int operationNo, const LABOROPDESCRECORD& rec) {
    return detail::RETextMatchesNoCase(groupName, rec.sGroupName, sizeof rec.sGroupName) &&
           (operationNo < 0 || rec.nOpCodeNo == operationNo);
}

bool AnyRecord(const LABOROPDESCRECORD&) { return true; }

// A group name of a record as a text.
std::string GroupName(const LABOROPDESCRECORD& rec) {
    return std::string(rec.sGroupName, strnlen(rec.sGroupName, sizeof rec.sGroupName));
}

}  // namespace

const RERecordFileSpec RELaborCodeDescFile::kSpec = REMakeSpec<LaborCodeDescTraits, RELaborCodeDescFile>();

RELaborCodeDescFile::RELaborCodeDescFile() : REKeyedRecordFile(kSpec) {}

int RELaborCodeDescFile::_ConvertToNewRecordFormat(const OLD_LABOROPDESCRECORD* oldRec, LABOROPDESCRECORD* newRec) {
    return REConvertToNew(LaborCodeDescTraits::kFieldTable, oldRec, newRec);
}

int RELaborCodeDescFile::_ConvertToOldRecordFormat(const LABOROPDESCRECORD* newRec, OLD_LABOROPDESCRECORD* oldRec) {
    return REConvertToOld(LaborCodeDescTraits::kFieldTable, newRec, oldRec);
}

int RELaborCodeDescFile::SearchFirstRecord(const char* groupName, int operationNo, LABOROPDESCRECORD* rec) {
    LABOROPDESCRECORD key{};
    detail::REPutText(key.sGroupName, sizeof key.sGroupName, groupName);
    // An old file's key starts "any operation" at the first one; a new file's at the number
    // itself, which sorts before every operation of the group.
    key.nOpCodeNo = static_cast<int16_t>(m_isOldFormat && operationNo < 0 ? kFirstOperation : operationNo);
    _SetRecordKey(key, LaborCodeDescTraits::kKeyLength, LaborCodeDescTraits::kOldKeyLength);
    return _SearchStep(kOpGetGreaterOrEqual, true, rec,
                       [&](const LABOROPDESCRECORD& found) { return OperationMatches(groupName, operationNo, found); });
}

int RELaborCodeDescFile::SearchNextRecord(const char* groupName, int operationNo, LABOROPDESCRECORD* rec) {
    return _SearchStep(kOpGetNext, false, rec,
                       [&](const LABOROPDESCRECORD& found) { return OperationMatches(groupName, operationNo, found); });
}

int RELaborCodeDescFile::GetNextMatchGT(const char* groupName, int operationNo, LABOROPDESCRECORD* rec) {
    // The name is blank-filled in both layouts (to 6 bytes in the new one): such a key sorts
    // after every record of the name, so the search lands on the next group.
    char key[sizeof(LABOROPDESCRECORD::sGroupName) + sizeof(int16_t)];
    const size_t nameWidth = m_isOldFormat ? sizeof(OLD_LABOROPDESCRECORD::sGroupName) : sizeof key - sizeof(int16_t);
    std::memset(key, ' ', nameWidth);
    if (groupName != nullptr)
        std::memcpy(key, groupName, strnlen(groupName, nameWidth));
    const int16_t anyOperation = m_isOldFormat ? kLastOperation : kFirstOperation;
    const int16_t number = operationNo >= 1 ? static_cast<int16_t>(operationNo) : anyOperation;
    std::memcpy(key + nameWidth, &number, sizeof number);
    SetKeyNumber(0);
    SetKeyBuffer(key, static_cast<int>(nameWidth + sizeof number));
    return _SearchStep(kOpGetGreater, true, rec, AnyRecord);
}

int RELaborCodeDescFile::GetLabCodeGrpNames(std::list<std::string>& names) {
    if (!names.empty())
        return 0;
    LABOROPDESCRECORD rec;
    for (std::string name; GetNextMatchGT(name.c_str(), -1, &rec);) {
        name = GroupName(rec);
        names.push_back(name);
    }
    return names.empty() ? 0 : 1;
}

int RELaborCodeDescFile::GetRecordListWRTLabCodeGrp(const char* groupName, std::list<LABOROPDESCRECORD*>& list) {
    if (!list.empty())
        return 0;
    LABOROPDESCRECORD rec;
    for (int found = SearchFirstRecord(groupName, -1, &rec); found; found = SearchNextRecord(groupName, -1, &rec)) {
        if (!_CheckRecordContent(rec)) {
            char text[128];
            std::snprintf(text, sizeof text, LaborCodeDescTraits::kInvalidRecordText, static_cast<int>(list.size() + 1));
            REShowMessage("", text, 0);
            rec.nGroup = rec.nGroup < 1 ? 1 : rec.nGroup;
            rec.nExtrapolation = rec.nExtrapolation < 1 ? 1 : rec.nExtrapolation;
        }
        auto* copy = static_cast<LABOROPDESCRECORD*>(std::malloc(sizeof rec));
        if (copy == nullptr)
            return 0;
        std::memcpy(copy, &rec, sizeof rec);
        list.push_back(copy);
    }
    return 1;
}

template <class Write>
int RELaborCodeDescFile::_EachRecord(std::list<LABOROPDESCRECORD*>& list, Write write) {
    for (const LABOROPDESCRECORD* rec : list) {
        if (!(this->*write)(*rec))
            return 0;
    }
    return 1;
}

int RELaborCodeDescFile::AddRecord(std::list<LABOROPDESCRECORD*>& list) {
    return _EachRecord(list, &RELaborCodeDescFile::_AddRecord);
}

int RELaborCodeDescFile::UpdateRecord(std::list<LABOROPDESCRECORD*>& list) {
    return _EachRecord(list, &RELaborCodeDescFile::_UpdateRecord);
}

int RELaborCodeDescFile::DeleteRecord(std::list<LABOROPDESCRECORD*>& list) {
    return _EachRecord(list, &RELaborCodeDescFile::_DeleteRecord);
}

int RELaborCodeDescFile::DeleteRecord(const char* groupName) {
    std::list<LABOROPDESCRECORD*> group;
    if (!GetRecordListWRTLabCodeGrp(groupName, group))
        return 0;
    const int deleted = DeleteRecord(group);
    ResetRecList(group);
    return deleted;
}

int RELaborCodeDescFile::_CheckRecordContent(const LABOROPDESCRECORD& rec) {
    return rec.nOpCodeNo > 0 && rec.nGroup >= 1 && rec.nExtrapolation >= 1 ? 1 : 0;
}

int RELaborCodeDescFile::_FindDuplicateRecord(const LABOROPDESCRECORD& rec) {
    const std::string name = GroupName(rec);
    return SearchFirstRecord(name.c_str(), rec.nOpCodeNo, nullptr);
}

int RELaborCodeDescFile::_AddRecord(const LABOROPDESCRECORD& rec) {
    if (!_CheckRecordContent(rec))
        return 0;
    return REKeyedWrite(*this, REKeyedWriteOp::kAdd, rec, LaborCodeDescTraits::kAddTrace);
}

int RELaborCodeDescFile::_UpdateRecord(const LABOROPDESCRECORD& rec) {
    return REKeyedWrite(*this, REKeyedWriteOp::kUpdate, rec, LaborCodeDescTraits::kUpdateTrace);
}

int RELaborCodeDescFile::_DeleteRecord(const LABOROPDESCRECORD& rec) {
    if (!_CheckRecordContent(rec))
        return 0;
    return REKeyedWrite(*this, REKeyedWriteOp::kDelete, rec, LaborCodeDescTraits::kDeleteTrace);
}
