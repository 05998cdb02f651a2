// Work files: fixed records written by one run and read back whole, with no old layout. Their
// single reads show no message (a failed read ends the walk), they are emptied by a physical
// walk, and the caller frees the lists GetAllRecords hands out with ResetCalcRecArray.
#pragma once

#include "RERecordFile.h"
#include "RERecordFileOps.h"

#include <cstring>
#include <list>
#include <vector>

template <class Derived, class REC>
class REWorkFile : public RERecordFile<Derived, REC> {
    using Base = RERecordFile<Derived, REC>;

public:
    using Base::AddRecord;
    // Insert; 1 when the record manager accepts it.
    int AddRecord(REC* rec) { return rec != nullptr ? Base::AddRecord(*rec) : 0; }

    // Get First / Get Next on the current key; 1 for status 0, no message otherwise.
    int GetFirstRecord(REC* rec) { return this->_CallStatus(REBtrieveBase::kOpGetFirst, rec) == 0 ? 1 : 0; }
    int GetNextRecord(REC* rec) { return this->_CallStatus(REBtrieveBase::kOpGetNext, rec) == 0 ? 1 : 0; }

    // Deletes every record in physical order. The result is 1 when the last step answered the
    // class's `kDeleteAllDone` status: end of file for the files that report a completed walk,
    // success for those whose result is always 0 (the walk ends only on a failed step).
    int DeleteAllRecord() { return _StepDeleteAll() == Derived::kDeleteAllDone ? 1 : 0; }

    // Frees every record and empties the collection; 1.
    static int ResetCalcRecArray(std::vector<REC*>& array) { return Base::ResetRecArray(array); }
    static int ResetCalcRecArray(std::list<REC*>& list) { return Base::ResetRecList(list); }

protected:
    using Base::Base;

    // Step First, then Delete (its result is not looked at) and Step Next while the steps
    // succeed; the status of the last step.
    int16_t _StepDeleteAll() {
        std::vector<unsigned char> rec(sizeof(REC));
        this->SetKeyNumber(0);
        int16_t status = this->_CallStatus(REBtrieveBase::kOpStepFirst, rec.data());
        while (status == REBtrieveBase::kStatusSuccess) {
            this->_CallStatus(REBtrieveBase::kOpDelete, rec.data());
            status = this->_CallStatus(REBtrieveBase::kOpStepNext, rec.data());
        }
        return status;
    }

    // Initialize of the classes that keep their own path: a path with no file behind it closes
    // the object and gives 0 without a message; otherwise the usual open.
    int _InitializeExisting(const char* path) {
        if (path != nullptr && RELookUpRecordFile(path) != REPathState::Exists) {
            std::memset(this->m_filePath, 0, sizeof this->m_filePath);
            std::strncpy(this->m_filePath, path, sizeof this->m_filePath - 1);
            if (this->IsOpen())
                this->Close();
            this->m_fileOpen = 0;
            return 0;
        }
        return RERecordFileEngine::Initialize(path);
    }
};
