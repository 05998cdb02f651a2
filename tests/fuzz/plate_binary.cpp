// Arbitrary bytes behind a valid header through the binary loader of the Us plate price list: no
// crash, no read beyond the file, and a save loads back the same number of records.
#include "REUsPlatePriceFile.h"
#include "PlainFileFuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const std::string header = plainfuzz::BinaryHeader("TarselWin95.USP001");
    plainfuzz::LoadSaveLoad<REUsPlatePriceFile>(plainfuzz::WriteInput(header, data, size));
    return 0;
}
