// Arbitrary text through the old-form parser of the Beth mill price list: no crash, no read out of
// bounds, and the saved binary form loads back the same number of records.
#include "REBethMillPriceFile.h"
#include "PlainFileFuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    plainfuzz::LoadSaveLoad<REBethMillPriceFile>(plainfuzz::WriteInput("", data, size));
    return 0;
}
