// A process's mark on a record-manager file: a descriptor of its own on the file, holding a shared
// lock on the byte MarkBase + process id. The system drops the lock when the process ends, killed
// or not, reaped or not (a zombie holds no descriptors), so another process tells a live lock or
// handle owner from a dead one by testing that byte; a process id alone cannot (a zombie still
// answers to its id). Children forked later do not inherit marks: they are closed in the child.
//
// A process keeps one descriptor per file for all its marks and closes it only when it no longer
// uses the file: closing any descriptor of a file drops every POSIX lock the process holds on it,
// the store's included, and another process could then take the file as unused.
//
// The same descriptor gates opens against a Create that replaces the file: an Open holds the gate
// byte shared from the moment it names the file until its handle is registered; a replacing
// Create holds it exclusively while it checks for handles and renames the new file over the old.
// An Open therefore reaches either the old file whole or the new one, never a missing file.
#pragma once

#include "recman/Platform.h"

#include <cstdint>
#include <string>

namespace recman {

// One entry per file a process uses; marks of the same file share it (ProcessMark.cpp).
struct MarkEntry;

class ProcessMark {
public:
    enum class Use { Open, Replace };

    ProcessMark() = default;
    ~ProcessMark();
    ProcessMark(ProcessMark&& other) noexcept;
    ProcessMark& operator=(ProcessMark&& other) noexcept;
    ProcessMark(const ProcessMark&) = delete;
    ProcessMark& operator=(const ProcessMark&) = delete;

    // Looks at `path` without opening anything but a regular file. For a regular file: takes the
    // gate (waiting while a replace runs, or while opens run for Use::Replace); `identity` is then
    // the file the path names until endGate(). Other kinds are only reported.
    platform::PathKind attach(const std::string& path, Use use, platform::FileIdentity& identity);
    // Lets a waiting replace (or Open) go on; the mark itself stays.
    void endGate();

    // False when process `pid` holds no mark on the file, that is, it has ended. True when this
    // cannot be told (no descriptor, or a system without such locks): the caller's other checks decide.
    bool held(int64_t pid) const;

private:
    void release();

    MarkEntry* m_entry = nullptr;
    Use m_gate = Use::Open;
    bool m_gated = false;
};

}  // namespace recman
