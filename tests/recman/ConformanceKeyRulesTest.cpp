// Key rules beyond order: duplicates, uniqueness, modifiable keys, autoincrement and null keys.
#include "ConformanceFixture.h"

namespace conformance {
namespace {

using KeyRules = Conformance;

// Key 1 of twoKeyFile() allows duplicates; records are named by their tag.
class Duplicates : public Conformance {
protected:
    void SetUp() override {
        openNew(h, twoKeyFile());
        // Value 5 taken by tags 1, 3, 4 in that order; 9 by tag 2.
        ASSERT_EQ(st::Ok, h.insert(twoKeyRecord(1, 10, 5)));
        ASSERT_EQ(st::Ok, h.insert(twoKeyRecord(2, 20, 9)));
        ASSERT_EQ(st::Ok, h.insert(twoKeyRecord(3, 30, 5)));
        ASSERT_EQ(st::Ok, h.insert(twoKeyRecord(4, 40, 5)));
    }
    int tagAfter(uint16_t operation, int32_t value) {
        int16_t status = h.find(operation, int32Key(value), 1);
        return status == st::Ok ? h.data[0] : -status;
    }
    Handle h;
};

TEST_F(Duplicates, EqualValuesRunOldestToNewest) {
    EXPECT_EQ((std::vector<int>{1, 3, 4, 2}), tags(h.readAll(1)));
    EXPECT_EQ((std::vector<int>{2, 4, 3, 1}), tags(h.readAllBackward(1)));
    EXPECT_EQ(1, tagAfter(op::GetEqual, 5));
    EXPECT_EQ(1, tagAfter(op::GetGreaterOrEqual, 5));
    EXPECT_EQ(1, tagAfter(op::GetGreater, 4));
    EXPECT_EQ(4, tagAfter(op::GetLessOrEqual, 5));
    EXPECT_EQ(4, tagAfter(op::GetLess, 9));
    EXPECT_EQ(2, tagAfter(op::GetGreater, 5));
    // Next and Previous walk within the group from where a search landed.
    ASSERT_EQ(1, tagAfter(op::GetEqual, 5));
    ASSERT_EQ(st::Ok, h.get(op::GetNext, 1));
    EXPECT_EQ(3, h.data[0]);
    ASSERT_EQ(4, tagAfter(op::GetLessOrEqual, 5));
    ASSERT_EQ(st::Ok, h.get(op::GetPrevious, 1));
    EXPECT_EQ(3, h.data[0]);
}

TEST_F(Duplicates, AnUpdateThatChangesTheValueJoinsTheGroupLast) {
    // Tag 1 leaves the group and comes back: now the newest.
    ASSERT_EQ(st::Ok, h.find(op::GetEqual, int32Key(10)));
    ASSERT_EQ(st::Ok, h.update(twoKeyRecord(1, 10, 6), 0));
    ASSERT_EQ(st::Ok, h.update(twoKeyRecord(1, 10, 5), 0));
    EXPECT_EQ((std::vector<int>{3, 4, 1, 2}), tags(h.readAll(1)));
    // Changing data or another key's value keeps the place.
    ASSERT_EQ(st::Ok, h.find(op::GetEqual, int32Key(30)));
    ASSERT_EQ(st::Ok, h.update(twoKeyRecord(3, 31, 5), 0));
    EXPECT_EQ((std::vector<int>{3, 4, 1, 2}), tags(h.readAll(1)));
}

TEST_F(Duplicates, PositionsInAGroupKeepTheirRank) {
    // Deleting the middle of a group leaves the position between its neighbours in the group.
    ASSERT_EQ(1, tagAfter(op::GetEqual, 5));
    ASSERT_EQ(3, tagAfter(op::GetNext, 0));
    ASSERT_EQ(st::Ok, h.erase(1));
    EXPECT_EQ(4, tagAfter(op::GetNext, 0));
    ASSERT_EQ(st::Ok, h.insert(twoKeyRecord(3, 30, 5), 1));
    EXPECT_EQ(2, tagAfter(op::GetNext, 0));

    // Another handle deletes the record the position rests on: the rank is remembered.
    Handle other;
    ASSERT_EQ(st::Ok, other.open(path()));
    ASSERT_EQ(1, tagAfter(op::GetEqual, 5));
    ASSERT_EQ(4, tagAfter(op::GetNext, 0));
    ASSERT_EQ(st::Ok, other.find(op::GetEqual, int32Key(40)));
    ASSERT_EQ(st::Ok, other.erase());
    EXPECT_EQ(3, tagAfter(op::GetNext, 0));
    EXPECT_EQ(1, tagAfter(op::GetPrevious, 0));
}

TEST_F(KeyRules, DescendingSegmentsKeepDuplicatesOldestFirst) {
    Handle h;
    openNew(h, {16, {{seg(5, 4, type::Integer, kf::Dup | kf::Descending)}}});
    for (auto [tag, value] : {std::pair{1, 5}, {2, 7}, {3, 5}, {4, 7}})
        ASSERT_EQ(st::Ok, h.insert(twoKeyRecord(tag, value)));
    EXPECT_EQ((std::vector<int>{2, 4, 1, 3}), tags(h.readAll()));
    ASSERT_EQ(st::Ok, h.find(op::GetEqual, int32Key(5)));
    EXPECT_EQ(1, h.data[0]);
    ASSERT_EQ(st::Ok, h.find(op::GetLessOrEqual, int32Key(7)));
    EXPECT_EQ(4, h.data[0]);
}

TEST_F(KeyRules, UniqueKeyRefusesAValueItHoldsAndChangesNothing) {
    Handle h;
    openNew(h, twoKeyFile());
    ASSERT_EQ(st::Ok, h.insert(twoKeyRecord(1, 10)));
    ASSERT_EQ(st::Ok, h.insert(twoKeyRecord(2, 20)));
    h.key.fill(0xEE);
    EXPECT_EQ(st::Duplicate, h.insert(twoKeyRecord(3, 10)));
    EXPECT_EQ(0xEE, h.key[0]);
    EXPECT_EQ(2u, h.count());
    EXPECT_EQ(st::Duplicate, h.update(twoKeyRecord(2, 10)));
    EXPECT_EQ((std::vector<int>{1, 2}), tags(h.readAll()));
    ASSERT_EQ(st::Ok, h.find(op::GetEqual, int32Key(20)));
    EXPECT_EQ(twoKeyRecord(2, 20), h.data);
}

TEST_F(KeyRules, ACollisionInAnyKeyLeavesEveryKeyAsItWas) {
    Handle h;
    openNew(h, {16, {{seg(5, 4, type::Integer, kf::Modifiable)}, {seg(9, 4, type::Integer, kf::Modifiable)}}});
    ASSERT_EQ(st::Ok, h.insert(twoKeyRecord(1, 10, 100)));
    ASSERT_EQ(st::Ok, h.insert(twoKeyRecord(2, 20, 200)));
    EXPECT_EQ(st::Duplicate, h.insert(twoKeyRecord(3, 30, 100)));
    EXPECT_EQ(st::NotFound, h.find(op::GetEqual, int32Key(30)));
    ASSERT_EQ(st::Ok, h.find(op::GetEqual, int32Key(20)));
    EXPECT_EQ(st::Duplicate, h.update(twoKeyRecord(2, 25, 100)));
    EXPECT_EQ(st::NotFound, h.find(op::GetEqual, int32Key(25)));
    EXPECT_EQ((std::vector<int>{1, 2}), tags(h.readAll(0)));
    EXPECT_EQ((std::vector<int>{1, 2}), tags(h.readAll(1)));
    EXPECT_EQ(2u, h.count());
}

TEST_F(KeyRules, KeyFlagsOfTheFirstSegmentRuleTheKey) {
    // Key 0 not modifiable; key 1 modifiable and duplicate only through its first segment.
    Handle h;
    openNew(h, {16,
                {{seg(5, 4, type::Integer)},
                 {seg(9, 2, type::Integer, kf::Modifiable | kf::Dup), seg(11, 2, type::Integer)}}});
    ASSERT_EQ(st::Ok, h.insert(twoKeyRecord(1, 10, 5)));
    ASSERT_EQ(st::Ok, h.insert(twoKeyRecord(2, 20, 5)));
    EXPECT_EQ(st::KeyNotModifiable, h.update(twoKeyRecord(2, 21, 5)));
    ASSERT_EQ(st::Ok, h.update(twoKeyRecord(2, 20, 0x00070005)));
    ASSERT_EQ(st::Ok, h.update(twoKeyRecord(9, 20, 5)));
    EXPECT_EQ((std::vector<int>{1, 9}), tags(h.readAll(1)));
    // Unique and non-modifiable checks: 10 before 5.
    EXPECT_EQ(st::KeyNotModifiable, h.update(twoKeyRecord(9, 10, 5)));
}

TEST_F(KeyRules, AutoincrementAssignsOneAboveTheHighest) {
    // Key 0: a modifiable 4-byte autoincrement at offset 4; key 1: a 2-byte one at offset 8.
    Handle h;
    openNew(h, {16, {{seg(5, 4, type::AutoIncrement, kf::Modifiable)}, {seg(9, 2, type::AutoIncrement)}}});
    // Inserts id (0: assign) and returns {id, second field} as stored in the caller's buffer.
    auto insert = [&](int32_t id) -> std::pair<int64_t, int64_t> {
        Bytes r = record(16, {{4, int32Key(id)}});
        h.key.fill(0xEE);
        int16_t status = h.insert(r);
        if (status != st::Ok) {
            EXPECT_EQ(r, h.written) << "a refused insert changed the caller's buffer";
            return {-status, -status};
        }
        EXPECT_EQ(slice(h.written, 4, 4), h.keyValue(4)) << "key buffer holds the named key";
        EXPECT_EQ(0xEE, h.key[4]);
        return {int32_t(readLe(h.written.data() + 4, 4)), int16_t(readLe(h.written.data() + 8, 2))};
    };
    using P = std::pair<int64_t, int64_t>;
    EXPECT_EQ(P(1, 1), insert(0));
    EXPECT_EQ(P(2, 2), insert(0));
    EXPECT_EQ(P(10, 3), insert(10));
    EXPECT_EQ(P(-st::Duplicate, -st::Duplicate), insert(10));
    EXPECT_EQ(P(11, 4), insert(0));
    // The highest one deleted can be handed out again, a lower one not.
    ASSERT_EQ(st::Ok, h.erase());
    EXPECT_EQ(P(11, 4), insert(0));
    ASSERT_EQ(st::Ok, h.find(op::GetEqual, int32Key(1)));
    ASSERT_EQ(st::Ok, h.erase());
    EXPECT_EQ(P(12, 5), insert(0));
    ASSERT_EQ(st::Ok, h.find(op::GetEqual, int32Key(12)));
    EXPECT_EQ(record(16, {{4, int32Key(12)}, {8, le(5, 2)}}), h.data);

    // Update with 0 assigns as well; a non-zero value is kept.
    ASSERT_EQ(st::Ok, h.find(op::GetEqual, int32Key(2)));
    ASSERT_EQ(st::Ok, h.update(record(16, {{0, le(9, 1)}, {4, int32Key(0)}, {8, le(2, 2)}})));
    EXPECT_EQ(record(16, {{0, le(9, 1)}, {4, int32Key(13)}, {8, le(2, 2)}}), h.written);
    ASSERT_EQ(st::Ok, h.find(op::GetEqual, int32Key(13)));
    EXPECT_EQ(9, h.data[0]);
    EXPECT_EQ(st::NotFound, h.find(op::GetEqual, int32Key(2)));
}

TEST_F(KeyRules, AutoincrementStartsAtOneWhenNoValueIsPositive) {
    Handle h;
    openNew(h, {8, {{seg(1, 2, type::AutoIncrement)}}});
    ASSERT_EQ(st::Ok, h.insert(record(8, {{0, le(uint16_t(-5), 2)}})));
    ASSERT_EQ(st::Ok, h.insert(record(8, {{0, le(0, 2)}})));
    EXPECT_EQ(le(1, 2), slice(h.written, 0, 2));
    EXPECT_EQ((std::vector<Bytes>{le(uint16_t(-5), 2), le(1, 2)}), fields(h.readAll(), 0, 2));
}

// Key 1 is a null key over two 2-byte segments, null bytes 0x20 and 0x00: each segment has its own.
FileLayout nullKeyFile(uint16_t extra) {
    return {16,
            {{seg(5, 4, type::Integer)},
             {seg(9, 2, type::String, kf::Null | kf::Dup | kf::Modifiable | extra, 0x20), seg(11, 2, type::String, 0, 0x00)}}};
}
Bytes nullKeyRecord(int tag, std::string_view first, std::string_view second) {
    return record(16, {{0, le(tag, 1)}, {4, int32Key(tag)}, {8, text(first, 2)}, {10, text(second, 2)}});
}

TEST_F(KeyRules, NullKeysHaveNoEntry) {
    for (bool anySegment : {false, true}) {
        SCOPED_TRACE(anySegment ? "any segment null" : "all segments null");
        Handle h;
        openNew(h, nullKeyFile(anySegment ? kf::AnyNull : 0), anySegment ? "any.dat" : "all.dat");
        ASSERT_EQ(st::Ok, h.insert(nullKeyRecord(1, "  ", ""), 1));
        EXPECT_EQ(st::NoCurrency, h.get(op::GetNext, 1)) << "insert of a null key leaves no currency";
        ASSERT_EQ(st::Ok, h.insert(nullKeyRecord(2, "AB", "")));
        ASSERT_EQ(st::Ok, h.insert(nullKeyRecord(3, "  ", "")));
        ASSERT_EQ(st::Ok, h.insert(nullKeyRecord(5, "  ", "  ")));
        ASSERT_EQ(st::Ok, h.insert(nullKeyRecord(4, "AB", "CD")));
        EXPECT_EQ(anySegment ? std::vector<int>({4}) : std::vector<int>({5, 2, 4}), tags(h.readAll(1)));
        EXPECT_EQ(st::NotFound, h.find(op::GetEqual, text("  ", 4), 1));
        EXPECT_EQ(5u, h.count());
        // An update that makes the key null drops the entry; one that fills it adds it.
        ASSERT_EQ(st::Ok, h.find(op::GetEqual, int32Key(4)));
        ASSERT_EQ(st::Ok, h.update(nullKeyRecord(4, "  ", "")));
        ASSERT_EQ(st::Ok, h.find(op::GetEqual, int32Key(1)));
        ASSERT_EQ(st::Ok, h.update(nullKeyRecord(1, "ZZ", "ZZ")));
        EXPECT_EQ(anySegment ? std::vector<int>({1}) : std::vector<int>({5, 2, 1}), tags(h.readAll(1)));
    }
}

TEST_F(KeyRules, NullValueByteMeansNothingWithoutTheNullFlag) {
    Handle h;
    openNew(h, {16, {{seg(5, 4, type::Integer)}, {seg(9, 4, type::String, kf::Dup, 0x20)}}});
    ASSERT_EQ(st::Ok, h.insert(nullKeyRecord(1, "  ", "  "), 1));
    EXPECT_EQ(st::End, h.get(op::GetNext, 1)) << "the insert left a currency on key 1";
    EXPECT_EQ((std::vector<int>{1}), tags(h.readAll(1)));
}

TEST_F(KeyRules, UniqueNullKeyNeverCollides) {
    Handle h;
    openNew(h, {16, {{seg(5, 4, type::Integer)}, {seg(9, 4, type::String, kf::Null, 0)}}});
    ASSERT_EQ(st::Ok, h.insert(twoKeyRecord(1, 1, 0)));
    ASSERT_EQ(st::Ok, h.insert(twoKeyRecord(2, 2, 0)));
    ASSERT_EQ(st::Ok, h.insert(twoKeyRecord(3, 3, 7)));
    EXPECT_EQ(st::Duplicate, h.insert(twoKeyRecord(4, 4, 7)));
    EXPECT_EQ((std::vector<int>{3}), tags(h.readAll(1)));
}

}  // namespace
}  // namespace conformance
