// The station load file: the record-file pattern alone.
#include "REPdcStationLoadDataFile.h"
#include "production/PdcStationLoadDataFileTraits.h"

const RERecordFileSpec REPdcStationLoadDataFile::kSpec =
    REMakeSpec<PdcStationLoadDataFileTraits, REPdcStationLoadDataFile>();

REPdcStationLoadDataFile::REPdcStationLoadDataFile() : REPdcFile(kSpec) {}
