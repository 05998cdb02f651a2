#include "REUsPlatePriceFile.h"

#include "REErrorMessages.h"
#include "pricing/PlainFile.h"
#include "pricing/PriceListFamily.h"

#include <algorithm>
#include <array>
#include <iterator>

using namespace plainfile;

namespace {

// The Us plate list reports a file it cannot open with its "corrupt" message.
constexpr unsigned kErrorCannotOpen = 1023;

const PriceSection kSections[] = {
    {"BASE PRICE INFO", {PLAIN_COLUMN(Text, US_BASEPRICEPLATERECORD, sGroupDesig),
                         PLAIN_COLUMN(Real, US_BASEPRICEPLATERECORD, dBasePrice)}},
    {"DISCOUNT INFO", {PLAIN_COLUMN(Integer, US_PLATEDISCOUNTRECORD, nNumber),
                       PLAIN_COLUMN(Text, US_PLATEDISCOUNTRECORD, sDescription),
                       PLAIN_COLUMN(Real, US_PLATEDISCOUNTRECORD, dDiscount)}},
    {"SECTION EXTRA INFO", {PLAIN_COLUMN(Text, US_PLATESECTIONEXTRARECORD, sCode),
                            PLAIN_COLUMN(Text, US_PLATESECTIONEXTRARECORD, sDescription),
                            PLAIN_COLUMN(Real, US_PLATESECTIONEXTRARECORD, dValue1),
                            PLAIN_COLUMN(Real, US_PLATESECTIONEXTRARECORD, dValue2),
                            PLAIN_COLUMN(Real, US_PLATESECTIONEXTRARECORD, dValue3),
                            PLAIN_COLUMN(Real, US_PLATESECTIONEXTRARECORD, dValue4),
                            PLAIN_COLUMN(Integer, US_PLATESECTIONEXTRARECORD, nValue),
                            PLAIN_COLUMN(Real, US_PLATESECTIONEXTRARECORD, dExtra)}},
    {"SPECIFICATION EXTRA INFO", {PLAIN_COLUMN(Text, US_PLATESPECIFICATIONEXTRARECORD, sSpecification),
                                  PLAIN_COLUMN(Text, US_PLATESPECIFICATIONEXTRARECORD, sText2),
                                  PLAIN_COLUMN(Real, US_PLATESPECIFICATIONEXTRARECORD, dValue1),
                                  PLAIN_COLUMN(Real, US_PLATESPECIFICATIONEXTRARECORD, dValue2),
                                  PLAIN_COLUMN(Real, US_PLATESPECIFICATIONEXTRARECORD, dExtra)}},
    {"LENGTH EXTRA INFO", {PLAIN_COLUMN(Real, US_LENGTHEXTRARECORD, dBound1),
                           PLAIN_COLUMN(Real, US_LENGTHEXTRARECORD, dBound2),
                           PLAIN_COLUMN(Text, US_LENGTHEXTRARECORD, sDescription),
                           PLAIN_COLUMN(Real, US_LENGTHEXTRARECORD, dExtra)}},
    {"QUANTITY EXTRA INFO", {PLAIN_COLUMN(Real, US_QUANTITYEXTRARECORD, dBound1),
                             PLAIN_COLUMN(Real, US_QUANTITYEXTRARECORD, dBound2),
                             PLAIN_COLUMN(Text, US_QUANTITYEXTRARECORD, sDescription),
                             PLAIN_COLUMN(Real, US_QUANTITYEXTRARECORD, dExtra)}},
};

const PriceListKind kKind{"TarselWin95.USP001", kErrorCannotOpen, kSections, {nullptr, nullptr}};

std::array<RecordListRef, 6> Lists(REUsPlatePriceFile& file) {
    return {RefTo(file.GetBasePrice()),     RefTo(file.GetDiscount()),
            RefTo(file.GetPlateSection()),   RefTo(file.GetPlateSpecification()),
            RefTo(file.GetLengthExtra()),    RefTo(file.GetQuantityExtra())};
}

}  // namespace

REUsPlatePriceFile::REUsPlatePriceFile() : m_filePath{}, m_isLoaded(0) {}

REUsPlatePriceFile::~REUsPlatePriceFile() {
    Reset();
}

int REUsPlatePriceFile::Initialize(const char* path) {
    if (m_isLoaded) {
        Reset();
        m_isLoaded = 0;
    }
    if (!StorePath(m_filePath, sizeof(m_filePath), path)) {
        ShowErrorMessage(kErrorCannotOpen);
        return 0;
    }
    return _FileOpen();
}

int REUsPlatePriceFile::Save(const char* path) {
    return _FileSave(path != nullptr ? path : m_filePath);
}

int REUsPlatePriceFile::Reset() {
    ReleaseLists(Lists(*this));
    std::fill(std::begin(m_filePath), std::end(m_filePath), '\0');
    return 1;
}

int REUsPlatePriceFile::_FileOpen() {
    return LoadPriceList(kKind, m_filePath, Lists(*this), this);
}

int REUsPlatePriceFile::_FileSave(const char* path) {
    return SavePriceList(kKind, path, m_filePath, Lists(*this));
}
