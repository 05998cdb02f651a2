// Field tables: every old layout of the library survives the round trip through the current one,
// and the rules that the round trip cannot see (widening, narrowing, cut texts) hold.
#include "FieldTableRoundTrip.h"

#include "catalogue/SizeKeyFields.h"
#include "labor/OperationTypeFields.h"

#include <gtest/gtest.h>

#include <cstring>

TEST(FieldTable, OldLayoutsRoundTrip) {
    testsupport::ExpectOldLayoutRoundTrip(SizeKeyFields::kFieldTable);
    testsupport::ExpectOldLayoutRoundTrip(OperationTypeFields::kFieldTable);
}

namespace {

#pragma pack(push, 1)
struct WideRecord {
    int32_t nCount;
    char sName[6];
    int16_t nPair[2];
    uint8_t reserved[3];
    double fLength[2];
};
struct NarrowRecord {
    int16_t nCount;
    char sName[8];
    int8_t nPair[2];
    float fLength[2];
};
#pragma pack(pop)

struct WideFields {
    using Record = WideRecord;
    using OldRecord = NarrowRecord;
    static constexpr REField kFields[] = {
        RE_NUMBER(nCount, kInteger),
        RE_TEXT(sName),
        RE_NUMBER(nPair, kInteger),
        RE_NEW_ONLY(reserved, kBytes),
        RE_REAL(fLength),
    };
    static constexpr REFieldTable kFieldTable = {kFields, sizeof(Record), sizeof(OldRecord)};
};
static_assert(REFieldsFit(WideFields::kFields, sizeof(WideRecord), sizeof(NarrowRecord)));

}  // namespace

TEST(FieldTable, NumbersWidenWithTheirSignAndTextsAreCutToTheNewWidth) {
    NarrowRecord old;
    std::memset(&old, ' ', sizeof old);
    old.nCount = -3;
    std::memcpy(old.sName, "ABCDEFG ", 8);
    old.nPair[0] = -1;
    old.nPair[1] = 100;
    old.fLength[0] = 2.5f;
    old.fLength[1] = -0.125f;
    WideRecord rec;
    std::memset(&rec, 0x55, sizeof rec);
    ASSERT_EQ(1, REConvertToNew(WideFields::kFieldTable, &old, &rec));
    EXPECT_EQ(-3, rec.nCount);
    EXPECT_STREQ("ABCDE", rec.sName);  // cut to five characters and its terminator
    EXPECT_EQ(-1, rec.nPair[0]);
    EXPECT_EQ(100, rec.nPair[1]);
    EXPECT_EQ(0, rec.reserved[0]);
    EXPECT_EQ(2.5, double{rec.fLength[0]});
    EXPECT_EQ(-0.125, double{rec.fLength[1]});

    rec.nCount = 70000;  // cut to its low 16 bits toward the old layout
    NarrowRecord back;
    ASSERT_EQ(1, REConvertToOld(WideFields::kFieldTable, &rec, &back));
    EXPECT_EQ(static_cast<int16_t>(70000 & 0xffff), back.nCount);
    EXPECT_EQ(0, std::memcmp(back.sName, "ABCDE   ", 8));
    EXPECT_EQ(2.5f, float{back.fLength[0]});
    EXPECT_EQ(-0.125f, float{back.fLength[1]});
    EXPECT_EQ(0, REConvertToNew(WideFields::kFieldTable, nullptr, &rec));
}

#include "catalogue/GradeFileTraits.h"
#include "catalogue/ShapeFileTraits.h"
#include "estimating/JobFileTraits.h"
#include "estimating/MaintFileTraits.h"
#include "labor/LaborCodeTraits.h"
#include "labor/LaborGroupTraits.h"
#include "labor/MultiplierTraits.h"

// Every old layout that is written back joins here by one line. (The production layouts are read,
// never written: their conversions are tested by reading old files.)
TEST(FieldTable, ClassLayoutsRoundTrip) {
    testsupport::ExpectOldLayoutRoundTrip(JobFileTraits::kFieldTable);
    testsupport::ExpectOldLayoutRoundTrip(ShapeFileTraits::kFieldTable);
    testsupport::ExpectOldLayoutRoundTrip(SizeRecordDescFields::kFieldTable);
    testsupport::ExpectOldLayoutRoundTrip(GradeFileTraits::kFieldTable);
    testsupport::ExpectOldLayoutRoundTrip(MaintFileTraits::kFieldTable);
    testsupport::ExpectOldLayoutRoundTrip(MaintGroupFields::kFieldTable);
    testsupport::ExpectOldLayoutRoundTrip(LaborCodeTraits::kFieldTable);
    testsupport::ExpectOldLayoutRoundTrip(LaborCodeDescTraits::kFieldTable);
    testsupport::ExpectOldLayoutRoundTrip(LaborGroupTraits::kFieldTable);
    testsupport::ExpectOldLayoutRoundTrip(LaborMultFactorTraits::kFieldTable);
    testsupport::ExpectOldLayoutRoundTrip(MultiplierTraits::kFieldTable);
}
