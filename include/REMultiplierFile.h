// REMultiplierFile: the estimate multipliers, one MULTIPLIERRECORD per code. Files of the
// earlier generation (10-byte records, blank-padded codes) are kept in place.
// A program opens it with Initialize(path) (CreateNewFile first makes an empty file) and reads
// and writes it through the record-file methods of detail/RERecordFile.h and those below.
#pragma once

#include "detail/REKeyedRecordFile.h"
#include "tarsel_export.h"

#include <cstddef>
#include <cstdint>
#include <string>

#pragma pack(push, 1)
struct MULTIPLIERRECORD {
    char sCode[7];          // key 0: up to 6 characters
    uint8_t multiplier[4];  // the estimating screens' value, copied unchanged
};

struct OLD_MULTIPLIERRECORD {
    char sCode[6];
    uint8_t multiplier[4];
};
#pragma pack(pop)

static_assert(sizeof(MULTIPLIERRECORD) == 11);
static_assert(offsetof(MULTIPLIERRECORD, sCode) == 0);
static_assert(offsetof(MULTIPLIERRECORD, multiplier) == 7);
static_assert(sizeof(OLD_MULTIPLIERRECORD) == 10);
static_assert(offsetof(OLD_MULTIPLIERRECORD, multiplier) == 6);

class TARSEL_API REMultiplierFile
    : public REKeyedRecordFile<REMultiplierFile, RELayout<MULTIPLIERRECORD, OLD_MULTIPLIERRECORD>> {
public:
    REMultiplierFile();

    using REKeyedRecordFile::m_isOldFormat;
    using REKeyedRecordFile::m_searchActive;
    using REKeyedRecordFile::AppendFile;
    using REKeyedRecordFile::_CopyRecords;

    // The record whose whole code equals `code` ignoring case, found from the key of the code on
    // (Get Greater or Equal); an empty code finds nothing. Next: the following record, same test.
    int SearchFirstRecord(const char* code, MULTIPLIERRECORD* rec);
    int SearchNextRecord(const char* code, MULTIPLIERRECORD* rec);
    int GetFirstMatch(const char* code, MULTIPLIERRECORD* rec) { return SearchFirstRecord(code, rec); }
    int GetNextMatch(const char* code, MULTIPLIERRECORD* rec) { return SearchNextRecord(code, rec); }
    // Get Equal on the code; 1 when found (copied when `rec` is given).
    int GetExactMatch(const char* code, MULTIPLIERRECORD* rec);

    // Returns the record manager's status: 0 when inserted, and 0 too (without writing) when the
    // code exists; callers test the code with GetExactMatch first.
    int AddRecord(MULTIPLIERRECORD& rec);
    // Updates the record with the code and returns the status; a missing code returns 0 without
    // writing, or is inserted (status returned) when `addIfMissing` is set.
    int UpdateRecord(MULTIPLIERRECORD& rec, int addIfMissing);

    // Appends every record of the file at `path`, converting between the layouts.
    int AppendFile(const char* path) { return AppendFile(path, 1); }
    int AppendFile(const std::string& path) { return AppendFile(path.c_str(), 1); }
    // Appends every record of the open file `src`.
    int _CopyRecords(REBtrieveBase& src, int srcIsOld);

    static int _ConvertToNewRecordFormat(const OLD_MULTIPLIERRECORD* oldRec, MULTIPLIERRECORD* newRec);
    static int _ConvertToOldRecordFormat(const MULTIPLIERRECORD* newRec, OLD_MULTIPLIERRECORD* oldRec);

private:
    static const RERecordFileSpec kSpec;
};
