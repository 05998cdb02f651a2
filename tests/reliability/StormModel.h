// What a crash storm's writers acknowledged, rebuilt from their logs, and the judgement of a file
// against it.
//
// A writer appends one line before each write call and one after it:
//   T <op> <key> <id>   the call it is about to make: I(nsert), U(pdate) or D(elete) of record <key>,
//                       the record then carrying the operation id <id> (unique in the whole storm)
//   K                   the call answered 0       F <status>   it answered something else
// A T line with no answer after it is the call in flight when the writer was killed: it may or may
// not have taken effect, so both outcomes are allowed for that record until a later call settles it.
#pragma once

#include <cstdint>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>

namespace storm {

constexpr int64_t kAbsent = -1;

struct RecordModel {
    std::set<int64_t> allowed{kAbsent};  // states the file may show: an id, or kAbsent
    std::set<int64_t> acknowledged;      // every id a 0 answered for this record
};

struct WriterModel {
    std::map<int32_t, RecordModel> records;
    uint64_t acknowledged = 0;  // calls that answered 0
    uint64_t inFlight = 0;      // calls cut by a kill
    uint64_t failed = 0;        // calls that answered neither 0 nor nothing
};

struct Pending {
    bool open = false;
    char op = 0;
    int32_t key = 0;
    int64_t id = 0;
    int64_t after() const { return op == 'D' ? kAbsent : id; }
};

inline WriterModel readWriterLog(const std::string& path) {
    WriterModel model;
    Pending pending;
    auto cut = [&] {
        if (pending.open) {
            model.records[pending.key].allowed.insert(pending.after());
            ++model.inFlight;
        }
        pending.open = false;
    };
    std::ifstream in(path);
    std::string line;
    while (std::getline(in, line)) {
        std::istringstream fields(line);
        std::string tag;
        fields >> tag;
        if (tag == "T") {
            cut();
            std::string op;
            fields >> op >> pending.key >> pending.id;
            pending.op = op.empty() ? '?' : op[0];
            pending.open = true;
        } else if (tag == "K" && pending.open) {
            RecordModel& r = model.records[pending.key];
            r.allowed = {pending.after()};
            if (pending.op != 'D')
                r.acknowledged.insert(pending.id);
            ++model.acknowledged;
            pending.open = false;
        } else if (tag == "F" && pending.open) {
            ++model.failed;
            pending.open = false;
        }
    }
    cut();
    return model;
}

// How the file's state of one record compares with what its writer acknowledged.
enum class Verdict { Agrees, Lost, Phantom };

inline Verdict judge(const RecordModel& model, int64_t found) {
    if (model.allowed.count(found))
        return Verdict::Agrees;
    // Missing, or an older acknowledged state: an acknowledged change is gone.
    if (found == kAbsent || model.acknowledged.count(found))
        return Verdict::Lost;
    return Verdict::Phantom;
}

}  // namespace storm
