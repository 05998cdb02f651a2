// Create: the block it reads, the order in which it judges a bad one, existing files and paths.
#include "ConformanceFixture.h"

#include <filesystem>

namespace conformance {
namespace {

namespace fs = std::filesystem;

using Create = Conformance;

TEST_F(Create, LeavesBlockAndLengthAndDoesNotOpen) {
    Bytes block = createBlock(twoKeyFile());
    uint32_t length = static_cast<uint32_t>(block.size());
    PathBuffer key(path());
    std::array<uint8_t, kBlockSize> pos;
    pos.fill(0x5A);
    ASSERT_EQ(st::Ok, BTRCALL(op::Create, pos.data(), block.data(), &length, key.bytes.data(), key.length, 0));
    EXPECT_EQ(block.size(), length);
    EXPECT_EQ(0x5A, pos[0]);
    EXPECT_EQ(0x5A, pos[127]);
    EXPECT_EQ(createBlock(twoKeyFile()), block);
    Bytes out(64);
    uint32_t outLength = 64;
    EXPECT_EQ(st::NotOpen, BTRCALL(op::Stat, pos.data(), out.data(), &outLength, nullptr, 0, 0));
}

TEST_F(Create, ReplacesOrRefusesAnExistingFile) {
    std::string p = makeFile(twoKeyFile());
    {
        Handle h;
        ASSERT_EQ(st::Ok, h.open(p));
        ASSERT_EQ(st::Ok, h.insert(twoKeyRecord(1, 1)));
        // Existence is checked before use: -1 answers 59 even while the file is open.
        EXPECT_EQ(st::Exists, create(p, twoKeyFile(), -1));
        EXPECT_EQ(st::CannotCreate, create(p, twoKeyFile(), 0));
        EXPECT_EQ(1u, h.count());
    }
    EXPECT_EQ(st::Exists, create(p, twoKeyFile(), -1));
    Bytes bad = createBlock(twoKeyFile());
    put(bad, 2, le(100, 2));
    EXPECT_EQ(st::BadBlock, createRaw(p, bad, uint32_t(bad.size()), -1)) << "the block is checked before the file";
    FileLayout other{32, {{seg(1, 2, type::Integer)}}};
    ASSERT_EQ(st::Ok, create(p, other, 0));
    Handle h;
    ASSERT_EQ(st::Ok, h.open(p));
    Bytes stat;
    ASSERT_EQ(st::Ok, h.stat(stat));
    EXPECT_EQ(createBlock(other), stat);
}

// One flaw per row; the status names the flaw and nothing is created.
struct CreateFlaw {
    const char* name;
    int16_t status;
    void (*apply)(Bytes& block, uint32_t& length);
};

FileLayout oneKey(Segment s, uint16_t recordLength = 32) { return {recordLength, {{s}}}; }
void setSeg(Bytes& b, size_t i, size_t field, uint64_t v, size_t w) { put(b, 16 + 16 * i + field, le(v, w)); }

const CreateFlaw kCreateFlaws[] = {
    {"length below 16", st::BadBlock, [](Bytes&, uint32_t& n) { n = 15; }},
    {"page size 0", st::BadBlock, [](Bytes& b, uint32_t&) { put(b, 2, le(0, 2)); }},
    {"page size 1000", st::BadBlock, [](Bytes& b, uint32_t&) { put(b, 2, le(1000, 2)); }},
    {"page size 4608", st::BadBlock, [](Bytes& b, uint32_t&) { put(b, 2, le(4608, 2)); }},
    {"page size 12288", st::BadBlock, [](Bytes& b, uint32_t&) { put(b, 2, le(12288, 2)); }},
    {"page size 32768", st::BadBlock, [](Bytes& b, uint32_t&) { put(b, 2, le(32768, 2)); }},
    {"page size beats key count", st::BadBlock,
     [](Bytes& b, uint32_t&) { put(b, 2, le(100, 2)), put(b, 4, le(120, 2)); }},
    {"120 keys", st::TooMany, [](Bytes& b, uint32_t&) { put(b, 4, le(120, 2)); }},
    {"key count beats record length", st::TooMany,
     [](Bytes& b, uint32_t&) { put(b, 4, le(120, 2)), put(b, 0, le(2, 2)); }},
    {"record length 3", st::BadRecordLength, [](Bytes& b, uint32_t&) { put(b, 0, le(3, 2)); }},
    {"record length page - 7", st::BadRecordLength,
     [](Bytes& b, uint32_t&) { put(b, 2, le(512, 2)), put(b, 0, le(505, 2)); }},
    {"record length beats segment", st::BadRecordLength,
     [](Bytes& b, uint32_t&) { put(b, 0, le(3, 2)), setSeg(b, 0, 4, 0x8000, 2); }},
    {"description past length", st::BadBlock, [](Bytes&, uint32_t& n) { n = 31; }},
    {"flag 0x0020", st::BadKeyFlags, [](Bytes& b, uint32_t&) { setSeg(b, 0, 4, 0x0120, 2); }},
    {"flag 0x0800", st::BadKeyFlags, [](Bytes& b, uint32_t&) { setSeg(b, 0, 4, 0x0900, 2); }},
    {"flag 0x8000", st::BadKeyFlags, [](Bytes& b, uint32_t&) { setSeg(b, 0, 4, 0x8100, 2); }},
    {"flag beats type", st::BadKeyFlags,
     [](Bytes& b, uint32_t&) { setSeg(b, 0, 4, 0x1100, 2), setSeg(b, 0, 10, 3, 1); }},
    {"type 3", st::BadType, [](Bytes& b, uint32_t&) { setSeg(b, 0, 10, 3, 1); }},
    {"type 8", st::BadType, [](Bytes& b, uint32_t&) { setSeg(b, 0, 10, 8, 1); }},
    {"type 12", st::BadType, [](Bytes& b, uint32_t&) { setSeg(b, 0, 10, 12, 1); }},
    {"type 13", st::BadType, [](Bytes& b, uint32_t&) { setSeg(b, 0, 10, 13, 1); }},
    {"type 16", st::BadType, [](Bytes& b, uint32_t&) { setSeg(b, 0, 10, 16, 1); }},
    {"type beats length", st::BadType,
     [](Bytes& b, uint32_t&) { setSeg(b, 0, 10, 5, 1), setSeg(b, 0, 2, 0, 2); }},
    {"length 0", st::BadKeyLength, [](Bytes& b, uint32_t&) { setSeg(b, 0, 2, 0, 2); }},
    {"integer of 3", st::BadKeyLength, [](Bytes& b, uint32_t&) { setSeg(b, 0, 2, 3, 2); }},
    {"float of 2", st::BadKeyLength,
     [](Bytes& b, uint32_t&) { setSeg(b, 0, 10, type::Float, 1), setSeg(b, 0, 2, 2, 2); }},
    {"zstring of 1", st::BadKeyLength,
     [](Bytes& b, uint32_t&) { setSeg(b, 0, 10, type::ZString, 1), setSeg(b, 0, 2, 1, 2); }},
    {"lstring of 1", st::BadKeyLength,
     [](Bytes& b, uint32_t&) { setSeg(b, 0, 10, type::LString, 1), setSeg(b, 0, 2, 1, 2); }},
    {"autoincrement of 8", st::BadKeyLength,
     [](Bytes& b, uint32_t&) { setSeg(b, 0, 10, type::AutoIncrement, 1), setSeg(b, 0, 2, 8, 2); }},
    {"logical of 4", st::BadKeyLength,
     [](Bytes& b, uint32_t&) { setSeg(b, 0, 10, type::Logical, 1), setSeg(b, 0, 2, 4, 2); }},
    {"odd binary", st::BadKeyLength,
     [](Bytes& b, uint32_t&) { setSeg(b, 0, 4, kf::Binary, 2), setSeg(b, 0, 2, 3, 2); }},
    {"length beats position", st::BadKeyLength,
     [](Bytes& b, uint32_t&) { setSeg(b, 0, 2, 3, 2), setSeg(b, 0, 0, 0, 2); }},
    {"position 0", st::BadPosition, [](Bytes& b, uint32_t&) { setSeg(b, 0, 0, 0, 2); }},
    {"past the record", st::BadPosition, [](Bytes& b, uint32_t&) { setSeg(b, 0, 0, 30, 2); }},
};

TEST_F(Create, ValidationAnswersTheFirstFlawAndCreatesNothing) {
    for (const CreateFlaw& flaw : kCreateFlaws) {
        SCOPED_TRACE(flaw.name);
        Bytes block = createBlock(oneKey(seg(1, 4, type::Integer)));
        uint32_t length = static_cast<uint32_t>(block.size());
        flaw.apply(block, length);
        std::string p = path("flawed.dat");
        EXPECT_EQ(flaw.status, createRaw(p, block, length));
        EXPECT_FALSE(fs::exists(p));
    }
}

TEST_F(Create, ChecksSegmentsInOrderAndKeysByTheirTotalLength) {
    // The first segment's fault decides, though a later one has an earlier-listed fault.
    FileLayout twoFaults{32, {{seg(0, 4, type::Integer), seg(1, 4, 3)}}};
    EXPECT_EQ(st::BadPosition, create(path(), twoFaults));
    // A segment of a later key past the record.
    EXPECT_EQ(st::BadPosition, create(path(), {32, {{seg(1, 4, type::Integer)}, {seg(26, 8, type::Unsigned)}}}));
    // A key of 256 bytes in two segments; 255 is the most.
    EXPECT_EQ(st::BadKeyLength, create(path(), {400, {{seg(1, 200, type::String), seg(201, 56, type::String)}}}));
    EXPECT_EQ(st::Ok, create(path("k255.dat"), {400, {{seg(1, 200, type::String), seg(201, 55, type::String)}}}));
    // 120 segments in all, across two keys: the count is over every key, and comes before the
    // flags of the last segment.
    Key sixty;
    for (uint16_t i = 0; i < 60; ++i)
        sixty.push_back(seg(i + 1, 1, type::String));
    Key badLast = sixty;
    badLast.back().flags |= kf::AltCollation;
    EXPECT_EQ(st::TooMany, create(path(), {200, {sixty, badLast}}));
    sixty.pop_back();
    EXPECT_EQ(st::Ok, create(path("ok.dat"), {200, {sixty, sixty, {seg(1, 1, type::String)}}}));
    // 119 segments in one key, and 119 keys of one segment each.
    Key all119 = sixty;
    all119.insert(all119.end(), sixty.begin(), sixty.end());
    all119.push_back(seg(1, 1, type::String));
    EXPECT_EQ(st::Ok, create(path("one.dat"), {200, {all119}}));
    std::vector<Key> keys119(119, Key{seg(1, 1, type::Unsigned, kf::Dup)});
    EXPECT_EQ(st::Ok, create(path("many.dat"), {200, keys119}));
    EXPECT_FALSE(fs::exists(path()));
}

TEST_F(Create, AcceptsEveryOfferedTypeAndPageSize) {
    const Segment offered[] = {
        seg(1, 255, type::String),       seg(1, 1, type::Integer),  seg(1, 8, type::Integer),
        seg(1, 4, type::Float),          seg(1, 8, type::Float),    seg(1, 2, type::Logical),
        seg(1, 8, type::BFloat),         seg(1, 2, type::LString),  seg(1, 255, type::ZString),
        seg(1, 8, type::Unsigned),       seg(1, 2, type::AutoIncrement),
        {1, 254, kf::Binary, 0, 0},      {1, 7, kf::NoEffect, 0, 0},
        seg(1, 4, type::Integer, kf::Descending | kf::NoCase | kf::Null | kf::AnyNull),
        seg(1, 4, type::String, kf::NoEffect),
        {1, 3, 0, 3, 0},                             // the type byte counts only with 0x0100
        seg(1, 3, type::String, kf::Binary),         // 0x0004 counts only without it
        seg(297, 4, type::Integer),                  // ends on the record's last byte
    };
    int n = 0;
    for (const Segment& s : offered) {
        SCOPED_TRACE(n);
        EXPECT_EQ(st::Ok, create(path("t" + std::to_string(n++)), oneKey(s, 300)));
    }
    for (uint16_t page : {512, 1536, 4096, 8192, 16384}) {
        SCOPED_TRACE(page);
        EXPECT_EQ(st::Ok, create(path("p" + std::to_string(page)), {uint16_t(page - 8), {}, 0, page}));
    }
    // Without keys the descriptions that follow are not read.
    Bytes noKeys = createBlock({32, {}});
    noKeys.resize(kHeaderSize + kSegmentSize, 0xFF);
    EXPECT_EQ(st::Ok, createRaw(path("nokeys.dat"), noKeys, uint32_t(noKeys.size())));
}

TEST_F(Create, CannotMakeTheFile) {
    EXPECT_EQ(st::BadPath, create("", twoKeyFile()));
    EXPECT_EQ(st::CannotCreate, create(path("missing/file.dat"), twoKeyFile()));
    fs::create_directory(path("dir"));
    EXPECT_EQ(st::CannotCreate, create(path("dir"), twoKeyFile()));
    EXPECT_TRUE(fs::is_directory(path("dir")));
}

}  // namespace
}  // namespace conformance
