// What the labor group and labor multiplication factor files tell the record-file machinery.
#pragma once

#include "RELaborGroupFile.h"
#include "RELaborMultFactorFile.h"
#include "core/RecordFileSpec.h"
#include "labor/LaborCodeTraits.h"

struct LaborGroupTraits {
    using Record = LABORGROUPRECORD;
    using OldRecord = OLD_LABORGROUPRECORD;
    static constexpr const char* kClassName = "RELaborGroupFile";
    static constexpr REMessageCodes kMessages = {.corrupt = 1018, .unknownError = 1111, .create = 1111};
    // Key 0: name, group number; no duplicates.
    static constexpr REKeySegment kKeys[] = {
        RE_KEY(sGroupName, kLaborKeyText, kKeyTypeZString),
        RE_KEY(nGroupNo, kKeyLastSegment, kKeyTypeInteger),
    };
    static constexpr int kKeyLength = sizeof(Record::sGroupName) + sizeof(Record::nGroupNo);
    static constexpr int kOldKeyLength = sizeof(OldRecord::sGroupName) + sizeof(OldRecord::nGroupNo);
    static constexpr REField kFields[] = {
        RE_TEXT(sGroupName),
        RE_NUMBER(nGroupNo, kInteger),
        RE_TEXT(sDescription),
    };
    static constexpr REFieldTable kFieldTable = {kFields, sizeof(Record), sizeof(OldRecord)};
};

struct LaborMultFactorTraits {
    using Record = LABORMULTFACTORRECORD;
    using OldRecord = OLD_LABORMULTFACTORRECORD;
    static constexpr const char* kClassName = "RELaborMultFactorFile";
    static constexpr REMessageCodes kMessages = {.corrupt = 1019, .unknownError = 1112, .create = 1112};
    // Key 0: factor type, name, step value; no duplicates.
    static constexpr REKeySegment kKeys[] = {
        RE_KEY(sFactorType, kLaborKeyText, kKeyTypeZString),
        RE_KEY(sGroupName, kLaborKeyText, kKeyTypeZString),
        RE_KEY(nStepValue, kKeyLastSegment, kKeyTypeUnsigned),
    };
    static constexpr int kKeyLength =
        sizeof(Record::sFactorType) + sizeof(Record::sGroupName) + sizeof(Record::nStepValue);
    static constexpr int kOldKeyLength =
        sizeof(OldRecord::sFactorType) + sizeof(OldRecord::sGroupName) + sizeof(OldRecord::nStepValue);
    static constexpr REField kFields[] = {
        RE_TEXT(sFactorType),
        RE_TEXT(sGroupName),
        RE_COPY(nStepValue, kInteger),
        RE_COPY(factor, kBytes),
    };
    static constexpr REFieldTable kFieldTable = {kFields, sizeof(Record), sizeof(OldRecord)};
    static constexpr const char* kWeightType = "W";
    static constexpr const char* kQuantityType = "Q";
};
