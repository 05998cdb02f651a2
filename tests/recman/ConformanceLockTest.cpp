// Record locks and passive conflicts between two handles of one process.
#include "ConformanceFixture.h"

namespace conformance {
namespace {

// Records tagged 1, 2, 3 with key 0 = 10, 20, 30; handles a and b on the file.
class Locks : public Conformance {
protected:
    void SetUp() override {
        openNew(a, twoKeyFile());
        for (int t : {1, 2, 3})
            ASSERT_EQ(st::Ok, a.insert(twoKeyRecord(t, 10 * t)));
        ASSERT_EQ(st::Ok, b.open(path()));
    }
    // Get Equal on key 0 with a lock bias; returns the status.
    static int16_t lock(Handle& h, int tag, uint16_t bias = op::Single) {
        return h.find(op::GetEqual + bias, int32Key(10 * tag));
    }
    static int16_t read(Handle& h, int tag) { return lock(h, tag, 0); }

    Handle a, b;
};

TEST_F(Locks, ALockedRecordRefusesOtherHandlesLockingReadsAndWrites) {
    ASSERT_EQ(st::Ok, read(b, 3));
    ASSERT_EQ(st::Ok, lock(a, 1));

    Bytes buffer(16, 0xCC);
    uint32_t length = 16;
    b.setKey(int32Key(10));
    EXPECT_EQ(st::Locked, b.call(op::GetEqual + op::Single, buffer.data(), &length, 0));
    EXPECT_EQ(Bytes(16, 0xCC), buffer);
    EXPECT_EQ(16u, length);
    EXPECT_EQ(st::Ok, b.get(op::GetPrevious)) << "the refused read moved nothing";
    EXPECT_EQ(2, b.data[0]);

    ASSERT_EQ(st::Ok, read(b, 1)) << "plain reads are never refused";
    EXPECT_EQ(st::Locked, b.update(twoKeyRecord(1, 10, 7)));
    EXPECT_EQ(st::Locked, b.erase());
    EXPECT_EQ(st::Ok, b.insert(twoKeyRecord(4, 40)));
    EXPECT_EQ(4u, b.count());

    // The holder's update releases its single lock.
    ASSERT_EQ(st::Ok, a.update(twoKeyRecord(1, 10, 5)));
    EXPECT_EQ(st::Ok, lock(b, 1));
    EXPECT_EQ(st::Locked, lock(a, 1));
}

TEST_F(Locks, EveryBiasAndStepLocks) {
    struct Row {
        uint16_t operation;
        int8_t unlockKind;
    };
    const Row rows[] = {{op::GetEqual + op::SingleWait, 0},     {op::GetEqual + op::Single, 0},
                        {op::GetEqual + op::MultipleWait, -2},  {op::GetEqual + op::Multiple, -2},
                        {op::GetFirst + op::Single, 0},         {op::GetLessOrEqual + op::Multiple, -2},
                        {op::StepFirst + op::Single, 0},        {op::StepFirst + op::Multiple, -2}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.operation);
        ASSERT_EQ(st::Ok, a.find(row.operation, int32Key(10)));
        ASSERT_EQ(1, a.data[0]);
        EXPECT_EQ(st::Locked, lock(b, 1));
        EXPECT_EQ(st::Locked, lock(b, 1, op::Multiple));
        EXPECT_EQ(st::Locked, b.get(op::StepFirst + op::SingleWait));
        ASSERT_EQ(st::Ok, a.unlock(row.unlockKind));
        EXPECT_EQ(st::Ok, lock(b, 1, op::MultipleWait));
        ASSERT_EQ(st::Ok, b.unlock(-2));
    }
}

TEST_F(Locks, ANewSingleLockReplacesTheOldOneAndAFailedOneKeepsIt) {
    ASSERT_EQ(st::Ok, lock(a, 1));
    ASSERT_EQ(st::Ok, lock(a, 1)) << "locking again one's own record";
    ASSERT_EQ(st::Ok, lock(a, 2));
    ASSERT_EQ(st::Ok, lock(b, 1));

    EXPECT_EQ(st::NotFound, lock(a, 9));
    EXPECT_EQ(st::Locked, lock(a, 1));
    ASSERT_EQ(st::Ok, read(a, 3));
    EXPECT_EQ(st::Locked, lock(b, 2)) << "a still holds record 2";

    // Updating another record, or inserting one, leaves the lock where it is.
    ASSERT_EQ(st::Ok, a.update(twoKeyRecord(3, 30, 1)));
    EXPECT_EQ(st::Locked, lock(b, 2));
    ASSERT_EQ(st::Ok, a.insert(twoKeyRecord(4, 40)));
    EXPECT_EQ(st::Locked, lock(b, 2));
    ASSERT_EQ(st::Ok, a.unlock(0));
    EXPECT_EQ(st::LockMix, a.unlock(0));
    EXPECT_EQ(st::Ok, lock(b, 2));
}

TEST_F(Locks, MultipleLocksLastUntilUnlockDeleteOrClose) {
    ASSERT_EQ(st::Ok, lock(a, 1, op::Multiple));
    ASSERT_EQ(st::Ok, lock(a, 2, op::Multiple));
    ASSERT_EQ(st::Ok, lock(a, 2, op::Multiple));
    ASSERT_EQ(st::Ok, lock(a, 3, op::Multiple));
    ASSERT_EQ(st::Ok, a.update(twoKeyRecord(3, 30, 1)));
    for (int tag : {1, 2, 3}) {
        SCOPED_TRACE(tag);
        EXPECT_EQ(st::Locked, lock(b, tag));
    }
    ASSERT_EQ(st::Ok, read(b, 2));
    EXPECT_EQ(st::Locked, b.erase());
    // Delete releases the deleted record's lock only.
    ASSERT_EQ(st::Ok, read(a, 2));
    ASSERT_EQ(st::Ok, a.erase());
    ASSERT_EQ(st::Ok, a.unlock(-2));
    EXPECT_EQ(st::LockMix, a.unlock(-2));
    EXPECT_EQ(st::Ok, lock(b, 1));
    EXPECT_EQ(st::Ok, lock(b, 3));

    ASSERT_EQ(st::Ok, b.unlock(0));
    ASSERT_EQ(st::Ok, lock(a, 1, op::Multiple));
    ASSERT_EQ(st::Ok, a.close());
    EXPECT_EQ(st::Ok, lock(b, 1));
}

TEST_F(Locks, SingleAndMultipleLocksDoNotMixOnOneHandle) {
    ASSERT_EQ(st::Ok, lock(a, 1));
    EXPECT_EQ(st::LockMix, lock(a, 2, op::Multiple));
    EXPECT_EQ(st::LockMix, lock(a, 2, op::MultipleWait));
    EXPECT_EQ(st::LockMix, a.unlock(-2));
    ASSERT_EQ(st::Ok, a.get(op::GetNext)) << "refusals left the position on record 1";
    EXPECT_EQ(2, a.data[0]);
    ASSERT_EQ(st::Ok, a.unlock(0));

    ASSERT_EQ(st::Ok, lock(a, 1, op::Multiple));
    EXPECT_EQ(st::LockMix, lock(a, 2));
    EXPECT_EQ(st::LockMix, lock(a, 2, op::SingleWait));
    EXPECT_EQ(st::LockMix, a.get(op::StepFirst + op::Single));
    EXPECT_EQ(st::LockMix, a.unlock(0));
    for (int8_t kind : {int8_t(-1), int8_t(-3), int8_t(-128)}) {
        SCOPED_TRACE(int(kind));
        EXPECT_EQ(st::BadUnlock, a.unlock(kind));
    }
    EXPECT_EQ(st::Locked, lock(b, 1));
}

TEST_F(Locks, UpdateOrDeleteOfARecordChangedSinceItWasReadAnswers80) {
    ASSERT_EQ(st::Ok, read(a, 1));
    ASSERT_EQ(st::Ok, read(b, 1));
    ASSERT_EQ(st::Ok, b.update(twoKeyRecord(1, 10, 100)));
    ASSERT_EQ(st::Ok, b.update(twoKeyRecord(1, 10, 101))) << "its own write is not a conflict";
    EXPECT_EQ(st::Changed, a.update(twoKeyRecord(1, 10, 200)));
    EXPECT_EQ(st::Changed, a.erase());
    ASSERT_EQ(st::Ok, read(a, 1));
    EXPECT_EQ(twoKeyRecord(1, 10, 101), a.data);
    EXPECT_EQ(st::Ok, a.update(twoKeyRecord(1, 10, 200)));

    ASSERT_EQ(st::Ok, read(a, 2));
    ASSERT_EQ(st::Ok, read(b, 2));
    ASSERT_EQ(st::Ok, b.erase());
    EXPECT_EQ(st::Changed, a.update(twoKeyRecord(2, 20, 1)));
    EXPECT_EQ(st::Changed, a.erase());
    EXPECT_EQ(2u, a.count());
}

TEST_F(Locks, TheLockHolderNeverMeets80) {
    ASSERT_EQ(st::Ok, read(b, 3));
    ASSERT_EQ(st::Ok, lock(a, 3));
    EXPECT_EQ(st::Locked, b.update(twoKeyRecord(3, 30, 9)));
    EXPECT_EQ(st::Ok, a.update(twoKeyRecord(3, 30, 8)));
    EXPECT_EQ(st::Changed, b.update(twoKeyRecord(3, 30, 9)));
}

using LockedReads = Conformance;

TEST_F(LockedReads, APartialReadTakesTheLock) {
    Handle a, b;
    openNew(a, {4, {{seg(1, 4, type::Integer)}}, kVariableLength});
    ASSERT_EQ(st::Ok, b.open(path()));
    ASSERT_EQ(st::Ok, a.insert(record(40, {{0, int32Key(1)}})));
    ASSERT_EQ(st::BadLength, a.get(op::GetFirst + op::Single, 0, 10));
    EXPECT_EQ(st::Locked, b.get(op::GetFirst + op::Single));
    ASSERT_EQ(st::Ok, a.unlock(0));
    EXPECT_EQ(st::Ok, b.get(op::GetFirst + op::Single));
}

TEST_F(Locks, CopiedBlocksShareLocksAndOverwrittenBlocksKeepThem) {
    Handle copy;
    copy.block = a.block;
    ASSERT_EQ(st::Ok, lock(copy, 1));
    ASSERT_EQ(st::Ok, a.update(twoKeyRecord(1, 10, 3))) << "the copy's lock is the handle's own";
    ASSERT_EQ(st::Ok, lock(a, 2));
    ASSERT_EQ(st::Ok, copy.unlock(0));
    ASSERT_EQ(st::Ok, lock(b, 2));
    ASSERT_EQ(st::Ok, b.unlock(0));

    // Opening again into a live block, or zeroing it, does not end the handle nor its lock.
    ASSERT_EQ(st::Ok, lock(a, 2));
    ASSERT_EQ(st::Ok, a.open(path()));
    EXPECT_EQ(st::Locked, lock(b, 2));
    ASSERT_EQ(st::Ok, lock(a, 3));
    a.block.fill(0);
    a.isOpen = false;
    EXPECT_EQ(st::Locked, lock(b, 3));
    EXPECT_EQ(st::Locked, lock(b, 2));
}

}  // namespace
}  // namespace conformance
