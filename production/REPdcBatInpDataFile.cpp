// The batch header file: the update of a header named by its batch number.
#include "REPdcBatInpDataFile.h"
#include "production/PdcBatInpDataFileTraits.h"

const RERecordFileSpec REPdcBatInpDataFile::kSpec = REMakeSpec<PdcBatInpDataFileTraits, REPdcBatInpDataFile>();

REPdcBatInpDataFile::REPdcBatInpDataFile() : REPdcBatchFile(kSpec) {}

int REPdcBatInpDataFile::UpdateRecord(int const& batchNumber, PDCBIDFILETYPE& newRec) {
    return GetExactMatch(batchNumber, nullptr) && _WriteAsGiven(kOpUpdate, newRec);
}
