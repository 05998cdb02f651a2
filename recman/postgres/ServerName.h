// How a path names a file on the server, whichever workstation gives it.
#pragma once

#include <cctype>
#include <filesystem>
#include <string>

namespace recman::postgres {

namespace detail {

inline bool windowsStyle(const std::string& p)
{
    return p.find('\\') != std::string::npos || (p.size() >= 2 && std::isalpha(uint8_t(p[0])) && p[1] == ':');
}

inline std::string normalised(const std::string& path)
{
    if (windowsStyle(path)) {
        std::string out;
        for (char c : path)
            out.push_back(c == '\\' ? '/' : char(std::tolower(uint8_t(c))));
        return out;
    }
    std::error_code ec;
    const std::filesystem::path p = std::filesystem::absolute(path, ec);
    return (ec ? std::filesystem::path(path) : p).lexically_normal().generic_string();
}

}  // namespace detail

// The server's name for `path`: with a Windows-style path (a drive letter or a backslash)
// backslashes become slashes and letters lower case; a relative path is made absolute; then the
// prefix `root` (normalised the same way) is stripped at a component boundary. Starts with '/'.
inline std::string serverName(const std::string& path, const std::string& root)
{
    std::string name = detail::normalised(path);
    std::string prefix = root.empty() ? std::string() : detail::normalised(root);
    while (!prefix.empty() && prefix.back() == '/')
        prefix.pop_back();
    if (!prefix.empty() && name.compare(0, prefix.size(), prefix) == 0 &&
        (name.size() == prefix.size() || name[prefix.size()] == '/'))
        name.erase(0, prefix.size());
    if (name.empty() || name[0] != '/')
        name.insert(name.begin(), '/');
    return name;
}

}  // namespace recman::postgres
