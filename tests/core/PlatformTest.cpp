#include "TestSupport.h"

// The platform layer is internal to the library (its symbols are hidden), so this test compiles
// its own copy of it.
#include "core/Platform.cpp"

#include <gtest/gtest.h>

#include <fstream>

namespace {

void Touch(const std::filesystem::path& path, const std::string& content = "") { std::ofstream(path) << content; }

std::string Read(const std::filesystem::path& path) {
    std::ifstream in(path);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

}  // namespace

TEST(Platform, WildcardsMatchLikeTheFileSearch) {
    struct Case {
        const char* name;
        const char* pattern;
        bool matches;
    };
    const Case cases[] = {
        {"JOB1.RDB", "*.RDB", true},   {"job1.rdb", "*.RDB", true},   {"JOB1.RDK", "*.RDB", false},
        {"A.RDB.BAK", "*.RDB", false}, {"A.B.RDB", "*.RDB", true},    {".RDB", "*.RDB", true},
        {"AB", "A?", true},            {"A", "A?", false},            {"ABC", "A*C", true},
        {"AXXBXXC", "A*B*C", true},    {"AXXBXX", "A*B*C", false},    {"anything", "*", true},
        {"", "*", true},               {"", "", true},                {"a", "", false},
    };
    for (const Case& c : cases)
        EXPECT_EQ(platform::MatchesWildcard(c.name, c.pattern), c.matches) << c.name << " ~ " << c.pattern;
}

TEST(Platform, FindFilesListsMatchingRegularFilesByName) {
    testsupport::TempDir dir;
    Touch(dir.path() / "B.RDB");
    Touch(dir.path() / "a.rdb");
    Touch(dir.path() / "A.RDK");
    std::filesystem::create_directory(dir.path() / "D.RDB");
    EXPECT_EQ(platform::FindFiles(dir.path().string(), "*.RDB"), (std::vector<std::string>{"B.RDB", "a.rdb"}));
    EXPECT_TRUE(platform::FindFiles((dir.path() / "missing").string(), "*").empty());
}

TEST(Platform, SplitAndMakePathAreInverse) {
    struct Case {
        const char* path;
        const char* directory;
        const char* name;
        const char* extension;
    };
    const Case cases[] = {
        {"/data/proj/JOB1.RDB", "/data/proj/", "JOB1", ".RDB"},
        {"JOB1.RDB", "", "JOB1", ".RDB"},
        {"/data/proj/JOB1", "/data/proj/", "JOB1", ""},
        {"/data/a.b/JOB1.x.RDB", "/data/a.b/", "JOB1.x", ".RDB"},
        {"/data/proj/", "/data/proj/", "", ""},
#if defined(_WIN32)
        // Either separator, drive letters and shares.
        {"C:\\data\\proj\\JOB1.RDB", "C:\\data\\proj\\", "JOB1", ".RDB"},
        {"C:\\data/proj\\JOB1.RDB", "C:\\data/proj\\", "JOB1", ".RDB"},
        {"C:JOB1.RDB", "C:", "JOB1", ".RDB"},
        {"C:\\JOB1", "C:\\", "JOB1", ""},
        {"\\\\server\\share\\JOB1.RDP", "\\\\server\\share\\", "JOB1", ".RDP"},
#endif
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.path);
        platform::PathParts parts = platform::SplitPath(c.path);
        EXPECT_EQ(parts.directory, c.directory);
        EXPECT_EQ(parts.name, c.name);
        EXPECT_EQ(parts.extension, c.extension);
        EXPECT_EQ(platform::MakePath(parts.directory, parts.name, parts.extension), c.path);
    }
    EXPECT_EQ(platform::MakePath("/data", "JOB1", "RDK"), std::string("/data") + platform::PathSeparator() + "JOB1.RDK");
#if defined(_WIN32)
    EXPECT_EQ(platform::MakePath("C:/data", "JOB1", ".RDK"), "C:/data\\JOB1.RDK");
    EXPECT_EQ(platform::MakePath("C:", "JOB1", "RDK"), "C:JOB1.RDK");
#endif
}

TEST(Platform, WholeFileOperations) {
    testsupport::TempDir dir;
    const auto a = dir.path() / "a";
    const auto b = dir.path() / "b";
    const auto c = dir.path() / "c";
    Touch(a, "first");
    Touch(b, "second");

    EXPECT_FALSE(platform::CopyFileTo(a.string(), b.string(), false));
    EXPECT_EQ(Read(b), "second");
    EXPECT_TRUE(platform::CopyFileTo(a.string(), b.string(), true));
    EXPECT_EQ(Read(b), "first");

    EXPECT_FALSE(platform::MoveFileTo(a.string(), b.string()));
    EXPECT_TRUE(platform::MoveFileTo(a.string(), c.string()));
    EXPECT_FALSE(platform::FileExists(a.string()));
    EXPECT_EQ(Read(c), "first");

    EXPECT_TRUE(platform::RemoveFile(c.string()));
    EXPECT_FALSE(platform::RemoveFile(c.string()));
    EXPECT_FALSE(platform::RemoveFile(dir.path().string()));
    EXPECT_FALSE(platform::CopyFileTo(c.string(), a.string(), true));
}

TEST(Platform, LookUpPathTellsMissingFromRejected) {
    testsupport::TempDir dir;
    Touch(dir.path() / "here");
    EXPECT_EQ(platform::LookUpPath((dir.path() / "here").string()), platform::PathState::Exists);
    EXPECT_EQ(platform::LookUpPath((dir.path() / "gone").string()), platform::PathState::Missing);
    EXPECT_EQ(platform::LookUpPath((dir.path() / "gone" / "x").string()), platform::PathState::Missing);
    EXPECT_EQ(platform::LookUpPath((dir.path() / "here" / "x").string()), platform::PathState::Missing);
    EXPECT_EQ(platform::LookUpPath((dir.path() / std::string(300, 'n')).string()), platform::PathState::Invalid);
    EXPECT_EQ(platform::LookUpPath(""), platform::PathState::Invalid);
    EXPECT_EQ(platform::LookUpPath(std::string("a\0b", 3)), platform::PathState::Invalid);
}

TEST(Platform, NamesOfThisMachine) {
    EXPECT_FALSE(platform::ComputerName().empty());
#if !defined(_WIN32)  // Windows short forms: tests/windows
    EXPECT_EQ(platform::ShortPathName("/some/long path/name.RDB"), "/some/long path/name.RDB");
#endif
}
