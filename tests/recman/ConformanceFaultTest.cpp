// Store failures reach the caller as 18 (disk full) or 2 (I/O error, damaged file) and change nothing.
#include "ConformanceFixture.h"
#include "FaultVfs.h"

#include <filesystem>
#include <fstream>

namespace conformance {
namespace {

using recmantest::Fault;
using recmantest::FaultVfs;

using Faults = Conformance;

// Key 0: autoincrement at offset 4 (modifiable); key 1: duplicates INTEGER at offset 8.
FileLayout autoFile() {
    return {16, {{seg(5, 4, type::AutoIncrement, kf::Modifiable)}, {seg(9, 4, type::Integer, kf::Dup | kf::Modifiable)}}};
}

TEST_F(Faults, FailedWritesChangeNothing) {
    const std::pair<Fault, int16_t> faults[] = {{Fault::DiskFull, st::DiskFull}, {Fault::IoError, st::StoreFailure}};
    for (auto [fault, status] : faults) {
        SCOPED_TRACE(status);
        FaultVfs vfs;
        Handle h;
        openNew(h, autoFile(), "f" + std::to_string(status));
        for (int t : {1, 2, 3})
            ASSERT_EQ(st::Ok, h.insert(twoKeyRecord(t, 0, t)));
        ASSERT_EQ(st::Ok, h.find(op::GetEqual, int32Key(2)));

        vfs.failWrites(fault);
        h.key.fill(0xEE);
        Bytes fresh = twoKeyRecord(4, 0, 4);
        EXPECT_EQ(status, h.insert(fresh));
        EXPECT_EQ(twoKeyRecord(4, 0, 4), h.written) << "the autoincrement value reached the caller";
        EXPECT_EQ(status, h.update(twoKeyRecord(2, 2, 99)));
        EXPECT_EQ(status, h.erase());
        EXPECT_EQ(0xEE, h.key[0]);
        vfs.clear();

        EXPECT_EQ(3u, h.count());
        ASSERT_EQ(st::Ok, h.get(op::GetNext)) << "currency survived the failures";
        EXPECT_EQ(3, h.data[0]);
        EXPECT_EQ((std::vector<int>{1, 2, 3}), tags(h.readAll(1)));
        ASSERT_EQ(st::Ok, h.insert(fresh));
        EXPECT_EQ(int32Key(4), slice(h.written, 4, 4)) << "no value was used up by the failed insert";
        if (fault == Fault::IoError) {  // an open that cannot read the file
            ASSERT_EQ(st::Ok, h.close());
            vfs.failReads(fault);
            EXPECT_EQ(status, h.open(path("f" + std::to_string(status))));
            vfs.clear();
            EXPECT_EQ(st::Ok, h.open(path("f" + std::to_string(status))));
        }
    }
}

TEST_F(Faults, CreateOnAFullDiskAnswers18AndLeavesNoFile) {
    FaultVfs vfs;
    vfs.failWrites(Fault::DiskFull);
    EXPECT_EQ(st::DiskFull, create(path(), autoFile()));
    vfs.clear();
    EXPECT_FALSE(std::filesystem::exists(path()));
}

TEST_F(Faults, ADamagedFileAnswersAStatusAndNeverCrashes) {
    std::string p = makeFile(autoFile());
    {
        Handle h;
        ASSERT_EQ(st::Ok, h.open(p));
        for (int i = 0; i < 400; ++i)
            ASSERT_EQ(st::Ok, h.insert(twoKeyRecord(i, 0, i)));
    }
    auto size = std::filesystem::file_size(p);
    ASSERT_GT(size, 8192u);
    {
        std::fstream file(p, std::ios::in | std::ios::out | std::ios::binary);
        file.seekp(std::streamoff(size / 2));
        std::string junk(4096, '\xA5');
        file.write(junk.data(), std::streamsize(junk.size()));
    }
    Handle h;
    int16_t opened = h.open(p);
    ASSERT_TRUE(opened == st::Ok || opened == st::StoreFailure || opened == st::NotOurFile) << opened;
    if (opened != st::Ok)
        return;
    auto acceptable = [](int16_t s) { return s == st::Ok || s == st::End || s == st::StoreFailure; };
    int16_t s = h.get(op::GetFirst, 1);
    for (int guard = 0; s == st::Ok && guard < 1000; ++guard)
        s = h.get(op::GetNext, 1);
    EXPECT_TRUE(acceptable(s)) << s;
    s = h.step(op::StepLast);
    for (int guard = 0; s == st::Ok && guard < 1000; ++guard)
        s = h.step(op::StepPrevious);
    EXPECT_TRUE(acceptable(s)) << s;
    s = h.insert(twoKeyRecord(1, 0, 1));
    EXPECT_TRUE(s == st::Ok || s == st::StoreFailure) << s;
}

}  // namespace
}  // namespace conformance
