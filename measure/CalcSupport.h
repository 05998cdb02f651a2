// Units and helpers shared by the weight, area, perimeter and cost functions.
#pragma once

namespace measure_detail {

constexpr double kInchesPerFoot = 12.0;
constexpr double kSixteenthsPerInch = 16.0;
constexpr double kSquareInchesPerSquareFoot = 144.0;
constexpr double kPi = 3.1416;

// Writes a result unless the caller passed no place for it.
inline void Put(double* out, double value)
{
    if (out != nullptr)
        *out = value;
}

// A length given as feet, inches and sixteenths, in feet (LF) and in inches (LI).
struct Length {
    double feet;
    double inches;
};

inline Length MakeLength(double feet, double inches, double sixteenths)
{
    return {inches / kInchesPerFoot + feet + (sixteenths / kSixteenthsPerInch) / kInchesPerFoot,
            feet * kInchesPerFoot + inches + sixteenths / kSixteenthsPerInch};
}

} // namespace measure_detail
