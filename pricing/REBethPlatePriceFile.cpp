#include "REBethPlatePriceFile.h"

#include "pricing/PriceListFamily.h"

#include <array>

using namespace plainfile;

namespace {

constexpr unsigned kErrorCannotOpen = 1025;

const PriceSection kSections[] = {
    {"BASE PRICE INFO", {PLAIN_COLUMN(Text, BASEPRICEPLATERECORD, sGroupDesig),
                         PLAIN_COLUMN(Real, BASEPRICEPLATERECORD, dBasePrice)}},
    {"DISCOUNT INFO", {PLAIN_COLUMN(Integer, PLATEDISCOUNTRECORD, nNumber),
                       PLAIN_COLUMN(Text, PLATEDISCOUNTRECORD, sDescription),
                       PLAIN_COLUMN(Real, PLATEDISCOUNTRECORD, dDiscount)}},
    {"SECTION EXTRA INFO", {PLAIN_COLUMN(Text, PLATESECTIONEXTRARECORD, sCode),
                            PLAIN_COLUMN(Text, PLATESECTIONEXTRARECORD, sDescription),
                            PLAIN_COLUMN(Real, PLATESECTIONEXTRARECORD, dValue1),
                            PLAIN_COLUMN(Real, PLATESECTIONEXTRARECORD, dValue2),
                            PLAIN_COLUMN(Real, PLATESECTIONEXTRARECORD, dValue3),
                            PLAIN_COLUMN(Real, PLATESECTIONEXTRARECORD, dValue4),
                            PLAIN_COLUMN(Integer, PLATESECTIONEXTRARECORD, nValue),
                            PLAIN_COLUMN(Real, PLATESECTIONEXTRARECORD, dExtra)}},
    {"LENGTH EXTRA INFO", {PLAIN_COLUMN(Real, LENGTHEXTRARECORD, dBound1),
                           PLAIN_COLUMN(Real, LENGTHEXTRARECORD, dBound2),
                           PLAIN_COLUMN(Text, LENGTHEXTRARECORD, sDescription),
                           PLAIN_COLUMN(Real, LENGTHEXTRARECORD, dExtra)}},
    {"QUANTITY EXTRA INFO", {PLAIN_COLUMN(Real, QUANTITYEXTRARECORD, dBound1),
                             PLAIN_COLUMN(Real, QUANTITYEXTRARECORD, dBound2),
                             PLAIN_COLUMN(Text, QUANTITYEXTRARECORD, sDescription),
                             PLAIN_COLUMN(Real, QUANTITYEXTRARECORD, dExtra)}},
    {"SPECIFICATION EXTRA INFO", {PLAIN_COLUMN(Text, PLATESPECIFICATIONEXTRARECORD, sSpecification),
                                  PLAIN_COLUMN(Text, PLATESPECIFICATIONEXTRARECORD, sText2),
                                  PLAIN_COLUMN(Real, PLATESPECIFICATIONEXTRARECORD, dValue1),
                                  PLAIN_COLUMN(Real, PLATESPECIFICATIONEXTRARECORD, dValue2),
                                  PLAIN_COLUMN(Real, PLATESPECIFICATIONEXTRARECORD, dExtra)}},
};

const PriceListKind kKind{"TarselWin95.BTP001", kErrorCannotOpen, kSections, {nullptr, nullptr}};

std::array<RecordListRef, 6> Lists(REBethPlatePriceFile& file) {
    return {RefTo(file.GetBasePrice()),   RefTo(file.GetPlateDiscount()),
            RefTo(file.GetSectionExtra()), RefTo(file.GetLengthExtra()),
            RefTo(file.GetQuantityExtra()), RefTo(file.GetSpecificationExtra())};
}

}  // namespace

REBethPlatePriceFile::REBethPlatePriceFile() : m_isLoaded(0) {}

REBethPlatePriceFile::~REBethPlatePriceFile() {
    Reset();
}

int REBethPlatePriceFile::Initialize(const char* path) {
    if (m_isLoaded) {
        Reset();
        m_isLoaded = 0;
    }
    m_filePath = path != nullptr ? path : "";
    return _FileOpen();
}

int REBethPlatePriceFile::Save(const char* path) {
    return _FileSave(path != nullptr ? path : m_filePath.c_str());
}

int REBethPlatePriceFile::Reset() {
    ReleaseLists(Lists(*this));
    m_filePath.clear();
    return 1;
}

int REBethPlatePriceFile::_FileOpen() {
    return LoadPriceList(kKind, m_filePath, Lists(*this), this);
}

int REBethPlatePriceFile::_FileSave(const char* path) {
    return SavePriceList(kKind, path, m_filePath, Lists(*this));
}
