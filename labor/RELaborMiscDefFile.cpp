#include "RELaborMiscDefFile.h"

#include "labor/LaborDefFamily.h"
#include "pricing/PlainFile.h"

using namespace plainfile;

namespace {

const LaborDefKind kKind{"TarselWin95.LMD001", 1016, 1017, false};

}  // namespace

RELaborMiscDefFile::RELaborMiscDefFile() : m_filePath{}, m_isInitialized(0), m_signature{} {}

RELaborMiscDefFile::~RELaborMiscDefFile() = default;

int RELaborMiscDefFile::Initialize(const char* path) {
    m_isInitialized = StorePath(m_filePath, sizeof(m_filePath), path) ? 1 : 0;
    return m_isInitialized;
}

int RELaborMiscDefFile::GetRecords(std::list<LABORMISCDEFRECORD*>& list) {
    if (!list.empty())
        ResetRecords(list);
    return LoadLaborDefs(kKind, m_filePath, RefTo(list));
}

int RELaborMiscDefFile::SaveRecords(const std::list<LABORMISCDEFRECORD*>& list) {
    _CreateSignature();
    return SaveLaborDefs(m_filePath, m_signature, RefTo(list));
}

int RELaborMiscDefFile::ResetRecords(std::list<LABORMISCDEFRECORD*>& list) {
    RefTo(list).release(&list);
    return 1;
}

int RELaborMiscDefFile::GetGroupNo(const std::list<LABORMISCDEFRECORD*>& list, const std::string& name) {
    return FindGroupNo(list, name);
}

void RELaborMiscDefFile::_CreateSignature() {
    MakeSignature(kKind, m_signature);
}
