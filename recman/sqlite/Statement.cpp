#include "recman/sqlite/Statement.h"

namespace recman::sqlite {

Status statusFor(int rc)
{
    switch (rc & 0xFF) {
    case SQLITE_FULL:
        return StatusDiskFull;
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        return StatusFileLocked;
    case SQLITE_CONSTRAINT:
        return StatusDuplicateKey;
    default:
        return StatusStoreFailure;
    }
}

}  // namespace recman::sqlite
