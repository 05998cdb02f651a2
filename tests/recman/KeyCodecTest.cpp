// The key codec against the collation rules: for every type, values listed in ascending order
// must encode in strictly ascending memcmp order (and strictly descending with 0x0040), values
// that collate equal must encode equally, and random values must order as a reference
// comparator that decodes them.
//
// The codec is internal to the library, so its sources are compiled into this test.
#include "recman/FileSpec.cpp"
#include "recman/KeyCodec.cpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
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

Bytes str(const std::string& s, size_t n)
{
    Bytes b(n, 0);
    std::memcpy(b.data(), s.data(), std::min(n, s.size()));
    return b;
}

Bytes lstr(const std::string& s, size_t n)
{
    Bytes b(n, 0);
    b[0] = uint8_t(s.size());
    std::memcpy(b.data() + 1, s.data(), std::min(n - 1, s.size()));
    return b;
}

template <typename F>
Bytes ieee(F v)
{
    Bytes b(sizeof v);
    std::memcpy(b.data(), &v, sizeof v);
    return b;
}

struct OrderCase {
    const char* name;
    uint8_t type;
    uint16_t length;
    uint16_t flags;
    std::vector<Bytes> ascending;
};

const float kInf = std::numeric_limits<float>::infinity();
const double kInfD = std::numeric_limits<double>::infinity();

std::vector<OrderCase> orderCases()
{
    using namespace recman;
    return {
        {"string", TypeString, 3, 0, {str("", 3), str("A", 3), str("AB", 3), str("M", 3), str("a", 3), {0xFF, 0, 0}}},
        {"string case-insensitive", TypeString, 3, KeyCaseInsensitive, {str("ABC", 3), str("abd", 3), str("_", 3)}},
        {"non-extended string", 0, 2, 0, {str("", 2), str("0", 2), str("A", 2), {0xFF, 0xFF}}},
        {"zstring", TypeZString, 5, 0, {str("", 5), str("A", 5), str("AB", 5), str("M", 5), str("a", 5), str("abcde", 5)}},
        {"zstring case-insensitive", TypeZString, 5, KeyCaseInsensitive, {str("", 5), str("abc", 5), str("ABD", 5), str("_", 5)}},
        {"lstring", TypeLString, 5, 0,
         {lstr("", 5), lstr(std::string("\0", 1), 5), lstr("A", 5), lstr(std::string("A\0", 2), 5), lstr("AB", 5),
          lstr("a", 5)}},
        {"integer 1", TypeInteger, 1, 0, {le(0x80, 1), le(0xFF, 1), le(0, 1), le(3, 1), le(0x7F, 1)}},
        {"integer 2", TypeInteger, 2, 0, {le(0x8000, 2), le(0xFFFF, 2), le(0, 2), le(3, 2), le(0x7FFF, 2)}},
        {"integer 4", TypeInteger, 4, 0, {le(0x80000000, 4), le(uint32_t(-1), 4), le(0, 4), le(3, 4), le(256, 4)}},
        {"integer 8", TypeInteger, 8, 0, {le(1ull << 63, 8), le(uint64_t(-2), 8), le(uint64_t(-1), 8), le(0, 8), le(1, 8)}},
        {"autoincrement", TypeAutoIncrement, 4, 0, {le(uint32_t(-5), 4), le(0, 4), le(1, 4), le(2, 4), le(0x7FFFFFFF, 4)}},
        {"unsigned 1", TypeUnsignedBinary, 1, 0, {le(0, 1), le(1, 1), le(0x80, 1), le(0xFF, 1)}},
        {"unsigned 4", TypeUnsignedBinary, 4, 0, {le(0, 4), le(1, 4), le(256, 4), le(0x80000000, 4), le(0xFFFFFFFF, 4)}},
        {"unsigned 8", TypeUnsignedBinary, 8, 0, {le(0, 8), le(0x100, 8), le(1ull << 63, 8), le(~0ull, 8)}},
        {"binary 2", TypeBinary, 2, 0, {le(0, 2), le(1, 2), le(0x100, 2), le(0xFFFF, 2)}},
        {"binary 6", TypeBinary, 6, 0, {le(0, 6), le(0xFF, 6), le(0x10000000000, 6), le(0xFFFFFFFFFFFF, 6)}},
        {"logical", TypeLogical, 2, 0, {{0, 0}, {0, 1}, {1, 0}, {0xFF, 0}}},
        {"float 4", TypeFloat, 4, 0,
         {ieee(-kInf), ieee(-1e30f), ieee(-1.0f), ieee(-1e-40f), ieee(0.0f), ieee(1e-40f), ieee(1.0f), ieee(1e30f),
          ieee(kInf), ieee(std::nanf(""))}},
        {"float 8", TypeFloat, 8, 0,
         {ieee(-kInfD), ieee(-2.5), ieee(-1e-310), ieee(0.0), ieee(1e-310), ieee(2.5), ieee(kInfD),
          ieee(std::nan(""))}},
        // cvsmbf layout: exponent last, sign in the top bit of the byte before it.
        {"bfloat 4", TypeBFloat, 4, 0,
         {{0, 0, 0x80, 0x82}, {0, 0, 0x80, 0x81}, {0, 0, 0x80, 0x01}, {0, 0, 0, 0}, {0, 0, 0, 0x81}, {0, 0, 0x20, 0x84},
          {0xFF, 0xFF, 0x7F, 0xFF}}},
        {"bfloat 8", TypeBFloat, 8, 0,
         {{0, 0, 0, 0, 0, 0, 0x80, 0x81}, {0, 0, 0, 0, 0, 0, 0, 0}, {1, 0, 0, 0, 0, 0, 0, 0x81},
          {0, 0, 0, 0, 0, 0, 0x20, 0x84}}},
    };
}

TEST(KeyCodecTest, AscendingValuesEncodeInOrderAndDescendingReversesIt)
{
    for (const OrderCase& c : orderCases()) {
        for (bool descending : {false, true}) {
            const SegmentSpec s = segment(c.type, c.length, uint16_t(c.flags | (descending ? recman::KeyDescending : 0)));
            for (size_t i = 1; i < c.ascending.size(); ++i) {
                const std::string lo = encode(s, c.ascending[i - 1]);
                const std::string hi = encode(s, c.ascending[i]);
                if (descending)
                    EXPECT_GT(lo, hi) << c.name << " descending, values " << i - 1 << " and " << i;
                else
                    EXPECT_LT(lo, hi) << c.name << ", values " << i - 1 << " and " << i;
            }
        }
    }
}

struct EqualCase {
    const char* name;
    uint8_t type;
    uint16_t length;
    uint16_t flags;
    Bytes a, b;
};

TEST(KeyCodecTest, ValuesThatCollateEqualEncodeEqually)
{
    using namespace recman;
    const std::vector<EqualCase> cases = {
        {"zstring bytes after NUL", TypeZString, 5, 0, {'A', 'B', 0, 'x', 'y'}, {'A', 'B', 0, 0, 0}},
        {"zstring case-insensitive", TypeZString, 4, KeyCaseInsensitive, str("abc", 4), str("ABC", 4)},
        {"string case-insensitive", TypeString, 3, KeyCaseInsensitive, str("aBc", 3), str("AbC", 3)},
        {"lstring bytes past its length", TypeLString, 5, 0, {2, 'A', 'B', 'x', 'y'}, {2, 'A', 'B', 0, 0}},
        {"lstring length byte past the field", TypeLString, 3, 0, {200, 'A', 'B'}, {2, 'A', 'B'}},
        {"lstring case-insensitive", TypeLString, 4, KeyCaseInsensitive, {2, 'a', 'b', 0}, {2, 'A', 'B', 9}},
        {"float -0", TypeFloat, 4, 0, ieee(-0.0f), ieee(0.0f)},
        {"double -0", TypeFloat, 8, 0, ieee(-0.0), ieee(0.0)},
        {"float NaNs", TypeFloat, 4, 0, ieee(std::nanf("")), {1, 0, 0x80, 0xFF}},
        {"double NaNs", TypeFloat, 8, 0, ieee(-std::nan("")), ieee(std::nan("7"))},
        {"bfloat zero whatever the mantissa", TypeBFloat, 4, 0, {0x12, 0x34, 0x56, 0}, {0, 0, 0, 0}},
        {"bfloat negative zero", TypeBFloat, 8, 0, {0, 0, 0, 0, 0, 0, 0x80, 0}, {0, 0, 0, 0, 0, 0, 0, 0}},
    };
    for (const EqualCase& c : cases) {
        for (bool descending : {false, true}) {
            const SegmentSpec s = segment(c.type, c.length, uint16_t(c.flags | (descending ? KeyDescending : 0)));
            EXPECT_EQ(encode(s, c.a), encode(s, c.b)) << c.name;
        }
    }
    // Case folding touches a-z only.
    const SegmentSpec ci = segment(TypeString, 1, KeyCaseInsensitive);
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

TEST(KeyCodecTest, NullKeys)
{
    using namespace recman;
    KeySpec key;
    SegmentSpec a = segment(TypeString, 2), b = segment(TypeString, 1);
    a.nullValue = ' ';
    b.nullValue = 0;
    b.position = 3;
    key.segments = {a, b};
    key.width = 3;
    const Bytes allNull = {' ', ' ', 0}, oneNull = {' ', ' ', 'x'}, none = {'a', ' ', 'x'};
    EXPECT_FALSE(KeyCodec::isNull(key, allNull.data())) << "without 0x0008 the null byte has no effect";
    key.nullable = true;
    EXPECT_TRUE(KeyCodec::isNull(key, allNull.data()));
    EXPECT_FALSE(KeyCodec::isNull(key, oneNull.data()));
    key.nullIfAny = true;
    EXPECT_TRUE(KeyCodec::isNull(key, oneNull.data()));
    EXPECT_FALSE(KeyCodec::isNull(key, none.data()));
}

}  // namespace
