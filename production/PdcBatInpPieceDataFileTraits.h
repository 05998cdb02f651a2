// What the batch piece file tells the record-file machinery.
#pragma once

#include "REPdcBatInpPieceDataFile.h"
#include "production/PdcFileFamily.h"

struct PdcBatInpPieceDataFileTraits : PdcFileTraits {
    using Record = PDCBIPIEFILETYPE;
    using OldRecord = OLD_PDCBIPIEFILETYPE;
    static constexpr const char* kClassName = "REPdcBatInpPieceDataFile";
    static constexpr REMessageCodes kMessages = {.corrupt = 1215, .unknownError = 1260, .create = 1238};
    static constexpr REKeySegment kKeys[] = {
        RE_KEY(nBatchNo, kPdcDupLastSegment, kKeyTypeInteger),
    };
    static constexpr REField kFields[] = {
        RE_NUMBER(nBatchNo, kInteger),
        RE_MARK(sMark4, sMark4),
        RE_MARK(sMark21, sMark21),
        RE_NUMBER(nValue38, kInteger),
        RE_MARK(sMark42, sMark42),
        RE_PDC_JOINED(sText59, sText59),
    };
    static constexpr REFieldTable kFieldTable = PdcFieldTable(kFields, sizeof(Record), sizeof(OldRecord));
};
