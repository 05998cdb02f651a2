// Small routines that the catalogue and settings file classes share (the settings and report
// files of the estimating subsystem use them too).
#pragma once

#include "REBtrieveBase.h"
#include "core/RecordFileSpec.h"

#include <cstdint>

// True when the two texts are equal without regard to case (ASCII letters); null reads as empty.
bool REEqualNoCase(const char* a, const char* b);

// Creates the file at `path` shaped like the open file `source` (by its Stat block:
// the file header and twenty key segments, zero beyond, passed with `createLength` bytes) and
// copies every record of `source` into it in physical order, in the stored layout.
// A refused Create gives 1 (the callers have always treated it so); an empty source or a refused
// insert gives 0; 1 after the last record.
int RECloneFile(REBtrieveBase& source, const char* path, uint32_t createLength);
