// The subcommands of the data-file utility. Each takes its arguments (after the subcommand's
// name) and returns the exit status: 0 done, 1 a finding (a file that cannot be read, a bad row,
// a login that may not be removed), 2 a usage error.
#pragma once

#include <string>
#include <vector>

namespace tool {

enum Exit : int { kExitOk = 0, kExitFinding = 1, kExitUsage = 2 };

using Args = std::vector<std::string>;

int StatCommand(const Args& args);
int DumpCommand(const Args& args);
int LoadCommand(const Args& args);
int LayoutsCommand(const Args& args);
int UsersCommand(const Args& args);
int LogoutCommand(const Args& args);
int CopyCommand(const Args& args);
int CheckCommand(const Args& args);

struct Command {
    const char* name;
    const char* synopsis;
    const char* help;
    int (*run)(const Args& args);
};

// Every subcommand, in the order the overall help lists them.
const std::vector<Command>& Commands();

// "tarsel: " + text + line feed on standard error.
void Complain(const std::string& text);

}  // namespace tool
