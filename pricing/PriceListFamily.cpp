#include "pricing/PriceListFamily.h"

#include "REErrorMessages.h"
#include "core/Platform.h"
#include "plainfile/PlainFile.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace plainfile {

namespace {

constexpr std::size_t kPathOffset = 37;
constexpr char kHeaderFill = 'y';
constexpr const char* kBackupExtension = "DOS";

// Replaces any earlier backup with a copy of the text-form file; never the file itself.
void KeepTextFormCopy(const std::string& path) {
    const std::string backup = CompanionPath(path, kBackupExtension);
    if (SamePath(path, backup))
        return;
    platform::RemoveFile(backup);
    platform::CopyFileTo(path, backup, true);
}

int FindSection(const PriceListKind& kind, std::string_view line) {
    for (std::size_t i = 0; i < kind.sections.size(); ++i) {
        if (EqualsIgnoreCase(line, kind.sections[i].name))
            return static_cast<int>(i);
    }
    return -1;
}

bool IsHookSection(const PriceListKind& kind, std::string_view line) {
    return kind.hook.name != nullptr && EqualsIgnoreCase(line, kind.hook.name);
}

std::vector<RecordListRef> ListsOf(const PriceListKind& kind, void* owner) {
    std::vector<RecordListRef> lists;
    for (const PriceSection& section : kind.sections)
        lists.push_back(section.list(owner));
    return lists;
}

}  // namespace

int LoadPriceList(const PriceListKind& kind, const std::string& path, void* owner) {
    std::string content;
    if (!ReadWholeFile(path, content)) {
        ShowErrorMessage(kind.missingError);
        return 0;
    }
    const std::string_view file(content);
    if (HasIdentification(file.substr(0, kHeaderSize), kind.ident)) {
        TransferBinaryBody(file.size() > kHeaderSize ? file.substr(kHeaderSize) : std::string_view(),
                           ListsOf(kind, owner));
        return 1;
    }
    // The text form ends at its first zero byte, as a zero-terminated text would.
    ParseTextForm(kind, file.substr(0, std::min(file.size(), file.find('\0'))), owner);
    KeepTextFormCopy(path);
    return 1;
}

int TransferBinaryBody(std::string_view body, std::span<const RecordListRef> lists) {
    std::size_t pos = 0;
    for (const RecordListRef& list : lists) {
        int32_t count = 0;
        if (!ReadInt32(body, pos, count))
            return 0;
        for (int32_t i = 0; i < count; ++i) {
            if (body.size() - pos < list.recordSize)
                return 0;
            void* record = NewRecord(list);
            if (record == nullptr)
                return 0;
            std::memcpy(record, body.data() + pos, list.recordSize);
            list.append(list.list, record);
            pos += list.recordSize;
        }
    }
    return 1;
}

int ParseTextForm(const PriceListKind& kind, std::string_view text, void* owner) {
    const std::vector<std::string_view> lines = SplitLines(text);
    std::size_t next = 0;
    while (next < lines.size()) {
        const std::string_view header = TrimRight(lines[next++]);
        const int section = FindSection(kind, header);
        const bool hook = section < 0 && IsHookSection(kind, header);
        if (section < 0 && !hook)
            continue;
        // Data lines follow until a line without a comma, which is the next header.
        for (; next < lines.size(); ++next) {
            const std::string_view line = TrimRight(lines[next]);
            if (line.find(',') == std::string_view::npos)
                break;
            const std::vector<std::string_view> columns = SplitColumns(line);
            if (hook) {
                if (!kind.hook.onDataLine(owner, columns))
                    return 0;
                continue;
            }
            const RecordListRef list = kind.sections[static_cast<std::size_t>(section)].list(owner);
            void* record = NewRecord(list);
            if (record == nullptr)
                return 0;
            FillRecord(record, list.recordSize, kind.sections[static_cast<std::size_t>(section)].columns, columns);
            list.append(list.list, record);
        }
    }
    return 1;
}

int SavePriceList(const PriceListKind& kind, const std::string& target, const std::string& loadPath,
                  void* owner) {
    std::string out(kHeaderSize, kHeaderFill);
    const std::size_t identLength = std::strlen(kind.ident);
    out.replace(0, identLength + 1, kind.ident, identLength + 1);
    const std::size_t pathLength = std::min(loadPath.size(), kHeaderSize - kPathOffset - 1);
    out.replace(kPathOffset, pathLength, loadPath, 0, pathLength);
    out[kPathOffset + pathLength] = '\0';
    for (const RecordListRef& list : ListsOf(kind, owner)) {
        AppendInt32(out, static_cast<int32_t>(list.count(list.list)));
        list.writeRecords(list.list, out);
    }
    return ReplaceFile(target, out) ? 1 : 0;
}

void ReleaseLists(const PriceListKind& kind, void* owner) {
    for (const RecordListRef& list : ListsOf(kind, owner))
        list.release(list.list);
}

}  // namespace plainfile
