// The price-list family: loading (binary form, or the old text form with its "DOS" copy),
// saving and releasing the lists of a price-list class, driven by the class's table of lists.
//
// Binary form:
//   OFFSET  SIZE          DESCRIPTION
//   0       337           header, byte 'y' throughout; identification string and its zero at 0,
//                         the path the object was initialized with and its zero at 37
//   337     4             record count of list 1 (int32)
//   341     n x size      the records of list 1
//   ...                   count and records of each further list, in table order
#pragma once

#include "REErrorMessages.h"
#include "plainfile/PlainFile.h"
#include "plainfile/PlainText.h"
#include "plainfile/RecordList.h"

#include <algorithm>
#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace plainfile {

// One list of a price-list class: its section name in the text form, the list of the object
// that it fills, and how a data line of that section fills a record.
struct PriceSection {
    const char* name;
    RecordListRef (*list)(void* owner);
    ColumnTable columns;
};

// The list that a section fills, named by the class's accessor: ListOf<&REXxx::GetBasePrice>.
template <class Member>
struct AccessorClass;
template <class C, class L>
struct AccessorClass<L& (C::*)()> {
    using type = C;
};
template <auto Accessor>
RecordListRef ListOf(void* owner) {
    using Class = typename AccessorClass<decltype(Accessor)>::type;
    return RefTo((static_cast<Class*>(owner)->*Accessor)());
}

// A text section that fills no list of its own; its data lines go to `onDataLine`, which may
// end the parse by returning false (after reporting why).
struct PriceHookSection {
    const char* name;
    bool (*onDataLine)(void* owner, std::span<const std::string_view> columns);
};

struct PriceListKind {
    const char* ident;                     // identification string of the binary form
    unsigned missingError;                 // message number of a file that cannot be read
    std::span<const PriceSection> sections;  // in file order
    PriceHookSection hook;                 // name null when the class has none
};

// Loads the file at `path` into the lists of `owner`, adding to what they hold. A text-form file
// is then copied to the companion file with the extension "DOS". 1 when the file was read
// (whatever its content), 0 after reporting kind.missingError.
int LoadPriceList(const PriceListKind& kind, const std::string& path, void* owner);

// Binary body (after the header) into the lists. Reading stops at the end of the body; the
// records read so far stay. 1 when the body held every record its counts name, else 0.
int TransferBinaryBody(std::string_view body, std::span<const RecordListRef> lists);

// Old text form into the lists of `owner`: 1, or 0 when the hook ended the parse.
int ParseTextForm(const PriceListKind& kind, std::string_view text, void* owner);

// Writes the binary form of `owner`'s lists to `target`, with `loadPath` in the header. 1, or 0
// when the file cannot be written (the file already there is then left as it was).
int SavePriceList(const PriceListKind& kind, const std::string& target, const std::string& loadPath,
                  void* owner);

// Frees every record of every list of `owner`.
void ReleaseLists(const PriceListKind& kind, void* owner);

// The operations that every price-list class shares, on its stored path: a std::string, or a
// fixed buffer that refuses a path that does not fit (with kind.missingError).
struct PriceListShell {
    static bool StorePath(std::string& stored, const char* path, const PriceListKind&) {
        stored = path != nullptr ? path : "";
        return true;
    }
    template <std::size_t N>
    static bool StorePath(char (&stored)[N], const char* path, const PriceListKind& kind);
    static const char* PathOf(const std::string& stored) { return stored.c_str(); }
    static const char* PathOf(const char* stored) { return stored; }
    static void ClearPath(std::string& stored) { stored.clear(); }
    template <std::size_t N>
    static void ClearPath(char (&stored)[N]) { std::fill(stored, stored + N, '\0'); }
};

// Defines Initialize, Save, Reset, _FileOpen and _FileSave of a price-list class whose
// description is `kind` (its m_filePath and m_isLoaded as the class declares them).
#define RE_PRICE_LIST_OPERATIONS(Class, kind)                                                          \
    int Class::Initialize(const char* path) {                                                         \
        if (m_isLoaded) {                                                                             \
            Reset();                                                                                  \
            m_isLoaded = 0;                                                                           \
        }                                                                                             \
        if (!plainfile::PriceListShell::StorePath(m_filePath, path, kind))                            \
            return 0;                                                                                 \
        return _FileOpen();                                                                           \
    }                                                                                                 \
    int Class::Save(const char* path) {                                                               \
        return _FileSave(path != nullptr ? path : plainfile::PriceListShell::PathOf(m_filePath));    \
    }                                                                                                 \
    int Class::Reset() {                                                                              \
        plainfile::ReleaseLists(kind, this);                                                          \
        plainfile::PriceListShell::ClearPath(m_filePath);                                             \
        return 1;                                                                                     \
    }                                                                                                 \
    int Class::_FileOpen() { return plainfile::LoadPriceList(kind, m_filePath, this); }               \
    int Class::_FileSave(const char* path) { return plainfile::SavePriceList(kind, path, m_filePath, this); }

template <std::size_t N>
bool PriceListShell::StorePath(char (&stored)[N], const char* path, const PriceListKind& kind) {
    if (plainfile::StorePath(stored, N, path))
        return true;
    ShowErrorMessage(kind.missingError);
    return false;
}

}  // namespace plainfile
