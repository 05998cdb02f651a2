// The estimate's short multiplier table: its record-file settings on the work-file shape.
#include "labor/MultiplierTraits.h"

const RERecordFileSpec REEstMultShortFile::kSpec = REMakeSpec<EstMultShortTraits, REEstMultShortFile>();

REEstMultShortFile::REEstMultShortFile() : REWorkFile(kSpec) {}
