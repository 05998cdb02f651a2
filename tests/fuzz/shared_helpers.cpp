// Drives the field, date and number helpers with arbitrary bytes: none may read or write
// outside the field it is given.
#include "RESharedHelpers.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const unsigned n = static_cast<unsigned>(size);
    std::vector<char> field(data, data + size);

    std::vector<char> copied(size + 1);
    gRE_memcpy(copied.data(), field.data(), n);

    std::vector<char> trimmed = field;
    gRE_TrimLeft(trimmed.data(), n);
    std::vector<char> right = field;
    gShiftRightNullCharsToLeft(right.data(), static_cast<int>(size));
    std::vector<char> left = field;
    gShiftLeftNullCharsToRight(left.data(), static_cast<int>(size));
    CompareStructure(right.data(), left.data(), static_cast<int>(size));

    std::vector<char> text(field);
    text.push_back('\0');
    std::vector<char> leftText = text;
    gStrTrimLeft(leftText.data());
    std::vector<char> rightText = text;
    gStrTrimRight(rightText.data());
    double date = 0.0;
    ConvertOldDateToNew(text.data(), date);

    if (size >= 4)
        cvsmbf(field.data());
    return 0;
}
