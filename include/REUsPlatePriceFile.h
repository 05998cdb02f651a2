// REUsPlatePriceFile: the Us mill's plate price list, a plain file read and written whole
// ("TarselWin95.USP001"), or its old comma-separated text form on load. Its lists stand in
// another order than those of the Beth plate list: specification before length and quantity.
//
// The object owns the records of its six lists (std::malloc blocks of the record size);
// callers read, add (REAllocRecord) and remove records through the accessors. Reset and the
// destructor free them.
#pragma once

#include "REPlatePriceRecords.h"
#include "tarsel_export.h"

#include <list>
#include <string>

class TARSEL_API REUsPlatePriceFile {
public:
    static constexpr int kPathSize = 260;

    REUsPlatePriceFile();
    virtual ~REUsPlatePriceFile();
    REUsPlatePriceFile(const REUsPlatePriceFile&) = delete;
    REUsPlatePriceFile& operator=(const REUsPlatePriceFile&) = delete;

    // Stores the path and loads the list, adding to the records already held (call Reset
    // first to replace them). 1 when the file was read; 0 when it cannot be, or the path does
    // not fit the 260-byte path buffer (message 1023).
    int Initialize(const char* path);
    int Initialize(const std::string& path) { return Initialize(path.c_str()); }
    // Writes the binary form to `path`, or to the path of Initialize when null (the default). 1;
    // 0 when the file cannot be written, in which case the file already there is left as it was.
    int Save(const char* path = nullptr);
    int Save(const std::string& path) { return Save(path.c_str()); }
    // Frees every record and zero-fills the stored path. 1.
    int Reset();

    // In file order.
    std::list<US_BASEPRICEPLATERECORD*>& GetBasePrice() { return m_basePrice; }
    std::list<US_PLATEDISCOUNTRECORD*>& GetDiscount() { return m_discount; }
    std::list<US_PLATESECTIONEXTRARECORD*>& GetPlateSection() { return m_plateSection; }
    std::list<US_PLATESPECIFICATIONEXTRARECORD*>& GetPlateSpecification() { return m_plateSpecification; }
    std::list<US_LENGTHEXTRARECORD*>& GetLengthExtra() { return m_lengthExtra; }
    std::list<US_QUANTITYEXTRARECORD*>& GetQuantityExtra() { return m_quantityExtra; }

private:
    int _FileOpen();
    int _FileSave(const char* path);

    char m_filePath[kPathSize];
    int m_isLoaded;  // tested by Initialize but never set: a second Initialize adds to the lists
    std::list<US_BASEPRICEPLATERECORD*> m_basePrice;
    std::list<US_PLATEDISCOUNTRECORD*> m_discount;
    std::list<US_PLATESECTIONEXTRARECORD*> m_plateSection;
    std::list<US_PLATESPECIFICATIONEXTRARECORD*> m_plateSpecification;
    std::list<US_LENGTHEXTRARECORD*> m_lengthExtra;
    std::list<US_QUANTITYEXTRARECORD*> m_quantityExtra;
};
