#include "FaultVfs.h"

#include <sqlite3.h>

#include <atomic>
#include <cstring>

namespace recmantest {

namespace {

std::atomic<Fault> g_writeFault{Fault::None};
std::atomic<Fault> g_readFault{Fault::None};
sqlite3_vfs* g_base = nullptr;
sqlite3_vfs g_vfs;

struct FaultFile {
    sqlite3_file base;
    sqlite3_file* real;
};

sqlite3_file* real(sqlite3_file* f) { return reinterpret_cast<FaultFile*>(f)->real; }

int faultCode(Fault f, int ioCode)
{
    return f == Fault::DiskFull ? SQLITE_FULL : ioCode;
}

int xClose(sqlite3_file* f)
{
    sqlite3_file* r = real(f);
    const int rc = r->pMethods ? r->pMethods->xClose(r) : SQLITE_OK;
    return rc;
}
int xRead(sqlite3_file* f, void* p, int n, sqlite3_int64 off)
{
    if (g_readFault != Fault::None)
        return SQLITE_IOERR_READ;
    return real(f)->pMethods->xRead(real(f), p, n, off);
}
int xWrite(sqlite3_file* f, const void* p, int n, sqlite3_int64 off)
{
    if (const Fault w = g_writeFault; w != Fault::None)
        return faultCode(w, SQLITE_IOERR_WRITE);
    return real(f)->pMethods->xWrite(real(f), p, n, off);
}
int xTruncate(sqlite3_file* f, sqlite3_int64 size)
{
    if (const Fault w = g_writeFault; w != Fault::None)
        return faultCode(w, SQLITE_IOERR_TRUNCATE);
    return real(f)->pMethods->xTruncate(real(f), size);
}
int xSync(sqlite3_file* f, int flags) { return real(f)->pMethods->xSync(real(f), flags); }
int xFileSize(sqlite3_file* f, sqlite3_int64* size) { return real(f)->pMethods->xFileSize(real(f), size); }
int xLock(sqlite3_file* f, int l) { return real(f)->pMethods->xLock(real(f), l); }
int xUnlock(sqlite3_file* f, int l) { return real(f)->pMethods->xUnlock(real(f), l); }
int xCheckReservedLock(sqlite3_file* f, int* out) { return real(f)->pMethods->xCheckReservedLock(real(f), out); }
int xFileControl(sqlite3_file* f, int op, void* arg) { return real(f)->pMethods->xFileControl(real(f), op, arg); }
int xSectorSize(sqlite3_file* f) { return real(f)->pMethods->xSectorSize(real(f)); }
int xDeviceCharacteristics(sqlite3_file* f) { return real(f)->pMethods->xDeviceCharacteristics(real(f)); }
int xShmMap(sqlite3_file* f, int pg, int sz, int extend, void volatile** pp)
{
    return real(f)->pMethods->xShmMap(real(f), pg, sz, extend, pp);
}
int xShmLock(sqlite3_file* f, int offset, int n, int flags)
{
    return real(f)->pMethods->xShmLock(real(f), offset, n, flags);
}
void xShmBarrier(sqlite3_file* f) { real(f)->pMethods->xShmBarrier(real(f)); }
int xShmUnmap(sqlite3_file* f, int del) { return real(f)->pMethods->xShmUnmap(real(f), del); }
int xFetch(sqlite3_file* f, sqlite3_int64 off, int n, void** pp)
{
    // Memory-mapped reads would bypass xRead: refuse them so reads go through the seam.
    *pp = nullptr;
    (void)f;
    (void)off;
    (void)n;
    return SQLITE_OK;
}
int xUnfetch(sqlite3_file* f, sqlite3_int64 off, void* p)
{
    return p ? real(f)->pMethods->xUnfetch(real(f), off, p) : SQLITE_OK;
}

const sqlite3_io_methods g_methods = {
    3, xClose, xRead, xWrite, xTruncate, xSync, xFileSize, xLock, xUnlock, xCheckReservedLock, xFileControl,
    xSectorSize, xDeviceCharacteristics, xShmMap, xShmLock, xShmBarrier, xShmUnmap, xFetch, xUnfetch,
};

int xOpen(sqlite3_vfs*, sqlite3_filename name, sqlite3_file* f, int flags, int* outFlags)
{
    auto* ff = reinterpret_cast<FaultFile*>(f);
    ff->real = reinterpret_cast<sqlite3_file*>(ff + 1);
    std::memset(ff->real, 0, size_t(g_base->szOsFile));
    const int rc = g_base->xOpen(g_base, name, ff->real, flags, outFlags);
    ff->base.pMethods = rc == SQLITE_OK && ff->real->pMethods ? &g_methods : nullptr;
    if (rc != SQLITE_OK && ff->real->pMethods)
        ff->real->pMethods->xClose(ff->real);
    return rc;
}
int xDelete(sqlite3_vfs*, const char* name, int syncDir) { return g_base->xDelete(g_base, name, syncDir); }
int xAccess(sqlite3_vfs*, const char* name, int flags, int* out) { return g_base->xAccess(g_base, name, flags, out); }
int xFullPathname(sqlite3_vfs*, const char* name, int n, char* out)
{
    return g_base->xFullPathname(g_base, name, n, out);
}

}  // namespace

FaultVfs::FaultVfs()
{
    clear();
    g_base = sqlite3_vfs_find(nullptr);
    g_vfs = *g_base;
    g_vfs.iVersion = 1;
    g_vfs.pNext = nullptr;
    g_vfs.zName = "recman-fault";
    g_vfs.szOsFile = int(sizeof(FaultFile)) + g_base->szOsFile;
    g_vfs.xOpen = xOpen;
    g_vfs.xDelete = xDelete;
    g_vfs.xAccess = xAccess;
    g_vfs.xFullPathname = xFullPathname;
    // Time and randomness come from the base VFS through the copied members.
    g_vfs.xCurrentTimeInt64 = nullptr;
    sqlite3_vfs_register(&g_vfs, 1);
}

FaultVfs::~FaultVfs()
{
    clear();
    sqlite3_vfs_unregister(&g_vfs);
}

void FaultVfs::failWrites(Fault fault) { g_writeFault = fault; }
void FaultVfs::failReads(Fault fault) { g_readFault = fault; }
void FaultVfs::clear()
{
    g_writeFault = Fault::None;
    g_readFault = Fault::None;
}

}  // namespace recmantest
