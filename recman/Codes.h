// Operation codes, status codes, key flags, key types and file flags of the record manager, made
// from the one list the library shares (include/detail/REBtrieveCodes.h).
#pragma once

#include "detail/REBtrieveCodes.h"

#include <cstdint>

namespace recman {

#define RECMAN_ENTRY(prefix, name, value) prefix##name = value,
#define RECMAN_OP(name, value) RECMAN_ENTRY(Op, name, value)
#define RECMAN_BIAS(name, value) RECMAN_ENTRY(Bias, name, value)
#define RECMAN_STATUS(name, value) RECMAN_ENTRY(Status, name, value)
#define RECMAN_KEY_FLAG(name, value) RECMAN_ENTRY(Key, name, value)
#define RECMAN_KEY_TYPE(name, value) RECMAN_ENTRY(Type, name, value)

enum Op : uint16_t { RE_BTRIEVE_OPERATIONS(RECMAN_OP) };

// Lock biases added to a Get or Step code.
enum LockBias : uint16_t { RE_BTRIEVE_LOCK_BIASES(RECMAN_BIAS) };

enum Status : int16_t { RE_BTRIEVE_STATUSES(RECMAN_STATUS) };

enum KeyFlag : uint16_t {
    RE_BTRIEVE_KEY_FLAGS(RECMAN_KEY_FLAG)
    KeyRefusedHighFlags = 0xF800,
};

enum KeyType : uint8_t {
    RE_BTRIEVE_KEY_TYPES(RECMAN_KEY_TYPE)
    // Not a stored type: a segment with 0x0004 and without 0x0100.
    TypeBinary = 0xFF,
};

#undef RECMAN_OP
#undef RECMAN_BIAS
#undef RECMAN_STATUS
#undef RECMAN_KEY_FLAG
#undef RECMAN_KEY_TYPE
#undef RECMAN_ENTRY

enum FileFlag : uint16_t {
    FileVariableLength = 0x0001,
};

// Open modes (the key number of Open).
enum OpenMode : int8_t {
    ModeNormal = 0,
    ModeReadOnly = -2,
    ModeExclusive = -4,
};

enum Limits : uint32_t {
    PositionBlockSize = 128,
    MaxKeys = 119,
    MaxSegments = 119,
    MaxKeyWidth = 255,
    MaxVariableRecord = 65535,
    DefaultPathLength = 255,
    CreateHeaderSize = 16,
    SegmentDescriptionSize = 16,
    VersionBlockSize = 5,
};

// Unlock kinds (the key number of Unlock).
constexpr int8_t UnlockAllMultiple = -2;
// Replace mode of Create that refuses an existing file.
constexpr int8_t CreateNoReplace = -1;

}  // namespace recman
