// Damaged files: real store files, truncated at random points, with random bytes overwritten in
// the header and the pages, with the write-ahead log removed, cut or damaged. Opening and walking
// each one must answer statuses, never crash, hang or read out of bounds (the sanitizer build
// checks the last). The damaged copies are made here from files this test builds.
#include "tests/recman/ConformanceFixture.h"

#include <filesystem>
#include <fstream>
#include <random>

namespace conformance {
namespace {

namespace fs = std::filesystem;

constexpr int kRecords = 400;
constexpr int kInLog = 150;     // records written after the last checkpoint, held in the log
constexpr int kMaxSteps = 5000;  // a walk longer than the file could be is a loop

Bytes readFile(const std::string& p) {
    std::ifstream in(p, std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(in), {});
}
void writeFile(const std::string& p, const Bytes& bytes) {
    std::ofstream out(p, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
}

bool oneOf(int16_t status, std::initializer_list<int16_t> allowed) {
    return std::find(allowed.begin(), allowed.end(), status) != allowed.end();
}

class CorruptFile : public Conformance {
protected:
    // A closed file (everything in the main file) and a crash image: the main file and its log
    // copied while a handle had more records in the log.
    void SetUp() override {
        const std::string file = makeFile(twoKeyFile());
        Handle h;
        ASSERT_EQ(st::Ok, h.open(file));
        for (int i = 0; i < kRecords; ++i)
            ASSERT_EQ(st::Ok, h.insert(twoKeyRecord(i % 256, i * 7, i % 13)));
        ASSERT_EQ(st::Ok, h.close());
        closedImage = readFile(file);
        ASSERT_EQ(st::Ok, h.open(file));
        for (int i = 0; i < kInLog; ++i)
            ASSERT_EQ(st::Ok, h.insert(twoKeyRecord(i % 256, -1 - i, i % 5)));
        crashImage = readFile(file);
        crashLog = readFile(file + "-wal");
        ASSERT_FALSE(crashLog.empty()) << "the records after the checkpoint are in the log";
        ASSERT_EQ(st::Ok, h.close());
    }

    // Writes a damaged image under a new name and checks that every call on it answers.
    void replay(const std::string& what, const Bytes& main, const Bytes* log = nullptr) {
        SCOPED_TRACE(what);
        const std::string p = path("case" + std::to_string(++cases) + ".dat");
        writeFile(p, main);
        if (log)
            writeFile(p + "-wal", *log);
        Handle h;
        const int16_t opened = h.open(p);
        ASSERT_TRUE(oneOf(opened, {st::Ok, st::StoreFailure, st::NotOurFile})) << opened;
        if (opened != st::Ok) {
            ++refused;
            return;
        }
        ++opens;
        Bytes stat;
        EXPECT_TRUE(oneOf(h.stat(stat), {st::Ok, st::StoreFailure}));
        walk(h, op::GetFirst, op::GetNext, 0);
        walk(h, op::GetLast, op::GetPrevious, 0);
        walk(h, op::GetFirst, op::GetNext, 1);
        walk(h, op::StepFirst, op::StepNext, 0);
        EXPECT_TRUE(oneOf(h.find(op::GetEqual, int32Key(70)), {st::Ok, st::NotFound, st::StoreFailure}));
        EXPECT_TRUE(oneOf(h.insert(twoKeyRecord(1, 1 << 30, 1)), {st::Ok, st::Duplicate, st::StoreFailure}));
        EXPECT_TRUE(oneOf(h.close(), {st::Ok, st::StoreFailure}));
    }

    void walk(Handle& h, uint16_t first, uint16_t next, int8_t key) {
        int16_t status = h.get(first, key);
        int steps = 0;
        while (status == st::Ok && ++steps < kMaxSteps)
            status = h.get(next, key);
        EXPECT_TRUE(oneOf(status, {st::End, st::StoreFailure})) << "walk answered " << status;
        EXPECT_LT(steps, kMaxSteps) << "the walk does not end";
    }

    Bytes closedImage, crashImage, crashLog;
    std::mt19937 random{424242};
    int cases = 0, opens = 0, refused = 0;
};

TEST_F(CorruptFile, TruncatedFilesAnswer) {
    std::vector<size_t> cuts = {0, 1, 16, 99, 100, 512, 1024, 4096, closedImage.size() - 1};
    for (int i = 0; i < 16; ++i)
        cuts.push_back(random() % closedImage.size());
    for (size_t cut : cuts)
        replay("cut at " + std::to_string(cut), Bytes(closedImage.begin(), closedImage.begin() + long(cut)));
    EXPECT_GT(refused, 0) << "a file cut to nothing is no file of this engine";
}

TEST_F(CorruptFile, OverwrittenBytesAnswer) {
    for (int i = 0; i < 40; ++i) {
        Bytes damaged = closedImage;
        // Half the cases hit the header (first 100 bytes), the rest anywhere in the pages.
        const size_t at = i % 2 ? random() % 100 : random() % damaged.size();
        const size_t n = 1 + random() % 16;
        for (size_t j = at; j < std::min(damaged.size(), at + n); ++j)
            damaged[j] = uint8_t(random());
        replay("overwrite " + std::to_string(n) + " at " + std::to_string(at), damaged);
    }
    EXPECT_GT(opens, 0);
}

TEST_F(CorruptFile, DamagedLogsAnswer) {
    replay("log removed", crashImage);
    replay("log intact", crashImage, &crashLog);
    for (int i = 0; i < 10; ++i) {
        const size_t cut = random() % crashLog.size();
        const Bytes cutLog(crashLog.begin(), crashLog.begin() + long(cut));
        replay("log cut at " + std::to_string(cut), crashImage, &cutLog);
    }
    for (int i = 0; i < 14; ++i) {
        Bytes damaged = crashLog;
        const size_t at = i % 3 == 0 ? random() % 32 : random() % damaged.size();  // the log header, or frames
        for (size_t j = at; j < std::min(damaged.size(), at + 8); ++j)
            damaged[j] = uint8_t(random());
        replay("log damaged at " + std::to_string(at), crashImage, &damaged);
    }
    EXPECT_GT(opens, 0);
}

// A sanity check of the images themselves: the intact crash image holds every record.
TEST_F(CorruptFile, TheCrashImageHoldsEveryCommittedRecord) {
    const std::string p = path("intact.dat");
    writeFile(p, crashImage);
    writeFile(p + "-wal", crashLog);
    Handle h;
    ASSERT_EQ(st::Ok, h.open(p));
    EXPECT_EQ(uint32_t(kRecords + kInLog), h.count());
    EXPECT_EQ(size_t(kRecords + kInLog), h.readAll().size());
}

}  // namespace
}  // namespace conformance
