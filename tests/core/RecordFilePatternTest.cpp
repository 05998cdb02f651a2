// The behaviour every record-file class shares, run once over each of them. A class joins by
// adding a traits struct (how to make a sample record, its record length, its message texts,
// its update and delete) and one entry in RecordFileClasses.
#include "REEstProjectInfo.h"
#include "REJobFile.h"
#include "REProjectLock.h"
#include "RESharedHelpers.h"

#include "RawRecordFile.h"
#include "SmallCodeFile.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <list>
#include <string>
#include <vector>

namespace {

struct JobFileTraits {
    using File = REJobFile;
    using Record = ESTJOBFILERECORD;
    static constexpr const char* kClassName = "REJobFile";
    static constexpr uint16_t kRecordLength = 606;
    static constexpr bool kStaysOpenOnCorrupt = false;
    static constexpr const char* kCorruptText = "Job description file is corrupt.";
    static constexpr const char* kUnknownErrorText = "Unknown error job database file. [Error# %d]";
    static constexpr const char* kCreateErrorText = "Unable to create job database file. [Error# %d]";

    // Keys ascend with `key`; `content` changes only fields outside the key.
    static Record Sample(int key, int content = 0) {
        Record rec{};
        std::snprintf(rec.sCode1, sizeof rec.sCode1, "K");
        std::snprintf(rec.sCode2, sizeof rec.sCode2, "ITEM%06d", key);
        rec.nPageNo = 1;
        rec.nLineNo = key;
        std::snprintf(rec.sText124, sizeof rec.sText124, "text %d", content);
        rec.nValue602 = content;
        return rec;
    }
    static int Update(File& file, Record& rec, Record& changed) { return file.UpdateRecord(rec, changed); }
    static int Delete(File& file, Record& rec) { return file.DeleteRecord(rec); }
};

struct ProjectLockTraits {
    using File = REProjectLock;
    using Record = PROJECTLOCKINFO;
    static constexpr const char* kClassName = "REProjectLock";
    static constexpr uint16_t kRecordLength = 416;
    static constexpr bool kStaysOpenOnCorrupt = true;
    static constexpr const char* kCorruptText = "Network file is corrupt.";
    static constexpr const char* kUnknownErrorText = "Unknown error network database file. [Error# %d]";
    static constexpr const char* kCreateErrorText = "Unknown error to create network database file. [Error# %d]";

    static Record Sample(int key, int content = 0) {
        Record rec{};
        std::snprintf(rec.szUserName, sizeof rec.szUserName, "HOST\\\\user%06d", key);
        std::snprintf(rec.szUpdatedBy, sizeof rec.szUpdatedBy, "by %d", content);
        rec.nUpdatedJobId = content;
        return rec;
    }
    static int Update(File& file, Record& rec, Record& changed) {
        return file.FindUser(rec.szUserName, nullptr) && file.Btrieve(REBtrieveBase::kOpUpdate, &changed) == 0;
    }
    static int Delete(File& file, Record& rec) { return file.LogOut(rec.szUserName); }
};

struct EstProjectInfoTraits {
    using File = REEstProjectInfo;
    using Record = TSLESTIMATEDATA;
    static constexpr const char* kClassName = "REEstProjectInfo";
    static constexpr uint16_t kRecordLength = 4;  // the fixed part of its variable-length records
    static constexpr bool kStaysOpenOnCorrupt = true;
    static constexpr const char* kCorruptText = "ESTJOB.dat file is corrupt.";
    static constexpr const char* kUnknownErrorText = "Unknown error job database file. [Error# %d]";
    static constexpr const char* kCreateErrorText = "Unable to create job database file. [Error# %d]";

    static Record Sample(int key, int content = 0) {
        Record rec{};
        rec.nId = key + 1;
        std::snprintf(rec.data.szJobName, sizeof rec.data.szJobName, "job %d", content);
        return rec;
    }
    static int Update(File& file, Record& rec, Record& changed) { return file.UpdJobDetail(rec.nId, changed.data); }
    // DeleteJob removes the next job up when the id is missing; only an existing one is deleted here.
    static int Delete(File& file, Record& rec) {
        return file.GetJobDetail(rec.nId, nullptr, 0) && file.DeleteJob(rec.nId);
    }
};

struct SmallCodeFileTraits {
    using File = SmallCodeFile;
    using Record = SMALLCODERECORD;
    static constexpr const char* kClassName = "SmallCodeFile";
    static constexpr uint16_t kRecordLength = 27;
    static constexpr bool kStaysOpenOnCorrupt = true;
    static constexpr const char* kCorruptText = "Purchase order info file is corrupt.";
    static constexpr const char* kUnknownErrorText = "Unknown error PDC-pur-info database file. [Error# %d]";
    static constexpr const char* kCreateErrorText =
        "Unknown error to create purchase order pur-info database file. [Error# %d]";

    static Record Sample(int key, int content = 0) {
        Record rec{};
        std::snprintf(rec.szCode, sizeof rec.szCode, "%03u", static_cast<unsigned>(key) % 1000u);
        std::snprintf(rec.payload, sizeof rec.payload, "payload %d", content);
        return rec;
    }
    static int Update(File& file, Record&, Record& changed) { return file.UpdateRecord(changed); }
    static int Delete(File& file, Record& rec) { return file.DeleteRecord(rec); }
};

}  // namespace

using RecordFileClasses =
    ::testing::Types<JobFileTraits, ProjectLockTraits, EstProjectInfoTraits, SmallCodeFileTraits>;

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
    static std::string format(const char* text, int status) {
        char buffer[256];
        std::snprintf(buffer, sizeof buffer, text, status);
        return buffer;
    }

    testsupport::TempDir dir;
};

TYPED_TEST_SUITE(RecordFilePattern, RecordFileClasses);

TYPED_TEST(RecordFilePattern, FileOfAnotherRecordLengthIsRefusedAsCorrupt) {
    const std::string other = this->path("other.dat");
    ASSERT_EQ(0, testsupport::CreateRawFile(other, TypeParam::kRecordLength + 1));
    testsupport::MessageCapture messages;
    typename TypeParam::File file;
    EXPECT_EQ(0, file.Initialize(other.c_str()));
    ASSERT_EQ(1u, messages.count());
    EXPECT_EQ(TypeParam::kCorruptText, messages.lastText());
    EXPECT_EQ(TypeParam::kStaysOpenOnCorrupt ? 1 : 0, file.IsOpen());

    // Appending from such a file is refused the same way.
    typename TypeParam::File target;
    this->createAndOpen(target, this->path("target.dat"));
    messages.clear();
    EXPECT_EQ(0, target.AppendFile(other.c_str(), 1));
    EXPECT_EQ(TypeParam::kCorruptText, messages.lastText());
}

TYPED_TEST(RecordFilePattern, EndOfFileAndEqualMissAreSilent) {
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

TYPED_TEST(RecordFilePattern, AppendCopiesTwentyRecordsUnlessAll) {
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

TYPED_TEST(RecordFilePattern, CopyRecordsAppendsAtMostTheCountFromAnOpenSource) {
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

TYPED_TEST(RecordFilePattern, CopyFileReplacesTheTargetsRecords) {
    typename TypeParam::File source, target;
    this->createAndOpen(source, this->path("source.dat"));
    this->createAndOpen(target, this->path("target.dat"));
    this->fill(target, 3, 7);

    EXPECT_EQ(0, target.CopyFileA(&source));  // empty source: nothing to step to
    EXPECT_TRUE(this->all(target).empty());

    this->fill(source, 5, 1);
    EXPECT_EQ(1, target.CopyFile(&source));
    const auto copied = this->all(target);
    ASSERT_EQ(5u, copied.size());
    for (int i = 0; i < 5; ++i)
        EXPECT_TRUE(this->same(TypeParam::Sample(i, 1), copied[i])) << i;
    EXPECT_EQ(0, target.CopyFileA(nullptr));
}

TYPED_TEST(RecordFilePattern, CollectionsAndDeleteAllOnEmptyAndFilledFiles) {
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

TYPED_TEST(RecordFilePattern, RecordsRoundTripThroughAddReadUpdateDelete) {
    using Record = typename TypeParam::Record;
    typename TypeParam::File file;
    this->createAndOpen(file, this->path("data.dat"));
    Record s0 = TypeParam::Sample(0), s1 = TypeParam::Sample(1), s2 = TypeParam::Sample(2);
    for (Record* rec : {&s2, &s0, &s1})
        ASSERT_EQ(1, file.AddRecord(*rec));
    EXPECT_EQ(0, file.AddRecord(s1));
    EXPECT_EQ(3u, this->all(file).size());

    Record rec;
    ASSERT_EQ(1, file.GetFirstRecord(&rec));
    EXPECT_TRUE(this->same(s0, rec));
    ASSERT_EQ(1, file.GetNextRecord(&rec));
    EXPECT_TRUE(this->same(s1, rec));
    ASSERT_EQ(1, file.GetLastRecord(&rec));
    EXPECT_TRUE(this->same(s2, rec));
    ASSERT_EQ(1, file.GetPreviousRecord(&rec));
    EXPECT_TRUE(this->same(s1, rec));
    ASSERT_EQ(1, file.GetHighestRecord(&rec));
    EXPECT_TRUE(this->same(s2, rec));
    EXPECT_EQ(0, file.GetFirstRecord(nullptr));

    Record changed = TypeParam::Sample(1, 9);
    EXPECT_EQ(1, TypeParam::Update(file, s1, changed));
    auto records = this->all(file);
    ASSERT_EQ(3u, records.size());
    EXPECT_TRUE(this->same(changed, records[1]));

    EXPECT_EQ(1, TypeParam::Delete(file, changed));
    EXPECT_EQ(0, TypeParam::Delete(file, changed));
    records = this->all(file);
    ASSERT_EQ(2u, records.size());
    EXPECT_TRUE(this->same(s0, records[0]));
    EXPECT_TRUE(this->same(s2, records[1]));

    // Creating again over the file leaves it empty.
    ASSERT_EQ(1, file.Reset());
    EXPECT_EQ(0, file.IsOpen());
    this->createAndOpen(file, this->path("data.dat"));
    EXPECT_TRUE(this->all(file).empty());
    std::string name;
    file.GetBtrieveFileName(name);
    EXPECT_EQ(this->path("data.dat"), name);
}

TYPED_TEST(RecordFilePattern, RecordManagerFailuresShowTheClassesMessagesWithTheStatus) {
    testsupport::MessageCapture messages;
    typename TypeParam::File file;
    EXPECT_EQ(0, file.CreateNewFile(this->path("no such dir/data.dat").c_str()));
    EXPECT_EQ(this->format(TypeParam::kCreateErrorText, 25), messages.lastText());
    EXPECT_EQ(0, file.CreateNewFile(""));
    EXPECT_EQ(this->format(TypeParam::kCreateErrorText, 11), messages.lastText());

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
    EXPECT_EQ(this->format(TypeParam::kUnknownErrorText, 3), messages.lastText());
    EXPECT_EQ("Error", messages.messages().back().caption);
}
