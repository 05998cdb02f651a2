#include "TestSupport.h"

#include "REBtrieveBase.h"

#include <gtest/gtest.h>

#include <string>

namespace {

constexpr unsigned int kStopIcon = 16;

// The described statuses; every other code up to 70 is shown as its own number.
std::string ExpectedRow(int code) {
    switch (code) {
    case 0: return "API completed successfully";
    case 1: return "Invalid parameter";
    case 2: return "An I/O error";
    case 3: return "File not open";
    case 4: return "Key not found";
    case 5: return "Duplicate key";
    case 6: return "Invalid key number";
    case 7: return "Key number change";
    case 8: return "Invalid positioning";
    case 9: return "End-of-file";
    case 10: return "Not modifiable";
    case 11: return "Invalid filename";
    case 12: return "File not found";
    case 13: return "Extended file error";
    case 14: return "Cannot create/open pre-image file";
    case 15: return "An I/O error during pre-imaging";
    case 16: return "An expansion error";
    case 17: return "A close error";
    case 18: return "Disk is full";
    case 19: return "An unrecoverable error";
    case 20: return "Requester is inactive";
    case 21: return "Key sBufferfer is too short";
    case 22: return "Data sBufferfer is too short";
    case 23: return "Position block is too short";
    case 24: return "Invalid page/data sBufferfer size";
    case 25: return "Failed to create file";
    case 26: return "Invalid key number";
    case 27: return "Invalid key position";
    case 28: return "Invalid record length";
    case 29: return "Invalid key length";
    case 30: return "Incompatible file";
    case 31: return "File is already extended";
    case 33: return "MKDE cannot unload";
    case 37: return "Another tranaction is active";
    case 44: return "Invalid key path";
    case 45: return "Invalid key flags";
    case 59: return "Specified file already exists";
    default: return std::to_string(code);
    }
}

std::string UnknownStatus(int code) { return "Unknown Btrieve Error :\nStatus Code = " + std::to_string(code); }

void ExpectStatusBox(const testsupport::CapturedMessage& message, const std::string& text) {
    EXPECT_EQ(message.caption, "");
    EXPECT_EQ(message.text, text);
    EXPECT_EQ(message.style, kStopIcon);
}

}  // namespace

TEST(StatusMessages, EveryDescribedCodeShowsItsRow) {
    testsupport::MessageCapture capture;
    for (int code = 0; code <= 70; ++code) {
        SCOPED_TRACE(code);
        capture.clear();
        REBtrieveBase::ShowStatusCodeMsg("ignored", code);
        ASSERT_EQ(capture.count(), 1u);
        ExpectStatusBox(capture.messages()[0], "Btrieve Error : " + ExpectedRow(code));
    }
}

TEST(StatusMessages, CodesOutsideTheTableShowTheUnknownForm) {
    testsupport::MessageCapture capture;
    for (int code : {71, -1, 80, 32767, -32768, 100000}) {
        SCOPED_TRACE(code);
        capture.clear();
        REBtrieveBase::ShowStatusCodeMsg(nullptr, code);
        ASSERT_EQ(capture.count(), 1u);
        ExpectStatusBox(capture.messages()[0], UnknownStatus(code));
    }
}

TEST(CheckStatus, OnlyZeroPassesAndOnlyTheFlagShowsAMessage) {
    testsupport::MessageCapture capture;
    EXPECT_EQ(REBtrieveBase::CheckStatus(0, 1), 1);
    EXPECT_EQ(REBtrieveBase::CheckStatus(0, 0), 1);
    EXPECT_EQ(capture.count(), 0u);

    for (int status : {4, 9, 12, 71, -1}) {
        EXPECT_EQ(REBtrieveBase::CheckStatus(status, 0), 0);
    }
    EXPECT_EQ(capture.count(), 0u);

    EXPECT_EQ(REBtrieveBase::CheckStatus(9, 1), 0);
    ASSERT_EQ(capture.count(), 1u);
    ExpectStatusBox(capture.messages()[0], "Btrieve Error : End-of-file");
}

TEST(CheckStatus, ShowsTheStatusAsASixteenBitValue) {
    testsupport::MessageCapture capture;
    EXPECT_EQ(REBtrieveBase::CheckStatus(70, 1), 0);
    EXPECT_EQ(capture.lastText(), "Btrieve Error : 70");
    EXPECT_EQ(REBtrieveBase::CheckStatus(71, 1), 0);
    EXPECT_EQ(capture.lastText(), UnknownStatus(71));
    EXPECT_EQ(REBtrieveBase::CheckStatus(-1, 1), 0);
    EXPECT_EQ(capture.lastText(), UnknownStatus(-1));
    // 65535 and 65545 are -1 and 9 in sixteen bits.
    EXPECT_EQ(REBtrieveBase::CheckStatus(65535, 1), 0);
    EXPECT_EQ(capture.lastText(), UnknownStatus(-1));
    EXPECT_EQ(REBtrieveBase::CheckStatus(65545, 1), 0);
    EXPECT_EQ(capture.lastText(), "Btrieve Error : End-of-file");
}
