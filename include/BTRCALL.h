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

// Chooses where the record manager keeps its files: on the PostgreSQL server that `conninfo` (a
// libpq connection string) names, or, with null or an empty string, in the embedded store on this
// machine. Without a call, the environment variable TARSEL_SERVER decides the same way. Call it
// before the first Open; files already open stay where they are.
TARSEL_API void RESetServer(const char* conninfo);

// The call through which every REBtrieveBase reaches the record manager: BTRCALL unless replaced.
// A test puts its own function here to make any operation answer any status; null restores
// BTRCALL. Returns the previous function. Set it while no other thread is calling.
using REBtrieveCall = int16_t (*)(uint16_t operation, void* posBlock, void* dataBuffer, uint32_t* dataLength,
                                  void* keyBuffer, uint8_t keyLength, int8_t keyNumber);
TARSEL_API REBtrieveCall RESetBtrieveCall(REBtrieveCall call);
