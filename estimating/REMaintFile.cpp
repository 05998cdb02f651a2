// The settings file: its record-file settings, its record conversions, its searches by section, item
// and sequence, and the lists and titles read from them.
#include "REMaintFile.h"
#include "catalogue/CatalogueFiles.h"
#include "estimating/MaintFileTraits.h"

#include "REErrorMessages.h"
#include "core/RecordFields.h"

#include <cmath>
#include <cstring>
#include <string>

namespace {

// Two sequence numbers closer than this are the same.
constexpr float kSeqTolerance = 0.0001f;

// A text argument copied into a key slot for its length, cut at the slot's width.
void PutText(char* slot, size_t width, const char* text) {
    if (text != nullptr)
        std::memcpy(slot, text, strnlen(text, width));
}

template <size_t N>
std::string Text(const char (&field)[N]) {
    return std::string(field, strnlen(field, N));
}

// The mill titles: these items of section "TSL INFO", each with sequences 1, 2 and 3.
constexpr const char* kMillSection = "TSL INFO";
constexpr const char* kMillItems[] = {"ZMILL STRUCT", "ZMILL ANGLE", "ZMILL PLATE", "ZMILL TUBE"};
constexpr int kMillSequences = 3;

}  // namespace

const RERecordFileSpec REMaintFile::kSpec = REMakeSpec<MaintFileTraits, REMaintFile>();

REMaintFile::REMaintFile() : RESearchRecordFile(kSpec) {}

int REMaintFile::_ConvertToNewRecordFormat(const OLD_MAINTRECORD* oldRec, MAINTRECORD* newRec) {
    return oldRec != nullptr && newRec != nullptr ? REConvertToNew(MaintFileTraits::kFieldTable, oldRec, newRec) : 0;
}

int REMaintFile::_ConvertToOldRecordFormat(const MAINTRECORD* newRec, OLD_MAINTRECORD* oldRec) {
    return oldRec != nullptr && newRec != nullptr ? REConvertToOld(MaintFileTraits::kFieldTable, newRec, oldRec) : 0;
}

void REMaintFile::_SetKey(const char* section, const char* item, float seq) {
    SetKeyNumber(0);
    if (m_isOldFormat) {
        OLD_MAINTRECORD_KEY key;
        std::memset(&key, kOldTextFill, sizeof key);
        PutText(key.szSection, sizeof key.szSection, section);
        PutText(key.szItem, sizeof key.szItem, item);
        key.fSeq = seq;
        SetKeyBuffer(&key, sizeof key);
        return;
    }
    MAINTRECORD_KEY key{};
    PutText(key.szSection, sizeof key.szSection - 1, section);
    PutText(key.szItem, sizeof key.szItem - 1, item);
    key.fSeq = seq;
    SetKeyBuffer(&key, sizeof key);
}

int REMaintFile::_Read(unsigned op, MAINTRECORD* rec) {
    MAINTRECORD found;
    if (!_CallBtrieve(op, &found))
        return 0;
    if (rec != nullptr)
        *rec = found;
    return 1;
}

int REMaintFile::GetExactMatch(const char* section, const char* item, float seq, MAINTRECORD* rec) {
    _SetKey(section, item, seq);
    return _Read(kOpGetEqual, rec);
}

int REMaintFile::GetMatchLE(const char* section, const char* item, float seq, MAINTRECORD* rec) {
    _SetKey(section, item, seq);
    return _Read(kOpGetLessOrEqual, rec);
}

int REMaintFile::GetMatchGT(const MAINTRECORD* keyRec, MAINTRECORD* rec) {
    if (keyRec == nullptr)
        return 0;
    const MAINTRECORD key = *keyRec;  // `rec` may be `keyRec`
    if (rec != nullptr)
        std::memset(rec, 0, sizeof *rec);
    _SetKey(Text(key.szSection).c_str(), Text(key.szItem).c_str(), key.fSeq);
    return _Read(kOpGetGreater, rec);
}

int REMaintFile::_CheckRecord(const char* section, const char* item, float seq, const MAINTRECORD* rec) const {
    if (rec == nullptr || !REEqualNoCase(section, Text(rec->szSection).c_str()))
        return 0;
    if (item != nullptr && *item != '\0' && !REEqualNoCase(item, Text(rec->szItem).c_str()))
        return 0;
    return seq < 0.0f || std::fabs(seq - rec->fSeq) < kSeqTolerance;
}

int REMaintFile::SearchFirstRecord(const char* section, const char* item, float seq, MAINTRECORD* rec) {
    m_searchActive = 1;
    _SetKey(section, item, seq);
    MAINTRECORD found;
    if (!_CallBtrieve(kOpGetGreaterOrEqual, &found) || !_CheckRecord(section, item, seq, &found)) {
        m_searchActive = 0;
        return 0;
    }
    if (rec != nullptr)
        *rec = found;
    return 1;
}

int REMaintFile::SearchNextRecord(const char* section, const char* item, float seq, MAINTRECORD* rec) {
    MAINTRECORD found;
    if (!_CallBtrieve(kOpGetNext, &found) || !_CheckRecord(section, item, seq, &found)) {
        m_searchActive = 0;
        return 0;
    }
    if (rec != nullptr)
        *rec = found;
    return 1;
}

int REMaintFile::FillComboWithValue(const char* section, const char* item, REListControl* combo) {
    if (combo == nullptr)
        return 0;
    MAINTRECORD rec;
    int added = 0;
    for (int found = GetFirstMatch(section, item, &rec); found; found = GetNextMatch(section, item, &rec), ++added)
        combo->AddString(Text(rec.szValue).c_str());
    return added > 0 ? 1 : 0;
}

int REMaintFile::GetMatchList(const char* section, const char* item, std::list<MAINTRECORD*>& list) {
    MAINTRECORD rec;
    int added = 0;
    for (int found = GetFirstMatch(section, item, &rec); found; found = GetNextMatch(section, item, &rec), ++added) {
        list.push_back(static_cast<MAINTRECORD*>(REAllocRecord(sizeof rec)));
        *list.back() = rec;
    }
    return added > 0 ? 1 : 0;
}

int REMaintFile::GetMillTitles(char* titles) {
    if (titles == nullptr)
        return 0;
    // A missing setting leaves `rec` as it was, so its title repeats the one before.
    MAINTRECORD rec{};
    char* title = titles;
    for (const char* item : kMillItems) {
        for (int seq = 1; seq <= kMillSequences; ++seq, title += kMillTitleSize) {
            GetExactMatch(kMillSection, item, static_cast<float>(seq), &rec);
            std::memcpy(title, rec.szValue, kMillTitleSize);
        }
    }
    return 1;
}

int REMaintFile::UpdateRecord(MAINTRECORD& rec) {
    GetExactMatch(Text(rec.szSection).c_str(), Text(rec.szItem).c_str(), rec.fSeq, nullptr);
    const int16_t status = _WriteStatus(kOpUpdate, &rec);
    if (m_isOldFormat) {
        // The caller's record comes back as the old layout holds it.
        OLD_MAINTRECORD old;
        _ConvertToOldRecordFormat(&rec, &old);
        _ConvertToNewRecordFormat(&old, &rec);
    }
    if (status != kStatusSuccess) {
        ShowErrorMessage(MaintFileTraits::kMessages.unknownError, status);
        return 0;
    }
    return 1;
}
