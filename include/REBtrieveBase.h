// REBtrieveBase: one record-manager file, the base of every data-file class.
//
// The object owns the 128-byte position block that names the open file to the record manager,
// the key buffer, the key number and data-buffer length of the next call, the file name and an
// open flag. Copies share the open file: both may issue calls on it, and each closes it on
// destruction if its own flag is set.
#pragma once

#include "detail/REBtrieveCodes.h"
#include "tarsel_export.h"

#include <cstddef>
#include <cstdint>
#include <type_traits>

#pragma pack(push, 1)
// File creation block written by Stat: record length, page size, number of keys, number of
// records, file flags, then the key segment descriptions.
struct STAT_BUFFER {
    int16_t recordLength;
    uint16_t pageSize;
    uint16_t numberOfKeys;
    uint32_t numberOfRecords;
    uint16_t fileFlags;
    uint8_t reserved12[4];
    uint8_t keySpecs[3185];
};
#pragma pack(pop)
static_assert(sizeof(STAT_BUFFER) == 3201);
static_assert(offsetof(STAT_BUFFER, pageSize) == 2);
static_assert(offsetof(STAT_BUFFER, numberOfKeys) == 4);
static_assert(offsetof(STAT_BUFFER, numberOfRecords) == 6);
static_assert(offsetof(STAT_BUFFER, fileFlags) == 10);
static_assert(offsetof(STAT_BUFFER, keySpecs) == 16);

class TARSEL_API REBtrieveBase {
public:
    static constexpr int kPosBlockSize = 128;
    static constexpr int kKeyBufferSize = 255;
    static constexpr int kFileNameSize = 260;
    // Longest path Open accepts: it must fit the key buffer with its terminating NUL.
    static constexpr int kMaxPathLength = kKeyBufferSize - 1;
    static constexpr uint32_t kStatBufferSize = sizeof(STAT_BUFFER);

    // Record-manager operation numbers (kOpOpen ... kOpStepPrevious), from the shared list.
#define RE_BTRIEVE_PUBLIC_OP(name, value) kOp##name = value,
    enum Operation : uint16_t {
        RE_BTRIEVE_OPERATIONS(RE_BTRIEVE_PUBLIC_OP)
        // Added to a Get or Step: single-record lock, no wait.
        kBiasSingleNoWaitLock = 200,
    };
#undef RE_BTRIEVE_PUBLIC_OP

    // Record-manager statuses the library tests by name.
    enum Status : int16_t {
        kStatusSuccess = 0,
        kStatusInvalidOperation = 1,
        kStatusIoError = 2,
        kStatusFileNotOpen = 3,
        kStatusKeyNotFound = 4,
        kStatusDuplicateKey = 5,
        kStatusInvalidKeyNumber = 6,
        kStatusEndOfFile = 9,
        kStatusInvalidFileName = 11,
        kStatusFileNotFound = 12,
        kStatusDataBufferTooShort = 22,
        kStatusFileExists = 59,
        kStatusConflict = 80,
        kStatusRecordInUse = 84,
    };

    // Open modes passed as the key number of Open.
    enum OpenMode : int8_t {
        kOpenNormal = 0,
        kOpenReadOnly = -2,
        kOpenExclusive = -4,
    };

    REBtrieveBase();
    REBtrieveBase(const REBtrieveBase& other);
    REBtrieveBase& operator=(const REBtrieveBase& other);
    virtual ~REBtrieveBase();

    virtual int Close();

    // Opens `path` in normal mode. 0 if this object is already open (nothing is called), if the
    // path is longer than kMaxPathLength (silently), or if the record manager refuses it (the
    // status is shown).
    int Open(const char* path);

    // Short call form: the object's position block, key buffer, key length and key number, and
    // m_dataBufLen as the buffer size; the returned length lands in m_dataBufLenRet.
    int16_t Btrieve(uint16_t op, void* dataBuffer);
    // Long call form: the caller's buffers; always the object's own position block (`posBlock`
    // is accepted and ignored).
    int16_t Btrieve(uint16_t op, void* posBlock, void* dataBuffer, uint32_t* dataLength, void* keyBuffer,
                    uint8_t keyLength, int8_t keyNumber);
    // The long form for a caller whose length variable is an `unsigned long`; the record manager
    // takes and returns the length as 32 bits. (A template, so that a null length still picks the
    // form above.)
    template <class Length, std::enable_if_t<std::is_same_v<Length, unsigned long>, int> = 0>
    int16_t Btrieve(uint16_t op, void* posBlock, void* dataBuffer, Length* dataLength, void* keyBuffer,
                    uint8_t keyLength, int8_t keyNumber) {
        uint32_t length = dataLength != nullptr ? static_cast<uint32_t>(*dataLength) : 0;
        const int16_t status = Btrieve(op, posBlock, dataBuffer, dataLength != nullptr ? &length : nullptr,
                                       keyBuffer, keyLength, keyNumber);
        if (dataLength != nullptr)
            *dataLength = length;
        return status;
    }

    // Zeroes the key buffer and copies `length` bytes of `key` into it (at most 255).
    void SetKeyBuffer(const void* key, const int& length);
    void SetKeyNumber(const int& keyNumber);
    int GetKeyNumber() const;
    void SetDataBufLen(const int& length);
    uint32_t GetDataBufLenRet() const;
    const char* GetFileName() const;
    int IsOpen() const;

    // Stat into `buffer`; 0 when closed or on a failed status (shown).
    int GetStatus(STAT_BUFFER* buffer);
    // Version into the caller's buffer; 1 only for status 0; no message.
    int GetVersionInfo(void* buffer, int* length);
    void BtrieveStop();
    void BtrieveReset();
    // NOT the record count, except by chance: the two bytes of each 16-bit word of Stat's count
    // are read as decimal digit characters (so a word whose bytes are not ASCII digits reads as
    // 0 or a small number), a negative word gets 65535 added, and the words are combined as
    // low + high x 65535. A file of 3 records answers 0. Kept for programs that rely on it; the
    // count itself is GetStatus's numberOfRecords. 0 when closed.
    long GetNoOfRecords();

    // 1 for status 0; otherwise 0, after showing the status when `showMessage` is non-zero.
    static int CheckStatus(const int& status, const int& showMessage);
    // Shows the text of a record-manager status (`prefix` is not used).
    static void ShowStatusCodeMsg(const char* prefix, const int& code);

    // The object's state, readable by callers as well as by the derived file classes.
    uint8_t m_posBlock[kPosBlockSize];
    uint8_t m_keyBuffer[kKeyBufferSize];
    int32_t m_keyLength;
    int32_t m_keyNumber;
    int32_t m_dataBufLen;
    uint32_t m_dataBufLenRet;
    char m_fileName[kFileNameSize];
    int32_t m_isOpen;

private:
    // Notes the call and its file for the details of a failure report.
    void _NoteCall(uint16_t op, const void* keyBuffer, uint8_t keyLength) const;
    // Issues Close through the long form with the object's key buffer, length and number.
    int16_t _CloseFile();
};

// The statuses the library names are those of the shared list.
static_assert(REBtrieveBase::kStatusSuccess == rebtrieve::status::Ok);
static_assert(REBtrieveBase::kStatusInvalidOperation == rebtrieve::status::BadOperation);
static_assert(REBtrieveBase::kStatusIoError == rebtrieve::status::StoreFailure);
static_assert(REBtrieveBase::kStatusFileNotOpen == rebtrieve::status::NoHandle);
static_assert(REBtrieveBase::kStatusKeyNotFound == rebtrieve::status::KeyNotFound);
static_assert(REBtrieveBase::kStatusDuplicateKey == rebtrieve::status::DuplicateKey);
static_assert(REBtrieveBase::kStatusInvalidKeyNumber == rebtrieve::status::BadKeyNumber);
static_assert(REBtrieveBase::kStatusEndOfFile == rebtrieve::status::EndOfFile);
static_assert(REBtrieveBase::kStatusInvalidFileName == rebtrieve::status::BadPath);
static_assert(REBtrieveBase::kStatusFileNotFound == rebtrieve::status::FileNotFound);
static_assert(REBtrieveBase::kStatusDataBufferTooShort == rebtrieve::status::BufferTooShort);
static_assert(REBtrieveBase::kStatusFileExists == rebtrieve::status::FileExists);
static_assert(REBtrieveBase::kStatusConflict == rebtrieve::status::Conflict);
static_assert(REBtrieveBase::kStatusRecordInUse == rebtrieve::status::RecordLocked);
static_assert(REBtrieveBase::kBiasSingleNoWaitLock == 200);
