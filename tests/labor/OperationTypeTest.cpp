// Conversions of the job item's labor operation entry between its two layouts.
#include "OPERATIONTYPE.h"

#include "RecordBuilders.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace {

using testsupport::Bytes;

TEST(OperationTypeTest, OldToNewDropsTrailingBlanksAndCopiesNumbers) {
    OLD_OPERATIONTYPE old;
    std::memcpy(old.sCode1, "AB  ", 4);
    old.nValue5 = -7;
    old.nValue7 = 123456;
    std::memcpy(old.sCode2, " X Y", 4);
    std::memcpy(old.sCode3, "    ", 4);
    old.nValue21 = -1;
    OPERATIONTYPE converted;
    std::memset(&converted, 0x55, sizeof(converted));
    ASSERT_EQ(1, gConvertOperationTypeToNewFormat(&old, &converted));

    OPERATIONTYPE expected{};
    std::memcpy(expected.sCode1, "AB", 2);
    expected.nValue5 = -7;
    expected.nValue7 = 123456;
    std::memcpy(expected.sCode2, " X Y", 4);
    expected.nValue21 = -1;
    EXPECT_EQ(Bytes(expected), Bytes(converted));
}

TEST(OperationTypeTest, NewToOldBlankPadsCodesWithoutTerminator) {
    OPERATIONTYPE current{};
    std::strcpy(current.sCode1, "W");
    current.nValue5 = 32767;
    current.nValue7 = -5;
    std::strcpy(current.sCode2, "ABCD");
    current.nValue21 = 0x01020304;
    OLD_OPERATIONTYPE converted;
    std::memset(&converted, 0, sizeof(converted));
    ASSERT_EQ(1, gConvertOperationTypeToOldFormat(&current, &converted));

    OLD_OPERATIONTYPE expected;
    std::memset(&expected, ' ', sizeof(expected));
    expected.sCode1[0] = 'W';
    expected.nValue5 = 32767;
    expected.nValue7 = -5;
    std::memcpy(expected.sCode2, "ABCD", 4);
    expected.nValue21 = 0x01020304;
    EXPECT_EQ(Bytes(expected), Bytes(converted));

    OPERATIONTYPE back;
    ASSERT_EQ(1, gConvertOperationTypeToNewFormat(converted, back));  // the reference form
    EXPECT_EQ(Bytes(current), Bytes(back));
}

TEST(OperationTypeTest, NullRecordsAreRefused) {
    OPERATIONTYPE current{};
    OLD_OPERATIONTYPE old{};
    EXPECT_EQ(0, gConvertOperationTypeToNewFormat(nullptr, &current));
    EXPECT_EQ(0, gConvertOperationTypeToNewFormat(&old, nullptr));
    EXPECT_EQ(0, gConvertOperationTypeToOldFormat(nullptr, &old));
    EXPECT_EQ(0, gConvertOperationTypeToOldFormat(&current, nullptr));
}

}  // namespace
