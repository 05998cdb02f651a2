// The shape file: the shared record-file behaviour, the search by code, the pick-list texts,
// stored-layout files read and updated in place, the copy to a new file and its messages.
#include "REShapeFile.h"
#include "RESharedHelpers.h"

#include "RecordBuilders.h"
#include "RecordFilePatternSuite.h"
#include "StatusInjector.h"
#include "TestSupport.h"
#include "catalogue/ShapeFileTraits.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <list>
#include <string>
#include <vector>

namespace {

struct ShapePatternTraits {
    using File = REShapeFile;
    using Record = SHAPEDATRECORD;
    static constexpr const char* kClassName = "REShapeFile";
    static constexpr uint16_t kRecordLength = 303;
    static constexpr bool kStaysOpenOnCorrupt = true;
    static constexpr const char* kCorruptText = "Shape data file is corrupt.";
    static constexpr const char* kUnknownErrorText = "Unknown error in shape database file. [Error# %d]";
    static constexpr const char* kCreateErrorText = "Unknown error in shape database file. [Error# %d]";

    static Record Sample(int key, int content = 0) {
        Record rec{};
        std::snprintf(rec.szShape, sizeof rec.szShape, "S%03u", static_cast<unsigned>(key) % 1000u);
        std::snprintf(rec.szDescription, sizeof rec.szDescription, "shape %d", content);
        rec.nNumbers81[5] = static_cast<int16_t>(content);
        std::snprintf(rec.descs193[10].szFieldCode, sizeof rec.descs193[10].szFieldCode, "D%d", content % 10);
        return rec;
    }
    static int Update(File& file, Record&, Record& changed) { return file.UpdateRecord(changed); }
    // The class never deletes a shape: position by its search and delete through the base.
    static int Delete(File& file, Record& rec) {
        Record found;
        return file.SearchFirstRecord(rec.szShape, nullptr) &&
               file.Btrieve(REBtrieveBase::kOpDelete, &found) == REBtrieveBase::kStatusSuccess;
    }
};

// The stored key: the code in four bytes, without regard to case.
constexpr REKeySegment kOldShapeKey[] = {{1, 4, kKeyLastSegment | kKeyCaseInsensitive, kKeyTypeString, kKeyNullByte}};

using testsupport::ListControl;
using testsupport::PutOld;

// A stored shape with every descriptor filled; `filter` is the seventh descriptor's last attribute.
OLD_SHAPEDATRECORD OldShape(const char* code, const char* description, int16_t flags, char filter) {
    auto rec = testsupport::Blank<OLD_SHAPEDATRECORD>();
    PutOld(rec.szShape, code);
    PutOld(rec.szCode5, "S");
    PutOld(rec.szDescription, description);
    rec.nNumber71 = 71;
    rec.nFlags = flags;
    for (int i = 0; i < 6; ++i)
        rec.nNumbers81[i] = static_cast<int16_t>(-i);
    for (int i = 0; i < 10; ++i) {
        char field[4];
        std::snprintf(field, sizeof field, "A%02d", i);
        PutOld(rec.descs93[i].szFieldCode, 3, field);
        field[0] = 'B';
        PutOld(rec.descs193[i].szFieldCode, 3, field);
        rec.descs93[i].szAttr4[0] = 'x';
    }
    rec.descs93[6].szAttr8[0] = filter;
    return rec;
}

class ShapeFileTest : public ::testing::Test {
protected:
    std::string oldFile() {
        const std::string at = dir.file("shape.old");
        testsupport::WriteOldFile<OLD_SHAPEDATRECORD>(at, kOldShapeKey,
                                                      {OldShape("WT", "Structural tee", 0, 'p'),
                                                       OldShape("W", "Wide flange", REShapeFile::kShapeNoGrade, 'P'),
                                                       OldShape("PL", "Plate", REShapeFile::kShapeNoLength, 'Q')});
        return at;
    }
    testsupport::TempDir dir;
};

TEST(ShapeRecord, OldLayoutsRoundTripThroughTheirFieldTables) {
    OLD_SIZERECORDDESC old;
    std::memcpy(&old, "WD X  ", sizeof old);
    SIZERECORDDESC desc;
    std::memset(&desc, 0x55, sizeof desc);
    ASSERT_EQ(1, gConvertSizeRecordDescToNewFormat(&old, &desc));
    EXPECT_EQ(0, std::memcmp("WD\0\0X\0\0\0\0\0", &desc, sizeof desc));
    OLD_SIZERECORDDESC back;
    ASSERT_EQ(1, gConvertSizeRecordDescToOldFormat(&desc, &back));
    EXPECT_EQ(0, std::memcmp("WD X  ", &back, sizeof back));
    EXPECT_EQ(0, gConvertSizeRecordDescToNewFormat(nullptr, &desc));
}

TEST_F(ShapeFileTest, StoredLayoutIsSearchedReadAndUpdatedInPlace) {
    const std::string at = oldFile();
    {
        REShapeFile file;
        ASSERT_EQ(1, file.Initialize(at.c_str()));
        EXPECT_EQ(1, file.m_isOldFormat);
        SHAPEDATRECORD rec;
        ASSERT_EQ(1, file.SearchFirstRecord("w", &rec));
        EXPECT_EQ(1, file.m_searchActive);
        EXPECT_STREQ("W", rec.szShape);
        EXPECT_STREQ("Wide flange", rec.szDescription);
        EXPECT_STREQ("A09", rec.descs93[9].szFieldCode);
        EXPECT_STREQ("B09", rec.descs193[9].szFieldCode);
        const SIZERECORDDESC zero{};
        EXPECT_EQ(0, std::memcmp(&zero, &rec.descs193[10], sizeof zero));
        EXPECT_EQ(0, file.SearchNextRecord("W", &rec));  // the next one is WT
        EXPECT_EQ(0, file.m_searchActive);
        EXPECT_EQ(1, file.GetFirstMatch("Wt", nullptr));
        EXPECT_EQ(0, file.GetNextMatch("WT", nullptr));

        // A prefix of a stored code is not found; an empty code neither, the search left on.
        EXPECT_EQ(0, file.SearchFirstRecord("P", &rec));
        EXPECT_EQ(0, file.m_searchActive);
        EXPECT_EQ(0, file.SearchFirstRecord("", &rec));
        EXPECT_EQ(1, file.m_searchActive);
        ASSERT_EQ(1, file.GetLastRecord(&rec));
        EXPECT_EQ(0, file.m_searchActive);
        EXPECT_STREQ("WT", rec.szShape);

        EXPECT_EQ(1, file.IsLengthFieldValid(std::string("w")));
        EXPECT_EQ(0, file.IsLengthFieldValid(std::string("PL")));
        EXPECT_EQ(0, file.IsLengthFieldValid(std::string("HP")));
        ASSERT_EQ(1, file.SearchFirstRecord("W", &rec));
        EXPECT_EQ(0, file.IsGradeFieldValid(&rec));
        EXPECT_EQ(1, file.IsLengthFieldValid(&rec));

        std::strcpy(rec.szDescription, "W shape");
        std::strcpy(rec.descs193[10].szFieldCode, "C10");
        testsupport::TraceCapture traces;
        EXPECT_EQ(1, file.UpdateRecord(rec));
        SHAPEDATRECORD missing = rec;
        std::strcpy(missing.szShape, "HP");
        EXPECT_EQ(0, file.UpdateRecord(missing));
        EXPECT_EQ("<<REShapeFile::UpdateRecord>> Record not found in the database, UPDATE failed\n",
                  traces.traces().back());
    }
    const auto records = testsupport::StoredRecords<OLD_SHAPEDATRECORD>(at);
    ASSERT_EQ(3u, records.size());
    // Written back in the stored layout; the eleventh descriptor has no place there.
    const OLD_SHAPEDATRECORD expected = OldShape("W", "W shape", REShapeFile::kShapeNoGrade, 'P');
    EXPECT_EQ(0, std::memcmp(&expected, records[1].data(), sizeof expected));
}

TEST_F(ShapeFileTest, PickListTextsInKeyOrder) {
    REShapeFile file;
    ASSERT_EQ(1, file.Initialize(oldFile().c_str()));
    ListControl all, filtered;
    EXPECT_EQ(1, file.FillComboWithShapes(&all));
    EXPECT_EQ((std::vector<std::string>{"PL   - Plate", "W    - Wide flange", "WT   - Structural tee"}), all.texts);
    EXPECT_EQ(1, file.FillComboWithShapes("p", &filtered));
    EXPECT_EQ((std::vector<std::string>{"W - Wide flange", "WT - Structural tee"}), filtered.texts);

    std::list<std::string> shapes = {"kept"};
    EXPECT_EQ(4, file.FindAllShapes(shapes));
    EXPECT_EQ("PL   - Plate", *std::next(shapes.begin()));

    REShapeFile empty;
    testsupport::CreateAndOpen(empty, dir.file("empty.dat"));
    ListControl none;
    EXPECT_EQ(-1, empty.FindAllShapes(shapes));
    EXPECT_EQ(4u, shapes.size());
    EXPECT_EQ(0, empty.FillComboWithShapes(&none));
    EXPECT_EQ(0, empty.FillComboWithShapes("P", &none));
    EXPECT_TRUE(none.texts.empty());
}

TEST_F(ShapeFileTest, CopyToNewFileKeepsTheStoredLayout) {
    REShapeFile file;
    ASSERT_EQ(1, file.Initialize(oldFile().c_str()));
    const std::string copy = dir.file("copy.old");
    EXPECT_EQ(1, file.CopyRecordsToNewFile(copy.c_str()));
    REShapeFile cloned;
    ASSERT_EQ(1, cloned.Initialize(copy.c_str()));
    EXPECT_EQ(1, cloned.m_isOldFormat);
    std::list<std::string> shapes;
    EXPECT_EQ(3, cloned.FindAllShapes(shapes));
    EXPECT_EQ(1, cloned.SearchFirstRecord("pl", nullptr));  // the key came along, case and all

    EXPECT_EQ(1, file.CopyRecordsToNewFile(dir.file("no dir/copy.dat").c_str()));
    {
        testsupport::StatusInjector injector(REBtrieveBase::kOpInsert, 2);
        EXPECT_EQ(0, file.CopyRecordsToNewFile(dir.file("refused.dat").c_str()));
    }
}

}  // namespace

INSTANTIATE_TYPED_TEST_SUITE_P(Catalogue, RecordFilePattern, ::testing::Types<ShapePatternTraits>);
