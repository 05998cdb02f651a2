// Shared by the price-list fuzz targets: each input goes through a real file in a directory of
// its own, with the message boxes silenced.
#pragma once

#include "REMessageHandler.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

namespace plainfuzz {

inline void IgnoreMessage(const char*, const char*, unsigned int) {}

// Path of the input file, in a fresh directory made on first use.
inline const std::string& InputPath() {
    static const std::string path = [] {
        RESetMessageHandler(&IgnoreMessage);
        // A memory-backed folder keeps the many small writes and renames of a run fast.
        std::error_code error;
        const std::filesystem::path base = std::filesystem::is_directory("/dev/shm", error)
                                               ? std::filesystem::path("/dev/shm")
                                               : std::filesystem::temp_directory_path();
        std::string pattern = (base / "tarsel-fuzz-XXXXXX").string();
        if (mkdtemp(pattern.data()) == nullptr)
            std::abort();
        static const std::filesystem::path dir = pattern;
        std::atexit([] {
            std::error_code ignored;
            std::filesystem::remove_all(dir, ignored);
        });
        return (dir / "input.prc").string();
    }();
    return path;
}

// Writes `prefix` then the input bytes to the input file and returns its path.
inline const char* WriteInput(const std::string& prefix, const uint8_t* data, size_t size) {
    const std::string& path = InputPath();
    std::FILE* file = std::fopen(path.c_str(), "wb");
    if (file != nullptr) {
        std::fwrite(prefix.data(), 1, prefix.size(), file);
        std::fwrite(data, 1, size, file);
        std::fclose(file);
    }
    return path.c_str();
}

// The header of a binary price list with the given identification string.
inline std::string BinaryHeader(const char* ident) {
    std::string header(337, 'y');
    header.replace(0, std::char_traits<char>::length(ident) + 1, ident, std::char_traits<char>::length(ident) + 1);
    return header;
}

// Loads the input, saves it beside and loads the saved file again: both loads must agree.
template <class File>
void LoadSaveLoad(const char* path) {
    File file;
    file.Initialize(path);
    const std::string saved = std::string(path) + ".saved";
    file.Save(saved.c_str());
    File again;
    again.Initialize(saved.c_str());
    if (again.GetBasePrice().size() != file.GetBasePrice().size())
        __builtin_trap();
}

}  // namespace plainfuzz
