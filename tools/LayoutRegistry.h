// Every record layout the library knows, for the data-file utility: per record-file class its
// layout name, record lengths of both generations, keys and field table, taken from the class's
// traits (the same constants the class itself is built from).
#pragma once

#include "core/RecordFileSpec.h"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace tool {

struct Layout {
    const char* name;          // "job items", "shapes", ...
    const char* traitsName;    // "JobFileTraits"; empty when the class has no traits header
    const char* traitsHeader;  // "estimating/JobFileTraits.h", or empty
    const char* extension;     // a file name extension that only this layout's files carry, or empty
    RERecordFileSpec spec;     // className, lengths, create keys and flags, field table

    bool VariableLength() const { return (spec.create.fileFlags & kFileFlagVariableLength) != 0; }
};

// The registry, in subsystem order.
std::span<const Layout> Layouts();

// The layout of that name (letter case ignored), or null.
const Layout* FindLayout(const std::string& name);

// Key segments as Stat reports them.
struct KeySpec {
    std::vector<REKeySegment> segments;  // in the order of the file's keys
    uint16_t keyCount = 0;
};

// What identifies a file: Stat's record length, flags and keys, and the file's name.
struct FileIdentity {
    uint16_t recordLength = 0;
    uint16_t fileFlags = 0;
    KeySpec keys;
    std::string path;
};

struct Match {
    const Layout* layout = nullptr;
    bool oldGeneration = false;
    std::vector<const Layout*> alternatives;  // other layouts that fit as well
};

// The layout a file most likely has: record length first (the current layout's or the earlier
// generation's), then the key specification, then the name's extension.
Match IdentifyLayout(const FileIdentity& file);

// The generation of a named layout that a file of this record length has; false when neither.
bool GenerationOf(const Layout& layout, uint16_t recordLength, bool& oldGeneration);

}  // namespace tool
