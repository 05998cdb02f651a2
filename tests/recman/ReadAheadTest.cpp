// Scans that read ahead: what another handle commits between two calls of a scan is what the
// scan's next call meets, in key order and in physical order, forwards and backwards.
#include "ConformanceFixture.h"

namespace conformance {
namespace {

// Twenty records of twoKeyFile(): tag t has key 0 = 10 t and key 1 = t (duplicates: all 1 for
// odd t), inserted in tag order.
class ReadAhead : public Conformance {
protected:
    void SetUp() override {
        openNew(writer, twoKeyFile());
        for (int t = 1; t <= 20; ++t)
            ASSERT_EQ(st::Ok, writer.insert(rec(t)));
        ASSERT_EQ(st::Ok, reader.open(path()));
    }
    static Bytes rec(int tag, int data = 0) {
        Bytes r = twoKeyRecord(tag, 10 * tag, tag % 2 ? 1 : tag);
        r[15] = uint8_t(data);
        return r;
    }
    // Tag and data byte of what an operation returns, or minus its status.
    static std::pair<int, int> got(Handle& h, uint16_t operation, int8_t k = 0) {
        const int16_t status = h.get(operation, k);
        return status == st::Ok ? std::pair<int, int>{h.data[0], h.data[15]} : std::pair<int, int>{-status, 0};
    }
    // Has the writer delete tag `gone`, rewrite tag `changed` with data 7 and insert tag `added`.
    void change(int gone, int changed, int added) {
        writer.setKey(int32Key(10 * gone));
        ASSERT_EQ(st::Ok, writer.get(op::GetEqual));
        ASSERT_EQ(st::Ok, writer.erase());
        writer.setKey(int32Key(10 * changed));
        ASSERT_EQ(st::Ok, writer.get(op::GetEqual));
        ASSERT_EQ(st::Ok, writer.update(rec(changed, 7)));
        ASSERT_EQ(st::Ok, writer.insert(rec(added)));
    }

    Handle writer, reader;
};

TEST_F(ReadAhead, AKeyScanMeetsWhatWasCommittedSinceItsLastCall) {
    EXPECT_EQ(1, got(reader, op::GetFirst).first);
    EXPECT_EQ(2, got(reader, op::GetNext).first);
    change(3, 4, 21);
    EXPECT_EQ((std::pair<int, int>{4, 7}), got(reader, op::GetNext));
    change(5, 20, 22);
    int last = 4, seen = 1;
    for (auto r = got(reader, op::GetNext); r.first > 0; r = got(reader, op::GetNext), ++seen) {
        EXPECT_GT(r.first, last);
        EXPECT_EQ(r.first == 20 ? 7 : 0, r.second);
        last = r.first;
    }
    EXPECT_EQ(22, last);
    EXPECT_EQ(18, seen);  // 4, 6..22
    EXPECT_EQ(21, got(reader, op::GetPrevious).first);  // the one before the last read
}

TEST_F(ReadAhead, ADuplicatesScanBackwardsMeetsANewValueTakenBehindIt) {
    // Key 1 value 1 holds the odd tags in insertion order; the scan runs down from the last.
    reader.setKey(int32Key(1));
    EXPECT_EQ(19, got(reader, op::GetLessOrEqual, 1).first);
    EXPECT_EQ(17, got(reader, op::GetPrevious, 1).first);
    // Tag 15 leaves value 1; tag 16 takes it, after every odd tag.
    writer.setKey(int32Key(150));
    ASSERT_EQ(st::Ok, writer.get(op::GetEqual));
    ASSERT_EQ(st::Ok, writer.update(twoKeyRecord(15, 150, 99)));
    writer.setKey(int32Key(160));
    ASSERT_EQ(st::Ok, writer.get(op::GetEqual));
    ASSERT_EQ(st::Ok, writer.update(twoKeyRecord(16, 160, 1)));
    EXPECT_EQ(13, got(reader, op::GetPrevious, 1).first);
    EXPECT_EQ(17, got(reader, op::GetNext, 1).first);
    EXPECT_EQ(19, got(reader, op::GetNext, 1).first);
    EXPECT_EQ(16, got(reader, op::GetNext, 1).first);
}

TEST_F(ReadAhead, APhysicalScanMeetsWhatWasCommittedSinceItsLastCall) {
    EXPECT_EQ(1, got(reader, op::StepFirst).first);
    EXPECT_EQ(2, got(reader, op::StepNext).first);
    change(3, 4, 21);
    EXPECT_EQ((std::pair<int, int>{4, 7}), got(reader, op::StepNext));
    EXPECT_EQ(2, got(reader, op::StepPrevious).first);
    EXPECT_EQ(4, got(reader, op::StepNext).first);
    int last = 4;
    for (auto r = got(reader, op::StepNext); r.first > 0; r = got(reader, op::StepNext))
        last = r.first;
    EXPECT_EQ(21, last);
}

}  // namespace
}  // namespace conformance
