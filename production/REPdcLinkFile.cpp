// The link file: its record-file settings and conversions; everything else is the shared method set.
#include "REPdcLinkFile.h"
#include "production/PdcLinkFileTraits.h"

const RERecordFileSpec REPdcLinkFile::kSpec = REMakeSpec<PdcLinkFileTraits, REPdcLinkFile>();

REPdcLinkFile::REPdcLinkFile() : RERecordFile(kSpec) { SetKeyNumber(0); }

int gConvertLinkFileTypeToNewFormat(const OLD_PDCLINKFILETYPE* oldRec, PDCLINKFILETYPE* newRec) {
    return REConvertToNew(PdcLinkFileTraits::kFieldTable, oldRec, newRec);
}

int gConvertLinkFileTypeToOldFormat(const PDCLINKFILETYPE* newRec, OLD_PDCLINKFILETYPE* oldRec) {
    return REConvertToOld(PdcLinkFileTraits::kFieldTable, newRec, oldRec);
}
