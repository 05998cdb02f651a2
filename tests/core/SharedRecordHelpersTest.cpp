#include "TestSupport.h"

#include "RESharedHelpers.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <regex>
#include <string>

namespace {

struct Rec {
    char name[10];
    int32_t value;
};

Rec* NewRec(int32_t value) {
    auto* rec = static_cast<Rec*>(REAllocRecord(sizeof(Rec)));
    rec->value = value;
    return rec;
}

}  // namespace

TEST(REAllocRecord, GivesZeroFilledBlocks) {
    auto* rec = static_cast<unsigned char*>(REAllocRecord(64));
    ASSERT_NE(rec, nullptr);
    for (int i = 0; i < 64; ++i)
        EXPECT_EQ(rec[i], 0) << i;
    REFreeRecord(rec);
    void* empty = REAllocRecord(0);
    EXPECT_NE(empty, nullptr);
    REFreeRecord(empty);
    REFreeRecord(nullptr);
}

// The sanitizer build reports any element left behind.
TEST(DeallocatePtrArray, FreesEveryElementOfTypedAndUntypedArrays) {
    std::vector<Rec*> typed = {NewRec(1), NewRec(2), NewRec(3)};
    DeallocatePtrArray(typed);
    EXPECT_TRUE(typed.empty());

    std::vector<void*> untyped = {NewRec(1), REAllocRecord(7)};
    DeallocatePtrArray(untyped);
    EXPECT_TRUE(untyped.empty());

    std::vector<Rec*> none;
    DeallocatePtrArray(none);
    EXPECT_TRUE(none.empty());
}

TEST(FindIndexInPtrArray, FindsTheFirstEqualPointer) {
    Rec a{}, b{}, c{};
    std::vector<Rec*> typed = {&a, &b, &a};
    int index = 99;
    EXPECT_EQ(FindIndexInPtrArray(typed, &a, index), 1);
    EXPECT_EQ(index, 0);
    EXPECT_EQ(FindIndexInPtrArray(typed, &b, index), 1);
    EXPECT_EQ(index, 1);
    EXPECT_EQ(FindIndexInPtrArray(typed, &c, index), 0);
    EXPECT_EQ(index, -1);

    std::vector<void*> untyped = {&c, &b};
    EXPECT_EQ(FindIndexInPtrArray(untyped, &b, index), 1);
    EXPECT_EQ(index, 1);
    std::vector<void*> empty;
    index = 5;
    EXPECT_EQ(FindIndexInPtrArray(empty, nullptr, index), 0);
    EXPECT_EQ(index, -1);
}

TEST(ConvertOldDateToNew, ReadsBothStoredForms) {
    struct Case {
        const char* text;
        double expected;
    };
    // Days since 30 December 1899; 0.0 for a day that does not exist.
    const Case cases[] = {
        {"960105", 35069},      {"1/5/96", 35069},     {"1/5/1996", 35069},   {"01-05-96", 35069},
        {"  1/5/96", 35069},    {"1/5/96/7", 35069},   {"1//5/96", 35069},    {"050101", 1828},
        {"2/29/2000", 36585},   {"1/5/00", 6},         {"3-1-1900", 61},      {"961305", 0.0},
        {"960132", 0.0},        {"000229", 0.0},       {"2/30/96", 0.0},      {"0/5/96", 0.0},
        {"12/1996", 0.0},       {"19960105", 0.0},     {" 960105", 0.0},      {"1/5/99999", 0.0},
        {"ab/cd/ef", 0.0},      {"9601  ", 0.0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        double date = -1.0;
        EXPECT_EQ(ConvertOldDateToNew(c.text, date), 1);
        EXPECT_EQ(date, c.expected);
    }
}

TEST(ConvertOldDateToNew, TooShortLeavesTheDateUnchanged) {
    for (const char* text : {"12345", "", "   1/5", "1/5/9"}) {
        SCOPED_TRACE(text);
        double date = 42.0;
        EXPECT_EQ(ConvertOldDateToNew(text, date), 0);
        EXPECT_EQ(date, 42.0);
    }
    double date = 42.0;
    EXPECT_EQ(ConvertOldDateToNew(nullptr, date), 0);
    EXPECT_EQ(date, 42.0);
}

TEST(cvsmbf, ConvertsStoredSingles) {
    struct Case {
        unsigned char bytes[4];
        double expected;
    };
    const Case cases[] = {
        {{0x00, 0x00, 0x00, 0x81}, 1.0},
        {{0x00, 0x00, 0x20, 0x84}, 10.0},
        {{0x00, 0x00, 0x00, 0x00}, 0.0},
        {{0x00, 0x00, 0x00, 0x80}, 0.5},
        {{0x00, 0x80, 0x00, 0x81}, 1.00390625},
        {{0x80, 0x00, 0x00, 0x81}, 1.0 + 128.0 / 8388608.0},
        // The sign bit counts as mantissa: a stored -1.0 reads as 2.0.
        {{0x00, 0x00, 0x80, 0x81}, 2.0},
        // Below 1e-10 reads as zero.
        {{0xff, 0xff, 0x7f, 0x5e}, 0.0},
    };
    for (const Case& c : cases) {
        EXPECT_DOUBLE_EQ(cvsmbf(reinterpret_cast<const char*>(c.bytes)), c.expected);
        EXPECT_DOUBLE_EQ(cvsmbf(c.bytes), c.expected);
    }
    EXPECT_DOUBLE_EQ(cvsmbf("\x00\x00\x20\x84"), 10.0);
    EXPECT_EQ(cvsmbf(nullptr), 0.0);
}

TEST(Gfn_GetUniqueFileName, MakesANameNotPresentInTheDirectory) {
    testsupport::TempDir dir;
    const std::regex defaultForm(R"(TSL(\d+)\.tmp)");
    for (const std::string& directory : {dir.path().string(), dir.path().string() + "/"}) {
        std::string name;
        ASSERT_EQ(Gfn_GetUniqueFileName(directory, "tmp", name), 1);
        std::smatch match;
        ASSERT_TRUE(std::regex_match(name, match, defaultForm)) << name;
        EXPECT_LE(std::stoi(match[1]), 32767);
        EXPECT_FALSE(std::filesystem::exists(dir.path() / name));
    }
    const std::string prefix = "AB";
    std::string name;
    ASSERT_EQ(Gfn_GetUniqueFileName(dir.path().string(), "bak", name, &prefix), 1);
    EXPECT_TRUE(std::regex_match(name, std::regex(R"(AB\d+\.bak)"))) << name;
}

TEST(Gfn_GetUniqueFileName, TriesAgainUntilTheNameIsFree) {
    testsupport::TempDir dir;
    // One name in 32 is taken: a search that did not try again would hand one out within a
    // thousand calls.
    const std::string prefix = "Q";
    for (int n = 0; n <= 32767; n += 32)
        std::ofstream(dir.path() / ("Q" + std::to_string(n) + ".x"));
    for (int call = 0; call < 1000; ++call) {
        std::string name;
        ASSERT_EQ(Gfn_GetUniqueFileName(dir.path().string(), "x", name, &prefix), 1);
        ASSERT_FALSE(std::filesystem::exists(dir.path() / name)) << name;
        ASSERT_NE(std::stoi(name.substr(1)) % 32, 0) << name;
    }
}

TEST(Gfn_GetUniqueFileName, RefusesLongPrefixesAndRejectedPaths) {
    testsupport::TempDir dir;
    std::string name = "unchanged";
    const std::string longPrefix = "ABCD";
    EXPECT_EQ(Gfn_GetUniqueFileName(dir.path().string(), "tmp", name, &longPrefix), 0);
    EXPECT_EQ(name, "unchanged");
    EXPECT_TRUE(std::filesystem::is_empty(dir.path()));

    const std::string tooLongComponent = (dir.path() / std::string(300, 'a')).string();
    EXPECT_EQ(Gfn_GetUniqueFileName(tooLongComponent, "tmp", name), 0);
    EXPECT_EQ(name, "unchanged");
}
