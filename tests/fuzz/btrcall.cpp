// Fuzzes the record manager's entry point: each input is a short program of BTRCALL calls over a
// few real files in a temporary directory. Operation codes are mostly offered ones (with and
// without lock biases), sometimes any 16-bit value; buffers are null, short, exact or odd-sized
// (always as large as the length the call is told, so a sanitizer report is the engine's fault);
// key numbers run over the whole signed byte; position blocks are open, zero, garbage, carry the
// signature with a foreign token, or were closed; create blocks are random or nearly valid. Every
// call must answer one of the statuses the record manager documents.
#include "BTRCALL.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include <signal.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

constexpr size_t kBlock = 128;
constexpr size_t kKeyBuffer = 255;
constexpr int kCallsPerInput = 6;
constexpr size_t kMissing = 4;          // index of the path no file is kept at
constexpr int kInputsPerReset = 2000;
constexpr std::string_view kDirPrefix = "tarsel-fuzz-btrcall-";  // files are made afresh now and then, so they stay small

const uint16_t kOffered[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 24, 26, 27, 33, 34, 35};
const int16_t kStatuses[] = {0,  1,  2,  3,  4,  5,  6,  7,  8,  9,  10, 11, 12, 18, 20, 21, 22, 24, 25,
                             26, 27, 28, 29, 30, 41, 43, 45, 46, 49, 59, 80, 81, 84, 85, 88};

// Reads the input front to back; zeros once it is used up.
class Input {
public:
    Input(const uint8_t* data, size_t size) : m_p(data), m_end(data + size) {}
    uint8_t byte() { return m_p < m_end ? *m_p++ : 0; }
    uint16_t u16() { return uint16_t(byte() | byte() << 8); }
    void fill(uint8_t* out, size_t n) {
        for (size_t i = 0; i < n; ++i)
            out[i] = byte();
    }
    bool done() const { return m_p >= m_end; }

private:
    const uint8_t* m_p;
    const uint8_t* m_end;
};

struct World {
    fs::path dir;
    std::vector<std::string> paths;  // what Open and Create may name
    std::array<std::array<uint8_t, kBlock>, 4> blocks{};
    std::array<uint8_t, kBlock> closed{};  // a block as it was before its handle closed
    // One handle kept open on each made file, out of the fuzzer's reach: no close is the last one,
    // so none checkpoints and syncs the file, which would make every input slow.
    std::array<std::array<uint8_t, kBlock>, 4> keepers{};
    int inputs = 0;
};

void appendLE(std::vector<uint8_t>& out, uint32_t v, int width) {
    for (int i = 0; i < width; ++i)
        out.push_back(uint8_t(v >> (8 * i)));
}

// A create block: header and `segments` descriptions, the fields drawn near the valid ranges.
std::vector<uint8_t> nearlyValidCreateBlock(Input& in) {
    std::vector<uint8_t> b;
    const uint16_t recordLength = uint16_t(4 + in.byte() % 60);
    const int keys = in.byte() % 4;
    appendLE(b, recordLength, 2);
    appendLE(b, (in.byte() % 2) ? 4096 : uint16_t(512 * (1 + in.byte() % 9)), 2);
    appendLE(b, uint16_t(keys), 2);
    appendLE(b, 0, 4);
    appendLE(b, in.byte() % 2, 2);  // variable length or not
    appendLE(b, 0, 4);
    const uint8_t types[] = {0, 1, 2, 7, 9, 10, 11, 14, 15, 3};
    for (int k = 0; k < keys; ++k) {
        const int segs = 1 + in.byte() % 2;
        for (int s = 0; s < segs; ++s) {
            uint16_t flags = uint16_t(in.u16() & 0x07CF) | 0x0100;
            if (s + 1 < segs)
                flags |= 0x0010;
            appendLE(b, uint16_t(1 + in.byte() % recordLength), 2);
            appendLE(b, uint16_t(1 + in.byte() % 8), 2);
            appendLE(b, flags, 2);
            appendLE(b, 0, 4);
            b.push_back(types[in.byte() % sizeof types]);
            b.push_back(in.byte());
            appendLE(b, 0, 4);
        }
    }
    return b;
}

int16_t call(uint16_t op, void* block, std::vector<uint8_t>* data, bool nullLength, uint32_t length, void* key,
             uint8_t keyLength, int8_t keyNumber) {
    uint32_t* lengthPtr = nullLength ? nullptr : &length;
    return BTRCALL(op, block, data ? data->data() : nullptr, lengthPtr, key, keyLength, keyNumber);
}

void makeFiles(World& w) {
    for (auto& b : w.keepers) {
        uint32_t n = 0;
        BTRCALL(1, b.data(), nullptr, &n, nullptr, 0, 0);
    }
    for (auto& b : w.blocks) {
        uint32_t n = 0;
        BTRCALL(1, b.data(), nullptr, &n, nullptr, 0, 0);
        b.fill(0);
    }
    // Keyed files (fixed and variable length, one with 512-byte pages) and a key-less one, made by
    // Create itself; "missing.dat" is made only when an input creates it.
    const std::vector<std::vector<uint8_t>> specs = {
        {16, 0, 0, 16, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 5, 0, 4, 0, 2, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0,
         9, 0, 4, 0, 3, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0},
        {8, 0, 0, 16, 1, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 1, 0, 4, 0, 0, 5, 0, 0, 0, 0, 11, 0, 0, 0, 0, 0},
        {8, 0, 0, 16, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0},
        {4, 0, 0, 2, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 4, 0, 0, 1, 0, 0, 0, 0, 14, 0, 0, 0, 0, 0},
    };
    for (size_t i = 0; i < specs.size(); ++i) {
        std::vector<uint8_t> spec = specs[i];
        std::array<uint8_t, kKeyBuffer> key{};
        std::memcpy(key.data(), w.paths[i].c_str(), w.paths[i].size());
        uint32_t n = uint32_t(spec.size());
        BTRCALL(14, nullptr, spec.data(), &n, key.data(), 0, 0);
        BTRCALL(0, w.keepers[i].data(), nullptr, &n, key.data(), 0, 0);
    }
}

World& world() {
    static World* w = [] {
        // Directories of earlier runs that ended without cleaning up (killed, or left by _Exit).
        std::error_code ec;
        for (const auto& entry : fs::directory_iterator(fs::temp_directory_path(), ec)) {
            const std::string name = entry.path().filename().string();
            if (name.rfind(kDirPrefix, 0) == 0 && ::kill(pid_t(std::atol(name.c_str() + kDirPrefix.size())), 0) != 0)
                fs::remove_all(entry.path(), ec);
        }
        auto* fresh = new World;
        fresh->dir = fs::temp_directory_path() / (std::string(kDirPrefix) + std::to_string(::getpid()));
        fs::create_directories(fresh->dir);
        for (const char* name : {"fixed.dat", "variable.dat", "keyless.dat", "scratch.dat", "missing.dat"})
            fresh->paths.push_back((fresh->dir / name).string());
        fresh->paths.push_back(fresh->dir.string());  // a directory
        fresh->paths.push_back("");
        std::atexit([] { std::error_code ec; fs::remove_all(world().dir, ec); });
        return fresh;
    }();
    return *w;
}

void check(int16_t status) {
    if (std::find(std::begin(kStatuses), std::end(kStatuses), status) == std::end(kStatuses))
        std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    World& w = world();
    if (w.inputs++ % kInputsPerReset == 0)
        makeFiles(w);
    Input in(data, size);
    for (int c = 0; c < kCallsPerInput && !in.done(); ++c) {
        const uint8_t pick = in.byte();
        uint16_t op = kOffered[pick % (sizeof kOffered / sizeof kOffered[0])];
        if (op == 14 && in.byte() % 32 != 1)
            op = 15;  // Create makes a file and syncs it: kept rare, so that inputs stay fast
        if (pick >= 224)
            op = in.u16();  // any code at all
        else if (pick >= 160 && ((op >= 5 && op <= 13) || op >= 24))
            op = uint16_t(op + 100 * (1 + in.byte() % 4));  // a lock bias

        // The position block.
        std::array<uint8_t, kBlock> scratch{};
        void* block = nullptr;
        const uint8_t which = in.byte() % 10;
        if (which < 4) {
            block = w.blocks[which].data();
        } else if (which == 5) {
            block = scratch.data();  // zero
        } else if (which == 6) {
            in.fill(scratch.data(), kBlock);
            block = scratch.data();
        } else if (which == 7) {
            scratch = w.blocks[in.byte() % 4];
            std::memcpy(scratch.data(), "TRSRBLK1", 8);
            in.fill(scratch.data() + 16, 8);  // the signature with another process's token
            block = scratch.data();
        } else if (which == 8) {
            scratch = w.closed;
            block = scratch.data();
        }

        // The key buffer: a path for Open and Create, bytes otherwise; sometimes none.
        std::array<uint8_t, kKeyBuffer> key{};
        const uint8_t keyKind = in.byte();
        void* keyPtr = keyKind % 8 == 0 ? nullptr : key.data();
        const uint16_t base = op % 100;
        uint8_t keyLength = 0;
        if (base == 0 || base == 14) {
            // The whole path, however the length reads it: a path cut short would name files
            // outside the directory (a prefix of its own name, or "/t").
            const std::string& p = w.paths[keyKind % w.paths.size()];
            std::memcpy(key.data(), p.data(), std::min(p.size(), kKeyBuffer - 1));
            const uint8_t lengths[] = {0, uint8_t(p.size()), uint8_t(p.size() + 1), 255};
            keyLength = lengths[in.byte() % 4];
        } else {
            in.fill(key.data(), in.byte() % 24);
            keyLength = in.byte();
        }
        const int8_t keyNumber = int8_t(in.byte());

        // The data buffer: exactly as large as the length the call is told.
        const uint8_t dataKind = in.byte();
        std::vector<uint8_t> buffer;
        if (base == 14 && dataKind % 2 == 0)
            buffer = nearlyValidCreateBlock(in);
        else if (dataKind % 5 == 1)
            buffer.resize(70000);
        else
            buffer.resize(in.byte() % 40);
        if (base == 2 || base == 3 || base == 14)
            if (dataKind % 3 == 0)
                in.fill(buffer.data(), std::min<size_t>(buffer.size(), 64));
        const bool nullData = dataKind % 11 == 3;
        const bool nullLength = dataKind % 13 == 4;

        // An Open over an open block leaves the old handle open for the life of the process; the
        // fuzzer would pile them up without end, so the block's handle is closed first.
        uint32_t none = 0;
        if (op == 0 && which < 4)
            BTRCALL(1, block, nullptr, &none, nullptr, 0, 0);
        const std::array<uint8_t, kBlock> before = which < 4 ? w.blocks[which] : scratch;
        const int16_t status = call(op, block, nullData ? nullptr : &buffer, nullLength,
                                    nullData ? 0 : uint32_t(buffer.size()), keyPtr, keyLength, keyNumber);
        check(status);
        if (op == 1 && status == 0 && which < 4)
            w.closed = before;
        if (op == 0 && status == 0 && which >= 4)
            check(BTRCALL(1, block, nullptr, &none, nullptr, 0, 0));
        // A file an input made has no keeper: gone again, it costs later inputs no syncs.
        if (base == 14 && status == 0 && keyPtr && w.paths[keyKind % w.paths.size()] == w.paths[kMissing]) {
            std::error_code ec;
            fs::remove(w.paths[kMissing], ec);
        }
    }
    return 0;
}
