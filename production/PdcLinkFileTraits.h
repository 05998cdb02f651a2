// What the link file tells the record-file machinery: its layouts, messages and field table. It
// is created without any key.
#pragma once

#include "REPdcLinkFile.h"
#include "production/PdcDataFiles.h"
#include "production/PdcMarkFields.h"

struct PdcLinkFileTraits {
    using Record = PDCLINKFILETYPE;
    using OldRecord = OLD_PDCLINKFILETYPE;
    static constexpr const char* kClassName = "REPdcLinkFile";
    static constexpr REMessageCodes kMessages = REPdcMessages(1218, 1240, 1262);

    static constexpr REField kFields[] = {
        RE_MARK(szMark1, szMark1),
        RE_MARK(szMark2, szMark2),
        RE_MARK(szMark3, szMark3),
        RE_TEXT(szText51),
        RE_TEXT(szText62),
        RE_NUMBER(nValue78, kInteger),
        RE_TEXT(szText82),
        RE_COPY(nValue91, kInteger),
        RE_NUMBER(nValue95, kInteger),
        RE_NUMBER(nValue99, kInteger),
        RE_TEXT(szText103),
    };
    static constexpr REFieldTable kFieldTable = {kFields, sizeof(Record), sizeof(OldRecord), nullptr, true};
    static constexpr void Customize(RERecordFileSpec& spec) {
        REPdcPieceFileSwitches(spec);
        // A file without keys: the block the record manager is given is 96 bytes, zeroed.
        spec.create.dataLength = 96;
    }
};
