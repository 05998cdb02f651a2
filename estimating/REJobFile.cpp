// The estimate job item file: its record-file settings, its record
// conversions, and its key searches with wildcard filters and page renumbering on append.
#include "REJobFile.h"
#include "estimating/JobFileTraits.h"

#include "core/RecordFields.h"
#include "core/RecordFileSpec.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace {

// A code argument as a bounded text: null reads as empty, longer codes are cut to `width`.
size_t CodeLength(const char* code, size_t width) { return code != nullptr ? strnlen(code, width) : 0; }

// Copies a code argument into a key field for its length, without terminator.
void PutCode(char* field, size_t width, const char* code) {
    if (const size_t length = CodeLength(code, width); length > 0)
        std::memcpy(field, code, length);
}

// Filter of one code: empty matches any, else the codes must be equal.
bool CodeMatches(const char* wanted, const char* field, size_t width) {
    const size_t length = CodeLength(wanted, width);
    return length == 0 || (strnlen(field, width) == length && std::memcmp(wanted, field, length) == 0);
}

}  // namespace

const RERecordFileSpec REJobFile::kSpec = REMakeSpec<JobFileTraits, REJobFile>();

REJobFile::REJobFile() : RERecordFile(kSpec), m_appendPageOffset(0) { m_isOldFormat = 1; }

int REJobFile::_ConvertToNewRecordFormat(const OLD_ESTJOBFILERECORD* oldRec, ESTJOBFILERECORD* newRec) {
    return REConvertToNew(JobFileTraits::kFieldTable, oldRec, newRec);
}

int REJobFile::_ConvertToOldRecordFormat(const ESTJOBFILERECORD* newRec, OLD_ESTJOBFILERECORD* oldRec) {
    return REConvertToOld(JobFileTraits::kFieldTable, newRec, oldRec);
}

int REJobFile::_CreateKey(const char* code1, const char* code2, int pageNo, int lineNo,
                          OLD_ESTJOBFILERECORD_KEY* key) {
    if (key == nullptr)
        return 0;
    std::memset(key, kOldTextFill, sizeof *key);
    PutCode(key->sCode1, sizeof key->sCode1, code1);
    PutCode(key->sCode2, sizeof key->sCode2, code2);
    key->nPageNo = pageNo;
    key->nLineNo = lineNo;
    return 1;
}

// Puts the search key of the file's layout into the key buffer, on key 0.
int REJobFile::_SetSearchKey(const char* code1, const char* code2, int pageNo, int lineNo) {
    SetKeyNumber(0);
    if (m_isOldFormat) {
        OLD_ESTJOBFILERECORD_KEY key;
        _CreateKey(code1, code2, pageNo, lineNo, &key);
        SetKeyBuffer(&key, sizeof key);
        return 1;
    }
    ESTJOBFILERECORD_KEY key{};
    PutCode(key.sCode1, sizeof key.sCode1, code1);
    PutCode(key.sCode2, sizeof key.sCode2, code2);
    key.nPageNo = pageNo;
    key.nLineNo = lineNo;
    SetKeyBuffer(&key, sizeof key);
    return 1;
}

// Get Greater or Equal. The searches pass no key: theirs is already in the key buffer. An
// old-form key only fits a 516-byte file, so only there does a given key replace the buffer.
int REJobFile::_GetFirstMatchGE(OLD_ESTJOBFILERECORD_KEY* key, ESTJOBFILERECORD* rec) {
    if (key != nullptr && m_isOldFormat)
        SetKeyBuffer(key, sizeof *key);
    return _CallBtrieve(kOpGetGreaterOrEqual, rec);
}

int REJobFile::_CheckRecord(const char* code1, const char* code2, int pageNo, int lineNo,
                            const ESTJOBFILERECORD* rec) {
    if (rec == nullptr)
        return 0;
    return CodeMatches(code1, rec->sCode1, sizeof rec->sCode1) && CodeMatches(code2, rec->sCode2, sizeof rec->sCode2) &&
           (pageNo < 0 || rec->nPageNo == pageNo) && (lineNo < 0 || rec->nLineNo == lineNo);
}

// The searches read into the caller's record (a record that fails the filter included), or
// into a local one when the caller passes none.
int REJobFile::SearchFirstRecord(const char* code1, const char* code2, int pageNo, int lineNo, ESTJOBFILERECORD* rec) {
    ESTJOBFILERECORD local;
    ESTJOBFILERECORD* found = rec != nullptr ? rec : &local;
    m_searchActive = 1;
    _SetSearchKey(code1, code2, pageNo, lineNo);
    if (!_GetFirstMatchGE(nullptr, found) || !_CheckRecord(code1, code2, pageNo, lineNo, found)) {
        m_searchActive = 0;
        return 0;
    }
    return 1;
}

int REJobFile::SearchNextRecord(const char* code1, const char* code2, int pageNo, int lineNo, ESTJOBFILERECORD* rec) {
    ESTJOBFILERECORD local;
    ESTJOBFILERECORD* found = rec != nullptr ? rec : &local;
    if (!_CallBtrieve(kOpGetNext, found) || !_CheckRecord(code1, code2, pageNo, lineNo, found)) {
        m_searchActive = 0;
        return 0;
    }
    return 1;
}

int REJobFile::SearchFirstMatchLE(const char* code1, const char* code2, int pageNo, int lineNo, ESTJOBFILERECORD* rec) {
    ESTJOBFILERECORD local;
    m_searchActive = 1;
    _SetSearchKey(code1, code2, pageNo, lineNo);
    if (!_CallBtrieve(kOpGetLessOrEqual, rec != nullptr ? rec : &local)) {
        m_searchActive = 0;
        return 0;
    }
    return 1;
}

int REJobFile::_FindDuplicateRecord(const ESTJOBFILERECORD& rec) {
    const ESTJOBFILERECORD* job = &rec;
    char code1[sizeof job->sCode1 + 1] = {};
    char code2[sizeof job->sCode2 + 1] = {};
    std::memcpy(code1, job->sCode1, sizeof job->sCode1);
    std::memcpy(code2, job->sCode2, sizeof job->sCode2);
    return SearchFirstRecord(code1, code2, job->nPageNo, job->nLineNo, nullptr);
}

int REJobFile::DeleteRecord(ESTJOBFILERECORD& rec) { return _FindDuplicateRecord(rec) && _DeleteCurrent(); }

int REJobFile::DeleteRecord(int pageNo, int lineNo) {
    // The codes lead the key, so records of this page and line lie anywhere after the start.
    ESTJOBFILERECORD found;
    m_searchActive = 1;
    _SetSearchKey("", "", pageNo, lineNo);
    for (int more = _GetFirstMatchGE(nullptr, &found); more; more = _CallBtrieve(kOpGetNext, &found)) {
        if (_CheckRecord("", "", pageNo, lineNo, &found))
            return _DeleteCurrent();
    }
    m_searchActive = 0;
    return 0;
}

int REJobFile::UpdateRecord(ESTJOBFILERECORD& keyRec, ESTJOBFILERECORD& newRec) {
    return _FindDuplicateRecord(keyRec) && _UpdateCurrent(&newRec);
}

int REJobFile::UpdateRecord(const char* code1, const char* code2, int pageNo, int lineNo, ESTJOBFILERECORD& newRec) {
    return SearchFirstRecord(code1, code2, pageNo, lineNo, nullptr) && _UpdateCurrent(&newRec);
}

int REJobFile::_GetMaxPageNo() {
    ESTJOBFILERECORD rec;
    int32_t maxPage = 0;
    for (int more = GetFirstRecord(&rec); more; more = GetNextRecord(&rec))
        maxPage = std::max(maxPage, int32_t{rec.nPageNo});
    return maxPage;
}

void REJobFile::_BeginCopy(int) { m_appendPageOffset = _GetMaxPageNo(); }

bool REJobFile::_AdjustCopied(ESTJOBFILERECORD& rec) {
    rec.nPageNo += m_appendPageOffset;
    return m_appendPageOffset != 0;
}
