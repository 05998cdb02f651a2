// Text rules of the plain list files (price lists, labor definitions) in their old
// comma-separated form: lines, columns, numbers and fixed-width text fields, and the filling of
// a record from a data line by a table of columns.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace plainfile {

// Lines of `text` split at line feeds; empty lines vanish.
std::vector<std::string_view> SplitLines(std::string_view text);

// `text` without its trailing white space (blank, tab, CR, LF, VT, FF).
std::string_view TrimRight(std::string_view text);

bool EqualsIgnoreCase(std::string_view a, std::string_view b);

// Columns of a data line split at commas; a run of commas is one separator, so an empty column
// vanishes and the following ones move left.
std::vector<std::string_view> SplitColumns(std::string_view line);

// Decimal integer / real at the start of `column`: leading white space skipped, optional sign,
// stops at the first character that does not fit; 0 when there are no digits. Integers beyond
// the 32-bit range are clamped to it.
int32_t ReadInteger(std::string_view column);
double ReadReal(std::string_view column);

// Fixed-width copy into a field of `chars` characters (chars + 1 bytes): the field is
// zero-filled, at most `chars` characters of `column` are copied and trailing blanks dropped.
void CopyFixedText(char* field, std::string_view column, std::size_t chars);

// How one comma-separated column fills a record.
enum class ColumnKind : uint8_t {
    None,           // end of the column table
    Integer,        // int32, decimal integer
    Short,          // int16, decimal integer
    Real,           // double, decimal real
    IntegerAsReal,  // double holding a column read as a decimal integer
    Text,           // fixed-width text, width - 1 characters
};

struct ColumnSpec {
    ColumnKind kind;
    uint16_t offset;  // in the record
    uint16_t width;   // of the field in bytes
};

constexpr std::size_t kMaxColumns = 8;

// Column i of a data line fills columns[i]; the table ends at the first ColumnKind::None.
using ColumnTable = ColumnSpec[kMaxColumns];

// Fills a zero-filled record of `recordSize` bytes from the columns of a data line. A missing
// column leaves its field zero; a field that would not fit the record is left alone.
void FillRecord(void* record, std::size_t recordSize, const ColumnTable& table,
                std::span<const std::string_view> columns);

}  // namespace plainfile

// One column table entry from a record field: PLAIN_COLUMN(Real, BASEPRICERECORD, dBasePrice).
#define PLAIN_COLUMN(KIND, RECORD, FIELD)                                                          \
    plainfile::ColumnSpec {                                                                        \
        plainfile::ColumnKind::KIND, static_cast<uint16_t>(offsetof(RECORD, FIELD)),               \
            static_cast<uint16_t>(sizeof(RECORD::FIELD))                                           \
    }
