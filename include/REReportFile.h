// REReportFile: the tree of report definitions the applications offer: report groups and report
// entries, each with a record id the record manager numbers and a group code. Custom groups hang
// under the group code "CUS" and are numbered "CUS0", "CUS1", ...; their entries carry that
// number as their group code. One record layout.
// A program opens it with Initialize(path) (CreateNewFile first makes an empty file) and reads
// and writes it through the record-file methods of detail/RERecordFile.h and those below.
#pragma once

#include "detail/RERecordFile.h"
#include "tarsel_export.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#pragma pack(push, 1)
struct tagReportDBData {
    int32_t nId;               // record id, numbered by the record manager when 0 (key 0)
    char szGroupCode[8];       // code of the group the record belongs to (key 1, duplicates)
    char szType[82];           // "M" custom group, "E" custom entry
    char szText94[260];        // descriptive text
    char szSubGroupCode[54];   // code of the group the record opens, or "NULL"
};
#pragma pack(pop)

static_assert(sizeof(tagReportDBData) == 408);
static_assert(offsetof(tagReportDBData, szGroupCode) == 4);
static_assert(offsetof(tagReportDBData, szType) == 12);
static_assert(offsetof(tagReportDBData, szText94) == 94);
static_assert(offsetof(tagReportDBData, szSubGroupCode) == 354);

class TARSEL_API REReportFile : public RERecordFile<REReportFile, tagReportDBData> {
public:
    REReportFile();

    // Keeps `path` as the file's name, closes an open file and opens it.
    int Initialize(const char* path);
    int Initialize(const std::string& path) { return Initialize(path.c_str()); }
    // Opens the kept path; records move with the length the file reports.
    int _FileOpen();

    // The first record of the group; only the first four characters of the code are looked up.
    int GetEqualMatch(const char* groupCode, tagReportDBData* rec);
    int GetEqualMatch(int id, tagReportDBData* rec);
    // Appends heap copies of the group's records (every record, in group-code order, for an
    // empty code). 1 when the file is open, also when none is found.
    int GetAllRecords(const char* groupCode, std::vector<tagReportDBData*>& records);
    using RERecordFile::GetAllRecords;

    int AddRecord(tagReportDBData& rec) { return AddNewRecord(rec); }
    int UpdateRecord(int id, const tagReportDBData* rec);
    int DeleteRecord(int id);
    // Inserts an empty record, numbered by the record manager.
    int AddNewSet(const char* name);

    // Adds a custom group under `parent` with the first free custom code (marking the parent as
    // opening the custom groups when it opened none); the insert's result.
    int AddCustomReportGroup(tagReportDBData& parent, tagReportDBData& group);
    // Adds an entry to a custom group, giving the group a free custom code first if it has none;
    // the insert's result.
    int AddCustomReportRec(tagReportDBData& group, tagReportDBData& rec);

private:
    // The first "CUS%d" that no record holds as group or sub-group code.
    std::string _FreeCustomCode();

    static const RERecordFileSpec kSpec;
};
