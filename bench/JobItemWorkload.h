// The record manager benchmarks' workload: the job item file (606-byte records, a unique key of
// zstring 5, zstring 26, unsigned 4, unsigned 4) through BTRCALL, and the harness that times it
// side by side with a reference.
#pragma once

#include "BTRCALL.h"
#include "recman/FileSpec.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace bench {

using Clock = std::chrono::steady_clock;

constexpr uint16_t kRecordLength = 606;
constexpr uint16_t kKeyWidth = 39;

enum BenchOp : uint16_t {
    Open = 0, Close = 1, Insert = 2, Update = 3, Delete = 4, GetEqual = 5, GetNext = 6, GetFirst = 12,
    Create = 14, StepNext = 24, StepFirst = 33,
};

inline void check(bool ok, const char* what)
{
    if (!ok) {
        std::fprintf(stderr, "benchmark: %s failed\n", what);
        std::exit(1);
    }
}

// The job item file's creation block.
inline std::vector<uint8_t> createBlock()
{
    std::vector<uint8_t> b(16 + 4 * 16, 0);
    auto put16 = [&](size_t at, uint16_t v) {
        b[at] = uint8_t(v);
        b[at + 1] = uint8_t(v >> 8);
    };
    put16(0, kRecordLength);
    put16(2, 4096);
    put16(4, 1);
    struct { uint16_t pos, len, flags; uint8_t type; } segs[] = {
        {1, 5, 0x0112, 11}, {6, 26, 0x0112, 11}, {32, 4, 0x0112, 14}, {36, 4, 0x0102, 14}};
    for (size_t i = 0; i < 4; ++i) {
        put16(16 + 16 * i, segs[i].pos);
        put16(18 + 16 * i, segs[i].len);
        put16(20 + 16 * i, segs[i].flags);
        b[26 + 16 * i] = segs[i].type;
        b[27 + 16 * i] = 0x14;
    }
    return b;
}

inline recman::FileSpec jobItemSpec()
{
    std::vector<uint8_t> block = createBlock();
    recman::FileSpec spec;
    check(recman::FileSpec::parse(block.data(), uint32_t(block.size()), spec) == recman::StatusOk, "spec");
    return spec;
}

inline void makeRecord(uint32_t i, uint8_t* rec)
{
    std::memset(rec, 0, kRecordLength);
    std::snprintf(reinterpret_cast<char*>(rec), 5, "J%03u", i % 997);
    std::snprintf(reinterpret_cast<char*>(rec + 5), 26, "W14X%02u-ITEM-%08u", i % 89, i);
    const uint32_t page = i / 50, line = i % 50;
    std::memcpy(rec + 31, &page, 4);
    std::memcpy(rec + 35, &line, 4);
    for (int j = 40; j < kRecordLength; ++j)
        rec[j] = uint8_t('a' + (i + j) % 26);
}

inline double micros(Clock::duration d, size_t n)
{
    return std::chrono::duration<double, std::micro>(d).count() / double(n);
}

// The workload through BTRCALL: one file of the job item layout, created anew and opened.
struct EngineSide {
    char pos[128] = {};
    char key[255] = {};
    uint8_t rec[kRecordLength];
    uint32_t len = 0;

    explicit EngineSide(const std::string& path)
    {
        std::vector<uint8_t> block = createBlock();
        uint32_t n = uint32_t(block.size());
        std::memcpy(key, path.c_str(), path.size() + 1);
        check(BTRCALL(Create, nullptr, block.data(), &n, key, 255, 0) == 0, "create");
        check(BTRCALL(Open, pos, nullptr, nullptr, key, 255, 0) == 0, "open");
    }
    ~EngineSide() { BTRCALL(Close, pos, nullptr, nullptr, nullptr, 0, 0); }

    int16_t call(uint16_t op)
    {
        len = kRecordLength;
        return BTRCALL(op, pos, rec, &len, key, 255, 0);
    }
    void insert(uint32_t i)
    {
        makeRecord(i, rec);
        check(call(Insert) == 0, "engine insert");
    }
    void getEqual(uint32_t i)
    {
        makeRecord(i, rec);
        std::memcpy(key, rec, 5);
        std::memcpy(key + 5, rec + 5, 26);
        std::memcpy(key + 31, rec + 31, 8);
        check(call(GetEqual) == 0, "engine get equal");
    }
    // The i-th call of a scan: the first record, then the next one.
    void scanStep(size_t i, uint16_t first, uint16_t next) { check(call(i == 0 ? first : next) == 0, "engine scan"); }
    int16_t after(uint16_t next) { return call(next); }
    void update(uint32_t i)
    {
        getEqual(i);
        rec[100] ^= 1;
        check(call(Update) == 0, "engine update");
    }
    void remove(uint32_t i)
    {
        getEqual(i);
        check(call(Delete) == 0, "engine delete");
    }
};

// Record numbers 0..n-1 in the order they are inserted, and in the order they are looked up.
struct Workload {
    std::vector<uint32_t> order, lookups;
    std::mt19937 rng{7};

    explicit Workload(uint32_t n) : order(n)
    {
        for (uint32_t i = 0; i < n; ++i)
            order[i] = i;
        std::shuffle(order.begin(), order.end(), rng);
        lookups = order;
        reshuffle();
    }
    void reshuffle() { std::shuffle(lookups.begin(), lookups.end(), rng); }
};

struct TimedRow {
    const char* name;
    std::pair<double, double> us;
};

// Runs op i of both sides for i = 0..n-1 in alternating chunks, so that both meet the same load
// on a shared machine; returns the µs/op of each side.
template <typename A, typename B>
std::pair<double, double> interleaved(size_t n, A engineOp, B referenceOp)
{
    constexpr size_t kChunk = 500;
    Clock::duration engine{}, reference{};
    for (size_t start = 0; start < n; start += kChunk) {
        const size_t end = std::min(n, start + kChunk);
        auto t0 = Clock::now();
        for (size_t i = start; i < end; ++i)
            engineOp(i);
        auto t1 = Clock::now();
        for (size_t i = start; i < end; ++i)
            referenceOp(i);
        auto t2 = Clock::now();
        engine += t1 - t0;
        reference += t2 - t1;
    }
    return {micros(engine, n), micros(reference, n)};
}

inline void printRows(const std::vector<TimedRow>& rows, const char* engineColumn, const char* referenceColumn)
{
    std::printf("%-16s %16s %16s %8s\n", "operation", engineColumn, referenceColumn, "ratio");
    for (const TimedRow& r : rows)
        std::printf("%-16s %16.2f %16.2f %8.2f\n", r.name, r.us.first, r.us.second, r.us.first / r.us.second);
}

}  // namespace bench
