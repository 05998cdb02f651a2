#include "RELaborOpDefFile.h"

#include "labor/LaborDefFamily.h"
#include "pricing/PlainFile.h"

using namespace plainfile;

namespace {

const LaborDefKind kKind{"TarselWin95.LOD001", 1014, 1015, true};

}  // namespace

RELaborOpDefFile::RELaborOpDefFile() : m_filePath{}, m_isInitialized(0), m_signature{} {}

RELaborOpDefFile::~RELaborOpDefFile() = default;

int RELaborOpDefFile::Initialize(const char* path) {
    m_isInitialized = StorePath(m_filePath, sizeof(m_filePath), path) ? 1 : 0;
    return m_isInitialized;
}

int RELaborOpDefFile::GetRecords(std::list<LABOROPDEFRECORD*>& list) {
    if (!list.empty())
        ResetRecords(list);
    return LoadLaborDefs(kKind, m_filePath, RefTo(list));
}

int RELaborOpDefFile::SaveRecords(const std::list<LABOROPDEFRECORD*>& list) {
    _CreateSignature();
    return SaveLaborDefs(m_filePath, m_signature, RefTo(list));
}

int RELaborOpDefFile::ResetRecords(std::list<LABOROPDEFRECORD*>& list) {
    RefTo(list).release(&list);
    return 1;
}

int RELaborOpDefFile::GetGroupNo(const std::list<LABOROPDEFRECORD*>& list, const std::string& name) {
    return FindGroupNo(list, name);
}

void RELaborOpDefFile::_CreateSignature() {
    MakeSignature(kKind, m_signature);
}
