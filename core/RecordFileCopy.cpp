// Whole-file operations of the record-file machinery: create, copy and append.
#include "detail/RERecordFile.h"

#include "REErrorMessages.h"
#include "core/Messages.h"
#include "core/RecordFileSpec.h"

#include <algorithm>
#include <climits>
#include <cstring>

namespace {

// AppendFile without `all` copies at most this many records.
constexpr int kAppendLimit = 20;

}  // namespace

int RERecordFileEngine::CreateNewFile(const char* path) {
    const size_t pathLength = path != nullptr ? std::strlen(path) : 0;
    if (pathLength == 0 || pathLength > static_cast<size_t>(kMaxPathLength)) {
        ShowErrorMessage(m_spec->createCode, kStatusInvalidFileName);
        return 0;
    }
    std::vector<uint8_t> block = REEncodeCreateBlock(m_spec->create);
    uint32_t dataLength = static_cast<uint32_t>(block.size());
    int16_t status;
    if (m_spec->createOnSelf) {
        SetKeyBuffer(const_cast<char*>(path), static_cast<int>(pathLength + 1));
        SetKeyNumber(0);
        status = Btrieve(kOpCreate, m_posBlock, block.data(), &dataLength, m_keyBuffer,
                         static_cast<uint8_t>(m_keyLength), 0);
    } else {
        REBtrieveBase target;
        target.SetKeyBuffer(const_cast<char*>(path), static_cast<int>(pathLength));
        target.SetKeyNumber(0);
        target.SetDataBufLen(static_cast<int>(dataLength));
        status = target.Btrieve(kOpCreate, block.data());
    }
    if (status != kStatusSuccess) {
        ShowErrorMessage(m_spec->createCode, status);
        return 0;
    }
    return 1;
}

int RERecordFileEngine::_CopyFileFrom(RERecordFileEngine* src) {
    if (src == nullptr)
        return 0;
    DeleteAllRecords();
    std::vector<uint8_t> rec(std::max(m_spec->newSize, m_spec->oldSize));
    src->SetKeyNumber(0);
    if (src->Btrieve(kOpStepFirst, rec.data()) != kStatusSuccess)
        return 0;
    do {
        if (Btrieve(kOpInsert, rec.data()) != kStatusSuccess)
            return 0;
    } while (src->Btrieve(kOpStepNext, rec.data()) == kStatusSuccess);
    return 1;
}

int RERecordFileEngine::_CopyRecords(REBtrieveBase& src, int srcIsOld, int maxCount) {
    // Each read transfers one record of the source's layout: a source whose data-buffer length
    // is shorter (a freshly opened REBtrieveBase has 0) is given that length. A caller may have
    // set more than either layout; the buffer takes whichever is larger.
    const int srcRecordSize = static_cast<int>(srcIsOld && m_spec->HasOldLayout() ? m_spec->oldSize : m_spec->newSize);
    if (src.m_dataBufLen < srcRecordSize)
        src.SetDataBufLen(srcRecordSize);
    const size_t recordSize = std::max(m_spec->newSize, m_spec->oldSize);
    std::vector<uint8_t> read(std::max(recordSize, static_cast<size_t>(std::max(src.m_dataBufLen, 0))));
    std::vector<uint8_t> converted(recordSize);
    src.SetKeyNumber(0);
    if (src.Btrieve(kOpStepFirst, read.data()) != kStatusSuccess)
        return 0;
    _BeginCopy(srcIsOld);
    int copied = 0;
    int16_t status = kStatusSuccess;
    while (status == kStatusSuccess && copied < maxCount) {
        Btrieve(kOpInsert, _CopiedRecord(read.data(), srcIsOld, converted.data()));  // a refused record is skipped
        ++copied;
        status = src.Btrieve(kOpStepNext, read.data());
    }
    RETrace("%s::_CopyRecords: No of Records copied = %d\n", m_spec->className, copied);
    return 1;
}

// Brings one record read from a source (old layout when `srcIsOld`) into this file's layout,
// letting the class adjust it in the current layout on the way. Records of the target's layout
// pass as read unless the class changes them.
void* RERecordFileEngine::_CopiedRecord(void* read, int srcIsOld, void* converted) {
    const bool convertible = m_spec->toNew != nullptr && m_spec->toOld != nullptr;
    if (!srcIsOld) {
        _AdjustCopiedRecord(read);
        if (!m_isOldFormat || m_spec->toOld == nullptr)
            return read;
        m_spec->toOld(read, converted);
        return converted;
    }
    if (m_spec->toNew == nullptr)
        return read;
    m_spec->toNew(read, converted);
    const bool adjusted = _AdjustCopiedRecord(converted);
    if (!m_isOldFormat)
        return converted;
    if (adjusted && convertible) {
        m_spec->toOld(converted, read);
    }
    return read;
}

int RERecordFileEngine::AppendFile(const char* path, int all) {
    REBtrieveBase source;
    if (path == nullptr || !source.Open(path)) {
        RETrace("<<%s::AppendFile>> Error in file %s", m_spec->className, path != nullptr ? path : "");
        return 0;
    }
    STAT_BUFFER stat{};
    source.GetStatus(&stat);
    const uint32_t length = static_cast<uint32_t>(stat.recordLength);
    int sourceIsOld;
    if (stat.recordLength > 0 && length == m_spec->StatLength()) {
        sourceIsOld = 0;
    } else if (stat.recordLength > 0 && m_spec->HasOldLayout() && length == m_spec->oldSize) {
        sourceIsOld = 1;
    } else {
        ShowErrorMessage(m_spec->corruptCode);
        return 0;
    }
    source.SetDataBufLen(static_cast<int>(sourceIsOld ? m_spec->oldSize : m_spec->newSize));
    _CopyRecords(source, sourceIsOld, all ? INT_MAX : kAppendLimit);
    source.Close();
    return 1;
}
