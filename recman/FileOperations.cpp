// The library's whole-file calls, carried out by the process's store; and the check's comparisons
// that every store shares.
#include "recman/FileOperations.h"

#include "recman/ByteOrder.h"
#include "recman/Engine.h"
#include "recman/KeyCodec.h"
#include "recman/sqlite/SqliteSchema.h"

#include <algorithm>

namespace recman {

namespace {

// Runs `op` on the process's store's file operations; no exception leaves.
template <typename Op>
int16_t onStore(Op op)
{
    try {
        FileOperations* ops = Engine::instance().store().fileOperations();
        if (ops == nullptr)
            return StatusEngineUnavailable;
        return op(*ops);
    } catch (...) {
        return StatusStoreFailure;
    }
}

bool badPath(const std::string& path) { return path.empty() || path.find('\0') != std::string::npos; }

std::string recordText(int64_t recno) { return "record " + std::to_string(recno); }

// The entries a record's data gives it; false when the data is shorter than the fixed part.
bool entriesOf(const FileSpec& spec, const std::vector<const SegmentSpec*>& autos, const std::string& data,
               StoredRecord& out)
{
    if (data.size() < spec.recordLength)
        return false;
    const auto* rec = reinterpret_cast<const uint8_t*>(data.data());
    std::vector<uint8_t> value;
    out.keys.assign(spec.keys.size(), std::nullopt);
    for (size_t i = 0; i < spec.keys.size(); ++i) {
        value.resize(spec.keys[i].width);
        KeyCodec::extractValue(spec.keys[i], rec, value.data());
        if (KeyCodec::isNull(spec.keys[i], value.data()))
            continue;
        out.keys[i].emplace();
        KeyCodec::encode(spec.keys[i], value.data(), *out.keys[i]);
    }
    out.autoValues.clear();
    for (const SegmentSpec* f : autos) {
        const uint64_t raw = loadLEN(rec + f->offset(), f->length);
        out.autoValues.push_back(f->length == 2 ? int64_t(int16_t(raw)) : int64_t(int32_t(raw)));
    }
    return true;
}

struct EntryFault {
    int64_t recno;
    bool isKey;
    size_t index;
    std::optional<std::string> key;
    int64_t autoValue;
};

}  // namespace

Status checkFile(CheckedFile& file, bool repair, const CheckProgress& progress, RERecordFileCheck& report)
{
    if (const Status s = file.integrity(repair, report); s != StatusOk)
        return s;
    int64_t kept = 0, highestGiven = 0;
    if (const Status s = file.counters(kept, highestGiven); s != StatusOk)
        return s;
    report.keptCount = kept;

    const FileSpec& spec = file.spec();
    const auto autos = sqlite::autoIncrementFields(spec);
    const uint64_t total = kept > 0 ? uint64_t(kept) : 0;
    uint64_t records = 0;
    int64_t highest = 0;
    std::vector<EntryFault> faults;
    StoredRecord expected;
    const Status walked = file.walk([&](const StoredRecord& r) {
        ++records;
        highest = std::max(highest, r.recno);
        if (progress.call != nullptr)
            progress.call(records, std::max(total, records), progress.context);
        if (!entriesOf(spec, autos, r.data, expected)) {
            report.findings.push_back(recordText(r.recno) + ": shorter than the record length");
            return true;
        }
        for (size_t i = 0; i < spec.keys.size() && i < r.keys.size(); ++i)
            if (r.keys[i] != expected.keys[i])
                faults.push_back(EntryFault{r.recno, true, i, expected.keys[i], 0});
        for (size_t j = 0; j < autos.size() && j < r.autoValues.size(); ++j)
            if (r.autoValues[j] != expected.autoValues[j])
                faults.push_back(EntryFault{r.recno, false, j, std::nullopt, *expected.autoValues[j]});
        return true;
    });
    if (walked != StatusOk)
        return walked;
    report.records = records;

    for (const EntryFault& f : faults) {
        const std::string what = recordText(f.recno) + (f.isKey ? ": its entry in key " : ": its autoincrement value ") +
                                 std::to_string(f.index) + " differs from its data";
        if (!repair) {
            report.findings.push_back(what);
            continue;
        }
        const Status s = f.isKey ? file.setKeyEntry(f.recno, f.index, f.key) : file.setAutoValue(f.recno, f.index, f.autoValue);
        if (s == StatusOk)
            report.repairs.push_back(what + "; set from the data");
        else if (s == StatusDuplicateKey)
            report.findings.push_back(what + "; another record holds that value in the unique key");
        else
            return s;
    }

    const bool countStale = kept != int64_t(records);
    const bool numberBehind = highestGiven < highest;
    if (countStale || numberBehind) {
        const std::string what =
            (countStale ? "kept record count " + std::to_string(kept) + ", records " + std::to_string(records) : std::string()) +
            (countStale && numberBehind ? "; " : "") +
            (numberBehind ? "highest record number given " + std::to_string(highestGiven) + ", highest held " +
                                std::to_string(highest)
                          : std::string());
        if (!repair) {
            report.findings.push_back(what);
        } else {
            if (const Status s = file.setCounters(int64_t(records), std::max(highestGiven, highest)); s != StatusOk)
                return s;
            report.repairs.push_back(what + "; counters set from the records");
        }
    }
    return StatusOk;
}

}  // namespace recman

REPathState RELookUpRecordFile(const std::string& path)
{
    if (recman::badPath(path))
        return REPathState::Invalid;
    REPathState state = REPathState::Invalid;
    recman::onStore([&](recman::FileOperations& ops) {
        state = ops.lookUp(path);
        return recman::StatusOk;
    });
    return state;
}

int16_t RECopyRecordFile(const std::string& from, const std::string& to, bool replace)
{
    if (recman::badPath(from) || recman::badPath(to))
        return recman::StatusBadPath;
    return recman::onStore([&](recman::FileOperations& ops) { return ops.copy(from, to, replace); });
}

int16_t REMoveRecordFile(const std::string& from, const std::string& to)
{
    if (recman::badPath(from) || recman::badPath(to))
        return recman::StatusBadPath;
    return recman::onStore([&](recman::FileOperations& ops) { return ops.move(from, to); });
}

int16_t REDeleteRecordFile(const std::string& path)
{
    if (recman::badPath(path))
        return recman::StatusBadPath;
    return recman::onStore([&](recman::FileOperations& ops) { return ops.remove(path); });
}

int16_t REFindRecordFiles(const std::string& directory, const std::string& pattern, std::vector<std::string>& names)
{
    names.clear();
    if (directory.find('\0') != std::string::npos)
        return recman::StatusBadPath;
    return recman::onStore([&](recman::FileOperations& ops) { return ops.search(directory, pattern, names); });
}

int16_t RECheckRecordFile(const std::string& path, bool repair, RERecordFileCheck& result, RECheckProgress progress,
                          void* context)
{
    result = RERecordFileCheck{};
    if (recman::badPath(path))
        return recman::StatusBadPath;
    return recman::onStore(
        [&](recman::FileOperations& ops) { return ops.check(path, repair, {progress, context}, result); });
}
