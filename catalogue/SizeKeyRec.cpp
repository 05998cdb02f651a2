// Conversions of the size key between its stored and its current form, by its field table.
#include "SIZEDATKEYREC.h"

#include "catalogue/SizeKeyFields.h"

int gConvertSizeKeyRecToNewFormat(const OLD_SIZEDATKEYREC* oldKey, SIZEDATKEYREC* newKey) {
    return REConvertToNew(SizeKeyFields::kFieldTable, oldKey, newKey);
}

int gConvertSizeKeyRecToOldFormat(const SIZEDATKEYREC* newKey, OLD_SIZEDATKEYREC* oldKey) {
    return REConvertToOld(SizeKeyFields::kFieldTable, newKey, oldKey);
}
