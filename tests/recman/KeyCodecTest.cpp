// The key codec against the collation rules: random and exhaustive values must order as a
// reference comparator that decodes them; segments compare in turn. Null keys are checked
// through real files by the KeyRules tests.
//
// The codec is internal to the library, so its sources are compiled into this test.
#include "recman/FileSpec.cpp"
#include "recman/KeyCodec.cpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace {

using recman::KeySpec;
using recman::SegmentSpec;
using Bytes = std::vector<uint8_t>;

SegmentSpec segment(uint8_t type, uint16_t length, uint16_t flags = 0)
{
    SegmentSpec s;
    s.position = 1;
    s.length = length;
    s.flags = flags;
    if (type == recman::TypeBinary) {
        s.flags |= recman::KeyBinary;
        s.type = recman::TypeBinary;
    } else {
        s.flags |= recman::KeyExtendedType;
        s.extendedType = type;
        s.type = type;
    }
    return s;
}

std::string encode(const SegmentSpec& s, const Bytes& value)
{
    std::string out;
    recman::KeyCodec::encodeSegment(s, value.data(), out);
    return out;
}

Bytes le(uint64_t v, size_t n)
{
    Bytes b(n);
    for (size_t i = 0; i < n; ++i)
        b[i] = uint8_t(v >> (8 * i));
    return b;
}

// Case folding touches a-z only. (Order and equality of every type are checked through real
// files by the Collation tests.)
TEST(KeyCodecTest, CaseFoldingTouchesOnlyAToZ)
{
    const SegmentSpec ci = segment(recman::TypeString, 1, recman::KeyCaseInsensitive);
    for (int b = 0; b < 256; ++b) {
        const int expected = (b >= 'a' && b <= 'z') ? b - 32 : b;
        EXPECT_EQ(uint8_t(encode(ci, {uint8_t(b)})[0]), expected) << b;
    }
}

double bfloatValue(const Bytes& b)
{
    const size_t n = b.size();
    if (b[n - 1] == 0)
        return 0.0;
    const bool negative = (b[n - 2] & 0x80) != 0;
    double mantissa = 0.5 + (b[n - 2] & 0x7F) / 256.0;  // hidden bit, then the rest
    double scale = 1.0 / 256.0;
    for (size_t i = n - 2; i-- > 0;) {
        scale /= 256.0;
        mantissa += b[i] * scale;
    }
    const double v = std::ldexp(mantissa, int(b[n - 1]) - 128);
    return negative ? -v : v;
}

int signOf(double d) { return (d > 0) - (d < 0); }

// Random values of every numeric type against a comparator that decodes them.
TEST(KeyCodecTest, RandomValuesOrderAsTheirDecodedValues)
{
    using namespace recman;
    std::mt19937_64 rng(42);
    struct Numeric {
        uint8_t type;
        uint16_t length;
        double (*decode)(const Bytes&);
    };
    const std::vector<Numeric> numerics = {
        {TypeInteger, 2, [](const Bytes& b) { return double(int16_t(b[0] | b[1] << 8)); }},
        {TypeInteger, 8, [](const Bytes& b) { int64_t v; std::memcpy(&v, b.data(), 8); return double(v); }},
        {TypeUnsignedBinary, 4, [](const Bytes& b) { uint32_t v; std::memcpy(&v, b.data(), 4); return double(v); }},
        {TypeFloat, 4, [](const Bytes& b) { float v; std::memcpy(&v, b.data(), 4); return double(v); }},
        {TypeFloat, 8, [](const Bytes& b) { double v; std::memcpy(&v, b.data(), 8); return v; }},
        {TypeBFloat, 4, bfloatValue},
        {TypeBFloat, 8, bfloatValue},
    };
    for (const Numeric& t : numerics) {
        const SegmentSpec s = segment(t.type, t.length);
        for (int i = 0; i < 20000; ++i) {
            Bytes a = le(rng(), t.length), b = le(rng(), t.length);
            if (i % 3 == 0)
                b = a, b[0] ^= 1;  // near neighbours
            const double x = t.decode(a), y = t.decode(b);
            if (std::isnan(x) || std::isnan(y))
                continue;
            if (x == y && t.type != TypeFloat && t.type != TypeBFloat)
                continue;
            const int expected = x < y ? -1 : (x > y ? 1 : 0);
            const int got = encode(s, a).compare(encode(s, b));
            if (x == y && x != 0.0)
                continue;  // distinct 64-bit integers can round to one double
            ASSERT_EQ(signOf(got), expected) << "type " << int(t.type) << " length " << t.length;
        }
    }
}

// Small types exhaustively: every pair of 1-byte integers and every 2-byte unsigned neighbour.
TEST(KeyCodecTest, SmallIntegersExhaustively)
{
    using namespace recman;
    const SegmentSpec i1 = segment(TypeInteger, 1), u1 = segment(TypeUnsignedBinary, 1), u2 = segment(TypeUnsignedBinary, 2);
    for (int a = 0; a < 256; ++a)
        for (int b = 0; b < 256; ++b) {
            EXPECT_EQ(signOf(encode(i1, {uint8_t(a)}).compare(encode(i1, {uint8_t(b)}))), signOf(int8_t(a) - int8_t(b)));
            EXPECT_EQ(signOf(encode(u1, {uint8_t(a)}).compare(encode(u1, {uint8_t(b)}))), signOf(a - b));
        }
    for (uint32_t v = 1; v < 65536; ++v)
        ASSERT_LT(encode(u2, le(v - 1, 2)), encode(u2, le(v, 2))) << v;
}

// A key of several segments collates segment by segment: a shorter string in the first segment
// sorts first whatever follows it, and a descending segment reverses only its own result.
TEST(KeyCodecTest, SegmentsCompareInTurn)
{
    using namespace recman;
    KeySpec key;
    SegmentSpec a = segment(TypeLString, 4), b = segment(TypeUnsignedBinary, 1, KeyDescending);
    b.position = 5;
    key.segments = {a, b};
    key.width = 5;
    auto enc = [&](Bytes v) {
        std::string out;
        KeyCodec::encode(key, v.data(), out);
        return out;
    };
    const std::vector<Bytes> ascending = {
        {1, 'A', 0, 0, 0x00}, {2, 'A', 0, 0, 0xFF}, {2, 'A', 0, 0, 0x01}, {2, 'A', 'B', 0, 0xFF}, {1, 'B', 0, 0, 0xFF},
    };
    for (size_t i = 1; i < ascending.size(); ++i)
        EXPECT_LT(enc(ascending[i - 1]), enc(ascending[i])) << i;
}

}  // namespace
