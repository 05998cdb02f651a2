// Helpers of the labor file tests: old-layout records and files built as the earlier system
// stored them, and fresh files of the classes under test.
#pragma once

#include "RESharedHelpers.h"

#include "RawRecordFile.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <list>
#include <span>
#include <string>

namespace laborsupport {

// Copies `text` into a blank-padded old field, without terminator.
inline void PutOld(char* field, size_t width, const char* text) {
    std::memcpy(field, text, std::min(width, std::strlen(text)));
}

// A blank-filled old record with its fields set by `fill`.
template <class OLDREC, class Fill>
OLDREC OldRecord(Fill fill) {
    OLDREC rec;
    std::memset(&rec, ' ', sizeof rec);
    fill(rec);
    return rec;
}

// Creates an old-layout file at `path` with `keys` at the old positions and inserts `records`.
template <class OLDREC>
void WriteOldFile(const std::string& path, std::span<const REKeySegment> keys, std::span<const OLDREC> records) {
    ASSERT_EQ(0, testsupport::CreateRawFile(path, sizeof(OLDREC), keys));
    testsupport::RawRecordFile raw(path, sizeof(OLDREC));
    ASSERT_EQ(0, raw.openStatus());
    for (const OLDREC& rec : records)
        ASSERT_EQ(0, raw.insert(&rec));
}

// The records of a file as stored, in physical order.
template <class OLDREC>
std::vector<std::vector<uint8_t>> StoredRecords(const std::string& path) {
    testsupport::RawRecordFile raw(path, sizeof(OLDREC));
    return raw.records();
}

template <class REC>
std::vector<uint8_t> Bytes(const REC& rec) {
    const auto* at = reinterpret_cast<const uint8_t*>(&rec);
    return std::vector<uint8_t>(at, at + sizeof rec);
}

// Creates the file of the class at `path` and opens it.
template <class File>
void CreateAndOpen(File& file, const std::string& path) {
    ASSERT_EQ(1, file.CreateNewFile(path.c_str()));
    ASSERT_EQ(1, file.Initialize(path.c_str()));
}

// Frees the records of a list the library handed out.
template <class REC>
void Free(std::list<REC*>& list) {
    for (REC* rec : list)
        std::free(rec);
    list.clear();
}

}  // namespace laborsupport
