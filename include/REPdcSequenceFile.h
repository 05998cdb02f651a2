// REPdcSequenceFile: the sequences of a production project, one PDCSEQDATATYPE per pair of
// names with a number. Keys: 0 the first name (duplicates), 1 the pair, 2 the reversed pair.
// Files of the earlier generation (36-byte records) are converted on every read.
// A program opens it with Initialize(path) (CreateNewFile first makes an empty file) and reads
// and writes it through the record-file methods of detail/RERecordFile.h and those below.
#pragma once

#include "REPdcMarkText.h"
#include "detail/PdcFileFamily.h"
#include "tarsel_export.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#pragma pack(push, 1)
struct PDCSEQDATATYPE {
    char sFirstName[17];   // mark text
    char sSecondName[17];  // mark text
    int32_t nNumber;
};

struct OLD_PDCSEQDATATYPE {
    OLD_MARKTYPE sFirstName;
    OLD_MARKTYPE sSecondName;
    int16_t nNumber;
};
#pragma pack(pop)

static_assert(sizeof(PDCSEQDATATYPE) == 38);
static_assert(offsetof(PDCSEQDATATYPE, sFirstName) == 0);
static_assert(offsetof(PDCSEQDATATYPE, sSecondName) == 17);
static_assert(offsetof(PDCSEQDATATYPE, nNumber) == 34);
static_assert(sizeof(OLD_PDCSEQDATATYPE) == 36);
static_assert(offsetof(OLD_PDCSEQDATATYPE, sSecondName) == 17);
static_assert(offsetof(OLD_PDCSEQDATATYPE, nNumber) == 34);

class TARSEL_API REPdcSequenceFile
    : public REPdcFile<REPdcSequenceFile, RELayout<PDCSEQDATATYPE, OLD_PDCSEQDATATYPE>> {
public:
    REPdcSequenceFile();

    static int ResetPdcSequenceRecArray(std::vector<PDCSEQDATATYPE*>& array) { return ResetRecArray(array); }

    // Get Equal on key 0 with the first name (17 bytes).
    int _GetEqualMatch(const std::string& firstName, PDCSEQDATATYPE* out);
    // Appends a heap copy of every record whose first name equals `firstName` ignoring case;
    // 1 if the array is not empty afterwards, 0 when nothing lies at or after the name.
    int GetAllSelectedRecords(const std::string& firstName, std::vector<PDCSEQDATATYPE*>& array);
    // Deletes every record whose first name equals `firstName` ignoring case; 0 when nothing
    // lies at or after the name, else 1.
    int DeleteAllSelectedRecords(const std::string& firstName);
    // Inserts the records in order, stopping at the first refused one (0); 0 for an empty array.
    int InsertRecords(std::vector<PDCSEQDATATYPE*>& array);
    int InsertRecords(std::vector<void*>& array);
    // The record of exactly this pair (case matters), on key 1; `out` is zeroed first.
    int SearchRecord(const std::string& firstName, const std::string& secondName, PDCSEQDATATYPE* out);

private:
    template <class Array>
    int _InsertAll(const Array& array);

    static const RERecordFileSpec kSpec;
};
