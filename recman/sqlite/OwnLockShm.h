// The shared-memory file (the WAL index) of one connection of the forked child's VFS: a
// descriptor of its own, its mappings, and the WAL locks it holds, on the bytes SQLite uses.
#pragma once

#if !defined(_WIN32)

#include <sys/types.h>

#include <cstdint>
#include <string>
#include <vector>

namespace recman::sqlite {

class OwnLockShm {
public:
    OwnLockShm() = default;
    ~OwnLockShm() { unmap(false); }
    OwnLockShm(const OwnLockShm&) = delete;
    OwnLockShm& operator=(const OwnLockShm&) = delete;

    // xShmMap: region `region` of `size` bytes of "<database>-shm", joined at the first call.
    int map(const std::string& database, mode_t mode, int region, int size, bool extend, void volatile** out);
    // xShmLock.
    int lock(int offset, int n, int flags);
    // xShmUnmap; `deleteFile` removes the file (SQLite asks only when nobody else uses it).
    void unmap(bool deleteFile);

private:
    int attach(mode_t mode);

    std::string m_path;
    int m_fd = -1;
    std::vector<void*> m_regions;
    size_t m_regionSize = 0;
    uint16_t m_shared = 0, m_exclusive = 0;
};

}  // namespace recman::sqlite

#endif
