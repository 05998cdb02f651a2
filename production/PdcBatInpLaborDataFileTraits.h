// What the batch labor file tells the record-file machinery.
#pragma once

#include "REPdcBatInpLaborDataFile.h"
#include "production/PdcFileFamily.h"

struct PdcBatInpLaborDataFileTraits : PdcFileTraits {
    using Record = PDCBILABFILETYPE;
    using OldRecord = OLD_PDCBILABFILETYPE;
    static constexpr const char* kClassName = "REPdcBatInpLaborDataFile";
    static constexpr REMessageCodes kMessages = {.corrupt = 1214, .unknownError = 1259, .create = 1237};
    static constexpr REKeySegment kKeys[] = {
        RE_KEY(nBatchNo, kPdcDupLastSegment, kKeyTypeInteger),
    };
    static constexpr REField kFields[] = {
        RE_NUMBER(nBatchNo, kInteger),
        RE_NUMBER(nValue4, kInteger),
        RE_NUMBER(nValue8, kInteger),
        RE_PDC_JOINED(sText12, sText12),
        RE_NUMBER(nValue43, kInteger),
    };
    static constexpr REFieldTable kFieldTable = PdcFieldTable(kFields, sizeof(Record), sizeof(OldRecord));
};
