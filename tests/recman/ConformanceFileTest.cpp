// Open, Close, Create, Stat and Version: paths, modes, the create block and its validation order.
#include "ConformanceFixture.h"

#include <filesystem>
#include <fstream>
#include <sys/stat.h>
#include <unistd.h>

namespace conformance {
namespace {

namespace fs = std::filesystem;

using FileOps = Conformance;

FileLayout sampleLayout() {
    return {64,
            {{seg(1, 10, type::ZString, kf::Modifiable | kf::NoCase), seg(11, 4, type::Unsigned, 0, 0x14)},
             {seg(21, 8, type::Integer, kf::Dup | kf::Descending)}},
            0x0040,
            1024};
}

TEST_F(FileOps, VersionAnswersOneZeroE) {
    uint8_t buffer[8];
    std::memset(buffer, 0xCC, sizeof buffer);
    uint32_t length = sizeof buffer;
    EXPECT_EQ(st::Ok, BTRCALL(op::Version, nullptr, buffer, &length, nullptr, 0, 0));
    EXPECT_EQ(5u, length);
    EXPECT_EQ(raw({1, 0, 0, 0, 'E', 0xCC}), Bytes(buffer, buffer + 6));

    uint8_t shortBuffer[4] = {0xCC, 0xCC, 0xCC, 0xCC};
    length = 4;
    EXPECT_EQ(st::BadLength, BTRCALL(op::Version, nullptr, shortBuffer, &length, nullptr, 0, 0));
    EXPECT_EQ(4u, length);
    EXPECT_EQ(raw({0xCC, 0xCC, 0xCC, 0xCC}), Bytes(shortBuffer, shortBuffer + 4));
}

TEST_F(FileOps, StatReportsTheBlockAsCreatedWithTheRecordCount) {
    FileLayout layout = sampleLayout();
    Bytes block = createBlock(layout);
    // Spare descriptions and reserved fields carry junk, as when a Stat block is passed back.
    put(block, 6, le(0xDEADBEEF, 4));
    put(block, 12, le(0x12345678, 4));
    put(block, 16 + 6, le(77, 4));
    for (int spare = 0; spare < 3; ++spare) {
        Bytes junk(kSegmentSize, 0xFF);
        block.insert(block.end(), junk.begin(), junk.end());
    }
    std::string p = path();
    ASSERT_EQ(st::Ok, createRaw(p, block, static_cast<uint32_t>(block.size())));

    Handle h;
    ASSERT_EQ(st::Ok, h.open(p));
    Bytes expected = createBlock(layout);
    Bytes stat(expected.size() + 8, 0xEE);
    uint32_t length = uint32_t(stat.size());
    ASSERT_EQ(st::Ok, h.call(op::Stat, stat.data(), &length, 0));
    ASSERT_EQ(expected.size(), length);
    EXPECT_EQ(expected, slice(stat, 0, length));
    EXPECT_EQ(0xEE, stat[length]) << "nothing written past the block";
    // A short buffer gets what fits, and the key buffer is left alone.
    h.key.fill(0xAB);
    Bytes part(20, 0xEE);
    length = 20;
    EXPECT_EQ(st::BadLength, h.call(op::Stat, part.data(), &length, 0));
    EXPECT_EQ(20u, length);
    EXPECT_EQ(slice(expected, 0, 20), part);
    EXPECT_EQ(0xAB, h.key[0]);
    EXPECT_EQ(0xAB, h.key[254]);

    Handle other;
    ASSERT_EQ(st::Ok, other.open(p));
    for (int i = 0; i < 3; ++i)
        ASSERT_EQ(st::Ok, other.insert(record(64, {{0, text("K" + std::to_string(i), 10)}})));
    EXPECT_EQ(3u, h.count());  // every handle's committed records
    ASSERT_EQ(st::Ok, other.erase());
    EXPECT_EQ(2u, h.count());
}

TEST_F(FileOps, OpenRefusesWhatIsNotAFileOfThisEngine) {
    EXPECT_EQ(st::BadPath, Handle().open(""));
    EXPECT_EQ(st::NoFile, Handle().open(path("absent.dat")));
    fs::create_directory(path("dir"));
    EXPECT_EQ(st::NoFile, Handle().open(path("dir")));

    std::ofstream(path("text.dat")) << "not a record-manager file\n";
    std::ofstream(path("empty.dat")).flush();
    // A plain database, and one whose table looks like ours but holds another signature.
    const std::pair<const char*, const char*> databases[] = {
        {"plain.db", "CREATE TABLE t(x); INSERT INTO t VALUES(1);"},
        {"meta.db", "CREATE TABLE meta(name, value); INSERT INTO meta VALUES('signature', 'x');"}};
    for (auto [name, sql] : databases) {
        std::ofstream(path(name)).flush();
        ASSERT_EQ("", sqlite(path(name), sql));
    }
    for (const char* name : {"text.dat", "empty.dat", "plain.db", "meta.db"}) {
        SCOPED_TRACE(name);
        const auto before = fs::file_size(path(name));
        Handle h;
        EXPECT_EQ(st::NotOurFile, h.open(path(name)));
        EXPECT_EQ(st::NotOpen, h.close());
        EXPECT_EQ(before, fs::file_size(path(name))) << "the file was changed";
    }
}

TEST_F(FileOps, OpenModes) {
    std::string p = makeFile(twoKeyFile());
    {
        Handle writer;
        ASSERT_EQ(st::Ok, writer.open(p));
        ASSERT_EQ(st::Ok, writer.insert(twoKeyRecord(1, 1)));
    }
    Handle readOnly;
    ASSERT_EQ(st::Ok, readOnly.open(p, -2));
    EXPECT_EQ(st::Denied, readOnly.insert(twoKeyRecord(2, 2)));
    ASSERT_EQ(st::Ok, readOnly.get(op::GetFirst));
    EXPECT_EQ(st::Denied, readOnly.update(twoKeyRecord(1, 5)));
    EXPECT_EQ(st::Denied, readOnly.erase());
    EXPECT_EQ(1u, readOnly.count());
    // -1, -3 and unknown modes act as normal.
    for (int8_t mode : {int8_t(-1), int8_t(-3), int8_t(5), int8_t(-100)}) {
        SCOPED_TRACE(int(mode));
        Handle h;
        ASSERT_EQ(st::Ok, h.open(p, mode));
        EXPECT_EQ(st::Ok, h.insert(twoKeyRecord(mode, 100 + mode)));
    }
}

TEST_F(FileOps, ExclusiveOpensClashByFileIdentity) {
    std::string p = makeFile(twoKeyFile());
    fs::create_directory(path("sub"));
    std::string dotted = dir.path().string() + "/sub/../file.dat";
    fs::create_symlink(p, path("link.dat"));
    fs::create_hard_link(p, path("hard.dat"));

    Handle normal;
    ASSERT_EQ(st::Ok, normal.open(p));
    EXPECT_EQ(st::CannotCreate, create(path("hard.dat"), twoKeyFile())) << "a second name of an open file";
    EXPECT_EQ(st::InUse, Handle().open(p, -4));
    EXPECT_EQ(st::InUse, Handle().open(path("link.dat"), -4));
    ASSERT_EQ(st::Ok, normal.close());

    Handle exclusive;
    ASSERT_EQ(st::Ok, exclusive.open(dotted, -4));
    for (const std::string& name : {p, path("link.dat"), path("hard.dat")}) {
        SCOPED_TRACE(name);
        EXPECT_EQ(st::FileLocked, Handle().open(name));
        EXPECT_EQ(st::FileLocked, Handle().open(name, -2));
        EXPECT_EQ(st::FileLocked, Handle().open(name, -4));
    }
    EXPECT_EQ(st::CannotCreate, create(path("link.dat"), twoKeyFile()));
    ASSERT_EQ(st::Ok, exclusive.insert(twoKeyRecord(1, 1)));
    ASSERT_EQ(st::Ok, exclusive.close());
    Handle again;
    ASSERT_EQ(st::Ok, again.open(path("hard.dat")));
    EXPECT_EQ(1u, again.count());
}

TEST_F(FileOps, PathIsCutAtNulOrKeyLength) {
    std::string p = makeFile(twoKeyFile(), "with blank .dat");
    std::array<uint8_t, kBlockSize> block{};
    uint32_t length = 0;
    std::array<uint8_t, kKeyBufferSize> key{};

    // Length without the NUL, zeros beyond.
    std::memcpy(key.data(), p.data(), p.size());
    ASSERT_EQ(st::Ok, BTRCALL(op::Open, block.data(), nullptr, &length, key.data(), uint8_t(p.size()), 0));
    ASSERT_EQ(st::Ok, BTRCALL(op::Close, block.data(), nullptr, nullptr, nullptr, 0, 0));
    // Length 0 reads up to 255 bytes, cut at the NUL.
    ASSERT_EQ(st::Ok, BTRCALL(op::Open, block.data(), nullptr, &length, key.data(), 0, 0));
    ASSERT_EQ(st::Ok, BTRCALL(op::Close, block.data(), nullptr, nullptr, nullptr, 0, 0));
    // Bytes past keyLength are not part of the path.
    key[p.size()] = 'X';
    ASSERT_EQ(st::Ok, BTRCALL(op::Open, block.data(), nullptr, &length, key.data(), uint8_t(p.size()), 0));
    ASSERT_EQ(st::Ok, BTRCALL(op::Close, block.data(), nullptr, nullptr, nullptr, 0, 0));
    // ... but with the full length they are; and a trailing blank is part of the name.
    EXPECT_EQ(st::NoFile, BTRCALL(op::Open, block.data(), nullptr, &length, key.data(), 0, 0));
    EXPECT_EQ(st::NoFile, Handle().open(p + " "));
}

// A path of 255 bytes fills the key buffer with no NUL; one of 254 leaves room for it.
TEST_F(FileOps, TheLongestPathsFitTheKeyBuffer) {
    for (size_t wanted : {size_t(254), size_t(255)}) {
        SCOPED_TRACE(wanted);
        std::string p = dir.path().string() + "/l" + std::to_string(wanted);
        fs::create_directory(p);
        while (p.size() + 1 + 100 < wanted) {
            p += "/" + std::string(99, 'd');
            fs::create_directory(p);
        }
        p += "/" + std::string(wanted - p.size() - 1, 'f');
        ASSERT_EQ(wanted, p.size());
        std::array<uint8_t, kKeyBufferSize> key{};
        std::memcpy(key.data(), p.data(), p.size());
        Bytes block = createBlock(twoKeyFile());
        uint32_t length = static_cast<uint32_t>(block.size());
        ASSERT_EQ(st::Ok, BTRCALL(op::Create, nullptr, block.data(), &length, key.data(), 255, 0));
        EXPECT_TRUE(fs::exists(p));
        std::array<uint8_t, kBlockSize> pos{};
        length = 0;
        EXPECT_EQ(st::Ok, BTRCALL(op::Open, pos.data(), nullptr, &length, key.data(), 0, 0));
        EXPECT_EQ(st::Ok, BTRCALL(op::Close, pos.data(), nullptr, nullptr, nullptr, 0, 0));
    }
}

TEST_F(FileOps, RelativePathStartsAtTheCurrentDirectory) {
    makeFile(twoKeyFile(), "rel.dat");
    fs::path previous = fs::current_path();
    fs::current_path(dir.path());
    Handle h;
    int16_t status = h.open("rel.dat");
    int16_t created = create("made.dat", twoKeyFile());
    fs::current_path(previous);
    EXPECT_EQ(st::Ok, status);
    EXPECT_EQ(st::Ok, created);
    EXPECT_TRUE(fs::exists(path("made.dat")));
}

TEST_F(FileOps, CloseEndsTheHandleAndZeroesTheBlock) {
    std::string p = makeFile(twoKeyFile());
    Handle h;
    ASSERT_EQ(st::Ok, h.open(p));
    ASSERT_EQ(st::Ok, h.close());
    EXPECT_EQ((std::array<uint8_t, kBlockSize>{}), h.block);
    EXPECT_EQ(st::NotOpen, h.close());
    EXPECT_EQ(st::NotOpen, BTRCALL(op::Close, nullptr, nullptr, nullptr, nullptr, 0, 0));
}

// Once its last handle closes, a file is whole on its own: it may be moved or copied.
TEST_F(FileOps, ClosedFileStandsAloneAtItsPath) {
    std::string p = makeFile(twoKeyFile());
    {
        Handle h, second;
        ASSERT_EQ(st::Ok, h.open(p));
        ASSERT_EQ(st::Ok, second.open(p));
        for (int i = 0; i < 20; ++i)
            ASSERT_EQ(st::Ok, h.insert(twoKeyRecord(i, i)));
        ASSERT_EQ(st::Ok, h.close());
        EXPECT_EQ(20u, second.count()) << "the other handle keeps the file";
    }
    for (const auto& entry : fs::directory_iterator(dir.path()))
        EXPECT_EQ(p, entry.path().string()) << "companion file left behind";
    fs::copy_file(p, path("copy.dat"));
    fs::rename(p, path("moved.dat"));
    for (const char* name : {"moved.dat", "copy.dat"}) {
        SCOPED_TRACE(name);
        Handle h;
        ASSERT_EQ(st::Ok, h.open(path(name)));
        EXPECT_EQ(20u, h.count());
        EXPECT_EQ(20u, h.readAll().size());
    }
}

TEST_F(FileOps, PermissionsAreCheckedAtOpen) {
#if defined(_WIN32)
    GTEST_SKIP() << "Windows file modes cannot deny reading a file";
#else
    if (::geteuid() == 0)
        GTEST_SKIP() << "file permissions do not bind root";
#endif
    std::string p = makeFile(twoKeyFile());
    ::chmod(p.c_str(), 0444);
    EXPECT_EQ(st::Denied, Handle().open(p));
    EXPECT_EQ(st::Ok, Handle().open(p, -2));
    ::chmod(p.c_str(), 0);
    EXPECT_EQ(st::Denied, Handle().open(p, -2));
}

}  // namespace
}  // namespace conformance
