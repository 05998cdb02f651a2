// Field table of the size key, shared by every record that embeds one.
#pragma once

#include "SIZEDATKEYREC.h"
#include "core/RecordFieldTable.h"

struct SizeKeyFields {
    using Record = SIZEDATKEYREC;
    using OldRecord = OLD_SIZEDATKEYREC;
    // Stored keys let an overlong text run on into the following fields; the values that follow
    // each text are copied after it and so take back their bytes.
    static constexpr REField kFields[] = {
        RE_TEXT_RUN_ON(szSection), RE_TEXT_RUN_ON(szShape), RE_TEXT_RUN_ON(szCode9), RE_TEXT_RUN_ON(szCode12),
        RE_COPY(fDim1, kReal),     RE_COPY(fDim2, kReal),   RE_COPY(fDim3, kReal),   RE_COPY(fDim4, kReal),
        RE_COPY(fDim5, kReal),     RE_COPY(nValue43, kInteger), RE_COPY(nValue47, kInteger),
        RE_TEXT_RUN_ON(szDimText), RE_COPY(nValue77, kInteger),
    };
    static constexpr REFieldTable kFieldTable = {kFields, sizeof(Record), sizeof(OldRecord)};
};
static_assert(REFieldsFit(SizeKeyFields::kFields, sizeof(SIZEDATKEYREC), sizeof(OLD_SIZEDATKEYREC)));
