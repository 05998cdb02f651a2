#include "REBtrieveBase.h"

#include "BTRCALL.h"
#include "core/Messages.h"
#include "core/Platform.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

// Open passes an empty owner name of this size with data length 1.
constexpr uint32_t kOwnerBufferSize = 100;
// Text buffer into which GetNoOfRecords copies one 16-bit word of the stored count.
constexpr size_t kCountTextSize = 3;
constexpr long kCountWordFactor = 65535;

// Copies `text` into a fixed field of `size` bytes, cut to fit and always NUL-terminated.
void CopyBounded(char* field, size_t size, const char* text) {
    size_t length = text != nullptr ? std::strlen(text) : 0;
    length = std::min(length, size - 1);
    if (length > 0)
        std::memcpy(field, text, length);
    std::memset(field + length, 0, size - length);
}

std::atomic<REBtrieveCall> g_btrieveCallSlot{&BTRCALL};

int16_t g_btrieveCall(uint16_t op, void* posBlock, void* data, uint32_t* length, void* key, uint8_t keyLength,
                      int8_t keyNumber) {
    return g_btrieveCallSlot.load(std::memory_order_relaxed)(op, posBlock, data, length, key, keyLength, keyNumber);
}

}  // namespace

REBtrieveCall RESetBtrieveCall(REBtrieveCall call) {
    return g_btrieveCallSlot.exchange(call != nullptr ? call : &BTRCALL);
}

REBtrieveBase::REBtrieveBase()
    : m_keyLength(0), m_keyNumber(0), m_dataBufLen(0), m_dataBufLenRet(0), m_isOpen(0) {
    std::memset(m_posBlock, 0, sizeof m_posBlock);
    std::memset(m_keyBuffer, 0, sizeof m_keyBuffer);
    std::memset(m_fileName, 0, sizeof m_fileName);
}

REBtrieveBase::REBtrieveBase(const REBtrieveBase& other) { *this = other; }

REBtrieveBase& REBtrieveBase::operator=(const REBtrieveBase& other) {
    if (this == &other)
        return *this;
    std::memcpy(m_posBlock, other.m_posBlock, sizeof m_posBlock);
    std::memcpy(m_keyBuffer, other.m_keyBuffer, sizeof m_keyBuffer);
    m_keyLength = other.m_keyLength;
    m_keyNumber = other.m_keyNumber;
    m_dataBufLen = other.m_dataBufLen;
    m_dataBufLenRet = other.m_dataBufLenRet;
    std::memcpy(m_fileName, other.m_fileName, sizeof m_fileName);
    m_isOpen = other.m_isOpen;
    return *this;
}

REBtrieveBase::~REBtrieveBase() {
    if (m_isOpen && CheckStatus(_CloseFile(), 1))
        m_isOpen = 0;
}

int REBtrieveBase::Close() {
    if (!m_isOpen)
        return 0;
    if (!CheckStatus(_CloseFile(), 1))
        return 0;
    m_isOpen = 0;
    return 1;
}

int16_t REBtrieveBase::_CloseFile() {
    uint8_t scratch[1] = {0};
    uint32_t scratchLength = 0;
    return Btrieve(kOpClose, m_posBlock, scratch, &scratchLength, m_keyBuffer, static_cast<uint8_t>(m_keyLength),
                   static_cast<int8_t>(m_keyNumber));
}

int REBtrieveBase::Open(const char* path) {
    if (m_isOpen)
        return 0;
    CopyBounded(m_fileName, sizeof m_fileName, path);

    // A path the key buffer cannot carry, or whose short form is longer than the platform lets
    // through, is refused without a message. A failed short-path conversion leaves an empty
    // name, which the record manager then refuses with its status.
    const std::string requested = path != nullptr ? path : "";
    const std::string shortPath = requested.size() > static_cast<size_t>(kMaxPathLength)
                                      ? requested
                                      : platform::ShortPathName(requested);
    if (shortPath.size() > static_cast<size_t>(kMaxPathLength) || shortPath.size() > platform::kShortPathLimit)
        return 0;

    uint8_t owner[kOwnerBufferSize] = {0};
    uint32_t ownerLength = 1;
    std::memset(m_keyBuffer, 0, sizeof m_keyBuffer);
    std::memcpy(m_keyBuffer, shortPath.c_str(), shortPath.size());
    m_keyLength = static_cast<int32_t>(shortPath.size()) + 1;

    int16_t status = Btrieve(kOpOpen, m_posBlock, owner, &ownerLength, m_keyBuffer,
                             static_cast<uint8_t>(m_keyLength), kOpenNormal);
    // A report names the path the caller gave, not the short form the record manager was handed.
    RENoteCall(kOpOpen, m_fileName, sizeof m_fileName);
    if (!CheckStatus(status, 1))
        return 0;

    m_isOpen = 1;
    m_keyLength = kKeyBufferSize;
    std::memset(m_keyBuffer, 0, sizeof m_keyBuffer);
    return 1;
}

int16_t REBtrieveBase::Btrieve(uint16_t op, void* dataBuffer) {
    _NoteCall(op, m_keyBuffer, static_cast<uint8_t>(m_keyLength));
    m_dataBufLenRet = static_cast<uint32_t>(std::max(m_dataBufLen, 0));
    return g_btrieveCall(op, m_posBlock, dataBuffer, &m_dataBufLenRet, m_keyBuffer, static_cast<uint8_t>(m_keyLength),
                   static_cast<int8_t>(m_keyNumber));
}

int16_t REBtrieveBase::Btrieve(uint16_t op, void* /*posBlock*/, void* dataBuffer, uint32_t* dataLength,
                               void* keyBuffer, uint8_t keyLength, int8_t keyNumber) {
    _NoteCall(op, keyBuffer, keyLength);
    return g_btrieveCall(op, m_posBlock, dataBuffer, dataLength, keyBuffer, keyLength, keyNumber);
}

// Open and Create name their file in the key buffer; every other call concerns the open file.
void REBtrieveBase::_NoteCall(uint16_t op, const void* keyBuffer, uint8_t keyLength) const {
    constexpr unsigned kOpBase = 100;
    if ((op % kOpBase == kOpOpen || op % kOpBase == kOpCreate) && keyBuffer != nullptr)
        RENoteCall(op, static_cast<const char*>(keyBuffer), keyLength);
    else
        RENoteCall(op, m_fileName, sizeof m_fileName);
}

void REBtrieveBase::SetKeyBuffer(const void* key, const int& length) {
    const int copied = std::clamp(length, 0, kKeyBufferSize);
    std::memset(m_keyBuffer, 0, sizeof m_keyBuffer);
    if (key != nullptr && copied > 0)
        std::memcpy(m_keyBuffer, key, static_cast<size_t>(copied));
    m_keyLength = copied;
}

void REBtrieveBase::SetKeyNumber(const int& keyNumber) { m_keyNumber = keyNumber; }

int REBtrieveBase::GetKeyNumber() const { return m_keyNumber; }

void REBtrieveBase::SetDataBufLen(const int& length) { m_dataBufLen = length; }

uint32_t REBtrieveBase::GetDataBufLenRet() const { return m_dataBufLenRet; }

const char* REBtrieveBase::GetFileName() const { return m_fileName; }

int REBtrieveBase::IsOpen() const { return m_isOpen; }

int REBtrieveBase::GetStatus(STAT_BUFFER* buffer) {
    if (!m_isOpen)
        return 0;
    uint32_t length = kStatBufferSize;
    int16_t status = Btrieve(kOpStat, m_posBlock, buffer, &length, m_keyBuffer, static_cast<uint8_t>(m_keyLength), 0);
    return CheckStatus(status, 1);
}

int REBtrieveBase::GetVersionInfo(void* buffer, int* length) {
    uint8_t scratchKey[kKeyBufferSize] = {0};
    uint32_t bufferLength = length != nullptr ? static_cast<uint32_t>(std::max(*length, 0)) : 0;
    int16_t status = Btrieve(kOpVersion, m_posBlock, buffer, length != nullptr ? &bufferLength : nullptr,
                             scratchKey, kKeyBufferSize, 0);
    if (length != nullptr)
        *length = static_cast<int>(bufferLength);
    return status == kStatusSuccess ? 1 : 0;
}

void REBtrieveBase::BtrieveStop() {}

void REBtrieveBase::BtrieveReset() {}

long REBtrieveBase::GetNoOfRecords() {
    if (!m_isOpen)
        return 0;
    STAT_BUFFER stat;
    std::memset(&stat, 0, sizeof stat);
    GetStatus(&stat);

    const auto* raw = reinterpret_cast<const char*>(&stat);
    char lowText[kCountTextSize] = {0};
    char highText[kCountTextSize] = {0};
    std::memcpy(lowText, raw + offsetof(STAT_BUFFER, numberOfRecords), 2);
    std::memcpy(highText, raw + offsetof(STAT_BUFFER, numberOfRecords) + 2, 2);

    long low = std::atoi(lowText);
    if (low < 0)
        low += kCountWordFactor;
    long high = std::atoi(highText);
    if (high < 0)
        high += kCountWordFactor;
    return low + high * kCountWordFactor;
}
