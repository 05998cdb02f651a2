#include "ConvertMillPriceFileToIniFormat.h"

#include "core/Platform.h"
#include "plainfile/PlainFile.h"

#include <algorithm>
#include <cstdio>
#include <string>
#include <string_view>

namespace {

constexpr std::size_t kMaxLineChars = 254;

// Reads the way a text-mode line read of at most kMaxLineChars characters does: CR LF pairs
// are line feeds, and a line ends after its line feed or at the character limit.
class LineReader {
public:
    explicit LineReader(std::string content) : m_text(std::move(content)) {
        std::string::size_type cr = 0;
        while ((cr = m_text.find("\r\n", cr)) != std::string::npos)
            m_text.erase(cr, 1);
    }

    bool Next(std::string& line) {
        if (m_pos >= m_text.size())
            return false;
        std::size_t end = m_text.find('\n', m_pos);
        end = end == std::string::npos ? m_text.size() : end + 1;
        end = std::min(end, m_pos + kMaxLineChars);
        line = m_text.substr(m_pos, end - m_pos);
        m_pos = end;
        // The line is a zero-terminated text: it ends at its first zero byte.
        line.resize(std::min(line.size(), line.find('\0')));
        return true;
    }

private:
    std::string m_text;
    std::size_t m_pos = 0;
};

}  // namespace

// Always 1: failures to rename, read or write only leave less done.
int ConvertMillPriceFileToIniFormat(const char* path) {
    if (path == nullptr)
        return 1;
    const std::string target(path);
    const std::string companion = plainfile::CompanionPath(target, "DOS");
    // Converting the companion itself would read and overwrite one file.
    if (plainfile::SamePath(target, companion))
        return 1;
    platform::RemoveFile(companion);
    platform::MoveFileTo(target, companion);

    std::string content;
    if (!plainfile::ReadWholeFile(companion, content))
        return 1;
    std::FILE* out = std::fopen(target.c_str(), "w");
    if (out == nullptr)
        return 1;
    LineReader reader(std::move(content));
    std::string line;
    int counter = 0;
    while (reader.Next(line)) {
        // The last character goes unconditionally: meant for the line feed.
        if (!line.empty())
            line.pop_back();
        if (line.find(',') != std::string::npos) {
            std::fprintf(out, "Key%02d=%s\n", counter++, line.c_str());
        } else {
            std::fprintf(out, "\n[%s]\n", line.c_str());
            counter = 0;
        }
    }
    std::fclose(out);
    return 1;
}
