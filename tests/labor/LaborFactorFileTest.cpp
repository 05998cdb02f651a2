// Labor groups and labor multiplication factors: the factor tables in ascending step value in
// both layouts, the search whose equal step value never matches, and the group descriptions.
#include "RELaborGroupFile.h"
#include "RELaborMultFactorFile.h"
#include "labor/LaborGroupTraits.h"

#include "RecordBuilders.h"
#include "StatusInjector.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <list>
#include <string>
#include <vector>

namespace {

using namespace testsupport;

LABORMULTFACTORRECORD Factor(const char* type, const char* group, uint32_t step, uint8_t factor = 1) {
    LABORMULTFACTORRECORD rec{};
    std::snprintf(rec.sFactorType, sizeof rec.sFactorType, "%s", type);
    std::snprintf(rec.sGroupName, sizeof rec.sGroupName, "%s", group);
    rec.nStepValue = step;
    rec.factor[0] = factor;
    rec.factor[3] = 0x3F;
    return rec;
}

OLD_LABORMULTFACTORRECORD OldFactor(const char* type, const char* group, uint32_t step) {
    return OldRecord<OLD_LABORMULTFACTORRECORD>([&](OLD_LABORMULTFACTORRECORD& rec) {
        PutOld(rec.sFactorType, sizeof rec.sFactorType, type);
        PutOld(rec.sGroupName, sizeof rec.sGroupName, group);
        rec.nStepValue = step;
        std::memcpy(rec.factor, "\x01\x02\x03\x04", 4);
    });
}

constexpr REKeySegment kOldFactorKey[] = {
    {1, 1, kKeyInnerSegment | kKeyCaseInsensitive, kKeyTypeString, kKeyNullByte},
    {2, 5, kKeyInnerSegment | kKeyCaseInsensitive, kKeyTypeString, kKeyNullByte},
    {7, 4, kKeyLastSegment, kKeyTypeUnsigned, kKeyNullByte},
};

std::string Steps(const std::list<LABORMULTFACTORRECORD*>& list) {
    std::string steps;
    for (const LABORMULTFACTORRECORD* rec : list)
        steps += std::string(rec->sFactorType) + rec->sGroupName + ":" + std::to_string(rec->nStepValue) + " ";
    return steps;
}

// The same factors in a new-layout and an old-layout file, written out of order: group "AB"
// sorts between "A" and "B" and must not leak into either's table.
class LaborFactorLayouts : public ::testing::TestWithParam<bool> {
protected:
    void SetUp() override {
        const char* keys[][2] = {{"W", "B"}, {"W", "A"}, {"W", "A"}, {"Q", "A"}, {"W", "AB"}, {"W", "A"}, {"Q", "C"}};
        const uint32_t steps[] = {100, 1000, 100, 50, 1, 500, 7};
        if (GetParam()) {
            std::vector<OLD_LABORMULTFACTORRECORD> old;
            for (size_t i = 0; i < std::size(steps); ++i)
                old.push_back(OldFactor(keys[i][0], keys[i][1], steps[i]));
            WriteOldFile<OLD_LABORMULTFACTORRECORD>(path, kOldFactorKey, old);
            ASSERT_EQ(1, file.Initialize(path.c_str()));
            ASSERT_EQ(1, file.m_isOldFormat);
        } else {
            CreateAndOpen(file, path);
            for (size_t i = 0; i < std::size(steps); ++i) {
                auto rec = Factor(keys[i][0], keys[i][1], steps[i]);
                ASSERT_EQ(1, file.AddNewRecord(rec));
            }
        }
    }
    std::string factors(RELaborMultFactorFile::FactorType type, const char* group) {
        std::list<LABORMULTFACTORRECORD*> list;
        const int found = file.GetFactorsWRTLabCodeGrp(type, group, list);
        EXPECT_EQ(list.empty() ? 0 : 1, found);
        const std::string steps = Steps(list);
        RELaborMultFactorFile::DeAllocateRecList(list);
        return steps;
    }

    testsupport::TempDir dir;
    std::string path = dir.file("factor.dat");
    RELaborMultFactorFile file;
};

TEST_P(LaborFactorLayouts, FactorTablesComeInAscendingStepValue) {
    EXPECT_EQ("WA:100 WA:500 WA:1000 ", factors(RELaborMultFactorFile::Weight, "A"));
    EXPECT_EQ("QA:50 ", factors(RELaborMultFactorFile::Quantity, "A"));
    EXPECT_EQ("WB:100 ", factors(RELaborMultFactorFile::Weight, "B"));
    EXPECT_EQ("", factors(RELaborMultFactorFile::Quantity, "B"));
    EXPECT_EQ("QC:7 ", factors(RELaborMultFactorFile::Quantity, "C"));
}

TEST_P(LaborFactorLayouts, AnEqualStepValueNeverMatches) {
    LABORMULTFACTORRECORD rec;
    EXPECT_EQ(0, file.SearchFirstRecord("W", "A", 500, &rec));
    EXPECT_EQ(0, file.m_searchActive);
    ASSERT_EQ(1, file.SearchFirstRecord("w", "a", 400, &rec));
    EXPECT_EQ(500u, rec.nStepValue);
    ASSERT_EQ(1, file.GetNextMatch("w", "a", 400, &rec));  // a larger value wraps round and differs
    EXPECT_EQ(1000u, rec.nStepValue);
    EXPECT_EQ(0, file.SearchNextRecord("W", "A", 400, &rec));  // group AB follows

    // Deleting the exact key finds it and refuses it; a new lower step is refused because the
    // group's next factor matches; a step above the group's last is added.
    auto exact = Factor("W", "A", 500);
    EXPECT_EQ(0, file._DeleteRecord(exact));
    auto lower = Factor("W", "A", 20);
    EXPECT_EQ(0, file._AddRecord(lower));
    auto higher = Factor("W", "A", 2000);
    EXPECT_EQ(1, file._AddRecord(higher));
    EXPECT_EQ("WA:100 WA:500 WA:1000 WA:2000 ", factors(RELaborMultFactorFile::Weight, "A"));
    // The search from 600 lands on 1000 and deletes that record.
    auto between = Factor("W", "A", 600);
    EXPECT_EQ(1, file._DeleteRecord(between));
    EXPECT_EQ("WA:100 WA:500 WA:2000 ", factors(RELaborMultFactorFile::Weight, "A"));
}

TEST_P(LaborFactorLayouts, GroupNamesAreListedOnceInKeyOrder) {
    std::vector<std::string> names;
    ASSERT_EQ(1, file.GetXistingLabCodeGrps(names));
    EXPECT_EQ((std::vector<std::string>{"A", "C", "AB", "B"}), names);
    EXPECT_EQ(2, RELaborMultFactorFile::_FindInStrArray("ab", names));
    EXPECT_EQ(-1, RELaborMultFactorFile::_FindInStrArray("Z", names));
}

INSTANTIATE_TEST_SUITE_P(NewAndOld, LaborFactorLayouts, ::testing::Bool());

TEST(LaborMultFactorFile, ListWritesAndTheRefusedDuplicateMessage) {
    testsupport::TempDir dir;
    RELaborMultFactorFile file;
    CreateAndOpen(file, dir.file("factor.dat"));
    std::vector<std::string> names;
    EXPECT_EQ(0, file.GetXistingLabCodeGrps(names));

    std::list<LABORMULTFACTORRECORD*> list;
    for (uint32_t step : {100u, 200u})
        list.push_back(Allocated(Factor("Q", "G", step)));
    ASSERT_EQ(1, file.AddRecords(list));
    ASSERT_EQ(2u, list.size());

    // Adding the list again: the search lands on the equal value 100, which does not match, so
    // the insert is tried and the file refuses the duplicate with the factor file's message.
    testsupport::MessageCapture messages;
    EXPECT_EQ(0, file.AddRecords(list));
    ASSERT_EQ(1u, messages.count());
    EXPECT_EQ("Unknown error in LaborMultFactor database file. [Error# 5]", messages.lastText());
    // A value below the group's first is refused without a message: the record at 100 matches.
    auto lower = Factor("Q", "G", 50);
    EXPECT_EQ(0, file._AddRecord(lower));
    EXPECT_EQ(1u, messages.count());

    // Deleting frees the caller's list also when a record cannot be deleted.
    EXPECT_EQ(0, file.DeleteRecords(list));
    EXPECT_TRUE(list.empty());
}

LABORGROUPRECORD Group(const char* name, int16_t number, const char* description) {
    LABORGROUPRECORD rec{};
    std::snprintf(rec.sGroupName, sizeof rec.sGroupName, "%s", name);
    rec.nGroupNo = number;
    std::snprintf(rec.sDescription, sizeof rec.sDescription, "%s", description);
    return rec;
}

TEST(LaborGroupFile, SearchesAndDescriptionsInANewFile) {
    testsupport::TempDir dir;
    RELaborGroupFile file;
    CreateAndOpen(file, dir.file("group.dat"));
    for (auto rec : {Group("B", 1, "b one"), Group("A", 2, "a two"), Group("A", 1, "a one")})
        ASSERT_EQ(1, file.AddNewRecord(rec));

    LABORGROUPRECORD rec;
    ASSERT_EQ(1, file.SearchFirstRecord("a", -1, &rec));
    EXPECT_EQ(1, rec.nGroupNo);
    ASSERT_EQ(1, file.GetNextMatch("a", -1, &rec));
    EXPECT_EQ(2, rec.nGroupNo);
    EXPECT_EQ(0, file.SearchNextRecord("a", -1, &rec));
    ASSERT_EQ(1, file.GetFirstMatchGE("B", 1, &rec));
    EXPECT_STREQ("b one", rec.sDescription);
    // Without a name the search starts at the first record and succeeds only with its number.
    EXPECT_EQ(1, file.SearchFirstRecord(1, &rec));
    EXPECT_EQ(0, file.SearchFirstRecord(2, &rec));

    EXPECT_EQ(1, file.ModifyDescription(1, "a much longer text"));
    ASSERT_EQ(1, file.SearchFirstRecord("A", 1, &rec));
    EXPECT_STREQ("a much lon", rec.sDescription);
    EXPECT_EQ(0, file.ModifyDescription(2, "x"));
}

TEST(LaborGroupFile, OldFileDescriptionIsWrittenBackInItsLayout) {
    testsupport::TempDir dir;
    const std::string path = dir.file("oldgroup.dat");
    constexpr REKeySegment kOldGroupKey[] = {
        {1, 5, kKeyInnerSegment, kKeyTypeString, kKeyNullByte},
        {6, 2, kKeyLastSegment, kKeyTypeInteger, kKeyNullByte},
    };
    auto old = [](const char* name, int16_t number) {
        return OldRecord<OLD_LABORGROUPRECORD>([&](OLD_LABORGROUPRECORD& rec) {
            PutOld(rec.sGroupName, sizeof rec.sGroupName, name);
            rec.nGroupNo = number;
            PutOld(rec.sDescription, sizeof rec.sDescription, "first");
        });
    };
    const OLD_LABORGROUPRECORD records[] = {old("A", 3), old("B", 4)};
    WriteOldFile<OLD_LABORGROUPRECORD>(path, kOldGroupKey, records);

    RELaborGroupFile file;
    ASSERT_EQ(1, file.Initialize(path.c_str()));
    ASSERT_EQ(1, file.m_isOldFormat);
    LABORGROUPRECORD rec;
    ASSERT_EQ(1, file.SearchFirstRecord("B", 4, &rec));
    EXPECT_STREQ("first", rec.sDescription);
    ASSERT_EQ(1, file.ModifyDescription(3, "changed"));
    OLD_LABORGROUPRECORD expected = records[0];
    std::memcpy(expected.sDescription, "changed   ", 10);
    const auto stored = StoredRecords<OLD_LABORGROUPRECORD>(path);
    ASSERT_EQ(2u, stored.size());
    EXPECT_EQ(Bytes(expected), stored[0]);
    EXPECT_EQ(Bytes(records[1]), stored[1]);
}

TEST(LaborGroupFile, ReadFailuresAndFieldTables) {
    testsupport::TempDir dir;
    RELaborGroupFile groups;
    CreateAndOpen(groups, dir.file("group.dat"));
    RELaborMultFactorFile factors;
    CreateAndOpen(factors, dir.file("factor.dat"));
    testsupport::MessageCapture messages;
    testsupport::StatusInjector injector(REBtrieveBase::kOpGetGreaterOrEqual, REBtrieveBase::kStatusIoError);
    EXPECT_EQ(0, groups.SearchFirstRecord("A", 1, nullptr));
    EXPECT_EQ("Unknown error in LaborGroup database file. [Error# 2]", messages.lastText());
    EXPECT_EQ(0, factors.SearchFirstRecord("W", "A", 1, nullptr));
    EXPECT_EQ("Unknown error in LaborMultFactor database file. [Error# 2]", messages.lastText());
}

}  // namespace
