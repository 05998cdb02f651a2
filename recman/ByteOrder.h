// Little-endian loads and stores over byte buffers, free of alignment assumptions.
#pragma once

#include <cstdint>

namespace recman {

inline uint16_t loadLE16(const uint8_t* p) { return uint16_t(p[0] | (p[1] << 8)); }

inline uint32_t loadLE32(const uint8_t* p)
{
    return uint32_t(p[0]) | (uint32_t(p[1]) << 8) | (uint32_t(p[2]) << 16) | (uint32_t(p[3]) << 24);
}

inline uint64_t loadLE64(const uint8_t* p) { return uint64_t(loadLE32(p)) | (uint64_t(loadLE32(p + 4)) << 32); }

// Unsigned little-endian integer of 1 to 8 bytes.
inline uint64_t loadLEN(const uint8_t* p, unsigned n)
{
    uint64_t v = 0;
    for (unsigned i = n; i-- > 0;)
        v = (v << 8) | p[i];
    return v;
}

inline void storeLE16(uint8_t* p, uint16_t v)
{
    p[0] = uint8_t(v);
    p[1] = uint8_t(v >> 8);
}

inline void storeLE32(uint8_t* p, uint32_t v)
{
    for (int i = 0; i < 4; ++i)
        p[i] = uint8_t(v >> (8 * i));
}

inline void storeLEN(uint8_t* p, uint64_t v, unsigned n)
{
    for (unsigned i = 0; i < n; ++i)
        p[i] = uint8_t(v >> (8 * i));
}

inline void storeLE64(uint8_t* p, uint64_t v) { storeLEN(p, v, 8); }

}  // namespace recman
