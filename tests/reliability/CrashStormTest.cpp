// A crash storm: writer processes insert, update and delete records of one file while the test
// kills them with SIGKILL after a random number of acknowledged calls and starts them again (the
// killed one is left unreaped for a while). Then
// every acknowledged change must be in the file, nothing never asked for may be, the keys, the
// physical order and Stat's count must agree, and no killed writer's lock may remain.
//
// TARSEL_STORM_KILLS sets the number of kills (50 by default; `make soak` asks for 1000).
#include "ChildProcess.h"
#include "StormModel.h"
#include "tests/recman/ConformanceFixture.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <random>
#include <sstream>

#include <csignal>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace conformance {
namespace {

using testsupport::ChildProcess;

constexpr int kWriters = 3;
constexpr int32_t kRecordsPerWriter = 48;
constexpr int32_t kKeyBase = 1000000;  // writer w owns keys w * kKeyBase + [0, kRecordsPerWriter)
constexpr int64_t kIdsPerGeneration = 1000000;

// 24-byte records: unique key 0 at 0, a modifiable duplicates key 1 at 4, the operation id at 8,
// the writer at 16.
FileLayout stormFile() {
    return {24, {{seg(1, 4, type::Integer)}, {seg(5, 4, type::Integer, kf::Dup | kf::Modifiable)}}};
}
Bytes stormRecord(int32_t key, int64_t id, int writer) {
    return record(24, {{0, int32Key(key)}, {4, int32Key(int32_t(id % 97))}, {8, le(uint64_t(id), 8)},
                       {16, le(uint32_t(writer), 4)}});
}
int64_t idOf(const Bytes& r) { return int64_t(readLe(r.data() + 8, 8)); }
int32_t keyOf(const Bytes& r) { return int32_t(readLe(r.data(), 4)); }

void appendLine(int fd, const std::string& line) {
    const std::string text = line + "\n";
    if (::write(fd, text.data(), text.size()) != ssize_t(text.size()))
        std::_Exit(4);
}

// One writer's life: "run FILE LOG WRITER GENERATION SEED". It learns its records' state from the
// file, then makes calls forever, logging each (StormModel.h) and answering "a" after each 0.
// Updates and deletes read the record with a single lock first, so kills leave locks behind.
TARSEL_CHILD_ROUTINE(stormWriter) {
    std::string line, command, file, log;
    int writer = 0;
    int64_t generation = 0;
    unsigned seed = 0;
    if (!channel.readLine(line))
        return;
    std::istringstream(line) >> command >> file >> log >> writer >> generation >> seed;
    Handle h;
    if (h.open(file) != st::Ok) {
        channel.writeLine("open failed");
        return;
    }
    const int32_t base = writer * kKeyBase;
    std::map<int32_t, bool> present;
    for (int32_t r = 0; r < kRecordsPerWriter; ++r)
        present[base + r] = h.find(op::GetEqual, int32Key(base + r)) == st::Ok;
    const int logFd = ::open(log.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0644);
    std::mt19937 random(seed);
    for (int64_t i = 0; i < kIdsPerGeneration; ++i) {
        const int32_t key = base + int32_t(random() % kRecordsPerWriter);
        const int64_t id = generation * kIdsPerGeneration + i;
        const char op = !present[key] ? 'I' : random() % 10 < 7 ? 'U' : 'D';
        if (op != 'I') {
            const int16_t read = h.find(op::GetEqual + op::Single, int32Key(key));
            if (read != st::Ok) {
                channel.writeLine("locked read answered " + std::to_string(read));
                return;
            }
        }
        appendLine(logFd, "T " + std::string(1, op) + " " + std::to_string(key) + " " + std::to_string(id));
        const int16_t status = op == 'I'   ? h.insert(stormRecord(key, id, writer))
                               : op == 'U' ? h.update(stormRecord(key, id, writer))
                                           : h.erase();
        appendLine(logFd, status == st::Ok ? "K" : "F " + std::to_string(status));
        if (status == st::Ok)
            present[key] = op != 'D';
        channel.writeLine("a");
    }
}

int killsWanted() {
    const char* text = std::getenv("TARSEL_STORM_KILLS");
    const int n = text ? std::atoi(text) : 0;
    return n > 0 ? n : 50;
}

class CrashStorm : public Conformance {
protected:
    // Writers never end by themselves: a failed check must not wait for them.
    void TearDown() override {
        for (auto& w : writers)
            if (w)
                w->kill();
    }

    void start(int w) {
        writers[w] = std::make_unique<ChildProcess>("stormWriter");
        std::ostringstream run;
        run << "run " << file << " " << logOf(w) << " " << w << " " << ++generation << " " << random();
        writers[w]->send(run.str());
    }
    std::string logOf(int w) const { return path("writer" + std::to_string(w) + ".log"); }

    std::string file;
    std::unique_ptr<ChildProcess> writers[kWriters];
    std::unique_ptr<ChildProcess> unreaped[kWriters];  // reaped when replaced or at the end
    int64_t generation = 0;
    std::mt19937 random{20261125};
};

TEST_F(CrashStorm, KilledWritersLoseNothingAcknowledgedAndLeaveNothingBehind) {
    file = makeFile(stormFile());
    const int kills = killsWanted();
    const auto began = std::chrono::steady_clock::now();
    for (int w = 0; w < kWriters; ++w)
        start(w);
    for (int k = 0; k < kills; ++k) {
        const int w = int(random() % kWriters);
        const int acknowledgements = 1 + int(random() % 40);
        for (int a = 0; a < acknowledgements; ++a)
            ASSERT_EQ("a", writers[w]->receive()) << "writer " << w << " after kill " << k;
        // The killed writer stays a zombie until its slot's next kill: its successor meets its
        // locks while it is dead but not reaped.
        ASSERT_EQ(0, ::kill(writers[w]->pid(), SIGKILL));
        siginfo_t info{};
        ASSERT_EQ(0, ::waitid(P_PID, id_t(writers[w]->pid()), &info, WEXITED | WNOWAIT));
        unreaped[w] = std::move(writers[w]);
        start(w);
    }
    for (auto& w : writers)
        w->kill();
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - began).count();

    // The file as every order sees it.
    Handle h;
    ASSERT_EQ(st::Ok, h.open(file));
    const std::vector<Bytes> byKey = h.readAll(0);
    std::vector<Bytes> backward = h.readAllBackward(0);
    std::reverse(backward.begin(), backward.end());
    EXPECT_EQ(byKey, backward) << "key order backwards differs";
    std::vector<Bytes> physical = h.stepAll();
    std::sort(physical.begin(), physical.end(), [](const Bytes& a, const Bytes& b) { return keyOf(a) < keyOf(b); });
    EXPECT_EQ(byKey, physical) << "the physical walk holds other records";
    EXPECT_EQ(byKey.size(), h.readAll(1).size());
    EXPECT_EQ(byKey.size(), h.count());

    std::map<int32_t, int64_t> found;
    for (const Bytes& r : byKey)
        found[keyOf(r)] = idOf(r);
    uint64_t acknowledged = 0, inFlight = 0, failed = 0, lost = 0, phantom = 0;
    for (int w = 0; w < kWriters; ++w) {
        const storm::WriterModel model = storm::readWriterLog(logOf(w));
        acknowledged += model.acknowledged;
        inFlight += model.inFlight;
        failed += model.failed;
        for (const auto& [key, record] : model.records) {
            const auto it = found.find(key);
            const storm::Verdict v = storm::judge(record, it == found.end() ? storm::kAbsent : it->second);
            lost += v == storm::Verdict::Lost;
            phantom += v == storm::Verdict::Phantom;
            if (it != found.end())
                found.erase(it);
        }
    }
    phantom += found.size();  // records of keys no writer ever logged

    // Killed writers held locks; none may block anyone now.
    for (const Bytes& r : byKey) {
        ASSERT_EQ(st::Ok, h.find(op::GetEqual + op::Single, int32Key(keyOf(r)))) << keyOf(r);
        ASSERT_EQ(st::Ok, h.unlock(0));
    }

    std::printf("crash storm: %d kills, %llu acknowledged calls, %llu in flight at a kill, %llu lost, %llu phantom, "
                "%llu failed, %zu records, %.1f s, %.0f acknowledged calls/s\n",
                kills + kWriters, (unsigned long long)acknowledged, (unsigned long long)inFlight,
                (unsigned long long)lost, (unsigned long long)phantom, (unsigned long long)failed, byKey.size(),
                seconds, double(acknowledged) / seconds);
    EXPECT_EQ(0u, lost);
    EXPECT_EQ(0u, phantom);
    EXPECT_EQ(0u, failed);
    EXPECT_LE(inFlight, uint64_t(kills + kWriters));
    EXPECT_GT(acknowledged, uint64_t(kills));
}

}  // namespace
}  // namespace conformance
