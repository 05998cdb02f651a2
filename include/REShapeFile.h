// REShapeFile: the steel shapes, one record per shape code (up to four characters) with its
// description, flags, numbers and the descriptors of the dimension fields a size of that shape
// carries. Files of the earlier generation (208-byte records) are read and updated in place;
// callers see the 303-byte record. The class reads and updates shapes; it never adds or removes
// one.
// A program opens it with Initialize(path) (CreateNewFile first makes an empty file) and reads
// and writes it through the record-file methods of detail/RERecordFile.h and those below.
#pragma once

#include "REListControl.h"
#include "detail/RESearchRecordFile.h"
#include "tarsel_export.h"

#include <cstddef>
#include <cstdint>
#include <list>
#include <string>

#pragma pack(push, 1)
// Descriptor of one dimension field of a size.
struct SIZERECORDDESC {
    char szFieldCode[4];  // three-character field code
    char szAttr4[2];      // one-character attributes
    char szAttr6[2];
    char szAttr8[2];
};

struct OLD_SIZERECORDDESC {
    char szFieldCode[3];
    char szAttr4[1];
    char szAttr6[1];
    char szAttr8[1];
};

struct SHAPEDATRECORD {
    char szShape[5];         // shape code (key 0)
    char szCode5[3];         // two-character code
    char szDescription[36];
    char szText44[27];
    int16_t nNumber71;
    int16_t nFlags;          // kShapeNoLength, kShapeNoGrade
    char szText75[6];
    int16_t nNumbers81[6];
    SIZERECORDDESC descs93[10];
    SIZERECORDDESC descs193[11];  // the stored layout holds the first ten only
};

struct OLD_SHAPEDATRECORD {
    char szShape[4];
    char szCode5[2];
    char szDescription[35];
    char szText44[26];
    int16_t nNumber71;
    int16_t nFlags;
    char szText75[5];
    int16_t nNumbers81[6];
    OLD_SIZERECORDDESC descs93[10];
    OLD_SIZERECORDDESC descs193[10];
};
#pragma pack(pop)

static_assert(sizeof(SIZERECORDDESC) == 10);
static_assert(offsetof(SIZERECORDDESC, szAttr4) == 4);
static_assert(offsetof(SIZERECORDDESC, szAttr6) == 6);
static_assert(offsetof(SIZERECORDDESC, szAttr8) == 8);
static_assert(sizeof(OLD_SIZERECORDDESC) == 6);
static_assert(offsetof(OLD_SIZERECORDDESC, szAttr4) == 3);
static_assert(offsetof(OLD_SIZERECORDDESC, szAttr6) == 4);
static_assert(offsetof(OLD_SIZERECORDDESC, szAttr8) == 5);

static_assert(sizeof(SHAPEDATRECORD) == 303);
static_assert(offsetof(SHAPEDATRECORD, szCode5) == 5);
static_assert(offsetof(SHAPEDATRECORD, szDescription) == 8);
static_assert(offsetof(SHAPEDATRECORD, szText44) == 44);
static_assert(offsetof(SHAPEDATRECORD, nNumber71) == 71);
static_assert(offsetof(SHAPEDATRECORD, nFlags) == 73);
static_assert(offsetof(SHAPEDATRECORD, szText75) == 75);
static_assert(offsetof(SHAPEDATRECORD, nNumbers81) == 81);
static_assert(offsetof(SHAPEDATRECORD, descs93) == 93);
static_assert(offsetof(SHAPEDATRECORD, descs193) == 193);
static_assert(offsetof(SHAPEDATRECORD, descs93[6].szAttr8) == 161);

static_assert(sizeof(OLD_SHAPEDATRECORD) == 208);
static_assert(offsetof(OLD_SHAPEDATRECORD, szCode5) == 4);
static_assert(offsetof(OLD_SHAPEDATRECORD, szDescription) == 6);
static_assert(offsetof(OLD_SHAPEDATRECORD, szText44) == 41);
static_assert(offsetof(OLD_SHAPEDATRECORD, nNumber71) == 67);
static_assert(offsetof(OLD_SHAPEDATRECORD, nFlags) == 69);
static_assert(offsetof(OLD_SHAPEDATRECORD, szText75) == 71);
static_assert(offsetof(OLD_SHAPEDATRECORD, nNumbers81) == 76);
static_assert(offsetof(OLD_SHAPEDATRECORD, descs93) == 88);
static_assert(offsetof(OLD_SHAPEDATRECORD, descs193) == 148);

// Stored descriptor to current: blank padding becomes NUL padding. 1 (0 for a null pointer).
TARSEL_API int gConvertSizeRecordDescToNewFormat(const OLD_SIZERECORDDESC* oldDesc, SIZERECORDDESC* newDesc);
// Current descriptor to stored: blank-filled, each text without its NUL. 1 (0 for a null pointer).
TARSEL_API int gConvertSizeRecordDescToOldFormat(const SIZERECORDDESC* newDesc, OLD_SIZERECORDDESC* oldDesc);

class TARSEL_API REShapeFile : public RESearchRecordFile<REShapeFile, RELayout<SHAPEDATRECORD, OLD_SHAPEDATRECORD>> {
public:
    // Bits of SHAPEDATRECORD::nFlags.
    static constexpr int16_t kShapeNoLength = 0x0001;  // the length field is not used
    static constexpr int16_t kShapeNoGrade = 0x0002;   // the grade field is not used

    REShapeFile();

    using RESearchRecordFile::m_isOldFormat;
    using RESearchRecordFile::m_searchActive;

    // The shape whose code equals `code` without regard to case (never the next one); a null
    // `rec` only tests existence. An empty code is never found.
    int SearchFirstRecord(const char* code, SHAPEDATRECORD* rec);
    // The next record in key order, if its code still equals `code`.
    int SearchNextRecord(const char* code, SHAPEDATRECORD* rec);
    int GetFirstMatch(const char* code, SHAPEDATRECORD* rec) { return SearchFirstRecord(code, rec); }
    int GetNextMatch(const char* code, SHAPEDATRECORD* rec) { return SearchNextRecord(code, rec); }

    // Rewrites the shape whose code `rec` holds; 0 when there is none.
    int UpdateRecord(SHAPEDATRECORD& rec);

    // Adds "code - description" for every shape in key order; 0 when the file has none. The
    // filtered form takes only shapes whose seventh dimension descriptor's last attribute is the
    // first character of `filter` (without regard to case).
    int FillComboWithShapes(REListControl* combo);
    int FillComboWithShapes(const char* filter, REListControl* combo);
    // Appends "code - description" for every shape; the number of texts in the list afterwards,
    // -1 when the file has none.
    int FindAllShapes(std::list<std::string>& shapes);

    // Whether sizes of the shape use the length and grade fields.
    int IsLengthFieldValid(const std::string& code);
    int IsLengthFieldValid(const SHAPEDATRECORD* rec) const;
    int IsGradeFieldValid(const SHAPEDATRECORD* rec) const;

    // A new file of this file's specification with a copy of its records.
    int CopyRecordsToNewFile(const char* path);

    static int _ConvertToNewRecordFormat(const OLD_SHAPEDATRECORD* oldRec, SHAPEDATRECORD* newRec);
    static int _ConvertToOldRecordFormat(const SHAPEDATRECORD* newRec, OLD_SHAPEDATRECORD* oldRec);

private:
    // Walks the shapes in key order, adding "code - description" for those `keep` accepts, with
    // the code padded to four columns when `padCode`; the number added, -1 when there is none.
    template <class Add, class Keep>
    int _EachShapeText(bool padCode, Keep keep, Add add);

    static const RERecordFileSpec kSpec;
};
