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

#include "pricing/PlainText.h"
#include "pricing/RecordList.h"

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace plainfile {

// One list of a price-list class: its section name in the text form and how a data line of
// that section fills a record.
struct PriceSection {
    const char* name;
    ColumnTable columns;
};

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

// Loads the file at `path` into `lists` (one per section, in the same order), adding to what
// they hold. A text-form file is then copied to the companion file with the extension "DOS".
// 1 when the file was read (whatever its content), 0 after reporting kind.missingError.
int LoadPriceList(const PriceListKind& kind, const std::string& path,
                  std::span<const RecordListRef> lists, void* owner);

// Binary body (after the header) into the lists. Reading stops at the end of the body; the
// records read so far stay. 1 when the body held every record its counts name, else 0.
int TransferBinaryBody(std::string_view body, std::span<const RecordListRef> lists);

// Old text form into the lists: 1, or 0 when the hook ended the parse.
int ParseTextForm(const PriceListKind& kind, std::string_view text,
                  std::span<const RecordListRef> lists, void* owner);

// Writes the binary form to `target`, with `loadPath` in the header. 1, or 0 when the file
// cannot be written (the file already there is then left as it was).
int SavePriceList(const PriceListKind& kind, const std::string& target, const std::string& loadPath,
                  std::span<const RecordListRef> lists);

// Frees every record of every list.
void ReleaseLists(std::span<const RecordListRef> lists);

}  // namespace plainfile
