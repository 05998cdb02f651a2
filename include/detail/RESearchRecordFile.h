// The record-file method set of the classes that keep a key search running between calls (the
// shape, grade and settings files): opening a file ends any search, and so, where the class
// says so, does every positional read.
#pragma once

#include "detail/RERecordFile.h"

#include <string>

template <class Derived, class Layout, bool kReadsEndSearch = true>
class RESearchRecordFile : public RERecordFile<Derived, Layout> {
    using Base = RERecordFile<Derived, Layout>;

public:
    using typename Base::REC;

    // Ends the search, closes an open file and opens `path`.
    int Initialize(const char* path) {
        this->m_searchActive = 0;
        return Base::Initialize(path);
    }
    int Initialize(const std::string& path) { return Initialize(path.c_str()); }

    int GetFirstRecord(REC* rec) { return _EndSearch(), Base::GetFirstRecord(rec); }
    int GetLastRecord(REC* rec) { return _EndSearch(), Base::GetLastRecord(rec); }
    int GetNextRecord(REC* rec) { return _EndSearch(), Base::GetNextRecord(rec); }
    int GetPreviousRecord(REC* rec) { return _EndSearch(), Base::GetPreviousRecord(rec); }

protected:
    explicit RESearchRecordFile(const RERecordFileSpec& spec) : Base(spec) {}

private:
    void _EndSearch() {
        if constexpr (kReadsEndSearch)
            this->m_searchActive = 0;
    }
};
