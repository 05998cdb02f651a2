// A small language for driving the record manager through BTRCALL in tests: named operations,
// statuses, key flags and types; create blocks built from a key table; records built field by
// field; a Handle that owns a position block, a key buffer and a read buffer.
#pragma once

#include "BTRCALL.h"
#include "ServerStore.h"
#include "TestSupport.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace conformance {

using Bytes = std::vector<uint8_t>;

namespace op {
constexpr uint16_t Open = 0, Close = 1, Insert = 2, Update = 3, Delete = 4, GetEqual = 5, GetNext = 6,
                   GetPrevious = 7, GetGreater = 8, GetGreaterOrEqual = 9, GetLess = 10, GetLessOrEqual = 11,
                   GetFirst = 12, GetLast = 13, Create = 14, Stat = 15, StepNext = 24, Version = 26, Unlock = 27,
                   StepFirst = 33, StepLast = 34, StepPrevious = 35;
// Lock biases added to a Get or Step code.
constexpr uint16_t SingleWait = 100, Single = 200, MultipleWait = 300, Multiple = 400;
}  // namespace op

namespace st {
constexpr int16_t Ok = 0, BadOperation = 1, StoreFailure = 2, NotOpen = 3, NotFound = 4, Duplicate = 5,
                  BadKeyNumber = 6, OtherKeyCurrency = 7, NoCurrency = 8, End = 9, KeyNotModifiable = 10,
                  BadPath = 11, NoFile = 12, DiskFull = 18, NullKeyBuffer = 21, BadLength = 22, BadBlock = 24,
                  CannotCreate = 25, TooMany = 26, BadPosition = 27, BadRecordLength = 28, BadKeyLength = 29,
                  NotOurFile = 30, BadUnlock = 41, BadKeyFlags = 45, Denied = 46, BadType = 49, Exists = 59,
                  Changed = 80, LockMix = 81, Locked = 84, FileLocked = 85, InUse = 88;
}  // namespace st

namespace kf {
constexpr uint16_t Dup = 0x0001, Modifiable = 0x0002, Binary = 0x0004, Null = 0x0008, Segmented = 0x0010,
                   AltCollation = 0x0020, Descending = 0x0040, NoEffect = 0x0080, Extended = 0x0100,
                   AnyNull = 0x0200, NoCase = 0x0400;
}  // namespace kf

namespace type {
constexpr uint8_t String = 0, Integer = 1, Float = 2, Logical = 7, BFloat = 9, LString = 10, ZString = 11,
                  Unsigned = 14, AutoIncrement = 15;
}  // namespace type

constexpr uint16_t kVariableLength = 0x0001;  // file flag
constexpr size_t kBlockSize = 128;
constexpr size_t kKeyBufferSize = 255;
constexpr size_t kHeaderSize = 16;
constexpr size_t kSegmentSize = 16;

// ---- bytes ----

inline Bytes le(uint64_t value, size_t width) {
    Bytes out(width);
    for (size_t i = 0; i < width; ++i)
        out[i] = static_cast<uint8_t>(value >> (8 * i));
    return out;
}
inline Bytes text(std::string_view s, size_t width) {
    Bytes out(width, 0);
    std::memcpy(out.data(), s.data(), std::min(s.size(), width));
    return out;
}
inline Bytes raw(std::initializer_list<int> values) {
    Bytes out;
    for (int v : values)
        out.push_back(static_cast<uint8_t>(v));
    return out;
}
inline Bytes f32(float v) {
    Bytes out(4);
    std::memcpy(out.data(), &v, 4);
    return out;
}
inline Bytes f64(double v) {
    Bytes out(8);
    std::memcpy(out.data(), &v, 8);
    return out;
}
inline uint64_t readLe(const uint8_t* p, size_t width) {
    uint64_t v = 0;
    for (size_t i = 0; i < width; ++i)
        v |= uint64_t(p[i]) << (8 * i);
    return v;
}
inline void put(Bytes& into, size_t offset, const Bytes& field) {
    if (into.size() < offset + field.size())
        into.resize(offset + field.size());
    std::memcpy(into.data() + offset, field.data(), field.size());
}
inline Bytes slice(const Bytes& from, size_t offset, size_t width) {
    if (offset >= from.size())
        return {};
    return Bytes(from.begin() + offset, from.begin() + std::min(from.size(), offset + width));
}
// A record of `length` bytes holding the given fields at their 0-based offsets.
inline Bytes record(size_t length, std::initializer_list<std::pair<size_t, Bytes>> fields) {
    Bytes r(length, 0);
    for (const auto& [offset, field] : fields)
        put(r, offset, field);
    return r;
}

// Runs `sql` on the SQLite database at `path` from outside the record manager: the first column
// of the first row it returns, "" for none, or "error: " and the message.
inline std::string sqlite(const std::string& path, const std::string& sql) {
    sqlite3* db = nullptr;
    std::string result;
    auto firstValue = [](void* out, int, char** values, char**) {
        auto* text = static_cast<std::string*>(out);
        if (text->empty() && values[0])
            *text = values[0];
        return 0;
    };
    if (sqlite3_open_v2(path.c_str(), &db, SQLITE_OPEN_READWRITE, nullptr) != SQLITE_OK ||
        sqlite3_exec(db, sql.c_str(), firstValue, &result, nullptr) != SQLITE_OK)
        result = std::string("error: ") + sqlite3_errmsg(db);
    sqlite3_close(db);
    return result;
}

// ---- create blocks ----

struct Segment {
    uint16_t position;  // 1-based
    uint16_t length;
    uint16_t flags = 0;
    uint8_t type = 0;
    uint8_t nullValue = 0;
};
// An extended-type segment.
inline Segment seg(uint16_t position, uint16_t length, uint8_t type, uint16_t flags = 0, uint8_t nullValue = 0) {
    return {position, length, static_cast<uint16_t>(flags | kf::Extended), type, nullValue};
}
using Key = std::vector<Segment>;

struct FileLayout {
    uint16_t recordLength;
    std::vector<Key> keys;
    uint16_t fileFlags = 0;
    uint16_t pageSize = 4096;
};

// The create block of a layout; every segment but a key's last gets the segmented flag.
inline Bytes createBlock(const FileLayout& layout) {
    Bytes block(kHeaderSize, 0);
    put(block, 0, le(layout.recordLength, 2));
    put(block, 2, le(layout.pageSize, 2));
    put(block, 4, le(layout.keys.size(), 2));
    put(block, 10, le(layout.fileFlags, 2));
    for (const Key& key : layout.keys) {
        for (size_t i = 0; i < key.size(); ++i) {
            const Segment& s = key[i];
            uint16_t flags = s.flags;
            if (i + 1 < key.size())
                flags |= kf::Segmented;
            Bytes d(kSegmentSize, 0);
            put(d, 0, le(s.position, 2));
            put(d, 2, le(s.length, 2));
            put(d, 4, le(flags, 2));
            d[10] = s.type;
            d[11] = s.nullValue;
            block.insert(block.end(), d.begin(), d.end());
        }
    }
    return block;
}

// ---- calls ----

// A key buffer holding a path, as Open and Create read it.
struct PathBuffer {
    std::array<uint8_t, kKeyBufferSize> bytes{};
    uint8_t length = 0;
    explicit PathBuffer(const std::string& path) {
        std::memcpy(bytes.data(), path.data(), std::min(path.size(), kKeyBufferSize - 1));
        length = static_cast<uint8_t>(std::min(path.size() + 1, kKeyBufferSize));
    }
};

inline int16_t createRaw(const std::string& path, Bytes block, uint32_t length, int8_t mode = 0) {
    PathBuffer key(path);
    return BTRCALL(op::Create, nullptr, block.data(), &length, key.bytes.data(), key.length, mode);
}
inline int16_t create(const std::string& path, const FileLayout& layout, int8_t mode = 0) {
    Bytes block = createBlock(layout);
    return createRaw(path, block, static_cast<uint32_t>(block.size()), mode);
}

// One open handle: its position block, key buffer and the last record read.
class Handle {
public:
    Handle() = default;
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    ~Handle() {
        if (isOpen)
            call(op::Close, nullptr, nullptr, 0);
    }

    int16_t open(const std::string& path, int8_t mode = 0) {
        PathBuffer path_(path);
        uint32_t length = 0;
        int16_t status =
            BTRCALL(op::Open, block.data(), nullptr, &length, path_.bytes.data(), path_.length, mode);
        if (status == st::Ok)
            isOpen = true;
        return status;
    }
    int16_t close() {
        int16_t status = call(op::Close, nullptr, nullptr, 0);
        if (status == st::Ok)
            isOpen = false;
        return status;
    }

    int16_t call(uint16_t operation, void* data, uint32_t* length, int8_t keyNumber) {
        return BTRCALL(operation, block.data(), data, length, key.data(), static_cast<uint8_t>(key.size()),
                       keyNumber);
    }
    int16_t insert(Bytes r, int8_t k = 0) { return write(op::Insert, r, k); }
    int16_t update(Bytes r, int8_t k = 0) { return write(op::Update, r, k); }
    int16_t write(uint16_t operation, Bytes& r, int8_t k) {
        uint32_t length = static_cast<uint32_t>(r.size());
        int16_t status = call(operation, r.data(), &length, k);
        written = r;
        return status;
    }
    int16_t erase(int8_t k = 0) {
        uint32_t length = 0;
        return call(op::Delete, nullptr, &length, k);
    }
    // A Get or Step with the key buffer as it stands; the record lands in `data`.
    int16_t get(uint16_t operation, int8_t k = 0, uint32_t bufferSize = 70000) {
        Bytes buffer(bufferSize, 0xCC);
        uint32_t length = bufferSize;
        int16_t status = call(operation, buffer.data(), &length, k);
        if (status == st::Ok || status == st::BadLength)
            data.assign(buffer.begin(), buffer.begin() + std::min(length, bufferSize));
        return status;
    }
    // A keyed search for `value`, the rest of the key buffer zero.
    int16_t find(uint16_t operation, const Bytes& value, int8_t k = 0) {
        setKey(value);
        return get(operation, k);
    }
    int16_t step(uint16_t operation) { return get(operation, 0); }
    int16_t unlock(int8_t kind) { return call(op::Unlock, nullptr, nullptr, kind); }
    int16_t stat(Bytes& out, uint32_t bufferSize = 4096) {
        out.assign(bufferSize, 0);
        uint32_t length = bufferSize;
        int16_t status = call(op::Stat, out.data(), &length, 0);
        out.resize(std::min(length, bufferSize));
        return status;
    }
    // Record count from Stat; asserts success.
    uint32_t count() {
        Bytes out;
        EXPECT_EQ(st::Ok, stat(out));
        return out.size() >= 10 ? static_cast<uint32_t>(readLe(out.data() + 6, 4)) : 0;
    }

    // Every record in key order (Get First, then Get Next until it stops), or backwards.
    std::vector<Bytes> readAll(int8_t k = 0) { return walk(op::GetFirst, op::GetNext, k); }
    std::vector<Bytes> readAllBackward(int8_t k = 0) { return walk(op::GetLast, op::GetPrevious, k); }
    // Every record in physical order, or backwards.
    std::vector<Bytes> stepAll() { return walk(op::StepFirst, op::StepNext, 0); }
    std::vector<Bytes> stepAllBackward() { return walk(op::StepLast, op::StepPrevious, 0); }

    void setKey(const Bytes& value) {
        key.fill(0);
        std::memcpy(key.data(), value.data(), std::min(value.size(), key.size()));
    }
    Bytes keyValue(size_t width) const { return Bytes(key.begin(), key.begin() + width); }

    std::array<uint8_t, kBlockSize> block{};
    std::array<uint8_t, kKeyBufferSize> key{};
    Bytes data;     // last record read
    Bytes written;  // the caller's buffer after the last Insert or Update
    bool isOpen = false;

private:
    std::vector<Bytes> walk(uint16_t first, uint16_t next, int8_t k) {
        std::vector<Bytes> out;
        int16_t status = get(first, k);
        while (status == st::Ok) {
            out.push_back(data);
            status = get(next, k);
        }
        EXPECT_EQ(st::End, status) << "walk stopped on an error";
        return out;
    }
};

// The field at `offset` of each record: the usual way to name records in expectations.
inline std::vector<Bytes> fields(const std::vector<Bytes>& records, size_t offset, size_t width) {
    std::vector<Bytes> out;
    for (const Bytes& r : records)
        out.push_back(slice(r, offset, width));
    return out;
}
// The one-byte tag at `offset` of each record.
inline std::vector<int> tags(const std::vector<Bytes>& records, size_t offset = 0) {
    std::vector<int> out;
    for (const Bytes& r : records)
        out.push_back(r.size() > offset ? r[offset] : -1);
    return out;
}

// Base fixture: a fresh directory per test.
class Conformance : public ::testing::Test {
protected:
    std::string path(const std::string& name = "file.dat") const { return dir.file(name); }
    // Creates a file (asserting success) and returns its path.
    std::string makeFile(const FileLayout& layout, const std::string& name = "file.dat") {
        std::string p = path(name);
        EXPECT_EQ(st::Ok, create(p, layout));
        return p;
    }
    // Creates a file and opens `handle` on it.
    void openNew(Handle& handle, const FileLayout& layout, const std::string& name = "file.dat") {
        std::string p = makeFile(layout, name);
        ASSERT_EQ(st::Ok, handle.open(p));
    }

    testsupport::TempDir dir;
};

// A file of 16-byte records: tag at 0 (1 byte), a 4-byte INTEGER key 0 at offset 4, a 4-byte
// INTEGER key 1 at offset 8 (duplicates, modifiable); key 0 is modifiable and unique.
inline FileLayout twoKeyFile() {
    return {16, {{seg(5, 4, type::Integer, kf::Modifiable)}, {seg(9, 4, type::Integer, kf::Dup | kf::Modifiable)}}};
}
inline Bytes twoKeyRecord(int tag, int32_t key0, int32_t key1 = 0) {
    return record(16, {{0, le(uint8_t(tag), 1)}, {4, le(uint32_t(key0), 4)}, {8, le(uint32_t(key1), 4)}});
}
inline Bytes int32Key(int32_t v) { return le(uint32_t(v), 4); }

}  // namespace conformance
