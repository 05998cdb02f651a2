// The platform layer as Windows runs it: short names, the computer name, drive letters and both
// separators, whole-file operations, the engine that is never started, the owner-liveness mark.
#include "ChildProcess.h"
#include "TestSupport.h"

// The platform layer is internal to the library (its symbols are not exported), so this test
// compiles its own copy of it.
#include "core/Platform.cpp"

#include "../core/SmallCodeFile.h"
#include "BTRCALL.h"
#include "REErrorMessages.h"

#include <gtest/gtest.h>

#include <cstring>
#include <fstream>

namespace {

namespace fs = std::filesystem;

void Touch(const fs::path& path, const std::string& content = "") { std::ofstream(path) << content; }

std::string Read(const fs::path& path) {
    std::ifstream in(path);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

// Answers every line with the line itself, until its input ends.
TARSEL_CHILD_ROUTINE(echo) {
    std::string line;
    while (channel.readLine(line))
        channel.writeLine(line);
}

TEST(WindowsPlatform, ShortNamesNameTheSameFileIn83Form) {
    testsupport::TempDir dir;
    const fs::path folder = dir.path() / "a rather long folder name";
    fs::create_directory(folder);
    const fs::path file = folder / "LongFileName.data";
    Touch(file, "x");

    const std::string shortPath = platform::ShortPathName(file.string());
    ASSERT_FALSE(shortPath.empty());
    EXPECT_LT(shortPath.size(), file.string().size());
    EXPECT_EQ(shortPath.find(' '), std::string::npos) << shortPath;
    const platform::PathParts parts = platform::SplitPath(shortPath);
    EXPECT_LE(parts.name.size(), 8u) << shortPath;
    EXPECT_LE(parts.extension.size(), 4u) << shortPath;
    EXPECT_TRUE(fs::equivalent(fs::path(shortPath), file));

    // Only what exists has a short form.
    EXPECT_EQ(platform::ShortPathName((folder / "missing.dat").string()), "");
}

TEST(WindowsPlatform, ComputerNameIsTheNetBiosName) {
    const std::string name = platform::ComputerName();
    EXPECT_FALSE(name.empty());
    EXPECT_LE(name.size(), size_t(MAX_COMPUTERNAME_LENGTH));
    EXPECT_EQ(name.find('\0'), std::string::npos);
}

TEST(WindowsPlatform, WholeFileOperationsWithMixedSeparators) {
    testsupport::TempDir dir;
    std::string base = dir.path().string();
    for (char& c : base)
        if (c == '\\')
            c = '/';
    const std::string a = base + "/a.rdb", b = base + "\\b.RDB", c = base + "/sub\\c.rdb";
    fs::create_directory(dir.path() / "sub");
    Touch(a, "first");

    EXPECT_TRUE(platform::CopyFileTo(a, b, false));
    EXPECT_FALSE(platform::CopyFileTo(a, b, false));
    EXPECT_TRUE(platform::MoveFileTo(a, c));
    EXPECT_FALSE(platform::FileExists(a));
    EXPECT_EQ(Read(c), "first");
    EXPECT_FALSE(platform::MoveFileTo(b, c));

    // The search ignores letter case in names, as Windows does, and lists regular files only; a
    // longer extension does not match through its 8.3 form.
    Touch(base + "/longer name.rdbx");
    EXPECT_EQ(platform::FindFiles(base, "*.rdb"), (std::vector<std::string>{"b.RDB"}));
    EXPECT_EQ(platform::FindFiles(base + "\\sub", "C.RDB"), (std::vector<std::string>{"c.rdb"}));

    EXPECT_TRUE(platform::RemoveFile(b));
    EXPECT_FALSE(platform::RemoveFile(base + "\\sub"));
    EXPECT_EQ(platform::LookUpPath(b), platform::PathState::Missing);
    EXPECT_EQ(platform::LookUpPath(base + "/sub/c.rdb"), platform::PathState::Exists);
}

TEST(WindowsPlatform, TheEngineIsNeitherStartedNorStopped) {
    PROCESS_INFORMATION info{};
    EXPECT_EQ(LoadBtrieveEngine(&info), 0);
    EXPECT_EQ(info.hProcess, nullptr);
    EXPECT_EQ(info.dwProcessId, 0u);

    // Handed a live process, the stop leaves it running.
    testsupport::ChildProcess child("echo");
    info.hProcess = ::OpenProcess(PROCESS_TERMINATE | SYNCHRONIZE, FALSE, DWORD(child.pid()));
    ASSERT_NE(info.hProcess, nullptr);
    EXPECT_EQ(UnLoadBtrieveEngine(&info), 0);
    EXPECT_EQ(child.request("still here"), "still here");
    EXPECT_EQ(child.finish(), 0);
    ::CloseHandle(info.hProcess);
}

// An application may load the library by a name of its own and unload it again. Once a read has
// started the engine's idle thread, the unload leaves the library in place instead of pulling
// the thread's code out from under it.
TEST(WindowsPlatform, TheLibraryStaysLoadedOnceItsEngineRunsAThread) {
    char linked[MAX_PATH] = {};
    ASSERT_GT(::GetModuleFileNameA(::GetModuleHandleA("tarsel.dll"), linked, MAX_PATH), 0u);
    const fs::path copy = fs::path(linked).parent_path() / "tarsel-loaded-again.dll";
    ASSERT_TRUE(::CopyFileA(linked, copy.string().c_str(), FALSE));
    HMODULE again = ::LoadLibraryA(copy.string().c_str());
    ASSERT_NE(again, nullptr);
    const auto call = reinterpret_cast<decltype(&BTRCALL)>(reinterpret_cast<void (*)()>(::GetProcAddress(again, "BTRCALL")));
    ASSERT_NE(call, nullptr);

    testsupport::TempDir dir;
    char key[255] = {};
    const std::string path = (dir.path() / "again.dat").string();
    std::memcpy(key, path.c_str(), path.size() + 1);
    uint8_t block[32] = {16, 0, 0, 2, 1};  // 16-byte records, 512-byte pages, one key:
    block[16] = 1;                          // the first 4 bytes
    block[18] = 4;
    uint32_t length = sizeof block;
    ASSERT_EQ(call(14, nullptr, block, &length, key, 255, 0), 0);
    char position[128] = {};
    ASSERT_EQ(call(0, position, nullptr, nullptr, key, 255, 0), 0);
    uint8_t record[16] = {};
    for (uint8_t i = 0; i < 3; ++i) {
        record[0] = i;
        length = sizeof record;
        ASSERT_EQ(call(2, position, record, &length, key, 255, 0), 0);
    }
    length = sizeof record;
    ASSERT_EQ(call(12, position, record, &length, key, 255, 0), 0);
    length = sizeof record;
    ASSERT_EQ(call(6, position, record, &length, key, 255, 0), 0);
    ASSERT_EQ(call(1, position, nullptr, nullptr, key, 255, 0), 0);

    ::FreeLibrary(again);
    ::Sleep(20);
    EXPECT_EQ(::GetModuleHandleA(copy.filename().string().c_str()), again);
}

TEST(WindowsPlatform, AKilledChildEndsWithoutAnExitStatus) {
    testsupport::ChildProcess child("echo");
    ASSERT_EQ(child.request("a"), "a");
    child.kill();
    EXPECT_EQ(child.receive(), testsupport::ChildProcess::kEnded);
    EXPECT_EQ(child.finish(), -1);
}

// Open hands the record manager the 8.3 form, which must keep within 64 characters.
TEST(WindowsPlatform, OpenRefusesAShortFormBeyond64CharactersSilently) {
    testsupport::TempDir dir;
    testsupport::MessageCapture messages;

    // A long path whose short form is short enough opens.
    fs::path shallow = dir.path() / "a folder whose long name alone passes sixty-four characters by far";
    fs::create_directory(shallow);
    const std::string shallowFile = (shallow / "codes.dat").string();
    {
        SmallCodeFile file;
        ASSERT_EQ(file.CreateNewFile(shallowFile.c_str()), 1);
    }
    ASSERT_GT(shallowFile.size(), 64u);
    ASSERT_LE(platform::ShortPathName(shallowFile).size(), 64u);
    SmallCodeFile opened;
    EXPECT_EQ(opened.Open(shallowFile.c_str()), 1);

    // Folders nested until even the short form passes 64 characters.
    fs::path deep = dir.path();
    while (platform::ShortPathName(deep.string()).size() <= 64) {
        deep /= "nested folder";
        fs::create_directory(deep);
    }
    const std::string deepFile = (deep / "codes.dat").string();
    ASSERT_TRUE(platform::CopyFileTo(shallowFile, deepFile, false));
    SmallCodeFile refused;
    EXPECT_EQ(refused.Open(deepFile.c_str()), 0);
    EXPECT_EQ(refused.IsOpen(), 0);
    EXPECT_EQ(messages.count(), 0u);
}

}  // namespace
