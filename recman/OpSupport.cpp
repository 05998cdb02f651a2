#include "recman/OpSupport.h"

#include <cstring>

namespace recman::ops {

Status checkLockConflict(StoreFile& store, Handle& h, int64_t recno) { return store.lockConflict(recno, h.owner); }

Status checkLockKind(const Handle& h, const CallArgs& a)
{
    if (!a.locking())
        return StatusOk;
    if (a.multipleLock() ? h.hasSingle : !h.multipleLocks.empty())
        return StatusLockError;
    return StatusOk;
}

Status grantLock(StoreFile& store, Handle& h, const CallArgs& a, int64_t recno)
{
    if (!a.multipleLock() && h.hasSingle && h.singleLock != recno)
        if (const Status s = store.removeLock(h.singleLock, h.owner); s != StatusOk)
            return s;
    return store.addLock(recno, h.owner);
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
