#include "REBethMillPriceFile.h"

#include "REErrorMessages.h"
#include "pricing/PriceListFamily.h"

#include <iterator>

using namespace plainfile;

namespace {

constexpr unsigned kErrorCannotOpen = 1024;
constexpr unsigned kErrorCorrupt = 1013;

// "DISCOUNT INFO" line: 1-based position in the base-price list, a skipped
// column, the discount.
bool ApplyDiscount(void* owner, std::span<const std::string_view> columns) {
    auto& basePrices = static_cast<REBethMillPriceFile*>(owner)->GetBasePrice();
    const int32_t position = columns.size() > 0 ? ReadInteger(columns[0]) : 0;
    if (position <= 0 || static_cast<std::size_t>(position) > basePrices.size()) {
        ShowErrorMessage(kErrorCorrupt);
        return false;
    }
    BASEPRICERECORD* record = *std::next(basePrices.begin(), position - 1);
    if (record != nullptr)
        record->dDiscount = columns.size() > 2 ? ReadReal(columns[2]) : 0.0;
    return true;
}

const PriceSection kSections[] = {
    {"BASE PRICE INFO",
     ListOf<&REBethMillPriceFile::GetBasePrice>,
     {PLAIN_COLUMN(Integer, BASEPRICERECORD, nGroupNo), PLAIN_COLUMN(Text, BASEPRICERECORD, sGroupDesig),
      PLAIN_COLUMN(Real, BASEPRICERECORD, dBasePrice)}},
    {"SECTION EXTRA INFO",
     ListOf<&REBethMillPriceFile::GetSectionExtra>,
     {PLAIN_COLUMN(Text, SECTIONEXTRARECORD, sCode), PLAIN_COLUMN(IntegerAsReal, SECTIONEXTRARECORD, dValue1),
      PLAIN_COLUMN(Real, SECTIONEXTRARECORD, dValue2), PLAIN_COLUMN(Real, SECTIONEXTRARECORD, dValue3),
      PLAIN_COLUMN(Integer, SECTIONEXTRARECORD, nValue)}},
    {"ANGLE SECTION EXTRA INFO",
     ListOf<&REBethMillPriceFile::GetAngleSectionExtra>,
     {PLAIN_COLUMN(Text, ANGLESECTIONEXTRARECORD, sCode), PLAIN_COLUMN(Real, ANGLESECTIONEXTRARECORD, dValue1),
      PLAIN_COLUMN(Real, ANGLESECTIONEXTRARECORD, dValue2), PLAIN_COLUMN(Real, ANGLESECTIONEXTRARECORD, dValue3),
      PLAIN_COLUMN(Integer, ANGLESECTIONEXTRARECORD, nValue)}},
    {"LENGTH EXTRA INFO",
     ListOf<&REBethMillPriceFile::GetLengthExtra>,
     {PLAIN_COLUMN(Real, LENGTHEXTRARECORD, dBound1), PLAIN_COLUMN(Real, LENGTHEXTRARECORD, dBound2),
      PLAIN_COLUMN(Text, LENGTHEXTRARECORD, sDescription), PLAIN_COLUMN(Real, LENGTHEXTRARECORD, dExtra)}},
    {"ADDITIONAL LENGTH EXTRA INFO",
     ListOf<&REBethMillPriceFile::GetAdditionalLengthExtra>,
     {PLAIN_COLUMN(Real, ADDITIONALLENGTHEXTRARECORD, dBound1),
      PLAIN_COLUMN(Real, ADDITIONALLENGTHEXTRARECORD, dBound2),
      PLAIN_COLUMN(Text, ADDITIONALLENGTHEXTRARECORD, sDescription),
      PLAIN_COLUMN(Real, ADDITIONALLENGTHEXTRARECORD, dExtra1),
      PLAIN_COLUMN(Real, ADDITIONALLENGTHEXTRARECORD, dExtra2)}},
    {"QUANTITY EXTRA INFO",
     ListOf<&REBethMillPriceFile::GetQuantityExtra>,
     {PLAIN_COLUMN(Real, QUANTITYEXTRARECORD, dBound1), PLAIN_COLUMN(Real, QUANTITYEXTRARECORD, dBound2),
      PLAIN_COLUMN(Text, QUANTITYEXTRARECORD, sDescription), PLAIN_COLUMN(Real, QUANTITYEXTRARECORD, dExtra)}},
    {"SPECIFICATION EXTRA INFO",
     ListOf<&REBethMillPriceFile::GetSpecificationExtra>,
     {PLAIN_COLUMN(Integer, SPECIFICATIONEXTRARECORD, nNumber), PLAIN_COLUMN(Text, SPECIFICATIONEXTRARECORD, sText1),
      PLAIN_COLUMN(Text, SPECIFICATIONEXTRARECORD, sText2), PLAIN_COLUMN(Real, SPECIFICATIONEXTRARECORD, dValue)}},
    {"MILLING EXTRA INFO",
     ListOf<&REBethMillPriceFile::GetMillingExtra>,
     {PLAIN_COLUMN(Real, MILLINGEXTRARECORD, dBound1), PLAIN_COLUMN(Real, MILLINGEXTRARECORD, dBound2),
      PLAIN_COLUMN(Text, MILLINGEXTRARECORD, sDescription), PLAIN_COLUMN(Real, MILLINGEXTRARECORD, dExtra)}},
    {"FORCE MILLING INFO",
     ListOf<&REBethMillPriceFile::GetForceMilling>,
     {PLAIN_COLUMN(Text, FORCEMILLINGRECORD, sCode), PLAIN_COLUMN(Real, FORCEMILLINGRECORD, dValue1),
      PLAIN_COLUMN(Real, FORCEMILLINGRECORD, dValue2), PLAIN_COLUMN(Real, FORCEMILLINGRECORD, dValue3)}},
    {"CAMBER EXTRA INFO",
     ListOf<&REBethMillPriceFile::GetCamberExtra>,
     {PLAIN_COLUMN(Real, CAMBEREXTRARECORD, dBound1), PLAIN_COLUMN(Real, CAMBEREXTRARECORD, dBound2),
      PLAIN_COLUMN(Text, CAMBEREXTRARECORD, sDescription), PLAIN_COLUMN(Real, CAMBEREXTRARECORD, dExtra)}},
};

const PriceListKind kKind{"TarselWin95.BTM001", kErrorCannotOpen, kSections, {"DISCOUNT INFO", ApplyDiscount}};

}  // namespace

REBethMillPriceFile::REBethMillPriceFile() : m_isLoaded(0) {}

REBethMillPriceFile::~REBethMillPriceFile() { Reset(); }

RE_PRICE_LIST_OPERATIONS(REBethMillPriceFile, kKind)
