// The station files: the look-ups by number and by name, the create block's single key, and
// the station load file that has no key at all.
#include "REPdcStationDataFile.h"
#include "REPdcStationLoadDataFile.h"

#include "PdcFileFamilyFixture.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

PDCSTATIONDATATYPE Station(int number, const char* name) {
    PDCSTATIONDATATYPE rec{};
    rec.nStnNo = number;
    Put(rec.sStnName, name);
    return rec;
}

TEST_F(PdcFileTest, StationFileIsCreatedWithOneKeyAndLooksUpOnKeysTwoAndThree) {
    REPdcStationDataFile created;
    create(created, "created.dat");
    EXPECT_EQ(1, keyCount(created));
    PDCSTATIONDATATYPE cut = Station(10, "CUT");
    ASSERT_EQ(1, created.AddRecord(cut));
    std::string name = "stale";
    testsupport::MessageCapture messages;
    EXPECT_EQ(0, created.GetStnNameWRTStnStnNo(10, name));  // the file has no key 2
    EXPECT_EQ("", name);
    EXPECT_EQ(0u, messages.count());

    // A station file that carries the look-up keys.
    constexpr REKeySegment keys[] = {
        {1, 4, kKeyInnerSegment, kKeyTypeInteger, 20}, {5, 17, kKeyLastSegment, kKeyTypeZString, 20},
        {5, 17, kKeyLastSegment, kKeyTypeZString, 20}, {1, 4, kKeyLastSegment, kKeyTypeInteger, 20},
        {5, 17, kKeyLastSegment, kKeyTypeZString, 20},
    };
    REPdcStationDataFile file;
    createWithKeys(file, "stations.dat", keys);
    for (PDCSTATIONDATATYPE rec : {Station(10, "CUT"), Station(20, "WELD"), Station(-5, "PAINT")})
        ASSERT_EQ(1, file.AddRecord(rec));
    EXPECT_EQ(1, file.GetStnNameWRTStnStnNo(20, name));
    EXPECT_EQ("WELD", name);
    EXPECT_EQ(0, file.GetStnNameWRTStnStnNo(30, name));
    EXPECT_EQ("", name);
    int number = 99;
    EXPECT_EQ(1, file.GetStnNoWRTStnStnName("PAINT", number));
    EXPECT_EQ(-5, number);
    EXPECT_EQ(0, file.GetStnNoWRTStnStnName("paint", number));
    EXPECT_EQ(0, number);
    // The look-up's key stays selected: the next read follows the name order.
    EXPECT_EQ(1, file.GetStnNoWRTStnStnName("CUT", number));
    PDCSTATIONDATATYPE rec;
    ASSERT_EQ(1, file.GetNextRecord(&rec));
    EXPECT_STREQ("PAINT", rec.sStnName);
}

TEST_F(PdcFileTest, StationLoadFileHasNoKeyAndReadsInWritingOrder) {
    REPdcStationLoadDataFile load;
    create(load, "load.dat");
    EXPECT_EQ(0, keyCount(load));
    for (int value : {5, 1, 5, 3}) {
        PDCSTATIONLOADDATATYPE rec{};
        rec.nValue0 = value;
        ASSERT_EQ(1, load.AddNewRecord(rec));
    }
    std::vector<PDCSTATIONLOADDATATYPE*> records;
    EXPECT_EQ(1, load.GetAllRecords(records));
    std::vector<int> values;
    for (auto* rec : records)
        values.push_back(rec->nValue0);
    EXPECT_EQ((std::vector<int>{5, 1, 5, 3}), values);
    REPdcStationLoadDataFile::ResetPdcStationLoadDataRecArray(records);

    std::string name;
    load.GetBtrieveFileName(name);
    EXPECT_EQ(dir.file("load.dat"), name);

    REPdcStationLoadDataFile copy;
    create(copy, "copy.dat");
    EXPECT_EQ(1, copy.AppendFile(dir.file("load.dat"), 0));
    EXPECT_EQ(1, copy.GetAllRecords(records));
    EXPECT_EQ(4u, records.size());
    REPdcStationLoadDataFile::ResetPdcStationLoadDataRecArray(records);
    EXPECT_EQ(1, load.DeleteAllRecords());
    EXPECT_EQ(0, load.GetAllRecords(records));
}

}  // namespace
