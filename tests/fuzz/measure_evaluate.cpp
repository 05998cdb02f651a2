// Fuzzes the reading of typed lengths and the split of arbitrary floats: the first byte picks
// the unit, the rest is the text; the first four bytes of the text also serve as a float.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "CFPSLMeasureUnit.h"

namespace {

bool SameFloat(float a, float b)
{
    return a == b || (std::isnan(a) && std::isnan(b));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size == 0)
        return 0;
    const auto unit = static_cast<CFPSLMeasureUnit::DefaultUnit>(data[0] % 4);
    const std::string text(reinterpret_cast<const char*>(data + 1), size - 1);

    CFPSLMeasureUnit m(unit);
    float value = 0;
    if (m.Evaluate(text, value)) {
        // What Evaluate gives is the held value in the same unit.
        float held = 0;
        if (!m.GetValue(unit, held) || !SameFloat(held, value))
            std::abort();
        std::string formatted;
        m.GetFormattedStr(formatted);
        if (formatted.empty())
            std::abort();
    }
    double wide = 0;
    m.Evaluate(text.c_str(), wide);

    if (text.size() >= sizeof(float)) {
        float raw = 0;
        std::memcpy(&raw, text.data(), sizeof raw);
        float feet = 0, inches = 0;
        int numerator = 0, denominator = 0;
        m.BreakInchValue(raw, feet, inches, numerator, denominator, data[0] & 4);
        if (denominator <= 0 || denominator > 1000000000 || std::abs(numerator) >= denominator)
            std::abort();
        m.SetValue(unit, raw);
        std::string formatted;
        m.GetFormattedStr(formatted);
        m.GetValue(CFPSLMeasureUnit::Feet, value);
    }
    return 0;
}
