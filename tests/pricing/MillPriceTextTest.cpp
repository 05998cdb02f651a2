// The old text form of the mill price lists, and what is particular to each mill class.
#include "PlainFileBytes.h"
#include "REBethMillPriceFile.h"
#include "REUsMillPriceFile.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <iterator>

using namespace plaintest;

namespace {

template <class REC>
const REC& At(std::list<REC*>& list, std::size_t index) {
    return **std::next(list.begin(), static_cast<std::ptrdiff_t>(index));
}

class MillPriceTextTest : public ::testing::Test {
protected:
    template <class File>
    int Load(File& file, const std::string& text) {
        WriteBytes(path, text);
        return file.Initialize(path.c_str());
    }

    testsupport::TempDir dir;
    testsupport::MessageCapture messages;
    std::string path = dir.file("mill.txt");
};

TEST_F(MillPriceTextTest, BethSectionsFillTheirRecordsColumnByColumn) {
    REBethMillPriceFile file;
    ASSERT_EQ(1, Load(file,
                      "BASE PRICE INFO\n"
                      "3,,W12,1.5\n"
                      "7,A VERY LONG DESIGNATION TEXT,2.25\n"
                      "SECTION EXTRA INFO\n"
                      "W,12.5,1.5,2.5,4\n"
                      "angle section extra info   \n"
                      "L,12.5,1,2,5\n"
                      "LENGTH EXTRA INFO\n"
                      "0,20.5,UP TO 20 FT   ,3\n"
                      "ADDITIONAL LENGTH EXTRA INFO\n"
                      "1,2,ADDL,3,4\n"
                      "QUANTITY EXTRA INFO\n"
                      "1,2,QTY,3\n"
                      "SPECIFICATION EXTRA INFO\n"
                      "5,A36,GR 36,1.75\n"
                      "6,A572\n"
                      "MILLING EXTRA INFO\n"
                      "1,2,MILL,-3e1\n"
                      "FORCE MILLING INFO\n"
                      "F,1,2,3\n"
                      "CAMBER EXTRA INFO\n"
                      "1,2,CAMBER,3"));

    ASSERT_EQ(2u, file.GetBasePrice().size());
    const BASEPRICERECORD& base = At(file.GetBasePrice(), 0);
    EXPECT_EQ(3, +base.nGroupNo);
    EXPECT_STREQ("W12", base.sGroupDesig);  // the empty column vanished
    EXPECT_DOUBLE_EQ(1.5, base.dBasePrice);
    EXPECT_DOUBLE_EQ(0.0, base.dDiscount);
    EXPECT_STREQ("A VERY LONG DESIGNA", At(file.GetBasePrice(), 1).sGroupDesig);

    const SECTIONEXTRARECORD& section = At(file.GetSectionExtra(), 0);
    EXPECT_EQ(std::string("W\0\0\0\0", 5), std::string(section.sCode, 5));
    EXPECT_DOUBLE_EQ(12.0, section.dValue1);  // read as an integer
    EXPECT_DOUBLE_EQ(2.5, section.dValue3);
    EXPECT_EQ(4, +section.nValue);
    EXPECT_DOUBLE_EQ(12.5, At(file.GetAngleSectionExtra(), 0).dValue1);
    EXPECT_EQ(5, +At(file.GetAngleSectionExtra(), 0).nValue);

    const LENGTHEXTRARECORD& length = At(file.GetLengthExtra(), 0);
    EXPECT_DOUBLE_EQ(20.5, length.dBound2);
    EXPECT_STREQ("UP TO 20 FT", length.sDescription);
    EXPECT_DOUBLE_EQ(3.0, length.dExtra);
    EXPECT_DOUBLE_EQ(4.0, At(file.GetAdditionalLengthExtra(), 0).dExtra2);
    EXPECT_STREQ("QTY", At(file.GetQuantityExtra(), 0).sDescription);
    EXPECT_DOUBLE_EQ(3.0, At(file.GetQuantityExtra(), 0).dExtra);

    const SPECIFICATIONEXTRARECORD& spec = At(file.GetSpecificationExtra(), 0);
    EXPECT_EQ(5, +spec.nNumber);
    EXPECT_STREQ("A36", spec.sText1);
    EXPECT_STREQ("GR 36", spec.sText2);
    EXPECT_DOUBLE_EQ(1.75, spec.dValue);
    const SPECIFICATIONEXTRARECORD& shortLine = At(file.GetSpecificationExtra(), 1);
    EXPECT_STREQ("", shortLine.sText2);  // missing columns stay zero
    EXPECT_DOUBLE_EQ(0.0, shortLine.dValue);

    EXPECT_DOUBLE_EQ(-30.0, At(file.GetMillingExtra(), 0).dExtra);
    EXPECT_DOUBLE_EQ(3.0, At(file.GetForceMilling(), 0).dValue3);
    EXPECT_STREQ("CAMBER", At(file.GetCamberExtra(), 0).sDescription);
    EXPECT_DOUBLE_EQ(3.0, At(file.GetCamberExtra(), 0).dExtra);
    EXPECT_EQ(0u, messages.count());
}

TEST_F(MillPriceTextTest, SectionNamesNeedTheirFirstCharacterAtTheLineStart) {
    REBethMillPriceFile file;
    ASSERT_EQ(1, Load(file, " BASE PRICE INFO\n1,A,2\nbase price info\t\r\n2,B,3\r\n\n\n4,C,5\nnot a section\n5,D,6\n"));
    ASSERT_EQ(2u, file.GetBasePrice().size());
    EXPECT_EQ(2, +At(file.GetBasePrice(), 0).nGroupNo);
    EXPECT_EQ(4, +At(file.GetBasePrice(), 1).nGroupNo);  // empty lines vanish inside a section
}

TEST_F(MillPriceTextTest, NumbersAreReadAsFarAsTheyGo) {
    REBethMillPriceFile file;
    ASSERT_EQ(1, Load(file,
                      "BASE PRICE INFO\n"
                      "  +12abc,X,  -1.5e2x\n"
                      "none,X,.5\n"
                      "99999999999,X,1e999\n"
                      "-99999999999,X,nan\n"));
    const int32_t groups[] = {12, 0, 2147483647, -2147483647 - 1};
    const double prices[] = {-150.0, 0.5, HUGE_VAL, 0.0};
    ASSERT_EQ(4u, file.GetBasePrice().size());
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(groups[i], +At(file.GetBasePrice(), i).nGroupNo) << i;
        EXPECT_EQ(prices[i], At(file.GetBasePrice(), i).dBasePrice) << i;
    }
}

TEST_F(MillPriceTextTest, BethDiscountLinesSetTheDiscountOfABasePrice) {
    REBethMillPriceFile file;
    ASSERT_EQ(1, Load(file, "BASE PRICE INFO\n1,A,2\n2,B,3\nDISCOUNT INFO\n2,ignored,0.25\n1,x\n"));
    EXPECT_DOUBLE_EQ(0.0, At(file.GetBasePrice(), 0).dDiscount);
    EXPECT_DOUBLE_EQ(0.25, At(file.GetBasePrice(), 1).dDiscount);
    EXPECT_EQ(0u, messages.count());
}

TEST_F(MillPriceTextTest, BethDiscountOutsideTheBasePricesStopsTheParse) {
    const struct {
        const char* text;
        std::size_t basePrices;
    } cases[] = {
        {"BASE PRICE INFO\n1,A,2\nDISCOUNT INFO\n2,x,0.5\nSECTION EXTRA INFO\nW,1,2,3,4\n", 1},
        {"BASE PRICE INFO\n1,A,2\nDISCOUNT INFO\n0,x,0.5\nSECTION EXTRA INFO\nW,1,2,3,4\n", 1},
        {"BASE PRICE INFO\n1,A,2\nDISCOUNT INFO\n-1,x,0.5\nSECTION EXTRA INFO\nW,1,2,3,4\n", 1},
        {"DISCOUNT INFO\n1,x,0.5\nBASE PRICE INFO\n1,A,2\n", 0},
    };
    for (const auto& c : cases) {
        messages.clear();
        std::filesystem::remove(dir.file("mill.DOS"));
        REBethMillPriceFile file;
        EXPECT_EQ(1, Load(file, c.text)) << c.text;
        ASSERT_EQ(1u, messages.count()) << c.text;
        EXPECT_EQ("Error", messages.messages()[0].caption);
        EXPECT_EQ("Bethmill price data file is corrupt.", messages.lastText());
        EXPECT_EQ(c.basePrices, file.GetBasePrice().size());
        EXPECT_TRUE(file.GetSectionExtra().empty());
        EXPECT_TRUE(std::filesystem::exists(dir.file("mill.DOS")));
    }
}

TEST_F(MillPriceTextTest, UsSectionsIncludingDiscountFillTheirOwnLists) {
    REUsMillPriceFile file;
    ASSERT_EQ(1, Load(file,
                      "BASE PRICE INFO\n"
                      "1,WIDE FLANGE,A992,30.5\n"
                      "DISCOUNT INFO\n"
                      "2,A DISCOUNT DESCRIPTION TOO LONG,0.1\n"
                      "GROUP BREAKDOWNS INFO\n"
                      "G1,7.9,1,2,3\n"
                      "SPECIAL DEDUCTIONS INFO\n"
                      "DEDUCT,4.5\n"
                      "LENGTH EXTRA INFO\n"
                      "1,2,LEN,3\n"
                      "ADDITIONAL LENGTH EXTRA INFO\n"
                      "1,2,123456789012345678901234567890,3,4\n"
                      "QUANTITY EXTRA INFO\n"
                      "1,2,QTY,3\n"
                      "MILLING EXTRA INFO\n"
                      "1,2,3,4,MILL,5\n"
                      "FORCE MILLING INFO\n"
                      "F,1,2,3\n"
                      "CAMBER EXTRA INFO\n"
                      "1,2,CAMBER,3\n"));
    const US_BASEPRICERECORD& base = At(file.GetBasePrice(), 0);
    EXPECT_STREQ("WIDE FLANGE", base.sText1);
    EXPECT_STREQ("A992", base.sText2);
    EXPECT_DOUBLE_EQ(30.5, base.dValue);
    EXPECT_EQ(2, +At(file.GetDiscount(), 0).nNumber);
    EXPECT_STREQ("A DISCOUNT DESCRIPTION TO", At(file.GetDiscount(), 0).sDescription);
    EXPECT_DOUBLE_EQ(0.1, At(file.GetDiscount(), 0).dDiscount);
    EXPECT_DOUBLE_EQ(7.0, At(file.GetGroupBreakDown(), 0).dValue1);  // read as an integer
    EXPECT_EQ(3, +At(file.GetGroupBreakDown(), 0).nValue);
    EXPECT_STREQ("DEDUCT", At(file.GetSplDiscount(), 0).sDescription);
    EXPECT_DOUBLE_EQ(4.5, At(file.GetSplDiscount(), 0).dDeduction);
    EXPECT_STREQ("LEN", At(file.GetLengthExtra(), 0).sDescription);
    EXPECT_STREQ("12345678901234567890123456789", At(file.GetAdditionalLengthExtra(), 0).sDescription);
    EXPECT_DOUBLE_EQ(4.0, At(file.GetAdditionalLengthExtra(), 0).dExtra2);
    EXPECT_DOUBLE_EQ(3.0, At(file.GetQuantityExtra(), 0).dExtra);
    const US_MILLINGEXTRARECORD& milling = At(file.GetMillingExtra(), 0);
    EXPECT_DOUBLE_EQ(4.0, milling.dBound4);
    EXPECT_STREQ("MILL", milling.sDescription);
    EXPECT_DOUBLE_EQ(5.0, milling.dExtra);
    EXPECT_DOUBLE_EQ(3.0, At(file.GetForceMilling(), 0).dValue3);
    EXPECT_DOUBLE_EQ(3.0, At(file.GetCamberExtra(), 0).dExtra);
    EXPECT_EQ(0u, messages.count());
}

TEST_F(MillPriceTextTest, BethSaveWritesCallersRecordsByteForByte) {
    REBethMillPriceFile file;
    auto* base = NewRecord<BASEPRICERECORD>();
    base->nGroupNo = 9;
    std::strcpy(base->sGroupDesig, "W14");
    base->dBasePrice = 31.25;
    base->dDiscount = 0.5;
    file.GetBasePrice().push_back(base);
    auto* camber = NewRecord<CAMBEREXTRARECORD>();
    camber->dBound1 = 1;
    std::strcpy(camber->sDescription, "CAMBER");
    camber->dExtra = 2.75;
    file.GetCamberExtra().push_back(camber);

    const std::string target = dir.file("saved.dat");
    ASSERT_EQ(1, file.Save(target.c_str()));
    std::string expected = PriceHeader("TarselWin95.BTM001", "");
    AppendInt32(expected, 1);
    expected += BytesOf(*base);
    for (int list = 1; list < 9; ++list)
        AppendInt32(expected, 0);
    AppendInt32(expected, 1);
    expected += BytesOf(*camber);
    EXPECT_EQ(expected, ReadBytes(target));
}

TEST_F(MillPriceTextTest, UsPathMustFitItsBuffer) {
    const std::string longPath = dir.file(std::string(300, 'p'));
    REUsMillPriceFile file;
    EXPECT_EQ(0, file.Initialize(longPath.c_str()));
    EXPECT_EQ("USmill price data file is corrupt.", messages.lastText());
    EXPECT_EQ(0, file.Save(nullptr));
}

}  // namespace
