// Weight, surface area, perimeter and cost of a piece of steel from the dimensions of its size,
// its length and a quantity.
//
// Units: lengths in feet (LF) or inches (LI), weights in pounds, areas in square feet,
// perimeters in inches, money in dollars. A length is given as whole feet, inches and
// sixteenths; D1..D4 are the size's four dimension numbers, read according to its dimension
// format `DmFmt`.
//
// Every function returns 1: unknown codes give zeros, never an error. A null result pointer
// is skipped.
#pragma once

#include <cstdint>
#include <string>

#include "tarsel_export.h"

// Weight of `quantity` pieces of one size and length.
//   dmFmt             the size's dimension format: selects how D1..D4 give the width for the
//                     area (formats 19, 31, 32, 33, 40 and 42 carry no weight: weight 0)
//   weightUnit        how `unitWeight` is meant: 1 pounds per foot (x LF), 2 pounds per square
//                     foot (x area), 3 pounds each, 4 the unit weight / 100, 5 / 1000; any other
//                     code gives weight 0
//   unitWeight        the size's unit weight in pounds per the unit above
//   quantity          number of pieces (a count, may be fractional)
//   unused            ignored
//   d1..d4            the size's four dimension numbers; only the area reads them: formats 3,
//                     4, 16, 18, 21, 23 take the width as d2 inches + d4 sixteenths, 13 as d1
//                     inches + d2 sixteenths, 34, 35, 41 as d3 inches + d4 sixteenths, and 9,
//                     11, 14 as d3 feet + d4 inches; other formats have no area
//   lengthFeet        whole feet of one piece's length
//   lengthInches      inches of the length
//   lengthSixteenths  sixteenths of an inch of the length
// Writes through the pointers (a null one is skipped): totalWeight (pounds, quantity x piece
// weight), pieceWeight (pounds), lengthInFeet (LF, decimal feet), lengthInInches (LI, decimal
// inches) and area (square feet of one piece; 0 for a size without an area rule).
TARSEL_API int gCalculateWeight(int16_t dmFmt, int16_t weightUnit, double unitWeight, double quantity,
                                double unused, double d1, double d2, double d3, double d4, double lengthFeet,
                                double lengthInches, double lengthSixteenths, double* totalWeight,
                                double* pieceWeight, double* lengthInFeet, double* lengthInInches, double* area);

// The same with the length in decimal feet only (inches and sixteenths 0); `lengthFeet` may
// carry a fraction of a foot.
TARSEL_API int gCalculateWeight(int16_t dmFmt, int16_t weightUnit, double unitWeight, double quantity,
                                double unused, double d1, double d2, double d3, double d4, double lengthFeet,
                                double* totalWeight, double* pieceWeight, double* lengthInFeet,
                                double* lengthInInches, double* area);

// Painted surface in square feet of one piece and of `a1` pieces, by surface kind; `a7` is the
// length in feet, `a5` is not used.
TARSEL_API int gCalculateSurfaceArea(int16_t kind, double a1, double a2, double a3, double a4, double a5,
                                     double a6, double a7, double a8, double a9, double a10, double* totalArea,
                                     double* pieceArea);

// Perimeter in inches of a section, by perimeter kind; `p4` is not used.
TARSEL_API int gCalculatePerimeter(int16_t kind, double p1, double p2, double p3, double p4, double p5,
                                   double p6, double p7, double* perimeter);

// Four further values of a size by dimension format; `m1` is a value of its own, `m2`..`m5`
// are D1..D4.
TARSEL_API int gGetMiscProperties(int32_t dmFmt, double m1, double m2, double m3, double m4, double m5,
                                  double m6, double* r1, double* r2, double* r3, double* r4);

// Width in inches of a plate-like size, the length in inches and the area in square feet.
TARSEL_API int gCalcWidthAndLengthInInches(int16_t dmFmt, double unused, double d1, double d2, double d3,
                                           double d4, double lengthFeet, double lengthInches,
                                           double lengthSixteenths, double* widthInInches,
                                           double* lengthInInches, double* area);

// Cost of one piece and of `quantity` pieces by price unit (1 $/CWT, 2 $/Foot, 3 $/Each,
// 4 $/100, 5 $/1000, 6 $/SqFt, 7 $/square, 8 $/CFT).
TARSEL_API int gCalcCost(int32_t priceUnit, double quantity, double price, double length, double area,
                         double pieceWeight, double* totalCost, double* pieceCost);

// The eight-character label of a price unit; "$       " for an unknown one.
TARSEL_API int gGetPriceUintString(int32_t priceUnit, std::string& label);
