// Builders shared by the file tests: old-layout records and files made as the earlier system
// stored them, fresh files of the classes under test, and the bytes or texts of what they hold.
#pragma once

#include "REListControl.h"
#include "RESharedHelpers.h"

#include "RawRecordFile.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <list>
#include <span>
#include <string>
#include <vector>

namespace testsupport {

// Copies `text` into a blank-padded old field, without terminator.
inline void PutOld(char* field, size_t width, const char* text) {
    std::memcpy(field, text, std::min(width, std::strlen(text)));
}
template <size_t N>
void PutOld(char (&field)[N], const char* text) {
    PutOld(field, N, text);
}

// A blank-filled old record.
template <class OLDREC>
OLDREC Blank() {
    OLDREC rec;
    std::memset(&rec, ' ', sizeof rec);
    return rec;
}

// A blank-filled old record with its fields set by `fill`.
template <class OLDREC, class Fill>
OLDREC OldRecord(Fill fill) {
    OLDREC rec;
    std::memset(&rec, ' ', sizeof rec);
    fill(rec);
    return rec;
}

// Creates a file of `REC` records at `path` with `keys` (at the old positions for an old layout)
// and inserts `records` in this physical order.
template <class REC>
void WriteOldFile(const std::string& path, std::span<const REKeySegment> keys, std::span<const REC> records,
                  uint16_t fileFlags = 0) {
    ASSERT_EQ(0, CreateRawFile(path, sizeof(REC), keys, fileFlags));
    RawRecordFile raw(path, sizeof(REC));
    ASSERT_EQ(0, raw.openStatus());
    for (const REC& rec : records)
        ASSERT_EQ(0, raw.insert(&rec));
}
template <class REC>
void WriteOldFile(const std::string& path, std::span<const REKeySegment> keys, std::initializer_list<REC> records,
                  uint16_t fileFlags = 0) {
    WriteOldFile(path, keys, std::span<const REC>(records.begin(), records.size()), fileFlags);
}

// The records of a file as stored, in physical order.
template <class REC>
std::vector<std::vector<uint8_t>> StoredRecords(const std::string& path) {
    RawRecordFile raw(path, sizeof(REC));
    return raw.records();
}

template <class REC>
std::vector<uint8_t> Bytes(const REC& rec) {
    const auto* at = reinterpret_cast<const uint8_t*>(&rec);
    return std::vector<uint8_t>(at, at + sizeof rec);
}

// A class's message text with its "%d" filled in by a record-manager status.
inline std::string WithStatus(const char* text, int status) {
    char buffer[256];
    std::snprintf(buffer, sizeof buffer, text, status);
    return buffer;
}

// A float as the earlier file generation stores it: sign bit set on a positive number (every bit
// flipped on a negative one), most significant byte first, so its bytes sort as the numbers do.
inline float Sortable(float value) {
    uint32_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    bits = (bits & 0x80000000u) != 0 ? ~bits : bits | 0x80000000u;
    const uint8_t bytes[4] = {static_cast<uint8_t>(bits >> 24), static_cast<uint8_t>(bits >> 16),
                              static_cast<uint8_t>(bits >> 8), static_cast<uint8_t>(bits)};
    float stored;
    std::memcpy(&stored, bytes, sizeof stored);
    return stored;
}

// Creates the file of the class at `path` and opens it.
template <class File>
void CreateAndOpen(File& file, const std::string& path) {
    ASSERT_EQ(1, file.CreateNewFile(path.c_str()));
    ASSERT_EQ(1, file.Initialize(path.c_str()));
}

// A copy of `rec` in a block of the library's allocator, for a collection the library frees.
template <class REC>
REC* Allocated(const REC& rec) {
    auto* copy = static_cast<REC*>(REAllocRecord(sizeof rec));
    *copy = rec;
    return copy;
}

// Frees the records of a collection the library handed out.
template <class C>
void Free(C& records) {
    for (auto* rec : records)
        std::free(rec);
    records.clear();
}

// One text field of each record of a collection the library handed out, which it then frees.
template <class C, class Field>
std::vector<std::string> TextsOf(C& records, Field field) {
    std::vector<std::string> texts;
    for (const auto* rec : records)
        texts.emplace_back(rec->*field);
    Free(records);
    return texts;
}

// A list control that keeps the texts given to it.
class ListControl : public REListControl {
public:
    int AddString(const char* text) override {
        texts.emplace_back(text);
        return static_cast<int>(texts.size()) - 1;
    }
    std::vector<std::string> texts;
};

}  // namespace testsupport
