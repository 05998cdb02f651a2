#include "REUsMillPriceFile.h"

#include "REErrorMessages.h"
#include "pricing/PlainFile.h"
#include "pricing/PriceListFamily.h"

#include <algorithm>
#include <array>
#include <iterator>

using namespace plainfile;

namespace {

// The Us mill list reports a file it cannot open with its "corrupt" message.
constexpr unsigned kErrorCannotOpen = 1022;

const PriceSection kSections[] = {
    {"BASE PRICE INFO", {PLAIN_COLUMN(Integer, US_BASEPRICERECORD, nNumber),
                         PLAIN_COLUMN(Text, US_BASEPRICERECORD, sText1),
                         PLAIN_COLUMN(Text, US_BASEPRICERECORD, sText2),
                         PLAIN_COLUMN(Real, US_BASEPRICERECORD, dValue)}},
    {"DISCOUNT INFO", {PLAIN_COLUMN(Integer, US_DISCOUNTRECORD, nNumber),
                       PLAIN_COLUMN(Text, US_DISCOUNTRECORD, sDescription),
                       PLAIN_COLUMN(Real, US_DISCOUNTRECORD, dDiscount)}},
    {"GROUP BREAKDOWNS INFO", {PLAIN_COLUMN(Text, US_GROUPBREAKDOWNSRECORD, sCode),
                               PLAIN_COLUMN(IntegerAsReal, US_GROUPBREAKDOWNSRECORD, dValue1),
                               PLAIN_COLUMN(Real, US_GROUPBREAKDOWNSRECORD, dValue2),
                               PLAIN_COLUMN(Real, US_GROUPBREAKDOWNSRECORD, dValue3),
                               PLAIN_COLUMN(Integer, US_GROUPBREAKDOWNSRECORD, nValue)}},
    {"SPECIAL DEDUCTIONS INFO", {PLAIN_COLUMN(Text, US_SPECIALDEDUCTIONSRECORD, sDescription),
                                 PLAIN_COLUMN(Real, US_SPECIALDEDUCTIONSRECORD, dDeduction)}},
    {"LENGTH EXTRA INFO", {PLAIN_COLUMN(Real, US_LENGTHEXTRARECORD, dBound1),
                           PLAIN_COLUMN(Real, US_LENGTHEXTRARECORD, dBound2),
                           PLAIN_COLUMN(Text, US_LENGTHEXTRARECORD, sDescription),
                           PLAIN_COLUMN(Real, US_LENGTHEXTRARECORD, dExtra)}},
    {"ADDITIONAL LENGTH EXTRA INFO", {PLAIN_COLUMN(Real, US_ADDITIONALLENGTHEXTRARECORD, dBound1),
                                      PLAIN_COLUMN(Real, US_ADDITIONALLENGTHEXTRARECORD, dBound2),
                                      PLAIN_COLUMN(Text, US_ADDITIONALLENGTHEXTRARECORD, sDescription),
                                      PLAIN_COLUMN(Real, US_ADDITIONALLENGTHEXTRARECORD, dExtra1),
                                      PLAIN_COLUMN(Real, US_ADDITIONALLENGTHEXTRARECORD, dExtra2)}},
    {"QUANTITY EXTRA INFO", {PLAIN_COLUMN(Real, US_QUANTITYEXTRARECORD, dBound1),
                             PLAIN_COLUMN(Real, US_QUANTITYEXTRARECORD, dBound2),
                             PLAIN_COLUMN(Text, US_QUANTITYEXTRARECORD, sDescription),
                             PLAIN_COLUMN(Real, US_QUANTITYEXTRARECORD, dExtra)}},
    {"MILLING EXTRA INFO", {PLAIN_COLUMN(Real, US_MILLINGEXTRARECORD, dBound1),
                            PLAIN_COLUMN(Real, US_MILLINGEXTRARECORD, dBound2),
                            PLAIN_COLUMN(Real, US_MILLINGEXTRARECORD, dBound3),
                            PLAIN_COLUMN(Real, US_MILLINGEXTRARECORD, dBound4),
                            PLAIN_COLUMN(Text, US_MILLINGEXTRARECORD, sDescription),
                            PLAIN_COLUMN(Real, US_MILLINGEXTRARECORD, dExtra)}},
    {"FORCE MILLING INFO", {PLAIN_COLUMN(Text, US_FORCEMILLINGRECORD, sCode),
                            PLAIN_COLUMN(Real, US_FORCEMILLINGRECORD, dValue1),
                            PLAIN_COLUMN(Real, US_FORCEMILLINGRECORD, dValue2),
                            PLAIN_COLUMN(Real, US_FORCEMILLINGRECORD, dValue3)}},
    {"CAMBER EXTRA INFO", {PLAIN_COLUMN(Real, US_CAMBEREXTRARECORD, dBound1),
                           PLAIN_COLUMN(Real, US_CAMBEREXTRARECORD, dBound2),
                           PLAIN_COLUMN(Text, US_CAMBEREXTRARECORD, sDescription),
                           PLAIN_COLUMN(Real, US_CAMBEREXTRARECORD, dExtra)}},
};

const PriceListKind kKind{"TarselWin95.USM001", kErrorCannotOpen, kSections, {nullptr, nullptr}};

std::array<RecordListRef, 10> Lists(REUsMillPriceFile& file) {
    return {RefTo(file.GetBasePrice()),    RefTo(file.GetDiscount()),
            RefTo(file.GetGroupBreakDown()), RefTo(file.GetSplDiscount()),
            RefTo(file.GetLengthExtra()),  RefTo(file.GetAdditionalLengthExtra()),
            RefTo(file.GetQuantityExtra()), RefTo(file.GetMillingExtra()),
            RefTo(file.GetForceMilling()), RefTo(file.GetCamberExtra())};
}

}  // namespace

REUsMillPriceFile::REUsMillPriceFile() : m_filePath{}, m_isLoaded(0) {}

REUsMillPriceFile::~REUsMillPriceFile() {
    Reset();
}

int REUsMillPriceFile::Initialize(const char* path) {
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

int REUsMillPriceFile::Save(const char* path) {
    return _FileSave(path != nullptr ? path : m_filePath);
}

int REUsMillPriceFile::Reset() {
    ReleaseLists(Lists(*this));
    std::fill(std::begin(m_filePath), std::end(m_filePath), '\0');
    return 1;
}

int REUsMillPriceFile::_FileOpen() {
    return LoadPriceList(kKind, m_filePath, Lists(*this), this);
}

int REUsMillPriceFile::_FileSave(const char* path) {
    return SavePriceList(kKind, path, m_filePath, Lists(*this));
}
