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

// Process handles of running children by process id (the header keeps the id only).
std::mutex g_processesMutex;
std::map<pid_t, HANDLE>& Processes() {
    static std::map<pid_t, HANDLE> processes;
    return processes;
}

// Inheritable pipe ends and the routine's environment variable exist only while one child is
// created, so that no other child inherits them or sees the variable.
std::mutex g_createMutex;

int DispatchChild() {
    const char* wanted = std::getenv(kChildRoutineVariable);
    if (wanted == nullptr || wanted[0] == '\0')
        return 0;
    const std::string name = wanted;
    ::SetEnvironmentVariableA(kChildRoutineVariable, nullptr);
    // Lines, not text: no carriage returns are added or taken away.
    ::_setmode(0, _O_BINARY);
    ::_setmode(1, _O_BINARY);
    RunChildRoutine(name);
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

ChildProcess::ChildProcess(const std::string& routine) {
    (void)g_dispatched;
    if (!ChildRoutineExists(routine))
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

void ChildProcess::kill() {
    if (m_pid > 0) {
        std::lock_guard<std::mutex> lock(g_processesMutex);
        ::TerminateProcess(Processes()[m_pid], kKilledExitCode);
    }
    reap();
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
