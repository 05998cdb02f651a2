// The production data-collection files over the record-file machinery: the operations several
// of them share, written once. A file class derives from REPdcFile; the batch input files, keyed
// by a batch number in `nBatchNo`, from REPdcBatchFile (one record per batch) or
// REPdcBatchLineFile (any number of lines per batch).
//
// Their old layouts are read, never written in their own form: the class's own inserts and
// updates pass the caller's record as it is, in either layout.
#pragma once

#include "detail/RERecordFile.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

template <class Derived, class Layout>
class REPdcFile : public RERecordFile<Derived, Layout> {
    using Base = RERecordFile<Derived, Layout>;

public:
    using typename Base::Record;

    // Inserts the record as given; 1 on status 0.
    int AddRecord(Record& rec) { return _WriteAsGiven(REBtrieveBase::kOpInsert, rec); }

protected:
    using Base::Base;

    // Insert or Update with the caller's record, without old-layout conversion.
    int _WriteAsGiven(uint16_t op, const Record& rec) {
        return this->_Judge(op, this->_WriteStatus(op, &rec, false));
    }

    // A read by key: key `keyNumber`, key value the first `length` bytes of `key`, operation
    // `op` through the converting call. The record found is copied to `out` when one is given.
    int _ReadByKey(unsigned op, int keyNumber, const void* key, int length, Record* out) {
        this->SetKeyNumber(keyNumber);
        this->SetKeyBuffer(key, length);
        Record found;
        if (!this->_CallBtrieve(op, &found))
            return 0;
        if (out != nullptr)
            std::memcpy(out, &found, sizeof found);
        return 1;
    }
    // The same with a text key value, zero-padded to `width` bytes.
    int _ReadByText(unsigned op, int keyNumber, const std::string& text, size_t width, Record* out) {
        char key[REBtrieveBase::kKeyBufferSize] = {};
        width = std::min(width, sizeof key);
        std::memcpy(key, text.data(), std::min(text.size(), width));
        return _ReadByKey(op, keyNumber, key, static_cast<int>(width), out);
    }

    // A heap copy of a record for a list the caller owns.
    static Record* _HeapCopy(const Record& rec) {
        Record* copy = static_cast<Record*>(std::malloc(sizeof(Record)));
        std::memcpy(copy, &rec, sizeof rec);
        return copy;
    }
};

template <class Derived, class Layout>
class REPdcBatchFile : public REPdcFile<Derived, Layout> {
    using Base = REPdcFile<Derived, Layout>;

public:
    using typename Base::Record;

    // The first record of the batch, on key 0; 1 if found.
    int GetExactMatch(int batchNumber, Record* out) {
        const int32_t key = batchNumber;
        return this->_ReadByKey(REBtrieveBase::kOpGetEqual, 0, &key, sizeof key, out);
    }
    // Deletes the first record of the record's batch.
    int DeleteRecord(Record& rec) { return GetExactMatch(rec.nBatchNo, nullptr) && this->_DeleteCurrent(); }
    // Replaces the first record of `oldRec`'s batch by `newRec`.
    int UpdateRecord(Record& oldRec, Record& newRec) {
        return GetExactMatch(oldRec.nBatchNo, nullptr) && this->_WriteAsGiven(REBtrieveBase::kOpUpdate, newRec);
    }

protected:
    using Base::Base;
};

template <class Derived, class Layout>
class REPdcBatchLineFile : public REPdcBatchFile<Derived, Layout> {
    using Base = REPdcBatchFile<Derived, Layout>;

public:
    using typename Base::Record;
    using Base::GetAllRecords;
    using RERecordFileEngine::DeleteAllRecords;

    // Appends a heap copy of every line of the batch, walking the whole file on key 0; the array
    // is not cleared first. 1, also when nothing matched.
    int GetAllRecords(const int& batchNumber, std::vector<Record*>& array) {
        Record rec;
        this->SetKeyNumber(0);
        for (int more = this->GetFirstRecord(&rec); more; more = this->GetNextRecord(&rec)) {
            if (rec.nBatchNo == batchNumber)
                array.push_back(this->_HeapCopy(rec));
        }
        return 1;
    }
    // Deletes every line of the batch; 0 when a delete fails.
    int DeleteAllRecords(const int& batchNumber) {
        Record rec;
        this->SetKeyNumber(0);
        for (int more = this->GetFirstRecord(&rec); more; more = this->GetNextRecord(&rec)) {
            if (rec.nBatchNo == batchNumber && !this->_DeleteCurrent())
                return 0;
        }
        return 1;
    }

protected:
    using Base::Base;
};
