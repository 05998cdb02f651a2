// Malformed calls: operation codes, position blocks that hold no live handle, null and short
// buffers; and calls from several threads at once.
#include "ConformanceFixture.h"

#include <thread>

namespace conformance {
namespace {

using Calls = Conformance;

// Operations that need an open file, called with whatever block is given.
const uint16_t kHandleOperations[] = {op::Close,     op::Insert,    op::Update,   op::Delete,
                                      op::GetEqual,  op::GetFirst,  op::GetNext,  op::StepFirst,
                                      op::StepNext,  op::Stat,      op::Unlock,   op::GetFirst + op::Single};

void expectNoLiveHandle(void* block, const char* what) {
    SCOPED_TRACE(what);
    for (uint16_t operation : kHandleOperations) {
        SCOPED_TRACE(operation);
        Bytes data = twoKeyRecord(1, 1);
        uint32_t length = 16;
        std::array<uint8_t, kKeyBufferSize> key{};
        EXPECT_EQ(st::NotOpen, BTRCALL(operation, block, data.data(), &length, key.data(), 255, 0));
        EXPECT_EQ(16u, length);
    }
}

TEST_F(Calls, BlocksWithoutALiveHandleAnswer3) {
    std::string p = makeFile(twoKeyFile());
    expectNoLiveHandle(nullptr, "null");
    std::array<uint8_t, kBlockSize> block{};
    expectNoLiveHandle(block.data(), "zero");
    block.fill(0xA5);
    expectNoLiveHandle(block.data(), "garbage");

    Handle h;
    ASSERT_EQ(st::Ok, h.open(p));
    auto closed = h.block;
    ASSERT_EQ(st::Ok, h.close());
    expectNoLiveHandle(closed.data(), "closed");
    // A new handle in the same place has a new number: the stale copy stays dead.
    ASSERT_EQ(st::Ok, h.open(p));
    expectNoLiveHandle(closed.data(), "closed, block reused");
    EXPECT_EQ(0u, h.count()) << "nothing reached the file";

    PathBuffer key(p);
    uint32_t length = 0;
    EXPECT_EQ(st::NotOpen, BTRCALL(op::Open, nullptr, nullptr, &length, key.bytes.data(), key.length, 0));
}

TEST_F(Calls, UnofferedOperationsAnswer1BeforeAnythingElse) {
    Handle h;
    openNew(h, twoKeyFile());
    ASSERT_EQ(st::Ok, h.insert(twoKeyRecord(1, 1)));
    ASSERT_EQ(st::Ok, h.insert(twoKeyRecord(2, 2)));
    ASSERT_EQ(st::Ok, h.find(op::GetEqual, int32Key(1)));
    const uint16_t unoffered[] = {16, 17, 18, 19, 20, 21, 22, 23, 25, 28, 29, 30, 31, 32, 36, 38, 50, 55, 56, 62,
                                  99, 1019, 102, 114, 115, 126, 127, 201, 214, 226, 227, 255, 256, 500, 505,
                                  512, 612, 1000, 65535};
    for (uint16_t operation : unoffered) {
        SCOPED_TRACE(operation);
        EXPECT_EQ(st::BadOperation, BTRCALL(operation, nullptr, nullptr, nullptr, nullptr, 0, 0));
        Bytes data(16, 0xCC);
        uint32_t length = 16;
        h.key.fill(0xEE);
        EXPECT_EQ(st::BadOperation, h.call(operation, data.data(), &length, 0));
        EXPECT_EQ(Bytes(16, 0xCC), data);
        EXPECT_EQ(16u, length);
        EXPECT_EQ(0xEE, h.key[0]);
    }
    ASSERT_EQ(st::Ok, h.get(op::GetNext));
    EXPECT_EQ(2, h.data[0]);
    EXPECT_EQ(2u, h.count());
}

TEST_F(Calls, NullKeyBufferAnswers21WhereAKeyIsReadOrWritten) {
    Handle h;
    openNew(h, twoKeyFile());
    ASSERT_EQ(st::Ok, h.insert(twoKeyRecord(1, 1)));
    ASSERT_EQ(st::Ok, h.insert(twoKeyRecord(2, 2)));
    ASSERT_EQ(st::Ok, h.find(op::GetEqual, int32Key(1)));
    auto noKey = [&](uint16_t operation, Bytes data) {
        uint32_t length = static_cast<uint32_t>(data.size());
        return BTRCALL(operation, h.block.data(), data.data(), &length, nullptr, 255, 0);
    };
    for (uint16_t operation : {op::GetEqual, op::GetFirst, op::GetNext, op::GetLast, op::GetGreater,
                               op::GetLessOrEqual, uint16_t(op::GetFirst + op::Single)}) {
        SCOPED_TRACE(operation);
        EXPECT_EQ(st::NullKeyBuffer, noKey(operation, Bytes(16)));
    }
    EXPECT_EQ(st::NullKeyBuffer, noKey(op::Insert, twoKeyRecord(3, 3)));
    EXPECT_EQ(st::NullKeyBuffer, noKey(op::Update, twoKeyRecord(1, 1, 9)));
    EXPECT_EQ(2u, h.count());
    ASSERT_EQ(st::Ok, h.get(op::GetNext)) << "the refusals moved nothing";
    EXPECT_EQ(2, h.data[0]);

    // Steps, Delete and Stat take no key.
    EXPECT_EQ(st::Ok, noKey(op::StepFirst, Bytes(16)));
    EXPECT_EQ(st::Ok, noKey(op::Delete, Bytes()));
    EXPECT_EQ(st::Ok, noKey(op::Stat, Bytes(64)));
    EXPECT_EQ(1u, h.count());
}

TEST_F(Calls, NullDataBufferOrLengthCountsAsLengthZero) {
    Handle h;
    openNew(h, twoKeyFile());
    ASSERT_EQ(st::Ok, h.insert(twoKeyRecord(1, 1)));
    Bytes data(64);
    uint32_t length = 64;
    EXPECT_EQ(st::BadLength, h.call(op::Insert, nullptr, &length, 0));
    EXPECT_EQ(st::BadLength, h.call(op::Insert, data.data(), nullptr, 0));
    EXPECT_EQ(st::BadLength, h.call(op::Update, nullptr, &length, 0));

    Handle r;
    ASSERT_EQ(st::Ok, r.open(path()));
    EXPECT_EQ(st::BadLength, r.call(op::GetFirst, nullptr, &length, 0));
    EXPECT_EQ(64u, length);
    EXPECT_EQ(st::BadLength, r.call(op::GetFirst, data.data(), nullptr, 0));
    EXPECT_EQ(st::BadLength, r.call(op::StepFirst, nullptr, nullptr, 0));
    EXPECT_EQ(st::BadLength, r.call(op::Stat, nullptr, nullptr, 0));
    EXPECT_EQ(st::BadLength, BTRCALL(op::Version, nullptr, nullptr, nullptr, nullptr, 0, 0));
    EXPECT_EQ(st::NoCurrency, r.get(op::GetNext)) << "no read succeeded";
    EXPECT_EQ(st::NoCurrency, r.erase());
    EXPECT_EQ(1u, r.count());
    ASSERT_EQ(st::Ok, r.get(op::GetFirst));
    EXPECT_EQ(twoKeyRecord(1, 1), r.data);

    PathBuffer key(path("other.dat"));
    EXPECT_EQ(st::BadBlock, BTRCALL(op::Create, nullptr, nullptr, &length, key.bytes.data(), key.length, 0));
    Bytes block = createBlock(twoKeyFile());
    EXPECT_EQ(st::BadBlock, BTRCALL(op::Create, nullptr, block.data(), nullptr, key.bytes.data(), key.length, 0));
}

Bytes longer(Bytes r) {
    r.push_back(0);
    return r;
}

// When a call has several faults, the first in the documented order answers.
TEST_F(Calls, ChecksRunInOrder) {
    std::string p = makeFile(twoKeyFile());
    Handle a, b, readOnly;
    ASSERT_EQ(st::Ok, a.open(p));
    ASSERT_EQ(st::Ok, b.open(p));
    ASSERT_EQ(st::Ok, readOnly.open(p, -2));
    ASSERT_EQ(st::Ok, a.insert(twoKeyRecord(1, 10)));
    ASSERT_EQ(st::Ok, a.insert(twoKeyRecord(2, 20)));
    auto call = [](Handle& h, uint16_t operation, Bytes data, int8_t k, bool withKey = true) {
        uint32_t length = static_cast<uint32_t>(data.size());
        return BTRCALL(operation, h.block.data(), data.data(), &length, withKey ? h.key.data() : nullptr, 255, k);
    };
    // Insert: read-only, key number, key buffer, length, duplicate.
    EXPECT_EQ(st::Denied, call(readOnly, op::Insert, Bytes(3), 9, false));
    EXPECT_EQ(st::BadKeyNumber, call(a, op::Insert, Bytes(3), 9, false));
    EXPECT_EQ(st::NullKeyBuffer, call(a, op::Insert, Bytes(3), 0, false));
    EXPECT_EQ(st::BadLength, call(a, op::Insert, longer(twoKeyRecord(1, 10)), 0));
    // Update: current record before length; length before locks.
    EXPECT_EQ(st::NoCurrency, call(b, op::Update, Bytes(3), 0));
    ASSERT_EQ(st::Ok, b.find(op::GetEqual, int32Key(20)));
    ASSERT_EQ(st::Ok, a.find(op::GetEqual + op::Single, int32Key(20)));
    EXPECT_EQ(st::BadLength, call(b, op::Update, Bytes(3), 0));
    EXPECT_EQ(st::Locked, call(b, op::Update, twoKeyRecord(2, 10), 0));
    ASSERT_EQ(st::Ok, a.update(twoKeyRecord(2, 20, 1)));
    // Changed since read (80) before not-modifiable (10) and duplicate (5).
    EXPECT_EQ(st::Changed, call(b, op::Update, twoKeyRecord(2, 10), 0));
    // Gets: key number, key buffer, lock mix, currency, then a lock held elsewhere before a short buffer.
    EXPECT_EQ(st::BadKeyNumber, call(b, op::GetFirst, Bytes(16), 9, false));
    EXPECT_EQ(st::NullKeyBuffer, call(b, op::GetNext + op::Single, Bytes(16), 0, false));
    ASSERT_EQ(st::Ok, a.find(op::GetEqual + op::Single, int32Key(10)));
    ASSERT_EQ(st::Ok, a.step(op::StepLast));
    EXPECT_EQ(st::LockMix, call(a, op::GetNext + op::Multiple, Bytes(16), 0));
    EXPECT_EQ(st::NoCurrency, call(a, op::GetNext + op::Single, Bytes(16), 0));
    b.setKey(int32Key(10));
    EXPECT_EQ(st::Locked, call(b, op::GetEqual + op::Single, Bytes(4), 0));
}

TEST_F(Calls, ThreadsWorkOnOneFileAndOnSeveral) {
    makeFile(twoKeyFile(), "shared.dat");
    constexpr int kThreads = 4, kRecords = 40;
    std::vector<int16_t> failures(kThreads, 0);
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t] {
            // Each thread also creates a file of its own while the others work.
            const std::string mine = path("own" + std::to_string(t) + ".dat");
            Handle shared, own;
            if (shared.open(path("shared.dat")) || create(mine, twoKeyFile()) || own.open(mine))
                failures[t] = -1;
            for (int i = 0; i < kRecords && failures[t] == 0; ++i) {
                int32_t key = t * 1000 + i;
                if (int16_t s = shared.insert(twoKeyRecord(t, key)); s != st::Ok)
                    failures[t] = s;
                else if (int16_t s2 = own.insert(twoKeyRecord(t, key)); s2 != st::Ok)
                    failures[t] = s2;
                else if (int16_t s3 = shared.find(op::GetEqual, int32Key(key)); s3 != st::Ok)
                    failures[t] = s3;
            }
            if (failures[t] == 0 && (own.count() != uint32_t(kRecords) || shared.close() || own.close()))
                failures[t] = -2;
        });
    }
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(std::vector<int16_t>(kThreads, 0), failures);
    Handle check;
    ASSERT_EQ(st::Ok, check.open(path("shared.dat")));
    EXPECT_EQ(uint32_t(kThreads * kRecords), check.count());
    EXPECT_EQ(size_t(kThreads * kRecords), check.readAll().size());
}

}  // namespace
}  // namespace conformance
