// The single entry point of the embedded record manager.
//
// Every record-manager file operation (open, close, create, stat, version, insert, update,
// delete, the key-ordered Gets, the physical Steps, unlock) is one call; the result is the
// record manager's 16-bit status, 0 for success.
#pragma once

#include "tarsel_export.h"

#include <cstdint>

extern "C" TARSEL_API int16_t BTRCALL(uint16_t operation, void* posBlock, void* dataBuffer, uint32_t* dataLength,
                                      void* keyBuffer, uint8_t keyLength, int8_t keyNumber);
