// The production piece mark as a field of a field table: converted toward the current layout,
// never written toward the old one.
#pragma once

#include "REPdcMarkText.h"
#include "core/RecordFieldTable.h"

inline int REMarkToNew(const void* oldMark, void* newMark) {
    return gConvertMarkTypeToNewFormat(static_cast<OLD_MARKTYPE*>(const_cast<void*>(oldMark)), static_cast<char*>(newMark));
}

// A mark field of both layouts; `oldField` names it in the old record.
#define RE_MARK(field, oldField) RE_CUSTOM(field, oldField, kText, &REMarkToNew, nullptr)
