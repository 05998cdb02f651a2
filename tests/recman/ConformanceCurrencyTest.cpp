// Current record, logical currency and physical position after each kind of operation.
#include "ConformanceFixture.h"

namespace conformance {
namespace {

// Five records of twoKeyFile(): tag t has key 0 = 10 t and key 1 = 60 - 10 t, inserted as 3, 1, 5, 2, 4,
// so that key 0 order (1..5), key 1 order (5..1) and physical order (3 1 5 2 4) all differ.
class Currency : public Conformance {
protected:
    void SetUp() override {
        openNew(h, twoKeyFile());
        for (int t : {3, 1, 5, 2, 4})
            ASSERT_EQ(st::Ok, h.insert(rec(t)));
        ASSERT_EQ(st::Ok, fresh.open(path()));
    }
    static Bytes rec(int tag) { return twoKeyRecord(tag, 10 * tag, 60 - 10 * tag); }
    // Tag of the record an operation returns, or minus its status.
    static int tagOf(Handle& handle, uint16_t operation, int8_t k = 0) {
        int16_t status = handle.get(operation, k);
        return status == st::Ok ? handle.data[0] : -status;
    }
    static int find(Handle& handle, int tag, int8_t k = 0) {
        handle.setKey(int32Key(k == 0 ? 10 * tag : 60 - 10 * tag));
        return tagOf(handle, op::GetEqual, k);
    }

    Handle h;      // inserted the records
    Handle fresh;  // just opened
};

TEST_F(Currency, AfterOpenThereIsNoCurrentRecordNorLogicalCurrency) {
    EXPECT_EQ(-st::NoCurrency, tagOf(fresh, op::GetNext));
    EXPECT_EQ(-st::NoCurrency, tagOf(fresh, op::GetPrevious, 1));
    EXPECT_EQ(st::NoCurrency, fresh.update(rec(1)));
    EXPECT_EQ(st::NoCurrency, fresh.erase());
    EXPECT_EQ(3, tagOf(fresh, op::StepNext));
    Handle other;
    ASSERT_EQ(st::Ok, other.open(path()));
    EXPECT_EQ(4, tagOf(other, op::StepPrevious));
}

TEST_F(Currency, GetSetsAllThreePositions) {
    EXPECT_EQ(5, find(fresh, 5));
    EXPECT_EQ(2, tagOf(fresh, op::StepNext)) << "physical position is the found record";
    EXPECT_EQ(4, find(fresh, 4, 1));
    EXPECT_EQ(3, tagOf(fresh, op::GetNext, 1));
    EXPECT_EQ(-st::OtherKeyCurrency, tagOf(fresh, op::GetNext, 0));
    EXPECT_EQ(-st::OtherKeyCurrency, tagOf(fresh, op::GetPrevious, 0));
    EXPECT_EQ(2, tagOf(fresh, op::GetNext, 1)) << "a refused Get Next moved nothing";
    ASSERT_EQ(st::Ok, fresh.update(twoKeyRecord(2, 20, 40)));
}

TEST_F(Currency, InsertBecomesCurrentInTheNamedKey) {
    ASSERT_EQ(st::Ok, fresh.insert(twoKeyRecord(6, 25, 35), 1));
    EXPECT_EQ(2, tagOf(fresh, op::GetNext, 1));
    ASSERT_EQ(st::Ok, fresh.insert(twoKeyRecord(7, 35, 1)));
    EXPECT_EQ(4, tagOf(fresh, op::GetNext));
    ASSERT_EQ(st::Ok, fresh.insert(twoKeyRecord(8, 36, 2)));
    EXPECT_EQ(-st::OtherKeyCurrency, tagOf(fresh, op::GetNext, 1));
    EXPECT_EQ(-st::End, tagOf(fresh, op::StepNext)) << "the new record is the last physically";
    ASSERT_EQ(st::Ok, fresh.insert(twoKeyRecord(9, 37, 3)));
    EXPECT_EQ(8, tagOf(fresh, op::StepPrevious));
    // The insert's record is current: Update and Delete act on it.
    ASSERT_EQ(st::Ok, fresh.insert(twoKeyRecord(10, 38, 4)));
    ASSERT_EQ(st::Ok, fresh.erase());
    EXPECT_EQ(st::NotFound, fresh.find(op::GetEqual, int32Key(38)));
    EXPECT_EQ(9u, fresh.count());
}

TEST_F(Currency, UpdateFollowsTheRecordInItsKeyAndBreaksOthers) {
    ASSERT_EQ(2, find(fresh, 2));
    ASSERT_EQ(st::Ok, fresh.update(twoKeyRecord(2, 45, 40)));
    EXPECT_EQ(5, tagOf(fresh, op::GetNext));
    EXPECT_EQ(2, tagOf(fresh, op::GetPrevious));
    EXPECT_EQ(4, tagOf(fresh, op::GetPrevious));

    // Currency on key 0, update through key 1: broken for both keys until a new position.
    ASSERT_EQ(3, find(fresh, 3));
    ASSERT_EQ(st::Ok, fresh.update(twoKeyRecord(3, 30, 31), 1));
    EXPECT_EQ(-st::OtherKeyCurrency, tagOf(fresh, op::GetNext, 0));
    EXPECT_EQ(-st::OtherKeyCurrency, tagOf(fresh, op::GetPrevious, 1));
    EXPECT_EQ(-st::NotFound, find(fresh, 9)) << "a failed Get leaves the currency broken";
    EXPECT_EQ(-st::OtherKeyCurrency, tagOf(fresh, op::GetNext, 0));
    EXPECT_EQ(1, tagOf(fresh, op::StepNext)) << "physical position unchanged by update";
    EXPECT_EQ(-st::NoCurrency, tagOf(fresh, op::GetNext, 0));
    ASSERT_EQ(st::Ok, fresh.update(twoKeyRecord(1, 10, 30), 1));
    EXPECT_EQ(1, tagOf(fresh, op::GetFirst));
    EXPECT_EQ(3, tagOf(fresh, op::GetNext)) << "2 moved to 45";
}

TEST_F(Currency, DeleteLeavesThePositionBetweenTheNeighbours) {
    ASSERT_EQ(3, find(fresh, 3));
    ASSERT_EQ(st::Ok, fresh.erase());
    EXPECT_EQ(st::NoCurrency, fresh.erase());
    EXPECT_EQ(st::NoCurrency, fresh.update(rec(3)));
    EXPECT_EQ(4, tagOf(fresh, op::GetNext));

    ASSERT_EQ(4, find(fresh, 4));
    ASSERT_EQ(st::Ok, fresh.erase());
    EXPECT_EQ(2, tagOf(fresh, op::GetPrevious));

    // Physically: 3 1 5 2 4 less 3 and 4 is 1 5 2; around a deleted 5 lie 1 and 2.
    ASSERT_EQ(5, find(fresh, 5));
    ASSERT_EQ(st::Ok, fresh.erase());
    EXPECT_EQ(2, tagOf(fresh, op::StepNext));
    ASSERT_EQ(st::Ok, fresh.insert(rec(5)));
    ASSERT_EQ(st::Ok, fresh.erase());
    EXPECT_EQ(2, tagOf(fresh, op::StepPrevious));
}

TEST_F(Currency, DeletingTheFirstLeavesNothingBefore) {
    ASSERT_EQ(1, tagOf(fresh, op::GetFirst));
    ASSERT_EQ(st::Ok, fresh.erase());
    EXPECT_EQ(-st::End, tagOf(fresh, op::GetPrevious));
    EXPECT_EQ(2, tagOf(fresh, op::GetNext));
    ASSERT_EQ(3, tagOf(fresh, op::StepFirst));
    ASSERT_EQ(st::Ok, fresh.erase());
    EXPECT_EQ(-st::End, tagOf(fresh, op::StepPrevious));
    EXPECT_EQ(5, tagOf(fresh, op::StepNext));
}

TEST_F(Currency, DeleteThroughAnotherKeyBreaksTheCurrency) {
    ASSERT_EQ(3, find(fresh, 3, 1));
    ASSERT_EQ(st::Ok, fresh.erase(0));
    EXPECT_EQ(-st::OtherKeyCurrency, tagOf(fresh, op::GetNext, 1));
    EXPECT_EQ(-st::OtherKeyCurrency, tagOf(fresh, op::GetNext, 0));
    // An insert sets a new position.
    ASSERT_EQ(st::Ok, fresh.insert(rec(3)));
    EXPECT_EQ(4, tagOf(fresh, op::GetNext));
}

TEST_F(Currency, FirstThenDeleteAndNextEmptiesTheFile) {
    int16_t status = fresh.get(op::GetFirst, 1);
    while (status == st::Ok) {
        ASSERT_EQ(st::Ok, fresh.erase(1));
        status = fresh.get(op::GetNext, 1);
    }
    EXPECT_EQ(st::End, status);
    EXPECT_EQ(0u, fresh.count());
}

TEST_F(Currency, FailedGetsChangeNothing) {
    ASSERT_EQ(4, find(fresh, 4));
    EXPECT_EQ(5, tagOf(fresh, op::GetNext));
    EXPECT_EQ(-st::End, tagOf(fresh, op::GetNext));
    EXPECT_EQ(-st::End, tagOf(fresh, op::GetNext));
    EXPECT_EQ(4, tagOf(fresh, op::GetPrevious));

    EXPECT_EQ(-st::NotFound, find(fresh, 7));
    EXPECT_EQ(5, tagOf(fresh, op::GetNext));
    fresh.setKey(int32Key(99));
    EXPECT_EQ(-st::End, tagOf(fresh, op::GetGreater));
    EXPECT_EQ(4, tagOf(fresh, op::GetPrevious));
    // The current record is still the last one found.
    EXPECT_EQ(-st::NotFound, find(fresh, 8));
    ASSERT_EQ(st::Ok, fresh.update(twoKeyRecord(4, 40, 99)));
    EXPECT_EQ(4, fresh.readAll(1).back()[0]);
}

TEST_F(Currency, StepDropsTheLogicalCurrency) {
    ASSERT_EQ(1, tagOf(fresh, op::GetFirst));
    EXPECT_EQ(5, tagOf(fresh, op::StepNext));
    EXPECT_EQ(-st::NoCurrency, tagOf(fresh, op::GetNext));
    EXPECT_EQ(-st::NoCurrency, tagOf(fresh, op::GetPrevious, 1));
    ASSERT_EQ(st::Ok, fresh.update(twoKeyRecord(5, 50, 11)));
    EXPECT_EQ(3, tagOf(fresh, op::StepFirst));
    EXPECT_EQ(-st::End, tagOf(fresh, op::StepPrevious));
    EXPECT_EQ(1, tagOf(fresh, op::StepNext)) << "a failed step moved nothing";
}

TEST_F(Currency, StatVersionAndUnlockLeavePositions) {
    ASSERT_EQ(2, find(fresh, 2));
    EXPECT_EQ(5u, fresh.count());
    uint8_t version[5];
    uint32_t length = 5;
    ASSERT_EQ(st::Ok, fresh.call(op::Version, version, &length, 0));
    EXPECT_EQ(st::LockMix, fresh.unlock(0));
    EXPECT_EQ(3, tagOf(fresh, op::GetNext));
    EXPECT_EQ(1, tagOf(fresh, op::StepNext));
}

TEST_F(Currency, PositionsAreValuesThatSurviveOtherHandlesChanges) {
    ASSERT_EQ(3, find(fresh, 3));
    ASSERT_EQ(3, find(h, 3));
    ASSERT_EQ(st::Ok, h.erase());
    EXPECT_EQ(4, tagOf(fresh, op::GetNext));

    ASSERT_EQ(2, find(fresh, 2));
    ASSERT_EQ(2, find(h, 2));
    ASSERT_EQ(st::Ok, h.update(twoKeyRecord(2, 55, 40)));
    EXPECT_EQ(1, tagOf(fresh, op::GetPrevious)) << "continues from the remembered value 20";
    // Physically 1 5 2 4 remain; from 1 (remembered number) the next is 5.
    EXPECT_EQ(5, tagOf(fresh, op::StepNext));
    ASSERT_EQ(5, find(h, 5));
    ASSERT_EQ(st::Ok, h.erase());
    EXPECT_EQ(2, tagOf(fresh, op::StepNext));
}

TEST_F(Currency, CopiedBlocksShareOnePosition) {
    Handle copy;
    copy.block = fresh.block;
    ASSERT_EQ(1, tagOf(fresh, op::GetFirst));
    EXPECT_EQ(2, tagOf(copy, op::GetNext));
    EXPECT_EQ(3, tagOf(fresh, op::GetNext));
    ASSERT_EQ(st::Ok, copy.erase());
    EXPECT_EQ(st::NoCurrency, fresh.erase());
    ASSERT_EQ(st::Ok, copy.close());
    EXPECT_EQ(-st::NotOpen, tagOf(fresh, op::GetFirst));
    fresh.isOpen = false;
}

using KeyNumbers = Conformance;

// Files without keys: Gets on key 0 act as Steps; everything else keyed answers 6.
TEST_F(KeyNumbers, FilesWithoutKeysReadGetsAsSteps) {
    Handle h;
    openNew(h, {8, {}});
    for (int t : {1, 2, 3})
        ASSERT_EQ(st::Ok, h.insert(record(8, {{0, le(t, 1)}}), int8_t(t * 3 - 5)));
    uint32_t length = 8;
    Bytes r = record(8, {{0, le(4, 1)}});
    ASSERT_EQ(st::Ok, BTRCALL(op::Insert, h.block.data(), r.data(), &length, nullptr, 0, 0))
        << "no key buffer is needed";
    EXPECT_EQ((std::vector<int>{1, 2, 3, 4}), tags(h.readAll()));
    EXPECT_EQ((std::vector<int>{4, 3, 2, 1}), tags(h.readAllBackward()));

    h.key.fill(0xEE);
    ASSERT_EQ(st::Ok, h.get(op::GetFirst));
    ASSERT_EQ(st::Ok, h.step(op::StepNext));
    EXPECT_EQ(2, h.data[0]) << "Get First set the physical position";
    EXPECT_EQ(Bytes(kKeyBufferSize, 0xEE), h.keyValue(kKeyBufferSize));
    for (uint16_t keyed : {op::GetEqual, op::GetGreater, op::GetGreaterOrEqual, op::GetLess, op::GetLessOrEqual}) {
        SCOPED_TRACE(keyed);
        EXPECT_EQ(st::BadKeyNumber, h.get(keyed, 0));
    }
    EXPECT_EQ(st::BadKeyNumber, h.get(op::GetFirst, 1));
    EXPECT_EQ(st::BadKeyNumber, h.get(op::GetNext, -1));
    ASSERT_EQ(st::Ok, h.update(record(8, {{0, le(9, 1)}}), 7));
    ASSERT_EQ(st::Ok, h.erase(-3));
    EXPECT_EQ((std::vector<int>{1, 3, 4}), tags(h.stepAll()));
}

TEST_F(KeyNumbers, OutOfRangeInAFileWithKeys) {
    Handle h;
    openNew(h, twoKeyFile());
    ASSERT_EQ(st::Ok, h.insert(twoKeyRecord(1, 1)));
    for (int8_t k : {int8_t(2), int8_t(-1), int8_t(127)}) {
        SCOPED_TRACE(int(k));
        EXPECT_EQ(st::BadKeyNumber, h.insert(twoKeyRecord(2, 2), k));
        EXPECT_EQ(st::BadKeyNumber, h.get(op::GetFirst, k));
        EXPECT_EQ(st::BadKeyNumber, h.find(op::GetEqual, int32Key(1), k));
        EXPECT_EQ(st::BadKeyNumber, h.update(twoKeyRecord(1, 1), k));
        EXPECT_EQ(st::BadKeyNumber, h.erase(k));
    }
    EXPECT_EQ(1u, h.count());
}

}  // namespace
}  // namespace conformance
