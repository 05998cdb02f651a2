// What the settings file tells the record-file machinery: its layouts, messages, key and fields.
#pragma once

#include "REMaintFile.h"
#include "catalogue/CatalogueFiles.h"
#include "core/RecordFileSpec.h"

struct MaintGroupFields {
    using Record = MAINTGROUP;
    using OldRecord = OLD_MAINTGROUP;
    static constexpr REField kFields[] = {
        RE_TEXT(szFlag),
        RE_TEXT(szText2),
        RE_TEXT(szText18),
        RE_COPY(nShort34, kInteger),
        RE_COPY(nValue40, kInteger),
    };
    static constexpr REFieldTable kFieldTable = {kFields, sizeof(Record), sizeof(OldRecord)};
};

struct MaintFileTraits {
    using Record = MAINTRECORD;
    using OldRecord = OLD_MAINTRECORD;
    static constexpr const char* kClassName = "REMaintFile";
    static constexpr REMessageCodes kMessages = {.corrupt = 1001, .unknownError = 1107, .create = 1108};
    // Key 0: section, item, sequence; no duplicates.
    static constexpr REKeySegment kKeys[] = {
        RE_KEY(szSection, kKeyInnerSegment, kKeyTypeZString),
        RE_KEY(szItem, kKeyInnerSegment, kKeyTypeZString),
        RE_KEY(fSeq, kKeyLastSegment, kKeyTypeBFloat),
    };
    static constexpr uint16_t kFileFlags = kFileFlagsJobItems;
    static constexpr REField kFields[] = {
        RE_TEXT(szSection),
        RE_TEXT(szItem),
        RE_COPY(fSeq, kReal),
        RE_TEXT(szFlag46),
        RE_TEXT(szText48),
        RE_TEXT(szText89),
        RE_COPY(nShort130, kInteger),
        RE_TEXT(szValue),
        RE_RECORD(groupA, MaintGroupFields::kFieldTable),
        RE_RECORD(groupB, MaintGroupFields::kFieldTable),
        RE_RECORD(groupC, MaintGroupFields::kFieldTable),
        RE_TEXT(szFlag365),
        RE_TEXT(szText367),
        RE_TEXT(szText408),
        RE_TEXT(szFlag449),
    };
    static constexpr REFieldTable kFieldTable = {kFields, sizeof(Record), sizeof(OldRecord)};
    static constexpr void Customize(RERecordFileSpec& spec) {
        // Created through the object itself, with 128 bytes passed.
        spec.createOnSelf = true;
        spec.create.dataLength = 128;
        REReadInStoredOrder(spec);
    }
};
