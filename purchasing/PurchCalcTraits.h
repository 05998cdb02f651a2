// What the purchasing work file tells the record-file machinery: one layout, one key whose
// texts compare ignoring case, its own path.
#pragma once

#include "REPurchCalcFile.h"
#include "core/RecordFileSpec.h"

struct PurchCalcTraits {
    using Record = PURCHASECALCRECORD;
    static constexpr const char* kClassName = "REPurchCalcFile";
    // Read failures show the create text with the status, as the production sort file's do.
    static constexpr REMessageCodes kMessages = {.corrupt = 1204, .unknownError = 1113, .create = 1113};
    static constexpr uint16_t kText = kKeyInnerSegment | kKeyCaseInsensitive;
    // Key 0, unique: three texts and an integer.
    static constexpr REKeySegment kKeys[] = {
        RE_KEY(sText0, kText, kKeyTypeZString),
        RE_KEY(sText2, kText, kKeyTypeZString),
        RE_KEY(sText11, kText, kKeyTypeZString),
        RE_KEY(nValue20, kKeyLastSegment, kKeyTypeInteger),
    };
    static constexpr uint16_t kFileFlags = kFileFlagsJobItems;
    static constexpr REField kFields[] = {
        RE_FIELD(sText0, kText),  RE_FIELD(sText2, kText),   RE_FIELD(sText11, kText),
        RE_FIELD(nValue20, kInteger), RE_FIELD(data24, kBytes),
    };
    static constexpr REFieldTable kFieldTable = {kFields, sizeof(Record), 0};
    static constexpr void Customize(RERecordFileSpec& spec) { spec.ownPath = true; }
};
