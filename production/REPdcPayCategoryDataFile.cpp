// The pay category file: the look-up by code.
#include "REPdcPayCategoryDataFile.h"
#include "production/PdcPayCategoryDataFileTraits.h"

const RERecordFileSpec REPdcPayCategoryDataFile::kSpec =
    REMakeSpec<PdcPayCategoryDataFileTraits, REPdcPayCategoryDataFile>();

REPdcPayCategoryDataFile::REPdcPayCategoryDataFile() : REPdcFile(kSpec) {}

int REPdcPayCategoryDataFile::GetEqualMatch(const std::string& code, PDCPAYCATDATATYPE* out) {
    return _ReadByText(kOpGetEqual, 0, code, sizeof out->sPayCatCode, out);
}
