// What the batch header file tells the record-file machinery.
#pragma once

#include "REPdcBatInpDataFile.h"
#include "production/PdcFileFamily.h"

struct PdcBatInpDataFileTraits : PdcFileTraits {
    using Record = PDCBIDFILETYPE;
    using OldRecord = OLD_PDCBIDFILETYPE;
    static constexpr const char* kClassName = "REPdcBatInpDataFile";
    static constexpr REMessageCodes kMessages = {.corrupt = 1213, .unknownError = 1258, .create = 1236};
    static constexpr REKeySegment kKeys[] = {
        RE_KEY(nBatchNo, kKeyLastSegment, kKeyTypeInteger),
    };
    static constexpr REField kFields[] = {
        RE_NUMBER(nBatchNo, kInteger),
        RE_COPY(nByte4, kInteger),
        RE_NUMBER(nValue5, kInteger),
        RE_PDC_TRIMMED(sText9),
        RE_MARK(sMark18, sMark18),
        RE_PDC_TRIMMED(sText35),
        RE_PDC_DATE(dDate39),
        RE_REAL(dValue47),
    };
    static constexpr REFieldTable kFieldTable = PdcFieldTable(kFields, sizeof(Record), sizeof(OldRecord));
};
