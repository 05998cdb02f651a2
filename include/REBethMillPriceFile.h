// REBethMillPriceFile: the Beth mill's price list for rolled sections, a plain file read and
// written whole ("TarselWin95.BTM001"), or its old comma-separated text form on load.
//
// The object owns the records of its ten lists (std::malloc blocks of the record size);
// callers read, add (REAllocRecord) and remove records through the accessors. Reset and the
// destructor free them.
#pragma once

#include "REMillPriceRecords.h"
#include "tarsel_export.h"

#include <list>
#include <string>

class TARSEL_API REBethMillPriceFile {
public:
    REBethMillPriceFile();
    virtual ~REBethMillPriceFile();
    REBethMillPriceFile(const REBethMillPriceFile&) = delete;
    REBethMillPriceFile& operator=(const REBethMillPriceFile&) = delete;

    // Stores the path and loads the list, adding to the records already held (call Reset
    // first to replace them). 1 when the file was read, 0 when it cannot be (message 1024).
    int Initialize(const char* path);
    int Initialize(const std::string& path) { return Initialize(path.c_str()); }
    // Writes the binary form to `path`, or to the path of Initialize when null (the default). 1;
    // 0 when the file cannot be written, in which case the file already there is left as it was.
    int Save(const char* path = nullptr);
    int Save(const std::string& path) { return Save(path.c_str()); }
    // Frees every record and clears the stored path. 1.
    int Reset();

    std::list<BASEPRICERECORD*>& GetBasePrice() { return m_basePrice; }
    std::list<SECTIONEXTRARECORD*>& GetSectionExtra() { return m_sectionExtra; }
    std::list<ANGLESECTIONEXTRARECORD*>& GetAngleSectionExtra() { return m_angleSectionExtra; }
    std::list<LENGTHEXTRARECORD*>& GetLengthExtra() { return m_lengthExtra; }
    std::list<ADDITIONALLENGTHEXTRARECORD*>& GetAdditionalLengthExtra() { return m_additionalLengthExtra; }
    std::list<QUANTITYEXTRARECORD*>& GetQuantityExtra() { return m_quantityExtra; }
    std::list<SPECIFICATIONEXTRARECORD*>& GetSpecificationExtra() { return m_specificationExtra; }
    std::list<MILLINGEXTRARECORD*>& GetMillingExtra() { return m_millingExtra; }
    std::list<FORCEMILLINGRECORD*>& GetForceMilling() { return m_forceMilling; }
    std::list<CAMBEREXTRARECORD*>& GetCamberExtra() { return m_camberExtra; }

private:
    int _FileOpen();
    int _FileSave(const char* path);

    std::string m_filePath;
    int m_isLoaded;  // tested by Initialize but never set: a second Initialize adds to the lists
    std::list<BASEPRICERECORD*> m_basePrice;
    std::list<SECTIONEXTRARECORD*> m_sectionExtra;
    std::list<ANGLESECTIONEXTRARECORD*> m_angleSectionExtra;
    std::list<LENGTHEXTRARECORD*> m_lengthExtra;
    std::list<ADDITIONALLENGTHEXTRARECORD*> m_additionalLengthExtra;
    std::list<QUANTITYEXTRARECORD*> m_quantityExtra;
    std::list<SPECIFICATIONEXTRARECORD*> m_specificationExtra;
    std::list<MILLINGEXTRARECORD*> m_millingExtra;
    std::list<FORCEMILLINGRECORD*> m_forceMilling;
    std::list<CAMBEREXTRARECORD*> m_camberExtra;
};
