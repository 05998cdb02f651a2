// Records as text, field by field by a layout's field table: the columns of a generation, the
// value of each column in a record, and the way back from texts to record bytes.
#pragma once

#include "core/RecordFieldTable.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tool {

// How a column's bytes read.
enum class ColumnForm : uint8_t { kText, kInteger, kReal, kDate, kLength, kHex };

// One leaf field of a record: a plain field, an element of an array, or a field of a sub-record.
struct Column {
    std::string name;    // "sCode1", "nShort142[2]", "operations[0].nType"
    ColumnForm form;
    uint32_t offset;     // in the record of the generation
    uint32_t size;
    bool blankPadded;    // old-generation text: blank-padded, no terminator
};

// The columns of a record of `table`, in the current (old == false) or the earlier generation.
// A null table: one hex column over `recordLength` bytes.
std::vector<Column> Columns(const REFieldTable* table, bool old, uint32_t recordLength);

// How values are written: kExact gives texts that Encode reads back to the same bytes; kReadable
// rounds reals and writes lengths as feet and inches.
enum class ValueStyle : uint8_t { kExact, kReadable };

struct Value {
    std::string text;
    bool number = false;  // a JSON number rather than a string
};

// The column's value in `record` (bytes past the record's end read as zeros).
Value Decode(const Column& column, const std::vector<uint8_t>& record, ValueStyle style);

// Writes `text` into the column's bytes of `record`; false with the reason in `error` when the
// text does not fit the column.
bool Encode(const Column& column, const std::string& text, std::vector<uint8_t>& record, std::string& error);

// A record before any column is written: zeros, or blanks for the earlier generation.
std::vector<uint8_t> BlankRecord(uint32_t length, bool old);

// Automation dates (days since 1899-12-30) as "2024-03-01" or "2024-03-01 12:30:00"; exact only
// when the text reads back to the same number, else the number itself.
std::string FormatDate(double days, bool exact);
bool ParseDate(const std::string& text, double& days);

}  // namespace tool
