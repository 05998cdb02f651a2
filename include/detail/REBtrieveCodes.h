// The record manager's numbers, listed once: operation codes, statuses, key flags, key types.
// The record manager (recman/Codes.h) and the library's file base (REBtrieveBase.h) and
// record-file machinery (core/RecordFileSpec.h) make their enumerations from these lists, so a
// number cannot differ between the two sides. Each list calls X(name, value) once per entry.
#pragma once

#define RE_BTRIEVE_OPERATIONS(X) \
    X(Open, 0)                   \
    X(Close, 1)                  \
    X(Insert, 2)                 \
    X(Update, 3)                 \
    X(Delete, 4)                 \
    X(GetEqual, 5)               \
    X(GetNext, 6)                \
    X(GetPrevious, 7)            \
    X(GetGreater, 8)             \
    X(GetGreaterOrEqual, 9)      \
    X(GetLess, 10)               \
    X(GetLessOrEqual, 11)        \
    X(GetFirst, 12)              \
    X(GetLast, 13)               \
    X(Create, 14)                \
    X(Stat, 15)                  \
    X(StepNext, 24)              \
    X(Version, 26)               \
    X(Unlock, 27)                \
    X(StepFirst, 33)             \
    X(StepLast, 34)              \
    X(StepPrevious, 35)

// Lock biases added to a Get or Step code.
#define RE_BTRIEVE_LOCK_BIASES(X) \
    X(None, 0)                    \
    X(SingleWait, 100)            \
    X(Single, 200)                \
    X(MultipleWait, 300)          \
    X(Multiple, 400)

#define RE_BTRIEVE_STATUSES(X)    \
    X(Ok, 0)                      \
    X(BadOperation, 1)            \
    X(StoreFailure, 2)            \
    X(NoHandle, 3)                \
    X(KeyNotFound, 4)             \
    X(DuplicateKey, 5)            \
    X(BadKeyNumber, 6)            \
    X(DifferentKeyNumber, 7)      \
    X(NoCurrency, 8)              \
    X(EndOfFile, 9)               \
    X(KeyNotModifiable, 10)       \
    X(BadPath, 11)                \
    X(FileNotFound, 12)           \
    X(DiskFull, 18)               \
    X(EngineUnavailable, 20)      \
    X(KeyBufferNull, 21)          \
    X(BufferTooShort, 22)         \
    X(BadBlock, 24)               \
    X(CreateFailed, 25)           \
    X(TooManyKeys, 26)            \
    X(SegmentOutside, 27)         \
    X(BadRecordLength, 28)        \
    X(BadKeyLength, 29)           \
    X(NotEngineFile, 30)          \
    X(BadUnlock, 41)              \
    X(BadKeyFlags, 45)            \
    X(AccessDenied, 46)           \
    X(BadKeyType, 49)             \
    X(FileExists, 59)             \
    X(Conflict, 80)               \
    X(LockError, 81)              \
    X(RecordLocked, 84)           \
    X(FileLocked, 85)             \
    X(FileInUse, 88)

// Key flags of a segment.
#define RE_BTRIEVE_KEY_FLAGS(X) \
    X(Duplicates, 0x0001)       \
    X(Modifiable, 0x0002)       \
    X(Binary, 0x0004)           \
    X(Nullable, 0x0008)         \
    X(Segmented, 0x0010)        \
    X(AltCollation, 0x0020)     \
    X(Descending, 0x0040)       \
    X(Supplemental, 0x0080)     \
    X(ExtendedType, 0x0100)     \
    X(NullAnySegment, 0x0200)   \
    X(CaseInsensitive, 0x0400)

// Extended key types.
#define RE_BTRIEVE_KEY_TYPES(X) \
    X(String, 0)                \
    X(Integer, 1)               \
    X(Float, 2)                 \
    X(Logical, 7)               \
    X(BFloat, 9)                \
    X(LString, 10)              \
    X(ZString, 11)              \
    X(UnsignedBinary, 14)       \
    X(AutoIncrement, 15)

// The value of one entry by name, for compile-time checks: RE_BTRIEVE_STATUS(Conflict) == 80.
namespace rebtrieve {
#define RE_BTRIEVE_CONSTANT(name, value) constexpr int name = value;
namespace op { RE_BTRIEVE_OPERATIONS(RE_BTRIEVE_CONSTANT) }
namespace status { RE_BTRIEVE_STATUSES(RE_BTRIEVE_CONSTANT) }
namespace keyflag { RE_BTRIEVE_KEY_FLAGS(RE_BTRIEVE_CONSTANT) }
namespace keytype { RE_BTRIEVE_KEY_TYPES(RE_BTRIEVE_CONSTANT) }
#undef RE_BTRIEVE_CONSTANT
}  // namespace rebtrieve
