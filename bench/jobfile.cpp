// What the record-file class layer costs over the record manager: REJobFile's GetAllRecords, a
// wildcard search walk, AddRecord with its duplicate search, and AppendFile, each against the
// same work written as raw BTRCALL loops, in the same run over files of N job items.
//
//   bench_jobfile [N]      (N defaults to 100000)
#include "BTRCALL.h"
#include "REJobFile.h"
#include "RESharedHelpers.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;
// Each side runs this often, alternating; the best time counts. Reads are cheap, so they repeat more.
constexpr int kReadRounds = 5;
constexpr int kWriteRounds = 3;

ESTJOBFILERECORD Item(int i, int jobNo) {
    ESTJOBFILERECORD rec{};
    std::snprintf(rec.sCode1, sizeof rec.sCode1, "J%d", jobNo);
    std::snprintf(rec.sCode2, sizeof rec.sCode2, "ITEM%07d", i);
    rec.nPageNo = 1 + i / 50;
    rec.nLineNo = i % 50;
    std::snprintf(rec.sText124, sizeof rec.sText124, "W14X22");
    rec.nValue39 = i;
    return rec;
}

// A raw handle on one file.
struct Raw {
    uint8_t pos[REBtrieveBase::kPosBlockSize] = {};
    uint8_t key[REBtrieveBase::kKeyBufferSize] = {};
    explicit Raw(const std::string& path) {
        std::memcpy(key, path.c_str(), path.size() + 1);
        uint32_t len = 0;
        if (BTRCALL(REBtrieveBase::kOpOpen, pos, nullptr, &len, key, static_cast<uint8_t>(path.size() + 1), 0) != 0) {
            std::fprintf(stderr, "cannot open %s\n", path.c_str());
            std::exit(1);
        }
    }
    ~Raw() {
        uint32_t len = 0;
        BTRCALL(REBtrieveBase::kOpClose, pos, nullptr, &len, key, 0, 0);
    }
    int16_t call(uint16_t op, void* rec) {
        uint32_t len = sizeof(ESTJOBFILERECORD);
        return BTRCALL(op, pos, rec, &len, key, sizeof key, 0);
    }
};

void Create(const std::string& path) {
    REJobFile file;
    if (!file.CreateNewFile(path.c_str()))
        std::exit(1);
}

void Fill(const std::string& path, int n, int jobNo) {
    Create(path);
    Raw raw(path);
    for (int i = 0; i < n; ++i) {
        ESTJOBFILERECORD rec = Item(i, jobNo);
        raw.call(REBtrieveBase::kOpInsert, &rec);
    }
}

// The search key and filter of the job item file, written out by hand.
void SetKey(Raw& raw, const char* code1, const char* code2, int page, int line) {
    ESTJOBFILERECORD_KEY k{};
    std::strncpy(k.sCode1, code1, sizeof k.sCode1);
    std::strncpy(k.sCode2, code2, sizeof k.sCode2);
    k.nPageNo = page;
    k.nLineNo = line;
    std::memset(raw.key, 0, sizeof raw.key);
    std::memcpy(raw.key, &k, sizeof k);
}
bool Matches(const ESTJOBFILERECORD& r, const char* code1, const char* code2, int page, int line) {
    return (!*code1 || std::strcmp(code1, r.sCode1) == 0) && (!*code2 || std::strcmp(code2, r.sCode2) == 0) &&
           (page < 0 || r.nPageNo == page) && (line < 0 || r.nLineNo == line);
}

double Millis(const std::function<void()>& work) {
    const auto start = Clock::now();
    work();
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

void Report(const char* name, double classMs, double rawMs) {
    std::printf("%-34s %10.1f %10.1f %7.2fx\n", name, classMs, rawMs, classMs / rawMs);
}

// Runs both sides `rounds` times, alternating, and reports the best of each.
void Compare(const char* name, int rounds, const std::function<double(int)>& classSide,
             const std::function<double(int)>& rawSide) {
    double bestClass = 1e300, bestRaw = 1e300;
    for (int round = 0; round < rounds; ++round) {
        // Alternate which side goes first, so that neither always finds the caches warm.
        if (round % 2 == 0) {
            bestRaw = std::min(bestRaw, rawSide(round));
            bestClass = std::min(bestClass, classSide(round));
        } else {
            bestClass = std::min(bestClass, classSide(round));
            bestRaw = std::min(bestRaw, rawSide(round));
        }
    }
    Report(name, bestClass, bestRaw);
}

}  // namespace

int main(int argc, char** argv) {
    const int n = argc > 1 ? std::max(1, std::atoi(argv[1])) : 100000;
    const auto dir = std::filesystem::temp_directory_path() / ("tarsel_bench_jobfile_" + std::to_string(Clock::now().time_since_epoch().count()));
    std::filesystem::create_directories(dir);
    auto at = [&dir](const std::string& name) { return (dir / name).string(); };

    const std::string items = at("items.dat"), second = at("second.dat");
    Fill(items, n, 1);
    Fill(second, n, 2);
    std::printf("%d job items                       class ms     raw ms   ratio\n", n);

    Compare(
        "GetAllRecords", kReadRounds,
        [&](int) {
            REJobFile file;
            file.Initialize(items.c_str());
            std::vector<ESTJOBFILERECORD*> all;
            const double ms = Millis([&] { file.GetAllRecords(all); });
            file.ResetJobRecArray(all);
            return ms;
        },
        [&](int) {
            Raw raw(items);
            std::vector<ESTJOBFILERECORD*> all;
            const double ms = Millis([&] {
                ESTJOBFILERECORD* rec = static_cast<ESTJOBFILERECORD*>(std::malloc(sizeof *rec));
                for (int16_t s = raw.call(REBtrieveBase::kOpGetFirst, rec); s == 0;
                     s = raw.call(REBtrieveBase::kOpGetNext, rec)) {
                    all.push_back(rec);
                    rec = static_cast<ESTJOBFILERECORD*>(std::malloc(sizeof *rec));
                }
                std::free(rec);
            });
            DeallocatePtrArray(all);
            return ms;
        });

    Compare(
        "SearchFirstRecord/SearchNextRecord", kReadRounds,
        [&](int) {
            REJobFile file;
            file.Initialize(items.c_str());
            int count = 0;
            const double ms = Millis([&] {
                ESTJOBFILERECORD rec;
                for (int f = file.SearchFirstRecord("J1", "", -1, -1, &rec); f;
                     f = file.SearchNextRecord("J1", "", -1, -1, &rec))
                    ++count;
            });
            if (count != n)
                std::fprintf(stderr, "walk found %d\n", count);
            return ms;
        },
        [&](int) {
            Raw raw(items);
            return Millis([&] {
                ESTJOBFILERECORD rec;
                SetKey(raw, "J1", "", -1, -1);
                for (int16_t s = raw.call(REBtrieveBase::kOpGetGreaterOrEqual, &rec);
                     s == 0 && Matches(rec, "J1", "", -1, -1); s = raw.call(REBtrieveBase::kOpGetNext, &rec)) {
                }
            });
        });

    Compare(
        "AddRecord (with duplicate search)", kWriteRounds,
        [&](int round) {
            const std::string path = at("class_add" + std::to_string(round) + ".dat");
            Create(path);
            REJobFile file;
            file.Initialize(path.c_str());
            return Millis([&] {
                for (int i = 0; i < n; ++i) {
                    ESTJOBFILERECORD rec = Item(i, 1);
                    file.AddRecord(rec);
                }
            });
        },
        [&](int round) {
            const std::string path = at("raw_add" + std::to_string(round) + ".dat");
            Create(path);
            Raw raw(path);
            return Millis([&] {
                ESTJOBFILERECORD found;
                for (int i = 0; i < n; ++i) {
                    ESTJOBFILERECORD rec = Item(i, 1);
                    SetKey(raw, rec.sCode1, rec.sCode2, rec.nPageNo, rec.nLineNo);
                    if (raw.call(REBtrieveBase::kOpGetGreaterOrEqual, &found) == 0 &&
                        Matches(found, rec.sCode1, rec.sCode2, rec.nPageNo, rec.nLineNo))
                        continue;
                    raw.call(REBtrieveBase::kOpInsert, &rec);
                }
            });
        });

    Compare(
        "AppendFile(path, 1)", kWriteRounds,
        [&](int round) {
            const std::string path = at("class_add" + std::to_string(round) + ".dat");
            REJobFile file;
            file.Initialize(path.c_str());
            return Millis([&] { file.AppendFile(second.c_str(), 1); });
        },
        [&](int round) {
            const std::string path = at("raw_add" + std::to_string(round) + ".dat");
            Raw target(path);
            return Millis([&] {
                ESTJOBFILERECORD rec;
                int32_t maxPage = 0;
                for (int16_t s = target.call(REBtrieveBase::kOpGetFirst, &rec); s == 0;
                     s = target.call(REBtrieveBase::kOpGetNext, &rec))
                    maxPage = std::max(maxPage, int32_t{rec.nPageNo});
                Raw source(second);
                for (int16_t s = source.call(REBtrieveBase::kOpStepFirst, &rec); s == 0;
                     s = source.call(REBtrieveBase::kOpStepNext, &rec)) {
                    rec.nPageNo += maxPage;
                    target.call(REBtrieveBase::kOpInsert, &rec);
                }
            });
        });

    std::filesystem::remove_all(dir);
    return 0;
}
