// The text forms of dump and load: a readable table, CSV with a header line, and JSON (an array
// of objects, one record a line). Readers give each row with the line it starts on.
#pragma once

#include "tools/RecordText.h"

#include <cstdio>
#include <istream>
#include <map>
#include <string>
#include <vector>

namespace tool {

enum class Format : uint8_t { kTable, kCsv, kJson };
bool ParseFormat(const std::string& name, Format& format);

// Writes records one at a time.
class RecordWriter {
public:
    RecordWriter(std::FILE* out, Format format, const std::vector<Column>& columns);
    void Write(const std::vector<uint8_t>& record);
    void Finish();

private:
    std::FILE* m_out;
    Format m_format;
    const std::vector<Column>& m_columns;
    size_t m_written = 0;
    size_t m_nameWidth = 0;
};

// One row read back: column name -> text, and the line the row starts on.
struct Row {
    size_t line = 0;
    std::map<std::string, std::string> values;
};

// Reads every row of `in`; false with "line N: reason" in `error` on text that is not of the
// format.
bool ReadRows(std::istream& in, Format format, std::vector<Row>& rows, std::string& error);

}  // namespace tool
