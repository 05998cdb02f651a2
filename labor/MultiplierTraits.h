// What the multiplier file and the two estimate multiplier tables tell the record-file machinery.
#pragma once

#include "REEstMultLongFile.h"
#include "REEstMultShortFile.h"
#include "REMultiplierFile.h"
#include "core/RecordFileSpec.h"

struct MultiplierTraits {
    using Record = MULTIPLIERRECORD;
    using OldRecord = OLD_MULTIPLIERRECORD;
    static constexpr const char* kClassName = "REMultiplierFile";
    // No read-failure text of its own: read failures show the create text with the status.
    static constexpr REMessageCodes kMessages = {.corrupt = 1007, .unknownError = 1101, .create = 1101};
    // Key 0: the code; no duplicates; null value byte blank.
    static constexpr uint8_t kCodeNullValue = 0x20;
    static constexpr REKeySegment kKeys[] = {
        {offsetof(Record, sCode) + 1, sizeof(Record::sCode), kKeyLastSegment, kKeyTypeZString, kCodeNullValue},
    };
    static constexpr int kKeyLength = sizeof(Record::sCode);
    static constexpr int kOldKeyLength = sizeof(OldRecord::sCode);
    static constexpr uint16_t kFileFlags = kFileFlagsJobItems;
    static constexpr REField kFields[] = {
        RE_TEXT(sCode),
        RE_COPY(multiplier, kBytes),
    };
    static constexpr REFieldTable kFieldTable = {kFields, sizeof(Record), sizeof(OldRecord)};
};

// The estimate multiplier tables: one opaque layout, no keys. Read failures show the create text.
template <class REC>
struct EstMultTraits {
    using Record = REC;
    static constexpr uint16_t kFileFlags = kFileFlagsJobItems;
    static constexpr REField kFields[] = {RE_FIELD(data, kBytes)};
    static constexpr REFieldTable kFieldTable = {kFields, sizeof(Record), 0};
};

struct EstMultLongTraits : EstMultTraits<MULTLONGRECORD> {
    static constexpr const char* kClassName = "REEstMultLongFile";
    static constexpr REMessageCodes kMessages = {.corrupt = 1205, .unknownError = 1206, .create = 1206};
};

struct EstMultShortTraits : EstMultTraits<MULTSHORTRECORD> {
    static constexpr const char* kClassName = "REEstMultShortFile";
    static constexpr REMessageCodes kMessages = {.corrupt = 1207, .unknownError = 1208, .create = 1208};
};
