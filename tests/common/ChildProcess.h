// Second processes for tests: the test program starts itself again as a named child routine and
// talks to it line by line through pipes.
//
// A routine is registered with TARSEL_CHILD_ROUTINE(name) { ... } at namespace scope. It reads
// commands with channel.readLine() and answers with channel.writeLine(); when its input ends (the
// parent closed it) it returns and the child exits with status 0. The parent side,
// ChildProcess("name"), starts /proc/self/exe with TARSEL_TEST_CHILD=name in its environment; a
// static initializer sees the variable and runs the routine before the test framework starts.
// Routines run while static initialization is under way: they must not rely on namespace-scope
// objects of the test program, only on the library, local state and the channel.
#pragma once

#include <string>
#include <sys/types.h>

namespace testsupport {

// Environment variable that names the routine a child process runs.
inline constexpr const char* kChildRoutineVariable = "TARSEL_TEST_CHILD";

// The child's end: standard input and output, one line a message.
class ChildChannel {
public:
    // Next line without its line feed; false when the input has ended.
    bool readLine(std::string& line);
    void writeLine(const std::string& line);

private:
    std::string m_buffer;
};

using ChildRoutine = void (*)(ChildChannel& channel);

// Adds a routine to the registry; registering a name twice keeps the first routine.
void RegisterChildRoutine(const char* name, ChildRoutine routine);

// For the platform halves of the helper: whether a routine of that name is registered, and
// running it as the child (a name not registered ends the process with status 127).
bool ChildRoutineExists(const std::string& name);
void RunChildRoutine(const std::string& name);

struct ChildRoutineRegistrar {
    ChildRoutineRegistrar(const char* name, ChildRoutine routine) { RegisterChildRoutine(name, routine); }
};

// The parent's end. The destructor closes the child's input and waits for it to exit.
class ChildProcess {
public:
    explicit ChildProcess(const std::string& routine);
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    void send(const std::string& line);
    // Next reply line; kEnded when the child closed its output (it exited or was killed).
    std::string receive();
    std::string request(const std::string& line) {
        send(line);
        return receive();
    }
    // Kills the child with SIGKILL and reaps it. Reaping a child also waits, on a server, until
    // the child's session has ended.
    void kill();
    // Closes the child's input and waits for it; its exit status, or -1 when it did not exit normally.
    int finish();
    pid_t pid() const { return m_pid; }

    static constexpr const char* kEnded = "<child ended>";

private:
    void reap();
    static void AwaitSessionEnd(pid_t pid);

    pid_t m_pid = -1;
    int m_toChild = -1;
    int m_fromChild = -1;
    int m_exitStatus = -1;
    std::string m_buffer;
};

}  // namespace testsupport

// Registrations run before every ordinary static initializer of the program, so the registry is
// complete when the dispatcher in ChildProcess.cpp looks for the routine to run.
#define TARSEL_CHILD_ROUTINE(name)                                                                       \
    static void name(::testsupport::ChildChannel& channel);                                             \
    static ::testsupport::ChildRoutineRegistrar name##Registrar __attribute__((init_priority(200)))( \
        #name, &name);                                                                                  \
    static void name([[maybe_unused]] ::testsupport::ChildChannel& channel)
