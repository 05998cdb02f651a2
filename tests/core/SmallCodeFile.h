// A file class built in the tests on the record-file machinery, the way a simple class of the
// library is: a 27-byte record keyed by a code of up to three characters, one layout, its own
// path. Its spec can be swapped to try the machinery's other behaviours.
#pragma once

#include "core/RecordFileSpec.h"
#include "detail/RERecordFile.h"

#include <cstdint>

#pragma pack(push, 1)
struct SMALLCODERECORD {
    char szCode[4];
    char payload[23];
};
#pragma pack(pop)
static_assert(sizeof(SMALLCODERECORD) == 27);

constexpr REKeySegment kSmallCodeKey[] = {{1, 4, kKeyLastSegment, kKeyTypeZString, kKeyNullByte}};

constexpr RERecordFileSpec kSmallCodeSpec = {
    .className = "SmallCodeFile",
    .newSize = sizeof(SMALLCODERECORD),
    .corruptCode = 1234,
    .unknownErrorCode = 1277,
    .createCode = 1255,
    .create = {.recordLength = sizeof(SMALLCODERECORD), .segments = kSmallCodeKey, .dataLength = 816},
    .createOnSelf = true,
    .first = {REBtrieveBase::kOpGetFirst, REPositionalRead::kCurrentKey},
    .next = {REBtrieveBase::kOpGetNext, REPositionalRead::kCurrentKey},
    .keepOpenOnCorrupt = true,
    .ownPath = true,
};

class SmallCodeFile : public RERecordFile<SmallCodeFile, SMALLCODERECORD> {
public:
    explicit SmallCodeFile(const RERecordFileSpec& spec = kSmallCodeSpec) : RERecordFile(spec) {}

    int UpdateRecord(SMALLCODERECORD& rec) { return GetEqualMatch(rec.szCode, nullptr) && _UpdateCurrent(&rec); }
    int DeleteRecord(SMALLCODERECORD& rec) { return GetEqualMatch(rec.szCode, nullptr) && _DeleteCurrent(); }
};
