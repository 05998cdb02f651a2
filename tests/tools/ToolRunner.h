// Runs the built `tarsel` utility as a child process, with a given standard input, and collects
// its exit status and both outputs.
#pragma once

#include <string>
#include <vector>

namespace toolsupport {

struct ToolResult {
    int exitStatus = -1;  // -1 when the child did not exit normally
    std::string out;
    std::string err;
};

ToolResult RunTool(const std::vector<std::string>& args, const std::string& input = "");

}  // namespace toolsupport
