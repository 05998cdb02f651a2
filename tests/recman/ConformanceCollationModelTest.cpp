// Random values of every key type against an independent model of the documented collation:
// the walk of the key must be ordered by the model, and values the model calls equal must keep
// their insertion order.
#include "ConformanceFixture.h"

#include <algorithm>
#include <cmath>
#include <random>

namespace conformance {
namespace {

using CollationModel = Conformance;

int sign(int v) { return (v > 0) - (v < 0); }

uint8_t fold(uint8_t c, bool noCase) { return noCase && c >= 'a' && c <= 'z' ? uint8_t(c - 0x20) : c; }

int compareText(const uint8_t* a, size_t na, const uint8_t* b, size_t nb, bool noCase) {
    for (size_t i = 0; i < std::min(na, nb); ++i) {
        uint8_t x = fold(a[i], noCase), y = fold(b[i], noCase);
        if (x != y)
            return x < y ? -1 : 1;
    }
    return na == nb ? 0 : (na < nb ? -1 : 1);
}

int64_t signedValue(const Bytes& v) {
    uint64_t u = readLe(v.data(), v.size());
    unsigned shift = unsigned(64 - 8 * v.size());
    return int64_t(u << shift) >> shift;
}

double floatValue(const Bytes& v) {
    if (v.size() == 4) {
        float f;
        std::memcpy(&f, v.data(), 4);
        return f;
    }
    double d;
    std::memcpy(&d, v.data(), 8);
    return d;
}

int compareFloat(const Bytes& a, const Bytes& b) {
    double x = floatValue(a), y = floatValue(b);
    if (std::isnan(x) || std::isnan(y))
        return std::isnan(x) == std::isnan(y) ? 0 : (std::isnan(x) ? 1 : -1);
    return x < y ? -1 : (x > y ? 1 : 0);
}

// The exponent is the last byte; the top bit of the byte before it is the sign.
int compareBFloat(const Bytes& a, const Bytes& b) {
    auto classify = [](const Bytes& v) {
        if (v.back() == 0)
            return 0;
        return (v[v.size() - 2] & 0x80) ? -1 : 1;
    };
    int ca = classify(a), cb = classify(b);
    if (ca != cb || ca == 0)
        return sign(ca - cb);
    // Magnitude: exponent, then mantissa from the high byte down (sign bit masked).
    for (size_t i = a.size(); i-- > 0;) {
        uint8_t x = a[i], y = b[i];
        if (i == a.size() - 2)
            x &= 0x7F, y &= 0x7F;
        if (x != y)
            return (x < y ? -1 : 1) * ca;
    }
    return 0;
}

int compareValues(uint8_t type, bool binary, bool noCase, const Bytes& a, const Bytes& b) {
    const size_t n = a.size();
    if (binary || type == type::Unsigned) {
        for (size_t i = n; i-- > 0;)
            if (a[i] != b[i])
                return a[i] < b[i] ? -1 : 1;
        return 0;
    }
    switch (type) {
    case type::Integer:
    case type::AutoIncrement: {
        int64_t x = signedValue(a), y = signedValue(b);
        return x < y ? -1 : (x > y ? 1 : 0);
    }
    case type::Float:
        return compareFloat(a, b);
    case type::BFloat:
        return compareBFloat(a, b);
    case type::Logical:
        return compareText(a.data(), n, b.data(), n, false);
    case type::LString:
        return compareText(a.data() + 1, std::min<size_t>(a[0], n - 1), b.data() + 1, std::min<size_t>(b[0], n - 1),
                           noCase);
    case type::ZString: {
        auto length = [](const Bytes& v) { return size_t(std::find(v.begin(), v.end(), 0) - v.begin()); };
        return compareText(a.data(), length(a), b.data(), length(b), noCase);
    }
    default:
        return compareText(a.data(), n, b.data(), n, noCase);
    }
}

struct ModelCase {
    uint8_t type;
    uint16_t length;
    uint16_t flags;  // kf::Binary means a non-extended binary segment
};

Bytes randomValue(std::mt19937& random, const ModelCase& c) {
    static const uint8_t kTextBytes[] = {0, 'A', 'a', 'B', 'b', 'Z', 'z', '_', '`', 0xE1, 0xFF};
    static const uint8_t kBinaryBytes[] = {0, 1, 0x7F, 0x80, 0x81, 0xFE, 0xFF, 0x41, 0x61};
    Bytes v(c.length);
    bool text = c.type == type::String || c.type == type::LString || c.type == type::ZString;
    for (auto& byte : v) {
        if (text)
            byte = kTextBytes[random() % std::size(kTextBytes)];
        else
            byte = random() % 2 ? kBinaryBytes[random() % std::size(kBinaryBytes)] : uint8_t(random());
    }
    if (c.type == type::LString)
        v[0] = uint8_t(random() % (c.length + 2));
    if (c.type == type::BFloat && random() % 5 == 0)
        v.back() = 0;
    if (c.type == type::Float && random() % 4 == 0) {
        const double notable[] = {0.0, -0.0, 1.0, -1.0, INFINITY, -INFINITY, NAN, 1e-310, -1e-310};
        double d = notable[random() % std::size(notable)];
        v = c.length == 4 ? f32(float(d)) : f64(d);
    }
    return v;
}

TEST_F(CollationModel, RandomValuesWalkInModelOrder) {
    const ModelCase cases[] = {
        {type::String, 3, 0},          {type::String, 3, kf::NoCase}, {type::LString, 4, 0},
        {type::LString, 5, kf::NoCase}, {type::ZString, 4, 0},        {type::ZString, 5, kf::NoCase},
        {type::Integer, 1, 0},         {type::Integer, 2, 0},         {type::Integer, 4, 0},
        {type::Integer, 8, 0},         {type::Unsigned, 2, 0},        {type::Unsigned, 8, 0},
        {type::Float, 4, 0},           {type::Float, 8, 0},           {type::BFloat, 4, 0},
        {type::BFloat, 8, 0},          {type::Logical, 2, 0},         {0, 4, kf::Binary},
        {0, 3, kf::NoCase},
    };
    std::mt19937 random(1);
    int fileNumber = 0;
    for (const ModelCase& c : cases) {
        for (bool descending : {false, true}) {
            SCOPED_TRACE(::testing::Message() << "type " << int(c.type) << " length " << c.length << " flags "
                                              << c.flags << (descending ? " descending" : ""));
            bool extended = c.flags != kf::Binary && !(c.type == 0 && c.flags == kf::NoCase);
            uint16_t flags = uint16_t(c.flags | kf::Dup | (descending ? kf::Descending : 0));
            Segment s = extended ? seg(3, c.length, c.type, flags) : Segment{3, c.length, flags, 0, 0};
            FileLayout layout{uint16_t(std::max(4, 2 + c.length)), {{s}}};
            Handle h;
            openNew(h, layout, "m" + std::to_string(fileNumber++));

            std::vector<Bytes> values;
            for (uint16_t tag = 0; tag < 120; ++tag) {
                values.push_back(randomValue(random, c));
                ASSERT_EQ(st::Ok, h.insert(record(layout.recordLength, {{0, le(tag, 2)}, {2, values.back()}})));
            }
            auto compare = [&](const Bytes& a, const Bytes& b) {
                return compareValues(c.type, c.flags == kf::Binary, c.flags & kf::NoCase, a, b);
            };
            std::vector<Bytes> walked = h.readAll();
            ASSERT_EQ(values.size(), walked.size());
            for (size_t i = 0; i + 1 < walked.size(); ++i) {
                size_t t = readLe(walked[i].data(), 2), u = readLe(walked[i + 1].data(), 2);
                int order = compare(values[t], values[u]);
                if (descending)
                    order = -order;
                ASSERT_TRUE(order < 0 || (order == 0 && t < u))
                    << "position " << i << ": tag " << t << " before tag " << u;
            }
            // Get Equal finds the earliest record of each value.
            for (size_t tag = 0; tag < values.size(); tag += 7) {
                size_t earliest = 0;
                while (compare(values[earliest], values[tag]) != 0)
                    ++earliest;
                ASSERT_EQ(st::Ok, h.find(op::GetEqual, values[tag]));
                EXPECT_EQ(earliest, readLe(h.data.data(), 2)) << "searching the value of tag " << tag;
            }
        }
    }
}

}  // namespace
}  // namespace conformance
