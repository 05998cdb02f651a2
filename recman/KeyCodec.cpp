#include "recman/KeyCodec.h"

#include "recman/ByteOrder.h"

#include <cstring>

namespace recman::KeyCodec {

namespace {

uint8_t fold(uint8_t b, bool caseInsensitive)
{
    return (caseInsensitive && b >= 'a' && b <= 'z') ? uint8_t(b - ('a' - 'A')) : b;
}

void appendBigEndian(std::string& out, uint64_t v, unsigned n)
{
    for (unsigned i = n; i-- > 0;)
        out.push_back(char(uint8_t(v >> (8 * i))));
}

uint64_t floatKey(const uint8_t* p, unsigned n)
{
    const uint64_t raw = loadLEN(p, n);
    const unsigned bits = 8 * n;
    const uint64_t sign = uint64_t(1) << (bits - 1);
    const uint64_t all = (n == 8) ? ~uint64_t(0) : (uint64_t(1) << bits) - 1;
    const unsigned mantissaBits = (n == 8) ? 52 : 23;
    const uint64_t expMask = (all >> 1) & ~((uint64_t(1) << mantissaBits) - 1);
    const uint64_t manMask = (uint64_t(1) << mantissaBits) - 1;
    if ((raw & expMask) == expMask && (raw & manMask) != 0)
        return all;  // every NaN alike, above +infinity
    if ((raw & ~sign) == 0)
        return sign;  // -0 and +0
    return (raw & sign) ? (~raw & all) : (raw | sign);
}

uint64_t bfloatKey(const uint8_t* p, unsigned n)
{
    const uint8_t exponent = p[n - 1];
    const uint64_t bias = uint64_t(1) << (8 * n - 1);
    if (exponent == 0)
        return bias;
    const bool negative = (p[n - 2] & 0x80) != 0;
    const unsigned mantissaBits = 8 * n - 9;
    const uint64_t mantissa = loadLEN(p, n - 1) & ((uint64_t(1) << mantissaBits) - 1);
    const uint64_t magnitude = (uint64_t(exponent) << mantissaBits) | mantissa;
    return negative ? bias - magnitude : bias + magnitude;
}

void encodeAscending(const SegmentSpec& seg, const uint8_t* p, std::string& out)
{
    const unsigned n = seg.length;
    const bool ci = seg.caseInsensitive();
    switch (seg.type) {
    case TypeInteger:
    case TypeAutoIncrement:
        appendBigEndian(out, loadLEN(p, n) ^ (uint64_t(1) << (8 * n - 1)), n);
        break;
    case TypeUnsignedBinary:
    case TypeBinary:
        for (unsigned i = n; i-- > 0;)
            out.push_back(char(p[i]));
        break;
    case TypeFloat:
        appendBigEndian(out, floatKey(p, n), n);
        break;
    case TypeBFloat:
        appendBigEndian(out, bfloatKey(p, n), n);
        break;
    case TypeZString: {
        const void* nul = std::memchr(p, 0, n);
        const unsigned used = nul ? unsigned(static_cast<const uint8_t*>(nul) - p) : n;
        for (unsigned i = 0; i < used; ++i)
            out.push_back(char(fold(p[i], ci)));
        out.append(n - used, '\0');
        break;
    }
    case TypeLString: {
        const unsigned used = p[0] < n - 1 ? p[0] : n - 1;
        for (unsigned i = 1; i <= used; ++i) {
            const uint8_t b = fold(p[i], ci);
            out.push_back(char(b));
            if (b == 0)
                out.push_back('\x01');
        }
        out.append(2, '\0');
        break;
    }
    case TypeLogical:
        out.append(reinterpret_cast<const char*>(p), n);
        break;
    default:  // STRING
        for (unsigned i = 0; i < n; ++i)
            out.push_back(char(fold(p[i], ci)));
        break;
    }
}

}  // namespace

void encodeSegment(const SegmentSpec& seg, const uint8_t* field, std::string& out)
{
    const size_t start = out.size();
    encodeAscending(seg, field, out);
    if (seg.descending())
        for (size_t i = start; i < out.size(); ++i)
            out[i] = char(~uint8_t(out[i]));
}

void encode(const KeySpec& key, const uint8_t* value, std::string& out)
{
    out.clear();
    for (const SegmentSpec& s : key.segments) {
        encodeSegment(s, value, out);
        value += s.length;
    }
}

void extractValue(const KeySpec& key, const uint8_t* record, uint8_t* value)
{
    for (const SegmentSpec& s : key.segments) {
        std::memcpy(value, record + s.offset(), s.length);
        value += s.length;
    }
}

bool isNull(const KeySpec& key, const uint8_t* value)
{
    if (!key.nullable)
        return false;
    bool any = false;
    bool all = true;
    for (const SegmentSpec& s : key.segments) {
        bool segNull = true;
        for (unsigned i = 0; i < s.length && segNull; ++i)
            segNull = value[i] == s.nullValue;
        any = any || segNull;
        all = all && segNull;
        value += s.length;
    }
    return key.nullIfAny ? any : all;
}

}  // namespace recman::KeyCodec
