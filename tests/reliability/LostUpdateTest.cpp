// Lost updates: four processes increment one counter record by read-modify-write, each call
// retried until it succeeds, once under no-wait record locks (a locked read answering 84 or 85 is
// tried again) and once without locks (an update answering 80 reads again). The counter must end
// at exactly the number of increments made.
#include "ChildProcess.h"
#include "tests/recman/ConformanceFixture.h"

#include <chrono>
#include <cstdio>
#include <memory>
#include <sstream>

namespace conformance {
namespace {

using testsupport::ChildProcess;

constexpr int kProcesses = 4;
constexpr int kIncrements = 2000;  // per process

constexpr int32_t kCounterKey = 7;

// 16-byte records: key at 0, the counter at 8.
FileLayout counterFile() { return {16, {{seg(1, 4, type::Integer)}}}; }
Bytes counterRecord(int64_t value) { return record(16, {{0, int32Key(kCounterKey)}, {8, le(uint64_t(value), 8)}}); }
int64_t counterOf(const Bytes& r) { return int64_t(readLe(r.data() + 8, 8)); }

// "run FILE MODE COUNT": COUNT increments, MODE "locks" or "conflicts"; answers "done RETRIES",
// or the first status that no retry rule covers.
TARSEL_CHILD_ROUTINE(incrementer) {
    std::string line, command, file, mode;
    int count = 0;
    if (!channel.readLine(line))
        return;
    std::istringstream(line) >> command >> file >> mode >> count;
    Handle h;
    if (const int16_t s = h.open(file); s != st::Ok) {
        channel.writeLine("open " + std::to_string(s));
        return;
    }
    const bool locks = mode == "locks";
    long retries = 0;
    for (int i = 0; i < count; ++i) {
        for (;;) {
            // Get Greater or Equal with a single no-wait lock: the library's op 209.
            const uint16_t read = locks ? op::GetGreaterOrEqual + op::Single : op::GetEqual;
            int16_t s = h.find(read, int32Key(kCounterKey));
            if (locks && (s == st::Locked || s == st::FileLocked)) {
                ++retries;
                continue;
            }
            if (s == st::Ok)
                s = h.update(counterRecord(counterOf(h.data) + 1));
            if (s == st::Ok)
                break;
            if (!locks && s == st::Changed) {
                ++retries;
                continue;
            }
            channel.writeLine("status " + std::to_string(s));
            return;
        }
    }
    channel.writeLine("done " + std::to_string(retries));
}

class LostUpdate : public Conformance, public ::testing::WithParamInterface<const char*> {};

TEST_P(LostUpdate, EveryIncrementCounts) {
    const std::string file = makeFile(counterFile());
    {
        Handle h;
        ASSERT_EQ(st::Ok, h.open(file));
        ASSERT_EQ(st::Ok, h.insert(counterRecord(0)));
    }
    std::unique_ptr<ChildProcess> workers[kProcesses];
    for (auto& w : workers)
        w = std::make_unique<ChildProcess>("incrementer");
    const auto began = std::chrono::steady_clock::now();
    for (auto& w : workers)
        w->send("run " + file + " " + GetParam() + " " + std::to_string(kIncrements));
    long retries = 0;
    for (auto& w : workers) {
        std::istringstream reply(w->receive());
        std::string word;
        long n = 0;
        reply >> word >> n;
        ASSERT_EQ("done", word) << "a worker stopped on status " << n;
        retries += n;
    }
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - began).count();

    Handle h;
    ASSERT_EQ(st::Ok, h.open(file));
    ASSERT_EQ(st::Ok, h.find(op::GetEqual, int32Key(kCounterKey)));
    EXPECT_EQ(int64_t(kProcesses) * kIncrements, counterOf(h.data));
    EXPECT_EQ(1u, h.count());
    std::printf("lost update (%s): %d processes x %d increments, %ld retries, %.2f s, %.0f increments/s\n",
                GetParam(), kProcesses, kIncrements, retries, seconds, kProcesses * kIncrements / seconds);
}

INSTANTIATE_TEST_SUITE_P(RetryRules, LostUpdate, ::testing::Values("locks", "conflicts"),
                         [](const ::testing::TestParamInfo<const char*>& info) {
                             return std::string(info.param) == "locks" ? "NoWaitLocks" : "ChangedRecordRetries";
                         });

}  // namespace
}  // namespace conformance
