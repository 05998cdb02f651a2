// Heap records handed between the library and its callers, and arrays of their pointers.
#include "RESharedHelpers.h"

#include <cstdlib>
#include <cstring>

void* REAllocRecord(std::size_t size) {
    const std::size_t bytes = size > 0 ? size : 1;
    void* record = std::malloc(bytes);
    if (record != nullptr)
        std::memset(record, 0, bytes);
    return record;
}

void REFreeRecord(void* record) { std::free(record); }

void DeallocatePtrArray(std::vector<void*>& array) {
    for (void* element : array)
        REFreeRecord(element);
    array.clear();
}

int FindIndexInPtrArray(const std::vector<void*>& array, const void* p, int& index) {
    return FindIndexInPtrArray<void>(array, p, index);
}
