// Decoding of the sortable byte form in which records of the earlier file generation keep
// single-precision numbers: most significant byte first, the sign bit set on zero and positive
// numbers, every bit inverted on negative ones, so that the bytes compare as a string key in
// numeric order.
#pragma once

#include "tarsel_export.h"

// Turns the 4 sortable bytes at `value` in place into an ordinary float. Not its own inverse.
// A null pointer is ignored.
TARSEL_API void SrtStr2Float(float* value);
