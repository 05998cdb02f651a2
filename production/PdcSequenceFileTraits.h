// What the sequence file tells the record-file machinery.
#pragma once

#include "REPdcSequenceFile.h"
#include "production/PdcFileFamily.h"

struct PdcSequenceFileTraits : PdcFileTraits {
    using Record = PDCSEQDATATYPE;
    using OldRecord = OLD_PDCSEQDATATYPE;
    static constexpr const char* kClassName = "REPdcSequenceFile";
    static constexpr REMessageCodes kMessages = {.corrupt = 1224, .unknownError = 1268, .create = 1246};
    // Key 0: first name (duplicates); key 1: first, second name; key 2: second, first name.
    static constexpr REKeySegment kKeys[] = {
        RE_KEY(sFirstName, kPdcDupLastSegment, kKeyTypeZString),
        RE_KEY(sFirstName, kKeyInnerSegment, kKeyTypeZString),
        RE_KEY(sSecondName, kKeyLastSegment, kKeyTypeZString),
        RE_KEY(sSecondName, kKeyInnerSegment, kKeyTypeZString),
        RE_KEY(sFirstName, kKeyLastSegment, kKeyTypeZString),
    };
    static constexpr REField kFields[] = {
        RE_MARK(sFirstName, sFirstName),
        RE_MARK(sSecondName, sSecondName),
        RE_NUMBER(nNumber, kInteger),
    };
    static constexpr REFieldTable kFieldTable = PdcFieldTable(kFields, sizeof(Record), sizeof(OldRecord));
};
