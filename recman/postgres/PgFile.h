// One process's use of one record-manager file on the server. The file's records live in table
// r<id> with the layout of the embedded store (record number, version, data, per key its encoded
// value and duplicate rank, per autoincrement field its value); its counters in its row of
// tarsel_files. Open handles and record locks are session advisory locks of the process's
// connection, keyed (file id, 0) and (file id, record number), so that they vanish with the
// session when the process dies or its connection breaks; the connection's own handles are told
// apart here, in the tables below.
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

    const FileSpec& spec() const override { return m_spec; }
    const std::vector<const SegmentSpec*>& autoFields() const override { return m_autoFields; }

    Status begin() override;
    Status commit() override;
    void rollback() override;

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
    Status fetch(const std::string& text, const Params& p, bool withKey, FoundRecord& out);
    void bindRecord(Params& p, const RecordWrite& rec, int64_t seq, bool keepUnchangedRank) const;
    Status serverLock(const char* function, int64_t recno, bool& granted);
    Status dropLock(int64_t recno);

    std::shared_ptr<Connection> m_conn;
    const int64_t m_id;
    FileSpec m_spec;
    sqlite::SqlText m_sql;
    std::vector<const SegmentSpec*> m_autoFields;
    std::string m_begin, m_countInsert, m_countDelete, m_nextSeq, m_count;
    Params m_params;
    Result m_result;
    std::string m_data, m_key;
    std::vector<std::pair<Owner, bool>> m_opens;     // this process's handles: (owner, exclusive)
    std::map<int64_t, std::vector<Owner>> m_locks;   // record -> this process's handles locking it
};

// The statement texts of the embedded store, for table `table` and the server's placeholders.
std::string serverText(const std::string& text, const std::string& table);

}  // namespace recman::postgres
