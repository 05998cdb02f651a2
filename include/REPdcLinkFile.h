// REPdcLinkFile: the links between the marks of a production job, one PDCLINKFILETYPE each. The
// file has no key: it is read in the order of its records. Files of the earlier generation
// (98-byte records) are read and converted on every read.
// A program opens it with Initialize(path) (CreateNewFile first makes an empty file) and reads
// and writes it through the record-file methods of detail/RERecordFile.h and those below.
#pragma once

#include "REPdcMarkText.h"
#include "detail/RERecordFile.h"
#include "tarsel_export.h"

#include <cstddef>
#include <cstdint>
#include <vector>

#pragma pack(push, 1)
// OFFSET SIZE FIELD
//      0   17 szMark1
//     17   17 szMark2
//     34   17 szMark3
//     51   11 szText51
//     62   16 szText62
//     78    4 nValue78
//     82    9 szText82
//     91    4 nValue91     copied as it is
//     95    4 nValue95
//     99    4 nValue99
//    103    2 szText103
struct PDCLINKFILETYPE {
    char szMark1[17];
    char szMark2[17];
    char szMark3[17];
    char szText51[11];
    char szText62[16];
    int32_t nValue78;
    char szText82[9];
    uint32_t nValue91;
    int32_t nValue95;
    int32_t nValue99;
    char szText103[2];
};

struct OLD_PDCLINKFILETYPE {
    OLD_MARKTYPE szMark1;
    OLD_MARKTYPE szMark2;
    OLD_MARKTYPE szMark3;
    char szText51[10];
    char cSpare61;
    char szText62[15];
    char cSpare77;
    int16_t nValue78;
    char szText82[8];
    char cSpare88;
    uint32_t nValue91;
    int16_t nValue95;
    int16_t nValue99;
    char szText103[1];
};
#pragma pack(pop)

static_assert(sizeof(PDCLINKFILETYPE) == 105);
static_assert(offsetof(PDCLINKFILETYPE, szMark2) == 17);
static_assert(offsetof(PDCLINKFILETYPE, szMark3) == 34);
static_assert(offsetof(PDCLINKFILETYPE, szText51) == 51);
static_assert(offsetof(PDCLINKFILETYPE, szText62) == 62);
static_assert(offsetof(PDCLINKFILETYPE, nValue78) == 78);
static_assert(offsetof(PDCLINKFILETYPE, szText82) == 82);
static_assert(offsetof(PDCLINKFILETYPE, nValue91) == 91);
static_assert(offsetof(PDCLINKFILETYPE, nValue95) == 95);
static_assert(offsetof(PDCLINKFILETYPE, nValue99) == 99);
static_assert(offsetof(PDCLINKFILETYPE, szText103) == 103);

static_assert(sizeof(OLD_PDCLINKFILETYPE) == 98);
static_assert(offsetof(OLD_PDCLINKFILETYPE, szText51) == 51);
static_assert(offsetof(OLD_PDCLINKFILETYPE, szText62) == 62);
static_assert(offsetof(OLD_PDCLINKFILETYPE, nValue78) == 78);
static_assert(offsetof(OLD_PDCLINKFILETYPE, szText82) == 80);
static_assert(offsetof(OLD_PDCLINKFILETYPE, nValue91) == 89);
static_assert(offsetof(OLD_PDCLINKFILETYPE, nValue95) == 93);
static_assert(offsetof(OLD_PDCLINKFILETYPE, nValue99) == 95);
static_assert(offsetof(OLD_PDCLINKFILETYPE, szText103) == 97);

// Old layout to current; 1.
TARSEL_API int gConvertLinkFileTypeToNewFormat(const OLD_PDCLINKFILETYPE* oldRec, PDCLINKFILETYPE* newRec);
// Old files are never written in their own layout: succeeds without writing.
TARSEL_API int gConvertLinkFileTypeToOldFormat(const PDCLINKFILETYPE* newRec, OLD_PDCLINKFILETYPE* oldRec);

class TARSEL_API REPdcLinkFile : public RERecordFile<REPdcLinkFile, RELayout<PDCLINKFILETYPE, OLD_PDCLINKFILETYPE>> {
public:
    REPdcLinkFile();

    using RERecordFile::m_isOldFormat;

    static int ResetPdcLinkRecArray(std::vector<PDCLINKFILETYPE*>& array) { return ResetRecArray(array); }

private:
    static const RERecordFileSpec kSpec;
};
