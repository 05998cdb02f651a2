// What the production sort file tells the record-file machinery: one layout, four report keys
// whose texts compare ignoring case (the flag apart), its own path; and the sort names.
#pragma once

#include "REPdcCalcFile.h"
#include "core/RecordFileSpec.h"

struct PdcCalcTraits {
    using Record = PDCCALCRECORD;
    static constexpr const char* kClassName = "REPdcCalcFile";
    // Read failures show the create text with the status, as the purchasing work file's do.
    static constexpr REMessageCodes kMessages = {.corrupt = 1216, .unknownError = 1113, .create = 1113};

    static constexpr uint16_t kText = kKeyInnerSegment | kKeyCaseInsensitive;
    static constexpr uint16_t kLastText = kKeyLastSegment | kKeyCaseInsensitive;
    static constexpr uint16_t kFlag = kKeyInnerSegment;
    // All keys unique. Key 3's integer and its next text share byte 59.
    static constexpr REKeySegment kKeys[] = {
        // Key 0
        RE_KEY(sText38, kText, kKeyTypeZString),
        RE_KEY(sText4, kText, kKeyTypeZString),
        RE_KEY(sFlag, kFlag, kKeyTypeZString),
        RE_KEY(sText21, kText, kKeyTypeZString),
        RE_KEY(sText59, kText, kKeyTypeZString),
        RE_KEY(sText64, kLastText, kKeyTypeZString),
        // Key 1: category order
        RE_KEY(sCategory164, kText, kKeyTypeZString),
        RE_KEY(sSubCategory171, kText, kKeyTypeZString),
        RE_KEY(sText4, kText, kKeyTypeZString),
        RE_KEY(sFlag, kFlag, kKeyTypeZString),
        RE_KEY(sText21, kText, kKeyTypeZString),
        RE_KEY(sText59, kText, kKeyTypeZString),
        RE_KEY(sText64, kLastText, kKeyTypeZString),
        // Key 2: pay category order
        RE_KEY(sPayCategory157, kText, kKeyTypeZString),
        RE_KEY(sText38, kText, kKeyTypeZString),
        RE_KEY(sText4, kText, kKeyTypeZString),
        RE_KEY(sFlag, kFlag, kKeyTypeZString),
        RE_KEY(sText21, kText, kKeyTypeZString),
        RE_KEY(sText59, kText, kKeyTypeZString),
        RE_KEY(sText64, kLastText, kKeyTypeZString),
        // Key 3: dimension order
        RE_KEY_PART(nDimOrder56, 4, kKeyInnerSegment, kKeyTypeInteger),
        RE_KEY(sText59, kText, kKeyTypeZString),
        RE_KEY(sText114, kText, kKeyTypeZString),
        RE_KEY(sText38, kText, kKeyTypeZString),
        RE_KEY(sText4, kText, kKeyTypeZString),
        RE_KEY(sFlag, kFlag, kKeyTypeZString),
        RE_KEY(sText21, kText, kKeyTypeZString),
        RE_KEY(sText64, kLastText, kKeyTypeZString),
    };
    static constexpr uint16_t kFileFlags = kFileFlagsJobItems;
    static constexpr REField kFields[] = {
        RE_FIELD(sFlag, kText),          RE_FIELD(sText4, kText),          RE_FIELD(sText21, kText),
        RE_FIELD(sText38, kText),        RE_FIELD(nDimOrder56, kBytes),    RE_FIELD(sText59, kText),
        RE_FIELD(sText64, kText),        RE_FIELD(sText114, kText),        RE_FIELD(sPayCategory157, kText),
        RE_FIELD(sCategory164, kText),   RE_FIELD(sSubCategory171, kText),
    };
    static constexpr REFieldTable kFieldTable = {kFields, sizeof(Record), 0};
    static constexpr void Customize(RERecordFileSpec& spec) {
        spec.ownPath = true;
        spec.first.keyNumber = REPositionalRead::kCurrentKey;
        spec.next.keyNumber = REPositionalRead::kCurrentKey;
    }

    struct SortOrder {
        const char* name;
        int keyNumber;
    };
    static constexpr int kCategoryKey = 1;
    static constexpr int kPayCategoryKey = 2;
    static constexpr int kDimensionKey = 3;
    // Names not listed select key 0.
    static constexpr SortOrder kSortOrders[] = {
        {REPdcCalcFile::kAllItemAllStationSort, 0},
        {REPdcCalcFile::kAllItemOneStationLongSort, 0},
        {REPdcCalcFile::kAllItemOneStationShortSort, 0},
        {REPdcCalcFile::kAllStationAcrossSort, 0},
        {REPdcCalcFile::kCatSubcatDrawMainAccSort, kCategoryKey},
        {REPdcCalcFile::kDimAccSeqSort, 0},
        {REPdcCalcFile::kDimensionMoraAccSort, kDimensionKey},
        {REPdcCalcFile::kDrawNumberMainAccSort, 0},
        {REPdcCalcFile::kMarkSort, 0},
        {REPdcCalcFile::kPayCatSort, kPayCategoryKey},
        {REPdcCalcFile::kRouteSort, 0},
        {REPdcCalcFile::kSeqMainAccSort, 0},
        {REPdcCalcFile::kSingleQtyDimAccSeqSort, 0},
    };
};
