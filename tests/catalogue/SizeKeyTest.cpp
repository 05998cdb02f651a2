// Conversions of the size key between its stored (76-byte, blank-padded) and current (81-byte,
// zero-terminated) forms.
#include "SIZEDATKEYREC.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace {

OLD_SIZEDATKEYREC Stored(const char* bytes76) {
    OLD_SIZEDATKEYREC key;
    std::memcpy(&key, bytes76, sizeof key);
    return key;
}

SIZEDATKEYREC Current() {
    SIZEDATKEYREC key{};
    std::strcpy(key.szSection, "STR");
    std::strcpy(key.szShape, "W");
    std::strcpy(key.szCode9, "A");
    std::strcpy(key.szCode12, "14X22");
    key.fDim1 = 13.74f;
    key.fDim2 = 0.23f;
    key.fDim5 = -1.5f;
    key.nValue43 = 0x7fc00001;  // a NaN's bits in a value slot stay as they are
    key.nValue47 = -7;
    std::strcpy(key.szDimText, "14 x 22");
    key.nValue77 = 123456;
    return key;
}

TEST(SizeKeyTest, StoredTextsLoseTheirBlanksAndValuesKeepTheirBits) {
    std::string bytes(76, ' ');
    bytes.replace(0, 3, "STR");
    bytes.replace(3, 4, "W   ");
    bytes.replace(7, 2, " A");      // leading blanks stay
    bytes.replace(9, 10, "14 X 22   ");
    const uint8_t values[28] = {1, 2, 3, 4, 0xff, 0xff, 0xc0, 0x7f};  // values 1..7; value 2 a NaN
    bytes.replace(19, 28, reinterpret_cast<const char*>(values), 28);
    bytes.replace(47, 25, "ABCDEFGHIJKLMNOPQRSTUVWXY");  // exactly 25 characters
    bytes.replace(72, 4, "\x01\x00\x00\x80", 4);
    const OLD_SIZEDATKEYREC stored = Stored(bytes.data());

    SIZEDATKEYREC key;
    std::memset(&key, 0x55, sizeof key);
    ASSERT_EQ(1, gConvertSizeKeyRecToNewFormat(&stored, &key));
    EXPECT_EQ(0, std::memcmp(key.szSection, "STR\0", 4));
    EXPECT_EQ(0, std::memcmp(key.szShape, "W\0\0\0\0", 5));
    EXPECT_EQ(0, std::memcmp(key.szCode9, " A\0", 3));
    EXPECT_EQ(0, std::memcmp(key.szCode12, "14 X 22\0\0\0\0", 11));
    EXPECT_EQ(0, std::memcmp(&key.fDim1, values, 28));
    EXPECT_EQ(0, std::memcmp(key.szDimText, "ABCDEFGHIJKLMNOPQRSTUVWXY\0", 26));
    EXPECT_EQ(0, std::memcmp(&key.nValue77, "\x01\x00\x00\x80", 4));
}

TEST(SizeKeyTest, CurrentKeyIsStoredBlankPaddedAndComesBack) {
    const SIZEDATKEYREC key = Current();
    OLD_SIZEDATKEYREC stored;
    std::memset(&stored, 0, sizeof stored);
    ASSERT_EQ(1, gConvertSizeKeyRecToOldFormat(&key, &stored));
    const std::string bytes(reinterpret_cast<const char*>(&stored), sizeof stored);
    EXPECT_EQ("STRW   A 14X22     ", bytes.substr(0, 19));
    EXPECT_EQ("14 x 22" + std::string(18, ' '), bytes.substr(47, 25));
    EXPECT_EQ(0, std::memcmp(&stored.fDim1, &key.fDim1, 28));
    EXPECT_EQ(0, std::memcmp(&stored.nValue77, &key.nValue77, 4));

    SIZEDATKEYREC back;
    ASSERT_EQ(1, gConvertSizeKeyRecToNewFormat(&stored, &back));
    EXPECT_EQ(0, std::memcmp(&key, &back, sizeof key));
}

TEST(SizeKeyTest, TextLongerThanItsStoredSlotRunsIntoTheNextField) {
    SIZEDATKEYREC key = Current();
    std::memcpy(key.szSection, "ABCD", 4);  // no terminator: one character too many
    key.szShape[0] = '\0';
    std::memset(key.szDimText, 'x', sizeof key.szDimText);  // unterminated, at the end of the text slot
    OLD_SIZEDATKEYREC stored;
    ASSERT_EQ(1, gConvertSizeKeyRecToOldFormat(&key, &stored));
    const std::string bytes(reinterpret_cast<const char*>(&stored), sizeof stored);
    EXPECT_EQ("ABCD   ", bytes.substr(0, 7));
    // The text runs into value 8's slot, which is then written over: nothing passes the key's end.
    EXPECT_EQ(std::string(25, 'x'), bytes.substr(47, 25));
    EXPECT_EQ(0, std::memcmp(&stored.nValue77, &key.nValue77, 4));
}

TEST(SizeKeyTest, NullKeysAreRefused) {
    SIZEDATKEYREC key{};
    OLD_SIZEDATKEYREC stored{};
    EXPECT_EQ(0, gConvertSizeKeyRecToNewFormat(nullptr, &key));
    EXPECT_EQ(0, gConvertSizeKeyRecToNewFormat(&stored, nullptr));
    EXPECT_EQ(0, gConvertSizeKeyRecToOldFormat(nullptr, &stored));
    EXPECT_EQ(0, gConvertSizeKeyRecToOldFormat(&key, nullptr));
}

}  // namespace
