// The report definitions file: its record-file settings, its reads by id and by group code, and the
// numbering of custom groups.
#include "REReportFile.h"
#include "RESharedHelpers.h"
#include "estimating/ReportFileTraits.h"

#include <cstdio>
#include <cstring>
#include <set>

namespace {

// Group code under which the custom groups hang, the prefix of their numbered codes, and the
// code of a record that opens no group.
constexpr const char* kCustomGroup = "CUS";
constexpr const char* kNoGroup = "NULL";
// Characters of a group code that GetEqualMatch looks up.
constexpr size_t kLookedUpCode = 4;

template <size_t N>
void SetText(char (&field)[N], const char* text) {
    std::snprintf(field, N, "%s", text);
}

template <size_t N>
std::string Text(const char (&field)[N]) {
    return std::string(field, strnlen(field, N));
}

}  // namespace

const RERecordFileSpec REReportFile::kSpec = REMakeSpec<ReportFileTraits, REReportFile>();

REReportFile::REReportFile() : RERecordFile(kSpec) { SetKeyNumber(0); }

int REReportFile::Initialize(const char* path) {
    if (path == nullptr)
        return 0;
    std::snprintf(m_fileName, sizeof m_fileName, "%s", path);
    if (IsOpen())
        Close();
    return _FileOpen();
}

int REReportFile::_FileOpen() {
    if (IsOpen())
        return 1;
    const std::string path = m_fileName;  // Open copies the path into m_fileName itself
    if (!Open(path.c_str()))
        return 0;
    STAT_BUFFER stat{};
    GetStatus(&stat);
    SetDataBufLen(stat.recordLength);
    return 1;
}

int REReportFile::GetEqualMatch(const char* groupCode, tagReportDBData* rec) {
    char key[kLookedUpCode] = {};
    if (groupCode != nullptr)
        std::memcpy(key, groupCode, strnlen(groupCode, sizeof key));
    SetKeyNumber(1);
    SetKeyBuffer(key, sizeof key);
    tagReportDBData found;
    if (!_CallBtrieve(kOpGetEqual, &found))
        return 0;
    if (rec != nullptr)
        *rec = found;
    return 1;
}

int REReportFile::GetEqualMatch(int id, tagReportDBData* rec) {
    const int32_t key = id;
    SetKeyNumber(0);
    SetKeyBuffer(&key, sizeof key);
    tagReportDBData found;
    if (!_CallBtrieve(kOpGetEqual, &found))
        return 0;
    if (rec != nullptr)
        *rec = found;
    return 1;
}

int REReportFile::GetAllRecords(const char* groupCode, std::vector<tagReportDBData*>& records) {
    if (!IsOpen())
        return 0;
    const std::string code = groupCode != nullptr ? groupCode : "";
    tagReportDBData rec;
    SetKeyNumber(1);
    int found = code.empty() ? _CallBtrieve(kOpGetFirst, &rec) : GetEqualMatch(code.c_str(), &rec);
    for (; found && (code.empty() || Text(rec.szGroupCode) == code); found = _CallBtrieve(kOpGetNext, &rec)) {
        records.push_back(static_cast<tagReportDBData*>(REAllocRecord(sizeof rec)));
        *records.back() = rec;
    }
    return 1;
}

int REReportFile::UpdateRecord(int id, const tagReportDBData* rec) {
    return rec != nullptr && GetEqualMatch(id, nullptr) && _UpdateCurrent(rec);
}

int REReportFile::DeleteRecord(int id) { return GetEqualMatch(id, nullptr) && _DeleteCurrent(); }

int REReportFile::AddNewSet(const char*) {
    tagReportDBData rec{};
    return AddNewRecord(rec);
}

std::string REReportFile::_FreeCustomCode() {
    std::vector<tagReportDBData*> records;
    GetAllRecords("", records);
    std::set<std::string> taken;
    for (const tagReportDBData* rec : records) {
        taken.insert(Text(rec->szGroupCode));
        taken.insert(Text(rec->szSubGroupCode));
    }
    DeallocatePtrArray(records);
    for (int n = 0;; ++n) {
        const std::string code = kCustomGroup + std::to_string(n);
        if (taken.count(code) == 0)
            return code;
    }
}

int REReportFile::AddCustomReportGroup(tagReportDBData& parent, tagReportDBData& group) {
    if (Text(parent.szSubGroupCode) == kNoGroup) {
        SetText(parent.szSubGroupCode, kCustomGroup);
        UpdateRecord(parent.nId, &parent);
    }
    const std::string code = _FreeCustomCode();
    SetText(group.szGroupCode, kCustomGroup);
    SetText(group.szType, "M");
    SetText(group.szText94, kNoGroup);
    SetText(group.szSubGroupCode, code.c_str());
    return AddRecord(group);
}

int REReportFile::AddCustomReportRec(tagReportDBData& group, tagReportDBData& rec) {
    rec.nId = 0;
    if (Text(group.szSubGroupCode) == kNoGroup) {
        SetText(group.szSubGroupCode, _FreeCustomCode().c_str());
        UpdateRecord(group.nId, &group);
    }
    SetText(rec.szGroupCode, Text(group.szSubGroupCode).c_str());
    SetText(rec.szSubGroupCode, kNoGroup);
    SetText(rec.szType, "E");
    return AddRecord(rec);
}
