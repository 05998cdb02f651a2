#include "RELaborMiscDefFile.h"

#include "labor/LaborDefFamily.h"

namespace {

const plainfile::LaborDefKind kKind{"TarselWin95.LMD001", 1016, 1017, false};

}  // namespace

RE_LABOR_DEF_OPERATIONS(RELaborMiscDefFile, LABORMISCDEFRECORD, kKind)
