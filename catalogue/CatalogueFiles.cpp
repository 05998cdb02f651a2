#include "catalogue/CatalogueFiles.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <vector>

bool REEqualNoCase(const char* a, const char* b) {
    a = a != nullptr ? a : "";
    b = b != nullptr ? b : "";
    for (; *a != '\0' && *b != '\0'; ++a, ++b) {
        if (std::toupper(static_cast<unsigned char>(*a)) != std::toupper(static_cast<unsigned char>(*b)))
            return false;
    }
    return *a == *b;
}

namespace {

// The part of a Stat block that a Create takes back: the file header and twenty key segments.
constexpr size_t kClonedSpecSize = 16 + 20 * 16;

}  // namespace

int RECloneFile(REBtrieveBase& source, const char* path, uint32_t createLength) {
    if (path == nullptr)
        return 0;
    STAT_BUFFER stat{};
    source.GetStatus(&stat);
    std::vector<uint8_t> block(createLength > kClonedSpecSize ? createLength : kClonedSpecSize, 0);
    std::memcpy(block.data(), &stat, kClonedSpecSize);

    const size_t pathLength = std::min<size_t>(std::strlen(path), REBtrieveBase::kKeyBufferSize);
    REBtrieveBase target;
    target.SetKeyBuffer(path, static_cast<int>(pathLength));
    target.SetKeyNumber(0);
    target.SetDataBufLen(static_cast<int>(createLength));
    if (target.Btrieve(REBtrieveBase::kOpCreate, block.data()) != REBtrieveBase::kStatusSuccess)
        return 1;
    if (!target.Open(path))
        return 0;

    const int recordLength = stat.recordLength > 0 ? stat.recordLength : 0;
    std::vector<uint8_t> record(static_cast<size_t>(recordLength) + 1);
    source.SetDataBufLen(recordLength);
    target.SetDataBufLen(recordLength);
    if (source.Btrieve(REBtrieveBase::kOpStepFirst, record.data()) != REBtrieveBase::kStatusSuccess)
        return 0;
    do {
        if (target.Btrieve(REBtrieveBase::kOpInsert, record.data()) != REBtrieveBase::kStatusSuccess)
            return 0;
    } while (source.Btrieve(REBtrieveBase::kOpStepNext, record.data()) == REBtrieveBase::kStatusSuccess);
    target.Close();
    return 1;
}
