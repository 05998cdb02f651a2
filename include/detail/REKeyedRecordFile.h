// Record-file classes searched by a key that they build from the caller's arguments, in the
// layout of the open file, and written back through a search on the record's own key.
//
// A class derives from REKeyedRecordFile<Derived, RELayout<NEWREC, OLDREC>> instead of
// RERecordFile and gives, as public members: the converter
// `static int _ConvertToOldRecordFormat(const NEWREC*, OLDREC*)` (files with an old layout) and
// the duplicate search `int _FindDuplicateRecord(const NEWREC&)` (1 when the record's key exists,
// leaving the file positioned on it).
#pragma once

#include "RERecordFile.h"

#include <cctype>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

namespace detail {

// 1 when `text` equals the field, read for at most `width` bytes, ignoring case (a null text
// reads as empty).
inline bool RETextEqualsNoCase(const char* text, const char* field, size_t width) {
    const size_t length = text != nullptr ? std::strlen(text) : 0;
    if (strnlen(field, width) != length)
        return false;
    for (size_t i = 0; i < length; ++i) {
        if (std::toupper(static_cast<unsigned char>(text[i])) != std::toupper(static_cast<unsigned char>(field[i])))
            return false;
    }
    return true;
}

// Text filter of a search: an empty (or null) wanted text matches any field, another one a field
// equal to it ignoring case.
inline bool RETextMatchesNoCase(const char* wanted, const char* field, size_t width) {
    return wanted == nullptr || wanted[0] == '\0' || RETextEqualsNoCase(wanted, field, width);
}

// Copies a text argument into a fixed field of `size` bytes, keeping its last byte for the
// terminator; null reads as empty. REQUIRES: the field was zeroed.
inline void REPutText(char* field, size_t size, const char* text) {
    if (text != nullptr)
        std::memcpy(field, text, strnlen(text, size - 1));
}

}  // namespace detail

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
    int16_t _WriteStatus(uint16_t op, const Record& rec) {
        if constexpr (!std::is_void_v<OldRecord>) {
            if (this->m_isOldFormat) {
                OldRecord old;
                Derived::_ConvertToOldRecordFormat(&rec, &old);
                return this->Btrieve(op, &old);
            }
        }
        Record copy = rec;
        return this->Btrieve(op, &copy);
    }
};
