// Insert, Update and Delete.
#include "recman/ByteOrder.h"
#include "recman/KeyCodec.h"
#include "recman/OpSupport.h"
#include "recman/RecordOps.h"

#include <cstring>

namespace recman::ops {

namespace {

int64_t readAuto(const uint8_t* record, const SegmentSpec& f)
{
    const uint64_t raw = loadLEN(record + f.offset(), f.length);
    return f.length == 2 ? int64_t(int16_t(raw)) : int64_t(int32_t(raw));
}

// Fills the autoincrement fields of h.scratch: a 0 receives 1 + the highest value in the file;
// a value another record holds answers StatusDuplicateKey (`oldRecord`: that value is this one's).
Status assignAutoValues(Handle& h, const uint8_t* oldRecord)
{
    StoreFile& store = *h.file->store;
    const auto& fields = store.autoFields();
    auto* rec = reinterpret_cast<uint8_t*>(h.scratch.data());
    h.write.autoValues.resize(fields.size());
    for (size_t j = 0; j < fields.size(); ++j) {
        const SegmentSpec& f = *fields[j];
        int64_t v = readAuto(rec, f);
        if (v == 0) {
            int64_t highest = 0;
            if (const Status s = store.highestAutoValue(j, highest); s != StatusOk)
                return s;
            storeLEN(rec + f.offset(), uint64_t(highest > 0 ? highest + 1 : 1), f.length);
            v = readAuto(rec, f);
        } else if (!oldRecord || readAuto(oldRecord, f) != v) {
            bool exists = false;
            if (const Status s = store.autoValueExists(j, v, exists); s != StatusOk)
                return s;
            if (exists)
                return StatusDuplicateKey;
        }
        h.write.autoValues[j] = v;
    }
    return StatusOk;
}

void encodeKeys(Handle& h, const FileSpec& spec)
{
    const auto* rec = reinterpret_cast<const uint8_t*>(h.scratch.data());
    h.write.keys.resize(spec.keys.size());
    h.write.keyValueChanged.assign(spec.keys.size(), true);
    for (size_t i = 0; i < spec.keys.size(); ++i) {
        const KeySpec& key = spec.keys[i];
        h.keyValue.resize(key.width);
        KeyCodec::extractValue(key, rec, h.keyValue.data());
        KeyEntry& e = h.write.keys[i];
        e.present = !KeyCodec::isNull(key, h.keyValue.data());
        if (e.present)
            KeyCodec::encode(key, h.keyValue.data(), e.value);
        else
            e.value.clear();
    }
}

// Copies back what the engine wrote into the record (autoincrement values) and the key-k value.
void returnKeyAndAutoValues(Handle& h, const CallArgs& a, const FileSpec& spec)
{
    const auto* rec = reinterpret_cast<const uint8_t*>(h.scratch.data());
    for (const SegmentSpec* f : h.file->store->autoFields())
        std::memcpy(a.dataBytes() + f->offset(), rec + f->offset(), f->length);
    if (spec.keys.empty())
        return;
    const KeySpec& key = spec.keys[size_t(a.keyNumber)];
    h.keyValue.resize(key.width);
    KeyCodec::extractValue(key, rec, h.keyValue.data());
    std::memcpy(a.key, h.keyValue.data(), key.width);
}

Status checkKeyArgs(const FileSpec& spec, const CallArgs& a, bool needKeyBuffer)
{
    if (spec.keys.empty())
        return StatusOk;
    if (a.keyNumber < 0 || size_t(a.keyNumber) >= spec.keys.size())
        return StatusBadKeyNumber;
    if (needKeyBuffer && !a.key)
        return StatusKeyBufferNull;
    return StatusOk;
}

// The checks Update and Delete ask of the store for the handle's current record.
WriteCheck checkOf(const Handle& h)
{
    return WriteCheck{h.currentRecno, h.currentVersion, h.owner, h.holdsLock(h.currentRecno),
                      h.hasSingle && h.singleLock == h.currentRecno};
}

}  // namespace

Status insert(Handle& h, const CallArgs& a)
{
    StoreFile& store = *h.file->store;
    const FileSpec& spec = store.spec();
    if (h.readOnly)
        return StatusAccessDenied;
    if (const Status s = checkKeyArgs(spec, a, true); s != StatusOk)
        return s;
    if (const Status s = checkWriteLength(spec, a); s != StatusOk)
        return s;
    int64_t recno = 0, version = 0, seq = 0;
    const Status s = store.insertWhole(
        h.write,
        [&](const FoundRecord*) {
            h.scratch.assign(reinterpret_cast<const char*>(a.data), a.dataSize());
            if (const Status st = assignAutoValues(h, nullptr); st != StatusOk)
                return st;
            encodeKeys(h, spec);
            h.write.data = reinterpret_cast<const uint8_t*>(h.scratch.data());
            h.write.length = uint32_t(h.scratch.size());
            return StatusOk;
        },
        recno, version, seq);
    if (s != StatusOk)
        return s;
    returnKeyAndAutoValues(h, a, spec);
    h.hasCurrent = true;
    h.currentRecno = recno;
    h.currentVersion = version;
    h.physicalBefore = false;
    h.physicalRecno = recno;
    h.logical = Logical::None;
    if (!spec.keys.empty() && h.write.keys[size_t(a.keyNumber)].present) {
        h.logical = Logical::On;
        h.logicalKey = a.keyNumber;
        h.logicalValue = h.write.keys[size_t(a.keyNumber)].value;
        h.logicalSeq = spec.keys[size_t(a.keyNumber)].duplicates ? seq : 0;
    }
    return StatusOk;
}

Status update(Handle& h, const CallArgs& a)
{
    StoreFile& store = *h.file->store;
    const FileSpec& spec = store.spec();
    if (h.readOnly)
        return StatusAccessDenied;
    if (const Status s = checkKeyArgs(spec, a, true); s != StatusOk)
        return s;
    if (!h.hasCurrent)
        return StatusNoCurrency;
    if (const Status s = checkWriteLength(spec, a); s != StatusOk)
        return s;
    const WriteCheck check = checkOf(h);
    int64_t version = 0, seq = 0;
    const Status s = store.updateChecked(
        check, h.write,
        [&](const FoundRecord* found) {
            h.oldRecord = *found->data;
            const auto* oldRec = reinterpret_cast<const uint8_t*>(h.oldRecord.data());
            h.scratch.assign(reinterpret_cast<const char*>(a.data), a.dataSize());
            // Autoincrement zeros are assigned first: the value they receive is the key's new value.
            const Status autoStatus = assignAutoValues(h, oldRec);
            if (autoStatus != StatusOk && autoStatus != StatusDuplicateKey)
                return autoStatus;
            encodeKeys(h, spec);
            for (size_t i = 0; i < spec.keys.size(); ++i) {
                const KeySpec& key = spec.keys[i];
                h.oldKey.resize(key.width);
                KeyCodec::extractValue(key, oldRec, h.oldKey.data());
                const bool oldPresent = !KeyCodec::isNull(key, h.oldKey.data());
                if (oldPresent)
                    KeyCodec::encode(key, h.oldKey.data(), h.oldValue);
                const KeyEntry& now = h.write.keys[i];
                const bool changed = oldPresent != now.present || (now.present && h.oldValue != now.value);
                h.write.keyValueChanged[i] = changed;
                if (changed && !key.modifiable)
                    return StatusKeyNotModifiable;
            }
            h.write.data = reinterpret_cast<const uint8_t*>(h.scratch.data());
            h.write.length = uint32_t(h.scratch.size());
            return autoStatus;
        },
        version, seq);
    if (s != StatusOk)
        return s;
    returnKeyAndAutoValues(h, a, spec);
    h.currentVersion = version;
    if (check.dropLock)
        h.hasSingle = false;
    if (h.logical != Logical::None && !spec.keys.empty()) {
        const size_t k = size_t(a.keyNumber);
        if (h.logical == Logical::On && h.logicalKey == a.keyNumber) {
            if (!h.write.keys[k].present) {
                h.logical = Logical::None;
            } else if (h.write.keyValueChanged[k]) {
                h.logicalValue = h.write.keys[k].value;
                h.logicalSeq = spec.keys[k].duplicates ? seq : 0;
            }
        } else {
            h.logical = Logical::Broken;
        }
    }
    return StatusOk;
}

Status remove(Handle& h, const CallArgs& a)
{
    StoreFile& store = *h.file->store;
    const FileSpec& spec = store.spec();
    if (h.readOnly)
        return StatusAccessDenied;
    if (const Status s = checkKeyArgs(spec, a, false); s != StatusOk)
        return s;
    if (!h.hasCurrent)
        return StatusNoCurrency;
    if (const Status s = store.deleteChecked(checkOf(h)); s != StatusOk)
        return s;
    const int64_t recno = h.currentRecno;
    if (h.hasSingle && h.singleLock == recno)
        h.hasSingle = false;
    h.multipleLocks.erase(recno);
    h.hasCurrent = false;
    h.physicalBefore = false;
    h.physicalRecno = recno;
    if (h.logical == Logical::On && h.logicalKey != a.keyNumber)
        h.logical = Logical::Broken;
    return StatusOk;
}

}  // namespace recman::ops
