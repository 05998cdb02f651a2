// Get, Step and Unlock, and the release of a closing handle.
#include "recman/KeyCodec.h"
#include "recman/OpSupport.h"
#include "recman/RecordOps.h"

#include <algorithm>
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

constexpr size_t FirstWindow = 4;
constexpr size_t LargestWindow = 128;

// What a non-locking Next or Previous finds, from the handle's read-ahead window while the file is
// unchanged since the window was read and the seek starts where the window stands; otherwise a
// new window is read, twice the last one when the handle went on reading it. A store that cannot
// tell whether the file changed is asked every time.
Status windowSeek(Handle& h, bool physical, int k, Seek how, const std::string& value, int64_t seq, int64_t recno,
                  FoundRecord& out)
{
    StoreFile& store = *h.file->store;
    ReadWindow& w = h.window;
    ChangeMark mark;
    if (!store.changeMark(mark)) {
        w.valid = false;
        return physical ? store.seekPhysical(how, recno, out) : store.seekKey(k, how, value, seq, out);
    }
    const bool there = w.valid && w.physical == physical && w.how == how &&
                       (physical ? w.recno == recno : (w.key == k && w.seq == seq && w.value == value));
    const bool here = there && w.mark == mark;
    const bool usedUp = there && w.next == w.entries.size();
    if (!here || (usedUp && !w.atEnd)) {
        // A window read to its end is followed by a larger one, even when the file changed after
        // it was read; one that a change cut short starts small again.
        const size_t size = usedUp ? std::clamp(w.entries.size() * 2, FirstWindow, LargestWindow) : FirstWindow;
        w.valid = false;
        const Status s = physical ? store.seekPhysicalRun(how, recno, size, w.entries)
                                  : store.seekKeyRun(k, how, value, seq, size, w.entries);
        if (s != StatusOk)
            return s;
        w.valid = true;
        w.physical = physical;
        w.atEnd = w.entries.size() < size;
        w.key = k;
        w.how = how;
        w.mark = mark;
        w.value = value;
        w.seq = seq;
        w.recno = recno;
        w.next = 0;
    }
    if (w.next == w.entries.size())
        return StatusEndOfFile;
    const RecordCopy& e = w.entries[w.next];
    out = FoundRecord{e.recno, e.version, e.seq, &e.data, physical ? nullptr : &e.keyValue};
    return StatusOk;
}

// The window's record was delivered: the window goes on from it.
void windowDelivered(Handle& h)
{
    ReadWindow& w = h.window;
    const RecordCopy& e = w.entries[w.next++];
    w.value = e.keyValue;
    w.seq = e.seq;
    w.recno = e.recno;
}

bool scanning(Seek how, const CallArgs& a) { return (how == Seek::Next || how == Seek::Previous) && !a.locking(); }

// Runs a seek, for a locking read with the lock check and grant in the same store call. On
// success (or a partial read) the record is delivered; `found` stays valid for the caller.
template <typename SeekFn>
Status readOne(Handle& h, const CallArgs& a, Status notFound, SeekFn seek, FoundRecord& found, bool& delivered)
{
    delivered = false;
    StoreFile& store = *h.file->store;
    if (a.locking()) {
        // Every record is at least the fixed part long, so a buffer below it is refused whatever is found.
        const LockAsk ask{h.owner, !a.multipleLock() && h.hasSingle ? h.singleLock : 0,
                          a.dataSize() < store.spec().recordLength};
        const Status s = store.readLocking(seek, ask, found);
        if (s != StatusOk)
            return s == StatusEndOfFile ? notFound : s;
        noteLock(h, a, found.recno);
    } else {
        if (const Status s = seek(found); s != StatusOk)
            return s == StatusEndOfFile ? notFound : s;
        if (bufferRefused(store, a, found))
            return StatusBufferTooShort;
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
    const bool windowed = scanning(how, a);
    const Status s = readOne(
        h, a, StatusEndOfFile,
        [&](FoundRecord& f) {
            return windowed ? windowSeek(h, true, 0, how, h.search, 0, from, f) : store.seekPhysical(how, from, f);
        },
        found, delivered);
    if (delivered) {
        h.logical = Logical::None;
        if (windowed && h.window.valid)
            windowDelivered(h);
    }
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
    const bool windowed = scanning(how, a);
    const Status s = readOne(
        h, a, notFound,
        [&](FoundRecord& f) {
            return windowed ? windowSeek(h, false, k, how, *value, h.logicalSeq, 0, f)
                            : store.seekKey(k, how, *value, h.logicalSeq, f);
        },
        found, delivered);
    if (!delivered)
        return s;
    if (windowed && h.window.valid)
        windowDelivered(h);
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
        const Status s = store.unlockAll(h.owner, {h.singleLock});
        if (s == StatusOk)
            h.hasSingle = false;
        return s;
    }
    if (a.keyNumber != UnlockAllMultiple)
        return StatusBadUnlock;
    if (h.multipleLocks.empty())
        return StatusLockError;
    const Status s = store.unlockAll(h.owner, std::vector<int64_t>(h.multipleLocks.begin(), h.multipleLocks.end()));
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
