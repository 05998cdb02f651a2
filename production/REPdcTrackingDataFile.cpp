// The tracking file: the look-up by number on key 1 and the update through it.
#include "REPdcTrackingDataFile.h"
#include "production/PdcTrackingDataFileTraits.h"

#include <cstring>

namespace {

constexpr int kNumberKey = 1;
// The bytes of the caller's record put into the key buffer: the key 0 fields.
constexpr size_t kKeyBytes = offsetof(PDCTRACKFILETYPE, dDate47);
// The key value compared: the number at offset 0.
constexpr int kNumberKeyLength = sizeof(PDCTRACKFILETYPE::nValue0);

}  // namespace

const RERecordFileSpec REPdcTrackingDataFile::kSpec = REMakeSpec<PdcTrackingDataFileTraits, REPdcTrackingDataFile>();

REPdcTrackingDataFile::REPdcTrackingDataFile() : REPdcFile(kSpec) {}

int REPdcTrackingDataFile::GetEqualRecord(PDCTRACKFILETYPE* key, PDCTRACKFILETYPE* out) {
    if (key == nullptr || out == nullptr)
        return 0;
    SetKeyBuffer(key, kKeyBytes);
    m_keyLength = kNumberKeyLength;
    SetKeyNumber(kNumberKey);
    return _CallStatus(kOpGetEqual, out) == kStatusSuccess ? 1 : 0;
}

int REPdcTrackingDataFile::UpdateRecord(PDCTRACKFILETYPE* key, PDCTRACKFILETYPE* newRec) {
    PDCTRACKFILETYPE found;
    return newRec != nullptr && GetEqualRecord(key, &found) && _WriteAsGiven(kOpUpdate, *newRec);
}
