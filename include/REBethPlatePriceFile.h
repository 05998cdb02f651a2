// REBethPlatePriceFile: the Beth mill's plate price list, a plain file read and written whole
// ("TarselWin95.BTP001"), or its old comma-separated text form on load.
//
// The object owns the records of its six lists (std::malloc blocks of the record size);
// callers read, add (REAllocRecord) and remove records through the accessors. Reset and the
// destructor free them.
#pragma once

#include "REPlatePriceRecords.h"
#include "tarsel_export.h"

#include <list>
#include <string>

class TARSEL_API REBethPlatePriceFile {
public:
    REBethPlatePriceFile();
    virtual ~REBethPlatePriceFile();
    REBethPlatePriceFile(const REBethPlatePriceFile&) = delete;
    REBethPlatePriceFile& operator=(const REBethPlatePriceFile&) = delete;

    // Stores the path and loads the list, adding to the records already held (call Reset
    // first to replace them). 1 when the file was read, 0 when it cannot be (message 1025).
    int Initialize(const char* path);
    int Initialize(const std::string& path) { return Initialize(path.c_str()); }
    // Writes the binary form to `path`, or to the path of Initialize when null (the default). 1;
    // 0 when the file cannot be written, in which case the file already there is left as it was.
    int Save(const char* path = nullptr);
    int Save(const std::string& path) { return Save(path.c_str()); }
    // Frees every record and clears the stored path. 1.
    int Reset();

    // In file order.
    std::list<BASEPRICEPLATERECORD*>& GetBasePrice() { return m_basePrice; }
    std::list<PLATEDISCOUNTRECORD*>& GetPlateDiscount() { return m_plateDiscount; }
    std::list<PLATESECTIONEXTRARECORD*>& GetSectionExtra() { return m_sectionExtra; }
    std::list<LENGTHEXTRARECORD*>& GetLengthExtra() { return m_lengthExtra; }
    std::list<QUANTITYEXTRARECORD*>& GetQuantityExtra() { return m_quantityExtra; }
    std::list<PLATESPECIFICATIONEXTRARECORD*>& GetSpecificationExtra() { return m_specificationExtra; }

private:
    int _FileOpen();
    int _FileSave(const char* path);

    std::string m_filePath;
    int m_isLoaded;  // tested by Initialize but never set: a second Initialize adds to the lists
    std::list<BASEPRICEPLATERECORD*> m_basePrice;
    std::list<PLATEDISCOUNTRECORD*> m_plateDiscount;
    std::list<PLATESECTIONEXTRARECORD*> m_sectionExtra;
    std::list<LENGTHEXTRARECORD*> m_lengthExtra;
    std::list<QUANTITYEXTRARECORD*> m_quantityExtra;
    std::list<PLATESPECIFICATIONEXTRARECORD*> m_specificationExtra;
};
