// Record lengths (fixed and variable), partial reads, what a read writes and physical order.
#include "ConformanceFixture.h"

namespace conformance {
namespace {

using Records = Conformance;

// Variable-length file: a 4-byte fixed part holding a unique INTEGER key at offset 0.
FileLayout variableFile() { return {4, {{seg(1, 4, type::Integer, kf::Modifiable)}}, kVariableLength}; }

Bytes variableRecord(int32_t id, size_t length) {
    Bytes r(length);
    for (size_t i = 0; i < length; ++i)
        r[i] = static_cast<uint8_t>(i * 7 + id);
    put(r, 0, int32Key(id));
    return r;
}

TEST_F(Records, FixedLengthInsertAndUpdateNeedExactlyTheRecordLength) {
    Handle h;
    openNew(h, twoKeyFile());
    Bytes r = twoKeyRecord(1, 1);
    for (size_t wrong : {size_t(0), size_t(15), size_t(17)}) {
        SCOPED_TRACE(wrong);
        Bytes b = r;
        b.resize(wrong);
        EXPECT_EQ(st::BadLength, h.insert(b));
    }
    EXPECT_EQ(0u, h.count());
    // Insert and Update leave the length alone.
    uint32_t length = 16;
    ASSERT_EQ(st::Ok, h.call(op::Insert, r.data(), &length, 0));
    EXPECT_EQ(16u, length);
    Bytes longer = twoKeyRecord(1, 2);
    longer.push_back(0);
    EXPECT_EQ(st::BadLength, h.update(longer));
    ASSERT_EQ(st::Ok, h.call(op::Update, r.data(), &length, 0));
    EXPECT_EQ(16u, length);
    ASSERT_EQ(st::Ok, h.get(op::GetFirst));
    EXPECT_EQ(r, h.data);
}

TEST_F(Records, VariableLengthRecordsKeepTheirLength) {
    Handle h;
    openNew(h, variableFile());
    EXPECT_EQ(st::BadLength, h.insert(Bytes(3, 1)));
    EXPECT_EQ(st::BadRecordLength, h.insert(variableRecord(1, 65536)));
    EXPECT_EQ(0u, h.count());
    const size_t lengths[] = {4, 1124, 3650, 65535};
    for (int32_t id = 0; id < 4; ++id)
        ASSERT_EQ(st::Ok, h.insert(variableRecord(id, lengths[id])));
    std::vector<Bytes> all = h.readAll();
    ASSERT_EQ(4u, all.size());
    for (int32_t id = 0; id < 4; ++id)
        EXPECT_EQ(variableRecord(id, lengths[id]), all[id]) << "record " << id;

    // Update changes the length both ways.
    ASSERT_EQ(st::Ok, h.find(op::GetEqual, int32Key(1)));
    ASSERT_EQ(st::Ok, h.update(variableRecord(1, 10)));
    ASSERT_EQ(st::Ok, h.find(op::GetEqual, int32Key(0)));
    EXPECT_EQ(st::BadLength, h.update(Bytes(2, 0)));
    EXPECT_EQ(st::BadRecordLength, h.update(variableRecord(0, 70000)));
    ASSERT_EQ(st::Ok, h.update(variableRecord(0, 2000)));
    EXPECT_EQ(variableRecord(1, 10), h.stepAll()[1]);
    EXPECT_EQ(variableRecord(0, 2000), h.stepAll()[0]);
}

TEST_F(Records, ReadBufferShorterThanTheFixedPartGetsNothing) {
    Handle h;
    openNew(h, twoKeyFile());
    ASSERT_EQ(st::Ok, h.insert(twoKeyRecord(1, 10)));
    ASSERT_EQ(st::Ok, h.insert(twoKeyRecord(2, 20)));
    ASSERT_EQ(st::Ok, h.get(op::GetFirst));

    for (uint16_t operation : {op::GetNext, op::GetLast, op::StepNext, op::StepLast}) {
        SCOPED_TRACE(operation);
        Bytes buffer(15, 0xCC);
        uint32_t length = 15;
        h.key.fill(0xEE);
        EXPECT_EQ(st::BadLength, h.call(operation, buffer.data(), &length, 0));
        EXPECT_EQ(15u, length);
        EXPECT_EQ(Bytes(15, 0xCC), buffer);
        EXPECT_EQ(0xEE, h.key[0]);
    }
    // Nothing moved: Get Next still follows the first record.
    ASSERT_EQ(st::Ok, h.get(op::GetNext));
    EXPECT_EQ(2, h.data[0]);
}

TEST_F(Records, PartialReadOfAVariableRecordCountsAsARead) {
    Handle h;
    openNew(h, variableFile());
    for (int32_t id = 1; id <= 3; ++id)
        ASSERT_EQ(st::Ok, h.insert(variableRecord(id, 100)));

    Bytes buffer(60, 0xCC);
    uint32_t length = 50;
    h.setKey(int32Key(2));
    h.key[4] = 0xEE;
    ASSERT_EQ(st::BadLength, h.call(op::GetEqual, buffer.data(), &length, 0));
    EXPECT_EQ(50u, length);
    EXPECT_EQ(slice(variableRecord(2, 100), 0, 50), slice(buffer, 0, 50));
    EXPECT_EQ(Bytes(10, 0xCC), slice(buffer, 50, 10));
    EXPECT_EQ(int32Key(2), h.keyValue(4));
    EXPECT_EQ(0xEE, h.key[4]);
    // Currency and current record moved to it.
    ASSERT_EQ(st::Ok, h.get(op::GetNext));
    EXPECT_EQ(variableRecord(3, 100), h.data);
    ASSERT_EQ(st::BadLength, h.get(op::StepPrevious, 0, 20));
    EXPECT_EQ(slice(variableRecord(2, 100), 0, 20), h.data);
    ASSERT_EQ(st::Ok, h.update(variableRecord(2, 8)));
    EXPECT_EQ(variableRecord(2, 8), h.stepAll()[1]);
}

TEST_F(Records, ReadsNeverWritePastTheRecord) {
    Handle h;
    openNew(h, variableFile());
    ASSERT_EQ(st::Ok, h.insert(variableRecord(5, 9)));
    Bytes buffer(64, 0xCC);
    uint32_t length = 64;
    ASSERT_EQ(st::Ok, h.call(op::StepFirst, buffer.data(), &length, 0));
    EXPECT_EQ(9u, length);
    EXPECT_EQ(variableRecord(5, 9), slice(buffer, 0, 9));
    EXPECT_EQ(Bytes(55, 0xCC), slice(buffer, 9, 55));
}

TEST_F(Records, PhysicalOrderIsInsertionOrderAndNumbersAreNeverReused) {
    Handle h;
    openNew(h, twoKeyFile());
    // Key order differs from insertion order.
    for (int tag : {1, 2, 3, 4})
        ASSERT_EQ(st::Ok, h.insert(twoKeyRecord(tag, 100 - tag)));
    EXPECT_EQ((std::vector<int>{1, 2, 3, 4}), tags(h.stepAll()));
    EXPECT_EQ((std::vector<int>{4, 3, 2, 1}), tags(h.readAll()));

    // Update keeps the place even when the key moves; a deleted last number is not given again.
    ASSERT_EQ(st::Ok, h.find(op::GetEqual, int32Key(98)));
    ASSERT_EQ(st::Ok, h.update(twoKeyRecord(2, 500)));
    ASSERT_EQ(st::Ok, h.step(op::StepLast));
    ASSERT_EQ(st::Ok, h.erase());
    ASSERT_EQ(st::Ok, h.insert(twoKeyRecord(5, 1)));
    ASSERT_EQ(st::Ok, h.step(op::StepFirst));
    ASSERT_EQ(st::Ok, h.erase());
    ASSERT_EQ(st::Ok, h.insert(twoKeyRecord(6, 2)));
    EXPECT_EQ((std::vector<int>{2, 3, 5, 6}), tags(h.stepAll()));
    EXPECT_EQ((std::vector<int>{6, 5, 3, 2}), tags(h.stepAllBackward()));
}

TEST_F(Records, EmptyFileAnswersEndToEveryRead) {
    Handle h;
    openNew(h, twoKeyFile());
    for (uint16_t operation : {op::GetFirst, op::GetLast, op::StepFirst, op::StepLast, op::StepNext,
                               op::StepPrevious, op::GetGreater, op::GetGreaterOrEqual, op::GetLess,
                               op::GetLessOrEqual}) {
        SCOPED_TRACE(operation);
        EXPECT_EQ(st::End, h.get(operation));
    }
    EXPECT_EQ(st::NotFound, h.get(op::GetEqual));
}

}  // namespace
}  // namespace conformance
