// Field table of a job item's labor operation entry.
#pragma once

#include "OPERATIONTYPE.h"
#include "core/RecordFieldTable.h"

struct OperationTypeFields {
    using Record = OPERATIONTYPE;
    using OldRecord = OLD_OPERATIONTYPE;
    static constexpr REField kFields[] = {
        RE_TEXT(sCode1), RE_NUMBER(nValue5, kInteger), RE_NUMBER(nValue7, kInteger),
        RE_TEXT(sCode2), RE_TEXT(sCode3),              RE_NUMBER(nValue21, kInteger),
    };
    static constexpr REFieldTable kFieldTable = {kFields, sizeof(Record), sizeof(OldRecord)};
};
static_assert(REFieldsFit(OperationTypeFields::kFields, sizeof(OPERATIONTYPE), sizeof(OLD_OPERATIONTYPE)));
