// Open, the converting record-manager call, reads and writes of the record-file machinery.
#include "detail/RERecordFile.h"

#include "REErrorMessages.h"
#include "core/Messages.h"
#include "core/RecordFileSpec.h"

#include <algorithm>
#include <cstring>

namespace {

void CopyPath(char* field, size_t size, const char* path) {
    std::memset(field, 0, size);
    if (path != nullptr)
        std::strncpy(field, path, size - 1);
}

}  // namespace

RERecordFileEngine::RERecordFileEngine(const RERecordFileSpec& spec)
    : m_isOldFormat(0),
      m_searchActive(0),
      m_fileOpen(0),
      m_spec(&spec),
      m_scratch(std::max(spec.newSize, spec.oldSize)) {
    std::memset(m_filePath, 0, sizeof m_filePath);
}

RERecordFileEngine::~RERecordFileEngine() {
    if (IsOpen())
        Close();
}

int RERecordFileEngine::Close() {
    const int closed = REBtrieveBase::Close();
    if (closed)
        m_fileOpen = 0;
    return closed;
}

void* RERecordFileEngine::_Scratch() { return m_scratch.data(); }

int RERecordFileEngine::Initialize(const char* path) {
    if (path == nullptr)
        return 0;
    if (m_spec->ownPath)
        CopyPath(m_filePath, sizeof m_filePath, path);
    if (IsOpen()) {
        Close();
        m_fileOpen = 0;
        if (m_spec->initializeOnOpenCloses)
            return 0;
    }
    return _FileOpen(m_spec->ownPath ? m_filePath : path);
}

int RERecordFileEngine::_FileOpen(const char* path) {
    if (IsOpen())
        return 1;
    if (!Open(path))
        return 0;
    m_fileOpen = 1;
    STAT_BUFFER stat{};
    GetStatus(&stat);
    const uint32_t length = static_cast<uint32_t>(stat.recordLength);
    if (stat.recordLength > 0 && length == m_spec->StatLength()) {
        m_isOldFormat = 0;
    } else if (stat.recordLength > 0 && m_spec->HasOldLayout() && length == m_spec->oldSize) {
        m_isOldFormat = 1;
    } else {
        ShowErrorMessage(m_spec->corruptCode);
        // The record manager keeps the handle; only the object forgets it (or not).
        if (!m_spec->keepOpenOnCorrupt) {
            m_isOpen = 0;
            m_fileOpen = 0;
        }
        return 0;
    }
    SetDataBufLen(static_cast<int>(m_isOldFormat ? m_spec->oldSize : m_spec->newSize));
    return 1;
}

int16_t RERecordFileEngine::_CallStatus(unsigned op, void* rec) {
    if (rec == nullptr)
        return kStatusInvalidOperation;
    if (!m_isOldFormat || m_spec->toNew == nullptr)
        return Btrieve(static_cast<uint16_t>(op), rec);
    const int16_t status = Btrieve(static_cast<uint16_t>(op), _Scratch());
    if (status == kStatusSuccess)
        m_spec->toNew(_Scratch(), rec);
    return status;
}

int RERecordFileEngine::_CallBtrieve(unsigned op, void* rec) {
    if (rec == nullptr)
        return 0;
    return _Judge(op, _CallStatus(op, rec));
}

int RERecordFileEngine::_Judge(unsigned op, int16_t status) const {
    if (status == kStatusSuccess)
        return 1;
    if (REStatusIsReported(op, status, m_spec->reportGetEqualMiss))
        ShowErrorMessage(m_spec->unknownErrorCode, status);
    return 0;
}

int RERecordFileEngine::_GetPositional(Position position, void* rec) {
    const REPositionalRead* reads[] = {&m_spec->first, &m_spec->last, &m_spec->next, &m_spec->previous};
    const REPositionalRead& read = *reads[position];
    if (read.keyNumber != REPositionalRead::kCurrentKey)
        SetKeyNumber(read.keyNumber);
    return _CallBtrieve(read.op, rec);
}

int RERecordFileEngine::_GetHighestRecord(void* rec) { return _CallBtrieve(kOpGetLast, rec); }

int RERecordFileEngine::_GetEqualMatch(const char* key, void* rec) {
    if (key == nullptr)
        return 0;
    SetKeyNumber(0);
    const size_t length = std::min<size_t>(std::strlen(key), kKeyBufferSize);
    SetKeyBuffer(const_cast<char*>(key), static_cast<int>(length));
    std::vector<uint8_t> found(m_spec->newSize);
    if (!_CallBtrieve(kOpGetEqual, found.data()))
        return 0;
    if (rec != nullptr)
        std::memcpy(rec, found.data(), found.size());
    return 1;
}

int16_t RERecordFileEngine::_WriteStatus(uint16_t op, const void* rec, bool convert) {
    if (rec == nullptr)
        return kStatusInvalidOperation;
    void* buffer = const_cast<void*>(rec);  // the record manager reads a written record only
    if (convert && m_isOldFormat && m_spec->toOld != nullptr && !m_spec->writeUnconverted) {
        m_spec->toOld(rec, _Scratch());
        buffer = _Scratch();
    }
    return Btrieve(op, buffer);
}

int RERecordFileEngine::_Write(uint16_t op, const void* rec) {
    return rec != nullptr ? _Judge(op, _WriteStatus(op, rec)) : 0;
}

int RERecordFileEngine::_AddRecord(const void* rec) {
    if (rec == nullptr)
        return 0;
    if (_FindDuplicate(rec)) {
        if (m_spec->duplicateTrace != nullptr)
            RETrace("<<%s::AddRecord>> %s", m_spec->className, m_spec->duplicateTrace);
        return 0;
    }
    return _Write(kOpInsert, rec);
}

int RERecordFileEngine::_AddNewRecord(const void* rec) { return _Write(kOpInsert, rec); }

int RERecordFileEngine::_UpdateCurrent(const void* rec) { return _Write(kOpUpdate, rec); }

int RERecordFileEngine::_DeleteCurrent() { return _Judge(kOpDelete, Btrieve(kOpDelete, _Scratch())); }

int RERecordFileEngine::DeleteAllRecords() {
    std::vector<uint8_t> rec(m_spec->newSize);
    if (!_GetPositional(kFirst, rec.data()))
        return 1;
    do {
        if (!_DeleteCurrent())
            return 0;
    } while (_GetPositional(kNext, rec.data()));
    return 1;
}

int RERecordFileEngine::_Reset() {
    if (IsOpen())
        Close();
    if (m_spec->ownPath) {
        m_fileOpen = 0;
        std::memset(m_filePath, 0, sizeof m_filePath);
    }
    return 1;
}

int RERecordFileEngine::GetBtrieveFileName(std::string& name) const {
    name = m_spec->ownPath ? m_filePath : GetFileName();
    return 1;
}

int RERecordFileEngine::_FindDuplicate(const void*) { return 0; }
void RERecordFileEngine::_BeginCopy(int) {}
bool RERecordFileEngine::_AdjustCopiedRecord(void*) { return false; }
