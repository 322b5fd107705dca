#pragma once
// tarvel-cli: batch commands over the core library. Each subsystem adds its
// commands through one function returning its table.

#include "common/Config.h"
#include "common/Messages.h"

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
    std::istream* in = nullptr;        // standard input, for arguments given as "-"
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
// As above, with the stream that "-" arguments read from.
int run(const std::vector<std::string>& argv, std::istream& in, std::ostream& out, std::ostream& err);

// Shared by the command tables: a usage error (the command's usage line on
// standard error, exit status 2), and an operation's failure (its message text
// on standard error, exit status 1).
int usageError(Context& context, std::string_view commandAndUsage);
int failed(Context& context, const Message& message);

}  // namespace tarvel::cli
