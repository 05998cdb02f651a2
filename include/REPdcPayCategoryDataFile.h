// REPdcPayCategoryDataFile: the pay categories of a production project, one PDCPAYCATDATATYPE
// per code with its description and two rates, keyed by code. Files of the earlier generation
// (31-byte records, 32-bit rates) are converted on every read.
// A program opens it with Initialize(path) (CreateNewFile first makes an empty file) and reads
// and writes it through the record-file methods of detail/RERecordFile.h and those below.
#pragma once

#include "detail/PdcFileFamily.h"
#include "tarsel_export.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#pragma pack(push, 1)
struct PDCPAYCATDATATYPE {
    char sPayCatCode[7];    // 6 characters; key 0
    char sDescription[16];  // 15 characters
    double dRate1;
    double dRate2;
};

struct OLD_PDCPAYCATDATATYPE {
    char sPayCatCode[6];
    char cSpare6;
    char sDescription[15];
    char cSpare22;
    float dRate1;
    float dRate2;
};
#pragma pack(pop)

static_assert(sizeof(PDCPAYCATDATATYPE) == 39);
static_assert(offsetof(PDCPAYCATDATATYPE, sDescription) == 7);
static_assert(offsetof(PDCPAYCATDATATYPE, dRate1) == 23);
static_assert(offsetof(PDCPAYCATDATATYPE, dRate2) == 31);
static_assert(sizeof(OLD_PDCPAYCATDATATYPE) == 31);
static_assert(offsetof(OLD_PDCPAYCATDATATYPE, sDescription) == 7);
static_assert(offsetof(OLD_PDCPAYCATDATATYPE, dRate1) == 23);
static_assert(offsetof(OLD_PDCPAYCATDATATYPE, dRate2) == 27);

class TARSEL_API REPdcPayCategoryDataFile
    : public REPdcFile<REPdcPayCategoryDataFile, RELayout<PDCPAYCATDATATYPE, OLD_PDCPAYCATDATATYPE>> {
public:
    REPdcPayCategoryDataFile();

    static int ResetPdcPayCategoryDataRecArray(std::vector<PDCPAYCATDATATYPE*>& array) {
        return ResetRecArray(array);
    }

    // Get Equal on key 0 with the code (7 bytes); a null `out` only tests existence.
    int GetEqualMatch(const std::string& code, PDCPAYCATDATATYPE* out);

private:
    static const RERecordFileSpec kSpec;
};
