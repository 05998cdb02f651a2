#include "recman/FileSpec.h"

#include "recman/ByteOrder.h"

namespace recman {

namespace {

enum HeaderOffset : uint32_t {
    HdrRecordLength = 0,
    HdrPageSize = 2,
    HdrKeyCount = 4,
    HdrRecordCount = 6,
    HdrFileFlags = 10,
};

enum SegmentOffset : uint32_t {
    SegPosition = 0,
    SegLength = 2,
    SegFlags = 4,
    SegExtendedType = 10,
    SegNullValue = 11,
};

bool pageSizeValid(uint16_t size)
{
    if (size >= 512 && size <= 4096 && size % 512 == 0)
        return true;
    return size == 8192 || size == 16384;
}

}  // namespace

bool typeOffered(uint8_t t)
{
    switch (t) {
    case TypeString: case TypeInteger: case TypeFloat: case TypeLogical: case TypeBFloat:
    case TypeLString: case TypeZString: case TypeUnsignedBinary: case TypeAutoIncrement:
        return true;
    default:
        return false;
    }
}

bool lengthAllowed(uint8_t type, uint16_t n)
{
    switch (type) {
    case TypeString: return n >= 1 && n <= 255;
    case TypeInteger: case TypeUnsignedBinary: return n == 1 || n == 2 || n == 4 || n == 8;
    case TypeFloat: case TypeBFloat: return n == 4 || n == 8;
    case TypeLogical: return n == 1 || n == 2;
    case TypeLString: case TypeZString: return n >= 2 && n <= 255;
    case TypeAutoIncrement: return n == 2 || n == 4;
    case TypeBinary: return n >= 2 && n <= 254 && n % 2 == 0;
    default: return false;
    }
}

size_t FileSpec::segmentCount() const
{
    size_t n = 0;
    for (const KeySpec& k : keys)
        n += k.segments.size();
    return n;
}

Status FileSpec::parse(const uint8_t* block, uint32_t length, FileSpec& out)
{
    if (block == nullptr || length < CreateHeaderSize)
        return StatusBadBlock;
    FileSpec spec;
    spec.recordLength = loadLE16(block + HdrRecordLength);
    spec.pageSize = loadLE16(block + HdrPageSize);
    const uint16_t keyCount = loadLE16(block + HdrKeyCount);
    spec.fileFlags = loadLE16(block + HdrFileFlags);
    if (!pageSizeValid(spec.pageSize))
        return StatusBadBlock;
    if (keyCount > MaxKeys)
        return StatusTooManyKeys;
    if (spec.recordLength < 4 || spec.recordLength > spec.pageSize - 8)
        return StatusBadRecordLength;

    uint32_t segIndex = 0;
    for (uint16_t k = 0; k < keyCount; ++k) {
        KeySpec key;
        bool more = true;
        while (more) {
            const uint64_t end = CreateHeaderSize + uint64_t(segIndex + 1) * SegmentDescriptionSize;
            if (end > length)
                return StatusBadBlock;
            if (segIndex + 1 > MaxSegments)
                return StatusTooManyKeys;
            const uint8_t* d = block + CreateHeaderSize + segIndex * SegmentDescriptionSize;
            SegmentSpec s;
            s.position = loadLE16(d + SegPosition);
            s.length = loadLE16(d + SegLength);
            s.flags = loadLE16(d + SegFlags);
            s.extendedType = d[SegExtendedType];
            s.nullValue = d[SegNullValue];
            if (s.flags & (KeyAltCollation | KeyRefusedHighFlags))
                return StatusBadKeyFlags;
            if (s.flags & KeyExtendedType) {
                if (!typeOffered(s.extendedType))
                    return StatusBadKeyType;
                s.type = s.extendedType;
            } else {
                s.type = (s.flags & KeyBinary) ? uint8_t(TypeBinary) : uint8_t(TypeString);
            }
            if (s.length == 0 || !lengthAllowed(s.type, s.length) || key.width + s.length > MaxKeyWidth)
                return StatusBadKeyLength;
            if (s.position < 1 || uint32_t(s.position) + s.length - 1 > spec.recordLength)
                return StatusSegmentOutside;
            if (key.segments.empty()) {
                key.duplicates = (s.flags & KeyDuplicates) != 0;
                key.modifiable = (s.flags & KeyModifiable) != 0;
                key.nullable = (s.flags & KeyNullable) != 0;
                key.nullIfAny = key.nullable && (s.flags & KeyNullAnySegment) != 0;
            }
            key.width = uint16_t(key.width + s.length);
            more = (s.flags & KeySegmented) != 0;
            key.segments.push_back(s);
            ++segIndex;
        }
        spec.keys.push_back(std::move(key));
    }
    out = std::move(spec);
    return StatusOk;
}

std::string FileSpec::statBlock(uint32_t records) const
{
    std::string out(CreateHeaderSize + segmentCount() * SegmentDescriptionSize, '\0');
    uint8_t* p = reinterpret_cast<uint8_t*>(out.data());
    storeLE16(p + HdrRecordLength, recordLength);
    storeLE16(p + HdrPageSize, pageSize);
    storeLE16(p + HdrKeyCount, uint16_t(keys.size()));
    storeLE32(p + HdrRecordCount, records);
    storeLE16(p + HdrFileFlags, fileFlags);
    uint8_t* d = p + CreateHeaderSize;
    for (const KeySpec& k : keys) {
        for (const SegmentSpec& s : k.segments) {
            storeLE16(d + SegPosition, s.position);
            storeLE16(d + SegLength, s.length);
            storeLE16(d + SegFlags, s.flags);
            d[SegExtendedType] = s.extendedType;
            d[SegNullValue] = s.nullValue;
            d += SegmentDescriptionSize;
        }
    }
    return out;
}

}  // namespace recman
