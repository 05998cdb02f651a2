// The record manager benchmarks' workload: the job item file (606-byte records, a unique key of
// zstring 5, zstring 26, unsigned 4, unsigned 4) through BTRCALL, the interface every design under
// test offers, and the harness that times the designs side by side in one run.
//
// A benchmark compiles the record manager's key codec into itself (it includes recman/FileSpec.cpp
// and recman/KeyCodec.cpp before this header) to encode keys exactly as the store does.
#pragma once

#include "BTRCALL.h"
#include "recman/FileSpec.h"
#include "recman/KeyCodec.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <random>
#include <string>
#include <vector>

namespace bench {

using Clock = std::chrono::steady_clock;

constexpr uint16_t kRecordLength = 606;
constexpr uint16_t kKeyWidth = 39;

enum BenchOp : uint16_t {
    Open = 0, Close = 1, Insert = 2, Update = 3, Delete = 4, GetEqual = 5, GetNext = 6, GetFirst = 12,
    Create = 14, StepNext = 24, StepFirst = 33,
};

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

inline void check(bool ok, const char* what)
{
    if (!ok) {
        std::fprintf(stderr, "benchmark: %s failed\n", what);
        std::exit(1);
    }
}

inline const recman::FileSpec& jobSpec()
{
    static const recman::FileSpec spec = [] {
        recman::FileSpec s;
        std::vector<uint8_t> block = createBlock();
        check(recman::FileSpec::parse(block.data(), uint32_t(block.size()), s) == recman::StatusOk, "spec");
        return s;
    }();
    return spec;
}

// The encoded key-0 value of a record.
inline void encodeKey(const uint8_t* rec, std::string& out)
{
    uint8_t value[kKeyWidth];
    recman::KeyCodec::extractValue(jobSpec().keys[0], rec, value);
    recman::KeyCodec::encode(jobSpec().keys[0], value, out);
}

// One design under test. A scan step i reads the first entry when i is 0, else the next one;
// false at the end.
struct Side {
    virtual ~Side() = default;
    virtual void insert(uint32_t i) = 0;
    virtual void getEqual(uint32_t i) = 0;
    virtual bool keyStep(size_t i) = 0;
    virtual bool physicalStep(size_t i) = 0;
    virtual void update(uint32_t i) = 0;
    virtual void remove(uint32_t i) = 0;
    // Fills the file with records 0..n-1 in `order`, untimed; the references batch their writes.
    virtual void load(const std::vector<uint32_t>& order)
    {
        for (uint32_t i : order)
            insert(i);
    }
};

struct EngineSide final : Side {
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
    ~EngineSide() override { BTRCALL(Close, pos, nullptr, nullptr, nullptr, 0, 0); }

    int16_t call(uint16_t op)
    {
        len = kRecordLength;
        return BTRCALL(op, pos, rec, &len, key, 255, 0);
    }
    void insert(uint32_t i) override
    {
        makeRecord(i, rec);
        check(call(Insert) == 0, "engine insert");
    }
    void getEqual(uint32_t i) override
    {
        makeRecord(i, rec);
        std::memcpy(key, rec, 5);
        std::memcpy(key + 5, rec + 5, 26);
        std::memcpy(key + 31, rec + 31, 8);
        check(call(GetEqual) == 0, "engine get equal");
    }
    bool step(size_t i, uint16_t first, uint16_t next)
    {
        const int16_t s = call(i == 0 ? first : next);
        check(s == 0 || s == 9, "engine scan");
        return s == 0;
    }
    bool keyStep(size_t i) override { return step(i, GetFirst, GetNext); }
    bool physicalStep(size_t i) override { return step(i, StepFirst, StepNext); }
    void update(uint32_t i) override
    {
        getEqual(i);
        rec[100] ^= 1;
        check(call(Update) == 0, "engine update");
    }
    void remove(uint32_t i) override
    {
        getEqual(i);
        check(call(Delete) == 0, "engine delete");
    }
};

// Runs op i of every side for i = 0..n-1 in alternating chunks, so that all meet the same load on
// a shared machine; returns the µs/op of each side.
inline std::vector<double> interleaved(size_t n, const std::vector<Side*>& sides, const std::function<void(Side&, size_t)>& op)
{
    constexpr size_t kChunk = 500;
    std::vector<Clock::duration> spent(sides.size());
    for (size_t start = 0; start < n; start += kChunk) {
        const size_t end = std::min(n, start + kChunk);
        for (size_t s = 0; s < sides.size(); ++s) {
            const auto t0 = Clock::now();
            for (size_t i = start; i < end; ++i)
                op(*sides[s], i);
            spent[s] += Clock::now() - t0;
        }
    }
    std::vector<double> us;
    for (const auto& d : spent)
        us.push_back(std::chrono::duration<double, std::micro>(d).count() / double(n));
    return us;
}

inline std::vector<uint32_t> shuffled(uint32_t n, std::mt19937& rng)
{
    std::vector<uint32_t> v(n);
    for (uint32_t i = 0; i < n; ++i)
        v[i] = i;
    std::shuffle(v.begin(), v.end(), rng);
    return v;
}

// One operation's µs per call on each side, in the order the sides were given.
struct Row {
    std::string name;
    std::vector<double> us;
};

// The reads: get equal in random order, a whole key scan and a whole physical scan.
inline void readRows(uint32_t n, const std::vector<Side*>& sides, const std::vector<uint32_t>& lookups, std::vector<Row>& rows)
{
    rows.push_back({"get equal", interleaved(n, sides, [&](Side& s, size_t i) { s.getEqual(lookups[i]); })});
    rows.push_back({"get next scan", interleaved(n, sides, [](Side& s, size_t i) { check(s.keyStep(i), "key scan"); })});
    for (Side* s : sides)
        check(!s->keyStep(n), "end of the key scan");
    rows.push_back(
        {"step next scan", interleaved(n, sides, [](Side& s, size_t i) { check(s.physicalStep(i), "physical scan"); })});
    for (Side* s : sides)
        check(!s->physicalStep(n), "end of the physical scan");
}

// The whole workload: inserts in `order`, the reads, then updates and deletes in `lookups`
// shuffled anew for each.
inline void allRows(uint32_t n, const std::vector<Side*>& sides, const std::vector<uint32_t>& order,
                    std::vector<uint32_t>& lookups, std::mt19937& rng, std::vector<Row>& rows)
{
    rows.push_back({"insert", interleaved(n, sides, [&](Side& s, size_t i) { s.insert(order[i]); })});
    readRows(n, sides, lookups, rows);
    std::shuffle(lookups.begin(), lookups.end(), rng);
    rows.push_back({"update", interleaved(n, sides, [&](Side& s, size_t i) { s.update(lookups[i]); })});
    std::shuffle(lookups.begin(), lookups.end(), rng);
    rows.push_back({"delete", interleaved(n, sides, [&](Side& s, size_t i) { s.remove(lookups[i]); })});
}

}  // namespace bench
