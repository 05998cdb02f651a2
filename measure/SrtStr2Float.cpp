// Decoding of sortable single-precision fields.
#include "SrtStr2Float.h"

#include <cstdint>
#include <cstring>

namespace {

constexpr uint32_t kSignBit = 0x80000000u;

} // namespace

void SrtStr2Float(float* value)
{
    if (value == nullptr)
        return;
    unsigned char bytes[sizeof(float)];
    std::memcpy(bytes, value, sizeof bytes);
    uint32_t pattern = 0;
    for (const unsigned char b : bytes)
        pattern = (pattern << 8) | b;
    // A set top bit marks zero or a positive number; a clear one a negative number stored inverted.
    pattern = (pattern & kSignBit) != 0 ? pattern & ~kSignBit : ~pattern;
    std::memcpy(value, &pattern, sizeof pattern);
}
