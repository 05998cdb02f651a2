// The public classes' constants, taken by address here so that the DLL emits and exports them. The
// library's own uses fold into the value, which would leave no symbol for a program that binds one
// to a reference or takes its address (a debug build passing one to std::min, say) to import.
#include "REBtrieveBase.h"
#include "REEstMultLongFile.h"
#include "REEstMultShortFile.h"
#include "REEstProjectInfo.h"
#include "RELaborMiscDefFile.h"
#include "RELaborOpDefFile.h"
#include "REMaintFile.h"
#include "REPdcCalcFile.h"
#include "REPdcProjectInfo.h"
#include "REPurchCalcFile.h"
#include "REShapeFile.h"
#include "REUsMillPriceFile.h"
#include "REUsPlatePriceFile.h"

namespace {

[[gnu::used]] const void* const kExportedConstants[] = {
    &REBtrieveBase::kPosBlockSize,
    &REBtrieveBase::kKeyBufferSize,
    &REBtrieveBase::kFileNameSize,
    &REBtrieveBase::kMaxPathLength,
    &REBtrieveBase::kStatBufferSize,
    &REEstMultLongFile::kDeleteAllDone,
    &REEstMultShortFile::kDeleteAllDone,
    REEstProjectInfo::m_strConstSysUsrName,
    &REEstProjectInfo::m_iConstJobIDForProjInfo,
    &REEstProjectInfo::m_iConstJobIDForFirstJob,
    REEstProjectInfo::m_strConstNewJobOpenError,
    &RELaborMiscDefFile::kPathSize,
    &RELaborOpDefFile::kPathSize,
    &REMaintFile::kMillTitleSize,
    &REMaintFile::kMillTitleCount,
    &REPdcCalcFile::kAllItemAllStationSort,
    &REPdcCalcFile::kAllItemOneStationLongSort,
    &REPdcCalcFile::kAllItemOneStationShortSort,
    &REPdcCalcFile::kAllStationAcrossSort,
    &REPdcCalcFile::kCatSubcatDrawMainAccSort,
    &REPdcCalcFile::kDimAccSeqSort,
    &REPdcCalcFile::kDimensionMoraAccSort,
    &REPdcCalcFile::kDrawNumberMainAccSort,
    &REPdcCalcFile::kMarkSort,
    &REPdcCalcFile::kPayCatSort,
    &REPdcCalcFile::kRouteSort,
    &REPdcCalcFile::kSeqMainAccSort,
    &REPdcCalcFile::kSingleQtyDimAccSeqSort,
    &REPdcCalcFile::kDeleteAllDone,
    REPdcProjectInfo::m_strConstFileExtn,
    REPdcProjectInfo::m_strConstLockFileXtn,
    REPdcProjectInfo::m_strConstFOpenFilter,
    &REPdcProjectInfo::m_uiConstFOpenDlgFlags,
    &REPdcProjectInfo::m_iConstJobIDForProjInfo,
    &REPdcProjectInfo::m_iConstJobIDForFirstJob,
    &REPurchCalcFile::kDeleteAllDone,
    &REShapeFile::kShapeNoLength,
    &REShapeFile::kShapeNoGrade,
    &REUsMillPriceFile::kPathSize,
    &REUsPlatePriceFile::kPathSize,
};

}  // namespace
