#pragma once
// Import from and export to the installed game: the numbered sequence of
// transfer items (team data, liveries, helmets, menu helmets, colours, wheels,
// other JAM files, ...), run behind a Progress that can abort between items.

#include "carset/CarSet.h"
#include "carset/CarSetDocument.h"
#include "common/Config.h"
#include "common/Progress.h"
#include "common/Result.h"
#include "game/GameFileAccess.h"

#include <array>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace tarvel {

// Everything a transfer needs to know about the installation and the editor.
struct GameContext {
    std::filesystem::path gameFolder;     // the folder that holds GP2.EXE
    int version = -1;                     // DetectGameVersion's result; -1 refuses every transfer
    Config options;                       // ClearJam, FixGreen, ...
    std::filesystem::path workingFolder;  // temporary files (JAM%.3d.BMP, MENU%.2d.BMP, ...)
    // Where an export backs up the files it is about to write; empty: no backup.
    std::filesystem::path backupsRoot;
};

constexpr int kTransferItemCount = kTransferItems;   // items 0-356

// One row of the item table: a run of items sharing label, owner and game file.
struct TransferItemInfo {
    int item = 0;
    std::string_view label;       // progress category, e.g. "Team Data"
    std::string gameFile;         // relative to the game folder, backslashes ("GP2.EXE", "GAMEJAMS\\...")
    std::string displayName;      // name in "File Not Found - %s." (e.g. "GP2.EXE", "CPITHI.PCX")
    bool available = false;       // false: this build cannot transfer the item yet
};

// The item's row; item must be 0-356.
TransferItemInfo transferItemInfo(int item);
bool transferItemAvailable(int item);

// Selects every available item (and only those).
void selectAvailableTransferItems(TransferSelection& selection);

// Parses "0,1-14,47" into a selection. Unknown or malformed entries give
// "Invalid value for %s." (arg "--items"); an item this build cannot transfer
// gives MessageId::ItemNotAvailable with the item number as argument.
Result<TransferSelection> parseTransferItemList(std::string_view list);

// Fills `set` from the game for every selected item of `items`.
// Failure: "File Not Found - GP2.EXE." for a folder without the game, the message of the first failing item, "Import from Game Aborted."
// when progress.aborted() turned true, "Unsupported Version." when the
// context's version is -1, "File Not Found - %s." before anything is read.
// What was read before a failure or an abort stays in the set; the import
// copies (car number layout, the settings records of items 52, 54 and 155-157)
// are taken over only after full success.
// `changed` tells whether the set may have changed (anything was selected
// and the game files were found), also when the import then failed.
// What a finished import or export did, for the user: the game files read or
// written and the backup an export kept.
struct TransferReport {
    int items = 0;                    // selected items that were carried
    std::vector<std::string> files;   // as the game names them, each once
    std::string backupId;             // "" when no backup was taken
};

Status ImportFromGame(CarSet& set, const TransferSelection& items, const GameContext& context, Progress& progress,
                      bool& changed, TransferReport* report = nullptr);

// Writes every selected item of `items` into the game. Failure: as
// for the import, with "Export to Game Aborted."; when an abort and an item
// failure both happened, the returned message is the abort and `notices`
// receives the item's message (to be shown after it). Nothing is written when
// a game file is missing. With a backups root, the files the export will write
// are backed up first ("Couldn't Back Up Game Files - %s." writes nothing).
Status ExportToGame(const CarSet& set, const TransferSelection& items, const GameContext& context, Progress& progress,
                    std::vector<Message>* notices = nullptr, TransferReport* report = nullptr);

// The game files an export of `items` writes, as the game names them, each once
// (an empty picture or menu helmet slot leaves the game's own file alone).
std::vector<std::string> exportTargetFiles(const CarSet& set, const TransferSelection& items,
                                           const GameContext& context);

// What an export would change, file by file, with nothing written: the export
// runs on copies of the files in a scratch folder that is removed afterwards.
struct FileChange {
    std::string file;             // as the game names it
    std::uint64_t bytesChanged;   // bytes that differ, counting a change of length
};
Result<std::vector<FileChange>> DryRunExport(const CarSet& set, const TransferSelection& items,
                                             const GameContext& context);

// In words for the user: what an export is about to change ("3 of the game's
// files will change: GP2.EXE, F1GSTATE.SAV and GAMEJAMS/X.JAM."), and what a
// finished import or export did ("Exported 221 items to /games/gp2/: 14 files
// written; backup 20261124-001500 kept.").
std::string describeExportChanges(const std::vector<FileChange>& changes);
std::string describeImport(const TransferReport& report, const std::filesystem::path& gameFolder);
std::string describeExport(const TransferReport& report, const std::filesystem::path& gameFolder);

}  // namespace tarvel
