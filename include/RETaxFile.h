// RETaxFile: the purchase tax codes, one 27-byte tagTAXRECORD per code, keyed by the code. One
// record layout; the class keeps its own path and open flag.
// A program opens it with Initialize(path) (CreateNewFile first makes an empty file) and reads
// and writes it through the record-file methods of detail/RERecordFile.h and those below.
#pragma once

#include "detail/RERecordFile.h"
#include "tarsel_export.h"

#include <cstddef>
#include <cstdint>
#include <vector>

#pragma pack(push, 1)
struct tagTAXRECORD {
    char szTaxCode[4];    // key 0: up to 3 characters, zero-terminated
    uint8_t taxData[23];  // the purchasing screens' (rate, description); copied whole
};
#pragma pack(pop)

static_assert(sizeof(tagTAXRECORD) == 27);
static_assert(offsetof(tagTAXRECORD, szTaxCode) == 0);
static_assert(offsetof(tagTAXRECORD, taxData) == 4);

class TARSEL_API RETaxFile : public RERecordFile<RETaxFile, tagTAXRECORD> {
public:
    RETaxFile();

    // Path and open flag kept by the class, readable by callers.
    using RERecordFile::m_filePath;
    using RERecordFile::m_fileOpen;
    using RERecordFile::m_isOldFormat;

    static int ResetPurTaxRecArray(std::vector<tagTAXRECORD*>& array) { return ResetRecArray(array); }

    // Positions on the record with the record's code and replaces it; 0 when the code is missing.
    int UpdateRecord(tagTAXRECORD& rec);

    // The file has one layout: the conversion hooks copy nothing and return 1.
    static int _ConvertPurTaxTypeToNewFormat(const tagTAXRECORD* oldRec, tagTAXRECORD* newRec);
    static int _ConvertPurTaxTypeToOldFormat(const tagTAXRECORD* newRec, tagTAXRECORD* oldRec);

private:
    static const RERecordFileSpec kSpec;
};
