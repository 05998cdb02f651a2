// A SQLite VFS wrapper that makes file reads or writes fail, registered as the default VFS while
// it lives. The store opens its databases through the default VFS, so this is the seam through
// which tests reach the store's failure paths (status 2 for an I/O error, 18 for a full disk).
// The VFS is bound when a connection opens: create the object before opening the file to break.
#pragma once

namespace recmantest {

enum class Fault { None, IoError, DiskFull };

class FaultVfs {
public:
    FaultVfs();
    ~FaultVfs();
    FaultVfs(const FaultVfs&) = delete;
    FaultVfs& operator=(const FaultVfs&) = delete;

    // Every later write (and truncate) fails with this fault.
    void failWrites(Fault fault);
    // Every later read of a file fails with this fault (IoError only).
    void failReads(Fault fault);
    void clear();
};

}  // namespace recmantest
