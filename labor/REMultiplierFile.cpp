// The multiplier file: its record-file settings and conversions, the code searches, and the add and
// update that hand the record manager's status to the caller.
#include "REMultiplierFile.h"
#include "labor/MultiplierTraits.h"

#include <climits>

const RERecordFileSpec REMultiplierFile::kSpec = REMakeSpec<MultiplierTraits, REMultiplierFile>();

REMultiplierFile::REMultiplierFile() : REKeyedRecordFile(kSpec) {}

int REMultiplierFile::_ConvertToNewRecordFormat(const OLD_MULTIPLIERRECORD* oldRec, MULTIPLIERRECORD* newRec) {
    return REConvertToNew(MultiplierTraits::kFieldTable, oldRec, newRec);
}

int REMultiplierFile::_ConvertToOldRecordFormat(const MULTIPLIERRECORD* newRec, OLD_MULTIPLIERRECORD* oldRec) {
    return REConvertToOld(MultiplierTraits::kFieldTable, newRec, oldRec);
}

int REMultiplierFile::SearchFirstRecord(const char* code, MULTIPLIERRECORD* rec) {
    if (code == nullptr || code[0] == '\0')
        return 0;
    MULTIPLIERRECORD key{};
    detail::REPutText(key.sCode, sizeof key.sCode, code);
    _SetRecordKey(key, MultiplierTraits::kKeyLength, MultiplierTraits::kOldKeyLength);
    return _SearchStep(kOpGetGreaterOrEqual, true, rec, [code](const MULTIPLIERRECORD& found) {
        return detail::RETextEqualsNoCase(code, found.sCode, sizeof found.sCode);
    });
}

int REMultiplierFile::SearchNextRecord(const char* code, MULTIPLIERRECORD* rec) {
    return _SearchStep(kOpGetNext, false, rec, [code](const MULTIPLIERRECORD& found) {
        return detail::RETextEqualsNoCase(code, found.sCode, sizeof found.sCode);
    });
}

int REMultiplierFile::GetExactMatch(const char* code, MULTIPLIERRECORD* rec) {
    m_searchActive = 0;
    MULTIPLIERRECORD key{};
    detail::REPutText(key.sCode, sizeof key.sCode, code);
    // Seven bytes in either layout: an old key reads its six and ignores the seventh.
    _SetRecordKey(key, MultiplierTraits::kKeyLength, MultiplierTraits::kKeyLength);
    MULTIPLIERRECORD found;
    if (!_CallBtrieve(kOpGetEqual, &found))
        return 0;
    if (rec != nullptr)
        *rec = found;
    return 1;
}

int REMultiplierFile::AddRecord(MULTIPLIERRECORD& rec) {
    if (GetExactMatch(rec.sCode, nullptr))
        return 0;
    return _WriteStatus(kOpInsert, rec);
}

int REMultiplierFile::UpdateRecord(MULTIPLIERRECORD& rec, int addIfMissing) {
    if (GetExactMatch(rec.sCode, nullptr))
        return _WriteStatus(kOpUpdate, rec);
    return addIfMissing ? _WriteStatus(kOpInsert, rec) : 0;
}

int REMultiplierFile::_CopyRecords(REBtrieveBase& src, int srcIsOld) {
    return REKeyedRecordFile::_CopyRecords(src, srcIsOld, INT_MAX);
}
