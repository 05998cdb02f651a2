#include "tools/Commands.h"

#include "REProjectLock.h"
#include "RERecordFileOps.h"
#include "RESharedHelpers.h"
#include "tools/Formats.h"
#include "tools/LayoutRegistry.h"
#include "tools/RawFile.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <optional>
#include <unistd.h>

namespace tool {
namespace {

// --- arguments -----------------------------------------------------------------------------

struct Parsed {
    std::vector<std::string> positional;
    std::map<std::string, std::string> options;
};

// Splits `args` into positional arguments and "--name value" options of `known`; false after a
// usage complaint.
bool ParseArgs(const char* command, const Args& args, std::initializer_list<const char*> known, size_t positional,
               Parsed& parsed) {
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        if (a.size() > 2 && a.compare(0, 2, "--") == 0) {
            if (std::find_if(known.begin(), known.end(), [&](const char* k) { return a == k; }) == known.end()) {
                Complain(std::string(command) + ": unknown option " + a);
                return false;
            }
            if (i + 1 == args.size()) {
                Complain(std::string(command) + ": " + a + " needs a value");
                return false;
            }
            parsed.options[a] = args[++i];
        } else {
            parsed.positional.push_back(a);
        }
    }
    if (parsed.positional.size() != positional) {
        Complain(std::string(command) + ": expected " + std::to_string(positional) + " argument" +
                 (positional == 1 ? "" : "s") + " (tarsel " + command + " --help)");
        return false;
    }
    return true;
}

const char* KeyTypeName(uint8_t type) {
    switch (type) {
    case kKeyTypeString: return "string";
    case kKeyTypeInteger: return "integer";
    case kKeyTypeBFloat: return "bfloat";
    case kKeyTypeZString: return "zstring";
    case kKeyTypeUnsigned: return "unsigned";
    case kKeyTypeAutoIncrement: return "autoincrement";
    default: return "type ?";
    }
}

// The field a key segment starts at, by the layout's columns.
std::string FieldAt(const std::vector<Column>& columns, uint16_t position) {
    for (const Column& c : columns) {
        if (c.offset == position - 1u)
            return c.name;
    }
    return "";
}

// --- opening and identifying a file ---------------------------------------------------------

// Whether a record-manager file is at `path`, asked of the record manager: on the server store
// the files are on the server.
bool IsThere(const std::string& path) { return RELookUpRecordFile(path) == REPathState::Exists; }

struct OpenedFile {
    RawFile file;
    RawFile::Stat stat;
    const Layout* layout = nullptr;
    bool old = false;
    std::vector<const Layout*> alternatives;
};

// Opens `path` (mode as for Open), reads its Stat and picks its layout: the one named, or the
// one its record length and keys tell. False after a complaint.
bool OpenAndIdentify(const char* command, const std::string& path, int8_t mode, const std::string& layoutName,
                     OpenedFile& opened) {
    if (!IsThere(path)) {
        Complain(std::string(command) + ": " + path + ": no such file");
        return false;
    }
    int16_t status = opened.file.Open(path, mode);
    if (status == REBtrieveBase::kStatusSuccess)
        status = opened.file.ReadStat(opened.stat);
    if (status != REBtrieveBase::kStatusSuccess) {
        Complain(std::string(command) + ": " + path + ": " + StatusText(status));
        return false;
    }
    if (!layoutName.empty()) {
        opened.layout = FindLayout(layoutName);
        if (opened.layout == nullptr) {
            Complain(std::string(command) + ": no layout \"" + layoutName + "\" (tarsel layouts lists them)");
            return false;
        }
        if (!GenerationOf(*opened.layout, opened.stat.recordLength, opened.old)) {
            Complain(std::string(command) + ": " + path + ": records of " + std::to_string(opened.stat.recordLength) +
                     " bytes are not of layout \"" + opened.layout->name + "\"");
            return false;
        }
        return true;
    }
    const Match match = IdentifyLayout({opened.stat.recordLength, opened.stat.fileFlags, opened.stat.keys, path});
    opened.layout = match.layout;
    opened.old = match.oldGeneration;
    opened.alternatives = match.alternatives;
    return true;
}

uint32_t RecordLength(const OpenedFile& f) {
    if (f.layout == nullptr)
        return f.stat.recordLength;
    return f.old ? f.layout->spec.oldSize : f.layout->spec.newSize;
}

std::vector<Column> ColumnsOf(const OpenedFile& f) {
    return Columns(f.layout != nullptr ? f.layout->spec.fields : nullptr, f.old, RecordLength(f));
}

// A progress line on a terminal for walks over more than 10 000 records.
class Progress {
public:
    Progress(const char* what, uint32_t total) : m_what(what), m_total(total) {
        m_shown = total > kThreshold && isatty(STDERR_FILENO);
    }
    ~Progress() {
        if (m_shown && m_drawn)
            std::fprintf(stderr, "\r%*s\r", 60, "");
    }
    void Step(uint32_t done) {
        if (m_shown && done % kEvery == 0) {
            std::fprintf(stderr, "\r%s: %u of %u records", m_what, done, m_total);
            std::fflush(stderr);
            m_drawn = true;
        }
    }

private:
    static constexpr uint32_t kThreshold = 10000;
    static constexpr uint32_t kEvery = 1000;
    const char* m_what;
    uint32_t m_total;
    bool m_shown = false;
    bool m_drawn = false;
};

std::string Upper(std::string text) {
    for (char& c : text)
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return text;
}

// --- stat ----------------------------------------------------------------------------------

int Stat(const Args& args) {
    Parsed p;
    if (!ParseArgs("stat", args, {"--layout"}, 1, p))
        return kExitUsage;
    OpenedFile f;
    if (!OpenAndIdentify("stat", p.positional[0], REBtrieveBase::kOpenReadOnly, p.options["--layout"], f))
        return kExitFinding;
    const RawFile::Stat& s = f.stat;
    std::printf("file:        %s\n", p.positional[0].c_str());
    if (f.layout != nullptr) {
        std::printf("layout:      %s (%s), %s generation\n", f.layout->name, f.layout->spec.className,
                    f.old ? "old" : "new");
        for (const Layout* other : f.alternatives)
            std::printf("             also fits: %s (%s)\n", other->name, other->spec.className);
    } else {
        std::printf("layout:      unknown\n");
    }
    std::printf("record:      %u bytes%s", s.recordLength,
                (s.fileFlags & kFileFlagVariableLength) ? " fixed part, variable length" : "");
    if (f.layout != nullptr) {
        std::printf(" (layout: new %u", f.layout->spec.newSize);
        if (f.layout->spec.HasOldLayout())
            std::printf(", old %u", f.layout->spec.oldSize);
        std::printf(")");
    }
    std::printf("\nfile flags:  0x%04x\npage size:   %u\nrecords:     %u\nkeys:        %u\n", s.fileFlags,
                s.pageSize, s.records, s.keys.keyCount);
    const std::vector<Column> columns = ColumnsOf(f);
    size_t at = 0;
    for (uint16_t key = 0; key < s.keys.keyCount && at < s.keys.segments.size(); ++key) {
        const REKeySegment& first = s.keys.segments[at];
        std::printf("  key %u:%s%s\n", key, (first.flags & kKeyDuplicates) ? " duplicates" : " unique",
                    (first.flags & kKeyModifiable) ? ", modifiable" : "");
        for (bool more = true; more && at < s.keys.segments.size(); ++at) {
            const REKeySegment& seg = s.keys.segments[at];
            const std::string field = f.layout != nullptr ? FieldAt(columns, seg.position) : "";
            std::printf("    position %u, length %u, %s%s%s%s\n", seg.position, seg.length, KeyTypeName(seg.type),
                        (seg.flags & kKeyCaseInsensitive) ? ", case-insensitive" : "",
                        field.empty() ? "" : "  ", field.c_str());
            more = (seg.flags & kKeySegmented) != 0;
        }
    }
    return f.layout != nullptr ? kExitOk : kExitFinding;
}

// --- dump ----------------------------------------------------------------------------------

int Dump(const Args& args) {
    Parsed p;
    if (!ParseArgs("dump", args, {"--format", "--layout"}, 1, p))
        return kExitUsage;
    Format format = Format::kTable;
    if (p.options.count("--format") && !ParseFormat(p.options["--format"], format)) {
        Complain("dump: --format is table, csv or json");
        return kExitUsage;
    }
    OpenedFile f;
    if (!OpenAndIdentify("dump", p.positional[0], REBtrieveBase::kOpenReadOnly, p.options["--layout"], f))
        return kExitFinding;
    if (f.layout == nullptr)
        Complain("dump: " + p.positional[0] + ": unknown layout, records shown in hex");
    else if (!f.alternatives.empty())
        Complain("dump: " + p.positional[0] + ": read as \"" + f.layout->name + "\"; --layout chooses another");
    const std::vector<Column> columns = ColumnsOf(f);
    RecordWriter writer(stdout, format, columns);
    Progress progress("dump", f.stat.records);
    std::vector<uint8_t> record;
    uint32_t done = 0;
    int16_t status = f.file.Step(true, record);
    for (; status == REBtrieveBase::kStatusSuccess; status = f.file.Step(false, record)) {
        writer.Write(record);
        progress.Step(++done);
    }
    writer.Finish();
    if (status != REBtrieveBase::kStatusEndOfFile) {
        Complain("dump: " + p.positional[0] + ": reading stopped after " + std::to_string(done) + " records, " +
                 StatusText(status));
        return kExitFinding;
    }
    return kExitOk;
}

// --- load ----------------------------------------------------------------------------------

// Creates an empty file of the layout's current generation.
int16_t CreateFile(const std::string& path, const Layout& layout) {
    const std::vector<uint8_t> block = REEncodeCreateBlock(layout.spec.create);
    std::vector<uint8_t> data = block;
    uint32_t length = static_cast<uint32_t>(data.size());
    char key[REBtrieveBase::kKeyBufferSize] = {};
    std::memcpy(key, path.data(), std::min(path.size(), sizeof key - 1));
    uint8_t posBlock[REBtrieveBase::kPosBlockSize] = {};
    return BTRCALL(REBtrieveBase::kOpCreate, posBlock, data.data(), &length, key, sizeof key, -1);
}

int Load(const Args& args) {
    Parsed p;
    if (!ParseArgs("load", args, {"--format", "--layout", "--input"}, 1, p))
        return kExitUsage;
    Format format = Format::kTable;
    if (!p.options.count("--format") || !ParseFormat(p.options["--format"], format) || format == Format::kTable) {
        Complain("load: --format csv or --format json is required");
        return kExitUsage;
    }
    const std::string& path = p.positional[0];
    const std::string layoutName = p.options["--layout"];
    if (!IsThere(path)) {
        const Layout* layout = layoutName.empty() ? nullptr : FindLayout(layoutName);
        if (layout == nullptr) {
            Complain("load: " + path + " does not exist; --layout NAME creates it with that layout");
            return layoutName.empty() ? kExitUsage : kExitFinding;
        }
        if (const int16_t status = CreateFile(path, *layout); status != REBtrieveBase::kStatusSuccess) {
            Complain("load: cannot create " + path + ": " + StatusText(status));
            return kExitFinding;
        }
    }
    // Exclusive: nobody else writes while the rows go in, so that a failure can take back
    // exactly the records of this run (the last ones in physical order).
    OpenedFile f;
    if (!OpenAndIdentify("load", path, REBtrieveBase::kOpenExclusive, layoutName, f))
        return kExitFinding;
    if (f.layout == nullptr) {
        Complain("load: " + path + ": unknown layout; --layout NAME names it");
        return kExitFinding;
    }

    std::vector<Row> rows;
    std::string error;
    std::ifstream file;
    if (p.options.count("--input")) {
        file.open(p.options["--input"], std::ios::binary);
        if (!file) {
            Complain("load: cannot read " + p.options["--input"]);
            return kExitFinding;
        }
    }
    std::istream& in = p.options.count("--input") ? static_cast<std::istream&>(file) : std::cin;
    if (!ReadRows(in, format, rows, error)) {
        Complain("load: " + error + "; nothing written");
        return kExitFinding;
    }

    // Every row encoded before the first insert.
    const std::vector<Column> columns = ColumnsOf(f);
    std::map<std::string, const Column*> byName;
    for (const Column& c : columns)
        byName[c.name] = &c;
    std::vector<std::vector<uint8_t>> records;
    for (const Row& row : rows) {
        std::vector<uint8_t> record = BlankRecord(RecordLength(f), f.old);
        for (const auto& [name, text] : row.values) {
            const auto column = byName.find(name);
            std::string why;
            if (column == byName.end())
                why = "no field \"" + name + "\" in layout \"" + f.layout->name + "\"";
            else if (!Encode(*column->second, text, record, why))
                why = "field " + name + ": " + why;
            if (!why.empty()) {
                Complain("load: line " + std::to_string(row.line) + ": " + why + "; nothing written");
                return kExitFinding;
            }
        }
        records.push_back(std::move(record));
    }

    Progress progress("load", static_cast<uint32_t>(records.size()));
    size_t inserted = 0;
    for (const std::vector<uint8_t>& record : records) {
        const int16_t status = f.file.Insert(record);
        if (status != REBtrieveBase::kStatusSuccess) {
            size_t removed = 0;
            while (removed < inserted && f.file.StepLast() == REBtrieveBase::kStatusSuccess &&
                   f.file.DeleteCurrent() == REBtrieveBase::kStatusSuccess)
                ++removed;
            Complain("load: line " + std::to_string(rows[inserted].line) + ": insert refused, " + StatusText(status) +
                     "; the " + std::to_string(removed) + " records inserted before it were deleted again" +
                     (removed == inserted ? "" : " (" + std::to_string(inserted - removed) + " could not be)"));
            return kExitFinding;
        }
        progress.Step(static_cast<uint32_t>(++inserted));
    }
    std::printf("%zu records loaded into %s (%s, %s generation)\n", inserted, path.c_str(), f.layout->name,
                f.old ? "old" : "new");
    return kExitOk;
}

// --- layouts -------------------------------------------------------------------------------

int ListLayouts(const Args& args) {
    Parsed p;
    if (!ParseArgs("layouts", args, {}, 0, p))
        return kExitUsage;
    std::printf("%-24s %-28s %5s %5s %4s\n", "LAYOUT", "CLASS", "NEW", "OLD", "KEYS");
    for (const Layout& l : Layouts()) {
        std::printf("%-24s %-28s %5u %5s %4u\n", l.name, l.spec.className, l.spec.newSize,
                    l.spec.HasOldLayout() ? std::to_string(l.spec.oldSize).c_str() : "-",
                    REKeyCount(l.spec.create.segments));
    }
    return kExitOk;
}

// --- users and logout ----------------------------------------------------------------------

struct ProjectPaths {
    std::string project;  // .RDB / .RDP
    std::string lock;     // .RDK / .RPK
};

// The project file and its lock file from either name; false for another extension.
bool ProjectPathsOf(const std::string& given, ProjectPaths& paths) {
    static const std::pair<const char*, const char*> kPairs[] = {{".RDB", ".RDK"}, {".RDP", ".RPK"}};
    const std::filesystem::path path(given);
    const std::string ext = Upper(path.extension().string());
    for (const auto& [project, lock] : kPairs) {
        if (ext == project || ext == lock) {
            std::filesystem::path p = path;
            // Keep the letter case of the name given for the other file's extension.
            const bool lower = !path.extension().string().empty() &&
                               std::islower(static_cast<unsigned char>(path.extension().string()[1]));
            auto with = [&](const char* e) {
                std::string x = e;
                if (lower)
                    for (char& c : x)
                        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
                return p.replace_extension(x).string();
            };
            paths.project = with(project);
            paths.lock = with(lock);
            return true;
        }
    }
    return false;
}

int Users(const Args& args) {
    Parsed p;
    if (!ParseArgs("users", args, {}, 1, p))
        return kExitUsage;
    ProjectPaths paths;
    if (!ProjectPathsOf(p.positional[0], paths)) {
        Complain("users: PROJECT is a .RDB, .RDK, .RDP or .RPK file");
        return kExitUsage;
    }
    if (!IsThere(paths.lock)) {
        Complain("users: " + paths.lock + ": no lock file (nobody has opened the project)");
        return kExitFinding;
    }
    REProjectLock lock;
    if (!lock.Initialize(paths.lock.c_str()))
        return kExitFinding;
    std::vector<PROJECTLOCKINFO*> users;
    lock.SetKeyNumber(REProjectLock::kKeyUserName);
    lock.GetAllRecords(users);
    std::printf("%-40s %-5s %-10s %s\n", "USER", "SUPER", "LOCKED JOB", "CHANGE NOTICE");
    for (const PROJECTLOCKINFO* u : users) {
        const std::string name(u->szUserName, strnlen(u->szUserName, sizeof u->szUserName));
        const std::string job = u->nLockedJobId > 0 ? std::to_string(u->nLockedJobId) : "-";
        std::string notice = "-";
        if (u->nUpdatePending != 0)
            notice = "job " + std::to_string(u->nUpdatedJobId) + " changed by " +
                     std::string(u->szUpdatedBy, strnlen(u->szUpdatedBy, sizeof u->szUpdatedBy));
        std::printf("%-40s %-5s %-10s %s\n", name.c_str(), u->nSuperUser == 1 ? "yes" : "no", job.c_str(),
                    notice.c_str());
    }
    std::printf("%zu logged in\n", users.size());
    DeallocatePtrArray(users);
    return kExitOk;
}

int Logout(const Args& args) {
    Parsed p;
    if (!ParseArgs("logout", args, {}, 2, p))
        return kExitUsage;
    ProjectPaths paths;
    if (!ProjectPathsOf(p.positional[0], paths)) {
        Complain("logout: PROJECT is a .RDB, .RDK, .RDP or .RPK file");
        return kExitUsage;
    }
    const std::string& user = p.positional[1];
    if (!IsThere(paths.lock)) {
        Complain("logout: " + paths.lock + ": no lock file");
        return kExitFinding;
    }
    // A running program keeps both the project file and the lock file open for as long as it has
    // the project open. An exclusive open succeeds only when no handle of any process has the
    // file; the record manager drops the handles of a process that ended, crashed or killed.
    auto inUse = [](const std::string& path) {
        RawFile probe;
        const int16_t status = probe.Open(path, REBtrieveBase::kOpenExclusive);
        return status == 85 || status == 88;
    };
    RawFile project;  // held exclusively while the login is removed: nobody opens the project meanwhile
    const bool hasProject = IsThere(paths.project);
    const bool busy = hasProject ? project.Open(paths.project, REBtrieveBase::kOpenExclusive) != 0 ||
                                       inUse(paths.lock)
                                 : inUse(paths.lock);
    if (busy) {
        Complain("logout: the project is open in a running program; " + user +
                 " may still be working in it, nothing changed (close the project everywhere, then retry)");
        return kExitFinding;
    }
    REProjectLock lock;
    if (!lock.Initialize(paths.lock.c_str()))
        return kExitFinding;
    if (!lock.FindUser(user.c_str())) {
        Complain("logout: " + user + " is not logged in to " + paths.lock);
        return kExitFinding;
    }
    if (!lock.LogOut(user.c_str())) {
        Complain("logout: the login of " + user + " could not be removed");
        return kExitFinding;
    }
    std::printf("%s logged out of %s\n", user.c_str(), paths.lock.c_str());
    return kExitOk;
}

// --- copy and check ------------------------------------------------------------------------

// Takes the flag `flag` out of `args`; true when it was there.
bool TakeFlag(Args& args, const char* flag) {
    const auto it = std::find(args.begin(), args.end(), flag);
    if (it == args.end())
        return false;
    args.erase(it);
    return true;
}

int Copy(const Args& given) {
    Args args = given;
    const bool replace = TakeFlag(args, "--replace");
    Parsed p;
    if (!ParseArgs("copy", args, {}, 2, p))
        return kExitUsage;
    const std::string& from = p.positional[0];
    const std::string& to = p.positional[1];
    const int16_t status = RECopyRecordFile(from, to, replace);
    if (status != kREFileOpOk) {
        Complain("copy: " + from + " to " + to + ": " + StatusText(status));
        return kExitFinding;
    }
    std::printf("copied %s to %s\n", from.c_str(), to.c_str());
    return kExitOk;
}

// The check's walk shows a progress line (on a terminal, for a long walk), made once the total is known.
struct CheckProgressLine {
    std::optional<Progress> line;
    static void Report(uint64_t done, uint64_t total, void* context) {
        auto& self = *static_cast<CheckProgressLine*>(context);
        if (!self.line)
            self.line.emplace("check", static_cast<uint32_t>(total));
        self.line->Step(static_cast<uint32_t>(done));
    }
};

int Check(const Args& given) {
    Args args = given;
    const bool repair = TakeFlag(args, "--repair");
    Parsed p;
    if (!ParseArgs("check", args, {}, 1, p))
        return kExitUsage;
    const std::string& path = p.positional[0];
    RERecordFileCheck result;
    int16_t status;
    {
        CheckProgressLine progress;
        status = RECheckRecordFile(path, repair, result, &CheckProgressLine::Report, &progress);
    }
    if (status != kREFileOpOk) {
        Complain("check: " + path + ": " + StatusText(status));
        return kExitFinding;
    }
    std::printf("%s: %llu records, kept count %lld\n", path.c_str(), static_cast<unsigned long long>(result.records),
                static_cast<long long>(result.keptCount));
    for (const std::string& r : result.repairs)
        std::printf("repaired: %s\n", r.c_str());
    for (const std::string& f : result.findings)
        std::printf("fault: %s\n", f.c_str());
    if (result.findings.empty())
        std::printf(result.repairs.empty() ? "no faults\n" : "every fault repaired\n");
    else
        std::printf("%zu fault%s%s\n", result.findings.size(), result.findings.size() == 1 ? "" : "s",
                    repair ? " left that cannot be repaired" : " (tarsel check --repair mends what can be mended)");
    return result.findings.empty() ? kExitOk : kExitFinding;
}

}  // namespace

int StatCommand(const Args& args) { return Stat(args); }
int DumpCommand(const Args& args) { return Dump(args); }
int LoadCommand(const Args& args) { return Load(args); }
int LayoutsCommand(const Args& args) { return ListLayouts(args); }
int UsersCommand(const Args& args) { return Users(args); }
int LogoutCommand(const Args& args) { return Logout(args); }
int CopyCommand(const Args& args) { return Copy(args); }
int CheckCommand(const Args& args) { return Check(args); }

void Complain(const std::string& text) { std::fprintf(stderr, "tarsel: %s\n", text.c_str()); }

const std::vector<Command>& Commands() {
    static const std::vector<Command> commands = {
        {"stat", "stat FILE [--layout NAME]",
         "The file's layout (by its record length and keys, or as named) and generation, record\n"
         "length, file flags, record count and each key with its segments and the fields they cover.\n"
         "Exit 1 when the file cannot be opened or its layout is unknown.\n",
         &StatCommand},
        {"dump", "dump FILE [--format table|csv|json] [--layout NAME]",
         "Every record in the order it was stored, decoded field by field by the layout of the\n"
         "file's generation: texts as text, dates as ISO dates, lengths in feet and inches (table\n"
         "form), other bytes in hex. A file of unknown layout is dumped in hex, one record a row.\n"
         "csv and json write exact values that load reads back unchanged; table is for reading.\n",
         &DumpCommand},
        {"load", "load FILE --format csv|json [--layout NAME] [--input TEXTFILE]",
         "Inserts the records of a dump (standard input, or TEXTFILE) into FILE, all or nothing:\n"
         "every row is checked and encoded first, and a bad row is reported with its line number\n"
         "before anything is written; if the record manager refuses an insert, the records this\n"
         "run inserted are deleted again. Fields missing from a row are zero (blank in an old\n"
         "generation file). FILE is opened exclusively for the load. A FILE that does not exist is\n"
         "created with the current generation of --layout NAME.\n",
         &LoadCommand},
        {"layouts", "layouts", "Every layout the utility knows, with its class, record lengths and keys.\n",
         &LayoutsCommand},
        {"users", "users PROJECT",
         "The users logged in to a project (PROJECT: the .RDB or .RDP project file, or its .RDK or\n"
         ".RPK lock file), whether each is a super user, the job each holds locked, and any change\n"
         "notice waiting for the user.\n",
         &UsersCommand},
        {"logout", "logout PROJECT USER",
         "Removes USER's login (letter case ignored), left behind when a workstation crashed.\n"
         "Refused (exit 1) while any program still has the project open: the project file and its\n"
         "lock file are each tried with an exclusive open, which the record manager refuses while a\n"
         "handle of any running process has the file (a crashed process holds none). The record\n"
         "manager cannot tell whose handle it is, so close the project on every workstation first.\n"
         "The project file stays open exclusively until the login is removed.\n",
         &LogoutCommand},
        {"copy", "copy SRC DST [--replace]",
         "Copies the record-manager file SRC to DST as it stands at one moment, also while other\n"
         "programs have SRC open and write it (on the server store: on the server). The copy has no\n"
         "open handles or locks. An existing DST is refused (exit 1) unless --replace is given, and\n"
         "is never replaced while a program has it open.\n",
         &CopyCommand},
        {"check", "check FILE [--repair]",
         "Checks FILE: the store's own integrity test, the record count the file keeps against the\n"
         "records it holds, and every key's entry (and autoincrement value) of each record against\n"
         "the record's data. Exit 1 when a fault is found. With --repair, writers wait while the\n"
         "indexes, the kept count and the key entries are rebuilt from the records; each repair is\n"
         "listed, and exit 1 only for a fault that cannot be repaired (such as two records holding\n"
         "one value of a unique key).\n",
         &CheckCommand},
    };
    return commands;
}

}  // namespace tool
