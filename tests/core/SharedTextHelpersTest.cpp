#include "RESharedHelpers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <string>

namespace {

// The bytes of a fixed field as a string, NULs included, for comparison.
template <size_t N>
std::string Bytes(const std::array<char, N>& field) {
    return std::string(field.data(), N);
}

std::string Bytes(const char* text, size_t n) { return std::string(text, n); }

}  // namespace

TEST(gRE_memcpy, TrailingBlanksBecomeNulsAndTheFieldIsTerminated) {
    struct Case {
        std::string src;
        std::string expected;  // n + 1 bytes
    };
    const Case cases[] = {
        {"AB  ", Bytes("AB\0\0\0", 5)},
        {"  A ", Bytes("  A\0\0", 5)},
        {"A B ", Bytes("A B\0\0", 5)},
        {"    ", Bytes("\0\0\0\0\0", 5)},
        {"ABCD", Bytes("ABCD\0", 5)},
        {Bytes("A\0 B", 4), Bytes("A\0 B\0", 5)},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.src);
        std::array<char, 5> dst;
        dst.fill('#');
        // An unterminated source of exactly n bytes: nothing past it is read.
        std::array<char, 4> src;
        std::copy(c.src.begin(), c.src.end(), src.begin());
        gRE_memcpy(dst.data(), src.data(), 4);
        EXPECT_EQ(Bytes(dst), c.expected);
    }
}

TEST(gRE_memcpy, EmptyFieldOnlyTerminates) {
    char dst[2] = {'#', '#'};
    gRE_memcpy(dst, "", 0);
    EXPECT_EQ(dst[0], '\0');
    EXPECT_EQ(dst[1], '#');
}

TEST(gRE_TrimLeft, DropsControlAndHighBytesButKeepsBlanks) {
    struct Case {
        std::string field;
        std::string expected;
    };
    const Case cases[] = {
        // Exactly n - 1 bytes dropped: the whole field is cleared, its last byte too.
        {Bytes("\x01\x02\x03X", 4), Bytes("\0\0\0\0", 4)},
        {Bytes("\x01\x02XY", 4), Bytes("XY\0\0", 4)},
        {Bytes("\x14\x15" "AB", 4), Bytes("\x15" "AB\0", 4)},
        {Bytes("\x7f\x80\xff" "AB", 5), Bytes("AB\0\0\0", 5)},
        {Bytes("\x7e" "ABC", 4), Bytes("\x7e" "ABC", 4)},
        {Bytes(" AB\0", 4), Bytes(" AB\0", 4)},
        {Bytes("\x01\x02\x03\x04", 4), Bytes("\0\0\0\0", 4)},
        {Bytes("ABCD", 4), Bytes("ABCD", 4)},
        {Bytes("A", 1), Bytes("\0", 1)},
    };
    for (const Case& c : cases) {
        std::string field = c.field;
        gRE_TrimLeft(field.data(), static_cast<unsigned>(field.size()));
        EXPECT_EQ(field, c.expected);
    }
}

TEST(gStrTrim, OnlyBlanksAtTheTrimmedEndAreRemoved) {
    struct Case {
        const char* text;
        const char* left;
        const char* right;
    };
    const Case cases[] = {
        {"x  ", "x  ", "x"},
        {"  x", "x", "  x"},
        {"  x y  ", "x y  ", "  x y"},
        {"   ", "", ""},
        {"", "", ""},
        {"\tx\t", "\tx\t", "\tx\t"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        char left[16] = {0};
        char right[16] = {0};
        std::strcpy(left, c.text);
        std::strcpy(right, c.text);
        EXPECT_EQ(gStrTrimLeft(left), left);
        EXPECT_STREQ(left, c.left);
        EXPECT_EQ(gStrTrimRight(right), right);
        EXPECT_STREQ(right, c.right);
    }
}

TEST(gStrTrimLeft, FreedTailIsNulFilled) {
    char text[6] = {' ', ' ', 'a', 'b', '\0', '#'};
    gStrTrimLeft(text);
    EXPECT_EQ(Bytes(text, 6), Bytes("ab\0\0\0#", 6));
}

TEST(gShiftNullChars, JustifyTheContentKeepingInnerNuls) {
    struct Case {
        std::string field;
        std::string right;  // after gShiftRightNullCharsToLeft
        std::string left;   // after gShiftLeftNullCharsToRight
    };
    const Case cases[] = {
        {Bytes("AB\0\0", 4), Bytes("\0\0AB", 4), Bytes("AB\0\0", 4)},
        {Bytes("\0\0AB", 4), Bytes("\0\0AB", 4), Bytes("AB\0\0", 4)},
        {Bytes("A\0B\0", 4), Bytes("\0A\0B", 4), Bytes("A\0B\0", 4)},
        {Bytes("\0A\0B", 4), Bytes("\0A\0B", 4), Bytes("A\0B\0", 4)},
        {Bytes("\0AB\0", 4), Bytes("\0\0AB", 4), Bytes("AB\0\0", 4)},
        {Bytes("ABCD", 4), Bytes("ABCD", 4), Bytes("ABCD", 4)},
        {Bytes("\0\0\0\0", 4), Bytes("\0\0\0\0", 4), Bytes("\0\0\0\0", 4)},
        {Bytes("A", 1), Bytes("A", 1), Bytes("A", 1)},
    };
    for (const Case& c : cases) {
        std::string right = c.field;
        EXPECT_EQ(gShiftRightNullCharsToLeft(right.data(), static_cast<int>(right.size())), right.data());
        EXPECT_EQ(right, c.right);
        std::string left = c.field;
        EXPECT_EQ(gShiftLeftNullCharsToRight(left.data(), static_cast<int>(left.size())), left.data());
        EXPECT_EQ(left, c.left);
    }
}

TEST(CompareStructure, ComparesExactlyNBytes) {
    const char a[] = {'A', 'B', '\0', 'C'};
    const char b[] = {'A', 'B', '\0', 'D'};
    EXPECT_EQ(CompareStructure(a, b, 3), 1);
    EXPECT_EQ(CompareStructure(a, b, 4), 0);
    EXPECT_EQ(CompareStructure(a, b, 0), 1);
}
