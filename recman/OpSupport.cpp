#include "recman/OpSupport.h"

#include <cstring>

namespace recman::ops {

Status checkLockKind(const Handle& h, const CallArgs& a)
{
    if (!a.locking())
        return StatusOk;
    if (a.multipleLock() ? h.hasSingle : !h.multipleLocks.empty())
        return StatusLockError;
    return StatusOk;
}

void noteLock(Handle& h, const CallArgs& a, int64_t recno)
{
    if (a.multipleLock()) {
        h.multipleLocks.insert(recno);
    } else {
        h.hasSingle = true;
        h.singleLock = recno;
    }
}

bool bufferRefused(const StoreFile& store, const CallArgs& a, const FoundRecord& f)
{
    const uint32_t cap = a.dataSize();
    return cap < f.data->size() && cap < store.spec().recordLength;
}

Status deliver(Handle& h, const CallArgs& a, const FoundRecord& f)
{
    const uint32_t cap = a.dataSize();
    const size_t stored = f.data->size();
    const bool partial = cap < stored;
    if (stored != 0)
        std::memcpy(a.data, f.data->data(), partial ? cap : stored);
    if (!partial)
        *a.dataLength = uint32_t(stored);
    h.hasCurrent = true;
    h.currentRecno = f.recno;
    h.currentVersion = f.version;
    h.physicalBefore = false;
    h.physicalRecno = f.recno;
    return partial ? StatusBufferTooShort : StatusOk;
}

Status checkWriteLength(const FileSpec& spec, const CallArgs& a)
{
    const uint32_t n = a.dataSize();
    if (!spec.variableLength())
        return n == spec.recordLength ? StatusOk : StatusBufferTooShort;
    if (n < spec.recordLength)
        return StatusBufferTooShort;
    return n > MaxVariableRecord ? StatusBadRecordLength : StatusOk;
}

}  // namespace recman::ops

namespace recman {

namespace {

// Update's and Delete's checks: `found` gets the stored record.
Status checkWrite(StoreFile& store, const WriteCheck& c, FoundRecord& found)
{
    if (const Status s = store.lockConflict(c.recno, c.owner); s != StatusOk)
        return s;
    const Status s = store.readRecord(c.recno, found);
    if (s == StatusEndOfFile)
        return StatusConflict;
    if (s != StatusOk)
        return s;
    return found.version != c.version && !c.holdsLock ? StatusConflict : StatusOk;
}

// Runs `body` in one transaction, committed when it succeeds.
template <typename Body>
Status inTransaction(StoreFile& store, Body body)
{
    ops::Transaction txn(store);
    if (const Status s = txn.begin(); s != StatusOk)
        return s;
    if (const Status s = body(); s != StatusOk)
        return s;
    return txn.commit();
}

}  // namespace

Status StoreFile::readLocking(const SeekStep& seek, const LockAsk& ask, FoundRecord& out)
{
    return inTransaction(*this, [&] {
        if (const Status s = seek(out); s != StatusOk)
            return s;
        if (const Status s = lockConflict(out.recno, ask.owner); s != StatusOk)
            return s;
        if (ask.refuse)
            return StatusBufferTooShort;
        if (ask.replaces != 0 && ask.replaces != out.recno)
            if (const Status s = removeLock(ask.replaces, ask.owner); s != StatusOk)
                return s;
        return addLock(out.recno, ask.owner);
    });
}

Status StoreFile::insertWhole(RecordWrite& rec, const PrepareStep& prepare, int64_t& recno, int64_t& version,
                              int64_t& seq)
{
    return inTransaction(*this, [&] {
        const Status s = prepare(nullptr);
        return s != StatusOk ? s : insertRecord(rec, recno, version, seq);
    });
}

Status StoreFile::updateChecked(const WriteCheck& check, RecordWrite& rec, const PrepareStep& prepare,
                                int64_t& version, int64_t& seq)
{
    return inTransaction(*this, [&] {
        FoundRecord found;
        if (const Status s = checkWrite(*this, check, found); s != StatusOk)
            return s;
        if (const Status s = prepare(&found); s != StatusOk)
            return s;
        version = found.version + 1;
        if (const Status s = updateRecord(check.recno, version, rec, seq); s != StatusOk)
            return s;
        return check.dropLock ? removeLock(check.recno, check.owner) : StatusOk;
    });
}

Status StoreFile::deleteChecked(const WriteCheck& check)
{
    return inTransaction(*this, [&] {
        FoundRecord found;
        const Status s = checkWrite(*this, check, found);
        return s != StatusOk ? s : deleteRecord(check.recno);
    });
}

Status StoreFile::unlockAll(const Owner& owner, const std::vector<int64_t>& recnos)
{
    return inTransaction(*this, [&] {
        for (const int64_t recno : recnos)
            if (const Status s = removeLock(recno, owner); s != StatusOk)
                return s;
        return StatusOk;
    });
}

}  // namespace recman
