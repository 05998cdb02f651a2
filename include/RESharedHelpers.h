// Small routines shared by the record-file classes: moving fixed-width text fields between the
// blank-padded old layouts and the NUL-padded current ones, old stored dates and numbers,
// arrays of heap record pointers, unique file names.
#pragma once

#include "tarsel_export.h"

#include <cstddef>
#include <list>
#include <string>
#include <type_traits>
#include <vector>

// Old text field to new: copies `src[0..n-1]` into `dst` with its trailing blanks turned into
// NULs; dst[n] is always NUL. REQUIRES: `dst` holds n + 1 bytes.
TARSEL_API void gRE_memcpy(char* dst, const char* src, unsigned n);

// Drops leading bytes whose signed value is at most 20 or at least 127 (control bytes and the
// upper half; a blank is kept) from an n-byte field, NUL-filling the freed tail. When exactly
// n - 1 bytes are dropped the whole field is cleared.
TARSEL_API void gRE_TrimLeft(char* field, unsigned n);

// Removes leading / trailing blanks (0x20 only) of a NUL-terminated text in place; returns it.
TARSEL_API char* gStrTrimLeft(char* text);
TARSEL_API char* gStrTrimRight(char* text);

// Right-justifies the content of an n-byte field, moving its NULs to the front; returns it.
TARSEL_API char* gShiftRightNullCharsToLeft(char* field, int n);
// Left-justifies the content of an n-byte field, moving its leading NULs to the end; returns it.
TARSEL_API char* gShiftLeftNullCharsToRight(char* field, int n);

// 1 if the n bytes at `a` and `b` are equal, else 0.
TARSEL_API int CompareStructure(const char* a, const char* b, int n);

// A zero-filled heap block of `size` bytes (at least one), for records put into lists that the
// library frees; release it with REFreeRecord or any of the library's reset operations.
TARSEL_API void* REAllocRecord(std::size_t size);
// Releases a record handed out by the library or made by REAllocRecord; null is ignored.
TARSEL_API void REFreeRecord(void* record);

// Frees every element and empties the array.
TARSEL_API void DeallocatePtrArray(std::vector<void*>& array);
template <class T>
void DeallocatePtrArray(std::vector<T*>& array) {
    static_assert(std::is_trivially_destructible_v<T>, "record arrays hold plain records");
    for (T* element : array)
        REFreeRecord(const_cast<std::remove_cv_t<T>*>(element));
    array.clear();
}
// The same for a list of records.
template <class T>
void DeallocatePtrArray(std::list<T*>& list) {
    static_assert(std::is_trivially_destructible_v<T>, "record lists hold plain records");
    for (T* element : list)
        REFreeRecord(const_cast<std::remove_cv_t<T>*>(element));
    list.clear();
}

// Sets `index` to the first position holding the pointer `p` and returns 1; else index = -1, 0.
TARSEL_API int FindIndexInPtrArray(const std::vector<void*>& array, const void* p, int& index);
template <class T>
int FindIndexInPtrArray(const std::vector<T*>& array, const void* p, int& index) {
    index = -1;
    for (std::size_t i = 0; i < array.size(); ++i) {
        if (static_cast<const void*>(array[i]) == p) {
            index = static_cast<int>(i);
            return 1;
        }
    }
    return 0;
}

// Old stored date (YYMMDD, or month/day/year with "/" or "-") to an automation date: days since
// 30 December 1899. 0 (date unchanged) when fewer than six characters remain after leading
// blanks; otherwise 1, with 0.0 for an impossible date. Years below 100 are 19xx.
TARSEL_API int ConvertOldDateToNew(const char* oldDate, double& date);

// A 4-byte Microsoft Binary Format single as stored in the oldest files, to a double. The sign
// bit is read as part of the mantissa, as those files have always been read.
TARSEL_API double cvsmbf(const char* fourBytes);
// The same for bytes held as unsigned char (a template, so that a null pointer still picks the
// char form).
template <class Byte, std::enable_if_t<std::is_same_v<Byte, unsigned char>, int> = 0>
double cvsmbf(const Byte* fourBytes) {
    return cvsmbf(reinterpret_cast<const char*>(fourBytes));
}

// Makes a file name "<prefix><random 0..32767>.<extension>" that does not exist in `directory`
// and stores it (name only) in `fileName`. The prefix is "TSL" unless given; a prefix longer
// than three characters, or a path the file system rejects, gives 0.
TARSEL_API int Gfn_GetUniqueFileName(const std::string& directory, const std::string& extension,
                                     std::string& fileName, const std::string* prefix = nullptr);
