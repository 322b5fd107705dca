#include "Cli.h"
#include "TerminalProgress.h"

#include "carset/CarSet.h"
#include "carset/CarSetFile.h"
#include "carset/WorkingFolder.h"
#include "game/GameTransfer.h"
#include "game/GameVersion.h"
#include "game/StateFile.h"

#include <ctime>
#include <iostream>
#include <optional>

namespace tarvel::cli {
namespace {

constexpr std::string_view kDetectUsage = "game detect DIR";
constexpr std::string_view kStateUsage = "game statefile DIR";
constexpr std::string_view kImportUsage = "game import DIR SET.GP2 -o OUT.GP2 [--items LIST]";
constexpr std::string_view kExportUsage = "game export DIR SET.GP2 [--items LIST]";

// A working folder for the run's temporary files, removed at the end.
class RunWorkingFolder {
public:
    RunWorkingFolder() {
        std::time_t now = std::time(nullptr);
        for (int attempt = 0; attempt < 64; ++attempt) {
            path_ = workingFolderPath(now + attempt);
            std::error_code ec;
            if (std::filesystem::create_directories(path_, ec)) return;
        }
        path_.clear();
    }
    ~RunWorkingFolder() {
        if (path_.empty()) return;
        std::error_code ec;
        std::filesystem::remove_all(path_, ec);
    }
    const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
};

int runDetect(Context& context, const std::vector<std::string>& args) {
    auto parsed = parseArguments(args, 1);
    if (!parsed) return usageError(context, kDetectUsage);
    int version = DetectGameVersion(parsed->positional[0]);
    if (version < 0) return failed(context, Message{MessageId::UnsupportedVersion, {}});
    context.out << version << " " << kGameReleases[std::size_t(version)].tag << "\n";
    return kExitOk;
}

int runStateFile(Context& context, const std::vector<std::string>& args) {
    auto parsed = parseArguments(args, 1);
    if (!parsed) return usageError(context, kStateUsage);
    switch (stateFileState(parsed->positional[0])) {
    case StateFileState::Valid: context.out << "valid\n"; break;
    case StateFileState::Absent: context.out << "absent\n"; break;
    case StateFileState::Invalid: context.out << "invalid\n"; break;
    }
    return kExitOk;
}

// Loads the set and prepares the context; returns an exit code when it cannot.
std::optional<int> prepare(Context& context, const Arguments& parsed, std::optional<CarSetDocument>& document,
                           GameContext& game) {
    game.gameFolder = parsed.positional[0];
    game.options = context.config;
    game.version = DetectGameVersion(game.gameFolder);
    if (game.version < 0) return failed(context, Message{MessageId::UnsupportedVersion, {}});
    document = loadSet(context, parsed.positional[1]);
    if (!document) return kExitFailed;
    if (parsed.items) {
        auto selection = parseTransferItemList(*parsed.items);
        if (!selection) return failed(context, selection.error());
        document->state.transferItems = *selection;
    } else {
        selectAvailableTransferItems(document->state.transferItems);
    }
    return std::nullopt;
}

int runImport(Context& context, const std::vector<std::string>& args) {
    auto parsed = parseArguments(args, 2, kOptionOutputRequired | kOptionItems);
    if (!parsed) return usageError(context, kImportUsage);
    std::optional<CarSetDocument> document;
    GameContext game;
    if (auto code = prepare(context, *parsed, document, game)) return *code;
    RunWorkingFolder working;
    game.workingFolder = working.path();
    document->state.workingFolder = working.path();
    TerminalProgress progress(context, TerminalProgress::Lines);
    bool changed = false;
    Status imported = ImportFromGame(document->set, document->state.transferItems, game, progress, changed);
    markChanged(document->state, changed);
    if (!imported) return failed(context, imported.error());
    return saveSet(context, *document, *parsed->output);
}

int runExport(Context& context, const std::vector<std::string>& args) {
    auto parsed = parseArguments(args, 2, kOptionItems);
    if (!parsed) return usageError(context, kExportUsage);
    std::optional<CarSetDocument> document;
    GameContext game;
    if (auto code = prepare(context, *parsed, document, game)) return *code;
    RunWorkingFolder working;
    game.workingFolder = working.path();
    TerminalProgress progress(context, TerminalProgress::Lines);
    std::vector<Message> notices;
    Status exported = ExportToGame(document->set, document->state.transferItems, game, progress, &notices);
    if (!exported) {
        int code = failed(context, exported.error());
        for (const Message& m : notices) context.err << messageText(m) << "\n";
        return code;
    }
    return kExitOk;
}

}  // namespace

std::vector<Command> gameCommands() {
    return {
        {"game detect", "DIR", "prints the release of the game in DIR (index and tag)",
         "game detect DIR\n  Prints the release index and tag of DIR's GP2.EXE, e.g. \"0 UK\".\n", runDetect},
        {"game statefile", "DIR", "prints whether DIR's F1GSTATE.SAV is valid, absent or invalid",
         "game statefile DIR\n  Prints valid, absent or invalid for the game's state file.\n", runStateFile},
        {"game import", "DIR SET.GP2 -o OUT.GP2 [--items LIST]", "imports items from the game into a car set",
         "game import DIR SET.GP2 -o OUT.GP2 [--items LIST]\n"
         "  Loads SET.GP2, imports the items of LIST (e.g. 0,1-14,47; default every available item)\n"
         "  from the game in DIR and saves the result as OUT.GP2.\n",
         runImport},
        {"game export", "DIR SET.GP2 [--items LIST]", "exports a car set's items into the game",
         "game export DIR SET.GP2 [--items LIST]\n"
         "  Writes the items of LIST (default every available item) of SET.GP2 into the game in DIR.\n",
         runExport},
    };
}

}  // namespace tarvel::cli
