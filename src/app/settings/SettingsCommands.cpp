// The game-wide settings the car set carries: game settings, laps, points,
// global car settings and onboard cameras, each edited in its own dialog.

#include "settings/SettingsDialogs.h"
#include "shell/Command.h"
#include "shell/CommandIds.h"
#include "shell/MainWindow.h"
#include "shell/Workbench.h"

namespace tarvel {
namespace {

template <class Dialog, class... Args>
void runDialog(Workbench& bench, Args... args) {
    Dialog dialog(bench, args..., &bench.window);
    dialog.exec();
}

}  // namespace

void addSettingsCommands(Workbench& bench) {
    namespace c = command;
    CommandRegistry& r = bench.commands;
    Workbench* b = &bench;
    r.add({.id = c::OnboardCameras, .order = 211, .menu = "&Edit", .text = "&Onboard Cameras",
           .run = [b] { runDialog<CameraDialog>(*b); }});
    r.add({.id = c::ChampionshipPoints, .order = 212, .menu = "&Edit", .text = "Championship &points",
           .run = [b] { runDialog<TableDialog>(*b, TableDialog::Points); }});
    r.add({.id = c::NumberOfLaps, .order = 213, .menu = "&Edit", .text = "Number of &laps",
           .run = [b] { runDialog<TableDialog>(*b, TableDialog::Laps); }});
    r.add({.id = c::GameSettings, .order = 214, .menu = "&Edit", .text = "&Game settings",
           .run = [b] { runDialog<GameSettingsDialog>(*b); }});
    r.add({.id = c::CarSettings, .order = 305, .menu = "&Performance", .text = "Car &settings",
           .run = [b] { runDialog<GlobalCarDialog>(*b); }});
}

}  // namespace tarvel
