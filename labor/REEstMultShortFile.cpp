// The estimate's short multiplier table: its specification on the work-file shape.
#include "labor/MultiplierTraits.h"

const RERecordFileSpec REEstMultShortFile::kSpec = REMakeSpec<EstMultShortTraits, REEstMultShortFile>();

REEstMultShortFile::REEstMultShortFile() : REWorkFile(kSpec) {}
