// What a program can read of a reported failure: the thread's last error and the extended
// handler, for a missing file, a file of another record length and a record held by another
// handle.
#include "REBtrieveBase.h"
#include "REJobFile.h"
#include "REMessageHandler.h"

#include "RawRecordFile.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

namespace {

struct Report {
    std::string caption;
    std::string text;
    REErrorInfo info;
    std::string path;
};

void Collect(void* context, const char* caption, const char* text, unsigned int, const REErrorInfo* info) {
    static_cast<std::vector<Report>*>(context)->push_back({caption, text, *info, info->path});
}

class LastErrorTest : public ::testing::Test {
protected:
    void SetUp() override {
        REClearLastError();
        RESetMessageHandlerEx(&Collect, &reports);
    }
    void TearDown() override { RESetMessageHandlerEx(nullptr, nullptr); }

    testsupport::TempDir dir;
    std::vector<Report> reports;
};

}  // namespace

TEST_F(LastErrorTest, MissingFileNamesTheStatusTheOpenAndThePath) {
    const std::string path = dir.file("missing.dat");
    REBtrieveBase file;
    EXPECT_EQ(0, file.Open(path.c_str()));
    const REErrorInfo* last = RELastError();
    EXPECT_EQ(0u, last->message);
#if defined(_WIN32)  // a missing file has no short form, and an empty name is an invalid one
    EXPECT_EQ(REBtrieveBase::kStatusInvalidFileName, last->status);
#else
    EXPECT_EQ(REBtrieveBase::kStatusFileNotFound, last->status);
#endif
    EXPECT_EQ(REBtrieveBase::kOpOpen, last->operation);
    EXPECT_EQ(path, last->path);
    ASSERT_EQ(1u, reports.size());
    EXPECT_EQ(reports[0].text, last->text);
    EXPECT_EQ(path, reports[0].path);

    REClearLastError();
    EXPECT_EQ(0, RELastError()->status);
    EXPECT_STREQ("", RELastError()->path);
}

TEST_F(LastErrorTest, WrongRecordLengthNamesTheClassMessageAndTheFile) {
    const std::string path = dir.file("short.dat");
    ASSERT_EQ(0, testsupport::CreateRawFile(path, 100));
    REJobFile file;
    EXPECT_EQ(0, file.Initialize(path));
    const REErrorInfo* last = RELastError();
    EXPECT_EQ(1211u, last->message);
    EXPECT_EQ(0, last->status);
    EXPECT_EQ(path, last->path);
    ASSERT_EQ(1u, reports.size());
    EXPECT_EQ("Error", reports[0].caption);
}

TEST_F(LastErrorTest, LockConflictCarriesTheStatusAndTheLastErrorIsPerThread) {
    const std::string path = dir.file("locks.dat");
    REJobFile writer;
    ASSERT_EQ(1, writer.CreateNewFile(path));
    ASSERT_EQ(1, writer.Initialize(path));
    ESTJOBFILERECORD rec{};
    rec.nPageNo = 1;
    ASSERT_EQ(1, writer.AddRecord(rec));

    REBtrieveBase holder, other;
    ASSERT_EQ(1, holder.Open(path.c_str()));
    ASSERT_EQ(1, other.Open(path.c_str()));
    ESTJOBFILERECORD buffer;
    holder.SetDataBufLen(sizeof buffer);
    other.SetDataBufLen(sizeof buffer);
    const uint16_t lockedFirst = REBtrieveBase::kOpGetFirst + REBtrieveBase::kBiasSingleNoWaitLock;
    ASSERT_EQ(0, holder.Btrieve(lockedFirst, &buffer));
    const int16_t status = other.Btrieve(lockedFirst, &buffer);
    ASSERT_NE(0, status);
    EXPECT_EQ(0, REBtrieveBase::CheckStatus(status, 1));
    EXPECT_EQ(status, RELastError()->status);
    EXPECT_EQ(lockedFirst, RELastError()->operation);
    EXPECT_EQ(path, RELastError()->path);

    int otherThreadStatus = -1;
    std::thread([&] { otherThreadStatus = RELastError()->status; }).join();
    EXPECT_EQ(0, otherThreadStatus);
}
