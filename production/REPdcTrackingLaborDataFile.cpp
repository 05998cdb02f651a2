// The labor tracking file: the record-file pattern alone.
#include "REPdcTrackingLaborDataFile.h"
#include "production/PdcTrackingLaborDataFileTraits.h"

const RERecordFileSpec REPdcTrackingLaborDataFile::kSpec =
    REMakeSpec<PdcTrackingLaborDataFileTraits, REPdcTrackingLaborDataFile>();

REPdcTrackingLaborDataFile::REPdcTrackingLaborDataFile() : REPdcFile(kSpec) {}
