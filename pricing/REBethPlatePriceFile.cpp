#include "REBethPlatePriceFile.h"

#include "pricing/PriceListFamily.h"

using namespace plainfile;

namespace {

constexpr unsigned kErrorCannotOpen = 1025;

const PriceSection kSections[] = {
    {"BASE PRICE INFO",
     ListOf<&REBethPlatePriceFile::GetBasePrice>,
     {PLAIN_COLUMN(Text, BASEPRICEPLATERECORD, sGroupDesig), PLAIN_COLUMN(Real, BASEPRICEPLATERECORD, dBasePrice)}},
    {"DISCOUNT INFO",
     ListOf<&REBethPlatePriceFile::GetPlateDiscount>,
     {PLAIN_COLUMN(Integer, PLATEDISCOUNTRECORD, nNumber), PLAIN_COLUMN(Text, PLATEDISCOUNTRECORD, sDescription),
      PLAIN_COLUMN(Real, PLATEDISCOUNTRECORD, dDiscount)}},
    {"SECTION EXTRA INFO",
     ListOf<&REBethPlatePriceFile::GetSectionExtra>,
     {PLAIN_COLUMN(Text, PLATESECTIONEXTRARECORD, sCode), PLAIN_COLUMN(Text, PLATESECTIONEXTRARECORD, sDescription),
      PLAIN_COLUMN(Real, PLATESECTIONEXTRARECORD, dValue1), PLAIN_COLUMN(Real, PLATESECTIONEXTRARECORD, dValue2),
      PLAIN_COLUMN(Real, PLATESECTIONEXTRARECORD, dValue3), PLAIN_COLUMN(Real, PLATESECTIONEXTRARECORD, dValue4),
      PLAIN_COLUMN(Integer, PLATESECTIONEXTRARECORD, nValue), PLAIN_COLUMN(Real, PLATESECTIONEXTRARECORD, dExtra)}},
    {"LENGTH EXTRA INFO",
     ListOf<&REBethPlatePriceFile::GetLengthExtra>,
     {PLAIN_COLUMN(Real, LENGTHEXTRARECORD, dBound1), PLAIN_COLUMN(Real, LENGTHEXTRARECORD, dBound2),
      PLAIN_COLUMN(Text, LENGTHEXTRARECORD, sDescription), PLAIN_COLUMN(Real, LENGTHEXTRARECORD, dExtra)}},
    {"QUANTITY EXTRA INFO",
     ListOf<&REBethPlatePriceFile::GetQuantityExtra>,
     {PLAIN_COLUMN(Real, QUANTITYEXTRARECORD, dBound1), PLAIN_COLUMN(Real, QUANTITYEXTRARECORD, dBound2),
      PLAIN_COLUMN(Text, QUANTITYEXTRARECORD, sDescription), PLAIN_COLUMN(Real, QUANTITYEXTRARECORD, dExtra)}},
    {"SPECIFICATION EXTRA INFO",
     ListOf<&REBethPlatePriceFile::GetSpecificationExtra>,
     {PLAIN_COLUMN(Text, PLATESPECIFICATIONEXTRARECORD, sSpecification),
      PLAIN_COLUMN(Text, PLATESPECIFICATIONEXTRARECORD, sText2),
      PLAIN_COLUMN(Real, PLATESPECIFICATIONEXTRARECORD, dValue1),
      PLAIN_COLUMN(Real, PLATESPECIFICATIONEXTRARECORD, dValue2),
      PLAIN_COLUMN(Real, PLATESPECIFICATIONEXTRARECORD, dExtra)}},
};

const PriceListKind kKind{"TarselWin95.BTP001", kErrorCannotOpen, kSections, {nullptr, nullptr}};

}  // namespace

REBethPlatePriceFile::REBethPlatePriceFile() : m_isLoaded(0) {}

REBethPlatePriceFile::~REBethPlatePriceFile() { Reset(); }

RE_PRICE_LIST_OPERATIONS(REBethPlatePriceFile, kKind)
