// The behaviours in which file classes differ, each switched on in a class's spec: physical
// reads, reported equal misses, Initialize on an open object, path kept in the class.
#include "SmallCodeFile.h"

#include "RESharedHelpers.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

namespace {

SMALLCODERECORD Code(const char* code) {
    SMALLCODERECORD rec{};
    std::snprintf(rec.szCode, sizeof rec.szCode, "%s", code);
    return rec;
}

class RecordFileVariations : public ::testing::Test {
protected:
    // A file holding codes B, C and A, inserted in that order.
    void open(SmallCodeFile& file) {
        ASSERT_EQ(1, file.CreateNewFile(path.c_str()));
        ASSERT_EQ(1, file.Initialize(path.c_str()));
        for (const char* code : {"B", "C", "A"}) {
            auto rec = Code(code);
            ASSERT_EQ(1, file.AddRecord(rec));
        }
    }
    static std::string codes(SmallCodeFile& file) {
        std::vector<SMALLCODERECORD*> records;
        file.GetAllRecords(records);
        std::string all;
        for (auto* rec : records)
            all += rec->szCode;
        DeallocatePtrArray(records);
        return all;
    }

    testsupport::TempDir dir;
    std::string path = dir.file("codes.dat");
};

TEST_F(RecordFileVariations, PositionalReadsFollowTheSpec) {
    SmallCodeFile byKey;
    open(byKey);
    EXPECT_EQ("ABC", codes(byKey));

    RERecordFileSpec physical = kSmallCodeSpec;
    physical.first = {REBtrieveBase::kOpStepFirst, 0};
    physical.last = {REBtrieveBase::kOpStepLast, 0};
    physical.next = {REBtrieveBase::kOpStepNext, 0};
    physical.previous = {REBtrieveBase::kOpStepPrevious, 0};
    SmallCodeFile file(physical);
    ASSERT_EQ(1, file.Initialize(path.c_str()));
    EXPECT_EQ("BCA", codes(file));
    SMALLCODERECORD rec;
    ASSERT_EQ(1, file.GetLastRecord(&rec));
    ASSERT_EQ(1, file.GetPreviousRecord(&rec));
    EXPECT_STREQ("C", rec.szCode);
    // Deleting all walks the physical order as well.
    EXPECT_EQ(1, file.DeleteAllRecords());
    EXPECT_EQ("", codes(byKey));
}

TEST_F(RecordFileVariations, EqualMissIsReportedWhenTheSpecSaysSo) {
    RERecordFileSpec reporting = kSmallCodeSpec;
    reporting.reportGetEqualMiss = true;
    SmallCodeFile file(reporting);
    open(file);
    testsupport::MessageCapture messages;
    EXPECT_EQ(1, file.GetEqualMatch("A", nullptr));
    SMALLCODERECORD rec{};
    EXPECT_EQ(1, file.GetEqualMatch("C", &rec));
    EXPECT_STREQ("C", rec.szCode);
    EXPECT_EQ(0u, messages.count());
    EXPECT_EQ(0, file.GetEqualMatch("Z", nullptr));
    EXPECT_EQ("Unknown error PDC-pur-info database file. [Error# 4]", messages.lastText());
}

TEST_F(RecordFileVariations, InitializeOnAnOpenObjectClosesItWhenTheSpecSaysSo) {
    RERecordFileSpec closing = kSmallCodeSpec;
    closing.initializeOnOpenCloses = true;
    SmallCodeFile file(closing);
    open(file);
    EXPECT_EQ(0, file.Initialize(path.c_str()));
    EXPECT_EQ(0, file.IsOpen());
    EXPECT_EQ(1, file.Initialize(path.c_str()));

    SmallCodeFile reopening;
    ASSERT_EQ(1, reopening.Initialize(path.c_str()));
    EXPECT_EQ(1, reopening.Initialize(path.c_str()));
    EXPECT_EQ(1, reopening.IsOpen());
    EXPECT_EQ(0, reopening.Initialize(nullptr));
}

TEST_F(RecordFileVariations, PathIsKeptInTheClassOrInTheBase) {
    const std::string missing = dir.file("missing.dat");
    std::string name;
    for (bool ownPath : {true, false}) {
        RERecordFileSpec spec = kSmallCodeSpec;
        spec.ownPath = ownPath;
        SmallCodeFile file(spec);
        open(file);
        file.GetBtrieveFileName(name);
        EXPECT_EQ(path, name);
        ASSERT_EQ(1, file.Reset());
        EXPECT_EQ(0, file.IsOpen());
        file.GetBtrieveFileName(name);
        // Reset forgets a path kept in the class; the base keeps the name of its last open.
        EXPECT_EQ(ownPath ? "" : path, name);

        testsupport::MessageCapture messages;
        EXPECT_EQ(0, file.Initialize(missing.c_str()));
        file.GetBtrieveFileName(name);
        EXPECT_EQ(missing, name);
    }
}

}  // namespace
