// The method set that every record-manager file class shares, written once.
//
// RERecordFileEngine does the work on untyped records from the class's RERecordFileSpec
// (record lengths, message numbers, key table, converters, behaviour switches): open with the
// record-length test, the converting record-manager call, the positional reads, inserts and
// updates in either layout, create, copy and append. RERecordFile<Derived, REC> gives the typed
// signatures inline. A file class derives from RERecordFile, defines its spec and holds only its
// particular operations; the hooks below let it add a duplicate search and append renumbering.
#pragma once

#include "../REBtrieveBase.h"
#include "../tarsel_export.h"

#include <cstdint>
#include <cstdlib>
#include <list>
#include <string>
#include <type_traits>
#include <vector>

struct RERecordFileSpec;

class TARSEL_API RERecordFileEngine : public REBtrieveBase {
public:
    RERecordFileEngine(const RERecordFileEngine& other) = default;
    RERecordFileEngine& operator=(const RERecordFileEngine& other) = default;
    ~RERecordFileEngine() override;

    int Close() override;

    // Closes an open file (virtual Close), then opens `path` and tells its layout. Virtual, so
    // that a class that does more on open (a project logs its user in) does it through any base.
    virtual int Initialize(const char* path);
    // Closes the file if open; 1. A class that resets more overrides _Reset.
    int Reset() { return _Reset(); }
    // Deletes every record; 1 also for an empty file, 0 when a delete fails.
    int DeleteAllRecords();
    // Creates (or replaces) the file at `path` empty, with the class's specification. The new
    // file is not opened. 0 after the class's create message.
    int CreateNewFile(const char* path);
    // Appends the records of the file at `path`, converting between layouts; at most 20 of them
    // unless `all` is non-zero.
    int AppendFile(const char* path, int all);
    // The path operations above with the path as a string.
    int Initialize(const std::string& path) { return Initialize(path.c_str()); }
    int CreateNewFile(const std::string& path) { return CreateNewFile(path.c_str()); }
    int AppendFile(const std::string& path, int all) { return AppendFile(path.c_str(), all); }
    // The path of the file.
    int GetBtrieveFileName(std::string& name) const;
    // 1 while the open file has the old record layout.
    int IsOldFormat() const { return m_isOldFormat; }

    // Opens `path` unless already open and tells its layout by the record length; a length of
    // neither layout shows the class's corrupt-file message and gives 0.
    int _FileOpen(const char* path);
    // One record-manager call with a new-layout record, converted when the file is old. End of
    // file and a failed Get Equal are silent; other failures show the class's message.
    int _CallBtrieve(unsigned op, void* rec);
    // Appends at most `maxCount` records of the open file `src` (old layout when `srcIsOld`),
    // converted to this file's layout, in physical order; 0 when `src` has none.
    int _CopyRecords(REBtrieveBase& src, int srcIsOld, int maxCount);
    // One record-manager call with a current-layout record, converted when the file is old;
    // returns the status as it is, judging nothing: for the operations whose statuses the class
    // tells apart itself (a record in use, say).
    int16_t _CallStatus(unsigned op, void* rec);
    // A write (Insert, Update) of a current-layout record, converted when the file is old (unless
    // `convert` is false: the record goes as given); the status as it is.
    int16_t _WriteStatus(uint16_t op, const void* rec, bool convert = true);
    // The one judgement of a status: 1 for success; otherwise 0, after the class's message for
    // the statuses that are reported (REStatusIsReported).
    int _Judge(unsigned op, int16_t status) const;

    int32_t m_isOldFormat;   // 1 while the open file has the old record length
    int32_t m_searchActive;  // 1 from the start of a key search until a search finds nothing
    // Path and open flag of the classes that keep their own (RERecordFileSpec::ownPath).
    char m_filePath[kFileNameSize];
    int32_t m_fileOpen;

protected:
    enum Position { kFirst, kLast, kNext, kPrevious };

    explicit RERecordFileEngine(const RERecordFileSpec& spec);

    int _GetPositional(Position position, void* rec);
    int _GetHighestRecord(void* rec);
    int _GetEqualMatch(const char* key, void* rec);
    int _AddRecord(const void* rec);
    int _AddNewRecord(const void* rec);
    // Update / Delete of the record the last read or search reached.
    int _UpdateCurrent(const void* rec);
    int _DeleteCurrent();
    int _CopyFileFrom(RERecordFileEngine* src);

    // The class's key search for AddRecord: 1 when a record with `rec`'s key exists. The default
    // searches nothing and lets the record manager refuse a duplicate key.
    virtual int _FindDuplicate(const void* rec);
    // Called by _CopyRecords before the first record is inserted, and for each record copied, in
    // the current layout; true when the record was changed. Classes give the typed
    // `bool _AdjustCopied(Record&)` instead (RERecordFile).
    virtual void _BeginCopy(int srcIsOld);
    virtual int _Reset();
    virtual bool _AdjustCopiedRecord(void* rec);


private:
    int _Write(uint16_t op, const void* rec);
    void* _CopiedRecord(void* read, int srcIsOld, void* converted);
    void* _Scratch();

    const RERecordFileSpec* m_spec;
    std::vector<uint8_t> m_scratch;  // one record of the larger layout
};

// The record layouts of a file class: the one callers see and the one of the earlier generation
// of files (void: none).
template <class NEWREC, class OLDREC = void>
struct RELayout {
    using Record = NEWREC;
    using OldRecord = OLDREC;
};

namespace detail {
template <class T, class = void>
struct LayoutOf {
    using type = RELayout<T>;
};
template <class T>
struct LayoutOf<T, std::void_t<typename T::Record>> {
    using type = T;
};
}  // namespace detail

// `Layout` is an RELayout (or a record alone, for a file of one layout). The class's traits,
// from which its spec is made (core/RecordFileSpec.h), must name the same records.
template <class Derived, class Layout>
class RERecordFile : public RERecordFileEngine {
public:
    using Record = typename detail::LayoutOf<Layout>::type::Record;
    using OldRecord = typename detail::LayoutOf<Layout>::type::OldRecord;
    using REC = Record;

    int GetFirstRecord(REC* rec) { return _GetPositional(kFirst, rec); }
    int GetLastRecord(REC* rec) { return _GetPositional(kLast, rec); }
    int GetNextRecord(REC* rec) { return _GetPositional(kNext, rec); }
    int GetPreviousRecord(REC* rec) { return _GetPositional(kPrevious, rec); }
    int GetHighestRecord(REC* rec) { return _GetHighestRecord(rec); }
    // Exact match on key 0 with `key` for its string length; a null `rec` only tests existence.
    int GetEqualMatch(const char* key, REC* rec) { return _GetEqualMatch(key, rec); }
    // Appends a heap copy of every record in the order of the positional reads; 1 when the
    // collection is not empty afterwards. The caller owns the copies.
    int GetAllRecords(std::list<REC*>& list) { return _CollectAll(list); }
    int GetAllRecords(std::vector<REC*>& array) { return _CollectAll(array); }
    int AddRecord(REC& rec) { return _AddRecord(&rec); }
    int AddNewRecord(REC& rec) { return _AddNewRecord(&rec); }
    // Replaces this file's records with raw copies of `src`'s (same layout); 0 when `src` is
    // empty or a call fails.
    int CopyFileA(Derived* src) { return _CopyFileFrom(src); }
#if !defined(_WIN32)
    int CopyFile(Derived* src) { return CopyFileA(src); }
#endif

    int _CallBtrieve(unsigned op, REC* rec) { return RERecordFileEngine::_CallBtrieve(op, rec); }

protected:
    using RERecordFileEngine::RERecordFileEngine;

    // Typed hooks; a class declares its own to take part. The duplicate search of AddRecord:
    // 1 when a record with `rec`'s key exists (default: none, the record manager refuses a
    // duplicate key). The adjustment of a copied record: true when it changed the record.
    int _FindDuplicateRecord(const Record&) { return 0; }
    bool _AdjustCopied(Record&) { return false; }

    int _FindDuplicate(const void* rec) final {
        return static_cast<Derived*>(this)->_FindDuplicateRecord(*static_cast<const Record*>(rec));
    }
    bool _AdjustCopiedRecord(void* rec) final { return static_cast<Derived*>(this)->_AdjustCopied(*static_cast<Record*>(rec)); }

    // Frees every record of the collection and empties it; 1. Classes name these after their
    // records (ResetJobRecList).
    static int ResetRecList(std::list<REC*>& list) { return _FreeAll(list); }
    static int ResetRecArray(std::vector<REC*>& array) { return _FreeAll(array); }

private:
    template <class C>
    int _CollectAll(C& records) {
        REC* rec = static_cast<REC*>(std::malloc(sizeof(REC)));
        for (int found = GetFirstRecord(rec); found; found = GetNextRecord(rec)) {
            records.push_back(rec);
            rec = static_cast<REC*>(std::malloc(sizeof(REC)));
        }
        std::free(rec);
        return records.empty() ? 0 : 1;
    }
    template <class C>
    static int _FreeAll(C& records) {
        for (REC* rec : records)
            std::free(rec);
        records.clear();
        return 1;
    }
};
