// The two conversions that field tables drive.
#include "core/RecordFieldTable.h"

#include "RESharedHelpers.h"
#include "core/RecordFields.h"

#include <algorithm>
#include <cstring>

namespace {

int64_t ReadSigned(const uint8_t* at, uint32_t size) {
    uint64_t value = 0;
    for (uint32_t i = 0; i < size; ++i)
        value |= static_cast<uint64_t>(at[i]) << (8 * i);
    if (size < 8 && size > 0 && (at[size - 1] & 0x80) != 0)
        value |= ~uint64_t{0} << (8 * size);
    return static_cast<int64_t>(value);
}

// A 4- or 8-byte floating-point value at `from` into a 4- or 8-byte one at `to`.
void ConvertReal(const uint8_t* from, uint32_t fromSize, uint8_t* to, uint32_t toSize) {
    double value;
    if (fromSize == sizeof(float)) {
        float narrow;
        std::memcpy(&narrow, from, sizeof narrow);
        value = narrow;
    } else {
        std::memcpy(&value, from, sizeof value);
    }
    if (toSize == sizeof(float)) {
        const float narrow = static_cast<float>(value);
        std::memcpy(to, &narrow, sizeof narrow);
    } else {
        std::memcpy(to, &value, sizeof value);
    }
}

void WriteSigned(uint8_t* at, uint32_t size, int64_t value) {
    for (uint32_t i = 0; i < size; ++i)
        at[i] = static_cast<uint8_t>(static_cast<uint64_t>(value) >> (8 * i));
}

// Old text to new: trailing blanks become NULs and the text is zero-terminated within the new
// width.
void TextToNew(char* to, uint32_t toSize, const char* from, uint32_t fromSize) {
    if (toSize > fromSize) {
        gRE_memcpy(to, from, fromSize);
        return;
    }
    char text[256 + 1];
    const uint32_t width = std::min<uint32_t>(fromSize, 256);
    gRE_memcpy(text, from, width);
    std::memcpy(to, text, toSize);
    to[toSize - 1] = '\0';
}

void FieldToNew(const REField& f, const uint8_t* oldRec, uint8_t* newRec) {
    for (uint32_t i = 0; i < f.count; ++i) {
        const uint8_t* from = oldRec + f.oldOffset + f.oldSize * i;
        uint8_t* to = newRec + f.newOffset + f.newSize * i;
        switch (f.rule) {
        case REFieldRule::kText:
        case REFieldRule::kTextRunOn:
            TextToNew(reinterpret_cast<char*>(to), f.newSize, reinterpret_cast<const char*>(from), f.oldSize);
            break;
        case REFieldRule::kNumber:
            WriteSigned(to, f.newSize, ReadSigned(from, f.oldSize));
            break;
        case REFieldRule::kCopy:
            std::memcpy(to, from, std::min(f.newSize, f.oldSize));
            break;
        case REFieldRule::kReal:
            ConvertReal(from, f.oldSize, to, f.newSize);
            break;
        case REFieldRule::kRecord:
            REConvertToNew(*f.nested, from, to);
            break;
        case REFieldRule::kCustom:
            f.toNew(from, to);
            break;
        case REFieldRule::kNewOnly:
            break;
        }
    }
}

void FieldToOld(const REField& f, const uint8_t* newRec, uint8_t* oldRec, uint32_t oldRecSize) {
    for (uint32_t i = 0; i < f.count; ++i) {
        const uint8_t* from = newRec + f.newOffset + f.newSize * i;
        uint8_t* to = oldRec + f.oldOffset + f.oldSize * i;
        switch (f.rule) {
        case REFieldRule::kText:
            std::memcpy(to, from, std::min<size_t>(strnlen(reinterpret_cast<const char*>(from), f.newSize), f.oldSize));
            break;
        case REFieldRule::kTextRunOn:
            std::memcpy(to, from,
                        std::min<size_t>(strnlen(reinterpret_cast<const char*>(from), f.newSize),
                                         oldRecSize - (f.oldOffset + f.oldSize * i)));
            break;
        case REFieldRule::kNumber:
            WriteSigned(to, f.oldSize, ReadSigned(from, f.newSize));
            break;
        case REFieldRule::kCopy:
            std::memcpy(to, from, std::min(f.newSize, f.oldSize));
            break;
        case REFieldRule::kReal:
            ConvertReal(from, f.newSize, to, f.oldSize);
            break;
        case REFieldRule::kRecord:
            REConvertToOld(*f.nested, from, to);
            break;
        case REFieldRule::kCustom:
            if (f.toOld != nullptr)
                f.toOld(from, to);
            break;
        case REFieldRule::kNewOnly:
            break;
        }
    }
}

}  // namespace

int REConvertToNew(const REFieldTable& table, const void* oldRec, void* newRec) {
    if (oldRec == nullptr || newRec == nullptr)
        return 0;
    std::memset(newRec, 0, table.newSize);
    for (const REField& f : table.fields)
        FieldToNew(f, static_cast<const uint8_t*>(oldRec), static_cast<uint8_t*>(newRec));
    if (table.afterToNew != nullptr)
        table.afterToNew(newRec);
    return 1;
}

int REConvertToOld(const REFieldTable& table, const void* newRec, void* oldRec) {
    if (newRec == nullptr || oldRec == nullptr)
        return 0;
    if (table.oldReadOnly)
        return 1;
    std::memset(oldRec, kOldTextFill, table.oldSize);
    for (const REField& f : table.fields)
        FieldToOld(f, static_cast<const uint8_t*>(newRec), static_cast<uint8_t*>(oldRec), table.oldSize);
    return 1;
}
