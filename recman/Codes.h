// Operation codes, status codes, key flags, key types and file flags of the record manager.
#pragma once

#include <cstdint>

namespace recman {

enum Op : uint16_t {
    OpOpen = 0,
    OpClose = 1,
    OpInsert = 2,
    OpUpdate = 3,
    OpDelete = 4,
    OpGetEqual = 5,
    OpGetNext = 6,
    OpGetPrevious = 7,
    OpGetGreater = 8,
    OpGetGreaterOrEqual = 9,
    OpGetLess = 10,
    OpGetLessOrEqual = 11,
    OpGetFirst = 12,
    OpGetLast = 13,
    OpCreate = 14,
    OpStat = 15,
    OpStepNext = 24,
    OpVersion = 26,
    OpUnlock = 27,
    OpStepFirst = 33,
    OpStepLast = 34,
    OpStepPrevious = 35,
};

// Lock biases added to a Get or Step code.
enum LockBias : uint16_t {
    BiasNone = 0,
    BiasSingleWait = 100,
    BiasSingle = 200,
    BiasMultipleWait = 300,
    BiasMultiple = 400,
};

enum Status : int16_t {
    StatusOk = 0,
    StatusBadOperation = 1,
    StatusStoreFailure = 2,
    StatusNoHandle = 3,
    StatusKeyNotFound = 4,
    StatusDuplicateKey = 5,
    StatusBadKeyNumber = 6,
    StatusDifferentKeyNumber = 7,
    StatusNoCurrency = 8,
    StatusEndOfFile = 9,
    StatusKeyNotModifiable = 10,
    StatusBadPath = 11,
    StatusFileNotFound = 12,
    StatusDiskFull = 18,
    StatusEngineUnavailable = 20,
    StatusKeyBufferNull = 21,
    StatusBufferTooShort = 22,
    StatusBadBlock = 24,
    StatusCreateFailed = 25,
    StatusTooManyKeys = 26,
    StatusSegmentOutside = 27,
    StatusBadRecordLength = 28,
    StatusBadKeyLength = 29,
    StatusNotEngineFile = 30,
    StatusBadUnlock = 41,
    StatusBadKeyFlags = 45,
    StatusAccessDenied = 46,
    StatusBadKeyType = 49,
    StatusFileExists = 59,
    StatusConflict = 80,
    StatusLockError = 81,
    StatusRecordLocked = 84,
    StatusFileLocked = 85,
    StatusFileInUse = 88,
};

enum KeyFlag : uint16_t {
    KeyDuplicates = 0x0001,
    KeyModifiable = 0x0002,
    KeyBinary = 0x0004,
    KeyNullable = 0x0008,
    KeySegmented = 0x0010,
    KeyAltCollation = 0x0020,
    KeyDescending = 0x0040,
    KeySupplemental = 0x0080,
    KeyExtendedType = 0x0100,
    KeyNullAnySegment = 0x0200,
    KeyCaseInsensitive = 0x0400,
    KeyRefusedHighFlags = 0xF800,
};

enum KeyType : uint8_t {
    TypeString = 0,
    TypeInteger = 1,
    TypeFloat = 2,
    TypeLogical = 7,
    TypeBFloat = 9,
    TypeLString = 10,
    TypeZString = 11,
    TypeUnsignedBinary = 14,
    TypeAutoIncrement = 15,
    // Not a stored type: a segment with 0x0004 and without 0x0100.
    TypeBinary = 0xFF,
};

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
