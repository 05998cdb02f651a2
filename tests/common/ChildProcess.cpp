#include "ChildProcess.h"
#include "ServerStore.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <stdexcept>
#include <thread>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

extern char** environ;

namespace testsupport {

namespace {

// Runs the routine the environment names, then ends the process without returning to the test
// framework. Does nothing in an ordinary test run.
int DispatchChild() {
    const char* wanted = std::getenv(kChildRoutineVariable);
    if (wanted == nullptr)
        return 0;
    const std::string name = wanted;
    ::unsetenv(kChildRoutineVariable);
    RunChildRoutine(name);
    ::_exit(0);
}

const int g_dispatched = DispatchChild();

}  // namespace

ChildProcess::ChildProcess(const std::string& routine) {
    (void)g_dispatched;
    if (!ChildRoutineExists(routine))
        throw std::invalid_argument("no child routine named " + routine);
    // A child that died must not kill the test through SIGPIPE on the next send.
    std::signal(SIGPIPE, SIG_IGN);

    int toChild[2];
    int fromChild[2];
    if (::pipe2(toChild, O_CLOEXEC) != 0)
        throw std::runtime_error("pipe failed");
    if (::pipe2(fromChild, O_CLOEXEC) != 0) {
        ::close(toChild[0]);
        ::close(toChild[1]);
        throw std::runtime_error("pipe failed");
    }

    // Everything exec needs is prepared before fork: the child may only make async-signal-safe calls.
    std::string variable = std::string(kChildRoutineVariable) + "=" + routine;
    std::vector<char*> environment;
    for (char** entry = environ; *entry != nullptr; ++entry) {
        if (std::strncmp(*entry, kChildRoutineVariable, std::strlen(kChildRoutineVariable)) != 0)
            environment.push_back(*entry);
    }
    environment.push_back(variable.data());
    environment.push_back(nullptr);
    char program[] = "/proc/self/exe";
    char* arguments[] = {program, nullptr};

    m_pid = ::fork();
    if (m_pid == 0) {
        ::dup2(toChild[0], STDIN_FILENO);
        ::dup2(fromChild[1], STDOUT_FILENO);
        ::execve(program, arguments, environment.data());
        ::_exit(126);
    }
    ::close(toChild[0]);
    ::close(fromChild[1]);
    if (m_pid < 0) {
        ::close(toChild[1]);
        ::close(fromChild[0]);
        throw std::runtime_error("fork failed");
    }
    m_toChild = toChild[1];
    m_fromChild = fromChild[0];
}

ChildProcess::~ChildProcess() {
    finish();
    if (m_fromChild >= 0)
        ::close(m_fromChild);
}

void ChildProcess::kill() {
    if (m_pid > 0)
        ::kill(m_pid, SIGKILL);
    reap();
}

void ChildProcess::AwaitSessionEnd(pid_t pid) {
    // A server notices an ended client's closed connection a moment later; until its session has
    // ended, the client's record locks and exclusive opens still stand.
    const PostgresServer* server = ActiveServer();
    if (!server)
        return;
    const std::string sessions =
        "SELECT count(*) FROM pg_stat_activity WHERE application_name='tarsel " + std::to_string(pid) + "'";
    for (int tries = 0; tries < 200 && server->sql(sessions) != "0"; ++tries)
        std::this_thread::sleep_for(std::chrono::milliseconds(25));
}

void ChildProcess::reap() {
    if (m_toChild >= 0) {
        ::close(m_toChild);
        m_toChild = -1;
    }
    if (m_pid <= 0)
        return;
    int status = 0;
    while (::waitpid(m_pid, &status, 0) < 0 && errno == EINTR) {
    }
    m_exitStatus = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    AwaitSessionEnd(m_pid);
    m_pid = -1;
}

}  // namespace testsupport
