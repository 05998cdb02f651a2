// The public classes' constant texts, taken by address here so that the DLL emits and exports
// them. The library's own uses fold into the text, which would leave no symbol for a program that
// names one of them (as a reference or an address) to import.
#include "REEstProjectInfo.h"
#include "REPdcProjectInfo.h"

namespace {

[[gnu::used]] const void* const kExportedConstants[] = {
    REEstProjectInfo::m_strConstSysUsrName,   REEstProjectInfo::m_strConstNewJobOpenError,
    REPdcProjectInfo::m_strConstFileExtn,     REPdcProjectInfo::m_strConstLockFileXtn,
    REPdcProjectInfo::m_strConstFOpenFilter,
};

}  // namespace
