#include "TestSupport.h"

#include "REErrorMessages.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

namespace {

constexpr unsigned int kNoIcon = 0;

const std::map<unsigned int, std::string> kPlain = {
    {1001, "ESTMAINT.dat file is corrupt."},
    {1002, "ESTJOB.dat file is corrupt."},
    {1003, "Shape data file is corrupt."},
    {1004, "Job data file for append is corrupt."},
    {1005, "Size data file is corrupt."},
    {1006, "Labor Code data file is corrupt."},
    {1007, "Multiplier data file is corrupt."},
    {1008, "Unable to open size database."},
    {1009, "Unable to open shape database."},
    {1010, "Unable to open grade database."},
    {1011, "Unable to open shape definition file."},
    {1013, "Bethmill price data file is corrupt."},
    {1014, "Unable to open LaborOp definition data file."},
    {1015, "LaborM definition data file is corrupt."},
    {1016, "Unable to open LaborMisc definition data file."},
    {1017, "LaborMisc definition data file is corrupt."},
    {1018, "LaborGroup data file is corrupt."},
    {1019, "LaborMultFactor data file is corrupt."},
    {1020, "Calculation data file is corrupt."},
    {1021, "Illegal shape found."},
    {1022, "USmill price data file is corrupt."},
    {1023, "USplate price data file is corrupt."},
    {1024, "Unable to open bethmill price file."},
    {1025, "Unable to open bethplate price file."},
    {1026, "Unable to open report-types initialization file."},
    {1031, "Unable to open Report initialization data file."},
    {1032, "Unable to open key initialization file."},
    {1033, "Setup was not done successfully."},
    {1114, "Multiplier file is corrupt."},
    {1204, "Calculation data file is corrupt."},
    {1205, "Est-Mult-Long data file is corrupt."},
    {1207, "Est-Mult-Short data file is corrupt."},
    {1209, "Inv-History data file corrupt. Re-initializing Inv-History data file..."},
    {1211, "Job description file is corrupt."},
    {1213, "Pdc batch input data file is corrupt."},
    {1214, "Pdc batch input labor data file is corrupt."},
    {1215, "Pdc batch input piece data file is corrupt."},
    {1216, "Pdc calculation data file is corrupt."},
    {1217, "Pdc data file is corrupt."},
    {1218, "Pdc link file is corrupt."},
    {1219, "Pdc mark file is corrupt."},
    {1220, "Pdc pay category file is corrupt."},
    {1221, "Pdc project information file is corrupt."},
    {1222, "Pdc route data file is corrupt."},
    {1223, "Pdc route information file is corrupt."},
    {1224, "Pdc sequence file is corrupt."},
    {1225, "Pdc station data file is corrupt."},
    {1226, "Pdc station load data file is corrupt."},
    {1227, "Pdc tracking data file is corrupt."},
    {1228, "Pdc tracking labor data file is corrupt."},
    {1229, "Network file is corrupt."},
    {1230, "User info file is corrupt."},
    {1231, "Vendor info file is corrupt."},
    {1232, "Purchase order cut data file is corrupt."},
    {1233, "Purchase order data file is corrupt."},
    {1234, "Purchase order info file is corrupt."},
    {1235, "Purchase order req. info file is corrupt."},
    {1500, "Can't open the specfied project using current user name\nOne user already logged in with the same name."},
};

const std::map<unsigned int, std::string> kNumbered = {
    {1101, "Unable to create multiplier database file. [Error# %d]"},
    {1102, "Unable to create job database file. [Error# %d]"},
    {1103, "Unable to update size database file. [Error# %d]"},
    {1104, "Unknown error job database file. [Error# %d]"},
    {1105, "Unknown error size database file. [Error# %d]"},
    {1106, "Unknown error grade database file. [Error# %d]"},
    {1107, "Unknown error maint database file. [Error# %d]"},
    {1108, "Unknown error to create maint database file. [Error# %d]"},
    {1109, "Unknown error in shape database file. [Error# %d]"},
    {1110, "Unknown error in multiplier database file. [Error# %d]"},
    {1111, "Unknown error in LaborGroup database file. [Error# %d]"},
    {1112, "Unknown error in LaborMultFactor database file. [Error# %d]"},
    {1113, "Unable to create calculation database file. [Error# %d]"},
    {1202, "Unable to create inventory history database file. [Error# %d]"},
    {1203, "Unknown error to create inventory database file. [Error# %d]"},
    {1206, "Unknown error to create Mult-Long database file. [Error# %d]"},
    {1208, "Unknown error to create Mult-Short database file. [Error# %d]"},
    {1210, "Unknown error to create Inv-History database file. [Error# %d]"},
    {1212, "Unknown error to create Labor Code database file. [Error# %d]"},
    {1236, "Unknown error to create PDC batch input database file. [Error# %d]"},
    {1237, "Unknown error to create PDC batch input labor database file. [Error# %d]"},
    {1238, "Unknown error to create PDC batch input piece data database file. [Error# %d]"},
    {1239, "Unknown error to create PDC database file. [Error# %d]"},
    {1240, "Unknown error to create PDC link database file. [Error# %d]"},
    {1241, "Unknown error to create PDC mark database file. [Error# %d]"},
    {1242, "Unknown error to create PDC pay category data database file. [Error# %d]"},
    {1243, "Unknown error to create PDC project info. database file. [Error# %d]"},
    {1244, "Unknown error to create PDC route database file. [Error# %d]"},
    {1245, "Unknown error to create PDC route info. database file. [Error# %d]"},
    {1246, "Unknown error to create PDC sequence database file. [Error# %d]"},
    {1247, "Unknown error to create PDC station database file. [Error# %d]"},
    {1248, "Unknown error to create PDC station load database file. [Error# %d]"},
    {1249, "Unknown error to create PDC tracking database file. [Error# %d]"},
    {1250, "Unknown error to create PDC tracking labor database file. [Error# %d]"},
    {1251, "Unknown error to create network database file. [Error# %d]"},
    {1252, "Unknown error to create purchase order user info. database file. [Error# %d]"},
    {1253, "Unknown error to create purchase order vendor info. database file. [Error# %d]"},
    {1254, "Unknown error to create purchase order pur-cut-data database file. [Error# %d]"},
    {1255, "Unknown error to create purchase order pur-info database file. [Error# %d]"},
    {1256, "Unknown error to create purchase order pur-req-info database file. [Error# %d]"},
    {1257, "Unknown error labor code desc. database file. [Error# %d]"},
    {1258, "Unknown error PDC-batch-input-data database file. [Error# %d]"},
    {1259, "Unknown error to create PDC-batch-input-labor-data database file. [Error# %d]"},
    {1260, "Unknown error PDC-batch-input-piece-data database file. [Error# %d]"},
    {1261, "Unknown error PDC-data database file. [Error# %d]"},
    {1262, "Unknown error PDC-link database file. [Error# %d]"},
    {1263, "Unknown error PDC-mark database file. [Error# %d]"},
    {1264, "Unknown error PDC-pay-category-data database file. [Error# %d]"},
    {1265, "Unknown error PDC-project-info. database file. [Error# %d]"},
    {1266, "Unknown error PDC-route-data database file. [Error# %d]"},
    {1267, "Unknown error PDC-route-info database file. [Error# %d]"},
    {1268, "Unknown error PDC-sequence database file. [Error# %d]"},
    {1269, "Unknown error PDC-station-data database file. [Error# %d]"},
    {1270, "Unknown error PDC-station-load-data database file. [Error# %d]"},
    {1271, "Unknown error PDC-tracking-data database file. [Error# %d]"},
    {1272, "Unknown error PDC-tracking-labor-data database file. [Error# %d]"},
    {1273, "Unknown error network database file. [Error# %d]"},
    {1274, "Unknown error PDC-user-info. database file. [Error# %d]"},
    {1275, "Unknown error PDC-vendor-info. database file. [Error# %d]"},
    {1276, "Unknown error PDC-pur-cut-data database file. [Error# %d]"},
    {1277, "Unknown error PDC-pur-info database file. [Error# %d]"},
    {1278, "Unknown error PDC-pur-req-info database file. [Error# %d]"},
    {1301, "Unknown error to create Purchase database file. [Error# %d]"},
    {1302, "Unknown error in Purchase database file. [Error# %d]"},
};

std::string Unknown(unsigned int code) {
    return "Unknown error : " + std::to_string(code) + ". Please contact developer.";
}

std::string WithNumber(std::string text, int n) {
    text.replace(text.find("%d"), 2, std::to_string(n));
    return text;
}

void ExpectOneErrorBox(const testsupport::MessageCapture& capture, const std::string& text) {
    ASSERT_EQ(capture.count(), 1u);
    EXPECT_EQ(capture.messages()[0].caption, "Error");
    EXPECT_EQ(capture.messages()[0].text, text);
    EXPECT_EQ(capture.messages()[0].style, kNoIcon);
}

}  // namespace

// Every code around both blocks: listed codes give their text, every gap the unknown message.
TEST(ErrorMessages, PlainFormCoversEveryCodeAndGap) {
    for (unsigned int code = 990; code <= 1510; ++code) {
        SCOPED_TRACE(code);
        testsupport::MessageCapture capture;
        ShowErrorMessage(code);
        auto row = kPlain.find(code);
        ExpectOneErrorBox(capture, row != kPlain.end() ? row->second : Unknown(code));
    }
}

TEST(ErrorMessages, NumberedFormCoversEveryCodeAndGap) {
    for (unsigned int code = 1090; code <= 1310; ++code) {
        SCOPED_TRACE(code);
        testsupport::MessageCapture capture;
        ShowErrorMessage(code, 12);
        auto row = kNumbered.find(code);
        ExpectOneErrorBox(capture, row != kNumbered.end() ? WithNumber(row->second, 12) : Unknown(code));
    }
}

TEST(ErrorMessages, EachFormKnowsOnlyItsOwnCodes) {
    testsupport::MessageCapture capture;
    ShowErrorMessage(1211, 5);
    EXPECT_EQ(capture.lastText(), Unknown(1211));
    ShowErrorMessage(1102);
    EXPECT_EQ(capture.lastText(), Unknown(1102));
    ShowErrorMessage(1500, 3);
    EXPECT_EQ(capture.lastText(), Unknown(1500));
    // The code is shown as a signed number.
    ShowErrorMessage(4294967295u);
    EXPECT_EQ(capture.lastText(), "Unknown error : -1. Please contact developer.");
}

TEST(ErrorMessages, NumberIsFormattedWhateverItsSize) {
    testsupport::MessageCapture capture;
    for (int n : {0, -1, 2147483647, -2147483647 - 1}) {
        ShowErrorMessage(1238, n);
        EXPECT_EQ(capture.lastText(),
                  "Unknown error to create PDC batch input piece data database file. [Error# " + std::to_string(n) + "]");
    }
}

#if !defined(_WIN32)
// The record manager runs inside the process: there is no engine to start or stop.
TEST(BtrieveEngine, StartAndStopAreRefusedWithoutAnEngineProcess) {
    testsupport::MessageCapture capture;
    PROCESS_INFORMATION info{};
    EXPECT_EQ(LoadBtrieveEngine(&info), 0);
    EXPECT_EQ(UnLoadBtrieveEngine(&info), 0);
    EXPECT_EQ(LoadBtrieveEngine(nullptr), 0);
    EXPECT_EQ(UnLoadBtrieveEngine(nullptr), 0);
    EXPECT_EQ(capture.count(), 0u);
}
#endif
