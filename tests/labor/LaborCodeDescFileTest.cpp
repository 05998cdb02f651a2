// The labor code description file: group names enumerated in key order, group lists with the
// validity report, the keyed writes, and the "any operation" key of each layout.
#include "RELaborCodeDescFile.h"

#include "RecordBuilders.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <list>
#include <string>

namespace {

using namespace testsupport;

LABOROPDESCRECORD Op(const char* group, int16_t op, int16_t grp = 1, int16_t extrapolation = 1) {
    LABOROPDESCRECORD rec{};
    std::snprintf(rec.sGroupName, sizeof rec.sGroupName, "%s", group);
    rec.nOpCodeNo = op;
    rec.nGroup = grp;
    rec.nExtrapolation = extrapolation;
    std::snprintf(rec.sDescription, sizeof rec.sDescription, "operation %d", op);
    rec.sFlag[0] = 'Y';
    return rec;
}

OLD_LABOROPDESCRECORD OldOp(const char* group, int16_t op) {
    return OldRecord<OLD_LABOROPDESCRECORD>([&](OLD_LABOROPDESCRECORD& rec) {
        PutOld(rec.sGroupName, sizeof rec.sGroupName, group);
        rec.nOpCodeNo = op;
        rec.nGroup = 2;
        rec.nExtrapolation = 3;
        PutOld(rec.sDescription, sizeof rec.sDescription, "old op");
        rec.sFlag[0] = 'N';
    });
}

constexpr REKeySegment kOldDescKey[] = {
    {1, 5, kKeyInnerSegment | kKeyCaseInsensitive, kKeyTypeString, kKeyNullByte},
    {6, 2, kKeyLastSegment, kKeyTypeInteger, kKeyNullByte},
};

std::string Ops(const std::list<LABOROPDESCRECORD*>& list) {
    std::string ops;
    for (const LABOROPDESCRECORD* rec : list)
        ops += std::string(rec->sGroupName) + std::to_string(rec->nOpCodeNo) + " ";
    return ops;
}

// The same groups in a new-layout and an old-layout file: A with operations 0, 1, 2 (0 written
// raw, as the add refuses it) and B with operation 1.
class LaborCodeDescLayouts : public ::testing::TestWithParam<bool> {
protected:
    void SetUp() override {
        if (GetParam()) {
            const OLD_LABOROPDESCRECORD old[] = {OldOp("B", 1), OldOp("A", 2), OldOp("A", 0), OldOp("A", 1)};
            WriteOldFile<OLD_LABOROPDESCRECORD>(path, kOldDescKey, old);
            ASSERT_EQ(1, file.Initialize(path.c_str()));
            ASSERT_EQ(1, file.m_isOldFormat);
        } else {
            CreateAndOpen(file, path);
            for (auto rec : {Op("B", 1), Op("A", 2), Op("A", 1)})
                ASSERT_EQ(1, file._AddRecord(rec));
            auto zero = Op("A", 0);
            ASSERT_EQ(0, file._AddRecord(zero));
            ASSERT_EQ(REBtrieveBase::kStatusSuccess, file._WriteStatus(REBtrieveBase::kOpInsert, zero));
        }
    }

    testsupport::TempDir dir;
    std::string path = dir.file("labdesc.dat");
    RELaborCodeDescFile file;
};

TEST_P(LaborCodeDescLayouts, GroupNamesComeOnceEachInKeyOrder) {
    std::list<std::string> names;
    ASSERT_EQ(1, file.GetLabCodeGrpNames(names));
    EXPECT_EQ((std::list<std::string>{"A", "B"}), names);
    EXPECT_EQ(0, file.GetLabCodeGrpNames(names));  // the list must start empty
    EXPECT_EQ(2u, names.size());

    LABOROPDESCRECORD rec;
    // The old key's blank-filled name equals the stored one, so the number counts there; the new
    // key's sixth blank puts it past the whole group.
    ASSERT_EQ(1, file.GetNextMatchGT("A", 1, &rec));
    EXPECT_STREQ(GetParam() ? "A" : "B", rec.sGroupName);
    EXPECT_EQ(GetParam() ? 2 : 1, rec.nOpCodeNo);
    EXPECT_EQ(0, file.GetNextMatchGT("B", -1, &rec));
}

TEST_P(LaborCodeDescLayouts, AnyOperationStartsAtOneInOldFilesAndBeforeAllInNewOnes) {
    LABOROPDESCRECORD rec;
    ASSERT_EQ(1, file.SearchFirstRecord("a", -1, &rec));
    EXPECT_EQ(GetParam() ? 1 : 0, rec.nOpCodeNo);
    ASSERT_EQ(1, file.SearchNextRecord("a", -1, &rec));
    EXPECT_EQ(GetParam() ? 2 : 1, rec.nOpCodeNo);
    ASSERT_EQ(1, file.GetFirstMatchGE("A", 2, &rec));
    EXPECT_EQ(0, file.GetNextMatch("A", 2, &rec));
    EXPECT_EQ(0, file.m_searchActive);
}

TEST_P(LaborCodeDescLayouts, GroupListsReportInvalidRecordsByTheirPositionAndRaiseThem) {
    // Operation 0 is invalid; in the new file its group 1 and extrapolation 1 stay, the old one
    // skips it. Make operation 2 invalid through an update (no validity test there).
    auto bad = Op("A", 2, 0, 5);
    ASSERT_EQ(1, file._UpdateRecord(bad));

    testsupport::MessageCapture messages;
    std::list<LABOROPDESCRECORD*> list;
    ASSERT_EQ(1, file.GetRecordListWRTLabCodeGrp("A", list));
    const bool old = GetParam();
    EXPECT_EQ(old ? "A1 A2 " : "A0 A1 A2 ", Ops(list));
    ASSERT_EQ(old ? 1u : 2u, messages.count());
    EXPECT_EQ(old ? "Invalid Group or Extrapolation value found in Operation Code No. 2"
                  : "Invalid Group or Extrapolation value found in Operation Code No. 3",
              messages.lastText());
    EXPECT_EQ("", messages.messages().back().caption);
    const LABOROPDESCRECORD* raised = list.back();
    EXPECT_EQ(1, raised->nGroup);
    EXPECT_EQ(5, raised->nExtrapolation);

    // A list that is not empty is left alone.
    messages.clear();
    EXPECT_EQ(0, file.GetRecordListWRTLabCodeGrp("B", list));
    EXPECT_EQ(old ? 2u : 3u, list.size());
    EXPECT_EQ(0u, messages.count());
    Free(list);
}

TEST_P(LaborCodeDescLayouts, DeletingAGroupRemovesItsValidRecords) {
    EXPECT_EQ(1, file.DeleteRecord("B"));
    std::list<std::string> names;
    file.GetLabCodeGrpNames(names);
    EXPECT_EQ((std::list<std::string>{"A"}), names);
}

INSTANTIATE_TEST_SUITE_P(NewAndOld, LaborCodeDescLayouts, ::testing::Bool());

TEST(LaborCodeDescFile, ListWritesStopAtTheFirstFailure) {
    testsupport::TempDir dir;
    RELaborCodeDescFile file;
    CreateAndOpen(file, dir.file("desc.dat"));
    std::list<LABOROPDESCRECORD*> list;
    std::list<std::string> names;
    EXPECT_EQ(0, file.GetLabCodeGrpNames(names));
    EXPECT_TRUE(names.empty());

    for (auto rec : {Op("G", 1), Op("G", 2), Op("G", 0), Op("G", 3)})
        list.push_back(Allocated(rec));
    testsupport::TraceCapture traces;
    EXPECT_EQ(0, file.AddRecord(list));  // operation 0 is refused; 3 is not reached
    std::list<LABOROPDESCRECORD*> group;
    file.GetRecordListWRTLabCodeGrp("G", group);
    EXPECT_EQ("G1 G2 ", Ops(group));
    Free(group);

    EXPECT_EQ(0, file.AddRecord(list));
    EXPECT_EQ("<<RELaborCodeDescFile::_AddRecord>> Same record present in the database; UPDATE possible not "
              "ADDITION.\n",
              traces.traces().back());
    list.front()->nExtrapolation = 9;
    EXPECT_EQ(0, file.UpdateRecord(list));  // operation 0 is not in the file
    EXPECT_EQ("<<RELaborCodeDescFile::_UpdateRecord>> Same record not present in the database; ADDITION possible "
              "not UPDATE.\n",
              traces.traces().back());
    LABOROPDESCRECORD rec;
    ASSERT_EQ(1, file.SearchFirstRecord("G", 1, &rec));
    EXPECT_EQ(9, rec.nExtrapolation);

    EXPECT_EQ(0, file.DeleteRecord(list));  // operation 0 is invalid
    EXPECT_EQ(0, file.SearchFirstRecord("G", -1, &rec));
    auto missing = Op("G", 5);
    EXPECT_EQ(0, file._DeleteRecord(missing));
    EXPECT_EQ("<<RELaborCodeDescFile::_DeleteRecord>> Record not present in the database; Deletion not possible.\n",
              traces.traces().back());
    Free(list);
}

}  // namespace
