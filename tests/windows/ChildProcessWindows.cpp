// Second processes for tests on Windows: the test program is started again with CreateProcess,
// the routine named in its environment, its standard input and output connected to two pipes.
// Same interface as the POSIX helper (ChildProcess.h); kill() is TerminateProcess.
#include "ChildProcess.h"

#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <io.h>
#include <map>
#include <mutex>
#include <stdexcept>

namespace testsupport {

namespace {

// Exit code a killed child is given, told apart from any code a routine returns.
constexpr UINT kKilledExitCode = 0xDEAD;

std::map<std::string, ChildRoutine>& Registry() {
    static std::map<std::string, ChildRoutine> registry;
    return registry;
}

// Process handles of running children by process id (the header keeps the id only).
std::mutex g_processesMutex;
std::map<pid_t, HANDLE>& Processes() {
    static std::map<pid_t, HANDLE> processes;
    return processes;
}

// Inheritable pipe ends and the routine's environment variable exist only while one child is
// created, so that no other child inherits them or sees the variable.
std::mutex g_createMutex;

void WriteAll(int fd, const char* data, size_t size) {
    while (size > 0) {
        const int written = ::_write(fd, data, static_cast<unsigned>(size));
        if (written <= 0)
            return;
        data += written;
        size -= static_cast<size_t>(written);
    }
}

bool ReadLine(int fd, std::string& buffer, std::string& line) {
    for (;;) {
        const size_t end = buffer.find('\n');
        if (end != std::string::npos) {
            line = buffer.substr(0, end);
            buffer.erase(0, end + 1);
            return true;
        }
        char chunk[512];
        const int got = ::_read(fd, chunk, sizeof chunk);
        if (got <= 0)
            return false;
        buffer.append(chunk, static_cast<size_t>(got));
    }
}

int DispatchChild() {
    const char* wanted = std::getenv(kChildRoutineVariable);
    if (wanted == nullptr || wanted[0] == '\0')
        return 0;
    const std::string name = wanted;
    ::SetEnvironmentVariableA(kChildRoutineVariable, nullptr);
    const auto found = Registry().find(name);
    if (found == Registry().end()) {
        std::fprintf(stderr, "no child routine named '%s'\n", name.c_str());
        std::_Exit(127);
    }
    // Lines, not text: no carriage returns are added or taken away.
    ::_setmode(0, _O_BINARY);
    ::_setmode(1, _O_BINARY);
    ChildChannel channel;
    found->second(channel);
    std::fflush(nullptr);
    std::_Exit(0);
}

const int g_dispatched = DispatchChild();

HANDLE Inheritable(HANDLE handle) {
    HANDLE copy = nullptr;
    if (!::DuplicateHandle(::GetCurrentProcess(), handle, ::GetCurrentProcess(), &copy, 0, TRUE,
                           DUPLICATE_SAME_ACCESS))
        return nullptr;
    return copy;
}

}  // namespace

bool ChildChannel::readLine(std::string& line) { return ReadLine(0, m_buffer, line); }

void ChildChannel::writeLine(const std::string& line) {
    const std::string message = line + "\n";
    WriteAll(1, message.data(), message.size());
}

void RegisterChildRoutine(const char* name, ChildRoutine routine) { Registry().emplace(name, routine); }

ChildProcess::ChildProcess(const std::string& routine) {
    (void)g_dispatched;
    if (Registry().find(routine) == Registry().end())
        throw std::invalid_argument("no child routine named " + routine);

    char program[MAX_PATH];
    const DWORD length = ::GetModuleFileNameA(nullptr, program, sizeof program);
    if (length == 0 || length >= sizeof program)
        throw std::runtime_error("own program path not found");
    std::string commandLine = std::string("\"") + program + "\"";

    std::lock_guard<std::mutex> createLock(g_createMutex);
    HANDLE childIn = nullptr, toChild = nullptr, fromChild = nullptr, childOut = nullptr;
    if (!::CreatePipe(&childIn, &toChild, nullptr, 0))
        throw std::runtime_error("pipe failed");
    if (!::CreatePipe(&fromChild, &childOut, nullptr, 0)) {
        ::CloseHandle(childIn);
        ::CloseHandle(toChild);
        throw std::runtime_error("pipe failed");
    }
    // Only the child's ends are inherited; the parent's stay its own, so that closing them ends
    // the child's input.
    HANDLE inheritIn = Inheritable(childIn);
    HANDLE inheritOut = Inheritable(childOut);
    HANDLE inheritErr = Inheritable(::GetStdHandle(STD_ERROR_HANDLE));
    ::CloseHandle(childIn);
    ::CloseHandle(childOut);

    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = inheritIn;
    startup.hStdOutput = inheritOut;
    startup.hStdError = inheritErr;
    PROCESS_INFORMATION info{};
    ::SetEnvironmentVariableA(kChildRoutineVariable, routine.c_str());
    const BOOL started = inheritIn && inheritOut &&
                         ::CreateProcessA(nullptr, commandLine.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                                          &startup, &info);
    ::SetEnvironmentVariableA(kChildRoutineVariable, nullptr);
    for (HANDLE h : {inheritIn, inheritOut, inheritErr})
        if (h)
            ::CloseHandle(h);
    if (!started) {
        ::CloseHandle(toChild);
        ::CloseHandle(fromChild);
        throw std::runtime_error("CreateProcess failed");
    }
    ::CloseHandle(info.hThread);
    m_pid = static_cast<pid_t>(info.dwProcessId);
    {
        std::lock_guard<std::mutex> lock(g_processesMutex);
        Processes()[m_pid] = info.hProcess;
    }
    m_toChild = ::_open_osfhandle(reinterpret_cast<intptr_t>(toChild), _O_BINARY | _O_WRONLY);
    m_fromChild = ::_open_osfhandle(reinterpret_cast<intptr_t>(fromChild), _O_BINARY | _O_RDONLY);
}

ChildProcess::~ChildProcess() {
    finish();
    if (m_fromChild >= 0)
        ::_close(m_fromChild);
}

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

void ChildProcess::kill() {
    if (m_pid > 0) {
        std::lock_guard<std::mutex> lock(g_processesMutex);
        ::TerminateProcess(Processes()[m_pid], kKilledExitCode);
    }
    reap();
}

int ChildProcess::finish() {
    reap();
    return m_exitStatus;
}

void ChildProcess::reap() {
    if (m_toChild >= 0) {
        ::_close(m_toChild);
        m_toChild = -1;
    }
    if (m_pid <= 0)
        return;
    HANDLE process;
    {
        std::lock_guard<std::mutex> lock(g_processesMutex);
        process = Processes()[m_pid];
        Processes().erase(m_pid);
    }
    ::WaitForSingleObject(process, INFINITE);
    DWORD code = 0;
    const bool known = ::GetExitCodeProcess(process, &code);
    ::CloseHandle(process);
    m_exitStatus = known && code != kKilledExitCode ? static_cast<int>(code) : -1;
    m_pid = -1;
}

}  // namespace testsupport
