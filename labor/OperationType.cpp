// Conversions of a job item's labor operation entry between the old and the current layout.
#include "OPERATIONTYPE.h"
#include "RESharedHelpers.h"

#include <cstring>

namespace {

// Copies a zero-terminated code into a blank-padded old field, without its terminator.
void CopyCodeToOld(char* dst, const char* src, std::size_t width) {
    std::size_t length = strnlen(src, width);
    std::memcpy(dst, src, length);
}

}  // namespace

int gConvertOperationTypeToNewFormat(const OLD_OPERATIONTYPE* oldRec, OPERATIONTYPE* newRec) {
    if (oldRec == nullptr || newRec == nullptr)
        return 0;
    std::memset(newRec, 0, sizeof(*newRec));
    gRE_memcpy(newRec->sCode1, oldRec->sCode1, sizeof(oldRec->sCode1));
    newRec->nValue5 = oldRec->nValue5;
    newRec->nValue7 = oldRec->nValue7;
    gRE_memcpy(newRec->sCode2, oldRec->sCode2, sizeof(oldRec->sCode2));
    gRE_memcpy(newRec->sCode3, oldRec->sCode3, sizeof(oldRec->sCode3));
    newRec->nValue21 = oldRec->nValue21;
    return 1;
}

int gConvertOperationTypeToOldFormat(const OPERATIONTYPE* newRec, OLD_OPERATIONTYPE* oldRec) {
    if (newRec == nullptr || oldRec == nullptr)
        return 0;
    std::memset(oldRec, ' ', sizeof(*oldRec));
    CopyCodeToOld(oldRec->sCode1, newRec->sCode1, sizeof(oldRec->sCode1));
    oldRec->nValue5 = newRec->nValue5;
    oldRec->nValue7 = newRec->nValue7;
    CopyCodeToOld(oldRec->sCode2, newRec->sCode2, sizeof(oldRec->sCode2));
    CopyCodeToOld(oldRec->sCode3, newRec->sCode3, sizeof(oldRec->sCode3));
    oldRec->nValue21 = newRec->nValue21;
    return 1;
}
