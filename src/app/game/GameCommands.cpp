// The game: import and export of the whole sequence, starting the game, and
// the entries of the editors whose data live in the game's files.

#include "game/ProgressWindow.h"
#include "game/RestoreDialog.h"
#include "shell/Asker.h"
#include "shell/Command.h"
#include "shell/CommandIds.h"
#include "shell/Document.h"
#include "shell/MainWindow.h"
#include "shell/Session.h"
#include "shell/Workbench.h"

#include "common/FileIO.h"
#include "game/GameLocation.h"
#include "game/GameTransfer.h"

#include <QProcess>

#include <algorithm>
#include <optional>
#include <system_error>

namespace tarvel {
namespace {

GameContext gameContext(const Session& session) {
    GameContext context;
    context.gameFolder = session.config.gameFolder;
    context.version = session.gameVersion;
    context.options = session.config;
    context.workingFolder = session.workingFolder;
    return context;
}

void importFromGame(Workbench& bench) {
    Session& session = bench.session;
    const GameContext context = gameContext(session);
    session.detectStateFile();
    Status status;
    TransferReport report;
    // The import marks the set dirty once it has read something, even when it
    // then fails; a refused import (a missing game file) leaves it as it was.
    bench.document.edit(StepName{"Import from game"}, Document::Everything, [&](CarSet& set) {
        bool changed = false;
        // The modal progress window keeps every other command away meanwhile.
        ProgressWindow progress("Importing...", &bench.window);
        progress.show();
        status = ImportFromGame(set, bench.document.transferItems(), context, progress, changed, &report);
        return changed;
    });
    if (showStatus(bench, status)) showReport(bench, describeImport(report, context.gameFolder));
}

// One question before the game is written, naming the folder and how many of
// its files will change (from a dry run); "Don't ask again" turns it off.
bool exportConfirmed(Workbench& bench, const GameContext& context) {
    Session& session = bench.session;
    if (!session.config.confirmExport) return true;
    std::optional<Result<std::vector<FileChange>>> changes;
    {
        WaitCursor wait;
        changes.emplace(DryRunExport(bench.document.set(), bench.document.transferItems(), context));
    }
    if (!*changes) {
        showMessage(bench, changes->error());
        return false;
    }
    const Message question{MessageId::ExportQuestion, context.gameFolder.string(), describeExportChanges(**changes)};
    bool dontAskAgain = false;
    if (bench.asker.confirm(&bench.window, question, dontAskAgain) != Answer::Yes) return false;
    if (dontAskAgain) {
        session.config.confirmExport = false;
        if (!session.writeConfiguration())
            showMessage(bench, Message{MessageId::CouldntWriteFile, session.configPath.string()});
    }
    return true;
}

void exportToGame(Workbench& bench) {
    Session& session = bench.session;
    GameContext context = gameContext(session);
    context.backupsRoot = session.backupsRoot;
    session.detectStateFile();
    if (!exportConfirmed(bench, context)) return;
    std::vector<Message> notices;
    TransferReport report;
    Status status;
    {
        ProgressWindow progress("Exporting...", &bench.window);
        progress.show();
        status = ExportToGame(bench.document.set(), bench.document.transferItems(), context, progress, &notices, &report);
    }
    if (showStatus(bench, status)) showReport(bench, describeExport(report, context.gameFolder));
    for (const Message& notice : notices) showMessage(bench, notice);
}

void launchGame(Workbench& bench) {
    const Session& session = bench.session;
    const std::filesystem::path folder(session.config.gameFolder);
    const std::filesystem::path exe = gameFilePath(folder, "GP2.EXE");
    const QString line = QString::fromStdString(gameLaunchCommandLine(session.config.launchCommand, exe));
    QStringList parts = QProcess::splitCommand(line);
    std::error_code ec;
    if (!std::filesystem::is_directory(folder, ec)) {
        showMessage(bench, Message{MessageId::FailedToStartGp2, {}, "No folder " + folder.string()});
        return;
    }
    if (parts.isEmpty()) {
        showMessage(bench, Message{MessageId::FailedToStartGp2, {}, "The Launch Command is empty."});
        return;
    }
    const QString program = parts.takeFirst();
    if (bench.window.startProcess(program, parts, QString::fromStdString(folder.string()))) return;
    std::string reason = "Couldn't start " + program.toStdString() + ".";
#ifndef _WIN32
    // GP2.EXE is a DOS program: elsewhere than on Windows it runs in an emulator.
    if (session.config.launchCommand.empty())
        reason += " GP2.EXE is a DOS program: set the Launch Command in Window > Program configuration"
                  " to an emulator, for example dosbox \"%s\" (%s is GP2.EXE).";
#endif
    showMessage(bench, Message{MessageId::FailedToStartGp2, {}, reason});
}

}  // namespace

void addGameCommands(Workbench& bench) {
    namespace c = command;
    CommandRegistry& r = bench.commands;
    Workbench* b = &bench;
    auto gameKnown = [b] { return b->session.gameKnown(); };

    r.add({.id = c::ImportFromGame, .order = 400, .menu = "&Options", .text = "&Import from game",
           .run = [b] { importFromGame(*b); }, .enabled = gameKnown, .icon = QStyle::SP_ArrowDown});
    r.add({.id = c::ExportToGame, .order = 401, .menu = "&Options", .text = "&Export to game",
           .run = [b] { exportToGame(*b); }, .enabled = gameKnown, .icon = QStyle::SP_ArrowUp});
    r.add({.id = c::RestoreGameFiles, .order = 402, .menu = "&Options", .text = "&Restore game files...",
           .run = [b] {
               RestoreDialog dialog(*b, &b->window);
               dialog.exec();
           },
           .enabled = [b] { return !b->session.config.gameFolder.empty(); }});
    r.add({.id = c::LaunchGame, .order = 403, .menu = "&Options", .text = "&Launch Grandprix2",
           .run = [b] { launchGame(*b); }, .enabled = gameKnown, .icon = QStyle::SP_MediaPlay});
    r.add({.id = c::CreateDosPatch, .order = 404, .menu = "&Options", .text = "Create &DOS patch",
           .enabled = gameKnown});
}

}  // namespace tarvel
