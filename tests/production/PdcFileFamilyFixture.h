// Test fixture of the production files: a fresh directory, files created there through their
// class and opened, and raw files with the keys that the look-ups of some classes need.
#pragma once

#include "RecordBuilders.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <cstring>
#include <span>
#include <string>
#include <string_view>

class PdcFileTest : public ::testing::Test {
protected:
    // Creates the file `name` through the class and opens it.
    template <class File>
    void create(File& file, const char* name) {
        testsupport::CreateAndOpen(file, dir.file(name));
    }
    // Creates the file `name` of the class's record with the given keys and opens it.
    template <class File>
    void createWithKeys(File& file, const char* name, std::span<const REKeySegment> keys) {
        const std::string path = dir.file(name);
        ASSERT_EQ(0, testsupport::CreateRawFile(path, sizeof(typename File::Record), keys));
        ASSERT_EQ(1, file.Initialize(path.c_str()));
    }
    // The number of keys the open file reports.
    static int keyCount(REBtrieveBase& file) {
        STAT_BUFFER stat{};
        file.GetStatus(&stat);
        return stat.numberOfKeys;
    }

    testsupport::TempDir dir;
};

// Copies a text into a fixed field, NUL-terminated.
template <size_t N>
void Put(char (&field)[N], const char* text) {
    std::memset(field, 0, N);
    std::strncpy(field, text, N - 1);
}

using testsupport::PutOld;

// An old mark: a lead byte the conversion drops, then the bytes of `text` (NULs and blanks kept).
inline void PutOldMark(OLD_MARKTYPE& mark, std::string_view text, char lead = 'x') {
    mark.cLead = lead;
    std::memcpy(mark.sMark, text.data(), text.size());
}
