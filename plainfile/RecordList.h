// A typed list of heap records (std::list<REC*>) seen through plain function pointers, so that
// the list-file code is written once for every record type. Records are std::malloc blocks of
// the record size and are released with std::free.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <list>
#include <string>

namespace plainfile {

struct RecordListRef {
    void* list;
    std::size_t recordSize;
    std::size_t (*count)(const void* list);
    void (*append)(void* list, void* record);
    // Appends the bytes of every record in list order (zeros for a null entry).
    void (*writeRecords)(const void* list, std::string& out);
    // Frees every record and empties the list.
    void (*release)(void* list);
};

template <class REC>
RecordListRef RefTo(std::list<REC*>& list) {
    using List = std::list<REC*>;
    return RecordListRef{
        &list,
        sizeof(REC),
        [](const void* l) { return static_cast<const List*>(l)->size(); },
        [](void* l, void* record) { static_cast<List*>(l)->push_back(static_cast<REC*>(record)); },
        [](const void* l, std::string& out) {
            for (const REC* record : *static_cast<const List*>(l)) {
                if (record != nullptr)
                    out.append(reinterpret_cast<const char*>(record), sizeof(REC));
                else
                    out.append(sizeof(REC), '\0');
            }
        },
        [](void* l) {
            auto* typed = static_cast<List*>(l);
            for (REC* record : *typed)
                std::free(record);
            typed->clear();
        },
    };
}

// The same for a list that is only read (count and writeRecords).
template <class REC>
RecordListRef RefTo(const std::list<REC*>& list) {
    return RefTo(const_cast<std::list<REC*>&>(list));
}

// A zero-filled record for `list`, or null when memory is exhausted.
inline void* NewRecord(const RecordListRef& list) {
    return std::calloc(1, list.recordSize);
}

}  // namespace plainfile
