// The grade file: its record-file settings, its record conversions and its searches by text, which read
// only in files of the earlier layout.
#include "REGradeFile.h"
#include "catalogue/CatalogueFiles.h"
#include "catalogue/GradeFileTraits.h"

#include "core/Messages.h"
#include "core/RecordFields.h"

#include <cstring>
#include <string>

namespace {

constexpr int kListKey = 1;
// Bytes passed with the Create of CopyRecordsToNewFile.
constexpr uint32_t kCloneCreateLength = 336;

// A text argument copied into a blank-filled key slot for its length, cut at the slot.
template <size_t N>
void PutText(char (&slot)[N], const char* text) {
    if (text != nullptr)
        std::memcpy(slot, text, strnlen(text, N));
}

bool TextMatches(const char* wanted, const char* field, size_t width) {
    return wanted == nullptr || *wanted == '\0' || REEqualNoCase(wanted, std::string(field, strnlen(field, width)).c_str());
}

template <size_t N>
std::string Text(const char (&field)[N]) {
    return std::string(field, strnlen(field, N));
}

}  // namespace

const RERecordFileSpec REGradeFile::kSpec = REMakeSpec<GradeFileTraits, REGradeFile>();

REGradeFile::REGradeFile() : RESearchRecordFile(kSpec) {}

int REGradeFile::_ConvertToNewRecordFormat(const OLD_GRADEDATRECORD* oldRec, GRADEDATRECORD* newRec) {
    return oldRec != nullptr && newRec != nullptr ? REConvertToNew(GradeFileTraits::kFieldTable, oldRec, newRec) : 0;
}

int REGradeFile::_ConvertToOldRecordFormat(const GRADEDATRECORD* newRec, OLD_GRADEDATRECORD* oldRec) {
    return oldRec != nullptr && newRec != nullptr ? REConvertToOld(GradeFileTraits::kFieldTable, newRec, oldRec) : 0;
}

int REGradeFile::Reset() {
    m_searchActive = 0;
    return 1;
}

bool REGradeFile::_Matches(const char* text0, const char* text8, const char* text19,
                           const GRADEDATRECORD& rec) const {
    return TextMatches(text0, rec.szText0, sizeof rec.szText0) && TextMatches(text8, rec.szText8, sizeof rec.szText8) &&
           TextMatches(text19, rec.szText19, sizeof rec.szText19);
}

int REGradeFile::GetFirstMatch(const char* text0, const char* text8, const char* text19, GRADEDATRECORD* rec,
                               short keyNumber) {
    m_searchActive = 1;
    SetKeyNumber(keyNumber);
    if (rec == nullptr) {
        m_searchActive = 0;
        return 0;
    }
    if (m_isOldFormat) {
        // Key 1 of the stored layout: first text, code (blank), third text, second text.
        OLD_GRADEDATRECORD key;
        std::memset(&key, kOldTextFill, sizeof key);
        PutText(key.szText0, text0);
        PutText(key.szText8, text19);
        PutText(key.szText19, text8);
        SetKeyBuffer(&key, sizeof key);
        if (!_CallBtrieve(kOpGetGreaterOrEqual, rec)) {
            m_searchActive = 0;
            return 0;
        }
    }
    if (!_Matches(text0, text8, text19, *rec)) {
        m_searchActive = 0;
        return 0;
    }
    return 1;
}

int REGradeFile::GetNextMatch(const char* text0, const char* text8, const char* text19, GRADEDATRECORD* rec,
                              short keyNumber) {
    SetKeyNumber(keyNumber);
    if (rec == nullptr || (m_isOldFormat && !_CallBtrieve(kOpGetNext, rec)) || !_Matches(text0, text8, text19, *rec)) {
        m_searchActive = 0;
        return 0;
    }
    return 1;
}

int REGradeFile::GetGradeList(const char* text0, std::list<GRADEDATRECORD*>& list) {
    if (!list.empty())
        ResetGradeRecordList(list);
    GRADEDATRECORD rec{};
    if (m_isOldFormat) {
        for (int found = GetFirstMatch(text0, "", "", &rec, kListKey); found;
             found = GetNextMatch(text0, "", "", &rec, kListKey)) {
            list.push_back(static_cast<GRADEDATRECORD*>(REAllocRecord(sizeof rec)));
            *list.back() = rec;
        }
        return 1;
    }
    // The searches read nothing in this layout: walk key 1 whole instead.
    SetKeyNumber(kListKey);
    for (int found = _CallBtrieve(kOpGetFirst, &rec); found; found = _CallBtrieve(kOpGetNext, &rec)) {
        if (!REEqualNoCase(text0, Text(rec.szText0).c_str()))
            continue;
        list.push_back(static_cast<GRADEDATRECORD*>(REAllocRecord(sizeof rec)));
        *list.back() = rec;
    }
    return 1;
}

int REGradeFile::_FindByTexts(const GRADEDATRECORD& rec, GRADEDATRECORD* found) {
    return GetFirstMatch(Text(rec.szText0).c_str(), Text(rec.szText8).c_str(), Text(rec.szText19).c_str(), found,
                         kListKey);
}

int REGradeFile::_FindDuplicateRecord(const GRADEDATRECORD& rec) {
    GRADEDATRECORD found{};
    return _FindByTexts(rec, &found);
}

int REGradeFile::UpdateRecord(GRADEDATRECORD& from, GRADEDATRECORD& to) {
    GRADEDATRECORD found = to;
    if (_FindByTexts(to, &found))
        RETrace("<<REGradeFile::UpdateRecord>> **ERROR** ToRec is already present in the database.\n");
    found = from;
    if (!_FindByTexts(from, &found)) {
        RETrace("<<REGradeFile::UpdateRecord>> Same record not present in the database; ADDITION possible not "
                "UPDATE.\n");
        return 0;
    }
    return _UpdateCurrent(&to);
}

int REGradeFile::DeleteRecord(GRADEDATRECORD* rec) {
    if (rec == nullptr)
        return 0;
    GRADEDATRECORD found = *rec;
    if (!_FindByTexts(*rec, &found)) {
        RETrace("<<REGradeFile::DeleteRecord>> Record not present in the database; Deletion not possible.\n");
        return 0;
    }
    const int deleted = _DeleteCurrent();
    std::memset(rec, 0, sizeof *rec);
    return deleted;
}

int REGradeFile::CopyRecordsToNewFile(const char* path) { return RECloneFile(*this, path, kCloneCreateLength); }
