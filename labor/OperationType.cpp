// Conversions of a job item's labor operation entry, by its field table.
#include "OPERATIONTYPE.h"

#include "labor/OperationTypeFields.h"

int gConvertOperationTypeToNewFormat(const OLD_OPERATIONTYPE* oldRec, OPERATIONTYPE* newRec) {
    return REConvertToNew(OperationTypeFields::kFieldTable, oldRec, newRec);
}

int gConvertOperationTypeToOldFormat(const OPERATIONTYPE* newRec, OLD_OPERATIONTYPE* oldRec) {
    return REConvertToOld(OperationTypeFields::kFieldTable, newRec, oldRec);
}
