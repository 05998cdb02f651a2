// The labor definition family: loading (binary form or old text form) and saving of the
// operation and miscellaneous definition files, written once for both classes.
#pragma once

#include "RELaborDefRecords.h"
#include "plainfile/PlainFile.h"
#include "plainfile/PlainText.h"
#include "plainfile/RecordList.h"

#include <cstring>
#include <list>
#include <string>
#include <string_view>

namespace plainfile {

struct LaborDefKind {
    const char* ident;          // identification string at the start of the signature block
    unsigned cannotOpenError;   // message of a file that cannot be read
    unsigned corruptError;      // message of a stored record size other than 103
    bool hasCountLine;          // the text form begins with the number of definitions
};

// Fills `signature` with zeros and the identification string.
void MakeSignature(const LaborDefKind& kind, RE_FILE_SIGNATURE& signature);

// Loads the file at `path` into `list` (which the caller has emptied). 1 when the file was
// read, 0 after reporting kind.cannotOpenError.
int LoadLaborDefs(const LaborDefKind& kind, const char* path, const RecordListRef& list);

// The old text form into `list`. 1.
int ParseLaborDefText(const LaborDefKind& kind, std::string_view text, const RecordListRef& list);

// Writes the signature block, the count, the record size 103 and the records. 1, or 0 when the
// file cannot be written (the file already there is then left as it was).
int SaveLaborDefs(const char* path, const RE_FILE_SIGNATURE& signature, const RecordListRef& list);

// Group number of the first record whose name equals `name` ignoring case; -1 when none does.
template <class REC>
int FindGroupNo(const std::list<REC*>& list, std::string_view name) {
    for (const REC* record : list) {
        if (record != nullptr &&
            EqualsIgnoreCase(std::string_view(record->sName, strnlen(record->sName, sizeof(record->sName))), name))
            return record->nGroupNo;
    }
    return -1;
}

}  // namespace plainfile

// Defines the operations of a labor definition class over `Record`, described by `kind` (its
// m_filePath, m_isInitialized and m_signature as the class declares them).
#define RE_LABOR_DEF_OPERATIONS(Class, Record, kind)                                                 \
    Class::Class() : m_filePath{}, m_isInitialized(0), m_signature{} {}                                \
    Class::~Class() = default;                                                                        \
    int Class::Initialize(const char* path) {                                                         \
        m_isInitialized = plainfile::StorePath(m_filePath, sizeof(m_filePath), path) ? 1 : 0;          \
        return m_isInitialized;                                                                       \
    }                                                                                                 \
    int Class::GetRecords(std::list<Record*>& list) {                                                 \
        if (!list.empty())                                                                            \
            ResetRecords(list);                                                                       \
        return plainfile::LoadLaborDefs(kind, m_filePath, plainfile::RefTo(list));                    \
    }                                                                                                 \
    int Class::SaveRecords(const std::list<Record*>& list) {                                          \
        _CreateSignature();                                                                           \
        return plainfile::SaveLaborDefs(m_filePath, m_signature, plainfile::RefTo(list));             \
    }                                                                                                 \
    int Class::ResetRecords(std::list<Record*>& list) {                                               \
        plainfile::RefTo(list).release(&list);                                                        \
        return 1;                                                                                     \
    }                                                                                                 \
    int Class::GetGroupNo(const std::list<Record*>& list, const std::string& name) {                  \
        return plainfile::FindGroupNo(list, name);                                                    \
    }                                                                                                 \
    void Class::_CreateSignature() { plainfile::MakeSignature(kind, m_signature); }
