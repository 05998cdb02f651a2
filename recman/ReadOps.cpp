// Get, Step and Unlock, and the release of a closing handle.
#include "recman/KeyCodec.h"
#include "recman/OpSupport.h"
#include "recman/RecordOps.h"

#include <cstring>
#include <limits>

namespace recman::ops {

namespace {

Seek seekFor(uint16_t op)
{
    switch (op) {
    case OpGetEqual: return Seek::Equal;
    case OpGetNext: case OpStepNext: return Seek::Next;
    case OpGetPrevious: case OpStepPrevious: return Seek::Previous;
    case OpGetGreater: return Seek::Greater;
    case OpGetGreaterOrEqual: return Seek::GreaterOrEqual;
    case OpGetLess: return Seek::Less;
    case OpGetLessOrEqual: return Seek::LessOrEqual;
    case OpGetFirst: case OpStepFirst: return Seek::First;
    default: return Seek::Last;
    }
}

bool keyedSearch(Seek s)
{
    return s == Seek::Equal || s == Seek::Greater || s == Seek::GreaterOrEqual || s == Seek::Less ||
           s == Seek::LessOrEqual;
}

// Runs a seek, and for a locking read the lock check and grant, in one transaction when locking.
// On success (or a partial read) the record is delivered; `found` stays valid for the caller.
template <typename SeekFn>
Status readOne(Handle& h, const CallArgs& a, Status notFound, SeekFn seek, FoundRecord& found, bool& delivered)
{
    delivered = false;
    StoreFile& store = *h.file->store;
    Transaction txn(store);
    if (a.locking())
        if (const Status s = txn.begin(); s != StatusOk)
            return s;
    if (const Status s = seek(found); s != StatusOk)
        return s == StatusEndOfFile ? notFound : s;
    if (a.locking())
        if (const Status s = checkLockConflict(store, h, found.recno); s != StatusOk)
            return s;
    if (bufferRefused(store, a, found))
        return StatusBufferTooShort;
    if (a.locking()) {
        if (const Status s = grantLock(store, h, a, found.recno); s != StatusOk)
            return s;
        if (const Status s = txn.commit(); s != StatusOk)
            return s;
        noteLock(h, a, found.recno);
    }
    delivered = true;
    return deliver(h, a, found);
}

Status stepOne(Handle& h, const CallArgs& a, Seek how)
{
    if (const Status s = checkLockKind(h, a); s != StatusOk)
        return s;
    int64_t from = h.physicalRecno;
    if (h.physicalBefore)
        from = how == Seek::Next ? 0 : std::numeric_limits<int64_t>::max();
    FoundRecord found;
    StoreFile& store = *h.file->store;
    bool delivered = false;
    const Status s = readOne(
        h, a, StatusEndOfFile, [&](FoundRecord& f) { return store.seekPhysical(how, from, f); }, found, delivered);
    if (delivered)
        h.logical = Logical::None;
    return s;
}

}  // namespace

Status get(Handle& h, const CallArgs& a)
{
    StoreFile& store = *h.file->store;
    const FileSpec& spec = store.spec();
    const Seek how = seekFor(a.op);
    if (spec.keys.empty()) {
        if (a.keyNumber != 0 || keyedSearch(how))
            return StatusBadKeyNumber;
        return stepOne(h, a, how);
    }
    if (a.keyNumber < 0 || size_t(a.keyNumber) >= spec.keys.size())
        return StatusBadKeyNumber;
    if (!a.key)
        return StatusKeyBufferNull;
    if (const Status s = checkLockKind(h, a); s != StatusOk)
        return s;
    const int k = a.keyNumber;
    const KeySpec& key = spec.keys[size_t(k)];
    if (how == Seek::Next || how == Seek::Previous) {
        if (h.logical == Logical::None)
            return StatusNoCurrency;
        if (h.logical == Logical::Broken || h.logicalKey != k)
            return StatusDifferentKeyNumber;
    }
    const std::string* value = &h.logicalValue;
    if (keyedSearch(how)) {
        KeyCodec::encode(key, a.keyBytes(), h.search);
        value = &h.search;
    }
    FoundRecord found;
    const Status notFound = how == Seek::Equal ? StatusKeyNotFound : StatusEndOfFile;
    bool delivered = false;
    const Status s = readOne(
        h, a, notFound, [&](FoundRecord& f) { return store.seekKey(k, how, *value, h.logicalSeq, f); }, found,
        delivered);
    if (!delivered)
        return s;
    // Success or partial read: the key buffer gets the record's key value; currency moves to it.
    h.keyValue.resize(key.width);
    KeyCodec::extractValue(key, reinterpret_cast<const uint8_t*>(found.data->data()), h.keyValue.data());
    std::memcpy(a.key, h.keyValue.data(), key.width);
    h.logical = Logical::On;
    h.logicalKey = k;
    h.logicalValue = *found.keyValue;
    h.logicalSeq = found.seq;
    return s;
}

Status step(Handle& h, const CallArgs& a) { return stepOne(h, a, seekFor(a.op)); }

Status unlock(Handle& h, const CallArgs& a)
{
    StoreFile& store = *h.file->store;
    if (a.keyNumber >= 0) {
        if (!h.hasSingle)
            return StatusLockError;
        Transaction txn(store);
        Status s = txn.begin();
        if (s == StatusOk)
            s = store.removeLock(h.singleLock, h.owner);
        if (s == StatusOk)
            s = txn.commit();
        if (s == StatusOk)
            h.hasSingle = false;
        return s;
    }
    if (a.keyNumber != UnlockAllMultiple)
        return StatusBadUnlock;
    if (h.multipleLocks.empty())
        return StatusLockError;
    Transaction txn(store);
    Status s = txn.begin();
    for (auto it = h.multipleLocks.begin(); s == StatusOk && it != h.multipleLocks.end(); ++it)
        s = store.removeLock(*it, h.owner);
    if (s == StatusOk)
        s = txn.commit();
    if (s == StatusOk)
        h.multipleLocks.clear();
    return s;
}

Status release(Handle& h)
{
    StoreFile& store = *h.file->store;
    if (!h.file->writable)
        return StatusOk;
    return store.releaseHandle(h.owner);
}

}  // namespace recman::ops
