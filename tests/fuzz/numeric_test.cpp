// Fuzzes the numeric text tests, the sixteenths column and the sortable number decoding.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "CNumericTest.h"
#include "SrtStr2Float.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string text(reinterpret_cast<const char*>(data), size);
    const CNumericTest test;

    // Every integer text is also a decimal number.
    if (test.IsInteger(text) && !test.IsFloat(text))
        std::abort();
    const int digits = test.GetnDecimalDigit(text);
    if (digits < 0 || static_cast<size_t>(digits) > text.size())
        std::abort();

    const size_t half = size / 2;
    const std::string a = text.substr(0, half);
    if (test.CompareToStringwrtDouble(a, text.substr(half)) == 0 && test.CompareToStringwrtDouble(text.substr(half), a) != 0)
        std::abort();

    if (size >= sizeof(float)) {
        float value = 0;
        std::memcpy(&value, data, sizeof value);
        if (test.GetNumeratorNDenominator(value).size() < 7)
            std::abort();
        SrtStr2Float(&value);
    }
    return 0;
}
