// A walk through the library: a record-manager file used directly, then an estimating project
// shared by two users in two processes, with job locks, change notices and a job's item lines,
// then a production job on the shop floor: pieces and marks, a route through two stations,
// tracking with a labor line, a batch, and the job read back.
// Everything happens in a temporary directory that is removed at the end.
//
// With TARSEL_SERVER naming a PostgreSQL server (make demo-server), the files live on the server
// and the two users of the project are two workstations that mount the shop's folder under
// different paths: each strips its own prefix (TARSEL_SERVER_ROOT), so both reach the same files.
#include "BTRCALL.h"
#include "REBtrieveBase.h"
#include "REEstProjectInfo.h"
#include "REJobFile.h"
#include "REMessageHandler.h"
#include "REPdcBatInpDataFile.h"
#include "REPdcBatInpLaborDataFile.h"
#include "REPdcDataFile.h"
#include "REPdcMarkFile.h"
#include "REPdcProjectInfo.h"
#include "REPdcRouteDataFile.h"
#include "REPdcRouteInfoFile.h"
#include "REPdcStationDataFile.h"
#include "REPdcTrackingDataFile.h"
#include "REPdcTrackingLaborDataFile.h"
#include "REProjectLock.h"
#include "RESharedHelpers.h"

#include <algorithm>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace fs = std::filesystem;

namespace {

// Message boxes are printed, so that what a user would be shown appears in the output.
void PrintMessageBox(const char* caption, const char* text, unsigned int) {
    std::string shown = text;
    for (size_t at = shown.find('\n'); at != std::string::npos; at = shown.find('\n', at))
        shown.replace(at, 1, " / ");
    std::printf("      [message box \"%s\"] %s\n", caption, shown.c_str());
}

bool g_failed = false;

// Prints what was expected to happen and whether it did.
bool Check(bool ok, const char* what) {
    if (!ok) {
        std::printf("   !! FAILED: %s\n", what);
        g_failed = true;
    }
    return ok;
}

void Say(const char* format, ...) {
    va_list args;
    va_start(args, format);
    std::vprintf(format, args);
    va_end(args);
    std::fflush(stdout);
}

template <size_t N>
void SetText(char (&field)[N], const std::string& text) {
    std::memset(field, 0, N);
    std::memcpy(field, text.data(), std::min(text.size(), N - 1));
}

// ---------------------------------------------------------------------------------------------
// First walk: a record-manager file through REBtrieveBase and BTRCALL.

#pragma pack(push, 1)
struct PartRecord {
    char szMark[16];  // key 0: piece mark
    int32_t nQuantity;
    char szGrade[12];
};
#pragma pack(pop)
static_assert(sizeof(PartRecord) == 32);

int16_t CreatePartsFile(const std::string& path) {
    // Create block: record length, page size, one key of one segment (zero-terminated string).
    uint8_t block[32] = {};
    const uint16_t recordLength = sizeof(PartRecord), pageSize = 4096, keys = 1;
    const uint16_t position = 1, length = sizeof(PartRecord::szMark);
    const uint16_t flags = 0x0100 | 0x0002;  // extended type, modifiable; unique
    const uint8_t zeroTerminatedString = 11;
    std::memcpy(block + 0, &recordLength, 2);
    std::memcpy(block + 2, &pageSize, 2);
    std::memcpy(block + 4, &keys, 2);
    std::memcpy(block + 16, &position, 2);
    std::memcpy(block + 18, &length, 2);
    std::memcpy(block + 20, &flags, 2);
    block[26] = zeroTerminatedString;
    uint8_t posBlock[REBtrieveBase::kPosBlockSize] = {};
    uint32_t dataLength = sizeof block;
    std::string key = path;
    return BTRCALL(REBtrieveBase::kOpCreate, posBlock, block, &dataLength, key.data(),
                   static_cast<uint8_t>(key.size()), 0);
}

void RecordManagerWalk(const fs::path& dir) {
    Say("\n1. A record-manager file used directly\n");
    const std::string path = (dir / "PARTS.DAT").string();
    if (!Check(CreatePartsFile(path) == 0, "create the file through BTRCALL"))
        return;
    Say("   created %s through BTRCALL (Create), 32-byte records keyed by piece mark\n", path.c_str());

    REBtrieveBase file;
    if (!Check(file.Open(path.c_str()) == 1, "open through REBtrieveBase"))
        return;
    file.SetDataBufLen(sizeof(PartRecord));
    const PartRecord parts[] = {{"B12", 4, "A992"}, {"C3", 2, "A36"}, {"A7", 10, "A36"}, {"P1", 1, "A572"}};
    for (PartRecord rec : parts) {
        file.SetKeyNumber(0);
        Check(file.Btrieve(REBtrieveBase::kOpInsert, &rec) == 0, "insert");
        Say("   inserted %-4s x%-2d %s\n", rec.szMark, rec.nQuantity, rec.szGrade);
    }

    Say("   read back in key order:");
    PartRecord rec{};
    for (int16_t status = file.Btrieve(REBtrieveBase::kOpGetFirst, &rec); status == 0;
         status = file.Btrieve(REBtrieveBase::kOpGetNext, &rec))
        Say(" %s", rec.szMark);
    Say("\n");

    REBtrieveBase other;
    Check(other.Open(path.c_str()) == 1, "open a second handle");
    other.SetDataBufLen(sizeof(PartRecord));
    char mark[] = "C3";
    file.SetKeyBuffer(mark, sizeof mark);
    const uint16_t lockingRead = REBtrieveBase::kOpGetEqual + REBtrieveBase::kBiasSingleNoWaitLock;
    Check(file.Btrieve(lockingRead, &rec) == 0, "first handle locks C3");
    Say("   first handle reads C3 with a no-wait lock: granted\n");
    other.SetKeyBuffer(mark, sizeof mark);
    const int16_t refused = other.Btrieve(lockingRead, &rec);
    Check(refused == REBtrieveBase::kStatusRecordInUse, "second handle is refused");
    Say("   second handle asks for the same lock: refused with status %d (record in use)\n", refused);
    file.Close();
    Check(other.Btrieve(lockingRead, &rec) == 0, "lock granted after the holder closed");
    Say("   after the first handle closes the file, the second handle gets the lock\n");
}

// ---------------------------------------------------------------------------------------------
// Second walk: an estimating project shared by two users, the second in its own process.

// The second user's process: reads one command a line, prints what happens, answers "done".
class SecondUser {
public:
    // `root`, when not empty, is the second workstation's own server root.
    bool Start(const std::string& projectPath, const std::string& root) {
        int toChild[2], fromChild[2];
        if (::pipe(toChild) != 0 || ::pipe(fromChild) != 0)
            return false;
        std::fflush(stdout);
        m_pid = ::fork();
        if (m_pid < 0)
            return false;
        if (m_pid == 0) {
            if (!root.empty())
                ::setenv("TARSEL_SERVER_ROOT", root.c_str(), 1);
            ::close(toChild[1]);
            ::close(fromChild[0]);
            const int failed = Run(projectPath, toChild[0], fromChild[1]);
            std::fflush(stdout);
            // Leave without running the destructors of the parent's objects copied by fork.
            ::_exit(failed);
        }
        ::close(toChild[0]);
        ::close(fromChild[1]);
        m_to = toChild[1];
        m_from = fromChild[0];
        return true;
    }

    // Sends a command and waits until the second user has done it.
    bool Ask(const std::string& command) {
        const std::string line = command + "\n";
        if (::write(m_to, line.data(), line.size()) != static_cast<ssize_t>(line.size()))
            return false;
        char answer = 0;
        return ::read(m_from, &answer, 1) == 1 && answer == '1';
    }

    bool Finish() {
        ::close(m_to);
        ::close(m_from);
        int status = 0;
        return ::waitpid(m_pid, &status, 0) == m_pid && WIFEXITED(status) && WEXITSTATUS(status) == 0;
    }

private:
    static int Run(const std::string& projectPath, int in, int out) {
        REEstProjectInfo bob("bob");
        std::string identity;
        int super = 0;
        bob.GetCurUserDetail(identity, super);
        std::string line;
        char c = 0;
        while (::read(in, &c, 1) == 1) {
            if (c != '\n') {
                line += c;
                continue;
            }
            const bool ok = Do(bob, identity, projectPath, line);
            line.clear();
            std::fflush(stdout);
            const char answer = ok ? '1' : '0';
            if (::write(out, &answer, 1) != 1)
                return 1;
        }
        return g_failed ? 1 : 0;
    }

    static bool Do(REEstProjectInfo& bob, const std::string& identity, const std::string& projectPath,
                   const std::string& command) {
        const int pid = static_cast<int>(::getpid());
        if (command == "open") {
            const int opened = bob.Initialize(projectPath.c_str());
            Say("   [bob, process %d] opens the project as %s: %s\n", pid, identity.c_str(),
                opened ? "logged in" : "refused");
            return opened == 1;
        }
        if (command.rfind("lock ", 0) == 0) {
            const long job = std::atol(command.c_str() + 5);
            std::string holder;
            const int locked = bob.LockJob(job, &holder);
            if (locked)
                Say("   [bob, process %d] locks job %ld\n", pid, job);
            else
                Say("   [bob, process %d] cannot lock job %ld: it is held by %s\n", pid, job, holder.c_str());
            return !locked && !holder.empty();
        }
        if (command == "notice") {
            PROJECTLOCKINFO own{};
            bob.GetProjectLockFilePtr()->FindUser(identity.c_str(), &own);
            if (own.nUpdatePending)
                Say("   [bob, process %d] sees a change notice: job %d was changed by %s\n", pid, own.nUpdatedJobId,
                    own.szUpdatedBy);
            else
                Say("   [bob, process %d] has no change notice pending\n", pid);
            return true;
        }
        if (command == "refresh") {
            std::vector<TSLESTIMATEDATA*> jobs;
            bob.GetAllJobRecs(jobs);
            Say("   [bob, process %d] re-reads the job list:", pid);
            for (const TSLESTIMATEDATA* job : jobs)
                Say(" %d \"%s\"", job->nId, job->data.szJobName);
            Say(" (this acknowledges the notice)\n");
            const bool ok = jobs.size() == 2;
            DeallocatePtrArray(jobs);
            return ok;
        }
        if (command == "close") {
            Say("   [bob, process %d] closes the project and logs out\n", pid);
            return bob.Close(1) == 1;
        }
        return false;
    }

    pid_t m_pid = -1;
    int m_to = -1;
    int m_from = -1;
};

ESTJOBFILERECORD ItemLine(int page, int line, const char* shape, const char* size, float length, int pieces) {
    ESTJOBFILERECORD rec{};
    SetText(rec.sCode1, "MAIN");
    SetText(rec.sCode2, "GIRDERS");
    rec.nPageNo = page;
    rec.nLineNo = line;
    SetText(rec.sizeKey.szShape, shape);
    SetText(rec.sizeKey.szDimText, size);
    rec.sizeKey.fDim1 = length;
    rec.nValue39 = pieces;
    return rec;
}

void WriteAndReadItems(const std::string& itemPath) {
    REJobFile items;
    if (!Check(items.CreateNewFile(itemPath.c_str()) == 1 && items.Initialize(itemPath.c_str()) == 1,
               "create the job item file"))
        return;
    ESTJOBFILERECORD lines[] = {
        ItemLine(1, 2, "W", "12X26", 30.5f, 4),
        ItemLine(1, 1, "W", "24X68", 42.0f, 2),
        ItemLine(2, 1, "HSS", "6X6X3/8", 12.25f, 8),
    };
    for (ESTJOBFILERECORD& line : lines)
        Check(items.AddRecord(line) == 1, "add an item line");
    Check(items.AddRecord(lines[0]) == 0, "a second line with the same key is refused");
    Say("   alice writes %zu item lines to the job's item file (a line with an existing key is refused)\n",
        std::size(lines));
    Say("   alice reads them back in key order:\n");
    ESTJOBFILERECORD rec{};
    for (int found = items.SearchFirstRecord("", "", -1, -1, &rec); found;
         found = items.SearchNextRecord("", "", -1, -1, &rec))
        Say("      page %d line %d  %s/%s  size key %-3s %-8s  %d pcs x %.2f ft\n", rec.nPageNo, rec.nLineNo,
            rec.sCode1, rec.sCode2, rec.sizeKey.szShape, rec.sizeKey.szDimText, rec.nValue39, rec.sizeKey.fDim1);
}

// The folder the second user reaches the project through, and that workstation's server root:
// on a server, another mount of the same shop folder; on one machine, the same folder.
struct SecondDesk {
    fs::path folder;
    std::string root;
};

void ProjectWalk(const fs::path& dir, const SecondDesk& desk) {
    Say("\n2. An estimating project shared by two users\n");
    const std::string projectPath = (dir / "BRIDGE.RDB").string();
    REEstProjectInfo alice("alice");
    std::string identity;
    int super = 0;
    alice.GetCurUserDetail(identity, super);

    if (!Check(alice.CreateNewFile(projectPath.c_str()) == 1 && alice.Initialize(projectPath.c_str()) == 1,
               "create and open the project"))
        return;
    Say("   alice creates %s and opens it as %s (lock file BRIDGE.RDK made beside it)\n", projectPath.c_str(),
        identity.c_str());
    PROJINFORMATION info{};
    SetText(info.szProjName, "Bridge42");
    SetText(info.sText20, "Q-2031");
    Check(alice.AddProjectDetail(&info) == 1, "add the project record");
    long girders = 0, stairs = 0;
    JOBDETAIL job{};
    SetText(job.szJobName, "girders");
    SetText(job.szJobItemFile, (dir / "GIRDERS.DAT").string());
    Check(alice.AddJob(girders, job) == 1, "add a job");
    JOBDETAIL second{};
    SetText(second.szJobName, "stairs");
    SetText(second.szJobItemFile, (dir / "STAIRS.DAT").string());
    Check(alice.AddJob(stairs, second) == 1, "add a job");
    Say("   alice adds project record \"Bridge42\" and jobs %ld \"girders\" and %ld \"stairs\"\n", girders, stairs);

    Say("   a second login under alice's own name is refused:\n");
    {
        REEstProjectInfo again("alice");
        Check(again.Initialize(projectPath.c_str()) == 0, "same identity refused");
    }

    SecondUser bob;
    const std::string bobPath = (desk.folder / "BRIDGE.RDB").string();
    if (!desk.root.empty())
        Say("   bob works on another workstation, which reaches the project as %s\n", bobPath.c_str());
    if (!Check(bob.Start(bobPath, desk.root), "start the second user's process"))
        return;
    Check(bob.Ask("open"), "bob opens the project");

    Check(alice.LockJob(girders, nullptr) == 1, "alice locks the job");
    Say("   alice locks job %ld for editing\n", girders);
    Check(bob.Ask("lock " + std::to_string(girders)), "bob is told who holds the job");

    WriteAndReadItems(job.szJobItemFile);

    SetText(job.szJobName, "girders rev B");
    Check(alice.UpdJobDetail(girders, job) == 1, "alice saves the job");
    Say("   alice saves job %ld (\"girders rev B\"): a change notice goes to every other user\n", girders);
    Check(bob.Ask("notice"), "bob sees the notice");
    Check(bob.Ask("refresh"), "bob re-reads the job list");
    Check(bob.Ask("notice"), "bob's notice is cleared");

    Check(bob.Ask("close"), "bob logs out");
    Check(bob.Finish(), "the second user's process ends cleanly");
    Check(alice.Close(1) == 1, "alice logs out");
    Say("   alice closes the project and logs out\n");

    REProjectLock lock;
    std::vector<PROJECTLOCKINFO*> users;
    Check(lock.Initialize((dir / "BRIDGE.RDK").string().c_str()) == 1, "open the lock file");
    Check(lock.GetAllRecords(users) == 0, "nobody is logged in");
    Say("   the lock file now lists %zu logged-in users\n", users.size());
    DeallocatePtrArray(users);
}


// Creates a production file through its class and opens it.
template <class File>
bool CreateAndOpen(File& file, const fs::path& path, const char* what) {
    return Check(file.CreateNewFile(path.string().c_str()) == 1 && file.Initialize(path.string().c_str()) == 1, what);
}

PDCDATATYPE PieceRow(const char* mainMark, const char* flag, const char* pieceMark, int quantity) {
    PDCDATATYPE row{};
    SetText(row.szMainMark, mainMark);
    SetText(row.szMainOrAcc, flag);
    SetText(row.szPieceMark, pieceMark);
    row.nValue53 = quantity;
    return row;
}

void ProductionWalk(const fs::path& dir) {
    Say("\n3. A production job on the shop floor\n");
    const std::string projectPath = (dir / "TOWER.RDP").string();
    REPdcProjectInfo foreman("foreman");
    if (!Check(foreman.CreateNewFile(projectPath.c_str()) == 1 && foreman.Initialize(projectPath) == 1,
               "create and open the production project"))
        return;
    PDCPROJINFORMATION info{};
    SetText(info.szProjName, "Tower7");
    Check(foreman.AddProjectDetail(info) == 1, "add the production project record");
    PDCJOBDETAIL detail{};
    SetText(detail.szJobName, "columns");
    long job = 0;
    Check(foreman.AddJob(job, detail) == 1 && foreman.LockJob(job) == 1, "add and lock a production job");
    Say("   the foreman creates TOWER.RDP (lock file TOWER.RPK beside it), adds job %ld \"columns\" and locks it\n",
        job);

    REPdcDataFile pieces;
    REPdcMarkFile marks;
    if (!CreateAndOpen(pieces, dir / "PIECES.DAT", "create the piece file") ||
        !CreateAndOpen(marks, dir / "MARKS.DAT", "create the mark file"))
        return;
    PDCDATATYPE rows[] = {PieceRow("C1", "M", "", 2), PieceRow("C1", "a", "p1", 2), PieceRow("C1", "a", "p2", 4)};
    for (PDCDATATYPE& row : rows)
        Check(pieces.AddRecord(row) == 1, "add a piece row");
    PDCMARKDATATYPE mark{};
    SetText(mark.szMark, "C1");
    SetText(mark.szMainOrAcc, "M");
    SetText(mark.szText107, "W12X26 column");
    mark.dMeasure153[0] = 14.5;
    Check(marks.AddRecord(mark) == 1, "add the main mark");
    std::vector<std::string> pieceRows;
    pieces.GetAllPcMarks("C1", pieceRows);
    Say("   main mark C1 (\"%s\") gets accessory pieces p1 and p2: %zu rows under C1\n", mark.szText107,
        pieceRows.size());

    REPdcStationDataFile stations;
    REPdcRouteInfoFile routes;
    REPdcRouteDataFile routeStations;
    if (!CreateAndOpen(stations, dir / "STATIONS.DAT", "create the station file") ||
        !CreateAndOpen(routes, dir / "ROUTES.DAT", "create the route file") ||
        !CreateAndOpen(routeStations, dir / "ROUTESTN.DAT", "create the route station file"))
        return;
    const std::pair<int, const char*> shop[] = {{10, "SAW"}, {20, "WELD"}};
    for (const auto& [number, name] : shop) {
        PDCSTATIONDATATYPE station{};
        station.nStnNo = number;
        SetText(station.sStnName, name);
        Check(stations.AddNewRecord(station) == 1, "add a station");
        PDCROUTEDATATYPE step{};
        SetText(step.sRouteName, "R1");
        step.nStnNo = number;
        Check(routeStations.AddNewRecord(step) == 1, "add a station to the route");
    }
    PDCROUTEINFODATATYPE route{};
    SetText(route.sRouteName, "R1");
    SetText(route.sDescription, "saw then weld");
    Check(routes.AddNewRecord(route) == 1, "add the route");
    std::vector<unsigned int> path;
    routeStations.GetStationNoArrayWRTRoute("R1", path);
    Check(path.size() == 2, "the route passes two stations");
    Say("   route R1 (\"saw then weld\") takes pieces through %zu stations: %u SAW, %u WELD\n", path.size(),
        path.size() > 0 ? path[0] : 0, path.size() > 1 ? path[1] : 0);

    REPdcTrackingDataFile tracking;
    REPdcTrackingLaborDataFile labor;
    if (!CreateAndOpen(tracking, dir / "TRACK.DAT", "create the tracking file") ||
        !CreateAndOpen(labor, dir / "TRACKLAB.DAT", "create the labor tracking file"))
        return;
    for (const auto& [number, name] : shop) {
        PDCTRACKFILETYPE done{};
        done.nValue0 = number;
        SetText(done.sText4, name);
        SetText(done.sMark13, "C1");
        SetText(done.sMark30, "C1");
        done.dDate47 = 46350.0 + number / 10;
        SetText(done.sizeKey.szShape, "W");
        SetText(done.sizeKey.szDimText, "12X26");
        done.sizeKey.fDim1 = 14.5f;
        Check(tracking.AddNewRecord(done) == 1, "track the piece at a station");
    }
    PDCTRACKLABORFILETYPE hours{};
    hours.nValue0 = 20;
    SetText(hours.sText4, "WELD");
    SetText(hours.sMark13, "C1");
    SetText(hours.sText30, "JD");
    hours.nValue42 = 3;
    Check(labor.AddNewRecord(hours) == 1, "add a labor line");
    Say("   C1 is tracked at SAW and WELD, and welder JD books a labor line of %d hours\n", hours.nValue42);

    REPdcBatInpDataFile batches;
    REPdcBatInpLaborDataFile batchLabor;
    if (!CreateAndOpen(batches, dir / "BATCH.DAT", "create the batch file") ||
        !CreateAndOpen(batchLabor, dir / "BATCHLAB.DAT", "create the batch labor file"))
        return;
    PDCBIDFILETYPE batch{};
    batch.nBatchNo = 1;
    SetText(batch.sMark18, "C1");
    PDCBILABFILETYPE line{};
    line.nBatchNo = 1;
    line.nValue4 = 20;
    SetText(line.sText12, "WELD");
    Check(batches.AddRecord(batch) == 1 && batchLabor.AddRecord(line) == 1, "enter a batch with a labor line");
    std::vector<PDCBILABFILETYPE*> batchLines;
    batchLabor.GetAllRecords(1, batchLines);
    Say("   the floor enters batch 1 for C1 with %zu labor line\n", batchLines.size());
    DeallocatePtrArray(batchLines);

    Say("   the shop floor screen reads job %ld back:\n", job);
    std::vector<PDCDATATYPE*> all;
    pieces.GetAllRecords(all);
    for (const PDCDATATYPE* row : all)
        Say("      %-3s %s %-3s x%d\n", row->szMainMark, row->szMainOrAcc, row->szPieceMark, int{row->nValue53});
    DeallocatePtrArray(all);
    std::vector<PDCTRACKFILETYPE*> tracked;
    tracking.GetAllRecords(tracked);
    for (const PDCTRACKFILETYPE* done : tracked)
        Say("      %s done at station %d (%s), size %s %s\n", done->sMark13, int{done->nValue0}, done->sText4,
            done->sizeKey.szShape, done->sizeKey.szDimText);
    Check(tracked.size() == 2, "two tracking records");
    DeallocatePtrArray(tracked);
    Check(foreman.Close(1) == 1, "the foreman logs out");
    Say("   the foreman closes the production project and logs out\n");
}

}  // namespace

int main() {
    RESetMessageHandler(&PrintMessageBox);
    std::error_code error;
    const fs::path dir = fs::temp_directory_path(error) / ("tarsel-demo-" + std::to_string(::getpid()));
    if (error || !fs::create_directories(dir, error)) {
        std::printf("cannot make a temporary directory\n");
        return 1;
    }
    // On a server, two workstations: one mounts the shop folder at <dir>/deskA/shop, the other
    // at <dir>/deskB/shop, and each names its own mount point as its server root.
    const char* server = std::getenv("TARSEL_SERVER");
    fs::path shop = dir;
    SecondDesk desk{dir, ""};
    if (server != nullptr && *server != '\0') {
        shop = dir / "deskA" / "shop";
        desk = {dir / "deskB" / "shop", (dir / "deskB").string()};
        ::setenv("TARSEL_SERVER_ROOT", (dir / "deskA").string().c_str(), 1);
        fs::create_directories(shop, error);
        fs::create_directories(desk.folder, error);
        Say("tarsel demo on the server store: this workstation reaches the shop's files as %s\n",
            shop.string().c_str());
    } else {
        Say("tarsel demo: working in %s\n", dir.string().c_str());
    }

    RecordManagerWalk(shop);
    ProjectWalk(shop, desk);
    ProductionWalk(shop);

    fs::remove_all(dir, error);
    Say("\n%s; temporary directory removed\n", g_failed ? "Something did not work" : "All done");
    return g_failed ? 1 : 0;
}
