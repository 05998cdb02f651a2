// The keyed writes of the labor code files: each first searches the record's own key with the
// class's duplicate search. An add refuses a key that is there, an update or delete one that is
// not, leaving the class's trace text.
#pragma once

#include "core/Messages.h"
#include "detail/REKeyedRecordFile.h"

enum class REKeyedWriteOp { kAdd, kUpdate, kDelete };

template <class File>
int REKeyedWrite(File& file, REKeyedWriteOp op, const typename File::Record& rec, const char* trace) {
    const bool found = file._FindDuplicateRecord(rec) != 0;
    if (found == (op == REKeyedWriteOp::kAdd)) {
        RETrace("%s", trace);
        return 0;
    }
    switch (op) {
    case REKeyedWriteOp::kAdd:
        return file._WriteStatus(REBtrieveBase::kOpInsert, rec) == REBtrieveBase::kStatusSuccess ? 1 : 0;
    case REKeyedWriteOp::kUpdate:
        return file._UpdateCurrent(&rec);
    case REKeyedWriteOp::kDelete:
        return file._DeleteCurrent();
    }
    return 0;
}
