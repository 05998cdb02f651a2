// What a record-file class tells the shared machinery about its file: record layouts and
// lengths, message numbers, the key table it creates the file with, its converters, and the
// few behaviours in which the file classes differ from one another.
//
// Each class defines one constant RERecordFileSpec in its source file; RERecordFileEngine
// (include/detail/RERecordFile.h) does the work from it.
#pragma once

#include "REBtrieveBase.h"
#include "core/RecordFieldTable.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <type_traits>
#include <vector>

// One key segment of a file specification, as passed to Create.
struct REKeySegment {
    uint16_t position;  // 1-based offset in the record
    uint16_t length;
    uint16_t flags;     // REKeyFlag bits
    uint8_t type;       // REKeyType, read with kKeyExtendedType
    uint8_t nullValue;  // no effect without kKeyNullKey; the files here write 20
};

// Key flags and types, from the shared list (kKeyDuplicates ..., kKeyTypeString ...).
#define RE_KEY_FLAG_ENTRY(name, value) kKey##name = value,
#define RE_KEY_TYPE_ENTRY(name, value) kKeyType##name = value,
enum REKeyFlag : uint16_t {
    RE_BTRIEVE_KEY_FLAGS(RE_KEY_FLAG_ENTRY)
    kKeyNullKey = kKeyNullable,
    // The two forms the files use: a key's inner segments and its last segment.
    kKeyInnerSegment = kKeyExtendedType | kKeySegmented | kKeyModifiable,
    kKeyLastSegment = kKeyExtendedType | kKeyModifiable,
};

enum REKeyType : uint8_t {
    RE_BTRIEVE_KEY_TYPES(RE_KEY_TYPE_ENTRY)
    kKeyTypeUnsigned = kKeyTypeUnsignedBinary,
};
#undef RE_KEY_FLAG_ENTRY
#undef RE_KEY_TYPE_ENTRY

// File flags of a Create block. 0x0040 is stored and reported by Stat and changes nothing here;
// the job item, settings, multiplier and work files are created with it.
enum REFileFlag : uint16_t {
    kFileFlagVariableLength = 0x0001,
    kFileFlagsJobItems = 0x0040,
};

// The null-value byte every file of the library writes into its segments.
constexpr uint8_t kKeyNullByte = 20;
constexpr uint16_t kFilePageSize = 4096;

// A file specification for Create.
struct RECreateSpec {
    uint16_t recordLength = 0;
    uint16_t pageSize = kFilePageSize;
    uint16_t fileFlags = 0;
    std::span<const REKeySegment> segments;
    // Bytes passed with the Create; 0 means the block itself (16 + 16 per segment).
    uint32_t dataLength = 0;
    // Keys the block declares; 0: one per key the segments end. A smaller count leaves the
    // later segment descriptions in the block unused, as some files are created.
    uint16_t keyCount = 0;
};

// Number of keys a segment table describes: each key ends at a segment without kKeySegmented.
constexpr uint16_t REKeyCount(std::span<const REKeySegment> segments) {
    uint16_t keys = 0;
    for (const REKeySegment& s : segments)
        keys += (s.flags & kKeySegmented) ? 0 : 1;
    return keys;
}

// A key segment over a whole field of `Record`, named by field:
//     RE_KEY(sCode1, kKeyInnerSegment, kKeyTypeZString)
#define RE_KEY(field, flags, type) \
    REKeySegment{static_cast<uint16_t>(offsetof(Record, field) + 1), sizeof(Record::field), (flags), (type), kKeyNullByte}
// A key segment over the first `length` bytes from a field on.
#define RE_KEY_PART(field, length, flags, type) \
    REKeySegment{static_cast<uint16_t>(offsetof(Record, field) + 1), (length), (flags), (type), kKeyNullByte}

// True when every segment lies inside a record of `recordSize` bytes and has a length its type
// allows: checked at compile time by the traits.
constexpr bool REKeysFit(std::span<const REKeySegment> segments, size_t recordSize) {
    for (const REKeySegment& s : segments) {
        if (s.position < 1 || s.length < 1 || size_t{s.position} - 1 + s.length > recordSize)
            return false;
        const bool widthType = s.type == kKeyTypeInteger || s.type == kKeyTypeUnsigned ||
                               s.type == kKeyTypeAutoIncrement || s.type == kKeyTypeBFloat;
        if (widthType && s.length != 1 && s.length != 2 && s.length != 4 && s.length != 8)
            return false;
        if (s.type == kKeyTypeZString && s.length < 2)
            return false;
    }
    return segments.empty() || (segments.back().flags & kKeySegmented) == 0;
}

// The Create block of a specification (little-endian):
//  OFFSET SIZE DESCRIPTION
//       0    2 record length
//       2    2 page size
//       4    2 number of keys
//       6    4 reserved, 0
//      10    2 file flags
//      12    4 reserved and pre-allocation pages, 0
//  16+16i   16 segment i: position 2, length 2, flags 2, reserved 4, type 1, null value 1,
//              reserved 4
// The block is zero-padded up to `dataLength` when that is longer.
inline std::vector<uint8_t> REEncodeCreateBlock(const RECreateSpec& spec) {
    constexpr size_t kHeaderSize = 16;
    constexpr size_t kSegmentSize = 16;
    const size_t blockSize = kHeaderSize + kSegmentSize * spec.segments.size();
    std::vector<uint8_t> block(blockSize > spec.dataLength ? blockSize : spec.dataLength, 0);
    auto put16 = [&block](size_t at, uint16_t v) {
        block[at] = static_cast<uint8_t>(v);
        block[at + 1] = static_cast<uint8_t>(v >> 8);
    };
    put16(0, spec.recordLength);
    put16(2, spec.pageSize);
    put16(4, spec.keyCount != 0 ? spec.keyCount : REKeyCount(spec.segments));
    put16(10, spec.fileFlags);
    for (size_t i = 0; i < spec.segments.size(); ++i) {
        const REKeySegment& s = spec.segments[i];
        const size_t at = kHeaderSize + kSegmentSize * i;
        put16(at, s.position);
        put16(at + 2, s.length);
        put16(at + 4, s.flags);
        block[at + 10] = s.type;
        block[at + 11] = s.nullValue;
    }
    return block;
}

// A positional read: the operation and the key number it sets first (kCurrentKey: none).
struct REPositionalRead {
    static constexpr int8_t kCurrentKey = -1;
    uint16_t op;
    int8_t keyNumber;
};

// Record converters between the old and the new layout, on untyped buffers.
using REConvertFunction = int (*)(const void* from, void* to);

// Wraps a typed converter `int f(const From*, To*)` as an REConvertFunction.
template <auto F>
struct REConverter;
template <class From, class To, int (*F)(const From*, To*)>
struct REConverter<F> {
    static int Call(const void* from, void* to) {
        return F(static_cast<const From*>(from), static_cast<To*>(to));
    }
};

struct RERecordFileSpec;
// Positional reads (first, last, next, previous) on whichever key the last call used.
constexpr void REReadOnCurrentKey(RERecordFileSpec& spec);
// Positional reads in stored order (the Step operations).
constexpr void REReadInStoredOrder(RERecordFileSpec& spec);

struct RERecordFileSpec {
    // Class name for the debug traces ("REJobFile::_CopyRecords: ...").
    const char* className = "";
    // Bytes moved by each call in the new and the old layout (sizeof the record structures);
    // oldSize 0: the file has one layout only.
    uint32_t newSize = 0;
    uint32_t oldSize = 0;
    // Record length that Stat reports for a new-layout file; 0: newSize. Variable-length
    // files report their fixed part here.
    uint32_t statLength = 0;

    unsigned corruptCode = 0;       // wrong record length at open
    unsigned unknownErrorCode = 0;  // record-manager failure, shown with the status
    unsigned createCode = 0;        // Create failure, shown with the status

    REConvertFunction toNew = nullptr;
    REConvertFunction toOld = nullptr;
    // The field table of the record (both layouts where there are two); null: none given.
    const REFieldTable* fields = nullptr;

    RECreateSpec create;
    // Create through the object itself with the path and its NUL, instead of a temporary object
    // with the path alone.
    bool createOnSelf = false;

    // GetFirstRecord, GetLastRecord, GetNextRecord, GetPreviousRecord.
    REPositionalRead first = {REBtrieveBase::kOpGetFirst, 0};
    REPositionalRead last = {REBtrieveBase::kOpGetLast, 0};
    REPositionalRead next = {REBtrieveBase::kOpGetNext, 0};
    REPositionalRead previous = {REBtrieveBase::kOpGetPrevious, 0};

    // A wrong record length leaves the object marked open (the next Initialize closes it).
    bool keepOpenOnCorrupt = false;
    // The class keeps its path and open flag in m_filePath and m_fileOpen.
    bool ownPath = false;
    // A failed Get Equal is reported like any other failure (only end of file is silent).
    bool reportGetEqualMiss = false;
    // Initialize on an open object closes it and returns 0 without opening again.
    bool initializeOnOpenCloses = false;
    // Inserts and updates pass the caller's current-layout record as it is, also to an
    // old-layout file (whose record length cuts it), instead of converting it first.
    bool writeUnconverted = false;

    // Trace text of AddRecord when the duplicate search finds the record; null: none.
    const char* duplicateTrace = nullptr;

    uint32_t StatLength() const { return statLength != 0 ? statLength : newSize; }
    bool HasOldLayout() const { return oldSize != 0 && oldSize != StatLength(); }
};

// The statuses that a record-file class passes over without a message, per operation (lock
// biases aside): the end of a scan, the miss of an exact read, and every write, whose 1/0 result
// goes to its caller. Every other failure shows the class's unknown-error message.
struct RESilentStatus {
    static constexpr int kAnyOperation = -1;
    static constexpr int kAnyStatus = -1;
    int op;
    int status;
};
constexpr RESilentStatus kSilentStatuses[] = {
    {RESilentStatus::kAnyOperation, REBtrieveBase::kStatusEndOfFile},
    {REBtrieveBase::kOpGetEqual, RESilentStatus::kAnyStatus},  // unless the class reports a miss
    {REBtrieveBase::kOpInsert, RESilentStatus::kAnyStatus},
    {REBtrieveBase::kOpUpdate, RESilentStatus::kAnyStatus},
    {REBtrieveBase::kOpDelete, RESilentStatus::kAnyStatus},
};

constexpr bool REStatusIsReported(unsigned op, int16_t status, bool reportGetEqualMiss) {
    constexpr unsigned kLockBiasUnit = 100;
    const int base = static_cast<int>(op % kLockBiasUnit);
    for (const RESilentStatus& silent : kSilentStatuses) {
        const bool opMatches = silent.op == RESilentStatus::kAnyOperation || silent.op == base;
        const bool statusMatches = silent.status == RESilentStatus::kAnyStatus || silent.status == status;
        const bool exempt = reportGetEqualMiss && silent.op == REBtrieveBase::kOpGetEqual;
        if (opMatches && statusMatches && !exempt)
            return false;
    }
    return true;
}

constexpr void REReadOnCurrentKey(RERecordFileSpec& spec) {
    for (REPositionalRead* read : {&spec.first, &spec.last, &spec.next, &spec.previous})
        read->keyNumber = REPositionalRead::kCurrentKey;
}

constexpr void REReadInStoredOrder(RERecordFileSpec& spec) {
    spec.first = {REBtrieveBase::kOpStepFirst, 0};
    spec.last = {REBtrieveBase::kOpStepLast, 0};
    spec.next = {REBtrieveBase::kOpStepNext, 0};
    spec.previous = {REBtrieveBase::kOpStepPrevious, 0};
}

// A class's messages: wrong record length at open, record-manager failure, Create failure.
struct REMessageCodes {
    unsigned corrupt = 0;
    unsigned unknownError = 0;
    unsigned create = 0;
};

namespace respec {

template <class T, class = void>
struct HasOld : std::false_type {};
template <class T>
struct HasOld<T, std::void_t<typename T::OldRecord>> : std::bool_constant<!std::is_void_v<typename T::OldRecord>> {};

template <class T, class = void>
struct HasCustomize : std::false_type {};
template <class T>
struct HasCustomize<T, std::void_t<decltype(T::Customize)>> : std::true_type {};

template <class T, class = void>
struct HasFileFlags : std::false_type {};
template <class T>
struct HasFileFlags<T, std::void_t<decltype(T::kFileFlags)>> : std::true_type {};

template <class T, class = void>
struct HasKeys : std::false_type {};
template <class T>
struct HasKeys<T, std::void_t<decltype(T::kKeys)>> : std::true_type {};

}  // namespace respec

// What the machinery needs of a record-file class, derived from its traits at compile time:
//
//     struct Traits {
//         using Record = NEWREC;           // the layout callers see
//         using OldRecord = OLD_NEWREC;    // the earlier layout, or void
//         static constexpr const char* kClassName = "REXxxFile";
//         static constexpr REMessageCodes kMessages = {corrupt, unknownError, create};
//         static constexpr REKeySegment kKeys[] = {RE_KEY(...), ...};       // optional
//         static constexpr uint16_t kFileFlags = 0;                         // optional
//         static constexpr REField kFields[] = {...};                       // the field table
//         static constexpr REFieldTable kFieldTable = {kFields, sizeof(Record), sizeof(OldRecord)};
//         static constexpr void Customize(RERecordFileSpec& spec) {...}      // optional switches
//     };
//
// Record lengths come from the types, converters from the field table, and the keys and fields
// are checked against the record. `File` is the class: its layout must be the traits' one.
template <class Traits, class File>
constexpr RERecordFileSpec REMakeSpec() {
    using Record = typename Traits::Record;
    static_assert(std::is_same_v<Record, typename File::Record>, "the traits describe another record");
    constexpr bool kHasOld = respec::HasOld<Traits>::value;
    static_assert(kHasOld == !std::is_void_v<typename File::OldRecord>, "the class and its traits differ on layouts");

    RERecordFileSpec spec{};
    spec.className = Traits::kClassName;
    spec.newSize = sizeof(Record);
    spec.corruptCode = Traits::kMessages.corrupt;
    spec.unknownErrorCode = Traits::kMessages.unknownError;
    spec.createCode = Traits::kMessages.create;
    spec.create.recordLength = sizeof(Record);
    if constexpr (respec::HasFileFlags<Traits>::value)
        spec.create.fileFlags = Traits::kFileFlags;
    if constexpr (respec::HasKeys<Traits>::value) {
        static_assert(REKeysFit(Traits::kKeys, sizeof(Record)), "a key segment lies outside the record");
        spec.create.segments = Traits::kKeys;
    }
    constexpr const REFieldTable& table = Traits::kFieldTable;
    static_assert(table.newSize == sizeof(Record), "the field table describes another record");
    spec.fields = &table;
    if constexpr (kHasOld) {
        using OldRecord = typename Traits::OldRecord;
        static_assert(table.oldSize == sizeof(OldRecord), "the field table describes another old record");
        static_assert(REFieldsFit(table.fields, sizeof(Record), sizeof(OldRecord)), "a field lies outside a record");
        spec.oldSize = sizeof(OldRecord);
        spec.toNew = &RETableConverter<Traits::kFieldTable>::ToNew;
        spec.toOld = &RETableConverter<Traits::kFieldTable>::ToOld;
    } else {
        static_assert(REFieldsFit(table.fields, sizeof(Record), 0), "a field lies outside the record");
    }
    if constexpr (respec::HasCustomize<Traits>::value)
        Traits::Customize(spec);
    return spec;
}
