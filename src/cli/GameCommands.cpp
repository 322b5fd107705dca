#include "Cli.h"
#include "TerminalProgress.h"

#include "carset/CarSet.h"
#include "carset/CarSetFile.h"
#include "carset/WorkingFolder.h"
#include "common/FileIO.h"
#include "game/GameBackup.h"
#include "game/GameTransfer.h"
#include "game/GameVersion.h"
#include "game/StateFile.h"

#include <ctime>
#include <iostream>
#include <optional>

namespace tarvel::cli {
namespace {


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
    if (!parsed) return usageError(context);
    int version = DetectGameVersion(parsed->positional[0]);
    if (version < 0) {
        // "Unsupported Version." whatever the cause; the detail says which.
        const auto problem = gameFolderProblem(parsed->positional[0]);
        return failed(context, Message{MessageId::UnsupportedVersion, {}, problem ? problem->detail : std::string()});
    }
    context.out << version << " " << kGameReleases[std::size_t(version)].tag << "\n";
    return kExitOk;
}

int runStateFile(Context& context, const std::vector<std::string>& args) {
    auto parsed = parseArguments(args, 1);
    if (!parsed) return usageError(context);
    switch (stateFileState(parsed->positional[0])) {
    case StateFileState::Valid: context.out << "valid\n"; break;
    case StateFileState::Absent: context.out << "absent\n"; break;
    case StateFileState::Invalid: context.out << "invalid\n"; break;
    }
    return kExitOk;
}

// What an import or export works with: the set, the game and a working folder
// for the run's temporary files.
struct TransferRun {
    std::optional<CarSetDocument> document;
    GameContext game;
    RunWorkingFolder working;
};

// Loads the set and the selection and finds the game; an exit code when it cannot.
std::optional<int> prepare(Context& context, const Arguments& parsed, TransferRun& run) {
    GameContext& game = run.game;
    game.gameFolder = parsed.positional[0];
    game.options = context.config;
    // A folder without the game says so before anything else is looked at.
    if (auto problem = gameFolderProblem(game.gameFolder)) return failed(context, *problem);
    game.version = DetectGameVersion(game.gameFolder);
    run.document = loadSet(context, parsed.positional[1]);
    if (!run.document) return kExitFailed;
    DocumentState& state = run.document->state;
    if (parsed.items) {
        auto selection = parseTransferItemList(*parsed.items);
        if (!selection) return failed(context, selection.error());
        state.transferItems = *selection;
    } else {
        selectAvailableTransferItems(state.transferItems);
    }
    game.workingFolder = run.working.path();
    state.workingFolder = run.working.path();
    return std::nullopt;
}

int runImport(Context& context, const std::vector<std::string>& args) {
    auto parsed = parseArguments(args, 2, kOptionOutputRequired | kOptionItems);
    if (!parsed) return usageError(context);
    TransferRun run;
    if (auto code = prepare(context, *parsed, run)) return *code;
    CarSetDocument& document = *run.document;
    TerminalProgress progress(context, TerminalProgress::Lines);
    bool changed = false;
    Status imported = ImportFromGame(document.set, document.state.transferItems, run.game, progress, changed);
    markChanged(document.state, changed);
    if (!imported) return failed(context, imported.error());
    return saveSet(context, document, *parsed->output);
}

int runExport(Context& context, const std::vector<std::string>& args) {
    auto parsed = parseArguments(args, 2, kOptionItems | kOptionDryRun);
    if (!parsed) return usageError(context);
    TransferRun run;
    if (auto code = prepare(context, *parsed, run)) return *code;
    const CarSetDocument& document = *run.document;
    if (parsed->dryRun) {
        auto changes = DryRunExport(document.set, document.state.transferItems, run.game);
        if (!changes) return failed(context, changes.error());
        for (const FileChange& change : *changes) context.out << change.file << "\t" << change.bytesChanged << "\n";
        return kExitOk;
    }
    run.game.backupsRoot = defaultBackupsRoot();
    TerminalProgress progress(context, TerminalProgress::Lines);
    std::vector<Message> notices;
    Status exported = ExportToGame(document.set, document.state.transferItems, run.game, progress, &notices);
    if (!exported) {
        int code = failed(context, exported.error());
        for (const Message& m : notices) context.err << messageText(m) << "\n";
        return code;
    }
    return kExitOk;
}

int runBackups(Context& context, const std::vector<std::string>& args) {
    auto parsed = parseArguments(args, 1);
    if (!parsed) return usageError(context);
    for (const GameBackup& backup : listGameBackups(defaultBackupsRoot(), parsed->positional[0])) {
        context.out << backup.id;
        if (backup.complete)
            context.out << "\t" << backup.files.size() << " files\t" << backup.totalSize() << " bytes\n";
        else
            context.out << "\tincomplete\n";
    }
    return kExitOk;
}

int runRestore(Context& context, const std::vector<std::string>& args) {
    auto parsed = parseArguments(args, 1);
    if (!parsed) parsed = parseArguments(args, 2);
    if (!parsed) return usageError(context);
    const std::string id = parsed->positional.size() > 1 ? parsed->positional[1] : std::string();
    auto restored = RestoreGameFiles(defaultBackupsRoot(), parsed->positional[0], id);
    if (!restored) return failed(context, restored.error());
    context.out << "restored " << restored->id << ": " << restored->files.size() << " files\n";
    return kExitOk;
}

}  // namespace

std::vector<Command> gameCommands() {
    return {
        {"game detect", "DIR", "prints the release of the game in DIR (index and tag)",
         "Prints the release index and tag of DIR's GP2.EXE, e.g. \"0 UK\".", runDetect},
        {"game statefile", "DIR", "prints whether DIR's F1GSTATE.SAV is valid, absent or invalid",
         "Prints valid, absent or invalid for the game's state file.", runStateFile},
        {"game import", "DIR SET.GP2 -o OUT.GP2 [--items LIST]", "imports items from the game into a car set",
         "Loads SET.GP2, imports the items of LIST (e.g. 0,1-14,47; default every\n"
         "available item) from the game in DIR and saves the result as OUT.GP2.",
         runImport},
        {"game export", "DIR SET.GP2 [--items LIST] [--dry-run]", "exports a car set's items into the game",
         "Writes the items of LIST (default every available item) of SET.GP2 into the\n"
         "game in DIR, after backing up the files it will write (see game backups).\n"
         "With --dry-run nothing is written: each file the export would change is\n"
         "printed with the number of its bytes that would change, tab-separated.",
         runExport},
        {"game backups", "DIR", "lists the backups taken before each export into DIR",
         "Prints the backups of the game in DIR, newest first: the backup's ID, its\n"
         "number of files and their size, tab-separated (or \"incomplete\").",
         runBackups},
        {"game restore", "DIR [ID]", "puts the files of a backup back into the game",
         "Puts back the files of backup ID (default the newest) into the game in DIR,\n"
         "after checking every copy against the backup's manifest; an incomplete or\n"
         "altered backup is refused and nothing is written.",
         runRestore},
    };
}

}  // namespace tarvel::cli
