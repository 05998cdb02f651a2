// The mark file: its record-file settings, its conversions, and its reads and writes by mark.
#include "REPdcMarkFile.h"
#include "production/PdcMarkFileTraits.h"

const RERecordFileSpec REPdcMarkFile::kSpec = REMakeSpec<PdcMarkFileTraits, REPdcMarkFile>();

REPdcMarkFile::REPdcMarkFile() : RERecordFile(kSpec) { SetKeyNumber(0); }

int REPdcMarkFile::_ConvertPdcMarkDataTypeToNewFormat(const OLD_PDCMARKDATATYPE* oldRec, PDCMARKDATATYPE* newRec) {
    return REConvertToNew(PdcMarkFileTraits::kFieldTable, oldRec, newRec);
}

int REPdcMarkFile::_ConvertPdcMarkDataTypeToOldFormat(const PDCMARKDATATYPE* newRec, OLD_PDCMARKDATATYPE* oldRec) {
    return REConvertToOld(PdcMarkFileTraits::kFieldTable, newRec, oldRec);
}

int REPdcMarkFile::GetEqualMatch(const char* mark, PDCMARKDATATYPE* out) {
    char key[kPdcMarkSize];
    REPdcPutMark(key, mark);
    SetKeyNumber(0);
    SetKeyBuffer(key, sizeof key);
    PDCMARKDATATYPE found;
    if (!_CallBtrieve(kOpGetEqual, &found))
        return 0;
    if (out != nullptr)
        *out = found;
    return 1;
}

int REPdcMarkFile::UpdateRecord(const char* mark, PDCMARKDATATYPE& rec) {
    return GetEqualMatch(mark, nullptr) && _UpdateCurrent(&rec);
}

int REPdcMarkFile::UpdateRecord(const char* mark, PDCMARKDATATYPE* rec) {
    return rec != nullptr && UpdateRecord(mark, *rec);
}

int REPdcMarkFile::DeleteRecord(PDCMARKDATATYPE& rec) { return GetEqualMatch(rec.szMark, nullptr) && _DeleteCurrent(); }
