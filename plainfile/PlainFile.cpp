#include "plainfile/PlainFile.h"

#include "core/Platform.h"

#include <atomic>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

namespace fs = std::filesystem;

namespace plainfile {

bool ReadWholeFile(const std::string& path, std::string& content) {
    std::error_code error;
    if (path.empty() || !fs::is_regular_file(fs::path(path), error))
        return false;
    std::ifstream in(fs::path(path), std::ios::binary);
    if (!in)
        return false;
    content.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    return !in.bad();
}

bool ReplaceFile(const std::string& path, std::string_view content) {
    if (path.empty())
        return false;
    static std::atomic<uint64_t> counter{std::random_device{}()};
    const fs::path target(path);
    std::error_code error;
    fs::path temp;
    do {
        temp = target;
        temp += ".~" + std::to_string(counter.fetch_add(0x9E3779B97F4A7C15ull) % 1000000007ull) + ".tmp";
    } while (fs::exists(temp, error));
    std::FILE* file = std::fopen(temp.string().c_str(), "wb");
    if (file == nullptr)
        return false;
    bool written = std::fwrite(content.data(), 1, content.size(), file) == content.size();
    written = std::fclose(file) == 0 && written;
    if (written) {
        fs::rename(temp, target, error);
        written = !error;
    }
    if (!written)
        fs::remove(temp, error);
    return written;
}

std::string CompanionPath(const std::string& path, const char* extension) {
    platform::PathParts parts = platform::SplitPath(path);
    return platform::MakePath(parts.directory, parts.name, extension);
}

bool SamePath(const std::string& a, const std::string& b) {
    if (a == b)
        return true;
    std::error_code error;
    return fs::equivalent(fs::path(a), fs::path(b), error) && !error;
}

bool HasIdentification(std::string_view header, const char* ident) {
    const std::size_t length = std::strlen(ident);
    return header.size() > length && header.compare(0, length, ident) == 0 && header[length] == '\0';
}

bool StorePath(char* buffer, std::size_t size, const char* path) {
    std::memset(buffer, 0, size);
    if (path == nullptr || std::strlen(path) >= size)
        return false;
    std::memcpy(buffer, path, std::strlen(path));
    return true;
}

void AppendInt32(std::string& out, int32_t value) {
    const auto bits = static_cast<uint32_t>(value);
    for (int shift = 0; shift < 32; shift += 8)
        out.push_back(static_cast<char>((bits >> shift) & 0xFF));
}

bool ReadInt32(std::string_view buffer, std::size_t& pos, int32_t& value) {
    if (pos > buffer.size() || buffer.size() - pos < 4)
        return false;
    uint32_t bits = 0;
    for (int i = 3; i >= 0; --i)
        bits = (bits << 8) | static_cast<unsigned char>(buffer[pos + i]);
    value = static_cast<int32_t>(bits);
    pos += 4;
    return true;
}

}  // namespace plainfile
