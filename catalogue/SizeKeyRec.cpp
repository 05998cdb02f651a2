// Conversions of the size key between its stored and its current form.
#include "SIZEDATKEYREC.h"

#include "core/RecordFields.h"

#include <algorithm>
#include <cstring>

namespace {

// Copies a current text into the stored key at `offset` for its length, without terminator.
// A text longer than its stored slot runs on into the following field, as stored keys always
// have; it never runs past the end of the key.
void TextToStored(OLD_SIZEDATKEYREC* oldKey, size_t offset, const char* text, size_t width) {
    const size_t length = std::min(strnlen(text, width), sizeof(OLD_SIZEDATKEYREC) - offset);
    std::memcpy(reinterpret_cast<char*>(oldKey) + offset, text, length);
}

}  // namespace

int gConvertSizeKeyRecToNewFormat(const OLD_SIZEDATKEYREC* oldKey, SIZEDATKEYREC* newKey) {
    if (oldKey == nullptr || newKey == nullptr)
        return 0;
    std::memset(newKey, 0, sizeof *newKey);
    RETextToNew(newKey->szSection, oldKey->szSection);
    RETextToNew(newKey->szShape, oldKey->szShape);
    RETextToNew(newKey->szCode9, oldKey->szCode9);
    RETextToNew(newKey->szCode12, oldKey->szCode12);
    // Values 1 to 7 lie back to back in both forms.
    std::memcpy(&newKey->fDim1, &oldKey->fDim1, offsetof(OLD_SIZEDATKEYREC, szDimText) - offsetof(OLD_SIZEDATKEYREC, fDim1));
    RETextToNew(newKey->szDimText, oldKey->szDimText);
    std::memcpy(&newKey->nValue77, &oldKey->nValue77, sizeof newKey->nValue77);
    return 1;
}

int gConvertSizeKeyRecToOldFormat(const SIZEDATKEYREC* newKey, OLD_SIZEDATKEYREC* oldKey) {
    if (newKey == nullptr || oldKey == nullptr)
        return 0;
    std::memset(oldKey, kOldTextFill, sizeof *oldKey);
    TextToStored(oldKey, offsetof(OLD_SIZEDATKEYREC, szSection), newKey->szSection, sizeof newKey->szSection);
    TextToStored(oldKey, offsetof(OLD_SIZEDATKEYREC, szShape), newKey->szShape, sizeof newKey->szShape);
    TextToStored(oldKey, offsetof(OLD_SIZEDATKEYREC, szCode9), newKey->szCode9, sizeof newKey->szCode9);
    TextToStored(oldKey, offsetof(OLD_SIZEDATKEYREC, szCode12), newKey->szCode12, sizeof newKey->szCode12);
    std::memcpy(&oldKey->fDim1, &newKey->fDim1, offsetof(SIZEDATKEYREC, szDimText) - offsetof(SIZEDATKEYREC, fDim1));
    TextToStored(oldKey, offsetof(OLD_SIZEDATKEYREC, szDimText), newKey->szDimText, sizeof newKey->szDimText);
    std::memcpy(&oldKey->nValue77, &newKey->nValue77, sizeof oldKey->nValue77);
    return 1;
}
