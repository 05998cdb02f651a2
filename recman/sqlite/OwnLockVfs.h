// A SQLite VFS for processes forked from one that had files open.
//
// SQLite's "unix" VFS keeps one table per process of the files it has open and the POSIX locks it
// believes it holds on them; a new connection to a file in that table shares the locks recorded
// there instead of taking its own. After fork the child inherits that table but none of the locks,
// so its connections would write while holding nothing, and the parent's close could checkpoint and
// delete the log under them. Connections made through this VFS keep their locks to themselves:
// every lock is an open-file-description lock on a descriptor the connection opened itself, on the
// byte ranges the "unix" VFS uses, so they conflict correctly with every other process and with
// every other connection of this one. Only the main database file is handled here; the log and
// temporary files carry no locks and go to "unix" unchanged.
#pragma once

namespace recman::sqlite {

// Registers the VFS (once, not as the default) and returns its name; null when it cannot be had.
// Called before any fork, so that a child finds it registered.
const char* ownLockVfs();

}  // namespace recman::sqlite
