// What the pay category file tells the record-file machinery.
#pragma once

#include "REPdcPayCategoryDataFile.h"
#include "production/PdcFileFamily.h"

struct PdcPayCategoryDataFileTraits : PdcFileTraits {
    using Record = PDCPAYCATDATATYPE;
    using OldRecord = OLD_PDCPAYCATDATATYPE;
    static constexpr const char* kClassName = "REPdcPayCategoryDataFile";
    static constexpr REMessageCodes kMessages = {.corrupt = 1220, .unknownError = 1264, .create = 1242};
    static constexpr REKeySegment kKeys[] = {
        RE_KEY(sPayCatCode, kKeyLastSegment, kKeyTypeZString),
    };
    static constexpr REField kFields[] = {
        RE_TEXT(sPayCatCode),
        RE_TEXT(sDescription),
        RE_REAL(dRate1),
        RE_REAL(dRate2),
    };
    static constexpr REFieldTable kFieldTable = PdcFieldTable(kFields, sizeof(Record), sizeof(OldRecord));
};
