// Key order of every type, ascending and descending, through real files: insert, then walk the key.
#include "ConformanceFixture.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace conformance {
namespace {

using Collation = Conformance;

// Values in ascending order; the values of one group compare equal.
struct CollationCase {
    const char* name;
    Segment segment;  // at position 2, after a 1-byte tag
    std::vector<std::vector<Bytes>> groups;
};

using Groups = std::vector<std::vector<Bytes>>;

Groups singles(std::initializer_list<Bytes> values) {
    Groups g;
    for (const Bytes& v : values)
        g.push_back({v});
    return g;
}
Groups signedInts(size_t width, std::initializer_list<int64_t> values) {
    Groups g;
    for (int64_t v : values)
        g.push_back({le(uint64_t(v), width)});
    return g;
}
Groups unsignedInts(size_t width, std::initializer_list<uint64_t> values) {
    Groups g;
    for (uint64_t v : values)
        g.push_back({le(v, width)});
    return g;
}
Groups strings(size_t width, std::initializer_list<std::initializer_list<std::string_view>> groups) {
    Groups g;
    for (const auto& group : groups) {
        g.emplace_back();
        for (std::string_view s : group)
            g.back().push_back(text(s, width));
    }
    return g;
}

constexpr float kInfF = std::numeric_limits<float>::infinity();
constexpr double kInf = std::numeric_limits<double>::infinity();

Bytes nanPayload32(uint32_t bits) { return le(bits, 4); }
Bytes nanPayload64(uint64_t bits) { return le(bits, 8); }

std::vector<CollationCase> cases() {
    using std::string_view;
    using namespace std::string_view_literals;
    const uint16_t nocase = kf::NoCase;
    return {
        {"string", seg(2, 3, type::String),
         strings(3, {{"\0\0\0"sv}, {"A"}, {"A\0\1"sv}, {"AB"}, {"M"}, {"a"}, {"\x7f"}, {"\x80"}, {"\xff\xff\xff"}})},
        {"plain string segment", {2, 3, 0, 0, 0}, strings(3, {{""}, {"A"}, {"AB"}, {"M"}, {"a"}, {"\xff"}})},
        {"string without case", seg(2, 3, type::String, nocase),
         strings(3, {{"A", "a"}, {"ABC", "abc", "aBc"}, {"abd", "ABD"}, {"ABE"}, {"Z", "z"}, {"["}, {"_"}, {"`"},
                     {"{"}, {"\xe1"}})},
        {"plain string without case", {2, 2, nocase, 0, 0}, strings(2, {{"ab", "AB"}, {"_"}, {"\xe1"}})},
        {"integer 1", seg(2, 1, type::Integer), signedInts(1, {-128, -1, 0, 1, 127})},
        {"integer 2", seg(2, 2, type::Integer), signedInts(2, {-32768, -256, -1, 0, 1, 255, 256, 32767})},
        {"integer 4", seg(2, 4, type::Integer),
         signedInts(4, {INT32_MIN, -65536, -1, 0, 3, 65536, INT32_MAX})},
        {"integer 8", seg(2, 8, type::Integer),
         signedInts(8, {INT64_MIN, -(int64_t(1) << 32), -1, 0, 1, int64_t(1) << 32, INT64_MAX})},
        {"integer ignores case flag", seg(2, 1, type::Integer, nocase), signedInts(1, {0x41, 0x61})},
        {"unsigned 1", seg(2, 1, type::Unsigned), unsignedInts(1, {0, 1, 0x7F, 0x80, 0xFF})},
        {"unsigned 2", seg(2, 2, type::Unsigned), unsignedInts(2, {0, 1, 255, 256, 0x7FFF, 0x8000, 0xFFFF})},
        {"unsigned 4", seg(2, 4, type::Unsigned), unsignedInts(4, {0, 1, 0x100, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF})},
        {"unsigned 8", seg(2, 8, type::Unsigned), unsignedInts(8, {0, 1, 0x7FFFFFFFFFFFFFFF, ~uint64_t(0)})},
        {"binary 2", {2, 2, kf::Binary, 0, 0}, unsignedInts(2, {0, 1, 0xFF, 0x100, 0xFFFF})},
        {"binary 4", {2, 4, kf::Binary, 0, 0}, unsignedInts(4, {0, 1, 0x100, 0x80000000, 0xFFFFFFFF})},
        {"binary 6", {2, 6, kf::Binary, 0, 0}, unsignedInts(6, {0, 0xFF, 0x10000000000, 0xFFFFFFFFFFFF})},
        {"autoincrement 2", seg(2, 2, type::AutoIncrement), signedInts(2, {-300, -1, 1, 2, 256, 32767})},
        {"autoincrement 4", seg(2, 4, type::AutoIncrement), signedInts(4, {INT32_MIN, -1, 1, 65536, INT32_MAX})},
        {"logical 1", seg(2, 1, type::Logical), unsignedInts(1, {0, 1, 0x7F, 0x80, 0xFF})},
        {"logical 2", seg(2, 2, type::Logical),
         singles({raw({0, 0}), raw({0, 0xFF}), raw({1, 0}), raw({0xFF, 0}), raw({0xFF, 0xFF})})},
        {"float 4", seg(2, 4, type::Float),
         {{f32(-kInfF)}, {f32(-1e30f)}, {f32(-1.5f)}, {f32(-1e-40f)}, {f32(-0.0f), f32(0.0f)}, {f32(1e-40f)},
          {f32(1.0f)}, {f32(1.5f)}, {f32(1e30f)}, {f32(kInfF)},
          {nanPayload32(0x7FC00000), nanPayload32(0xFFC00000), nanPayload32(0x7F800001), nanPayload32(0xFF800001)}}},
        {"float 8", seg(2, 8, type::Float),
         {{f64(-kInf)}, {f64(-1e300)}, {f64(-2.0)}, {f64(-4.9e-324)}, {f64(0.0), f64(-0.0)}, {f64(4.9e-324)},
          {f64(1.0)}, {f64(1e300)}, {f64(kInf)},
          {nanPayload64(0x7FF8000000000000), nanPayload64(0xFFF8000000000001)}}},
        {"bfloat 4", seg(2, 4, type::BFloat),
         {{raw({0, 0, 0xA0, 0x84})},                                       // -10
          {raw({0, 0, 0xC0, 0x81})},                                       // -1.5
          {raw({1, 0, 0x80, 0x81})},                                       // just below -1
          {raw({0, 0, 0x80, 0x81})},                                       // -1
          {raw({0, 0, 0x80, 0x80})},                                       // -0.5
          {raw({0, 0, 0, 0}), raw({0x12, 0x34, 0x56, 0}), raw({0, 0, 0x80, 0})},  // zero, any mantissa
          {raw({0, 0, 0, 0x80})},                                          // 0.5
          {raw({0, 0, 0, 0x81})},                                          // 1
          {raw({1, 0, 0, 0x81})},                                          // just above 1
          {raw({0, 0, 0x40, 0x81})},                                       // 1.5
          {raw({0xFF, 0xFF, 0x7F, 0x81})},                                 // just below 2
          {raw({0, 0, 0x20, 0x84})}}},                                     // 10
        {"bfloat 8", seg(2, 8, type::BFloat),
         {{raw({0, 0, 0, 0, 0, 0, 0x80, 0x81})},
          {raw({0, 0, 0, 0, 0, 0, 0, 0}), raw({1, 2, 3, 4, 5, 6, 0x87, 0})},
          {raw({0, 0, 0, 0, 0, 0, 0, 0x81})},
          {raw({1, 0, 0, 0, 0, 0, 0, 0x81})},
          {raw({0, 0, 0, 0, 0, 0, 0x20, 0x84})}}},
        {"lstring 4", seg(2, 4, type::LString),
         {{raw({0, 0, 0, 0}), raw({0, 'A', 'B', 'C'})},
          {raw({1, 0, 0, 0})},
          {raw({1, 'A', 0, 0}), raw({1, 'A', 'Z', 'Z'})},
          {raw({2, 'A', 0, 0})},
          {raw({2, 'A', 'B', 'Q'})},
          {raw({3, 'A', 'B', 'C'}), raw({9, 'A', 'B', 'C'})},
          {raw({1, 'B', 0, 0})},
          {raw({1, 'a', 0, 0})}}},
        {"lstring without case", seg(2, 4, type::LString, nocase),
         {{raw({1, 'a', 'x', 0}), raw({1, 'A', 'y', 0})}, {raw({2, 'A', 'b', 0}), raw({2, 'a', 'B', 0})}, {raw({1, '_', 0, 0})}}},
        {"zstring 5", seg(2, 5, type::ZString),
         {{text("", 5), raw({0, 'x', 'y', 'z', 'w'})},
          {text("A", 5), raw({'A', 0, 'Z', 0, 0})},
          {text("AB", 5), raw({'A', 'B', 0, 'x', 'y'})},
          {text("ABCDE", 5)},
          {text("M", 5)},
          {text("a", 5)}}},
        {"zstring without case", seg(2, 5, type::ZString, nocase),
         {{raw({'a', 'b', 0, 'x', 'y'}), text("AB", 5)}, {text("aBC", 5)}, {text("_", 5)}}},
    };
}

// A tag byte, the field, and room for the shortest record a file may have.
uint16_t recordLengthFor(const Segment& s) { return uint16_t(std::max(4, 1 + s.length)); }

// Each case is walked forwards and backwards, ascending and descending; equal values keep the
// order in which they were inserted (here: reverse of their listing) either way.
TEST_F(Collation, EveryTypeWalksInItsOrder) {
    int fileNumber = 0;
    for (const CollationCase& c : cases()) {
        for (bool descending : {false, true}) {
            SCOPED_TRACE(std::string(c.name) + (descending ? " descending" : " ascending"));
            Segment s = c.segment;
            if (descending)
                s.flags |= kf::Descending;
            bool anyEqual = std::any_of(c.groups.begin(), c.groups.end(), [](auto& g) { return g.size() > 1; });
            if (anyEqual)
                s.flags |= kf::Dup;
            FileLayout layout{recordLengthFor(s), {{s}}};
            Handle h;
            openNew(h, layout, "f" + std::to_string(fileNumber++));

            std::vector<std::pair<int, Bytes>> values;  // tag, value in listing order
            std::vector<std::vector<int>> groupTags;
            for (const auto& group : c.groups) {
                groupTags.emplace_back();
                for (const Bytes& v : group) {
                    groupTags.back().push_back(int(values.size()));
                    values.emplace_back(int(values.size()), v);
                }
            }
            for (auto it = values.rbegin(); it != values.rend(); ++it)
                ASSERT_EQ(st::Ok, h.insert(record(layout.recordLength, {{0, le(it->first, 1)}, {1, it->second}})));

            if (descending)
                std::reverse(groupTags.begin(), groupTags.end());
            std::vector<int> expected;
            for (auto& g : groupTags)
                expected.insert(expected.end(), g.rbegin(), g.rend());
            EXPECT_EQ(expected, tags(h.readAll()));
            std::reverse(expected.begin(), expected.end());
            EXPECT_EQ(expected, tags(h.readAllBackward()));
        }
    }
}

// In a unique key every value of a group collides with the first one stored.
TEST_F(Collation, EqualValuesCollideInAUniqueKey) {
    int fileNumber = 0;
    for (const CollationCase& c : cases()) {
        SCOPED_TRACE(c.name);
        FileLayout layout{recordLengthFor(c.segment), {{c.segment}}};
        Handle h;
        openNew(h, layout, "u" + std::to_string(fileNumber++));
        for (const auto& group : c.groups) {
            for (size_t i = 0; i < group.size(); ++i)
                EXPECT_EQ(i == 0 ? st::Ok : st::Duplicate, h.insert(record(layout.recordLength, {{1, group[i]}})))
                    << "member " << i;
        }
        EXPECT_EQ(c.groups.size(), h.count());
    }
}

TEST_F(Collation, SegmentsCompareInOrderEachWithItsOwnDirection) {
    Handle h;
    openNew(h, {8, {{seg(1, 2, type::String), seg(3, 2, type::Integer, kf::Descending), seg(5, 1, type::Unsigned)}}});
    auto rec = [](std::string_view s, int16_t n, int tag) {
        return record(8, {{0, text(s, 2)}, {2, le(uint16_t(n), 2)}, {4, le(tag, 1)}});
    };
    ASSERT_EQ(st::Ok, h.insert(rec("A", 1, 1)));
    ASSERT_EQ(st::Ok, h.insert(rec("B", 0, 2)));
    ASSERT_EQ(st::Ok, h.insert(rec("A", 5, 3)));
    ASSERT_EQ(st::Ok, h.insert(rec("A", 3, 4)));
    ASSERT_EQ(st::Ok, h.insert(rec("A", 3, 5)));
    EXPECT_EQ((std::vector<int>{3, 4, 5, 1, 2}), tags(h.readAll(), 4));

    // "At or above" follows key order: after ("A", 4) comes ("A", 3).
    ASSERT_EQ(st::Ok, h.find(op::GetGreaterOrEqual, raw({'A', 0, 4, 0, 0})));
    EXPECT_EQ(4, h.data[4]);
    ASSERT_EQ(st::Ok, h.find(op::GetLess, raw({'A', 0, 3, 0, 0})));
    EXPECT_EQ(3, h.data[4]);
}

// Searches on 10, 20, 30; 0 in `found` stands for "nothing": 4 for Get Equal, 9 for the others.
struct SearchRow {
    int32_t value;
    int32_t equal, greater, greaterOrEqual, less, lessOrEqual;
};

void checkSearches(Handle& h, const SearchRow& row) {
    SCOPED_TRACE(row.value);
    const std::pair<uint16_t, int32_t> expectations[] = {{op::GetEqual, row.equal},
                                                         {op::GetGreater, row.greater},
                                                         {op::GetGreaterOrEqual, row.greaterOrEqual},
                                                         {op::GetLess, row.less},
                                                         {op::GetLessOrEqual, row.lessOrEqual}};
    for (auto [operation, found] : expectations) {
        SCOPED_TRACE(operation);
        int16_t status = h.find(operation, int32Key(row.value));
        if (found == 0) {
            EXPECT_EQ(operation == op::GetEqual ? st::NotFound : st::End, status);
        } else {
            ASSERT_EQ(st::Ok, status);
            EXPECT_EQ(int32Key(found), slice(h.data, 4, 4));
            EXPECT_EQ(int32Key(found), h.keyValue(4));
        }
    }
}

TEST_F(Collation, SearchesFollowKeyOrderBothWays) {
    const SearchRow ascending[] = {
        {20, 20, 30, 20, 10, 20}, {25, 0, 30, 30, 20, 20}, {5, 0, 10, 10, 0, 0}, {35, 0, 0, 0, 30, 30}};
    const SearchRow descending[] = {
        {20, 20, 10, 20, 30, 20}, {25, 0, 20, 20, 30, 30}, {5, 0, 0, 0, 10, 10}, {35, 0, 30, 30, 0, 0}};
    for (bool desc : {false, true}) {
        SCOPED_TRACE(desc ? "descending" : "ascending");
        Handle h;
        openNew(h, {16, {{seg(5, 4, type::Integer, desc ? kf::Descending : 0)}}}, desc ? "d.dat" : "a.dat");
        for (int32_t v : {20, 30, 10})
            ASSERT_EQ(st::Ok, h.insert(twoKeyRecord(v, v)));
        for (const SearchRow& row : desc ? descending : ascending)
            checkSearches(h, row);
    }
}

TEST_F(Collation, KeyBufferCarriesTheFullWidthWhateverItsLength) {
    Handle h;
    openNew(h, {12, {{seg(1, 8, type::ZString)}, {seg(9, 4, type::Integer)}}});
    ASSERT_EQ(st::Ok, h.insert(record(12, {{0, raw({'A', 'B', 0, 'x', 'y', 'z', 0, 0})}, {8, int32Key(0x01020304)}})));

    // Key 0: "AB", zeros after it, a key length of 2.
    std::array<uint8_t, 12> buffer{};
    uint32_t length = 12;
    h.key.fill(0xEE);
    std::memcpy(h.key.data(), "AB\0\0\0\0\0\0", 8);
    ASSERT_EQ(st::Ok, BTRCALL(op::GetEqual, h.block.data(), buffer.data(), &length, h.key.data(), 2, 0));
    EXPECT_EQ(raw({'A', 'B', 0, 'x', 'y', 'z', 0, 0, 0xEE}), Bytes(h.key.begin(), h.key.begin() + 9));
    // Whatever follows the NUL in the search value does not count either.
    std::memcpy(h.key.data(), "AB\0QQQQQ", 8);
    length = 12;
    EXPECT_EQ(st::Ok, BTRCALL(op::GetEqual, h.block.data(), buffer.data(), &length, h.key.data(), 8, 0));
    std::memcpy(h.key.data(), "AB\0QQQQQ", 8);
    EXPECT_EQ(st::End, BTRCALL(op::GetGreater, h.block.data(), buffer.data(), &length, h.key.data(), 8, 0));

    // Key 1 searched with a key length of 1 still compares all four bytes.
    h.key.fill(0xEE);
    std::memcpy(h.key.data(), int32Key(0x01020304).data(), 4);
    length = 12;
    ASSERT_EQ(st::Ok, BTRCALL(op::GetEqual, h.block.data(), buffer.data(), &length, h.key.data(), 1, 1));
    EXPECT_EQ(raw({4, 3, 2, 1, 0xEE}), Bytes(h.key.begin(), h.key.begin() + 5));

    // Insert writes the named key's value; Steps write nothing there.
    h.key.fill(0xEE);
    ASSERT_EQ(st::Ok, h.insert(record(12, {{0, text("Q", 8)}, {8, int32Key(7)}}), 1));
    EXPECT_EQ(raw({7, 0, 0, 0, 0xEE}), Bytes(h.key.begin(), h.key.begin() + 5));
    h.key.fill(0xEE);
    ASSERT_EQ(st::Ok, h.step(op::StepFirst));
    EXPECT_EQ(Bytes(kKeyBufferSize, 0xEE), h.keyValue(kKeyBufferSize));
}

TEST_F(Collation, SearchesWithoutCaseReturnTheStoredBytes) {
    Handle h;
    openNew(h, {8, {{seg(1, 4, type::String, kf::NoCase | kf::Dup)}}});
    ASSERT_EQ(st::Ok, h.insert(record(8, {{0, text("AbC", 4)}, {4, le(1, 1)}})));
    ASSERT_EQ(st::Ok, h.insert(record(8, {{0, text("abc", 4)}, {4, le(2, 1)}})));
    ASSERT_EQ(st::Ok, h.find(op::GetEqual, text("ABC", 4)));
    EXPECT_EQ(1, h.data[4]);
    EXPECT_EQ(text("AbC", 4), h.keyValue(4));
    ASSERT_EQ(st::Ok, h.get(op::GetNext));
    EXPECT_EQ(text("abc", 4), h.keyValue(4));
    ASSERT_EQ(st::Ok, h.find(op::GetLessOrEqual, text("aBc", 4)));
    EXPECT_EQ(2, h.data[4]);
}

}  // namespace
}  // namespace conformance
