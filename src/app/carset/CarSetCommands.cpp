// The car set's own commands: new, open, save, the Autofile, team and
// performance files, the information text and Exit.

#include "carset/FileFlow.h"
#include "shell/Asker.h"
#include "shell/Command.h"
#include "shell/CommandIds.h"
#include "shell/Document.h"
#include "shell/MainWindow.h"
#include "shell/Session.h"
#include "shell/Workbench.h"

#include "carset/CarSetFile.h"
#include "carset/DocumentTitle.h"
#include "common/Config.h"
#include "common/RecentFiles.h"

#include <QDir>

#include <filesystem>
#include <system_error>

namespace tarvel {
namespace {

void newCarSet(Workbench& bench) {
    if (!maybeSave(bench)) return;
    WaitCursor wait;
    bench.document.reset();
}

void launchEditor(Workbench& bench, const QStringList& arguments) {
    if (!bench.window.startProcess(bench.window.programPath(), arguments, QString()))
        showMessage(bench, Message{MessageId::FailedToLaunchEditor, {}});
}

void openFile(Workbench& bench) {
    if (!maybeSave(bench)) return;
    const QString path = bench.asker.openFile(&bench.window, "Open Car Set", kCarSetFilter);
    if (path.isEmpty()) return;
    bool loaded = false;
    {
        WaitCursor wait;
        loaded = loadCarSetFile(bench, path);
    }
    if (loaded) showInformationIfWanted(bench);
}

void openInNewWindow(Workbench& bench) {
    const QString path = bench.asker.openFile(&bench.window, "Open Car Set", kCarSetFilter);
    if (path.isEmpty()) return;
    std::vector<Message> notices;
    const auto version = checkCarSetFile(toPath(path), bench.document.fileOptions(), &notices);
    for (const Message& notice : notices) showMessage(bench, notice);
    if (!version) {
        showMessage(bench, version.error());
        return;
    }
    launchEditor(bench, {path});
}

// The configuration file could not be written: say so, naming it.
void reportConfigWrite(Workbench& bench, bool written) {
    if (!written) showMessage(bench, Message{MessageId::CouldntWriteFile, bench.session.configPath.string()});
}

void openAutofile(Workbench& bench) {
    if (!maybeSave(bench)) return;
    bool loaded = false;
    {
        WaitCursor wait;
        loaded = loadCarSetFile(bench, bench.document.autofile());
    }
    if (!loaded) {
        bench.document.setAutofileLive(false);
        return;
    }
    showInformationIfWanted(bench);
}

// Opens a recent car set; one that is gone is offered for removal from the list.
void openRecent(Workbench& bench, const std::string& path) {
    std::error_code error;
    if (!std::filesystem::exists(toPath(QString::fromStdString(path)), error)) {
        const Message question{MessageId::RecentFileMissing, path};
        if (bench.asker.message(&bench.window, question, Buttons::YesNo) == Answer::Yes)
            bench.session.forgetRecentFile(path);
        return;
    }
    if (!maybeSave(bench)) return;
    bool loaded = false;
    {
        WaitCursor wait;
        loaded = loadCarSetFile(bench, QString::fromStdString(path));
    }
    if (loaded) showInformationIfWanted(bench);
}

std::vector<MenuEntry> recentEntries(Workbench& bench) {
    std::vector<MenuEntry> entries;
    const std::string home = QDir::homePath().toStdString();
    int number = 0;
    for (const std::string& path : bench.session.recentFiles) {
        // "&1 ~/sets/SEASON97.GP2"; an ampersand of the path is doubled so it shows.
        QString shown = QString::fromStdString(shortenedPath(path, home)).replace("&", "&&");
        ++number;
        const QString text = (number < 10 ? "&" + QString::number(number) : QString("1&0")) + " " + shown;
        entries.push_back({text, [&bench, path] { openRecent(bench, path); }});
    }
    return entries;
}

bool haveAutofile(const Workbench& bench) {
    return bench.document.autofileLive() && !bench.session.config.autoFile.empty();
}

}  // namespace

void addCarSetCommands(Workbench& bench) {
    namespace c = command;
    CommandRegistry& r = bench.commands;
    Workbench* b = &bench;
    auto hasFile = [b] { return b->document.hasFile(); };

    r.add({.id = c::NewCarSet, .order = 100, .menu = "&File|&New", .text = "&Car set", .run = [b] { newCarSet(*b); },
           .icon = QStyle::SP_FileIcon, .key = QKeySequence::New});
    r.add({.id = c::NewEditorWindow, .order = 101, .menu = "&File|&New", .text = "&Editor window",
           .run = [b] { launchEditor(*b, {}); }});
    r.add({.id = c::Open, .order = 102, .menu = "&File|&Open", .text = "&In this window", .run = [b] { openFile(*b); },
           .icon = QStyle::SP_DialogOpenButton, .key = QKeySequence::Open});
    r.add({.id = c::OpenInNewWindow, .order = 103, .menu = "&File|&Open", .text = "In &new window",
           .run = [b] { openInNewWindow(*b); }});
    r.add({.id = c::Save, .order = 104, .menu = "&File", .text = "&Save", .run = [b] { saveCarSetFile(*b); },
           .enabled = hasFile, .icon = QStyle::SP_DialogSaveButton, .key = QKeySequence::Save});
    r.add({.id = c::SaveAs, .order = 105, .menu = "&File", .text = "Save &as...",
           .run = [b] { saveCarSetFileAs(*b); }, .key = QKeySequence::SaveAs});

    r.add({.id = c::RecentCarSets, .order = 106, .menu = "&File", .text = "&Recent Car Sets",
           .enabled = [b] { return !b->session.recentFiles.empty(); }, .entries = [b] { return recentEntries(*b); }});

    r.add({.id = c::Undo, .order = 196, .menu = "&Edit", .text = "&Undo", .run = [b] { b->document.undo(); },
           .enabled = [b] { return b->document.history().canUndo(); },
           .label = [b] { return b->document.history().canUndo() ? "&Undo " + b->document.undoName() : "&Undo"; },
           .icon = QStyle::SP_ArrowBack, .key = QKeySequence::Undo});
    r.add({.id = c::Redo, .order = 197, .menu = "&Edit", .text = "&Redo", .run = [b] { b->document.redo(); },
           .enabled = [b] { return b->document.history().canRedo(); },
           .label = [b] { return b->document.history().canRedo() ? "&Redo " + b->document.redoName() : "&Redo"; },
           .icon = QStyle::SP_ArrowForward, .key = QKeySequence::Redo, .shortcut = QKeySequence(Qt::CTRL | Qt::Key_Y)});

    r.add({.id = c::AutofileSetAs, .order = 110, .menu = "&File|A&utofile", .text = "&Set as...",
           .separatorBefore = true, .run = [b] { reportConfigWrite(*b, b->document.setOpenFileAsAutofile()); },
           .enabled = hasFile});
    r.add({.id = c::AutofileRemove, .order = 111, .menu = "&File|A&utofile", .text = "&Remove",
           .run = [b] { reportConfigWrite(*b, b->document.removeAutofile()); },
           .enabled = [b] { return haveAutofile(*b); }});
    r.add({.id = c::AutofileOpen, .order = 112, .menu = "&File|A&utofile", .text = "None...",
           .run = [b] { openAutofile(*b); }, .enabled = [b] { return haveAutofile(*b); },
           .label = [b] {
               return haveAutofile(*b) ? QString::fromStdString(fileTitle(toPath(b->document.autofile())))
                                       : QString("None...");
           }});

    r.add({.id = c::TeamLoad, .order = 150, .menu = "&File|&Team", .text = "&Load"});
    r.add({.id = c::TeamSaveAs, .order = 151, .menu = "&File|&Team", .text = "&Save as..."});
    r.add({.id = c::PerformanceLoad, .order = 152, .menu = "&File|&Performance", .text = "&Load"});
    r.add({.id = c::PerformanceSaveAs, .order = 153, .menu = "&File|&Performance", .text = "&Save as..."});
    r.add({.id = c::Exit, .order = 190, .menu = "&File", .text = "E&xit", .separatorBefore = true,
           .run = [b] { b->window.close(); }, .key = QKeySequence::Quit});

    r.add({.id = c::EditInformation, .order = 501, .menu = "&Window", .text = "&Edit car set information"});
    r.add({.id = c::AboutCarSet, .order = 601, .menu = "&Help", .text = "About &car set...", .separatorBefore = true,
           .run = [b] { b->asker.showInformation(&b->window, fromModel(b->document.set().information)); },
           .enabled = [b] { return b->document.hasFile() && b->document.set().hasInformation; }});
}

}  // namespace tarvel
