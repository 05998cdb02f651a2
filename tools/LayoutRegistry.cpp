#include "tools/LayoutRegistry.h"

#include "REPdcProjectInfo.h"
#include "catalogue/GradeFileTraits.h"
#include "catalogue/ShapeFileTraits.h"
#include "estimating/EstProjectTraits.h"
#include "estimating/JobFileTraits.h"
#include "estimating/MaintFileTraits.h"
#include "estimating/ProjectLockTraits.h"
#include "estimating/ReportFileTraits.h"
#include "labor/LaborCodeTraits.h"
#include "labor/LaborGroupTraits.h"
#include "labor/MultiplierTraits.h"
#include "pricing/TaxFileTraits.h"
#include "production/PdcBatInpDataFileTraits.h"
#include "production/PdcBatInpLaborDataFileTraits.h"
#include "production/PdcBatInpPieceDataFileTraits.h"
#include "production/PdcCalcTraits.h"
#include "production/PdcDataFileTraits.h"
#include "production/PdcLinkFileTraits.h"
#include "production/PdcMarkFileTraits.h"
#include "production/PdcPayCategoryDataFileTraits.h"
#include "production/PdcRouteDataFileTraits.h"
#include "production/PdcRouteInfoFileTraits.h"
#include "production/PdcSequenceFileTraits.h"
#include "production/PdcStationDataFileTraits.h"
#include "production/PdcStationLoadDataFileTraits.h"
#include "production/PdcTrackingDataFileTraits.h"
#include "production/PdcTrackingLaborDataFileTraits.h"
#include "purchasing/PurchCalcTraits.h"

#include <algorithm>
#include <cctype>

namespace tool {
namespace {

// The production project directory builds its spec by hand; its record is described here for
// decoding only.
struct PdcProjectLayout {
    using Record = TSLPRODUCTIONDATA;
    static constexpr REKeySegment kKeys[] = {RE_KEY(nJobId, kKeyLastSegment, kKeyTypeAutoIncrement)};
    static constexpr REField kFields[] = {RE_FIELD(nJobId, kInteger), RE_FIELD(jobDetail, kRecord),
                                          RE_FIELD(reserved1964, kBytes)};
    static constexpr REFieldTable kFieldTable = {kFields, sizeof(Record), 0};
    static constexpr const char* kClassName = "REPdcProjectInfo";
    static constexpr REMessageCodes kMessages = {};
    static constexpr uint16_t kFileFlags = kFileFlagVariableLength;
    static constexpr void Customize(RERecordFileSpec& spec) {
        spec.statLength = sizeof(int32_t);
        spec.create.recordLength = sizeof(int32_t);
    }
};

template <class Traits, class File>
Layout Entry(const char* name, const char* traitsName, const char* header, const char* extension = "") {
    return Layout{name, traitsName, header, extension, REMakeSpec<Traits, File>()};
}

#define TOOL_LAYOUT(name, Traits, File, header, ...) Entry<Traits, File>(name, #Traits, header, ##__VA_ARGS__)

const std::vector<Layout>& Registry() {
    static const std::vector<Layout> layouts = {
        TOOL_LAYOUT("job items", JobFileTraits, REJobFile, "estimating/JobFileTraits.h"),
        TOOL_LAYOUT("settings", MaintFileTraits, REMaintFile, "estimating/MaintFileTraits.h"),
        TOOL_LAYOUT("report definitions", ReportFileTraits, REReportFile, "estimating/ReportFileTraits.h"),
        TOOL_LAYOUT("estimating project", EstProjectTraits, REEstProjectInfo, "estimating/EstProjectTraits.h",
                    ".RDB"),
        TOOL_LAYOUT("project lock", ProjectLockTraits, REProjectLock, "estimating/ProjectLockTraits.h"),
        TOOL_LAYOUT("shapes", ShapeFileTraits, REShapeFile, "catalogue/ShapeFileTraits.h"),
        TOOL_LAYOUT("grades", GradeFileTraits, REGradeFile, "catalogue/GradeFileTraits.h"),
        TOOL_LAYOUT("tax codes", TaxFileTraits, RETaxFile, "pricing/TaxFileTraits.h"),
        TOOL_LAYOUT("labor codes", LaborCodeTraits, RELaborCodeFile, "labor/LaborCodeTraits.h"),
        TOOL_LAYOUT("labor code descriptions", LaborCodeDescTraits, RELaborCodeDescFile, "labor/LaborCodeTraits.h"),
        TOOL_LAYOUT("labor groups", LaborGroupTraits, RELaborGroupFile, "labor/LaborGroupTraits.h"),
        TOOL_LAYOUT("labor factors", LaborMultFactorTraits, RELaborMultFactorFile, "labor/LaborGroupTraits.h"),
        TOOL_LAYOUT("multipliers", MultiplierTraits, REMultiplierFile, "labor/MultiplierTraits.h"),
        TOOL_LAYOUT("long multipliers", EstMultLongTraits, REEstMultLongFile, "labor/MultiplierTraits.h"),
        TOOL_LAYOUT("short multipliers", EstMultShortTraits, REEstMultShortFile, "labor/MultiplierTraits.h"),
        TOOL_LAYOUT("production project", PdcProjectLayout, REPdcProjectInfo, "", ".RDP"),
        TOOL_LAYOUT("pieces", PdcDataFileTraits, REPdcDataFile, "production/PdcDataFileTraits.h"),
        TOOL_LAYOUT("marks", PdcMarkFileTraits, REPdcMarkFile, "production/PdcMarkFileTraits.h"),
        TOOL_LAYOUT("links", PdcLinkFileTraits, REPdcLinkFile, "production/PdcLinkFileTraits.h"),
        TOOL_LAYOUT("sequences", PdcSequenceFileTraits, REPdcSequenceFile, "production/PdcSequenceFileTraits.h"),
        TOOL_LAYOUT("route stations", PdcRouteDataFileTraits, REPdcRouteDataFile,
                    "production/PdcRouteDataFileTraits.h"),
        TOOL_LAYOUT("routes", PdcRouteInfoFileTraits, REPdcRouteInfoFile, "production/PdcRouteInfoFileTraits.h"),
        TOOL_LAYOUT("stations", PdcStationDataFileTraits, REPdcStationDataFile,
                    "production/PdcStationDataFileTraits.h"),
        TOOL_LAYOUT("station loads", PdcStationLoadDataFileTraits, REPdcStationLoadDataFile,
                    "production/PdcStationLoadDataFileTraits.h"),
        TOOL_LAYOUT("pay categories", PdcPayCategoryDataFileTraits, REPdcPayCategoryDataFile,
                    "production/PdcPayCategoryDataFileTraits.h"),
        TOOL_LAYOUT("tracking", PdcTrackingDataFileTraits, REPdcTrackingDataFile,
                    "production/PdcTrackingDataFileTraits.h"),
        TOOL_LAYOUT("labor tracking", PdcTrackingLaborDataFileTraits, REPdcTrackingLaborDataFile,
                    "production/PdcTrackingLaborDataFileTraits.h"),
        TOOL_LAYOUT("batches", PdcBatInpDataFileTraits, REPdcBatInpDataFile, "production/PdcBatInpDataFileTraits.h"),
        TOOL_LAYOUT("batch labor lines", PdcBatInpLaborDataFileTraits, REPdcBatInpLaborDataFile,
                    "production/PdcBatInpLaborDataFileTraits.h"),
        TOOL_LAYOUT("batch piece lines", PdcBatInpPieceDataFileTraits, REPdcBatInpPieceDataFile,
                    "production/PdcBatInpPieceDataFileTraits.h"),
        TOOL_LAYOUT("production sort", PdcCalcTraits, REPdcCalcFile, "production/PdcCalcTraits.h"),
        TOOL_LAYOUT("purchase work", PurchCalcTraits, REPurchCalcFile, "purchasing/PurchCalcTraits.h"),
    };
    return layouts;
}

bool SameName(const std::string& a, const char* b) {
    const std::string other(b);
    return a.size() == other.size() && std::equal(a.begin(), a.end(), other.begin(), [](char x, char y) {
               return std::tolower(static_cast<unsigned char>(x)) == std::tolower(static_cast<unsigned char>(y));
           });
}

bool SameSegment(const REKeySegment& a, const REKeySegment& b) {
    return a.position == b.position && a.length == b.length && a.flags == b.flags && a.type == b.type;
}

bool SameKeys(std::span<const REKeySegment> created, const KeySpec& file) {
    return created.size() == file.segments.size() && std::equal(created.begin(), created.end(),
                                                                 file.segments.begin(), SameSegment);
}

bool HasExtension(const std::string& path, const char* extension) {
    const std::string ext(extension);
    return !ext.empty() && path.size() >= ext.size() && SameName(path.substr(path.size() - ext.size()), extension);
}

}  // namespace

std::span<const Layout> Layouts() { return Registry(); }

const Layout* FindLayout(const std::string& name) {
    for (const Layout& layout : Registry()) {
        if (SameName(name, layout.name))
            return &layout;
    }
    return nullptr;
}

bool GenerationOf(const Layout& layout, uint16_t recordLength, bool& oldGeneration) {
    if (recordLength == layout.spec.StatLength()) {
        oldGeneration = false;
        return true;
    }
    if (layout.spec.HasOldLayout() && recordLength == layout.spec.oldSize) {
        oldGeneration = true;
        return true;
    }
    return false;
}

Match IdentifyLayout(const FileIdentity& file) {
    // How well a layout fits: 4 keys exactly as the class creates them, 2 as many keys, 0 other
    // keys; 1 more for the name's extension; -1 another record length or record form.
    auto score = [&file](const Layout& layout, bool& old) {
        if (!GenerationOf(layout, file.recordLength, old) ||
            layout.VariableLength() != ((file.fileFlags & kFileFlagVariableLength) != 0))
            return -1;
        int points = 0;
        if (!old && SameKeys(layout.spec.create.segments, file.keys))
            points = 4;
        else if (REKeyCount(layout.spec.create.segments) == file.keys.keyCount)
            points = 2;
        return points + (HasExtension(file.path, layout.extension) ? 1 : 0);
    };
    Match best;
    int bestScore = -1;
    std::vector<std::pair<const Layout*, int>> fits;
    for (const Layout& layout : Registry()) {
        bool old = false;
        const int points = score(layout, old);
        if (points < 0)
            continue;
        fits.emplace_back(&layout, points);
        if (points > bestScore) {
            best.layout = &layout;
            best.oldGeneration = old;
            bestScore = points;
        }
    }
    for (const auto& [layout, points] : fits) {
        if (points == bestScore && layout != best.layout)
            best.alternatives.push_back(layout);
    }
    return best;
}

}  // namespace tool
