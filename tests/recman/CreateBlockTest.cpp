// Create's validation through BTRCALL: each status in its place in the check order, shown by a
// block that fails that check and every later one, so a wrong order answers the later status.
#include "BTRCALL.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace {

constexpr uint16_t kCreate = 14, kOpen = 0, kClose = 1, kStat = 15;

struct Segment {
    uint16_t position = 0, length = 0, flags = 0;
    uint8_t type = 0, nullValue = 0;
};

// A create block: header and segment descriptions, little-endian.
struct Block {
    uint16_t recordLength = 100, pageSize = 4096, keys = 1, fileFlags = 0;
    std::vector<Segment> segments = std::vector<Segment>(1, Segment{1, 10, 0x0100, 11, 0});

    std::vector<uint8_t> bytes() const
    {
        std::vector<uint8_t> b(16 + 16 * segments.size(), 0);
        auto put16 = [&](size_t at, uint16_t v) {
            b[at] = uint8_t(v);
            b[at + 1] = uint8_t(v >> 8);
        };
        put16(0, recordLength);
        put16(2, pageSize);
        put16(4, keys);
        put16(10, fileFlags);
        for (size_t i = 0; i < segments.size(); ++i) {
            const size_t at = 16 + 16 * i;
            put16(at, segments[i].position);
            put16(at + 2, segments[i].length);
            put16(at + 4, segments[i].flags);
            b[at + 10] = segments[i].type;
            b[at + 11] = segments[i].nullValue;
        }
        return b;
    }
};

int16_t create(const std::string& path, const Block& block, int8_t mode = 0, int64_t lengthChange = 0)
{
    std::vector<uint8_t> b = block.bytes();
    uint32_t length = uint32_t(int64_t(b.size()) + lengthChange);
    std::vector<char> key(255, 0);
    std::memcpy(key.data(), path.data(), std::min<size_t>(path.size(), 254));
    return BTRCALL(kCreate, nullptr, b.data(), &length, key.data(), 255, mode);
}

std::vector<Segment> manySegments(size_t n, uint16_t length)
{
    std::vector<Segment> s;
    for (size_t i = 0; i < n; ++i)
        s.push_back({uint16_t(1 + i % 50), length, uint16_t(0x0100 | (i + 1 < n ? 0x0010 : 0)), 14});
    return s;
}

struct OrderCase {
    const char* name;
    std::function<void(Block&)> change;
    int16_t status;
    int64_t lengthChange = 0;
};

TEST(CreateBlockTest, ChecksAnswerInOrder)
{
    const std::vector<OrderCase> cases = {
        {"block under 16 bytes, page size bad too", [](Block& b) { b.pageSize = 100; b.segments.clear(); }, 24, -1},
        {"page size bad, too many keys too", [](Block& b) { b.pageSize = 1000; b.keys = 120; }, 24},
        {"page size above 4096 not 8192", [](Block& b) { b.pageSize = 4608; }, 24},
        {"page size 32768", [](Block& b) { b.pageSize = 32768; }, 24},
        {"too many keys, record length bad too", [](Block& b) { b.keys = 120; b.recordLength = 2; }, 26},
        {"record length below 4, segment bad too", [](Block& b) { b.recordLength = 3; b.segments[0].length = 0; }, 28},
        {"record length above page size - 8", [](Block& b) { b.pageSize = 512; b.recordLength = 505; }, 28},
        {"description past the length given", [](Block& b) { b.keys = 2; }, 24},
        {"description cut short", [](Block& b) { b.segments[0].flags = 0x20; }, 24, -1},
        {"120 segments, flags bad in the last", [](Block& b) {
             b.segments = manySegments(120, 1);
             b.segments[119].flags |= 0x0020;
         }, 26},
        {"alternate collation, type bad too", [](Block& b) { b.segments[0].flags |= 0x0020; b.segments[0].type = 3; }, 45},
        {"flag 0x0800", [](Block& b) { b.segments[0].flags |= 0x0800; }, 45},
        {"flag 0x8000", [](Block& b) { b.segments[0].flags |= 0x8000; }, 45},
        {"type not offered, length bad too", [](Block& b) { b.segments[0].type = 3; b.segments[0].length = 0; }, 49},
        {"type 16", [](Block& b) { b.segments[0].type = 16; }, 49},
        {"type 12", [](Block& b) { b.segments[0].type = 12; }, 49},
        {"length 0, position bad too", [](Block& b) { b.segments[0].length = 0; b.segments[0].position = 0; }, 29},
        {"integer of 3 bytes", [](Block& b) { b.segments[0] = {1, 3, 0x0100, 1}; }, 29},
        {"zstring of 1 byte", [](Block& b) { b.segments[0] = {1, 1, 0x0100, 11}; }, 29},
        {"autoincrement of 8 bytes", [](Block& b) { b.segments[0] = {1, 8, 0x0100, 15}; }, 29},
        {"binary of odd length", [](Block& b) { b.segments[0] = {1, 3, 0x0004}; }, 29},
        {"key over 255 bytes", [](Block& b) {
             b.recordLength = 400;
             b.segments = {{1, 200, 0x0110, 0}, {201, 56, 0x0100, 0}};
         }, 29},
        {"position 0", [](Block& b) { b.segments[0].position = 0; }, 27},
        {"segment past the record", [](Block& b) { b.segments[0].position = 92; }, 27},
        {"second key's segment past the record", [](Block& b) {
             b.keys = 2;
             b.segments.push_back({95, 8, 0x0100, 14});
         }, 27},
    };
    testsupport::TempDir dir;
    for (const OrderCase& c : cases) {
        Block b;
        c.change(b);
        const std::string path = dir.file("order.dat");
        EXPECT_EQ(create(path, b, 0, c.lengthChange), c.status) << c.name;
        EXPECT_FALSE(std::filesystem::exists(path)) << c.name;
    }
}

TEST(CreateBlockTest, AcceptedBlocks)
{
    struct Accepted {
        const char* name;
        std::function<void(Block&)> change;
    };
    const std::vector<Accepted> cases = {
        {"page 512, record 504", [](Block& b) { b.pageSize = 512; b.recordLength = 504; }},
        {"page 1536", [](Block& b) { b.pageSize = 1536; }},
        {"page 8192", [](Block& b) { b.pageSize = 8192; }},
        {"page 16384", [](Block& b) { b.pageSize = 16384; b.recordLength = 16376; }},
        {"no keys, segments ignored", [](Block& b) { b.keys = 0; b.segments[0].flags = 0xFFFF; }},
        {"spare descriptions ignored", [](Block& b) { b.segments.push_back({0, 0, 0xFFFF, 99}); }},
        {"119 keys of one segment", [](Block& b) { b.keys = 119; b.segments = manySegments(119, 1);
             for (auto& s : b.segments) s.flags = 0x0101; }},
        {"119 segments in one key", [](Block& b) { b.segments = manySegments(119, 2); }},
        {"key of exactly 255 bytes", [](Block& b) {
             b.recordLength = 400;
             b.segments = {{1, 200, 0x0110, 0}, {201, 55, 0x0100, 0}};
         }},
        {"0x0080 ignored, every type", [](Block& b) {
             b.segments = {{1, 4, 0x0190, 0}, {5, 8, 0x0110, 1}, {13, 8, 0x0110, 2}, {21, 2, 0x0110, 7},
                           {23, 8, 0x0110, 9}, {31, 4, 0x0110, 10}, {35, 4, 0x0110, 11}, {39, 8, 0x0110, 14},
                           {47, 2, 0x0100, 15}, {49, 254, 0x0004}, {49, 255, 0}};
             b.recordLength = 400;
             b.keys = 3;
         }},
        {"segment ending on the last byte", [](Block& b) { b.segments[0].position = 91; }},
        {"variable length", [](Block& b) { b.fileFlags = 0x0001; b.recordLength = 4; b.segments[0] = {1, 4, 0x100, 14}; }},
    };
    testsupport::TempDir dir;
    for (const Accepted& c : cases) {
        Block b;
        c.change(b);
        const std::string path = dir.file("accepted.dat");
        ASSERT_EQ(create(path, b), 0) << c.name;
        std::filesystem::remove(path);
    }
}

// Steps 7-9: existing file, open file, a path that cannot be made.
TEST(CreateBlockTest, FileChecks)
{
    testsupport::TempDir dir;
    const std::string path = dir.file("f.dat");
    Block bad;
    bad.pageSize = 100;
    ASSERT_EQ(create(path, Block()), 0);
    EXPECT_EQ(create(path, bad, -1), 24) << "the block is checked before the file";
    EXPECT_EQ(create(path, Block(), -1), 59);
    EXPECT_EQ(create(path, Block(), 0), 0) << "any other mode replaces";

    char pos[128] = {};
    char key[255] = {};
    std::memcpy(key, path.data(), path.size());
    ASSERT_EQ(BTRCALL(kOpen, pos, nullptr, nullptr, key, 255, 0), 0);
    EXPECT_EQ(create(path, Block(), -1), 59) << "59 comes before 25";
    EXPECT_EQ(create(path, Block(), 0), 25);
    const std::string link = dir.file("link.dat");
    std::filesystem::create_hard_link(path, link);
    EXPECT_EQ(create(link, Block(), 0), 25) << "a second name of an open file";
    ASSERT_EQ(BTRCALL(kClose, pos, nullptr, nullptr, nullptr, 0, 0), 0);
    EXPECT_EQ(create(path, Block(), 0), 0);

    EXPECT_EQ(create(dir.file("missing/f.dat"), Block()), 25);
    std::filesystem::create_directory(dir.file("sub"));
    EXPECT_EQ(create(dir.file("sub"), Block()), 25);
    EXPECT_EQ(create("", Block()), 11);
}

// Stat gives back the block as created: reserved fields and spare descriptions dropped, the count
// at offset 6; a spec read back from Stat creates the same file again.
TEST(CreateBlockTest, StatReturnsTheBlockAsCreated)
{
    testsupport::TempDir dir;
    const std::string path = dir.file("s.dat");
    Block b;
    b.fileFlags = 0x0040;
    b.keys = 2;
    b.segments = {{1, 5, 0x0112, 11, 0x14}, {6, 4, 0x0102, 14, 0x14}, {10, 2, 0x0503, 0, 0}, {0, 0, 0xFFFF, 99}};
    std::vector<uint8_t> raw = b.bytes();
    raw[6] = 0x77;   // ignored count
    raw[12] = 0x55;  // reserved
    raw[16 + 6] = 9; // reserved in a description
    uint32_t length = uint32_t(raw.size());
    char key[255] = {};
    std::memcpy(key, path.data(), path.size());
    ASSERT_EQ(BTRCALL(kCreate, nullptr, raw.data(), &length, key, 255, 0), 0);
    char pos[128] = {};
    ASSERT_EQ(BTRCALL(kOpen, pos, nullptr, nullptr, key, 255, 0), 0);
    std::vector<uint8_t> stat(400, 0xEE);
    uint32_t statLength = uint32_t(stat.size());
    ASSERT_EQ(BTRCALL(kStat, pos, stat.data(), &statLength, nullptr, 0, 0), 0);
    Block expected = b;
    expected.segments.pop_back();
    const std::vector<uint8_t> want = expected.bytes();
    ASSERT_EQ(statLength, want.size());
    EXPECT_TRUE(std::equal(want.begin(), want.end(), stat.begin()));
    EXPECT_EQ(stat[want.size()], 0xEE) << "nothing written past the block";

    uint32_t shortLength = 20;
    std::vector<uint8_t> part(20, 0xEE);
    EXPECT_EQ(BTRCALL(kStat, pos, part.data(), &shortLength, nullptr, 0, 0), 22);
    EXPECT_EQ(shortLength, 20u);
    EXPECT_TRUE(std::equal(part.begin(), part.end(), want.begin())) << "a short buffer gets what fits";
    ASSERT_EQ(BTRCALL(kClose, pos, nullptr, nullptr, nullptr, 0, 0), 0);
}

}  // namespace
