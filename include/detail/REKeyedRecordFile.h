// Record-file classes searched by a key that they build from the caller's arguments, in the
// layout of the open file, and written back through a search on the record's own key.
//
// A class derives from REKeyedRecordFile<Derived, RELayout<NEWREC, OLDREC>> instead of
// RERecordFile and gives, as a public member, the converter
// `static int _ConvertToOldRecordFormat(const NEWREC*, OLDREC*)` (files with an old layout).
// Classes written back through a search on the record's own key also give the duplicate search
// `int _FindDuplicateRecord(const NEWREC&)` (1 when the key exists, the file positioned on it).
#pragma once

#include "RERecordFile.h"
#include "RETextCompare.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

template <class Derived, class Layout>
class REKeyedRecordFile : public RERecordFile<Derived, Layout> {
    using Base = RERecordFile<Derived, Layout>;

public:
    using typename Base::OldRecord;
    using typename Base::Record;

protected:
    using Base::Base;

    // Puts a search key of key 0 into the key buffer: the first `newLength` bytes of `key`, a
    // current-layout record that holds the key's fields and zeros elsewhere; in an old-layout
    // file the first `oldLength` bytes of its old form (texts blank-filled).
    void _SetRecordKey(const Record& key, int newLength, int oldLength) {
        this->SetKeyNumber(0);
        if constexpr (!std::is_void_v<OldRecord>) {
            if (this->m_isOldFormat) {
                OldRecord old;
                Derived::_ConvertToOldRecordFormat(&key, &old);
                this->SetKeyBuffer(&old, oldLength);
                return;
            }
        }
        this->SetKeyBuffer(&key, newLength);
    }

    // One step of a key search: reads with `op` (a positioning Get from the key buffer when
    // `starts`, else Get Next) into `rec`, or a local record when `rec` is null, and applies the
    // search filter. The search flag is set when a search starts and cleared when a step fails.
    template <class Match>
    int _SearchStep(unsigned op, bool starts, Record* rec, Match matches) {
        Record local;
        Record* found = rec != nullptr ? rec : &local;
        if (starts)
            this->m_searchActive = 1;
        if (!this->_CallBtrieve(op, found) || !matches(*found)) {
            this->m_searchActive = 0;
            return 0;
        }
        return 1;
    }

public:
    // Update / Delete of the record the last search reached, for the keyed writes.
    using Base::_DeleteCurrent;
    using Base::_UpdateCurrent;

    // Writes `rec` with `op` (converted when the file is old) and returns the status as it is.
    int16_t _WriteStatus(uint16_t op, const Record& rec) { return RERecordFileEngine::_WriteStatus(op, &rec); }
};
