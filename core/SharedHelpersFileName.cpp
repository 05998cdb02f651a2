// Unique file names for temporary and backup files.
#include "RESharedHelpers.h"

#include "RERecordFileOps.h"
#include "core/Platform.h"

#include <chrono>
#include <cstdio>
#include <random>

namespace {

constexpr const char* kDefaultPrefix = "TSL";
constexpr size_t kLongestPrefix = 3;
constexpr int kLargestNumber = 32767;
// Every number has been tried many times over by then: the directory is full of such names.
constexpr int kMostAttempts = 1 << 20;

}  // namespace

int Gfn_GetUniqueFileName(const std::string& directory, const std::string& extension, std::string& fileName,
                          const std::string* prefix) {
    const std::string& namePrefix = prefix != nullptr ? *prefix : std::string(kDefaultPrefix);
    if (namePrefix.size() > kLongestPrefix)
        return 0;

    std::string base = directory;
    if (base.empty() || !platform::IsPathSeparator(base.back()))
        base += platform::PathSeparator();

    std::minstd_rand random(
        static_cast<std::minstd_rand::result_type>(std::chrono::system_clock::now().time_since_epoch().count()));
    std::uniform_int_distribution<int> number(0, kLargestNumber);
    for (int attempt = 0; attempt < kMostAttempts; ++attempt) {
        const std::string candidate = namePrefix + std::to_string(number(random)) + "." + extension;
        // The record manager looks the name up where its files are kept (on the server, too).
        switch (RELookUpRecordFile(base + candidate)) {
        case REPathState::Missing:
            fileName = candidate;
            return 1;
        case REPathState::Invalid:
            return 0;
        case REPathState::Exists:
            break;
        }
    }
    return 0;
}
