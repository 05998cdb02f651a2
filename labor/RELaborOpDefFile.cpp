#include "RELaborOpDefFile.h"

#include "labor/LaborDefFamily.h"

namespace {

const plainfile::LaborDefKind kKind{"TarselWin95.LOD001", 1014, 1015, true};

}  // namespace

RE_LABOR_DEF_OPERATIONS(RELaborOpDefFile, LABOROPDEFRECORD, kKind)
