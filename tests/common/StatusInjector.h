// Test fixture: makes the record manager answer a chosen status to chosen operations, through
// the library's replaceable record-manager call. Every other call reaches BTRCALL. One injector
// at a time; it restores BTRCALL when it goes.
#pragma once

#include "BTRCALL.h"

#include <cstdint>

namespace testsupport {

class StatusInjector {
public:
    // Operations whose base code (lock bias aside) is `op` answer `status` without reaching the
    // record manager; a negative `op` matches every operation.
    StatusInjector(int op, int16_t status) {
        s_op = op;
        s_status = status;
        s_hits = 0;
        RESetBtrieveCall(&Call);
    }
    ~StatusInjector() { RESetBtrieveCall(nullptr); }
    StatusInjector(const StatusInjector&) = delete;
    StatusInjector& operator=(const StatusInjector&) = delete;

    // Calls answered with the injected status so far.
    int hits() const { return s_hits; }

private:
    static int16_t Call(uint16_t op, void* posBlock, void* data, uint32_t* length, void* key, uint8_t keyLength,
                        int8_t keyNumber) {
        if (s_op < 0 || op % 100 == s_op) {
            ++s_hits;
            return s_status;
        }
        return BTRCALL(op, posBlock, data, length, key, keyLength, keyNumber);
    }

    static inline int s_op = -1;
    static inline int16_t s_status = 0;
    static inline int s_hits = 0;
};

}  // namespace testsupport
