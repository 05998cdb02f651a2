// REGradeFile: the material grades, four short texts a record, listed by their first text and
// searched by any combination of the first, second and third. Files of the earlier generation
// (26-byte blank-padded records) are read and written in place; callers see the 30-byte record.
// The positional reads walk the file in stored order, not in key order.
// A program opens it with Initialize(path) (CreateNewFile first makes an empty file) and reads
// and writes it through the record-file methods of detail/RERecordFile.h and those below.
#pragma once

#include "detail/RESearchRecordFile.h"
#include "tarsel_export.h"

#include <cstddef>
#include <list>
#include <string>

#pragma pack(push, 1)
struct GRADEDATRECORD {
    char szText0[5];    // first text: selects a grade list
    char szCode5[3];    // two-character code
    char szText8[11];   // second text
    char szText19[11];  // third text
};

struct OLD_GRADEDATRECORD {
    char szText0[4];
    char szCode5[2];
    char szText8[10];
    char szText19[10];
};
#pragma pack(pop)

static_assert(sizeof(GRADEDATRECORD) == 30);
static_assert(offsetof(GRADEDATRECORD, szCode5) == 5);
static_assert(offsetof(GRADEDATRECORD, szText8) == 8);
static_assert(offsetof(GRADEDATRECORD, szText19) == 19);
static_assert(sizeof(OLD_GRADEDATRECORD) == 26);
static_assert(offsetof(OLD_GRADEDATRECORD, szCode5) == 4);
static_assert(offsetof(OLD_GRADEDATRECORD, szText8) == 6);
static_assert(offsetof(OLD_GRADEDATRECORD, szText19) == 16);

class TARSEL_API REGradeFile : public RESearchRecordFile<REGradeFile, RELayout<GRADEDATRECORD, OLD_GRADEDATRECORD>> {
public:
    REGradeFile();

    using RESearchRecordFile::m_isOldFormat;
    using RESearchRecordFile::m_searchActive;

    // Ends the search; the file stays open. 1.
    int Reset();

    // Searches by the three texts (an empty text matches anything, the others are compared
    // without regard to case) on key `keyNumber`. In a 26-byte file the first search reads the
    // record at or after the key made of the texts and the next one reads on in key order; in a
    // 30-byte file neither reads: they test the record `rec` already holds.
    int GetFirstMatch(const char* text0, const char* text8, const char* text19, GRADEDATRECORD* rec,
                      short keyNumber);
    int GetNextMatch(const char* text0, const char* text8, const char* text19, GRADEDATRECORD* rec,
                     short keyNumber);
    int GetFirstMatch(const char* text0, const char* text8, GRADEDATRECORD* rec) {
        return GetFirstMatch(text0, text8, "", rec, 0);
    }
    int GetNextMatch(const char* text0, const char* text8, GRADEDATRECORD* rec) {
        return GetNextMatch(text0, text8, "", rec, 0);
    }

    // Heap copies of the records whose first text is `text0`, in key 1 order; the list is
    // emptied first. 1, also when none is found.
    int GetGradeList(const char* text0, std::list<GRADEDATRECORD*>& list);
    static int ResetGradeRecordList(std::list<GRADEDATRECORD*>& list) { return ResetRecList(list); }

    // AddRecord (inherited) inserts a record unless the search on its own texts finds it.
    // UpdateRecord rewrites the record found by `from`'s texts with `to` (0 when `from` is not
    // found); DeleteRecord deletes the record found by `rec`'s texts and clears `rec` (0 when
    // not found). In a 30-byte file the searches read nothing, so these two act on the record
    // the last read reached.
    int UpdateRecord(GRADEDATRECORD& from, GRADEDATRECORD& to);
    int DeleteRecord(GRADEDATRECORD* rec);
    // A new file of this file's specification with a copy of its records.
    int CopyRecordsToNewFile(const char* path);

    static int _ConvertToNewRecordFormat(const OLD_GRADEDATRECORD* oldRec, GRADEDATRECORD* newRec);
    static int _ConvertToOldRecordFormat(const GRADEDATRECORD* newRec, OLD_GRADEDATRECORD* oldRec);

    // AddRecord's duplicate search: the record's own texts on key 1.
    int _FindDuplicateRecord(const GRADEDATRECORD& rec);

private:
    bool _Matches(const char* text0, const char* text8, const char* text19, const GRADEDATRECORD& rec) const;
    // The search on `rec`'s own texts on key 1, into `found` (which a 30-byte file only tests).
    int _FindByTexts(const GRADEDATRECORD& rec, GRADEDATRECORD* found);

    static const RERecordFileSpec kSpec;
};
