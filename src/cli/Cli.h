#pragma once
// tarvel-cli: batch commands over the core library. Each subsystem adds its
// commands through one function returning its table.

#include "common/Config.h"

#include <filesystem>
#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

namespace tarvel::cli {

enum ExitCode { kExitOk = 0, kExitFailed = 1, kExitUsage = 2 };

struct Context {
    Config config;
    std::filesystem::path configPath;
    std::ostream& out;
    std::ostream& err;
    bool progressToTerminal = false;   // standard error is a terminal
};

struct Command {
    std::string_view name;      // "new", or "livery export" for a command with a sub-command
    std::string_view usage;     // arguments, e.g. "OUT.GP2"
    std::string_view summary;   // one line for the tool's --help
    std::string_view help;      // the command's own --help text
    int (*run)(Context& context, const std::vector<std::string>& args);
};

std::vector<Command> carSetCommands();
std::vector<Command> graphicsCommands();
std::vector<Command> gameCommands();

// The whole tool; main() calls it with the real streams, the tests with string streams.
int run(const std::vector<std::string>& argv, std::ostream& out, std::ostream& err);

}  // namespace tarvel::cli
