// The arguments of one BTRCALL, with the operation split into base code and lock bias.
#pragma once

#include "recman/Codes.h"

#include <cstdint>

namespace recman {

struct CallArgs {
    uint16_t op = 0;    // base operation code
    uint16_t bias = 0;  // LockBias
    void* posBlock = nullptr;
    void* data = nullptr;
    uint32_t* dataLength = nullptr;
    void* key = nullptr;
    uint8_t keyLength = 0;
    int8_t keyNumber = 0;

    // Size of the data buffer (or length of the data given); 0 for a null buffer or length.
    uint32_t dataSize() const { return (data && dataLength) ? *dataLength : 0; }
    uint8_t* dataBytes() const { return static_cast<uint8_t*>(data); }
    uint8_t* keyBytes() const { return static_cast<uint8_t*>(key); }
    bool locking() const { return bias != BiasNone; }
    bool multipleLock() const { return bias == BiasMultiple || bias == BiasMultipleWait; }
};

}  // namespace recman
