// Fixtures shared by every test program: a fresh temporary directory per test and capture of
// the library's message boxes and debug traces.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace testsupport {

// A fresh directory, removed with everything in it when the object goes away.
class TempDir {
public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    const std::filesystem::path& path() const { return m_path; }
    // Full path of `name` inside the directory, as a string.
    std::string file(const std::string& name) const { return (m_path / name).string(); }

private:
    std::filesystem::path m_path;
};

struct CapturedMessage {
    std::string caption;
    std::string text;
    unsigned int style;
};

// Captures every message box shown while the object lives; restores the previous handler after.
class MessageCapture {
public:
    MessageCapture();
    ~MessageCapture();
    MessageCapture(const MessageCapture&) = delete;
    MessageCapture& operator=(const MessageCapture&) = delete;

    const std::vector<CapturedMessage>& messages() const;
    size_t count() const { return messages().size(); }
    // Text of the last message, or "" when none was shown.
    std::string lastText() const;
    void clear();
};

// Captures every debug trace while the object lives.
class TraceCapture {
public:
    TraceCapture();
    ~TraceCapture();
    TraceCapture(const TraceCapture&) = delete;
    TraceCapture& operator=(const TraceCapture&) = delete;

    const std::vector<std::string>& traces() const;
    void clear();
};

}  // namespace testsupport
