// The file layout: what a create block describes, checked in the order Create answers.
//
// Create block layout, little-endian (Stat writes the same with the counts filled in):
//   OFFSET SIZE DESCRIPTION
//   0      2    record length (fixed part of a variable-length file)
//   2      2    page size
//   4      2    number of keys
//   6      4    record count (Stat only; ignored by Create)
//   10     2    file flags
//   12     4    reserved (0 in Stat)
//   16+16i 16   segment description i:
//     +0 2 position (1-based)  +2 2 length  +4 2 key flags  +6 4 reserved
//     +10 1 extended type      +11 1 null value            +12 4 reserved
#pragma once

#include "recman/Codes.h"

#include <cstdint>
#include <string>
#include <vector>

namespace recman {

struct SegmentSpec {
    uint16_t position = 0;  // 1-based, as in the block
    uint16_t length = 0;
    uint16_t flags = 0;
    uint8_t extendedType = 0;
    uint8_t nullValue = 0;
    // Type the segment collates by: the extended type, or TypeBinary / TypeString without 0x0100.
    uint8_t type = TypeString;

    uint32_t offset() const { return position - 1u; }
    bool descending() const { return (flags & KeyDescending) != 0; }
    bool caseInsensitive() const { return (flags & KeyCaseInsensitive) != 0; }
};

struct KeySpec {
    std::vector<SegmentSpec> segments;
    uint16_t width = 0;  // sum of segment lengths
    bool duplicates = false;
    bool modifiable = false;
    bool nullable = false;    // 0x0008 on the first segment
    bool nullIfAny = false;   // 0x0200 with 0x0008
};

struct FileSpec {
    uint16_t recordLength = 0;
    uint16_t pageSize = 0;
    uint16_t fileFlags = 0;
    std::vector<KeySpec> keys;

    bool variableLength() const { return (fileFlags & FileVariableLength) != 0; }
    size_t segmentCount() const;

    // Parses and validates a create block of `length` bytes, in the order Create checks it (block
    // length, page size, key count, record length, then each segment). Returns StatusOk and fills
    // `out`, or the first failing status.
    static Status parse(const uint8_t* block, uint32_t length, FileSpec& out);

    // The Stat block: 16 + 16 x segments bytes, reserved fields zero, `records` at offset 6.
    std::string statBlock(uint32_t records) const;
};

// Lengths each type allows; false for a type not offered.
bool typeOffered(uint8_t extendedType);
bool lengthAllowed(uint8_t type, uint16_t length);

}  // namespace recman
