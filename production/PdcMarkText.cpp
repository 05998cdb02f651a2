// Conversions of the production piece mark.
#include "REPdcMarkText.h"

#include "RESharedHelpers.h"

#include <cstring>

int gConvertMarkTypeToNewFormat(OLD_MARKTYPE* oldMark, char* newMark) {
    if (oldMark == nullptr || newMark == nullptr)
        return 0;
    char mark[kPdcMarkSize] = {};
    std::memcpy(mark, oldMark->sMark, sizeof oldMark->sMark);
    // Squeeze out the NULs, keeping the order of the other bytes.
    size_t kept = 0;
    for (size_t i = 0; i < kPdcMarkSize; ++i) {
        if (mark[i] != '\0')
            mark[kept++] = mark[i];
    }
    if (kept > 0 && kept < kPdcMarkSize)
        std::memset(mark + kept, 0, kPdcMarkSize - kept);
    gStrTrimLeft(mark);
    gStrTrimRight(mark);
    std::memcpy(newMark, mark, kPdcMarkSize);
    return 1;
}

int gConvertMarkTypeToOldFormat(const char*, OLD_MARKTYPE*) { return 1; }
