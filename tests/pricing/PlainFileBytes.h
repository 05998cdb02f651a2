// Byte-level helpers for the tests of the plain list files: reading and writing whole files,
// and building the binary forms by hand.
#pragma once

#include "RESharedHelpers.h"

#include <cstdint>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

namespace plaintest {

constexpr std::size_t kHeaderSize = 337;
constexpr std::size_t kPathOffset = 37;

inline std::string ReadBytes(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

inline void WriteBytes(const std::string& path, std::string_view bytes) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

inline void AppendInt32(std::string& out, int32_t value) {
    for (int shift = 0; shift < 32; shift += 8)
        out.push_back(static_cast<char>((static_cast<uint32_t>(value) >> shift) & 0xFF));
}

// The 337-byte header of a price list: 'y' throughout, the identification string with its zero
// at 0 and the load path with its zero at 37.
inline std::string PriceHeader(const char* ident, const std::string& loadPath) {
    std::string header(kHeaderSize, 'y');
    header.replace(0, std::strlen(ident) + 1, ident, std::strlen(ident) + 1);
    header.replace(kPathOffset, loadPath.size() + 1, loadPath.c_str(), loadPath.size() + 1);
    return header;
}

template <class REC>
std::string_view BytesOf(const REC& record) {
    return std::string_view(reinterpret_cast<const char*>(&record), sizeof(REC));
}

// A zero-filled record that the library may free.
template <class REC>
REC* NewRecord() {
    return static_cast<REC*>(REAllocRecord(sizeof(REC)));
}

}  // namespace plaintest
