// Which record-manager failures of the job item file reach the user, and with which message:
// the record manager is made to answer chosen statuses.
#include "REJobFile.h"

#include "StatusInjector.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

namespace {

class JobFileStatusTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(1, file.CreateNewFile(path));
        ASSERT_EQ(1, file.Initialize(path));
        ESTJOBFILERECORD rec{};
        std::snprintf(rec.sCode1, sizeof rec.sCode1, "A");
        std::snprintf(rec.sCode2, sizeof rec.sCode2, "BEAM");
        rec.nPageNo = 1;
        rec.nLineNo = 1;
        ASSERT_EQ(1, file.AddRecord(rec));
        messages.clear();
    }
    static std::string Unknown(int status) {
        char text[80];
        std::snprintf(text, sizeof text, "Unknown error job database file. [Error# %d]", status);
        return text;
    }

    testsupport::TempDir dir;
    std::string path = dir.file("JOB.DAT");
    REJobFile file;
    testsupport::MessageCapture messages;
};

}  // namespace

TEST_F(JobFileStatusTest, ReadFailuresShowTheUnknownErrorWithTheStatus) {
    ESTJOBFILERECORD rec;
    for (int op : {REBtrieveBase::kOpGetFirst, REBtrieveBase::kOpGetLast, REBtrieveBase::kOpGetGreaterOrEqual}) {
        testsupport::StatusInjector inject(op, REBtrieveBase::kStatusIoError);
        messages.clear();
        if (op == REBtrieveBase::kOpGetFirst)
            EXPECT_EQ(0, file.GetFirstRecord(&rec));
        else if (op == REBtrieveBase::kOpGetLast)
            EXPECT_EQ(0, file.GetLastRecord(&rec));
        else
            EXPECT_EQ(0, file.SearchFirstRecord("A", "", -1, -1, &rec));
        EXPECT_EQ(1, inject.hits());
        ASSERT_EQ(1u, messages.count()) << op;
        EXPECT_EQ(Unknown(2), messages.lastText());
        EXPECT_EQ("Error", messages.messages().back().caption);
    }
}

TEST_F(JobFileStatusTest, EndOfFileAndAnyExactMissAreSilent) {
    ESTJOBFILERECORD rec;
    {
        testsupport::StatusInjector inject(REBtrieveBase::kOpGetNext, REBtrieveBase::kStatusEndOfFile);
        ASSERT_EQ(1, file.GetFirstRecord(&rec));
        EXPECT_EQ(0, file.GetNextRecord(&rec));
    }
    {
        // An exact read is silent whatever it answers.
        testsupport::StatusInjector inject(REBtrieveBase::kOpGetEqual, REBtrieveBase::kStatusIoError);
        EXPECT_EQ(0, file.GetEqualMatch("A", &rec));
        EXPECT_EQ(1, inject.hits());
    }
    EXPECT_EQ(0u, messages.count());
}

TEST_F(JobFileStatusTest, WriteFailuresAnswerZeroWithoutAMessage) {
    ESTJOBFILERECORD rec{};
    std::snprintf(rec.sCode1, sizeof rec.sCode1, "B");
    rec.nPageNo = 2;
    {
        testsupport::StatusInjector inject(REBtrieveBase::kOpInsert, REBtrieveBase::kStatusIoError);
        EXPECT_EQ(0, file.AddNewRecord(rec));
        EXPECT_EQ(0, file.AddRecord(rec));
    }
    {
        testsupport::StatusInjector inject(REBtrieveBase::kOpUpdate, 80);
        ESTJOBFILERECORD stored;
        ASSERT_EQ(1, file.SearchFirstRecord("A", "BEAM", 1, 1, &stored));
        EXPECT_EQ(0, file.UpdateRecord("A", "BEAM", 1, 1, stored));
    }
    {
        testsupport::StatusInjector inject(REBtrieveBase::kOpDelete, REBtrieveBase::kStatusIoError);
        EXPECT_EQ(0, file.DeleteRecord(1, 1));
        EXPECT_EQ(0, file.DeleteAllRecords());
    }
    EXPECT_EQ(0u, messages.count());
    ESTJOBFILERECORD stored;
    EXPECT_EQ(1, file.SearchFirstRecord("A", "BEAM", 1, 1, &stored));  // nothing was lost
}

TEST_F(JobFileStatusTest, CreateAndOpenFailuresShowTheirOwnMessages) {
    {
        testsupport::StatusInjector inject(REBtrieveBase::kOpCreate, 18);
        EXPECT_EQ(0, file.CreateNewFile(dir.file("NEW.DAT")));
        EXPECT_EQ("Unable to create job database file. [Error# 18]", messages.lastText());
    }
    {
        // The record manager's own refusal of an open is shown with its status text.
        testsupport::StatusInjector inject(REBtrieveBase::kOpOpen, REBtrieveBase::kStatusFileNotFound);
        REJobFile other;
        messages.clear();
        EXPECT_EQ(0, other.Initialize(path));
        EXPECT_EQ(0, other.IsOpen());
        EXPECT_EQ(1u, messages.count());
    }
}
