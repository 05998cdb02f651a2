// Arbitrary text through the old-form parser of the Us plate price list: no crash, no read out of
// bounds, and the saved binary form loads back the same number of records.
#include "REUsPlatePriceFile.h"
#include "PlainFileFuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    plainfuzz::LoadSaveLoad<REUsPlatePriceFile>(plainfuzz::WriteInput("", data, size));
    return 0;
}
