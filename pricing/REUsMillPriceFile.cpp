#include "REUsMillPriceFile.h"

#include "REErrorMessages.h"
#include "plainfile/PlainFile.h"
#include "pricing/PriceListFamily.h"

#include <algorithm>
#include <iterator>

using namespace plainfile;

namespace {

// The Us mill list reports a file it cannot open with its "corrupt" message.
constexpr unsigned kErrorCannotOpen = 1022;

const PriceSection kSections[] = {
    {"BASE PRICE INFO",
     ListOf<&REUsMillPriceFile::GetBasePrice>,
     {PLAIN_COLUMN(Integer, US_BASEPRICERECORD, nNumber), PLAIN_COLUMN(Text, US_BASEPRICERECORD, sText1),
      PLAIN_COLUMN(Text, US_BASEPRICERECORD, sText2), PLAIN_COLUMN(Real, US_BASEPRICERECORD, dValue)}},
    {"DISCOUNT INFO",
     ListOf<&REUsMillPriceFile::GetDiscount>,
     {PLAIN_COLUMN(Integer, US_DISCOUNTRECORD, nNumber), PLAIN_COLUMN(Text, US_DISCOUNTRECORD, sDescription),
      PLAIN_COLUMN(Real, US_DISCOUNTRECORD, dDiscount)}},
    {"GROUP BREAKDOWNS INFO",
     ListOf<&REUsMillPriceFile::GetGroupBreakDown>,
     {PLAIN_COLUMN(Text, US_GROUPBREAKDOWNSRECORD, sCode),
      PLAIN_COLUMN(IntegerAsReal, US_GROUPBREAKDOWNSRECORD, dValue1),
      PLAIN_COLUMN(Real, US_GROUPBREAKDOWNSRECORD, dValue2), PLAIN_COLUMN(Real, US_GROUPBREAKDOWNSRECORD, dValue3),
      PLAIN_COLUMN(Integer, US_GROUPBREAKDOWNSRECORD, nValue)}},
    {"SPECIAL DEDUCTIONS INFO",
     ListOf<&REUsMillPriceFile::GetSplDiscount>,
     {PLAIN_COLUMN(Text, US_SPECIALDEDUCTIONSRECORD, sDescription),
      PLAIN_COLUMN(Real, US_SPECIALDEDUCTIONSRECORD, dDeduction)}},
    {"LENGTH EXTRA INFO",
     ListOf<&REUsMillPriceFile::GetLengthExtra>,
     {PLAIN_COLUMN(Real, US_LENGTHEXTRARECORD, dBound1), PLAIN_COLUMN(Real, US_LENGTHEXTRARECORD, dBound2),
      PLAIN_COLUMN(Text, US_LENGTHEXTRARECORD, sDescription), PLAIN_COLUMN(Real, US_LENGTHEXTRARECORD, dExtra)}},
    {"ADDITIONAL LENGTH EXTRA INFO",
     ListOf<&REUsMillPriceFile::GetAdditionalLengthExtra>,
     {PLAIN_COLUMN(Real, US_ADDITIONALLENGTHEXTRARECORD, dBound1),
      PLAIN_COLUMN(Real, US_ADDITIONALLENGTHEXTRARECORD, dBound2),
      PLAIN_COLUMN(Text, US_ADDITIONALLENGTHEXTRARECORD, sDescription),
      PLAIN_COLUMN(Real, US_ADDITIONALLENGTHEXTRARECORD, dExtra1),
      PLAIN_COLUMN(Real, US_ADDITIONALLENGTHEXTRARECORD, dExtra2)}},
    {"QUANTITY EXTRA INFO",
     ListOf<&REUsMillPriceFile::GetQuantityExtra>,
     {PLAIN_COLUMN(Real, US_QUANTITYEXTRARECORD, dBound1), PLAIN_COLUMN(Real, US_QUANTITYEXTRARECORD, dBound2),
      PLAIN_COLUMN(Text, US_QUANTITYEXTRARECORD, sDescription), PLAIN_COLUMN(Real, US_QUANTITYEXTRARECORD, dExtra)}},
    {"MILLING EXTRA INFO",
     ListOf<&REUsMillPriceFile::GetMillingExtra>,
     {PLAIN_COLUMN(Real, US_MILLINGEXTRARECORD, dBound1), PLAIN_COLUMN(Real, US_MILLINGEXTRARECORD, dBound2),
      PLAIN_COLUMN(Real, US_MILLINGEXTRARECORD, dBound3), PLAIN_COLUMN(Real, US_MILLINGEXTRARECORD, dBound4),
      PLAIN_COLUMN(Text, US_MILLINGEXTRARECORD, sDescription), PLAIN_COLUMN(Real, US_MILLINGEXTRARECORD, dExtra)}},
    {"FORCE MILLING INFO",
     ListOf<&REUsMillPriceFile::GetForceMilling>,
     {PLAIN_COLUMN(Text, US_FORCEMILLINGRECORD, sCode), PLAIN_COLUMN(Real, US_FORCEMILLINGRECORD, dValue1),
      PLAIN_COLUMN(Real, US_FORCEMILLINGRECORD, dValue2), PLAIN_COLUMN(Real, US_FORCEMILLINGRECORD, dValue3)}},
    {"CAMBER EXTRA INFO",
     ListOf<&REUsMillPriceFile::GetCamberExtra>,
     {PLAIN_COLUMN(Real, US_CAMBEREXTRARECORD, dBound1), PLAIN_COLUMN(Real, US_CAMBEREXTRARECORD, dBound2),
      PLAIN_COLUMN(Text, US_CAMBEREXTRARECORD, sDescription), PLAIN_COLUMN(Real, US_CAMBEREXTRARECORD, dExtra)}},
};

const PriceListKind kKind{"TarselWin95.USM001", kErrorCannotOpen, kSections, {nullptr, nullptr}};

}  // namespace

REUsMillPriceFile::REUsMillPriceFile() : m_filePath{}, m_isLoaded(0) {}

REUsMillPriceFile::~REUsMillPriceFile() { Reset(); }

RE_PRICE_LIST_OPERATIONS(REUsMillPriceFile, kKind)
