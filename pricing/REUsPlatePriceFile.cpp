#include "REUsPlatePriceFile.h"

#include "REErrorMessages.h"
#include "plainfile/PlainFile.h"
#include "pricing/PriceListFamily.h"

#include <algorithm>
#include <iterator>

using namespace plainfile;

namespace {

// The Us plate list reports a file it cannot open with its "corrupt" message.
constexpr unsigned kErrorCannotOpen = 1023;

const PriceSection kSections[] = {
    {"BASE PRICE INFO",
     ListOf<&REUsPlatePriceFile::GetBasePrice>,
     {PLAIN_COLUMN(Text, US_BASEPRICEPLATERECORD, sGroupDesig),
      PLAIN_COLUMN(Real, US_BASEPRICEPLATERECORD, dBasePrice)}},
    {"DISCOUNT INFO",
     ListOf<&REUsPlatePriceFile::GetDiscount>,
     {PLAIN_COLUMN(Integer, US_PLATEDISCOUNTRECORD, nNumber), PLAIN_COLUMN(Text, US_PLATEDISCOUNTRECORD, sDescription),
      PLAIN_COLUMN(Real, US_PLATEDISCOUNTRECORD, dDiscount)}},
    {"SECTION EXTRA INFO",
     ListOf<&REUsPlatePriceFile::GetPlateSection>,
     {PLAIN_COLUMN(Text, US_PLATESECTIONEXTRARECORD, sCode),
      PLAIN_COLUMN(Text, US_PLATESECTIONEXTRARECORD, sDescription),
      PLAIN_COLUMN(Real, US_PLATESECTIONEXTRARECORD, dValue1), PLAIN_COLUMN(Real, US_PLATESECTIONEXTRARECORD, dValue2),
      PLAIN_COLUMN(Real, US_PLATESECTIONEXTRARECORD, dValue3), PLAIN_COLUMN(Real, US_PLATESECTIONEXTRARECORD, dValue4),
      PLAIN_COLUMN(Integer, US_PLATESECTIONEXTRARECORD, nValue),
      PLAIN_COLUMN(Real, US_PLATESECTIONEXTRARECORD, dExtra)}},
    {"SPECIFICATION EXTRA INFO",
     ListOf<&REUsPlatePriceFile::GetPlateSpecification>,
     {PLAIN_COLUMN(Text, US_PLATESPECIFICATIONEXTRARECORD, sSpecification),
      PLAIN_COLUMN(Text, US_PLATESPECIFICATIONEXTRARECORD, sText2),
      PLAIN_COLUMN(Real, US_PLATESPECIFICATIONEXTRARECORD, dValue1),
      PLAIN_COLUMN(Real, US_PLATESPECIFICATIONEXTRARECORD, dValue2),
      PLAIN_COLUMN(Real, US_PLATESPECIFICATIONEXTRARECORD, dExtra)}},
    {"LENGTH EXTRA INFO",
     ListOf<&REUsPlatePriceFile::GetLengthExtra>,
     {PLAIN_COLUMN(Real, US_LENGTHEXTRARECORD, dBound1), PLAIN_COLUMN(Real, US_LENGTHEXTRARECORD, dBound2),
      PLAIN_COLUMN(Text, US_LENGTHEXTRARECORD, sDescription), PLAIN_COLUMN(Real, US_LENGTHEXTRARECORD, dExtra)}},
    {"QUANTITY EXTRA INFO",
     ListOf<&REUsPlatePriceFile::GetQuantityExtra>,
     {PLAIN_COLUMN(Real, US_QUANTITYEXTRARECORD, dBound1), PLAIN_COLUMN(Real, US_QUANTITYEXTRARECORD, dBound2),
      PLAIN_COLUMN(Text, US_QUANTITYEXTRARECORD, sDescription), PLAIN_COLUMN(Real, US_QUANTITYEXTRARECORD, dExtra)}},
};

const PriceListKind kKind{"TarselWin95.USP001", kErrorCannotOpen, kSections, {nullptr, nullptr}};

}  // namespace

REUsPlatePriceFile::REUsPlatePriceFile() : m_filePath{}, m_isLoaded(0) {}

REUsPlatePriceFile::~REUsPlatePriceFile() { Reset(); }

RE_PRICE_LIST_OPERATIONS(REUsPlatePriceFile, kKind)
