// The purchasing work file: its specification on the work-file shape.
#include "REPurchCalcFile.h"
#include "purchasing/PurchCalcTraits.h"

const RERecordFileSpec REPurchCalcFile::kSpec = REMakeSpec<PurchCalcTraits, REPurchCalcFile>();

REPurchCalcFile::REPurchCalcFile() : REWorkFile(kSpec) {}
