#include "labor/LaborDefFamily.h"

#include "REErrorMessages.h"
#include "plainfile/PlainFile.h"

#include <algorithm>
#include <cstring>

namespace plainfile {

namespace {

constexpr int32_t kRecordSize = 103;
static_assert(sizeof(LABOROPDEFRECORD) == kRecordSize && sizeof(LABORMISCDEFRECORD) == kRecordSize);

// Both record types share one layout; the operation record's table serves both.
const ColumnTable kColumns = {PLAIN_COLUMN(Text, LABOROPDEFRECORD, sName),
                              PLAIN_COLUMN(Short, LABOROPDEFRECORD, nGroupNo)};

void TransferBinaryBody(const LaborDefKind& kind, std::string_view file, const RecordListRef& list) {
    std::size_t pos = kHeaderSize;
    int32_t count = 0;
    int32_t storedSize = 0;
    if (!ReadInt32(file, pos, count) || !ReadInt32(file, pos, storedSize))
        return;
    if (storedSize != kRecordSize)
        ShowErrorMessage(kind.corruptError);
    if (storedSize <= 0)
        return;
    // A stored record of another size gives its first bytes, at most a record's worth.
    const auto stride = static_cast<std::size_t>(storedSize);
    const std::size_t used = std::min(stride, list.recordSize);
    for (int32_t i = 0; i < count && file.size() - pos >= stride; ++i, pos += stride) {
        void* record = NewRecord(list);
        if (record == nullptr)
            return;
        std::memcpy(record, file.data() + pos, used);
        list.append(list.list, record);
    }
}

}  // namespace

void MakeSignature(const LaborDefKind& kind, RE_FILE_SIGNATURE& signature) {
    std::memset(&signature, 0, sizeof(signature));
    std::strncpy(signature.sSignature, kind.ident, sizeof(signature.sSignature) - 1);
}

int LoadLaborDefs(const LaborDefKind& kind, const char* path, const RecordListRef& list) {
    std::string content;
    if (path == nullptr || !ReadWholeFile(path, content)) {
        ShowErrorMessage(kind.cannotOpenError);
        return 0;
    }
    const std::string_view file(content);
    if (HasIdentification(file.substr(0, kHeaderSize), kind.ident))
        TransferBinaryBody(kind, file, list);
    else
        ParseLaborDefText(kind, file.substr(0, std::min(file.size(), file.find('\0'))), list);
    return 1;
}

int ParseLaborDefText(const LaborDefKind& kind, std::string_view text, const RecordListRef& list) {
    std::vector<std::string_view> lines;
    for (std::string_view line : SplitLines(text)) {
        // A line of white space only (a CR LF pair among them) counts as empty.
        line = TrimRight(line);
        if (!line.empty())
            lines.push_back(line);
    }
    std::size_t first = 0;
    std::size_t end = lines.size();
    if (kind.hasCountLine) {
        if (lines.empty())
            return 1;
        const int32_t count = ReadInteger(lines[0]);
        first = 1;
        end = count <= 0 ? first : std::min(end, first + static_cast<std::size_t>(count));
    }
    for (std::size_t i = first; i < end; ++i) {
        void* record = NewRecord(list);
        if (record == nullptr)
            return 1;
        FillRecord(record, list.recordSize, kColumns, SplitColumns(lines[i]));
        list.append(list.list, record);
    }
    return 1;
}

int SaveLaborDefs(const char* path, const RE_FILE_SIGNATURE& signature, const RecordListRef& list) {
    if (path == nullptr)
        return 0;
    std::string out(signature.sSignature, sizeof(signature.sSignature));
    AppendInt32(out, static_cast<int32_t>(list.count(list.list)));
    AppendInt32(out, kRecordSize);
    list.writeRecords(list.list, out);
    return ReplaceFile(path, out) ? 1 : 0;
}

}  // namespace plainfile
