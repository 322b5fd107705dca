#include "Cli.h"

#include "common/Config.h"
#include "common/IniFile.h"

#include <algorithm>
#include <iostream>
#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

namespace tarvel::cli {
namespace {

bool standardErrorIsTerminal() {
#ifdef _WIN32
    return _isatty(2) != 0;
#else
    return isatty(2) != 0;
#endif
}

std::vector<Command> allCommands() {
    std::vector<Command> all;
    for (auto group : {carSetCommands(), graphicsCommands(), gameCommands(), performanceCommands()})
        all.insert(all.end(), group.begin(), group.end());
    return all;
}

void printToolHelp(std::ostream& out, const std::vector<Command>& commands) {
    out << "Usage: tarvel-cli [--config FILE] [--set KEY=VALUE]... COMMAND ARGS...\n\n"
           "Edits Tarvel car sets and carries them into and out of an installed game.\n\n"
           "Options:\n"
           "  --config FILE    the configuration file (default: $TARVEL_CONFIG, else\n"
           "                   $XDG_CONFIG_HOME/tarvel32.ini or ~/.config/tarvel32.ini)\n"
           "  --set KEY=VALUE  overrides one key of section \"Config\" (or \"Locate GP2.EXE\") for this run\n"
           "  --help           this text; COMMAND --help describes one command\n\n"
           "Commands:\n";
    for (const Command& c : commands) {
        std::string line = "  " + std::string(c.name) + " " + std::string(c.usage);
        if (line.size() < 56) line.resize(56, ' ');
        else line += "\n" + std::string(56, ' ');
        out << line << c.summary << "\n";
    }
    out << "\nExit status: 0 done, 1 the operation failed, 2 usage error.\n";
}

// Splits a command line argument list into words matched against the command
// names, which have one or two words.
const Command* findCommand(const std::vector<Command>& commands, const std::vector<std::string>& words,
                           std::size_t at, std::size_t& used) {
    const Command* best = nullptr;
    for (const Command& c : commands) {
        std::string_view name = c.name;
        auto space = name.find(' ');
        if (space == std::string_view::npos) {
            if (at < words.size() && words[at] == name && !best) {
                best = &c;
                used = 1;
            }
        } else if (at + 1 < words.size() && words[at] == name.substr(0, space) &&
                   words[at + 1] == name.substr(space + 1)) {
            best = &c;
            used = 2;
            return best;
        }
    }
    return best;
}

bool isGroupName(const std::vector<Command>& commands, std::string_view word) {
    return std::any_of(commands.begin(), commands.end(), [&](const Command& c) {
        auto space = c.name.find(' ');
        return space != std::string_view::npos && c.name.substr(0, space) == word;
    });
}

}  // namespace

void printUsage(std::ostream& out, const Command& command) {
    out << "Usage: tarvel-cli " << command.name << " " << command.usage << "\n";
}

int usageError(Context& context) {
    if (context.command) printUsage(context.err, *context.command);
    return kExitUsage;
}

int failed(Context& context, const Message& message) {
    context.err << messageText(message) << "\n";
    if (!message.detail.empty()) context.err << message.detail << "\n";
    return kExitFailed;
}

int run(const std::vector<std::string>& argv, std::ostream& out, std::ostream& err) {
    return run(argv, std::cin, out, err);
}

int run(const std::vector<std::string>& argv, std::istream& in, std::ostream& out, std::ostream& err) {
    const std::vector<Command> commands = allCommands();
    std::filesystem::path configPath = defaultConfigPath();
    std::vector<std::pair<std::string, std::string>> overrides;

    std::size_t i = 0;
    for (; i < argv.size(); ++i) {
        const std::string& a = argv[i];
        if (a == "--help" || a == "-h") {
            printToolHelp(out, commands);
            return kExitOk;
        } else if (a == "--config") {
            if (++i >= argv.size()) {
                err << "tarvel-cli: --config needs a file name\n";
                return kExitUsage;
            }
            configPath = argv[i];
        } else if (a == "--set") {
            if (++i >= argv.size() || argv[i].find('=') == std::string::npos) {
                err << "tarvel-cli: --set needs KEY=VALUE\n";
                return kExitUsage;
            }
            auto eq = argv[i].find('=');
            overrides.emplace_back(argv[i].substr(0, eq), argv[i].substr(eq + 1));
        } else if (a.size() > 1 && a[0] == '-' && a != "-") {
            err << "tarvel-cli: unknown option " << a << "\n";
            return kExitUsage;
        } else {
            break;
        }
    }
    if (i >= argv.size()) {
        printToolHelp(err, commands);
        return kExitUsage;
    }

    std::size_t used = 0;
    const Command* command = findCommand(commands, argv, i, used);
    if (!command) {
        if (isGroupName(commands, argv[i])) {
            err << "tarvel-cli: " << argv[i] << " needs a sub-command:\n";
            for (const Command& c : commands)
                if (c.name.starts_with(argv[i] + " "))
                    err << "  " << c.name << " " << c.usage << "\n";
        } else {
            err << "tarvel-cli: unknown command " << argv[i] << " (see tarvel-cli --help)\n";
        }
        return kExitUsage;
    }
    std::vector<std::string> args(argv.begin() + std::ptrdiff_t(i + used), argv.end());
    if (std::find_if(args.begin(), args.end(), [](const std::string& a) { return a == "--help" || a == "-h"; }) !=
        args.end()) {
        printUsage(out, *command);
        out << "\n" << command->help << "\n";
        return kExitOk;
    }

    IniFile ini(configPath);
    for (const auto& [key, value] : overrides) ini.setOverride(key, value);
    Context context{readConfig(ini), configPath, out, err, &err == &std::cerr && standardErrorIsTerminal(), &in, command};
    return command->run(context, args);
}

std::optional<Arguments> parseArguments(const std::vector<std::string>& args, std::size_t positionalCount,
                                        unsigned options) {
    Arguments parsed;
    auto take = [&](std::optional<std::string>& slot, bool accepted, std::size_t& i) {
        if (!accepted || slot || ++i >= args.size()) return false;
        slot = args[i];
        return true;
    };
    for (std::size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        bool ok = true;
        if (a == "-o" || a == "--output")
            ok = take(parsed.output, (options & (kOptionOutput | kOptionOutputRequired)) != 0, i);
        else if (a == "--game")
            ok = take(parsed.game, (options & kOptionGame) != 0, i);
        else if (a == "--items")
            ok = take(parsed.items, (options & kOptionItems) != 0, i);
        else if (a == "--dry-run")
            ok = (options & kOptionDryRun) != 0 && !std::exchange(parsed.dryRun, true);
        else if (a == "--remap")
            ok = (options & kOptionRemap) != 0 && !std::exchange(parsed.remap, true);
        else if (a == "--dither")
            ok = (options & kOptionRemap) != 0 && !std::exchange(parsed.dither, true);
        else if (a.size() > 1 && a[0] == '-')
            ok = false;
        else
            parsed.positional.push_back(a);
        if (!ok) return std::nullopt;
    }
    if (parsed.positional.size() != positionalCount) return std::nullopt;
    if ((options & kOptionOutputRequired) && !parsed.output) return std::nullopt;
    if ((options & kOptionGame) && !parsed.game) return std::nullopt;
    if (parsed.dither && !parsed.remap) return std::nullopt;
    return parsed;
}

CarSetFileOptions fileOptions(const Context& context) {
    CarSetFileOptions options;
    options.verifyChecksum = context.config.checkSum;
    return options;
}

std::optional<CarSetDocument> loadSet(Context& context, const std::filesystem::path& path) {
    CarSetDocument document;
    std::vector<Message> notices;
    Status opened = openDocument(document, path, fileOptions(context), &notices);
    for (const Message& m : notices) context.err << messageText(m) << "\n";
    if (!opened) {
        failed(context, opened.error());
        return std::nullopt;
    }
    return document;
}

int editSet(Context& context, const std::filesystem::path& in, const std::filesystem::path& out,
            const std::function<Status(CarSetDocument&)>& edit) {
    auto document = loadSet(context, in);
    if (!document) return kExitFailed;
    Status edited = edit(*document);
    if (!edited) return failed(context, edited.error());
    markChanged(document->state, true);
    return saveSet(context, *document, out);
}

int saveSet(Context& context, CarSetDocument& document, const std::filesystem::path& path) {
    Status saved = saveDocumentAs(document, path, fileOptions(context));
    return saved ? kExitOk : failed(context, saved.error());
}

}  // namespace tarvel::cli
