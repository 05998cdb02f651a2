// Helpers the record operations share: transactions, lock conflicts and grants, delivering a
// record found into the caller's buffers.
#pragma once

#include "recman/CallArgs.h"
#include "recman/Handle.h"

namespace recman::ops {

// A write transaction that rolls back unless committed.
class Transaction {
public:
    explicit Transaction(StoreFile& store) : m_store(store) {}
    ~Transaction()
    {
        if (m_open)
            m_store.rollback();
    }
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    Status begin()
    {
        const Status s = m_store.begin();
        m_open = s == StatusOk;
        return s;
    }
    Status commit()
    {
        m_open = false;
        return m_store.commit();
    }

private:
    StoreFile& m_store;
    bool m_open = false;
};

// Records a granted lock in the handle.
void noteLock(Handle& h, const CallArgs& a, int64_t recno);

// StatusLockError when the lock asked for mixes single and multiple locks on the handle.
Status checkLockKind(const Handle& h, const CallArgs& a);

// StatusBufferTooShort when the caller's buffer is below the fixed part: nothing is delivered.
bool bufferRefused(const StoreFile& store, const CallArgs& a, const FoundRecord& f);

// Copies the record found into the caller's buffer (whole or the part that fits) and makes it
// the current record and the physical position. StatusBufferTooShort for a partial read.
Status deliver(Handle& h, const CallArgs& a, const FoundRecord& f);

// Data length check of Insert and Update: StatusBufferTooShort or StatusBadRecordLength.
Status checkWriteLength(const FileSpec& spec, const CallArgs& a);

}  // namespace recman::ops
