// One process's connection to one record-manager file in SQLite, with its prepared statements.
#pragma once

#include "recman/ProcessMark.h"
#include "recman/Store.h"
#include "recman/sqlite/SqliteSchema.h"
#include "recman/sqlite/Statement.h"

#include <sqlite3.h>

#include <memory>
#include <vector>

namespace recman::sqlite {

class SqliteFile final : public StoreFile {
public:
    // Takes the connection; `spec` was read from the file.
    SqliteFile(sqlite3* db, FileSpec spec);
    ~SqliteFile() override;

    const FileSpec& spec() const override { return m_spec; }
    const std::vector<const SegmentSpec*>& autoFields() const override { return m_autoFields; }

    Status begin() override;
    Status commit() override;
    void rollback() override;

    Status seekKey(int key, Seek how, const std::string& value, int64_t seq, FoundRecord& out) override;
    Status seekPhysical(Seek how, int64_t recno, FoundRecord& out) override;
    Status readRecord(int64_t recno, FoundRecord& out) override;
    Status seekKeyRun(int key, Seek how, const std::string& value, int64_t seq, size_t max,
                      std::vector<RecordCopy>& out) override;
    Status seekPhysicalRun(Seek how, int64_t recno, size_t max, std::vector<RecordCopy>& out) override;
    // The header of the write-ahead log's shared index, which every commit of any process rewrites.
    bool changeMark(ChangeMark& mark) override;
    bool holdsRead() const override { return m_reading; }
    void idle() override { endRead(); }
    Status recordCount(uint32_t& count) override;

    Status highestAutoValue(size_t field, int64_t& value) override;
    Status autoValueExists(size_t field, int64_t value, bool& exists) override;
    Status insertRecord(const RecordWrite& rec, int64_t& recno, int64_t& version, int64_t& seq) override;
    Status updateRecord(int64_t recno, int64_t newVersion, const RecordWrite& rec, int64_t& seq) override;
    Status deleteRecord(int64_t recno) override;
    // The version check is part of the delete, and the locks table is touched only when the
    // record has a lock.
    Status deleteChecked(const WriteCheck& check) override;

    Status registerHandle(const Owner& owner, bool exclusive) override;
    Status releaseHandle(const Owner& owner) override;
    void endOpen() override { m_mark.endGate(); }

    Status lockConflict(int64_t recno, const Owner& owner) override;
    Status addLock(int64_t recno, const Owner& owner) override;
    Status removeLock(int64_t recno, const Owner& owner) override;

    // The process's mark on the file, which tells live owners from ended ones.
    void adoptMark(ProcessMark mark) { m_mark = std::move(mark); }
    // Registered handles: (owner, exclusive).
    Status openHandles(std::vector<std::pair<Owner, bool>>& owners);

private:
    enum Fixed {
        FBegin, FBeginRead, FCommit, FRollback, FCounters, FAppendCounter, FCountDelete, FGiveRank, FOpens, FAddOpen,
        FRemoveOpen, FRemoveOwnerLocks, FLockHolders, FAddLock, FRemoveLock, FRemoveRecordLocks, FRemoveChecked,
        FPhysFirst, FPhysLast, FPhysNext, FPhysPrev, FRead, FUpdate, FUpdateData, FRemove, FixedCount
    };

    Statement* fixed(Fixed which);
    Statement* prepared(Statement& st, const std::string& text);
    Status run(Statement* st);  // steps a statement without result rows
    Status rowStatus(int rc) const;
    Status fetch(Statement* st, bool withKey, FoundRecord& out);
    Status ownerStatement(Fixed which, const Owner& owner);
    // The counter row: the record count and the highest number given.
    Status counters(int64_t& count, int64_t& highest);
    Status registerInTransaction(const Owner& owner, bool exclusive);
    Status removeOwner(const Owner& owner);
    void bindRecord(Statement& st, const RecordWrite& rec, int64_t seq, bool keepUnchangedRank);
    Status fetchRun(Statement* st, bool withKey, size_t max, std::vector<RecordCopy>& out);
    // Reads outside a write run in one read kept open from call to call while the change mark
    // stays the one taken before it began; a new mark begins a new read.
    Status readCurrent();
    void endRead();

    sqlite3* m_db;
    FileSpec m_spec;
    SqlText m_sql;
    std::vector<const SegmentSpec*> m_autoFields;
    std::unique_ptr<Statement[]> m_fixed;
    std::vector<std::vector<Statement>> m_seek;
    std::vector<Statement> m_autoMax, m_autoExists;
    // Runs: per key, Next then Previous; then physical Next and Previous.
    std::vector<Statement> m_runs;
    std::vector<std::string> m_runTexts;
    const volatile void* m_walIndex = nullptr;
    bool m_walIndexTried = false;
    bool m_reading = false;
    ChangeMark m_readMark;
    std::string m_data, m_key;
    std::vector<Owner> m_holders;
    std::vector<std::pair<Owner, bool>> m_owners;
    ProcessMark m_mark;
    bool m_inTransaction = false;
};

// True while the owner's process runs: its id and start token still name a running process, and
// it still holds its mark on the file (`mark` is this process's descriptor on that file).
bool ownerAlive(const Owner& owner, const ProcessMark& mark);

}  // namespace recman::sqlite
