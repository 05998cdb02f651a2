#if !defined(_WIN32)

#include "recman/Platform.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include <dlfcn.h>
#include <pthread.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

namespace recman::platform {

int64_t currentProcessId() { return int64_t(::getpid()); }

std::string hostName()
{
    char name[256] = {};
    if (::gethostname(name, sizeof name - 1) != 0)
        return "";
    return name;
}

int64_t processStartToken(int64_t pid)
{
    char name[64];
    std::snprintf(name, sizeof name, "/proc/%lld/stat", static_cast<long long>(pid));
    FILE* f = std::fopen(name, "r");
    if (!f)
        return 0;
    char buf[1024];
    const size_t n = std::fread(buf, 1, sizeof buf - 1, f);
    std::fclose(f);
    buf[n] = '\0';
    // The command name may hold blanks and parentheses: fields are counted after the last ')'.
    const char* p = std::strrchr(buf, ')');
    if (!p)
        return 0;
    ++p;
    // Field 22 is the start time; after ')' comes field 3.
    for (int field = 3; field < 22 && *p; ++field) {
        while (*p == ' ')
            ++p;
        while (*p && *p != ' ')
            ++p;
    }
    return std::strtoll(p, nullptr, 10);
}

bool processAlive(int64_t pid, int64_t startToken)
{
    if (pid <= 0)
        return false;
    if (::kill(pid_t(pid), 0) != 0 && errno != EPERM)
        return false;
    if (startToken == 0)
        return true;
    const int64_t now = processStartToken(pid);
    // A zombie or an unreadable process table entry keeps the owner alive only when tokens agree.
    return now != 0 && now == startToken;
}

PathKind inspectPath(const std::string& path, FileIdentity& identity)
{
    struct stat st;
    if (::stat(path.c_str(), &st) != 0)
        return PathKind::Missing;
    identity.device = uint64_t(st.st_dev);
    identity.inode = uint64_t(st.st_ino);
    if (S_ISDIR(st.st_mode))
        return PathKind::Directory;
    return S_ISREG(st.st_mode) ? PathKind::File : PathKind::Other;
}

bool canRead(const std::string& path) { return ::access(path.c_str(), R_OK) == 0; }
bool canWrite(const std::string& path) { return ::access(path.c_str(), W_OK) == 0; }

void callInChildAfterFork(void (*handler)()) { pthread_atfork(nullptr, nullptr, handler); }

void keepLibraryLoaded()
{
    // The handle is never closed: the library stays until the process ends.
    Dl_info self{};
    if (::dladdr(reinterpret_cast<void*>(&keepLibraryLoaded), &self) && self.dli_fname)
        ::dlopen(self.dli_fname, RTLD_LAZY | RTLD_NOLOAD | RTLD_NODELETE);
}

bool replaceFile(const std::string& from, const std::string& to) { return std::rename(from.c_str(), to.c_str()) == 0; }

}  // namespace recman::platform

#endif
