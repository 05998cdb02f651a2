#include "tools/RawFile.h"

#include <cstring>

namespace tool {

int16_t RawFile::Call(uint16_t op, void* data, uint32_t& length, int8_t keyNumber) {
    return BTRCALL(op, m_posBlock, data, &length, m_key, sizeof m_key, keyNumber);
}

int16_t RawFile::Open(const std::string& path, int8_t mode) {
    Close();
    if (path.size() > static_cast<size_t>(REBtrieveBase::kMaxPathLength))
        return REBtrieveBase::kStatusInvalidFileName;
    std::memset(m_key, 0, sizeof m_key);
    std::memcpy(m_key, path.data(), path.size());
    uint32_t length = 0;
    const int16_t status = Call(REBtrieveBase::kOpOpen, nullptr, length, mode);
    m_open = status == REBtrieveBase::kStatusSuccess;
    return status;
}

void RawFile::Close() {
    if (!m_open)
        return;
    uint32_t length = 0;
    Call(REBtrieveBase::kOpClose, nullptr, length);
    m_open = false;
}

int16_t RawFile::ReadStat(Stat& stat) {
    STAT_BUFFER buffer{};
    uint32_t length = sizeof buffer;
    const int16_t status = Call(REBtrieveBase::kOpStat, &buffer, length);
    if (status != REBtrieveBase::kStatusSuccess)
        return status;
    stat.recordLength = static_cast<uint16_t>(buffer.recordLength);
    stat.pageSize = buffer.pageSize;
    stat.fileFlags = buffer.fileFlags;
    stat.records = buffer.numberOfRecords;
    stat.keys = {};
    stat.keys.keyCount = buffer.numberOfKeys;
    // Each key takes descriptions up to and including the first one without the segmented flag.
    constexpr size_t kSegmentSize = 16;
    const size_t available = (length > 16 ? length - 16 : 0) / kSegmentSize;
    size_t at = 0;
    for (uint16_t key = 0; key < buffer.numberOfKeys; ++key) {
        for (bool more = true; more && at < available; ++at) {
            const uint8_t* d = buffer.keySpecs + at * kSegmentSize;
            REKeySegment segment{};
            segment.position = static_cast<uint16_t>(d[0] | d[1] << 8);
            segment.length = static_cast<uint16_t>(d[2] | d[3] << 8);
            segment.flags = static_cast<uint16_t>(d[4] | d[5] << 8);
            segment.type = d[10];
            segment.nullValue = d[11];
            stat.keys.segments.push_back(segment);
            more = (segment.flags & kKeySegmented) != 0;
        }
    }
    return status;
}

int16_t RawFile::Step(bool first, std::vector<uint8_t>& record) {
    record.assign(kMaxRecordLength, 0);
    uint32_t length = kMaxRecordLength;
    const int16_t status = Call(first ? REBtrieveBase::kOpStepFirst : REBtrieveBase::kOpStepNext, record.data(), length);
    record.resize(status == REBtrieveBase::kStatusSuccess ? length : 0);
    return status;
}

int16_t RawFile::StepLast() {
    std::vector<uint8_t> record(kMaxRecordLength);
    uint32_t length = kMaxRecordLength;
    return Call(REBtrieveBase::kOpStepLast, record.data(), length);
}

int16_t RawFile::Insert(std::vector<uint8_t> record) {
    uint32_t length = static_cast<uint32_t>(record.size());
    return Call(REBtrieveBase::kOpInsert, record.data(), length);
}

int16_t RawFile::DeleteCurrent() {
    uint32_t length = 0;
    return Call(REBtrieveBase::kOpDelete, nullptr, length);
}

std::string StatusText(int16_t status) {
    switch (status) {
    case REBtrieveBase::kStatusDuplicateKey: return "status 5, duplicate key";
    case REBtrieveBase::kStatusFileNotFound: return "status 12, no such file";
    case REBtrieveBase::kStatusInvalidFileName: return "status 11, invalid file name";
    case 2: return "status 2, the store failed";
    case 18: return "status 18, the disk is full";
    case 20: return "status 20, the record manager's store is not available";
    case 25: return "status 25, the file cannot be made";
    case 30: return "status 30, not a record-manager file";
    case 46: return "status 46, access denied";
    case 85: return "status 85, the file is open exclusively elsewhere";
    case 59: return "status 59, the file already exists";
    case 88: return "status 88, the file is open elsewhere";
    default: return "status " + std::to_string(status);
    }
}

}  // namespace tool
