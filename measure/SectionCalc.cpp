// Surface area, perimeter and further values of a section, each a table by kind or format.
#include "REWeightCalc.h"

#include <array>

#include "measure/CalcSupport.h"

using measure_detail::kPi;
using measure_detail::Put;

namespace {

constexpr double kIn = measure_detail::kInchesPerFoot;
constexpr double k16 = measure_detail::kSixteenthsPerInch;

// a[1]..a[10] as the caller numbers them; a[7] is the length in feet.
using SurfaceArgs = std::array<double, 11>;
using SurfaceRule = double (*)(const SurfaceArgs&);

struct SurfaceRow {
    int16_t kind;
    SurfaceRule pieceArea;
};

constexpr SurfaceRow kSurfaceKinds[] = {
    {1, [](const SurfaceArgs& a) { return (4 * a[8] + 2 * a[10] - 2 * a[9]) / kIn * a[7]; }},
    {2, [](const SurfaceArgs& a) { return a[8] * kPi / kIn * a[7]; }},
    {3, [](const SurfaceArgs& a) { return (2 * a[2] + 2 * a[4]) / kIn * a[7]; }},
    {4, [](const SurfaceArgs& a) { return (a[6] / k16 + a[2]) * kPi / kIn * a[7]; }},
    {5, [](const SurfaceArgs& a) { return 2 * ((a[3] / k16 + a[2]) / kIn * a[7]); }},
    // The only kind that adds both end faces.
    {6, [](const SurfaceArgs& a) {
         const double depth = (a[6] / k16 + a[4]) / kIn;
         const double width = a[3] / k16 + a[2];
         return 2 * (width / kIn * a[7]) + 2 * (depth * a[7]) + 2 * (depth * width / kIn);
     }},
    {7, [](const SurfaceArgs& a) { return 2 * (a[4] / kIn * a[7]) + 2 * (a[2] / kIn * a[7]); }},
    {8, [](const SurfaceArgs& a) { return (2 * a[8] + 2 * a[10]) / kIn * a[7]; }},
    {9, [](const SurfaceArgs& a) { return 2 * ((a[6] / k16 + a[4]) / kIn * a[7]); }},
};

// p[1]..p[7] as the caller numbers them.
using PerimeterArgs = std::array<double, 8>;
using PerimeterRule = double (*)(const PerimeterArgs&);

struct PerimeterRow {
    int16_t kind;
    PerimeterRule perimeter;
};

constexpr PerimeterRow kPerimeterKinds[] = {
    // No web-thickness term here, unlike surface kind 1.
    {1, [](const PerimeterArgs& p) { return 2 * (2 * p[6] + p[7]); }},
    {2, [](const PerimeterArgs& p) { return p[6] * kPi; }},
    {3, [](const PerimeterArgs& p) { return 2 * (p[1] + p[3]); }},
    {4, [](const PerimeterArgs& p) { return (p[5] / k16 + p[1]) * kPi; }},
    {5, [](const PerimeterArgs& p) { return 2 * (p[2] / k16 + p[1]); }},
    {6, [](const PerimeterArgs& p) { return 2 * (p[2] / k16 + p[1]) + 2 * (p[5] / k16 + p[3]); }},
    {7, [](const PerimeterArgs& p) { return 2 * (p[3] + p[1]); }},
    {8, [](const PerimeterArgs& p) { return 2 * (p[6] + p[7]); }},
    {10, [](const PerimeterArgs& p) { return (p[2] / k16 + p[1]) * kPi; }},
};

// m[1]..m[6] as the caller numbers them; m[2]..m[5] are D1..D4.
using MiscArgs = std::array<double, 7>;
using MiscValues = std::array<double, 4>;
using MiscRule = MiscValues (*)(const MiscArgs&);

struct MiscRow {
    int32_t dmFmt;
    MiscRule values;
};

constexpr MiscRule kMiscPlate = [](const MiscArgs& m) { return MiscValues{m[5] / k16 + m[3], m[2] / k16 + m[1], 0, 0}; };
constexpr MiscRule kMiscFlat = [](const MiscArgs& m) { return MiscValues{m[5] / k16 + m[3], m[1], 0, 0}; };
constexpr MiscRule kMiscFeet = [](const MiscArgs& m) { return MiscValues{m[4] * kIn + m[5], m[2] / k16 + m[1], 0, 0}; };
constexpr MiscRule kMiscWide = [](const MiscArgs& m) { return MiscValues{m[5] / k16 + m[4], m[2] / k16 + m[1], 0, 0}; };

constexpr MiscRow kMiscFormats[] = {
    {1, [](const MiscArgs& m) { return MiscValues{0, m[6], 0, 0}; }},
    // The first value is the sum of the last two.
    {2, [](const MiscArgs& m) { return MiscValues{m[1] + m[3], m[5] / k16 + m[4], m[1], m[3]}; }},
    {3, kMiscPlate},
    {16, kMiscPlate},
    {18, kMiscPlate},
    {4, kMiscFlat},
    {21, kMiscFlat},
    {23, kMiscFlat},
    {9, kMiscFeet},
    {11, kMiscFeet},
    {14, kMiscFeet},
    {13, [](const MiscArgs& m) { return MiscValues{m[3] / k16 + m[2], m[1], 0, 0}; }},
    {34, kMiscWide},
    {35, kMiscWide},
    {41, kMiscWide},
    {37, [](const MiscArgs& m) { return MiscValues{0, m[3], m[1], m[2]}; }},
};

} // namespace

int gCalculateSurfaceArea(int16_t kind, double a1, double a2, double a3, double a4, double a5, double a6, double a7,
                          double a8, double a9, double a10, double* totalArea, double* pieceArea)
{
    const SurfaceArgs args{0, a1, a2, a3, a4, a5, a6, a7, a8, a9, a10};
    double area = 0.0;
    for (const SurfaceRow& row : kSurfaceKinds)
        if (row.kind == kind)
            area = row.pieceArea(args);
    Put(pieceArea, area);
    Put(totalArea, a1 * area);
    return 1;
}

int gCalculatePerimeter(int16_t kind, double p1, double p2, double p3, double p4, double p5, double p6, double p7,
                        double* perimeter)
{
    const PerimeterArgs args{0, p1, p2, p3, p4, p5, p6, p7};
    double result = 0.0;
    for (const PerimeterRow& row : kPerimeterKinds)
        if (row.kind == kind)
            result = row.perimeter(args);
    Put(perimeter, result);
    return 1;
}

int gGetMiscProperties(int32_t dmFmt, double m1, double m2, double m3, double m4, double m5, double m6, double* r1,
                       double* r2, double* r3, double* r4)
{
    MiscValues values{0, 0, 0, 0};
    const MiscArgs args{0, m1, m2, m3, m4, m5, m6};
    for (const MiscRow& row : kMiscFormats)
        if (row.dmFmt == dmFmt)
            values = row.values(args);
    Put(r1, values[0]);
    Put(r2, values[1]);
    Put(r3, values[2]);
    Put(r4, values[3]);
    return 1;
}
