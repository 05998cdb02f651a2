// What the purchase tax file tells the record-file machinery: one 27-byte layout keyed by its
// code, messages shared with the purchase order files, its own path.
#pragma once

#include "RETaxFile.h"
#include "core/RecordFileSpec.h"

struct TaxFileTraits {
    using Record = tagTAXRECORD;
    static constexpr const char* kClassName = "RETaxFile";
    static constexpr REMessageCodes kMessages = {.corrupt = 1234, .unknownError = 1277, .create = 1255};
    // Key 0: the code; no duplicates.
    static constexpr REKeySegment kKeys[] = {RE_KEY(szTaxCode, kKeyLastSegment, kKeyTypeZString)};
    static constexpr REField kFields[] = {RE_FIELD(szTaxCode, kText), RE_FIELD(taxData, kBytes)};
    static constexpr REFieldTable kFieldTable = {kFields, sizeof(Record), 0};
    // The Create passes the whole zero-filled specification buffer.
    static constexpr uint32_t kCreateDataLength = 816;
    static constexpr void Customize(RERecordFileSpec& spec) {
        spec.create.dataLength = kCreateDataLength;
        spec.last.keyNumber = REPositionalRead::kCurrentKey;
        spec.ownPath = true;
    }
};
