// The batch labor file: the record-file pattern and the batch operations of its family.
#include "REPdcBatInpLaborDataFile.h"
#include "production/PdcBatInpLaborDataFileTraits.h"

const RERecordFileSpec REPdcBatInpLaborDataFile::kSpec =
    REMakeSpec<PdcBatInpLaborDataFileTraits, REPdcBatInpLaborDataFile>();

REPdcBatInpLaborDataFile::REPdcBatInpLaborDataFile() : REPdcBatchLineFile(kSpec) {}
