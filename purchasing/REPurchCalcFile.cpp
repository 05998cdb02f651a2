// The purchasing work file: its record-file settings on the work-file shape.
#include "REPurchCalcFile.h"
#include "purchasing/PurchCalcTraits.h"

const RERecordFileSpec REPurchCalcFile::kSpec = REMakeSpec<PurchCalcTraits, REPurchCalcFile>();

REPurchCalcFile::REPurchCalcFile() : REWorkFile(kSpec) {}
