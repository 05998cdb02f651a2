// The production sort file: its record-file settings on the work-file shape and the choice of the
// report order.
#include "REPdcCalcFile.h"
#include "production/PdcCalcTraits.h"

#include "detail/RETextCompare.h"

#include <cstring>

const RERecordFileSpec REPdcCalcFile::kSpec = REMakeSpec<PdcCalcTraits, REPdcCalcFile>();

REPdcCalcFile::REPdcCalcFile() : REWorkFile(kSpec) {}

int REPdcCalcFile::DoIndexing(const char* sortName) {
    int keyNumber = 0;
    for (const PdcCalcTraits::SortOrder& order : PdcCalcTraits::kSortOrders) {
        if (sortName != nullptr && detail::RETextEqualsNoCase(sortName, order.name, std::strlen(order.name) + 1))
            keyNumber = order.keyNumber;
    }
    SetKeyNumber(keyNumber);
    return 1;
}
