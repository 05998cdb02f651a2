// Whole-file input and output of the plain list files, their little-endian numbers, and the
// companion file (same drive, directory and base name, another extension) kept beside a list.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace plainfile {

// Identification block at the start of every plain list file.
constexpr std::size_t kHeaderSize = 337;

// The whole content of the regular file `path`; false when it is missing or cannot be read.
bool ReadWholeFile(const std::string& path, std::string& content);

// Writes `content` to a new temporary file in the folder of `path` and renames it over `path`,
// so that a failed write leaves the file already there untouched. False on any failure.
bool ReplaceFile(const std::string& path, std::string_view content);

// `path` with its extension replaced by `extension` (given without the dot).
std::string CompanionPath(const std::string& path, const char* extension);

// True when `a` and `b` name the same file (or the same path, when neither exists).
bool SamePath(const std::string& a, const std::string& b);

// True when the first bytes of `header`, read as a zero-terminated string, equal `ident`.
bool HasIdentification(std::string_view header, const char* ident);

// Copies a path into a fixed buffer of `size` bytes (zero-filled first); false, leaving the
// buffer empty, when the path is null or does not fit.
bool StorePath(char* buffer, std::size_t size, const char* path);

void AppendInt32(std::string& out, int32_t value);
// Reads an int32 at `pos` and advances it; false (pos unchanged) when fewer than 4 bytes remain.
bool ReadInt32(std::string_view buffer, std::size_t& pos, int32_t& value);

}  // namespace plainfile
