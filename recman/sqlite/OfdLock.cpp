#if !defined(_WIN32)

#include "recman/sqlite/OfdLock.h"

#include <mutex>
#include <set>

#include <pthread.h>
#include <unistd.h>

namespace recman::sqlite {

namespace {

std::mutex g_mutex;
std::set<int> g_kept;

void lockKept() { g_mutex.lock(); }
void unlockKept() { g_mutex.unlock(); }
// In the child: its copies go; the descriptions, and their locks, stay with the parent.
void closeInheritedKept()
{
    for (int fd : g_kept)
        ::close(fd);
    g_kept.clear();
    g_mutex.unlock();
}

}  // namespace

void keepFromChildren(int fd)
{
    static std::once_flag once;
    std::call_once(once, [] { pthread_atfork(lockKept, unlockKept, closeInheritedKept); });
    std::lock_guard<std::mutex> lock(g_mutex);
    g_kept.insert(fd);
}

void closeKept(int fd)
{
    std::lock_guard<std::mutex> lock(g_mutex);
    g_kept.erase(fd);
    ::close(fd);
}

}  // namespace recman::sqlite

#endif
