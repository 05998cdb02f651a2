// One process's use of one record-manager file on the server. The file's records live in table
// r<id> with the layout of the embedded store (record number, version, data, per key its encoded
// value and duplicate rank, per autoincrement field its value); its counters in its row of
// tarsel_files. Open handles and record locks are session advisory locks of the process's
// connection, keyed (file id, 0) and (file id, record number), so that they vanish with the
// session when the process dies or its connection breaks; the connection's own handles are told
// apart here, in the tables below.
//
// Each record operation is one statement (PgRecordOps.cpp); a scan reads windows of records ahead
// under a lease that every write outlasts before it is acknowledged (PgReadAhead.cpp). Writers of a file take its row of
// tarsel_files, or an update that changes no key the shared writer gate, before they touch its
// records; begin() takes the gate exclusive and then the row, so the composed operations that
// remain (an autoincrement value asked of the file, the exact status of a refused write) still
// see no other writer between their check and their act. A writer's test of another
// workstation's record lock takes the lock for its transaction (pg_try_advisory_xact_lock), so a
// lock and a write of one record exclude each other: a record that another workstation is
// writing at that moment answers as locked.
#pragma once

#include "recman/Store.h"
#include "recman/postgres/PgConnection.h"
#include "recman/sqlite/SqliteSchema.h"

#include <map>
#include <memory>
#include <vector>

namespace recman::postgres {

class PgFile final : public StoreFile {
public:
    PgFile(std::shared_ptr<Connection> conn, int64_t id, FileSpec spec);
    ~PgFile() override;

    const FileSpec& spec() const override { return m_spec; }
    const std::vector<const SegmentSpec*>& autoFields() const override { return m_autoFields; }

    Status readLocking(const SeekStep& seek, const LockAsk& ask, FoundRecord& out) override;
    Status insertWhole(RecordWrite& rec, const PrepareStep& prepare, int64_t& recno, int64_t& version,
                       int64_t& seq) override;
    Status updateChecked(const WriteCheck& check, RecordWrite& rec, const PrepareStep& prepare, int64_t& version,
                         int64_t& seq) override;
    Status deleteChecked(const WriteCheck& check) override;
    Status unlockAll(const Owner& owner, const std::vector<int64_t>& recnos) override;

    Status begin() override;
    Status commit() override;
    void rollback() override;

    Status seekKeyRun(int key, Seek how, const std::string& value, int64_t seq, size_t max,
                      std::vector<RecordCopy>& out) override;
    Status seekPhysicalRun(Seek how, int64_t recno, size_t max, std::vector<RecordCopy>& out) override;
    bool changeMark(ChangeMark& mark) override;
    Status seekKey(int key, Seek how, const std::string& value, int64_t seq, FoundRecord& out) override;
    Status seekPhysical(Seek how, int64_t recno, FoundRecord& out) override;
    Status readRecord(int64_t recno, FoundRecord& out) override;
    Status recordCount(uint32_t& count) override;

    Status highestAutoValue(size_t field, int64_t& value) override;
    Status autoValueExists(size_t field, int64_t value, bool& exists) override;
    Status insertRecord(const RecordWrite& rec, int64_t& recno, int64_t& version, int64_t& seq) override;
    Status updateRecord(int64_t recno, int64_t newVersion, const RecordWrite& rec, int64_t& seq) override;
    Status deleteRecord(int64_t recno) override;

    Status registerHandle(const Owner& owner, bool exclusive) override;
    Status releaseHandle(const Owner& owner) override;

    Status lockConflict(int64_t recno, const Owner& owner) override;
    Status addLock(int64_t recno, const Owner& owner) override;
    Status removeLock(int64_t recno, const Owner& owner) override;

    // True while a handle of this process has the file open.
    bool openHere() const { return !m_opens.empty(); }

private:
    // A record as this process last read or wrote it: an Update's engine part runs on it, and the
    // statement's version test proves it still the stored one.
    struct Seen {
        int64_t version = 0;
        std::string data;
    };
    void remember(int64_t recno, int64_t version, const char* data, size_t length);
    // Whether a handle of this process other than `owner` locks `recno`.
    bool lockedHere(int64_t recno, const Owner& owner) const;
    // Runs `prepare` without a store call: false (and nothing to trust in `status`) when it
    // asked the file for an autoincrement value, which needs the composed operation.
    bool prepareAlone(const PrepareStep& prepare, const FoundRecord* old, Status& status);
    void buildStatements();
    const std::string& lockingText(const std::string* seekText, size_t seekParams);
    Status runLocking(const LockAsk& ask, FoundRecord& out, bool& retry);

    Status fetch(const std::string& text, const Params& p, bool withKey, FoundRecord& out);
    // The record in the first row of m_result (n, v, d, and with `withKey` the key value and rank).
    void found(bool withKey, FoundRecord& out);
    // Runs an insert's `text` with m_params: the new record's number and rank (version 1).
    Status numbered(const std::string& text, int64_t& recno, int64_t& version, int64_t& seq, int readersColumn = -1);
    void bindRecord(Params& p, const RecordWrite& rec, int64_t seq, bool keepUnchangedRank) const;
    Status serverLock(const char* function, int64_t recno, bool& granted);

    // Read-ahead (PgReadAhead.cpp): a window read under a lease, and writes that outlast the
    // leases of other sessions' windows before they are acknowledged.
    void buildLeaseStatements();
    Status readRun(const std::string& seekText, bool withKey, size_t max, std::vector<RecordCopy>& out);
    // Runs a write's `text` with m_params; a write made alone answers in `readersColumn` how long
    // it must wait for other sessions' windows (-1: a write inside a transaction, which waits
    // once the transaction has committed).
    Status runWrite(const std::string& text, int readersColumn);
    // After a transaction of writes committed.
    Status awaitReaders();
    static void outlast(int64_t microseconds);
    void endLease();
    Status dropLock(int64_t recno);

    std::shared_ptr<Connection> m_conn;
    const int64_t m_id;
    FileSpec m_spec;
    sqlite::SqlText m_sql;
    std::vector<const SegmentSpec*> m_autoFields;
    std::string m_begin, m_countInsert, m_countDelete, m_nextSeq, m_count, m_lockRow;
    bool m_inTransaction = false;
    bool m_wroteInTransaction = false;  // the open transaction changed records
    Params m_params;
    Result m_result;
    std::string m_data, m_key;
    std::vector<std::pair<Owner, bool>> m_opens;     // this process's handles: (owner, exclusive)
    std::map<int64_t, std::vector<Owner>> m_locks;   // record -> this process's handles locking it

    std::string m_insertWhole, m_updateRank, m_updateKeys, m_updateData, m_deleteChecked, m_unlockAll;
    std::map<const std::string*, std::string> m_locking;  // seek text -> its locking form
    std::map<int64_t, Seen> m_seen;
    // A seek run to learn its statement (readLocking): the text and m_params are kept, not run.
    bool m_capturing = false;
    const std::string* m_captured = nullptr;
    bool m_capturedKey = false;
    std::string m_lease, m_readers, m_endLease;
    std::map<const std::string*, std::string> m_runs;  // seek text -> its window form
    uint64_t m_writes = 0;  // writes this process made, for its own windows' change marks
    bool m_leased = false;
    // An engine part run alone: an autoincrement question ends it.
    bool m_alone = false, m_askedFile = false;
};

// The statement texts of the embedded store, for table `table` and the server's placeholders.
std::string serverText(const std::string& text, const std::string& table);

}  // namespace recman::postgres
