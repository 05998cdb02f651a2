// Test fixture: a record-manager file reached straight through BTRCALL, to build files that
// the classes under test then open (other record lengths, old layouts) and to look at the
// bytes they wrote.
#pragma once

#include "BTRCALL.h"
#include "REBtrieveBase.h"
#include "core/RecordFileSpec.h"

#include <cstdint>
#include <cstring>
#include <span>
#include <string>
#include <vector>

namespace testsupport {

// Creates (or replaces) the file at `path`; returns the record manager's status.
inline int16_t CreateRawFile(const std::string& path, uint16_t recordLength,
                             std::span<const REKeySegment> keys = {}, uint16_t fileFlags = 0) {
    RECreateSpec spec;
    spec.recordLength = recordLength;
    spec.fileFlags = fileFlags;
    spec.segments = keys;
    std::vector<uint8_t> block = REEncodeCreateBlock(spec);
    uint32_t length = static_cast<uint32_t>(block.size());
    std::vector<char> key(path.begin(), path.end());
    key.push_back('\0');
    uint8_t posBlock[REBtrieveBase::kPosBlockSize] = {};
    return BTRCALL(REBtrieveBase::kOpCreate, posBlock, block.data(), &length, key.data(),
                   static_cast<uint8_t>(path.size()), 0);
}

// One open handle; records are moved as raw bytes of `recordLength`.
class RawRecordFile {
public:
    RawRecordFile(const std::string& path, uint32_t recordLength) : m_recordLength(recordLength) {
        std::vector<char> key(path.begin(), path.end());
        key.push_back('\0');
        uint32_t length = 0;
        m_openStatus = BTRCALL(REBtrieveBase::kOpOpen, m_posBlock, nullptr, &length, key.data(),
                               static_cast<uint8_t>(key.size()), 0);
    }
    ~RawRecordFile() {
        uint32_t length = 0;
        if (m_openStatus == 0)
            BTRCALL(REBtrieveBase::kOpClose, m_posBlock, nullptr, &length, m_key, 0, 0);
    }
    RawRecordFile(const RawRecordFile&) = delete;
    RawRecordFile& operator=(const RawRecordFile&) = delete;

    int16_t openStatus() const { return m_openStatus; }

    int16_t insert(const void* record) {
        std::vector<uint8_t> copy(static_cast<const uint8_t*>(record),
                                  static_cast<const uint8_t*>(record) + m_recordLength);
        uint32_t length = m_recordLength;
        return BTRCALL(REBtrieveBase::kOpInsert, m_posBlock, copy.data(), &length, m_key, sizeof m_key, 0);
    }

    // Every record in physical (insertion) order.
    std::vector<std::vector<uint8_t>> records() {
        std::vector<std::vector<uint8_t>> all;
        std::vector<uint8_t> buffer(m_recordLength);
        uint16_t op = REBtrieveBase::kOpStepFirst;
        for (;;) {
            uint32_t length = m_recordLength;
            if (BTRCALL(op, m_posBlock, buffer.data(), &length, m_key, sizeof m_key, 0) != 0)
                return all;
            all.push_back(buffer);
            op = REBtrieveBase::kOpStepNext;
        }
    }

private:
    uint8_t m_posBlock[REBtrieveBase::kPosBlockSize] = {};
    uint8_t m_key[REBtrieveBase::kKeyBufferSize] = {};
    uint32_t m_recordLength;
    int16_t m_openStatus;
};

}  // namespace testsupport
