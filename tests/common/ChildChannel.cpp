// What the POSIX and the Windows child-process helpers share: the routine registry, line-by-line
// messages over pipe descriptors, and the parent's send, receive and finish.
#include "ChildProcess.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <map>
#if defined(_WIN32)
#include <io.h>
#else
#include <unistd.h>
#endif

namespace testsupport {

namespace {

// Function-local so that registrations from any translation unit find it constructed.
std::map<std::string, ChildRoutine>& Registry() {
    static std::map<std::string, ChildRoutine> registry;
    return registry;
}

#if defined(_WIN32)
int WriteSome(int fd, const char* data, size_t size) { return ::_write(fd, data, static_cast<unsigned>(size)); }
int ReadSome(int fd, char* data, size_t size) { return ::_read(fd, data, static_cast<unsigned>(size)); }
#else
int WriteSome(int fd, const char* data, size_t size) { return static_cast<int>(::write(fd, data, size)); }
int ReadSome(int fd, char* data, size_t size) { return static_cast<int>(::read(fd, data, size)); }
#endif

void WriteAll(int fd, const char* data, size_t size) {
    while (size > 0) {
        const int written = WriteSome(fd, data, size);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return;
        data += written;
        size -= static_cast<size_t>(written);
    }
}

// Reads from fd into buffer until it holds a full line; false at end of input with no full line.
bool ReadLine(int fd, std::string& buffer, std::string& line) {
    for (;;) {
        const size_t end = buffer.find('\n');
        if (end != std::string::npos) {
            line = buffer.substr(0, end);
            buffer.erase(0, end + 1);
            return true;
        }
        char chunk[512];
        const int got = ReadSome(fd, chunk, sizeof chunk);
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            return false;
        buffer.append(chunk, static_cast<size_t>(got));
    }
}

}  // namespace

bool ChildRoutineExists(const std::string& name) { return Registry().count(name) != 0; }

void RunChildRoutine(const std::string& name) {
    const auto found = Registry().find(name);
    if (found == Registry().end()) {
        std::fprintf(stderr, "no child routine named '%s'\n", name.c_str());
        std::_Exit(127);
    }
    ChildChannel channel;
    found->second(channel);
    std::fflush(nullptr);
}

bool ChildChannel::readLine(std::string& line) { return ReadLine(0, m_buffer, line); }

void ChildChannel::writeLine(const std::string& line) {
    const std::string message = line + "\n";
    WriteAll(1, message.data(), message.size());
}

void RegisterChildRoutine(const char* name, ChildRoutine routine) { Registry().emplace(name, routine); }

void ChildProcess::send(const std::string& line) {
    if (m_toChild < 0)
        return;
    const std::string message = line + "\n";
    WriteAll(m_toChild, message.data(), message.size());
}

std::string ChildProcess::receive() {
    std::string line;
    if (m_fromChild < 0 || !ReadLine(m_fromChild, m_buffer, line))
        return kEnded;
    return line;
}

int ChildProcess::finish() {
    reap();
    return m_exitStatus;
}

}  // namespace testsupport
