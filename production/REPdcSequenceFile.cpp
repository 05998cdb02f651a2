// The sequence file: selections and deletions by first name, bulk inserts and the pair search.
#include "REPdcSequenceFile.h"
#include "production/PdcSequenceFileTraits.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr size_t kNameWidth = sizeof(PDCSEQDATATYPE::sFirstName);

bool SameNameIgnoringCase(const char* field, const std::string& name) {
    return PdcSameText(field, kNameWidth, name, true);
}

bool SameName(const char* field, const std::string& name) { return PdcSameText(field, kNameWidth, name); }

}  // namespace

const RERecordFileSpec REPdcSequenceFile::kSpec = REMakeSpec<PdcSequenceFileTraits, REPdcSequenceFile>();

REPdcSequenceFile::REPdcSequenceFile() : REPdcFile(kSpec) {}

int REPdcSequenceFile::_GetEqualMatch(const std::string& firstName, PDCSEQDATATYPE* out) {
    return _ReadByText(kOpGetEqual, 0, firstName, sizeof out->sFirstName, out);
}

int REPdcSequenceFile::GetAllSelectedRecords(const std::string& firstName, std::vector<PDCSEQDATATYPE*>& array) {
    PDCSEQDATATYPE rec;
    if (!_ReadByText(kOpGetGreaterOrEqual, 0, firstName, sizeof rec.sFirstName, &rec))
        return 0;
    for (int more = 1; more && SameNameIgnoringCase(rec.sFirstName, firstName); more = GetNextRecord(&rec))
        array.push_back(_HeapCopy(rec));
    return array.empty() ? 0 : 1;
}

int REPdcSequenceFile::DeleteAllSelectedRecords(const std::string& firstName) {
    PDCSEQDATATYPE rec;
    if (!_ReadByText(kOpGetGreaterOrEqual, 0, firstName, sizeof rec.sFirstName, &rec))
        return 0;
    for (int more = 1; more && SameNameIgnoringCase(rec.sFirstName, firstName); more = GetNextRecord(&rec))
        _DeleteCurrent();
    return 1;
}

template <class Array>
int REPdcSequenceFile::_InsertAll(const Array& array) {
    if (array.empty())
        return 0;
    for (void* rec : array) {
        if (rec == nullptr || !AddRecord(*static_cast<PDCSEQDATATYPE*>(rec)))
            return 0;
    }
    return 1;
}

int REPdcSequenceFile::InsertRecords(std::vector<PDCSEQDATATYPE*>& array) { return _InsertAll(array); }

int REPdcSequenceFile::InsertRecords(std::vector<void*>& array) { return _InsertAll(array); }

int REPdcSequenceFile::SearchRecord(const std::string& firstName, const std::string& secondName, PDCSEQDATATYPE* out) {
    PDCSEQDATATYPE found{};
    PDCSEQDATATYPE key{};
    std::memcpy(key.sFirstName, firstName.data(), std::min(firstName.size(), sizeof key.sFirstName));
    std::memcpy(key.sSecondName, secondName.data(), std::min(secondName.size(), sizeof key.sSecondName));
    if (out != nullptr)
        std::memset(out, 0, sizeof *out);
    constexpr int kPairLength = sizeof key.sFirstName + sizeof key.sSecondName;
    if (!_ReadByKey(kOpGetGreaterOrEqual, 1, &key, kPairLength, &found))
        return 0;
    if (out != nullptr)
        std::memcpy(out, &found, sizeof found);
    return SameName(found.sFirstName, firstName) && SameName(found.sSecondName, secondName) ? 1 : 0;
}
