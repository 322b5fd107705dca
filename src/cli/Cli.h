#pragma once
// tarvel-cli: batch commands over the core library. Each subsystem adds its
// commands through one function returning its table.

#include "carset/CarSetDocument.h"
#include "carset/CarSetFile.h"
#include "common/Config.h"
#include "common/Messages.h"

#include <filesystem>
#include <functional>
#include <optional>
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
    const struct Command* command = nullptr;   // the command being run
};

// One command. Every text follows one style: `usage` the arguments as the
// usage line shows them, `summary` a lower-case phrase in the third person for
// the tool's --help ("writes the default car set"), `help` whole sentences for
// COMMAND --help, lines within 80 columns, no usage line and no final newline.
struct Command {
    std::string_view name;      // "new", or "livery export" for a command with a sub-command
    std::string_view usage;     // arguments, e.g. "OUT.GP2"
    std::string_view summary;
    std::string_view help;
    int (*run)(Context& context, const std::vector<std::string>& args);
};

std::vector<Command> carSetCommands();
std::vector<Command> graphicsCommands();
std::vector<Command> gameCommands();
std::vector<Command> performanceCommands();

// The whole tool; main() calls it with the real streams, the tests with string streams.
int run(const std::vector<std::string>& argv, std::ostream& out, std::ostream& err);
// As above, with the stream that "-" arguments read from.
int run(const std::vector<std::string>& argv, std::istream& in, std::ostream& out, std::ostream& err);

// Shared by the command tables: a usage error (the running command's usage
// line on standard error, exit status 2), and an operation's failure (its
// message text on standard error, exit status 1).
int usageError(Context& context);
int failed(Context& context, const Message& message);

// A command's arguments: positional ones and the values of the options it takes.
struct Arguments {
    std::vector<std::string> positional;
    std::optional<std::string> output;   // -o / --output
    std::optional<std::string> game;     // --game
    std::optional<std::string> items;    // --items
    bool dryRun = false;                 // --dry-run
    bool remap = false;                  // --remap
    bool dither = false;                 // --dither
};
enum ArgumentOption : unsigned {
    kOptionOutput = 1,           // -o may be given
    kOptionOutputRequired = 2,   // -o must be given
    kOptionGame = 4,             // --game must be given
    kOptionItems = 8,            // --items may be given
    kOptionDryRun = 16,          // --dry-run may be given
    kOptionRemap = 32,           // --remap may be given, and --dither with it
};
// nullopt on an option the command does not take, a repeated or valueless
// option, a missing required one, --dither without --remap, or a wrong number
// of positional arguments.
std::optional<Arguments> parseArguments(const std::vector<std::string>& args, std::size_t positionalCount,
                                        unsigned options = 0);

CarSetFileOptions fileOptions(const Context& context);
// Opens a car set file as a document, printing any notice the load leaves
// and the failure message.
std::optional<CarSetDocument> loadSet(Context& context, const std::filesystem::path& path);
// Saves the document as `path`; the exit status, printing the failure message.
int saveSet(Context& context, CarSetDocument& document, const std::filesystem::path& path);
// Loads `in`, applies `edit` (whose success means the set changed) and saves
// the result as `out`; the exit status, printing any failure message.
int editSet(Context& context, const std::filesystem::path& in, const std::filesystem::path& out,
            const std::function<Status(CarSetDocument&)>& edit);

}  // namespace tarvel::cli
