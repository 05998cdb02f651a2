// The behaviour every record-file class shares, written once and run over each class. A
// subsystem's tests join by giving a traits struct per class (File, Record, kClassName,
// kRecordLength, the three message texts, Sample, Update, Delete) and one line:
// INSTANTIATE_TYPED_TEST_SUITE_P(Name, RecordFilePattern, ::testing::Types<...>).
// Switches for the classes that differ: kCorruptText nullptr for a class that opens a file of
// any record length; kStaysOpenOnCorrupt true for a class left open by a file of another
// record length; kReadsInStoredOrder true for a class whose positional reads follow the
// order of writing rather than key 0; kTakesDuplicates true for a class that adds a record equal
// to one present; kResetKeepsOpen true for a class whose Reset leaves the file open.
#pragma once

#include "RESharedHelpers.h"

#include "RecordBuilders.h"

#include <gtest/gtest.h>

#include <cstring>
#include <list>
#include <string>
#include <vector>

// A switch's value in the traits, false when the traits leave it out.
#define RECORD_FILE_SWITCH(Name)                     \
    template <class Traits>                          \
    constexpr bool Name() {                          \
        if constexpr (requires { Traits::k##Name; }) \
            return Traits::k##Name;                  \
        else                                         \
            return false;                            \
    }
RECORD_FILE_SWITCH(StaysOpenOnCorrupt)
RECORD_FILE_SWITCH(ReadsInStoredOrder)
RECORD_FILE_SWITCH(TakesDuplicates)
RECORD_FILE_SWITCH(ResetKeepsOpen)
#undef RECORD_FILE_SWITCH

template <class Traits>
class RecordFilePattern : public ::testing::Test {
protected:
    using File = typename Traits::File;
    using Record = typename Traits::Record;

    std::string path(const char* name) const { return dir.file(name); }

    // Creates an empty file at `file` through the class and opens it.
    void createAndOpen(File& file, const std::string& at) {
        ASSERT_EQ(1, file.CreateNewFile(at.c_str()));
        ASSERT_EQ(1, file.Initialize(at.c_str()));
    }
    void fill(File& file, int count, int content = 0) {
        for (int i = 0; i < count; ++i) {
            Record rec = Traits::Sample(i, content);
            ASSERT_EQ(1, file.AddNewRecord(rec));
        }
    }
    static std::vector<Record> all(File& file) {
        std::vector<Record*> records;
        file.GetAllRecords(records);
        std::vector<Record> copies;
        for (Record* rec : records)
            copies.push_back(*rec);
        DeallocatePtrArray(records);
        return copies;
    }
    static bool same(const Record& a, const Record& b) { return std::memcmp(&a, &b, sizeof a) == 0; }

    testsupport::TempDir dir;
};

TYPED_TEST_SUITE_P(RecordFilePattern);

TYPED_TEST_P(RecordFilePattern, FileOfAnotherRecordLengthIsRefusedAsCorrupt) {
    const std::string other = this->path("other.dat");
    ASSERT_EQ(0, testsupport::CreateRawFile(other, TypeParam::kRecordLength + 1));
    testsupport::MessageCapture messages;
    typename TypeParam::File file;
    if constexpr (TypeParam::kCorruptText == nullptr) {
        EXPECT_EQ(1, file.Initialize(other.c_str()));
        EXPECT_EQ(0u, messages.count());
        return;
    } else {
        EXPECT_EQ(0, file.Initialize(other.c_str()));
        ASSERT_EQ(1u, messages.count());
        EXPECT_EQ(TypeParam::kCorruptText, messages.lastText());
        EXPECT_EQ(StaysOpenOnCorrupt<TypeParam>() ? 1 : 0, file.IsOpen());

        // Appending from such a file is refused the same way.
        typename TypeParam::File target;
        this->createAndOpen(target, this->path("target.dat"));
        messages.clear();
        EXPECT_EQ(0, target.AppendFile(other.c_str(), 1));
        EXPECT_EQ(TypeParam::kCorruptText, messages.lastText());
    }
}

TYPED_TEST_P(RecordFilePattern, EndOfFileAndEqualMissAreSilent) {
    typename TypeParam::File file;
    this->createAndOpen(file, this->path("data.dat"));
    this->fill(file, 1);
    testsupport::MessageCapture messages;
    typename TypeParam::Record rec;
    EXPECT_EQ(1, file.GetFirstRecord(&rec));
    EXPECT_EQ(0, file.GetNextRecord(&rec));
    EXPECT_EQ(0, file.GetNextRecord(&rec));
    EXPECT_EQ(0, file.GetEqualMatch("no such key", &rec));
    EXPECT_EQ(0, file.GetEqualMatch("no such key", nullptr));
    EXPECT_EQ(0u, messages.count());
}

TYPED_TEST_P(RecordFilePattern, AppendCopiesTwentyRecordsUnlessAll) {
    const std::string source = this->path("source.dat");
    {
        typename TypeParam::File file;
        this->createAndOpen(file, source);
        this->fill(file, 50);
    }
    testsupport::TraceCapture traces;
    for (int all : {0, 1}) {
        typename TypeParam::File target;
        this->createAndOpen(target, this->path(all ? "all.dat" : "twenty.dat"));
        traces.clear();
        EXPECT_EQ(1, target.AppendFile(source.c_str(), all));
        const size_t expected = all ? 50 : 20;
        ASSERT_FALSE(traces.traces().empty());
        EXPECT_EQ(std::string(TypeParam::kClassName) + "::_CopyRecords: No of Records copied = " +
                      std::to_string(expected) + "\n",
                  traces.traces().back());
        EXPECT_EQ(expected, this->all(target).size());
    }

    testsupport::MessageCapture messages;
    typename TypeParam::File target;
    this->createAndOpen(target, this->path("target.dat"));
    const std::string missing = this->path("missing.dat");
    EXPECT_EQ(0, target.AppendFile(missing.c_str(), 1));
    EXPECT_EQ("<<" + std::string(TypeParam::kClassName) + "::AppendFile>> Error in file " + missing,
              traces.traces().back());
    EXPECT_EQ(0, target.AppendFile(nullptr, 1));
}

TYPED_TEST_P(RecordFilePattern, CopyRecordsAppendsAtMostTheCountFromAnOpenSource) {
    const std::string source = this->path("source.dat");
    {
        typename TypeParam::File file;
        this->createAndOpen(file, source);
        this->fill(file, 8);
    }
    REBtrieveBase src;
    ASSERT_EQ(1, src.Open(source.c_str()));
    // More buffer than one record: the copy must still hold whatever the source returns.
    src.SetDataBufLen(4096);
    typename TypeParam::File target;
    this->createAndOpen(target, this->path("target.dat"));
    EXPECT_EQ(1, target._CopyRecords(src, 0, 5));
    EXPECT_EQ(5u, this->all(target).size());
    EXPECT_EQ(1, target._CopyRecords(src, 0, 0));
    EXPECT_EQ(5u, this->all(target).size());

    // A source opened without a data-buffer length still reads whole records.
    REBtrieveBase bare;
    ASSERT_EQ(1, bare.Open(source.c_str()));
    typename TypeParam::File fresh;
    this->createAndOpen(fresh, this->path("fresh.dat"));
    EXPECT_EQ(1, fresh._CopyRecords(bare, 0, 3));
    EXPECT_EQ(3u, this->all(fresh).size());
}

TYPED_TEST_P(RecordFilePattern, CopyFileReplacesTheTargetsRecords) {
    typename TypeParam::File source, target;
    this->createAndOpen(source, this->path("source.dat"));
    this->createAndOpen(target, this->path("target.dat"));
    this->fill(target, 3, 7);

    EXPECT_EQ(0, target.CopyFileA(&source));  // empty source: nothing to step to
    EXPECT_TRUE(this->all(target).empty());

    this->fill(source, 5, 1);
    EXPECT_EQ(1, target.CopyFileA(&source));
    const auto copied = this->all(target);
    ASSERT_EQ(5u, copied.size());
    for (int i = 0; i < 5; ++i)
        EXPECT_TRUE(this->same(TypeParam::Sample(i, 1), copied[i])) << i;
    EXPECT_EQ(0, target.CopyFileA(nullptr));
}

TYPED_TEST_P(RecordFilePattern, CollectionsAndDeleteAllOnEmptyAndFilledFiles) {
    typename TypeParam::File file;
    this->createAndOpen(file, this->path("data.dat"));
    std::list<typename TypeParam::Record*> list;
    EXPECT_EQ(1, file.DeleteAllRecords());
    EXPECT_EQ(0, file.GetAllRecords(list));
    EXPECT_TRUE(list.empty());

    this->fill(file, 4);
    EXPECT_EQ(1, file.GetAllRecords(list));
    ASSERT_EQ(4u, list.size());
    int i = 0;
    for (auto* rec : list)
        EXPECT_TRUE(this->same(TypeParam::Sample(i++), *rec));

    EXPECT_EQ(1, file.DeleteAllRecords());
    // Records already in the collection count: the result is 1 though the file is empty.
    EXPECT_EQ(1, file.GetAllRecords(list));
    EXPECT_EQ(4u, list.size());
    for (auto* rec : list)
        std::free(rec);
    list.clear();
    EXPECT_EQ(0, file.GetAllRecords(list));
}

TYPED_TEST_P(RecordFilePattern, RecordsRoundTripThroughAddReadUpdateDelete) {
    using Record = typename TypeParam::Record;
    typename TypeParam::File file;
    this->createAndOpen(file, this->path("data.dat"));
    Record s0 = TypeParam::Sample(0), s1 = TypeParam::Sample(1), s2 = TypeParam::Sample(2);
    for (Record* rec : {&s2, &s0, &s1})
        ASSERT_EQ(1, file.AddRecord(*rec));
    if constexpr (!TakesDuplicates<TypeParam>()) {
        EXPECT_EQ(0, file.AddRecord(s1));
        EXPECT_EQ(3u, this->all(file).size());
    }

    // Key order s0 s1 s2; the order of writing s2 s0 s1.
    constexpr bool stored = ReadsInStoredOrder<TypeParam>();
    Record rec;
    ASSERT_EQ(1, file.GetFirstRecord(&rec));
    EXPECT_TRUE(this->same(stored ? s2 : s0, rec));
    ASSERT_EQ(1, file.GetNextRecord(&rec));
    EXPECT_TRUE(this->same(stored ? s0 : s1, rec));
    ASSERT_EQ(1, file.GetLastRecord(&rec));
    EXPECT_TRUE(this->same(stored ? s1 : s2, rec));
    ASSERT_EQ(1, file.GetPreviousRecord(&rec));
    EXPECT_TRUE(this->same(stored ? s0 : s1, rec));
    ASSERT_EQ(1, file.GetHighestRecord(&rec));  // by key 0 whatever the positional order
    EXPECT_TRUE(this->same(s2, rec));
    EXPECT_EQ(0, file.GetFirstRecord(nullptr));

    Record changed = TypeParam::Sample(1, 9);
    EXPECT_EQ(1, TypeParam::Update(file, s1, changed));
    auto records = this->all(file);
    ASSERT_EQ(3u, records.size());
    EXPECT_TRUE(this->same(changed, records[stored ? 2 : 1]));

    EXPECT_EQ(1, TypeParam::Delete(file, changed));
    EXPECT_EQ(0, TypeParam::Delete(file, changed));
    records = this->all(file);
    ASSERT_EQ(2u, records.size());
    EXPECT_TRUE(this->same(stored ? s2 : s0, records[0]));
    EXPECT_TRUE(this->same(stored ? s0 : s2, records[1]));

    // Creating again over the file leaves it empty.
    ASSERT_EQ(1, file.Reset());
    EXPECT_EQ(ResetKeepsOpen<TypeParam>() ? 1 : 0, file.IsOpen());
    file.Close();
    this->createAndOpen(file, this->path("data.dat"));
    EXPECT_TRUE(this->all(file).empty());
    std::string name;
    file.GetBtrieveFileName(name);
    EXPECT_EQ(this->path("data.dat"), name);
}

TYPED_TEST_P(RecordFilePattern, RecordManagerFailuresShowTheClassesMessagesWithTheStatus) {
    testsupport::MessageCapture messages;
    typename TypeParam::File file;
    EXPECT_EQ(0, file.CreateNewFile(this->path("no such dir/data.dat").c_str()));
    EXPECT_EQ(testsupport::WithStatus(TypeParam::kCreateErrorText, 25), messages.lastText());
    EXPECT_EQ(0, file.CreateNewFile(""));
    EXPECT_EQ(testsupport::WithStatus(TypeParam::kCreateErrorText, 11), messages.lastText());

    this->createAndOpen(file, this->path("data.dat"));
    this->fill(file, 2);
    {
        // A copy shares the open file; closing it leaves the original with a dead handle.
        typename TypeParam::File copy(file);
        ASSERT_EQ(1, copy.Close());
    }
    messages.clear();
    typename TypeParam::Record rec;
    EXPECT_EQ(0, file.GetFirstRecord(&rec));
    ASSERT_EQ(1u, messages.count());
    EXPECT_EQ(testsupport::WithStatus(TypeParam::kUnknownErrorText, 3), messages.lastText());
    EXPECT_EQ("Error", messages.messages().back().caption);
}

REGISTER_TYPED_TEST_SUITE_P(RecordFilePattern,
                            FileOfAnotherRecordLengthIsRefusedAsCorrupt,
                            EndOfFileAndEqualMissAreSilent,
                            AppendCopiesTwentyRecordsUnlessAll,
                            CopyRecordsAppendsAtMostTheCountFromAnOpenSource,
                            CopyFileReplacesTheTargetsRecords,
                            CollectionsAndDeleteAllOnEmptyAndFilledFiles,
                            RecordsRoundTripThroughAddReadUpdateDelete,
                            RecordManagerFailuresShowTheClassesMessagesWithTheStatus);
