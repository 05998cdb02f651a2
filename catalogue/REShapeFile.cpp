// The shape file: its record-file settings, the conversions of its records and descriptors, the
// search by shape code and the texts it gives to pick lists.
#include "REShapeFile.h"
#include "catalogue/CatalogueFiles.h"
#include "catalogue/ShapeFileTraits.h"

#include "core/Messages.h"
#include "core/RecordFields.h"

#include <cctype>
#include <cstdio>
#include <cstring>

namespace {

// Bytes passed with the Create of CopyRecordsToNewFile.
constexpr uint32_t kCloneCreateLength = 416;

// "code - description", the code left-aligned in four columns when `padCode`.
std::string ShapeText(const SHAPEDATRECORD& rec, bool padCode) {
    char text[sizeof rec.szShape + sizeof rec.szDescription + 8];
    std::snprintf(text, sizeof text, padCode ? "%-4.*s - %.*s" : "%.*s - %.*s", static_cast<int>(sizeof rec.szShape),
                  rec.szShape, static_cast<int>(sizeof rec.szDescription), rec.szDescription);
    return text;
}

}  // namespace

const RERecordFileSpec REShapeFile::kSpec = REMakeSpec<ShapeFileTraits, REShapeFile>();

int gConvertSizeRecordDescToNewFormat(const OLD_SIZERECORDDESC* oldDesc, SIZERECORDDESC* newDesc) {
    return oldDesc != nullptr && newDesc != nullptr
               ? REConvertToNew(SizeRecordDescFields::kFieldTable, oldDesc, newDesc)
               : 0;
}

int gConvertSizeRecordDescToOldFormat(const SIZERECORDDESC* newDesc, OLD_SIZERECORDDESC* oldDesc) {
    return oldDesc != nullptr && newDesc != nullptr
               ? REConvertToOld(SizeRecordDescFields::kFieldTable, newDesc, oldDesc)
               : 0;
}

REShapeFile::REShapeFile() : RESearchRecordFile(kSpec) {}

int REShapeFile::_ConvertToNewRecordFormat(const OLD_SHAPEDATRECORD* oldRec, SHAPEDATRECORD* newRec) {
    return oldRec != nullptr && newRec != nullptr ? REConvertToNew(ShapeFileTraits::kFieldTable, oldRec, newRec) : 0;
}

int REShapeFile::_ConvertToOldRecordFormat(const SHAPEDATRECORD* newRec, OLD_SHAPEDATRECORD* oldRec) {
    return oldRec != nullptr && newRec != nullptr ? REConvertToOld(ShapeFileTraits::kFieldTable, newRec, oldRec) : 0;
}

int REShapeFile::SearchFirstRecord(const char* code, SHAPEDATRECORD* rec) {
    SetKeyNumber(0);
    m_searchActive = 1;
    if (code == nullptr || *code == '\0')
        return 0;
    // The key of the file's layout: the code over four blanks, or over five NULs.
    char key[sizeof SHAPEDATRECORD::szShape];
    const size_t width = m_isOldFormat ? sizeof OLD_SHAPEDATRECORD::szShape : sizeof key;
    std::memset(key, m_isOldFormat ? kOldTextFill : 0, sizeof key);
    std::memcpy(key, code, strnlen(code, width));
    SetKeyBuffer(key, static_cast<int>(width));
    SHAPEDATRECORD found;
    if (!_CallBtrieve(kOpGetGreaterOrEqual, &found) ||
        !REEqualNoCase(code, std::string(found.szShape, strnlen(found.szShape, sizeof found.szShape)).c_str())) {
        m_searchActive = 0;
        return 0;
    }
    if (rec != nullptr)
        *rec = found;
    return 1;
}

int REShapeFile::SearchNextRecord(const char* code, SHAPEDATRECORD* rec) {
    SHAPEDATRECORD found;
    if (!_CallBtrieve(kOpGetNext, &found) ||
        !REEqualNoCase(code, std::string(found.szShape, strnlen(found.szShape, sizeof found.szShape)).c_str())) {
        m_searchActive = 0;
        return 0;
    }
    if (rec != nullptr)
        *rec = found;
    return 1;
}

int REShapeFile::UpdateRecord(SHAPEDATRECORD& rec) {
    const std::string code(rec.szShape, strnlen(rec.szShape, sizeof rec.szShape));
    if (!SearchFirstRecord(code.c_str(), nullptr)) {
        RETrace("<<REShapeFile::UpdateRecord>> Record not found in the database, UPDATE failed\n");
        return 0;
    }
    return _UpdateCurrent(&rec);
}

template <class Add, class Keep>
int REShapeFile::_EachShapeText(bool padCode, Keep keep, Add add) {
    SHAPEDATRECORD rec;
    if (!GetFirstRecord(&rec))
        return -1;
    int added = 0;
    do {
        if (keep(rec)) {
            add(ShapeText(rec, padCode));
            ++added;
        }
    } while (GetNextRecord(&rec));
    return added;
}

int REShapeFile::FillComboWithShapes(REListControl* combo) {
    if (combo == nullptr)
        return 0;
    return _EachShapeText(
               true, [](const SHAPEDATRECORD&) { return true; },
               [combo](const std::string& text) { combo->AddString(text.c_str()); }) < 0
               ? 0
               : 1;
}

int REShapeFile::FillComboWithShapes(const char* filter, REListControl* combo) {
    if (combo == nullptr)
        return 0;
    const int wanted = std::toupper(static_cast<unsigned char>(filter != nullptr ? filter[0] : '\0'));
    const auto keep = [wanted](const SHAPEDATRECORD& rec) {
        return std::toupper(static_cast<unsigned char>(rec.descs93[6].szAttr8[0])) == wanted;
    };
    return _EachShapeText(false, keep, [combo](const std::string& text) { combo->AddString(text.c_str()); }) < 0 ? 0
                                                                                                               : 1;
}

int REShapeFile::FindAllShapes(std::list<std::string>& shapes) {
    const int added = _EachShapeText(
        true, [](const SHAPEDATRECORD&) { return true; }, [&shapes](const std::string& text) { shapes.push_back(text); });
    return added < 0 ? -1 : static_cast<int>(shapes.size());
}

int REShapeFile::IsLengthFieldValid(const std::string& code) {
    SHAPEDATRECORD rec;
    return SearchFirstRecord(code.c_str(), &rec) && IsLengthFieldValid(&rec);
}

int REShapeFile::IsLengthFieldValid(const SHAPEDATRECORD* rec) const {
    return rec != nullptr && (rec->nFlags & kShapeNoLength) == 0;
}

int REShapeFile::IsGradeFieldValid(const SHAPEDATRECORD* rec) const {
    return rec != nullptr && (rec->nFlags & kShapeNoGrade) == 0;
}

int REShapeFile::CopyRecordsToNewFile(const char* path) { return RECloneFile(*this, path, kCloneCreateLength); }
