// The labor operation and miscellaneous definition files, run over both classes where they
// agree.
#include "RELaborMiscDefFile.h"
#include "RELaborOpDefFile.h"
#include "TestSupport.h"
#include "tests/pricing/PlainFileBytes.h"

#include <gtest/gtest.h>

#include <filesystem>

using namespace plaintest;

namespace {

struct OpDefs {
    using File = RELaborOpDefFile;
    using Record = LABOROPDEFRECORD;
    static constexpr const char* kIdent = "TarselWin95.LOD001";
    static constexpr const char* kCannotOpen = "Unable to open LaborOp definition data file.";
    static constexpr const char* kCorrupt = "LaborM definition data file is corrupt.";
    static std::string Text(const std::string& lines, int count) { return std::to_string(count) + "\n" + lines; }
};

struct MiscDefs {
    using File = RELaborMiscDefFile;
    using Record = LABORMISCDEFRECORD;
    static constexpr const char* kIdent = "TarselWin95.LMD001";
    static constexpr const char* kCannotOpen = "Unable to open LaborMisc definition data file.";
    static constexpr const char* kCorrupt = "LaborMisc definition data file is corrupt.";
    static std::string Text(const std::string& lines, int) { return lines; }
};

template <class Traits>
class LaborDefFileTest : public ::testing::Test {
protected:
    using Record = typename Traits::Record;
    using List = std::list<Record*>;

    Record* Make(const char* name, int16_t group) {
        auto* record = NewRecord<Record>();
        std::strncpy(record->sName, name, sizeof(record->sName) - 1);
        record->nGroupNo = group;
        return record;
    }

    // Signature block, count, stored size and `body`.
    std::string Binary(int32_t count, int32_t size, const std::string& body) const {
        std::string bytes(kHeaderSize, '\0');
        bytes.replace(0, std::strlen(Traits::kIdent), Traits::kIdent);
        AppendInt32(bytes, count);
        AppendInt32(bytes, size);
        return bytes + body;
    }

    testsupport::TempDir dir;
    testsupport::MessageCapture messages;
    std::string path = dir.file("labor.def");
    typename Traits::File file;
    List list;

    void TearDown() override { file.ResetRecords(list); }
};

using LaborDefClasses = ::testing::Types<OpDefs, MiscDefs>;
TYPED_TEST_SUITE(LaborDefFileTest, LaborDefClasses);

TYPED_TEST(LaborDefFileTest, SaveWritesSignatureCountSizeAndRecordsByteForByte) {
    this->list.push_back(this->Make("Cutting", 3));
    this->list.push_back(this->Make("Drilling", -2));
    ASSERT_EQ(1, this->file.Initialize(this->path));
    ASSERT_EQ(1, this->file.SaveRecords(this->list));

    std::string body;
    for (auto* record : this->list)
        body += BytesOf(*record);
    EXPECT_EQ(this->Binary(2, 103, body), ReadBytes(this->path));

    typename TestFixture::List loaded;
    loaded.push_back(this->Make("replaced", 1));
    ASSERT_EQ(1, this->file.GetRecords(loaded));
    ASSERT_EQ(2u, loaded.size());
    EXPECT_EQ(BytesOf(*this->list.back()), BytesOf(*loaded.back()));
    EXPECT_EQ(0u, this->messages.count());
    this->file.ResetRecords(loaded);
    EXPECT_TRUE(loaded.empty());
}

TYPED_TEST(LaborDefFileTest, StoredRecordSizeOtherThan103IsReportedAndReadInPart) {
    const std::string a(103, 'a');
    const std::string b(103, 'b');
    const struct {
        int32_t size;
        std::string body;
        std::size_t records;
        std::string lastRecord;
    } cases[] = {
        {105, a + "xx" + b + "yy", 2, b},
        {50, a.substr(0, 50) + b.substr(0, 50), 2, b.substr(0, 50) + std::string(53, '\0')},
        {0, a, 0, ""},
        {-103, a, 0, ""},
    };
    ASSERT_EQ(1, this->file.Initialize(this->path.c_str()));
    for (const auto& c : cases) {
        this->messages.clear();
        WriteBytes(this->path, this->Binary(2, c.size, c.body));
        ASSERT_EQ(1, this->file.GetRecords(this->list)) << c.size;
        ASSERT_EQ(c.records, this->list.size()) << c.size;
        if (c.records > 0) {
            EXPECT_EQ(c.lastRecord, std::string(BytesOf(*this->list.back()))) << c.size;
        }
        ASSERT_EQ(1u, this->messages.count()) << c.size;
        EXPECT_EQ(TypeParam::kCorrupt, this->messages.lastText());
    }
}

TYPED_TEST(LaborDefFileTest, BodyShorterThanItsCountKeepsWholeRecords) {
    ASSERT_EQ(1, this->file.Initialize(this->path.c_str()));
    WriteBytes(this->path, this->Binary(0x7fffffff, 103, std::string(103 * 2 + 40, 'r')));
    ASSERT_EQ(1, this->file.GetRecords(this->list));
    EXPECT_EQ(2u, this->list.size());
    WriteBytes(this->path, this->Binary(1, 103, "").substr(0, kHeaderSize + 6));
    ASSERT_EQ(1, this->file.GetRecords(this->list));
    EXPECT_TRUE(this->list.empty());
    EXPECT_EQ(0u, this->messages.count());
}

TYPED_TEST(LaborDefFileTest, MissingFileIsReported) {
    for (const char* path : {this->path.c_str(), ""}) {
        this->messages.clear();
        typename TypeParam::File file;
        ASSERT_EQ(1, file.Initialize(path));
        EXPECT_EQ(0, file.GetRecords(this->list));
        ASSERT_EQ(1u, this->messages.count());
        EXPECT_EQ("Error", this->messages.messages()[0].caption);
        EXPECT_EQ(TypeParam::kCannotOpen, this->messages.lastText());
    }
    typename TypeParam::File unset;
    EXPECT_EQ(0, unset.Initialize(nullptr));
    EXPECT_EQ(0, unset.Initialize(std::string(300, 'p').c_str()));
    EXPECT_EQ(0, unset.SaveRecords(this->list));
}

TYPED_TEST(LaborDefFileTest, TextFormGivesNameAndGroupPerLine) {
    const std::string longName = std::string(100, 'n') + "CUT";
    WriteBytes(this->path, TypeParam::Text("Fit Up  ,4\r\n\r\n" + longName + ",70000\nweld,,-3\n", 3));
    ASSERT_EQ(1, this->file.Initialize(this->path.c_str()));
    ASSERT_EQ(1, this->file.GetRecords(this->list));
    ASSERT_EQ(3u, this->list.size());
    auto it = this->list.begin();
    EXPECT_STREQ("Fit Up", (*it)->sName);
    EXPECT_EQ(4, +(*it)->nGroupNo);
    ++it;
    EXPECT_EQ(std::string(100, 'n'), (*it)->sName);
    EXPECT_EQ(static_cast<int16_t>(70000), +(*it)->nGroupNo);  // stored as a 16-bit number
    ++it;
    EXPECT_STREQ("weld", (*it)->sName);
    EXPECT_EQ(-3, +(*it)->nGroupNo);
    EXPECT_FALSE(std::filesystem::exists(this->dir.file("labor.DOS")));
    EXPECT_EQ(0u, this->messages.count());
}

TYPED_TEST(LaborDefFileTest, GroupNumberIsFoundByNameIgnoringCase) {
    EXPECT_EQ(-1, this->file.GetGroupNo(this->list, "Cutting"));
    this->list.push_back(this->Make("Cutting", 3));
    this->list.push_back(this->Make("CUTTING", 5));
    this->list.push_back(nullptr);
    this->list.push_back(this->Make("Welding", 0));
    EXPECT_EQ(3, this->file.GetGroupNo(this->list, "cUTTING"));
    EXPECT_EQ(0, this->file.GetGroupNo(this->list, "welding"));
    EXPECT_EQ(-1, this->file.GetGroupNo(this->list, "Weld"));
    EXPECT_EQ(-1, this->file.GetGroupNo(this->list, ""));
}

// Only the operation definitions carry a count line.
TEST(LaborOpDefTextTest, CountLineLimitsTheDefinitionsTaken) {
    testsupport::TempDir dir;
    const std::string path = dir.file("ops.txt");
    RELaborOpDefFile file;
    ASSERT_EQ(1, file.Initialize(path.c_str()));
    std::list<LABOROPDEFRECORD*> list;
    const struct {
        const char* text;
        std::size_t records;
    } cases[] = {{"2\nA,1\n\nB,2\nC,3\n", 2}, {"5\nA,1\n", 1}, {"0\nA,1\n", 0}, {"-1\nA,1\n", 0}, {"", 0}};
    for (const auto& c : cases) {
        WriteBytes(path, c.text);
        ASSERT_EQ(1, file.GetRecords(list));
        EXPECT_EQ(c.records, list.size()) << c.text;
    }
    file.ResetRecords(list);
}

TEST(LaborMiscDefTextTest, EveryLineIsADefinition) {
    testsupport::TempDir dir;
    const std::string path = dir.file("misc.txt");
    WriteBytes(path, "2\nA,1\nB,2\n");
    RELaborMiscDefFile file;
    ASSERT_EQ(1, file.Initialize(path.c_str()));
    std::list<LABORMISCDEFRECORD*> list;
    ASSERT_EQ(1, file.GetRecords(list));
    ASSERT_EQ(3u, list.size());
    EXPECT_STREQ("2", list.front()->sName);
    file.ResetRecords(list);
}

}  // namespace
