// tarsel: looks into and repairs the library's data files from the command line.
#include "REMessageHandler.h"
#include "tools/Commands.h"

#include <cstdio>
#include <cstring>
#include <string>

namespace {

void PrintOverview(std::FILE* out) {
    std::fprintf(out, "usage: tarsel COMMAND [ARGS]   (tarsel COMMAND --help for one command)\n\n");
    for (const tool::Command& c : tool::Commands())
        std::fprintf(out, "  %s\n", c.synopsis);
    std::fprintf(out, "\nExit status: 0 done, 1 a finding (the file or its contents stopped the command), "
                      "2 a usage error.\n");
}

// The library's failure reports become lines on standard error; its message boxes would stop a
// command-line program.
void ReportToStderr(const char* caption, const char* text, unsigned int) {
    std::fprintf(stderr, "tarsel: %s: %s\n", caption, text);
}

}  // namespace

int main(int argc, char** argv) {
    RESetMessageHandler(&ReportToStderr);
    if (argc < 2) {
        PrintOverview(stderr);
        return tool::kExitUsage;
    }
    const std::string name = argv[1];
    if (name == "--help" || name == "-h" || name == "help") {
        PrintOverview(stdout);
        return tool::kExitOk;
    }
    for (const tool::Command& c : tool::Commands()) {
        if (name != c.name)
            continue;
        tool::Args args(argv + 2, argv + argc);
        for (const std::string& a : args) {
            if (a == "--help" || a == "-h") {
                std::printf("usage: tarsel %s\n\n%s", c.synopsis, c.help);
                return tool::kExitOk;
            }
        }
        return c.run(args);
    }
    tool::Complain("unknown command \"" + name + "\"");
    PrintOverview(stderr);
    return tool::kExitUsage;
}
