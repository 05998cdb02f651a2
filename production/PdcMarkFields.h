// Fields of the production records as entries of a field table: the piece mark, converted
// toward the current layout and never written toward the old one, and the old single-precision
// numbers kept in sortable form.
#pragma once

#include "REPdcMarkText.h"
#include "SrtStr2Float.h"
#include "core/RecordFieldTable.h"

#include <cstring>

inline int REMarkToNew(const void* oldMark, void* newMark) {
    return gConvertMarkTypeToNewFormat(static_cast<OLD_MARKTYPE*>(const_cast<void*>(oldMark)), static_cast<char*>(newMark));
}

// A 4-byte number stored in sortable form, decoded into an ordinary float.
inline int RESortableFloatToNew(const void* oldValue, void* newValue) {
    float value;
    std::memcpy(&value, oldValue, sizeof value);
    SrtStr2Float(&value);
    std::memcpy(newValue, &value, sizeof value);
    return 1;
}

// A mark field of both layouts; `oldField` names it in the old record.
#define RE_MARK(field, oldField) RE_CUSTOM(field, oldField, kText, &REMarkToNew, nullptr)
// An array of sortable old numbers, decoded element by element.
#define RE_SORTABLE_FLOAT(field) RE_CUSTOM_EACH(field, field, kReal, &RESortableFloatToNew, nullptr)
