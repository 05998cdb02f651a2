// A random walk of Inserts, Updates, Deletes, Gets and Steps on one handle, checked call by call
// against a small model of the documented currency rules: a unique key 0 and a duplicates key 1.
// A second handle changes the file now and then; positions must survive its changes, and the
// first handle's record locks must hold it off.
#include "ConformanceFixture.h"

#include <algorithm>
#include <map>
#include <optional>
#include <random>
#include <set>
#include <sstream>
#include <tuple>

namespace conformance {
namespace {


// Where a record sits in a key: its value, then (key 1 only) when it took that value.
using Place = std::tuple<int32_t, uint64_t>;

struct ModelRecord {
    int tag;
    int32_t key0, key1;
    uint64_t took;  // when key 1 got its value
    Place place(int k) const { return k == 0 ? Place{key0, 0} : Place{key1, took}; }
};

class Model {
public:
    enum class Logical { None, On, Between, Broken, Unknown };

    std::map<uint32_t, ModelRecord> records;  // by record number
    std::optional<uint32_t> current;
    Logical logical = Logical::None;
    int logicalKey = 0;
    Place logicalPlace;
    std::optional<uint32_t> physical;  // none: before the first
    uint32_t lastNumber = 0;
    uint64_t clock = 0;
    bool currentChangedElsewhere = false;  // another handle updated or deleted the current record
    std::optional<uint32_t> singleLock;
    std::set<uint32_t> multipleLocks;

    bool locked(uint32_t number) const { return singleLock == number || multipleLocks.count(number); }
    // A lock bias the handle may not ask for now.
    bool mixes(uint16_t bias) const {
        return (bias == op::Single && !multipleLocks.empty()) || (bias == op::Multiple && singleLock);
    }
    void lockFound(uint16_t bias, uint32_t number) {
        if (bias == op::Single)
            singleLock = number;
        else if (bias == op::Multiple)
            multipleLocks.insert(number);
    }

    bool key0Taken(int32_t value, std::optional<uint32_t> except) const {
        for (const auto& [number, r] : records)
            if (r.key0 == value && number != except)
                return true;
        return false;
    }
    // Entries of key k in key order.
    std::vector<std::pair<Place, uint32_t>> entries(int k) const {
        std::vector<std::pair<Place, uint32_t>> out;
        for (const auto& [number, r] : records)
            out.emplace_back(r.place(k), number);
        std::sort(out.begin(), out.end());
        return out;
    }
    void reached(uint32_t number, int k, bool keyed) {
        current = number;
        currentChangedElsewhere = false;
        physical = number;
        logical = keyed ? Logical::On : Logical::None;
        logicalKey = k;
        logicalPlace = records.at(number).place(k);
    }
    // What the operation finds in key k, or nothing.
    std::optional<uint32_t> search(uint16_t operation, int k, int32_t value) const {
        auto list = entries(k);
        auto valueOf = [](const auto& e) { return std::get<0>(e.first); };
        std::optional<uint32_t> found;
        switch (operation) {
        case op::GetFirst: if (!list.empty()) found = list.front().second; break;
        case op::GetLast: if (!list.empty()) found = list.back().second; break;
        case op::GetNext:
            for (auto& e : list) if (e.first > logicalPlace) { found = e.second; break; }
            break;
        case op::GetPrevious:
            for (auto& e : list) if (e.first < logicalPlace) found = e.second;
            break;
        case op::GetEqual:
            for (auto& e : list) if (valueOf(e) == value) { found = e.second; break; }
            break;
        case op::GetGreaterOrEqual:
            for (auto& e : list) if (valueOf(e) >= value) { found = e.second; break; }
            break;
        case op::GetGreater:
            for (auto& e : list) if (valueOf(e) > value) { found = e.second; break; }
            break;
        case op::GetLessOrEqual:
            for (auto& e : list) if (valueOf(e) <= value) found = e.second;
            break;
        case op::GetLess:
            for (auto& e : list) if (valueOf(e) < value) found = e.second;
            break;
        }
        return found;
    }
    std::optional<uint32_t> step(uint16_t operation) const {
        if (records.empty())
            return std::nullopt;
        bool forward = operation == op::StepFirst || operation == op::StepNext;
        if (operation == op::StepFirst || (operation == op::StepNext && !physical))
            return records.begin()->first;
        if (operation == op::StepLast || (operation == op::StepPrevious && !physical))
            return records.rbegin()->first;
        auto it = forward ? records.upper_bound(*physical) : records.lower_bound(*physical);
        if (forward)
            return it == records.end() ? std::nullopt : std::optional<uint32_t>(it->first);
        return it == records.begin() ? std::nullopt : std::optional<uint32_t>(std::prev(it)->first);
    }
};

Bytes modelRecord(const ModelRecord& r) {
    return record(16, {{0, le(uint16_t(r.tag), 2)}, {4, int32Key(r.key0)}, {8, int32Key(r.key1)}});
}

class CurrencyModel : public Conformance {
protected:
    void walk(unsigned seed);
};

TEST_F(CurrencyModel, RandomOperationsFollowTheCurrencyRules) {
    for (unsigned seed : {7u, 8u, 9u}) {
        SCOPED_TRACE(::testing::Message() << "seed " << seed);
        walk(seed);
        if (HasFatalFailure())
            return;
    }
}

void CurrencyModel::walk(unsigned seed) {
    const std::string name = "walk" + std::to_string(seed) + ".dat";
    Handle h, other;
    openNew(h, twoKeyFile(), name);
    ASSERT_EQ(st::Ok, other.open(path(name)));
    Model m;
    std::mt19937 random(seed);
    auto pick = [&](int n) { return int(random() % unsigned(n)); };
    const uint16_t gets[] = {op::GetFirst, op::GetLast, op::GetEqual, op::GetGreater, op::GetGreaterOrEqual,
                             op::GetLess, op::GetLessOrEqual, op::GetNext, op::GetPrevious};
    const uint16_t steps[] = {op::StepFirst, op::StepLast, op::StepNext, op::StepPrevious};
    int nextTag = 1;

    for (int i = 0; i < 3000; ++i) {
        int k = pick(2);
        int choice = pick(13);
        std::ostringstream what;
        int16_t expected = st::Ok, got;
        std::optional<uint32_t> found;
        bool reads = false;
        if (choice <= 1) {  // insert
            ModelRecord r{nextTag++, int32_t(pick(40)), int32_t(pick(6)), 0};
            what << "insert k" << k << " " << r.key0 << "/" << r.key1;
            got = h.insert(modelRecord(r), int8_t(k));
            if (m.key0Taken(r.key0, std::nullopt)) {
                expected = st::Duplicate;
            } else {
                r.took = ++m.clock;
                m.records[++m.lastNumber] = r;
                m.reached(m.lastNumber, k, true);
            }
        } else if (choice == 2) {  // update
            int32_t key0 = pick(3) == 0 ? int32_t(pick(40)) : -1, key1 = int32_t(pick(6));
            what << "update k" << k << " " << key0 << "/" << key1;
            if (!m.current) {
                got = h.update(modelRecord({0, 0, 0, 0}), int8_t(k));
                expected = st::NoCurrency;
            } else if (m.currentChangedElsewhere) {
                got = h.update(modelRecord({0, key0, key1, 0}), int8_t(k));
                expected = st::Changed;
            } else {
                ModelRecord r = m.records.at(*m.current);
                if (key0 >= 0)
                    r.key0 = key0;
                if (r.key1 != key1)
                    r.key1 = key1, r.took = ++m.clock;
                got = h.update(modelRecord(r), int8_t(k));
                if (m.key0Taken(r.key0, m.current)) {
                    expected = st::Duplicate;
                } else {
                    m.records[*m.current] = r;
                    if (m.singleLock == m.current)
                        m.singleLock.reset();
                    if (m.logical == Model::Logical::On && m.logicalKey == k)
                        m.logicalPlace = r.place(k);
                    else if (m.logical == Model::Logical::On || m.logical == Model::Logical::Between)
                        m.logical = Model::Logical::Broken;
                    else if (m.logical == Model::Logical::Broken)
                        m.logical = Model::Logical::Unknown;
                }
            }
        } else if (choice == 3) {  // delete
            what << "delete k" << k;
            got = h.erase(int8_t(k));
            if (!m.current) {
                expected = st::NoCurrency;
            } else if (m.currentChangedElsewhere) {
                expected = st::Changed;
            } else {
                m.records.erase(*m.current);
                if (m.singleLock == m.current)
                    m.singleLock.reset();
                m.multipleLocks.erase(*m.current);
                m.current.reset();
                if (m.logical == Model::Logical::On && m.logicalKey == k)
                    m.logical = Model::Logical::Between;
                else if (m.logical == Model::Logical::On || m.logical == Model::Logical::Between)
                    m.logical = Model::Logical::Broken;
                else if (m.logical == Model::Logical::Broken)
                    m.logical = Model::Logical::Unknown;
            }
        } else if (choice <= 7) {  // get
            uint16_t operation = gets[pick(std::size(gets))];
            bool nextOrPrevious = operation == op::GetNext || operation == op::GetPrevious;
            if (nextOrPrevious && m.logical == Model::Logical::Unknown)
                operation = op::GetFirst, nextOrPrevious = false;
            int32_t value = int32_t(pick(k == 0 ? 42 : 7)) - 1;
            const uint16_t biases[] = {0, 0, op::Single, op::Multiple};
            uint16_t bias = biases[pick(4)];
            what << "get " << operation + bias << " k" << k << " " << value;
            got = h.find(operation + bias, int32Key(value), int8_t(k));
            reads = true;
            if (m.mixes(bias)) {
                expected = st::LockMix;
            } else if (nextOrPrevious && m.logical == Model::Logical::None) {
                expected = st::NoCurrency;
            } else if (nextOrPrevious && (m.logical == Model::Logical::Broken || m.logicalKey != k)) {
                expected = st::OtherKeyCurrency;
            } else if ((found = m.search(operation, k, value))) {
                m.reached(*found, k, true);
                m.lockFound(bias, *found);
            } else {
                expected = operation == op::GetEqual ? st::NotFound : st::End;
            }
        } else if (choice == 12) {  // unlock
            int8_t kind = pick(2) == 0 ? 0 : -2;
            what << "unlock " << int(kind);
            got = h.unlock(kind);
            if (kind == 0 && m.singleLock)
                m.singleLock.reset();
            else if (kind == -2 && !m.multipleLocks.empty())
                m.multipleLocks.clear();
            else
                expected = st::LockMix;
        } else if (choice >= 10) {  // the other handle inserts, updates or deletes
            if (m.records.empty() || pick(3) == 0) {
                ModelRecord r{nextTag++, int32_t(pick(40)), int32_t(pick(6)), 0};
                what << "other inserts " << r.key0 << "/" << r.key1;
                got = other.insert(modelRecord(r));
                if (m.key0Taken(r.key0, std::nullopt)) {
                    expected = st::Duplicate;
                } else {
                    r.took = ++m.clock;
                    m.records[++m.lastNumber] = r;
                }
            } else {
                auto it = std::next(m.records.begin(), pick(int(m.records.size())));
                uint32_t number = it->first;
                ModelRecord r = it->second;
                ASSERT_EQ(st::Ok, other.find(op::GetEqual, int32Key(r.key0)));
                if (m.locked(number)) {
                    what << "other writes locked " << r.key0;
                    got = pick(2) == 0 ? other.erase() : other.update(modelRecord(r));
                    expected = st::Locked;
                } else if (pick(2) == 0) {
                    what << "other deletes " << r.key0;
                    got = other.erase();
                    m.records.erase(number);
                } else {
                    int32_t key1 = int32_t(pick(6));
                    if (pick(3) == 0)
                        r.key0 = int32_t(pick(40));
                    if (key1 != r.key1)
                        r.key1 = key1, r.took = ++m.clock;
                    what << "other updates to " << r.key0 << "/" << r.key1;
                    got = other.update(modelRecord(r));
                    if (m.key0Taken(r.key0, number))
                        expected = st::Duplicate;
                    else
                        m.records[number] = r;
                }
                if (expected == st::Ok && m.current == number)
                    m.currentChangedElsewhere = true;
            }
        } else {  // step
            uint16_t operation = steps[pick(std::size(steps))];
            uint16_t bias = pick(3) == 0 ? op::Single : 0;
            what << "step " << operation + bias;
            got = h.step(operation + bias);
            reads = true;
            if (m.mixes(bias)) {
                expected = st::LockMix;
            } else if ((found = m.step(operation))) {
                m.reached(*found, 0, false);
                m.lockFound(bias, *found);
            } else {
                expected = st::End;
            }
        }
        SCOPED_TRACE(::testing::Message() << "operation " << i << ": " << what.str());
        ASSERT_EQ(expected, got);
        if (reads && got == st::Ok) {
            ASSERT_EQ(m.records.at(*found).tag, int(readLe(h.data.data(), 2)));
        }
    }
    EXPECT_EQ(m.records.size(), h.count());
}

}  // namespace
}  // namespace conformance
