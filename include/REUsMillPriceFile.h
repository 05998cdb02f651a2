// REUsMillPriceFile: the Us mill's price list for rolled sections, a plain file read and
// written whole ("TarselWin95.USM001"), or its old comma-separated text form on load.
//
// The object owns the records of its ten lists (std::malloc blocks of the record size);
// callers read, add (REAllocRecord) and remove records through the accessors. Reset and the
// destructor free them.
#pragma once

#include "REMillPriceRecords.h"
#include "tarsel_export.h"

#include <list>
#include <string>

class TARSEL_API REUsMillPriceFile {
public:
    static constexpr int kPathSize = 260;

    REUsMillPriceFile();
    virtual ~REUsMillPriceFile();
    REUsMillPriceFile(const REUsMillPriceFile&) = delete;
    REUsMillPriceFile& operator=(const REUsMillPriceFile&) = delete;

    // Stores the path and loads the list, adding to the records already held (call Reset
    // first to replace them). 1 when the file was read; 0 when it cannot be, or the path does
    // not fit the 260-byte path buffer (message 1022).
    int Initialize(const char* path);
    int Initialize(const std::string& path) { return Initialize(path.c_str()); }
    // Writes the binary form to `path`, or to the path of Initialize when null (the default). 1;
    // 0 when the file cannot be written, in which case the file already there is left as it was.
    int Save(const char* path = nullptr);
    int Save(const std::string& path) { return Save(path.c_str()); }
    // Frees every record and zero-fills the stored path. 1.
    int Reset();

    std::list<US_BASEPRICERECORD*>& GetBasePrice() { return m_basePrice; }
    std::list<US_DISCOUNTRECORD*>& GetDiscount() { return m_discount; }
    std::list<US_GROUPBREAKDOWNSRECORD*>& GetGroupBreakDown() { return m_groupBreakDown; }
    std::list<US_SPECIALDEDUCTIONSRECORD*>& GetSplDiscount() { return m_splDiscount; }
    std::list<US_LENGTHEXTRARECORD*>& GetLengthExtra() { return m_lengthExtra; }
    std::list<US_ADDITIONALLENGTHEXTRARECORD*>& GetAdditionalLengthExtra() { return m_additionalLengthExtra; }
    std::list<US_QUANTITYEXTRARECORD*>& GetQuantityExtra() { return m_quantityExtra; }
    std::list<US_MILLINGEXTRARECORD*>& GetMillingExtra() { return m_millingExtra; }
    std::list<US_FORCEMILLINGRECORD*>& GetForceMilling() { return m_forceMilling; }
    std::list<US_CAMBEREXTRARECORD*>& GetCamberExtra() { return m_camberExtra; }

private:
    int _FileOpen();
    int _FileSave(const char* path);

    char m_filePath[kPathSize];
    int m_isLoaded;  // tested by Initialize but never set: a second Initialize adds to the lists
    std::list<US_BASEPRICERECORD*> m_basePrice;
    std::list<US_DISCOUNTRECORD*> m_discount;
    std::list<US_GROUPBREAKDOWNSRECORD*> m_groupBreakDown;
    std::list<US_SPECIALDEDUCTIONSRECORD*> m_splDiscount;
    std::list<US_LENGTHEXTRARECORD*> m_lengthExtra;
    std::list<US_ADDITIONALLENGTHEXTRARECORD*> m_additionalLengthExtra;
    std::list<US_QUANTITYEXTRARECORD*> m_quantityExtra;
    std::list<US_MILLINGEXTRARECORD*> m_millingExtra;
    std::list<US_FORCEMILLINGRECORD*> m_forceMilling;
    std::list<US_CAMBEREXTRARECORD*> m_camberExtra;
};
