// One record-manager file reached straight through BTRCALL: the utility reads and writes records
// as bytes, whatever class they belong to.
#pragma once

#include "BTRCALL.h"
#include "REBtrieveBase.h"
#include "tools/LayoutRegistry.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tool {

class RawFile {
public:
    // Largest record a variable-length file may hold.
    static constexpr uint32_t kMaxRecordLength = 65535;

    RawFile() = default;
    ~RawFile() { Close(); }
    RawFile(const RawFile&) = delete;
    RawFile& operator=(const RawFile&) = delete;

    // Opens `path` in `mode` (REBtrieveBase::OpenMode); the record manager's status.
    int16_t Open(const std::string& path, int8_t mode);
    void Close();
    bool IsOpen() const { return m_open; }

    // Stat: record length, flags, record count and keys. The status.
    struct Stat {
        uint16_t recordLength = 0;
        uint16_t pageSize = 0;
        uint16_t fileFlags = 0;
        uint32_t records = 0;
        KeySpec keys;
    };
    int16_t ReadStat(Stat& stat);

    // Step First (first == true) or Step Next into `record`, which is resized to the length read.
    int16_t Step(bool first, std::vector<uint8_t>& record);
    // Step Last: makes the physically last record current.
    int16_t StepLast();
    int16_t Insert(std::vector<uint8_t> record);
    // Deletes the current record.
    int16_t DeleteCurrent();

private:
    int16_t Call(uint16_t op, void* data, uint32_t& length, int8_t keyNumber = 0);

    uint8_t m_posBlock[REBtrieveBase::kPosBlockSize] = {};
    char m_key[REBtrieveBase::kKeyBufferSize] = {};
    bool m_open = false;
};

// "Key not found", "End of file", ...: a short name of a status for messages.
std::string StatusText(int16_t status);

}  // namespace tool
