// REPdcCalcFile: the production sort file, fixed 242-byte PDCCALCRECORD rows written by a report
// run and read back in the order a sort name selects (DoIndexing). One layout; the class keeps
// its own path and open flag.
// A program opens it with Initialize(path) (CreateNewFile first makes an empty file) and reads
// and writes it through the record-file methods of detail/RERecordFile.h and those below.
#pragma once

#include "detail/REWorkFile.h"
#include "tarsel_export.h"

#include <cstddef>
#include <cstdint>
#include <string>

#pragma pack(push, 1)
// Only the fields the keys name are known here; the report run fills the rest.
struct PDCCALCRECORD {
    uint8_t data0[2];
    char sFlag[2];          // one-character flag, in every key, case-sensitive
    char sText4[17];        // in every key
    char sText21[17];       // in every key
    char sText38[17];       // first segment of key 0
    uint8_t data55[1];
    // Key 3 (dimension order) begins with an integer over the 4 bytes from offset 56, the last of
    // which is the first byte of sText59.
    uint8_t nDimOrder56[3];
    char sText59[5];
    char sText64[30];       // last segment of every key
    uint8_t data94[20];
    char sText114[11];      // third segment of key 3
    uint8_t data125[32];
    char sPayCategory157[7];  // first segment of key 2
    char sCategory164[7];     // first segment of key 1
    char sSubCategory171[7];  // second segment of key 1
    uint8_t data178[64];
};
#pragma pack(pop)

static_assert(sizeof(PDCCALCRECORD) == 242);
static_assert(offsetof(PDCCALCRECORD, sFlag) == 2);
static_assert(offsetof(PDCCALCRECORD, sText4) == 4);
static_assert(offsetof(PDCCALCRECORD, sText21) == 21);
static_assert(offsetof(PDCCALCRECORD, sText38) == 38);
static_assert(offsetof(PDCCALCRECORD, nDimOrder56) == 56);
static_assert(offsetof(PDCCALCRECORD, sText59) == 59);
static_assert(offsetof(PDCCALCRECORD, sText64) == 64);
static_assert(offsetof(PDCCALCRECORD, sText114) == 114);
static_assert(offsetof(PDCCALCRECORD, sPayCategory157) == 157);
static_assert(offsetof(PDCCALCRECORD, sCategory164) == 164);
static_assert(offsetof(PDCCALCRECORD, sSubCategory171) == 171);
static_assert(offsetof(PDCCALCRECORD, data178) == 178);

class TARSEL_API REPdcCalcFile : public REWorkFile<REPdcCalcFile, PDCCALCRECORD> {
public:
    // The report orders, by sort name.
    static constexpr const char* kAllItemAllStationSort = "ALLITEMALLSTATION SORT";
    static constexpr const char* kAllItemOneStationLongSort = "ALLITEMONESTATIONLONG SORT";
    static constexpr const char* kAllItemOneStationShortSort = "ALLITEMONESTATIONSHORT SORT";
    static constexpr const char* kAllStationAcrossSort = "ALLSTATIONACROSS SORT";
    static constexpr const char* kCatSubcatDrawMainAccSort = "CAT SUBCAT DRAW MAIN ACC SORT";
    static constexpr const char* kDimAccSeqSort = "DIM ACC SEQ SORT";
    static constexpr const char* kDimensionMoraAccSort = "DIMENSION MORA ACC SORT";
    static constexpr const char* kDrawNumberMainAccSort = "DRAWNUMBER MAIN ACC SORT";
    static constexpr const char* kMarkSort = "MARK SORT";
    static constexpr const char* kPayCatSort = "PAYCAT SORT";
    static constexpr const char* kRouteSort = "ROUTE SORT";
    static constexpr const char* kSeqMainAccSort = "SEQ MAIN ACC SORT";
    static constexpr const char* kSingleQtyDimAccSeqSort = "SINGLEQTY DIM ACC SEQ SORT";

    REPdcCalcFile();

    using REWorkFile::m_filePath;
    using REWorkFile::m_fileOpen;

    // Opens the file at `path`; 0 without a message when there is none there.
    int Initialize(const char* path) { return _InitializeExisting(path); }
    int Initialize(const std::string& path) { return _InitializeExisting(path.c_str()); }

    // Selects the key of the sort name (ignoring case; an unknown name selects key 0) for the
    // reads that follow. 1.
    int DoIndexing(const char* sortName);
    int DoIndexing(const std::string& sortName) { return DoIndexing(sortName.c_str()); }

    // DeleteAllRecord answers whether its last step succeeded: never, so always 0.
    static constexpr int16_t kDeleteAllDone = kStatusSuccess;

private:
    static const RERecordFileSpec kSpec;
};
