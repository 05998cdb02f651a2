// Small routines that the catalogue and settings file classes share (the settings and report
// files of the estimating subsystem use them too).
#pragma once

#include "REBtrieveBase.h"
#include "core/RecordFileSpec.h"

#include <cstdint>

// True when the two texts are equal without regard to case (ASCII letters); null reads as empty.
bool REEqualNoCase(const char* a, const char* b);

// Creates the file at `path` with the specification of the open file `source` (its Stat block:
// the file header and twenty key segments, zero beyond, passed with `createLength` bytes) and
// copies every record of `source` into it in physical order, in the stored layout.
// A refused Create gives 1 (the callers have always treated it so); an empty source or a refused
// insert gives 0; 1 after the last record.
int RECloneFile(REBtrieveBase& source, const char* path, uint32_t createLength);

// Positional reads in stored order (the Step operations), on key 0.
constexpr void REUseStepReads(RERecordFileSpec& spec) {
    spec.first = {REBtrieveBase::kOpStepFirst, 0};
    spec.last = {REBtrieveBase::kOpStepLast, 0};
    spec.next = {REBtrieveBase::kOpStepNext, 0};
    spec.previous = {REBtrieveBase::kOpStepPrevious, 0};
}

// Positional reads in the order of whichever key the last call used.
constexpr void REUseCurrentKeyReads(RERecordFileSpec& spec) {
    spec.first.keyNumber = REPositionalRead::kCurrentKey;
    spec.last.keyNumber = REPositionalRead::kCurrentKey;
    spec.next.keyNumber = REPositionalRead::kCurrentKey;
    spec.previous.keyNumber = REPositionalRead::kCurrentKey;
}
