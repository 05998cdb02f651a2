// Conversion of a mill price list in the old text form to INI-style text.
#include "ConvertMillPriceFileToIniFormat.h"
#include "PlainFileBytes.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <filesystem>

using namespace plaintest;

namespace {

class IniFormatTest : public ::testing::Test {
protected:
    // Converts `text` and returns the INI text written in its place.
    std::string Convert(const std::string& text) {
        WriteBytes(path, text);
        EXPECT_EQ(1, ConvertMillPriceFileToIniFormat(path.c_str()));
        EXPECT_EQ(text, ReadBytes(dosPath));
        std::string ini = ReadBytes(path);
#if defined(_WIN32)
        // Written in text mode: each line ends in CR LF on Windows.
        for (size_t at = ini.find("\r\n"); at != std::string::npos; at = ini.find("\r\n", at))
            ini.erase(at, 1);
#endif
        return ini;
    }

    testsupport::TempDir dir;
    std::string path = dir.file("MILL.TXT");
    std::string dosPath = dir.file("MILL.DOS");
};

TEST_F(IniFormatTest, SectionsBecomeHeadersAndDataLinesNumberedKeys) {
    const struct {
        std::string text;
        std::string ini;
    } cases[] = {
        {"BASE PRICE INFO\n1,W,2.0\n", "\n[BASE PRICE INFO]\nKey00=1,W,2.0\n"},
        {"A\n1,2\n\nB\n3,4\n5,6\n", "\n[A]\nKey00=1,2\n\n[]\n\n[B]\nKey00=3,4\nKey01=5,6\n"},
        {"A\n1,2,3", "\n[A]\nKey00=1,2,\n"},  // the last character goes, line feed or not
        {"A\r\n1,2\r\n", "\n[A]\nKey00=1,2\n"},
        {"", ""},
    };
    for (const auto& c : cases)
        EXPECT_EQ(c.ini, Convert(c.text)) << c.text;
}

TEST_F(IniFormatTest, KeyCounterHasAtLeastTwoDigits) {
    std::string text = "S\n";
    for (int i = 0; i <= 100; ++i)
        text += std::to_string(i) + ",x\n";
    const std::string ini = Convert(text);
    EXPECT_NE(std::string::npos, ini.find("\nKey09=9,x\nKey10=10,x\n"));
    EXPECT_NE(std::string::npos, ini.find("\nKey99=99,x\nKey100=100,x\n"));
}

TEST_F(IniFormatTest, LinesAreReadInPiecesOf254Characters) {
    const std::string head(254, 'h');
    const std::string ini = Convert(head + "tail,1\n");
    EXPECT_EQ("\n[" + head.substr(0, 253) + "]\nKey00=tail,1\n", ini);
}

TEST_F(IniFormatTest, OlderDosFileIsReplacedAndBadPathsChangeNothing) {
    WriteBytes(dosPath, "older");
    EXPECT_EQ("\n[S]\nKey00=1,2\n", Convert("S\n1,2\n"));

    EXPECT_EQ(1, ConvertMillPriceFileToIniFormat(nullptr));
    EXPECT_EQ(1, ConvertMillPriceFileToIniFormat(dosPath.c_str()));
    EXPECT_EQ("S\n1,2\n", ReadBytes(dosPath));

    const std::string missing = dir.file("NONE.TXT");
    EXPECT_EQ(1, ConvertMillPriceFileToIniFormat(missing.c_str()));
    EXPECT_FALSE(std::filesystem::exists(missing));
}

}  // namespace
