// What the shared price-list tests need to know about each price-list class.
#pragma once

#include "REBethMillPriceFile.h"
#include "REBethPlatePriceFile.h"
#include "REUsMillPriceFile.h"
#include "REUsPlatePriceFile.h"

#include <cstddef>
#include <vector>

namespace plaintest {

struct BethMill {
    using File = REBethMillPriceFile;
    static constexpr const char* kIdent = "TarselWin95.BTM001";
    static constexpr const char* kCannotOpen = "Unable to open bethmill price file.";
    static std::vector<std::size_t> RecordSizes() { return {40, 33, 33, 55, 63, 60, 44, 60, 29, 65}; }
    static std::vector<std::size_t> Counts(File& f) {
        return {f.GetBasePrice().size(),    f.GetSectionExtra().size(),      f.GetAngleSectionExtra().size(),
                f.GetLengthExtra().size(),  f.GetAdditionalLengthExtra().size(), f.GetQuantityExtra().size(),
                f.GetSpecificationExtra().size(), f.GetMillingExtra().size(), f.GetForceMilling().size(),
                f.GetCamberExtra().size()};
    }
};

struct UsMill {
    using File = REUsMillPriceFile;
    static constexpr const char* kIdent = "TarselWin95.USM001";
    static constexpr const char* kCannotOpen = "USmill price data file is corrupt.";
    static std::vector<std::size_t> RecordSizes() { return {44, 38, 33, 64, 55, 62, 59, 99, 29, 65}; }
    static std::vector<std::size_t> Counts(File& f) {
        return {f.GetBasePrice().size(),   f.GetDiscount().size(),      f.GetGroupBreakDown().size(),
                f.GetSplDiscount().size(), f.GetLengthExtra().size(),   f.GetAdditionalLengthExtra().size(),
                f.GetQuantityExtra().size(), f.GetMillingExtra().size(), f.GetForceMilling().size(),
                f.GetCamberExtra().size()};
    }
};

struct BethPlate {
    using File = REBethPlatePriceFile;
    static constexpr const char* kIdent = "TarselWin95.BTP001";
    static constexpr const char* kCannotOpen = "Unable to open bethplate price file.";
    static std::vector<std::size_t> RecordSizes() { return {29, 38, 100, 55, 60, 86}; }
    static std::vector<std::size_t> Counts(File& f) {
        return {f.GetBasePrice().size(),  f.GetPlateDiscount().size(), f.GetSectionExtra().size(),
                f.GetLengthExtra().size(), f.GetQuantityExtra().size(), f.GetSpecificationExtra().size()};
    }
};

struct UsPlate {
    using File = REUsPlatePriceFile;
    static constexpr const char* kIdent = "TarselWin95.USP001";
    static constexpr const char* kCannotOpen = "USplate price data file is corrupt.";
    static std::vector<std::size_t> RecordSizes() { return {28, 37, 98, 84, 55, 59}; }
    static std::vector<std::size_t> Counts(File& f) {
        return {f.GetBasePrice().size(),    f.GetDiscount().size(),     f.GetPlateSection().size(),
                f.GetPlateSpecification().size(), f.GetLengthExtra().size(), f.GetQuantityExtra().size()};
    }
};

}  // namespace plaintest
