// The estimate's long multiplier table: its record-file settings on the work-file shape.
#include "labor/MultiplierTraits.h"

const RERecordFileSpec REEstMultLongFile::kSpec = REMakeSpec<EstMultLongTraits, REEstMultLongFile>();

REEstMultLongFile::REEstMultLongFile() : REWorkFile(kSpec) {}
