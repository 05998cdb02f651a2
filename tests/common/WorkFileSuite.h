// The behaviour every work file shares (fixed records written by one run and read back whole),
// written once and run over each class. A suite joins with a traits struct per class (File,
// Record, kRecordLength, kStoredOrder, kReportsCompletedWalk, kKeepsOwnPath, the corrupt and
// create message texts, Sample) and INSTANTIATE_TYPED_TEST_SUITE_P(Name, WorkFilePattern, Types).
#pragma once

#include "RecordBuilders.h"
#include "StatusInjector.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <cstring>
#include <list>
#include <string>
#include <vector>

template <class Traits>
class WorkFilePattern : public ::testing::Test {
protected:
    using File = typename Traits::File;
    using Record = typename Traits::Record;

    void SetUp() override { testsupport::CreateAndOpen(file, path); }
    void add(std::initializer_list<int> keys) {
        for (int key : keys) {
            Record rec = Traits::Sample(key);
            ASSERT_EQ(1, key % 2 ? file.AddRecord(rec) : file.AddRecord(&rec));
        }
    }

    testsupport::TempDir dir;
    std::string path = dir.file("work.dat");
    File file;
    testsupport::MessageCapture messages;
};

TYPED_TEST_SUITE_P(WorkFilePattern);

TYPED_TEST_P(WorkFilePattern, RecordsComeBackWholeInKeyOrStoredOrder) {
    using Record = typename TypeParam::Record;
    this->add({2, 0, 1});
    EXPECT_EQ(0, this->file.AddRecord(static_cast<Record*>(nullptr)));
    std::list<Record*> list;
    ASSERT_EQ(1, this->file.GetAllRecords(list));
    ASSERT_EQ(3u, list.size());
    const int order[] = {TypeParam::kStoredOrder ? 2 : 0, TypeParam::kStoredOrder ? 0 : 1,
                         TypeParam::kStoredOrder ? 1 : 2};
    int i = 0;
    for (const Record* rec : list)
        EXPECT_EQ(testsupport::Bytes(TypeParam::Sample(order[i++])), testsupport::Bytes(*rec));
    EXPECT_EQ(1, TypeParam::File::ResetCalcRecArray(list));
    EXPECT_TRUE(list.empty());
    EXPECT_EQ(0u, this->messages.count());
}

// The walk deletes every record; its result is 1 only for the classes that report a walk that
// reached the end, and 0 for all when a step fails. Single reads that fail stay silent.
TYPED_TEST_P(WorkFilePattern, DeleteAllWalksTheFileEmptyAndReadsFailSilently) {
    const int done = TypeParam::kReportsCompletedWalk ? 1 : 0;
    EXPECT_EQ(done, this->file.DeleteAllRecord());
    this->add({0, 1, 2});
    EXPECT_EQ(done, this->file.DeleteAllRecord());
    typename TypeParam::Record rec;
    EXPECT_EQ(0, this->file.GetFirstRecord(&rec));
    std::vector<typename TypeParam::Record*> array;
    EXPECT_EQ(0, this->file.GetAllRecords(array));

    this->add({0, 1});
    {
        testsupport::StatusInjector injector(REBtrieveBase::kOpStepNext, REBtrieveBase::kStatusIoError);
        EXPECT_EQ(0, this->file.DeleteAllRecord());
    }
    std::list<typename TypeParam::Record*> left;
    EXPECT_EQ(1, this->file.GetAllRecords(left));
    EXPECT_EQ(1u, left.size());  // the walk stopped at the failed step
    testsupport::Free(left);
    {
        testsupport::StatusInjector injector(REBtrieveBase::kOpGetFirst, REBtrieveBase::kStatusIoError);
        EXPECT_EQ(0, this->file.GetFirstRecord(&rec));
    }
    EXPECT_EQ(0u, this->messages.count());
}

TYPED_TEST_P(WorkFilePattern, WrongLengthMissingFileAndCreateFailures) {
    typename TypeParam::File other;
    EXPECT_EQ(0, other.CreateNewFile(this->dir.file("no such dir/x.dat").c_str()));
    EXPECT_EQ(testsupport::WithStatus(TypeParam::kCreateErrorText, 25), this->messages.lastText());

    const std::string wrong = this->dir.file("wrong.dat");
    ASSERT_EQ(0, testsupport::CreateRawFile(wrong, TypeParam::kRecordLength + 1));
    this->messages.clear();
    EXPECT_EQ(0, other.Initialize(wrong.c_str()));
    ASSERT_EQ(1u, this->messages.count());
    EXPECT_EQ(TypeParam::kCorruptText, this->messages.lastText());
    EXPECT_EQ(0, other.IsOpen());
    EXPECT_EQ(0, other.m_fileOpen);

    if constexpr (TypeParam::kKeepsOwnPath) {
        // A path with no file behind it closes the object silently and is kept.
        const std::string missing = this->dir.file("missing.dat");
        this->messages.clear();
        EXPECT_EQ(1, this->file.m_fileOpen);
        EXPECT_EQ(0, this->file.Initialize(missing.c_str()));
        EXPECT_EQ(0u, this->messages.count());
        EXPECT_EQ(0, this->file.IsOpen());
        EXPECT_EQ(0, this->file.m_fileOpen);
        EXPECT_STREQ(missing.c_str(), this->file.m_filePath);
    }
}

REGISTER_TYPED_TEST_SUITE_P(WorkFilePattern,
                            RecordsComeBackWholeInKeyOrStoredOrder,
                            DeleteAllWalksTheFileEmptyAndReadsFailSilently,
                            WrongLengthMissingFileAndCreateFailures);
