#include "ToolRunner.h"

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <sstream>
#include <sys/wait.h>
#include <unistd.h>

namespace toolsupport {
namespace {

std::string ReadAll(std::FILE* file) {
    std::string text;
    std::rewind(file);
    char buffer[4096];
    for (size_t n; (n = std::fread(buffer, 1, sizeof buffer, file)) > 0;)
        text.append(buffer, n);
    return text;
}

}  // namespace

ToolResult RunTool(const std::vector<std::string>& args, const std::string& input) {
    // Temporary files rather than pipes: the child never blocks on a full pipe.
    std::FILE* in = std::tmpfile();
    std::FILE* out = std::tmpfile();
    std::FILE* err = std::tmpfile();
    std::fwrite(input.data(), 1, input.size(), in);
    std::fflush(in);
    std::rewind(in);
    ToolResult result;
    const pid_t pid = fork();
    if (pid == 0) {
        dup2(fileno(in), STDIN_FILENO);
        dup2(fileno(out), STDOUT_FILENO);
        dup2(fileno(err), STDERR_FILENO);
        std::vector<char*> argv;
        argv.push_back(const_cast<char*>(TARSEL_TOOL_BINARY));
        for (const std::string& a : args)
            argv.push_back(const_cast<char*>(a.c_str()));
        argv.push_back(nullptr);
        execv(TARSEL_TOOL_BINARY, argv.data());
        _exit(127);
    }
    int status = 0;
    if (pid > 0 && waitpid(pid, &status, 0) == pid && WIFEXITED(status))
        result.exitStatus = WEXITSTATUS(status);
    result.out = ReadAll(out);
    result.err = ReadAll(err);
    std::fclose(in);
    std::fclose(out);
    std::fclose(err);
    return result;
}

}  // namespace toolsupport
