#include "recman/Platform.h"

#include <chrono>
#include <random>

namespace recman::platform {

std::string siblingPath(const std::string& path, const std::string& name)
{
#if defined(_WIN32)
    const size_t slash = path.find_last_of("/\\:");
#else
    const size_t slash = path.find_last_of('/');
#endif
    return (slash == std::string::npos ? std::string() : path.substr(0, slash + 1)) + name;
}

int64_t hostToken()
{
    static const int64_t token = [] {
        uint64_t h = 0xcbf29ce484222325ull;  // FNV-1a
        for (const char c : hostName())
            h = (h ^ uint8_t(c)) * 0x100000001b3ull;
        return int64_t(h >> 1) | 1;
    }();
    return token;
}

uint64_t randomToken()
{
    std::random_device rd;
    const uint64_t a = (uint64_t(rd()) << 32) ^ rd();
    const uint64_t t = uint64_t(std::chrono::steady_clock::now().time_since_epoch().count());
    return (a ^ (t * 0x9E3779B97F4A7C15ull) ^ uint64_t(currentProcessId())) | 1;
}

}  // namespace recman::platform
