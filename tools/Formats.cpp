#include "tools/Formats.h"

#include <algorithm>
#include <cstdint>
#include <iterator>

namespace tool {
namespace {

std::string CsvField(const std::string& text) {
    if (text.find_first_of(",\"\r\n") == std::string::npos && (text.empty() || (text.front() != ' ' && text.back() != ' ')))
        return text;
    std::string quoted = "\"";
    for (char c : text) {
        if (c == '"')
            quoted += '"';
        quoted += c;
    }
    return quoted + "\"";
}

// JSON string; bytes outside ASCII are taken as Latin-1 and written as \u00XX.
std::string JsonString(const std::string& text) {
    std::string out = "\"";
    for (char ch : text) {
        const auto c = static_cast<unsigned char>(ch);
        if (c == '"' || c == '\\') {
            out += '\\';
            out += ch;
        } else if (c < 0x20 || c >= 0x7f) {
            char esc[8];
            std::snprintf(esc, sizeof esc, "\\u%04x", c);
            out += esc;
        } else {
            out += ch;
        }
    }
    return out + "\"";
}

// Readable text: control characters shown as \xNN.
std::string Printable(const std::string& text) {
    std::string out;
    for (char ch : text) {
        const auto c = static_cast<unsigned char>(ch);
        if (c < 0x20 || c == 0x7f) {
            char esc[8];
            std::snprintf(esc, sizeof esc, "\\x%02x", c);
            out += esc;
        } else {
            out += ch;
        }
    }
    return out;
}

// --- CSV reading ---------------------------------------------------------------------------

bool ReadCsvRecord(std::istream& in, size_t& line, std::vector<std::string>& fields, std::string& error) {
    fields.clear();
    std::string field;
    bool quoted = false, wasQuoted = false, any = false;
    for (int next = in.get(); next != EOF; next = in.get()) {
        any = true;
        const char c = static_cast<char>(next);
        if (quoted) {
            if (c == '"') {
                if (in.peek() == '"') {
                    in.get();
                    field += '"';
                } else {
                    quoted = false;
                }
            } else {
                if (c == '\n')
                    ++line;
                field += c;
            }
            continue;
        }
        if (c == '"' && field.empty() && !wasQuoted) {
            quoted = wasQuoted = true;
        } else if (c == ',') {
            fields.push_back(field);
            field.clear();
            wasQuoted = false;
        } else if (c == '\n' || c == '\r') {
            if (c == '\r' && in.peek() == '\n')
                in.get();
            ++line;
            fields.push_back(field);
            return true;
        } else if (wasQuoted) {
            error = "text after a closing quote";
            return false;
        } else {
            field += c;
        }
    }
    if (quoted) {
        error = "quoted field not closed";
        return false;
    }
    if (any)
        fields.push_back(field);
    return any;
}

bool ReadCsv(std::istream& in, std::vector<Row>& rows, std::string& error) {
    size_t line = 1;
    std::vector<std::string> header, fields;
    std::string why;
    if (!ReadCsvRecord(in, line, header, why)) {
        error = "line 1: " + (why.empty() ? std::string("no header line") : why);
        return false;
    }
    for (;;) {
        const size_t start = line;
        why.clear();
        if (!ReadCsvRecord(in, line, fields, why)) {
            if (why.empty())
                return true;
            error = "line " + std::to_string(start) + ": " + why;
            return false;
        }
        if (fields.size() == 1 && fields[0].empty())
            continue;  // a blank line
        if (fields.size() != header.size()) {
            error = "line " + std::to_string(start) + ": " + std::to_string(fields.size()) + " fields, the header has " +
                    std::to_string(header.size());
            return false;
        }
        Row row;
        row.line = start;
        for (size_t i = 0; i < header.size(); ++i)
            row.values[header[i]] = fields[i];
        rows.push_back(std::move(row));
    }
}

// --- JSON reading: an array of flat objects whose values are strings, numbers, true, false or null.

class JsonReader {
public:
    explicit JsonReader(std::istream& in) : m_text(std::istreambuf_iterator<char>(in), {}) {}

    bool Read(std::vector<Row>& rows, std::string& error) {
        if (!Expect('[', error))
            return false;
        Skip();
        if (Peek() == ']') {
            ++m_at;
            return End(error);
        }
        for (;;) {
            Row row;
            Skip();
            row.line = m_line;
            if (!ReadObject(row, error))
                return false;
            rows.push_back(std::move(row));
            Skip();
            if (Peek() == ',') {
                ++m_at;
                continue;
            }
            if (!Expect(']', error))
                return false;
            return End(error);
        }
    }

private:
    char Peek() const { return m_at < m_text.size() ? m_text[m_at] : '\0'; }
    void Skip() {
        for (; m_at < m_text.size() && std::isspace(static_cast<unsigned char>(m_text[m_at])); ++m_at) {
            if (m_text[m_at] == '\n')
                ++m_line;
        }
    }
    bool Fail(const std::string& why, std::string& error) const {
        error = "line " + std::to_string(m_line) + ": " + why;
        return false;
    }
    bool Expect(char c, std::string& error) {
        Skip();
        if (Peek() != c)
            return Fail(std::string("expected '") + c + "'", error);
        ++m_at;
        return true;
    }
    bool End(std::string& error) {
        Skip();
        return m_at == m_text.size() || Fail("text after the closing ']'", error);
    }
    bool ReadString(std::string& out, std::string& error) {
        if (!Expect('"', error))
            return false;
        out.clear();
        while (m_at < m_text.size()) {
            const char c = m_text[m_at++];
            if (c == '"')
                return true;
            if (c == '\n')
                return Fail("line break inside a string", error);
            if (c != '\\') {
                out += c;
                continue;
            }
            const char e = Peek();
            ++m_at;
            switch (e) {
            case '"': case '\\': case '/': out += e; break;
            case 'b': out += '\b'; break;
            case 'f': out += '\f'; break;
            case 'n': out += '\n'; break;
            case 'r': out += '\r'; break;
            case 't': out += '\t'; break;
            case 'u': {
                if (m_at + 4 > m_text.size())
                    return Fail("short \\u escape", error);
                unsigned code = 0;
                for (int i = 0; i < 4; ++i) {
                    const char h = m_text[m_at++];
                    const int d = std::isxdigit(static_cast<unsigned char>(h))
                                      ? (std::isdigit(static_cast<unsigned char>(h)) ? h - '0' : (std::tolower(h) - 'a' + 10))
                                      : -1;
                    if (d < 0)
                        return Fail("bad \\u escape", error);
                    code = code * 16 + static_cast<unsigned>(d);
                }
                if (code > 0xff)
                    return Fail("character beyond one byte (\\u" + std::to_string(code) + ")", error);
                out += static_cast<char>(code);
                break;
            }
            default: return Fail("bad escape", error);
            }
        }
        return Fail("string not closed", error);
    }
    bool ReadValue(std::string& out, std::string& error) {
        Skip();
        if (Peek() == '"')
            return ReadString(out, error);
        const size_t start = m_at;
        while (m_at < m_text.size() && std::string_view("+-.0123456789eEtruefalsn").find(m_text[m_at]) !=
                                           std::string_view::npos)
            ++m_at;
        out = m_text.substr(start, m_at - start);
        if (out.empty())
            return Fail("expected a value", error);
        if (out == "null")
            out.clear();
        return true;
    }
    bool ReadObject(Row& row, std::string& error) {
        if (!Expect('{', error))
            return false;
        Skip();
        if (Peek() == '}') {
            ++m_at;
            return true;
        }
        for (;;) {
            std::string name, value;
            if (!ReadString(name, error) || !Expect(':', error) || !ReadValue(value, error))
                return false;
            if (!row.values.emplace(name, value).second)
                return Fail("field \"" + name + "\" given twice", error);
            Skip();
            if (Peek() == ',') {
                ++m_at;
                Skip();
                continue;
            }
            return Expect('}', error);
        }
    }

    std::string m_text;
    size_t m_at = 0;
    size_t m_line = 1;
};

}  // namespace

bool ParseFormat(const std::string& name, Format& format) {
    if (name == "table")
        format = Format::kTable;
    else if (name == "csv")
        format = Format::kCsv;
    else if (name == "json")
        format = Format::kJson;
    else
        return false;
    return true;
}

RecordWriter::RecordWriter(std::FILE* out, Format format, const std::vector<Column>& columns)
    : m_out(out), m_format(format), m_columns(columns) {
    for (const Column& c : columns)
        m_nameWidth = std::max(m_nameWidth, c.name.size());
    if (format == Format::kCsv) {
        for (size_t i = 0; i < columns.size(); ++i)
            std::fprintf(out, "%s%s", i ? "," : "", CsvField(columns[i].name).c_str());
        std::fputc('\n', out);
    } else if (format == Format::kJson) {
        std::fputs("[", out);
    }
}

void RecordWriter::Write(const std::vector<uint8_t>& record) {
    ++m_written;
    const ValueStyle style = m_format == Format::kTable ? ValueStyle::kReadable : ValueStyle::kExact;
    if (m_format == Format::kTable) {
        std::fprintf(m_out, "%s-- record %zu (%zu bytes)\n", m_written > 1 ? "\n" : "", m_written, record.size());
        for (const Column& c : m_columns)
            std::fprintf(m_out, "  %-*s  %s\n", static_cast<int>(m_nameWidth), c.name.c_str(),
                         Printable(Decode(c, record, style).text).c_str());
        return;
    }
    if (m_format == Format::kCsv) {
        for (size_t i = 0; i < m_columns.size(); ++i)
            std::fprintf(m_out, "%s%s", i ? "," : "", CsvField(Decode(m_columns[i], record, style).text).c_str());
        std::fputc('\n', m_out);
        return;
    }
    std::fputs(m_written > 1 ? ",\n{" : "\n{", m_out);
    for (size_t i = 0; i < m_columns.size(); ++i) {
        const Value v = Decode(m_columns[i], record, style);
        std::fprintf(m_out, "%s%s:%s", i ? "," : "", JsonString(m_columns[i].name).c_str(),
                     v.number ? v.text.c_str() : JsonString(v.text).c_str());
    }
    std::fputs("}", m_out);
}

void RecordWriter::Finish() {
    if (m_format == Format::kJson)
        std::fputs(m_written ? "\n]\n" : "]\n", m_out);
}

bool ReadRows(std::istream& in, Format format, std::vector<Row>& rows, std::string& error) {
    if (format == Format::kCsv)
        return ReadCsv(in, rows, error);
    if (format == Format::kJson)
        return JsonReader(in).Read(rows, error);
    error = "the table form cannot be loaded; use csv or json";
    return false;
}

}  // namespace tool
