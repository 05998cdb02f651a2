// The piece-data file: its record-file settings, its conversions, and its searches by main and piece
// mark.
#include "REPdcDataFile.h"
#include "production/PdcDataFileTraits.h"

#include <cstdlib>
#include <cstring>

namespace {

// A key value of up to two marks and zeros: the size of key 2 (main mark, flag, piece mark).
struct MarkKey {
    char sFirst[kPdcMarkSize];
    char sSecond[kPdcMarkSize + 2];
};
static_assert(sizeof(MarkKey) == 36);

// True when the stored main mark is `mainMark` exactly, as the key holds it.
bool IsMainMark(const PDCDATATYPE& rec, const MarkKey& key) {
    return std::memcmp(rec.szMainMark, key.sFirst, kPdcMarkSize) == 0;
}

PDCDATATYPE* HeapCopy(const PDCDATATYPE& rec) {
    auto* copy = static_cast<PDCDATATYPE*>(std::malloc(sizeof rec));
    *copy = rec;
    return copy;
}

}  // namespace

const RERecordFileSpec REPdcDataFile::kSpec = REMakeSpec<PdcDataFileTraits, REPdcDataFile>();

REPdcDataFile::REPdcDataFile() : RERecordFile(kSpec) {
    m_isOldFormat = 1;
    SetKeyNumber(kKeyRow);
}

int gIsEqual(const PDCDATATYPE* a, const PDCDATATYPE* b) {
    if (a == nullptr || b == nullptr)
        return 0;
    auto same = [](const auto& x, const auto& y) { return REPdcSameText(x, y, sizeof x); };
    return same(a->szMainMark, b->szMainMark) && same(a->szSecondMark, b->szSecondMark) &&
           same(a->szMainOrAcc, b->szMainOrAcc) && same(a->szPieceMark, b->szPieceMark) &&
           a->nValue53 == b->nValue53 && a->nValue57 == b->nValue57 && same(a->szText61, b->szText61) &&
           same(a->szText72, b->szText72) && same(a->szText79, b->szText79) && same(a->szText86, b->szText86) &&
           same(a->szText102, b->szText102) && same(a->szText118, b->szText118) &&
           same(a->szText134, b->szText134);
}

int REPdcDataFile::_ConvertPdcDataTypeToNewFormat(const OLD_PDCDATATYPE* oldRec, PDCDATATYPE* newRec) {
    return REConvertToNew(PdcDataFileTraits::kFieldTable, oldRec, newRec);
}

int REPdcDataFile::_ConvertPdcDataTypeToOldFormat(const PDCDATATYPE* newRec, OLD_PDCDATATYPE* oldRec) {
    return REConvertToOld(PdcDataFileTraits::kFieldTable, newRec, oldRec);
}

int REPdcDataFile::GetAllRecords(std::vector<PDCDATATYPE*>& array) {
    SetKeyNumber(kKeyMainFlag);
    return RERecordFile::GetAllRecords(array);
}

int REPdcDataFile::GetAllRecords(std::list<PDCDATATYPE*>& list) {
    SetKeyNumber(kKeyMainFlag);
    return RERecordFile::GetAllRecords(list);
}

void REPdcDataFile::_SetMainPieceKey(const char* mainMark, const char* pieceMark) {
    MarkKey key{};
    REPdcPutMark(key.sFirst, mainMark);
    REPdcPutMark(key.sSecond, pieceMark);
    SetKeyNumber(kKeyMainPiece);
    SetKeyBuffer(&key, 2 * kPdcMarkSize);
}

int REPdcDataFile::GetEqualMatch(const char* mainMark, const char* pieceMark, PDCDATATYPE* out) {
    PDCDATATYPE found;
    _SetMainPieceKey(mainMark, pieceMark);
    if (!_CallBtrieve(kOpGetEqual, &found))
        return 0;
    if (out != nullptr)
        *out = found;
    return 1;
}

int REPdcDataFile::_SeekMain(int key, const char* mainMark, size_t length, unsigned op, PDCDATATYPE* found) {
    MarkKey value{};
    REPdcPutMark(value.sFirst, mainMark);
    SetKeyNumber(key);
    SetKeyBuffer(&value, static_cast<int>(length));
    return _CallBtrieve(op, found);
}

int REPdcDataFile::GetGreaterMatch(const char* mainMark, PDCDATATYPE* out) {
    PDCDATATYPE found;
    if (!_SeekMain(kKeyMainPiece, mainMark, 2 * kPdcMarkSize, kOpGetGreaterOrEqual, &found))
        return 0;
    if (out != nullptr)
        *out = found;
    return 1;
}

int REPdcDataFile::DeleteRecord(PDCDATATYPE& rec) {
    return GetEqualMatch(rec.szMainMark, rec.szPieceMark, nullptr) && _DeleteCurrent();
}

int REPdcDataFile::UpdateRecord(PDCDATATYPE& oldRec, PDCDATATYPE& newRec) {
    PDCDATATYPE stored;
    return GetEqualMatch(oldRec.szMainMark, oldRec.szPieceMark, &stored) && gIsEqual(&stored, &oldRec) &&
           _UpdateCurrent(&newRec);
}

int REPdcDataFile::UpdateRecord(const char* mainMark, const char* pieceMark, PDCDATATYPE& newRec) {
    return GetEqualMatch(mainMark, pieceMark, nullptr) && _UpdateCurrent(&newRec);
}

int REPdcDataFile::UpdateRecord(const char* mainMark, const char* pieceMark, PDCDATATYPE* newRec) {
    return newRec != nullptr && UpdateRecord(mainMark, pieceMark, *newRec);
}

int REPdcDataFile::GetAllSelectedRecords(const char* mainMark, std::vector<PDCDATATYPE*>& array) {
    MarkKey main{};
    REPdcPutMark(main.sFirst, mainMark);
    PDCDATATYPE rec;
    for (int found = _SeekMain(kKeyMainFlag, mainMark, sizeof(MarkKey), kOpGetGreaterOrEqual, &rec);
         found && IsMainMark(rec, main); found = GetNextRecord(&rec))
        array.push_back(HeapCopy(rec));
    return 1;
}

int REPdcDataFile::GetAllPcMarks(const char* mainMark, std::vector<std::string>& marks) {
    marks.clear();
    MarkKey main{};
    REPdcPutMark(main.sFirst, mainMark);
    PDCDATATYPE rec;
    // The first row found is the main mark's own row ("M" sorts before "a"): it is passed over.
    if (!_SeekMain(kKeyMainFlag, mainMark, sizeof(MarkKey), kOpGetGreaterOrEqual, &rec))
        return 0;
    while (GetNextRecord(&rec) && IsMainMark(rec, main))
        marks.emplace_back(rec.szMainMark, strnlen(rec.szMainMark, sizeof rec.szMainMark));
    return marks.empty() ? 0 : 1;
}

int REPdcDataFile::GetAllMainMarks(std::vector<PDCDATATYPE*>& array) {
    ResetRecArray(array);
    PDCDATATYPE rec;
    SetKeyNumber(kKeyMainPiece);
    for (int found = GetFirstRecord(&rec); found; found = GetNextRecord(&rec)) {
        if (REPdcFlagIs(rec.szMainOrAcc, kPdcMainFlag))
            array.push_back(HeapCopy(rec));
    }
    return array.empty() ? 0 : 1;
}

int REPdcDataFile::GetAllMainMarks(std::vector<std::string>& marks) {
    marks.clear();
    std::vector<PDCDATATYPE*> rows;
    GetAllMainMarks(rows);
    for (const PDCDATATYPE* rec : rows)
        marks.emplace_back(rec->szMainMark, strnlen(rec->szMainMark, sizeof rec->szMainMark));
    ResetRecArray(rows);
    return marks.empty() ? 0 : 1;
}

int REPdcDataFile::GetMainMarkWRTAccMark(const char* pieceMark, std::string& mainMark) {
    char key[kPdcMarkSize];
    REPdcPutMark(key, pieceMark);
    SetKeyNumber(kKeyPiece);
    SetKeyBuffer(key, sizeof key);
    PDCDATATYPE rec;
    if (!_CallBtrieve(kOpGetEqual, &rec)) {
        mainMark = "Invalid";
        return 0;
    }
    mainMark.assign(rec.szMainMark, strnlen(rec.szMainMark, sizeof rec.szMainMark));
    return 1;
}

int REPdcDataFile::DeleteAllPcMarks(const char* mainMark) {
    MarkKey main{};
    REPdcPutMark(main.sFirst, mainMark);
    PDCDATATYPE rec;
    for (int found = GetGreaterMatch(mainMark, &rec); found && IsMainMark(rec, main); found = GetNextRecord(&rec)) {
        if (REPdcFlagIs(rec.szMainOrAcc, kPdcAccessoryFlag))
            _DeleteCurrent();  // a row that cannot be deleted is passed over
    }
    return 1;
}
