// The route files: the route list as text, the stations of a route and the station test.
#include "REPdcRouteDataFile.h"
#include "REPdcRouteInfoFile.h"

#include "PdcFileFamilyFixture.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

class PdcRouteTest : public PdcFileTest {
protected:
    void addStop(const char* route, int station) {
        PDCROUTEDATATYPE rec{};
        Put(rec.sRouteName, route);
        rec.nStnNo = station;
        ASSERT_EQ(1, data.AddRecord(rec));
    }
    REPdcRouteDataFile data;
};

TEST_F(PdcRouteTest, RoutesListAsNameAndDescription) {
    REPdcRouteInfoFile info;
    create(info, "info.dat");
    std::vector<std::string> routes = {"kept"};
    EXPECT_EQ(1, info.GetAllRoutes(routes));  // entries already there count
    routes.clear();
    EXPECT_EQ(0, info.GetAllRoutes(routes));

    PDCROUTEINFODATATYPE r2{}, r1{};
    Put(r2.sRouteName, "R2");
    Put(r1.sRouteName, "R1");
    Put(r1.sDescription, "Main line");
    ASSERT_EQ(1, info.AddRecord(r2));
    ASSERT_EQ(1, info.AddRecord(r1));
    EXPECT_EQ(1, info.GetAllRoutes(routes));
    EXPECT_EQ((std::vector<std::string>{"R1 : Main line", "R2 : "}), routes);

    PDCROUTEINFODATATYPE found;
    EXPECT_EQ(1, info.GetEqualMatch("R1", &found));
    EXPECT_STREQ("Main line", found.sDescription);
    EXPECT_EQ(1, info.GetEqualMatch("R2", nullptr));
    EXPECT_EQ(0, info.GetEqualMatch("R", nullptr));
}

TEST_F(PdcRouteTest, StationsOfARouteInKeyOrder) {
    create(data, "route.dat");
    addStop("R1", 3);
    addStop("s2", 7);
    addStop("r1", 5);  // keys are case-sensitive: R1, r1, s2
    std::vector<unsigned int> stations;
    EXPECT_EQ(1, data.GetStationNoArrayWRTRoute("X", stations));
    EXPECT_TRUE(stations.empty());
    EXPECT_EQ(1, data.GetStationNoArrayWRTRoute("R1", stations));
    EXPECT_EQ((std::vector<unsigned int>{3, 5}), stations);
    EXPECT_EQ(1, data.GetStationNoArrayWRTRoute("s2", stations));  // not cleared first
    EXPECT_EQ((std::vector<unsigned int>{3, 5, 7}), stations);
}

TEST_F(PdcRouteTest, StationTestWalksPastTheEndOfTheRoute) {
    create(data, "route.dat");
    addStop("R1", 3);
    addStop("R1", 5);
    addStop("R2", 7);
    EXPECT_EQ(1, data.IsStnNoDefinedInRoute("R1", 3));
    EXPECT_EQ(1, data.IsStnNoDefinedInRoute("R1", 7));
    EXPECT_EQ(0, data.IsStnNoDefinedInRoute("R2", 3));
    EXPECT_EQ(0, data.IsStnNoDefinedInRoute("R3", 7));
    // Route data keys allow duplicates: the same stop twice is accepted.
    addStop("R1", 3);
    std::vector<PDCROUTEDATATYPE*> all;
    EXPECT_EQ(1, data.GetAllRecords(all));
    EXPECT_EQ(4u, all.size());
    REPdcRouteDataFile::ResetPdcRouteDataRecArray(all);
}

}  // namespace
