// The SQLite layout of a record-manager file, and the text of every statement the store runs.
//
//   meta(name, value)          'signature' -> SchemaSignature, 'spec' -> the Stat block (count 0)
//   rec(n, v, d, k0, s0, ..., a0, ...)
//                              record number (physical order), change version, data; per key i its
//                              encoded value ki (NULL: no entry) and duplicate rank si; per
//                              autoincrement field j its value aj
//   the counter row            the last row of rec, v=0 (a record's version is 1 or more): its n is
//                              one above the highest number given (a record number, or a duplicate
//                              rank: one counter serves both), its d the kept record count; no key
//                              entry. An insert turns it into the new record in place and appends a
//                              new counter row behind it: records stay appended at the end of the
//                              table, and the count costs an insert no page of its own.
//   index xi on rec(ki) UNIQUE, or rec(ki, si) for a duplicates key; index yj on rec(aj); each
//                              without the rows whose column is NULL
//   opens(host, pid, tok, h, excl)   open handles;  locks(n, host, pid, tok, h)   record locks
#pragma once

#include "recman/FileSpec.h"
#include "recman/Store.h"

#include <cstdint>
#include <string>
#include <vector>

namespace recman::sqlite {

inline constexpr const char* SchemaSignature = "tarsel record manager file 2";


// Distinct autoincrement fields of a spec, in segment order.
std::vector<const SegmentSpec*> autoIncrementFields(const FileSpec& spec);

// Statements that make an empty file's tables for `spec` (signature and spec rows included; the
// caller binds nothing: values are inlined).
std::vector<std::string> schemaStatements(const FileSpec& spec);

// Every statement text of an open file.
struct SqlText {
    // Per key: one statement per Seek value. Result columns: n, v, d, k, s.
    std::vector<std::vector<std::string>> seekKey;
    // First, Last, Next, Previous by record number; then read by number. Result columns: n, v, d.
    std::string physicalFirst, physicalLast, physicalNext, physicalPrevious, readRecord;
    // ?1 n, ?2 v, ?3 d, then per key ?k ?s, then per autoincrement field ?a.
    std::string insert;
    // Same parameters; a NULL rank keeps the stored one. Also makes the counter row a record.
    std::string update;
    // Update of a record whose key values all stay: ?1 n, ?2 v, ?3 d.
    std::string updateData;
    std::string remove;
    std::vector<std::string> autoMax, autoExists;

    static SqlText forSpec(const FileSpec& spec);
};

// Statements that do not depend on the file's keys.
namespace sql {
inline constexpr const char* Begin = "BEGIN IMMEDIATE";
inline constexpr const char* BeginRead = "BEGIN";
inline constexpr const char* Commit = "COMMIT";
inline constexpr const char* Rollback = "ROLLBACK";
inline constexpr const char* ReadSignature = "SELECT value FROM meta WHERE name='signature'";
inline constexpr const char* ReadSpec = "SELECT value FROM meta WHERE name='spec'";
// The counter row: read it (n, count); append it at ?1 with count ?2; move it from ?1 to ?2.
inline constexpr const char* Counters = "SELECT n, d FROM rec ORDER BY n DESC LIMIT 1";
inline constexpr const char* AppendCounter = "INSERT INTO rec(n, v, d) VALUES(?1, 0, ?2)";
inline constexpr const char* GiveRank = "UPDATE rec SET n=?2 WHERE n=?1";
inline constexpr const char* CountDelete = "UPDATE rec SET d=d-1 WHERE n=(SELECT max(n) FROM rec)";
inline constexpr const char* Opens = "SELECT host, pid, tok, h, excl FROM opens";
inline constexpr const char* AddOpen =
    "INSERT OR REPLACE INTO opens(host, pid, tok, h, excl) VALUES(?1, ?2, ?3, ?4, ?5)";
inline constexpr const char* RemoveOpen = "DELETE FROM opens WHERE host=?1 AND pid=?2 AND tok=?3 AND h=?4";
inline constexpr const char* RemoveOwnerLocks = "DELETE FROM locks WHERE host=?1 AND pid=?2 AND tok=?3 AND h=?4";
inline constexpr const char* LockHolders = "SELECT host, pid, tok, h FROM locks WHERE n=?1";
inline constexpr const char* AddLock = "INSERT OR IGNORE INTO locks(n, host, pid, tok, h) VALUES(?1, ?2, ?3, ?4, ?5)";
inline constexpr const char* RemoveLock = "DELETE FROM locks WHERE n=?1 AND host=?2 AND pid=?3 AND tok=?4 AND h=?5";
inline constexpr const char* RemoveRecordLocks = "DELETE FROM locks WHERE n=?1";
// Delete of record ?1 at version ?2, or at any version when ?3 is 1.
inline constexpr const char* RemoveChecked = "DELETE FROM rec WHERE n=?1 AND v>0 AND (v=?2 OR ?3)";
}  // namespace sql

// Connection settings every connection to a file gets (WAL is set once, at creation). Pages are
// read through a memory map of the file, not copied in by a system call each (pages of the
// write-ahead log still are). A 32-bit process maps less: its whole address space is 4 GB, shared
// by every file it has open.
#if UINTPTR_MAX > 0xFFFFFFFFu
inline constexpr const char* ConnectionPragmas = "PRAGMA synchronous=NORMAL; PRAGMA mmap_size=1073741824";
#else
inline constexpr const char* ConnectionPragmas = "PRAGMA synchronous=NORMAL; PRAGMA mmap_size=134217728";
#endif
inline constexpr int BusyTimeoutMs = 10000;

}  // namespace recman::sqlite
