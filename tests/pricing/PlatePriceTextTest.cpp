// The old text form and the list orders of the plate price lists.
#include "PlainFileBytes.h"
#include "REBethPlatePriceFile.h"
#include "REUsPlatePriceFile.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <iterator>

using namespace plaintest;

namespace {

template <class REC>
const REC& First(std::list<REC*>& list) {
    return *list.front();
}

// Discount lines before any base price, and every section once.
const char* const kPlateText =
    "DISCOUNT INFO\n"
    "4,QUANTITY DISCOUNT OVER TWENTY FIVE,0.05\n"
    "BASE PRICE INFO\n"
    "A36 PLATE GROUP ONEXY,41.5\n"
    "SECTION EXTRA INFO\n"
    "PL12,PLATE 3/16 TO 1/4 IN,0.1875,0.25,48,96,2,1.25\n"
    "LENGTH EXTRA INFO\n"
    "240,480,OVER 20 FT,2.5\n"
    "QUANTITY EXTRA INFO\n"
    "0,2000,UNDER ONE TON,3.5\n"
    "SPECIFICATION EXTRA INFO\n"
    "ASTM A572 GRADE 50,GRADE 50 XY,1,2,4.25\n";

class PlatePriceTextTest : public ::testing::Test {
protected:
    testsupport::TempDir dir;
    testsupport::MessageCapture messages;
    std::string path = dir.file("plate.txt");
};

TEST_F(PlatePriceTextTest, BethSectionsFillTheirRecords) {
    WriteBytes(path, kPlateText);
    REBethPlatePriceFile file;
    ASSERT_EQ(1, file.Initialize(path.c_str()));
    EXPECT_EQ(0u, messages.count());

    EXPECT_STREQ("A36 PLATE GROUP ONEX", First(file.GetBasePrice()).sGroupDesig);
    EXPECT_DOUBLE_EQ(41.5, First(file.GetBasePrice()).dBasePrice);
    const PLATEDISCOUNTRECORD& discount = First(file.GetPlateDiscount());
    EXPECT_EQ(4, +discount.nNumber);
    EXPECT_STREQ("QUANTITY DISCOUNT OVER TW", discount.sDescription);
    EXPECT_DOUBLE_EQ(0.05, discount.dDiscount);
    const PLATESECTIONEXTRARECORD& section = First(file.GetSectionExtra());
    EXPECT_STREQ("PL12", section.sCode);
    EXPECT_STREQ("PLATE 3/16 TO 1/4 IN", section.sDescription);
    EXPECT_DOUBLE_EQ(0.1875, section.dValue1);
    EXPECT_DOUBLE_EQ(96.0, section.dValue4);
    EXPECT_EQ(2, +section.nValue);
    EXPECT_DOUBLE_EQ(1.25, section.dExtra);
    EXPECT_STREQ("OVER 20 FT", First(file.GetLengthExtra()).sDescription);
    EXPECT_DOUBLE_EQ(3.5, First(file.GetQuantityExtra()).dExtra);
    const PLATESPECIFICATIONEXTRARECORD& spec = First(file.GetSpecificationExtra());
    EXPECT_STREQ("ASTM A572 GRADE 50", spec.sSpecification);
    EXPECT_STREQ("GRADE 50 X", spec.sText2);
    EXPECT_DOUBLE_EQ(2.0, spec.dValue2);
    EXPECT_DOUBLE_EQ(4.25, spec.dExtra);
}

TEST_F(PlatePriceTextTest, UsSectionsFillTheirNarrowerRecords) {
    WriteBytes(path, kPlateText);
    REUsPlatePriceFile file;
    ASSERT_EQ(1, file.Initialize(path.c_str()));
    EXPECT_EQ(0u, messages.count());

    EXPECT_STREQ("A36 PLATE GROUP ONE", First(file.GetBasePrice()).sGroupDesig);
    EXPECT_DOUBLE_EQ(41.5, First(file.GetBasePrice()).dBasePrice);
    EXPECT_STREQ("QUANTITY DISCOUNT OVER T", First(file.GetDiscount()).sDescription);
    EXPECT_DOUBLE_EQ(0.05, First(file.GetDiscount()).dDiscount);
    const US_PLATESECTIONEXTRARECORD& section = First(file.GetPlateSection());
    EXPECT_STREQ("PL1", section.sCode);
    EXPECT_STREQ("PLATE 3/16 TO 1/4 IN", section.sDescription);
    EXPECT_DOUBLE_EQ(96.0, section.dValue4);
    EXPECT_EQ(2, +section.nValue);
    EXPECT_DOUBLE_EQ(1.25, section.dExtra);
    const US_PLATESPECIFICATIONEXTRARECORD& spec = First(file.GetPlateSpecification());
    EXPECT_STREQ("GRADE 50", spec.sText2);  // cut to 9, trailing blank dropped
    EXPECT_DOUBLE_EQ(4.25, spec.dExtra);
    EXPECT_DOUBLE_EQ(480.0, First(file.GetLengthExtra()).dBound2);
    EXPECT_DOUBLE_EQ(3.5, First(file.GetQuantityExtra()).dExtra);
}

// A count of 1 and the bytes of the first record of each list, in the order given.
template <class... REC>
std::string OneRecordLists(const std::string& loadPath, const char* ident, std::list<REC*>&... lists) {
    std::string bytes = PriceHeader(ident, loadPath);
    ((AppendInt32(bytes, 1), bytes += BytesOf(First(lists))), ...);
    return bytes;
}

// The Us plate file holds specification before length and quantity; the Beth plate file after.
TEST_F(PlatePriceTextTest, EachPlateClassSavesAndLoadsItsOwnListOrder) {
    WriteBytes(path, kPlateText);
    REBethPlatePriceFile beth;
    REUsPlatePriceFile us;
    ASSERT_EQ(1, beth.Initialize(path.c_str()));
    ASSERT_EQ(1, us.Initialize(path.c_str()));
    const std::string bethFile = dir.file("beth.dat");
    const std::string usFile = dir.file("us.dat");
    ASSERT_EQ(1, beth.Save(bethFile.c_str()));
    ASSERT_EQ(1, us.Save(usFile.c_str()));

    EXPECT_EQ(OneRecordLists(path, "TarselWin95.BTP001", beth.GetBasePrice(), beth.GetPlateDiscount(),
                             beth.GetSectionExtra(), beth.GetLengthExtra(), beth.GetQuantityExtra(),
                             beth.GetSpecificationExtra()),
              ReadBytes(bethFile));
    const std::string usExpected =
        OneRecordLists(path, "TarselWin95.USP001", us.GetBasePrice(), us.GetDiscount(), us.GetPlateSection(),
                       us.GetPlateSpecification(), us.GetLengthExtra(), us.GetQuantityExtra());
    EXPECT_EQ(usExpected, ReadBytes(usFile));

    REUsPlatePriceFile reloaded;
    ASSERT_EQ(1, reloaded.Initialize(usFile.c_str()));
    ASSERT_EQ(1, reloaded.Save(nullptr));
    EXPECT_EQ(OneRecordLists(usFile, "TarselWin95.USP001", reloaded.GetBasePrice(), reloaded.GetDiscount(),
                             reloaded.GetPlateSection(), reloaded.GetPlateSpecification(),
                             reloaded.GetLengthExtra(), reloaded.GetQuantityExtra())
                  .substr(kHeaderSize),
              usExpected.substr(kHeaderSize));
}

}  // namespace
