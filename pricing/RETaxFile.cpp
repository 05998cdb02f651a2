// The purchase tax file: the pattern's operations on its record-file settings, and the update by code.
#include "RETaxFile.h"
#include "pricing/TaxFileTraits.h"

#include <cstring>

const RERecordFileSpec RETaxFile::kSpec = REMakeSpec<TaxFileTraits, RETaxFile>();

RETaxFile::RETaxFile() : RERecordFile(kSpec) {}

int RETaxFile::UpdateRecord(tagTAXRECORD& rec) {
    char code[sizeof rec.szTaxCode + 1] = {};
    std::memcpy(code, rec.szTaxCode, sizeof rec.szTaxCode);
    return GetEqualMatch(code, nullptr) && _UpdateCurrent(&rec);
}

int RETaxFile::_ConvertPurTaxTypeToNewFormat(const tagTAXRECORD*, tagTAXRECORD*) { return 1; }

int RETaxFile::_ConvertPurTaxTypeToOldFormat(const tagTAXRECORD*, tagTAXRECORD*) { return 1; }
