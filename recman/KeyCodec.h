// Order-preserving key encoding: a key value (its segment fields concatenated, W bytes) becomes a
// byte string whose memcmp order is the key's collation order, and equal values encode equally.
//
// Per segment (ascending; a descending segment has every byte of its encoding inverted):
//   STRING, LOGICAL       the bytes (a-z folded to A-Z when case-insensitive)
//   INTEGER, AUTOINC      big-endian with the sign bit flipped
//   UNSIGNED, binary      big-endian
//   FLOAT                 IEEE sign-magnitude mapped to unsigned; -0 as +0; every NaN as all ones
//   BFLOAT                0x80.. + (exponent, mantissa) for positives, 0x80.. - it for negatives
//   ZSTRING               the bytes before the first NUL, zero-padded to the field length
//   LSTRING               the string with 00 escaped as 00 01, ended by 00 00
// Every segment encoding is prefix-free, so concatenation keeps segment-by-segment order.
#pragma once

#include "recman/FileSpec.h"

#include <cstdint>
#include <string>

namespace recman {

namespace KeyCodec {

// Appends the encoding of one segment field (`field` holds seg.length bytes).
void encodeSegment(const SegmentSpec& seg, const uint8_t* field, std::string& out);

// Replaces `out` with the encoding of a key value (`value` holds key.width bytes).
void encode(const KeySpec& key, const uint8_t* value, std::string& out);

// Copies the key's segment fields out of a record into `value` (key.width bytes).
void extractValue(const KeySpec& key, const uint8_t* record, uint8_t* value);

// True when the key value is null (6.5): the record then has no entry in the key.
bool isNull(const KeySpec& key, const uint8_t* value);

}  // namespace KeyCodec

}  // namespace recman
