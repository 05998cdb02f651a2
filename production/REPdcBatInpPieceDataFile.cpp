// The batch piece file: the record-file pattern and the batch operations of its family.
#include "REPdcBatInpPieceDataFile.h"
#include "production/PdcBatInpPieceDataFileTraits.h"

const RERecordFileSpec REPdcBatInpPieceDataFile::kSpec =
    REMakeSpec<PdcBatInpPieceDataFileTraits, REPdcBatInpPieceDataFile>();

REPdcBatInpPieceDataFile::REPdcBatInpPieceDataFile() : REPdcBatchLineFile(kSpec) {}
