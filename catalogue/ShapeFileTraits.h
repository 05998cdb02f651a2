// What the shape file and its dimension descriptors tell the record-file machinery.
#pragma once

#include "REShapeFile.h"
#include "catalogue/CatalogueFiles.h"
#include "core/RecordFileSpec.h"

struct SizeRecordDescFields {
    using Record = SIZERECORDDESC;
    using OldRecord = OLD_SIZERECORDDESC;
    static constexpr REField kFields[] = {
        RE_TEXT(szFieldCode),
        RE_TEXT(szAttr4),
        RE_TEXT(szAttr6),
        RE_TEXT(szAttr8),
    };
    static constexpr REFieldTable kFieldTable = {kFields, sizeof(Record), sizeof(OldRecord)};
};

struct ShapeFileTraits {
    using Record = SHAPEDATRECORD;
    using OldRecord = OLD_SHAPEDATRECORD;
    static constexpr const char* kClassName = "REShapeFile";
    static constexpr REMessageCodes kMessages = {.corrupt = 1003, .unknownError = 1109, .create = 1109};
    // Key 0: the shape code, unique; the searches compare it without regard to case.
    static constexpr REKeySegment kKeys[] = {
        RE_KEY(szShape, kKeyLastSegment | kKeyCaseInsensitive, kKeyTypeZString),
    };
    // The stored record has room for ten descriptors of the second group: the eleventh reads as
    // zeros and is not written back.
    static constexpr uint32_t kStoredDescs193 = 10;
    static constexpr REField kFields[] = {
        RE_TEXT(szShape),
        RE_TEXT(szCode5),
        RE_TEXT(szDescription),
        RE_TEXT(szText44),
        RE_COPY(nNumber71, kInteger),
        RE_COPY(nFlags, kInteger),
        RE_TEXT(szText75),
        RE_COPY(nNumbers81, kInteger),
        RE_RECORD(descs93, SizeRecordDescFields::kFieldTable),
        refield::Make("descs193", REFieldKind::kRecord, REFieldRule::kRecord, offsetof(Record, descs193),
                      sizeof(SIZERECORDDESC), offsetof(OldRecord, descs193), sizeof(OLD_SIZERECORDDESC),
                      kStoredDescs193, &SizeRecordDescFields::kFieldTable),
        refield::Make("descs193[10]", REFieldKind::kBytes, REFieldRule::kNewOnly,
                      offsetof(Record, descs193) + kStoredDescs193 * sizeof(SIZERECORDDESC), sizeof(SIZERECORDDESC),
                      0, 0, 1),
    };
    static constexpr REFieldTable kFieldTable = {kFields, sizeof(Record), sizeof(OldRecord)};
    static constexpr void Customize(RERecordFileSpec& spec) {
        spec.keepOpenOnCorrupt = true;
        REReadOnCurrentKey(spec);
    }
};
