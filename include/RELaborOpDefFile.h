// RELaborOpDefFile: the labor operation definitions (name and group number of each), a plain file read
// and written whole ("TarselWin95.LOD001"), or its old text form of "name,group" lines on load.
// The old text form begins with the number of definitions; only that many lines follow as data.
//
// The records live in a list that the caller owns (std::malloc blocks of 103 bytes, freed by
// ResetRecords).
#pragma once

#include "RELaborDefRecords.h"
#include "tarsel_export.h"

#include <list>
#include <string>

class TARSEL_API RELaborOpDefFile {
public:
    static constexpr int kPathSize = 260;

    RELaborOpDefFile();
    virtual ~RELaborOpDefFile();

    // Stores the path; the file is read by GetRecords. 1; 0 when the path is null or does not
    // fit the 260-byte path buffer.
    int Initialize(const char* path);
    int Initialize(const std::string& path) { return Initialize(path.c_str()); }
    // Replaces the content of `list` with the file's records. 1 when the file was read, 0
    // when it cannot be (message 1014).
    int GetRecords(std::list<LABOROPDEFRECORD*>& list);
    // Writes the records in the binary form. 1; 0 when the file cannot be written, in which
    // case the file already there is left as it was.
    int SaveRecords(const std::list<LABOROPDEFRECORD*>& list);
    // Frees every record of `list` and empties it. 1.
    int ResetRecords(std::list<LABOROPDEFRECORD*>& list);
    // Group number of the first record named `name` (letter case ignored), or -1.
    int GetGroupNo(const std::list<LABOROPDEFRECORD*>& list, const std::string& name);

private:
    void _CreateSignature();

    char m_filePath[kPathSize];
    int m_isInitialized;
    RE_FILE_SIGNATURE m_signature;
};
