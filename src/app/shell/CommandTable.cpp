#include "shell/CommandTable.h"

#include <array>

namespace tarvel {
namespace {

using G = CommandGroup;
namespace c = command;

constexpr std::array kCommands{
    CommandSpec{c::NewCarSet, "&File|&New", "&Car set", true, G::Always, true},
    CommandSpec{c::NewEditorWindow, "&File|&New", "&Editor window", true, G::Always, false},
    CommandSpec{c::Open, "&File|&Open", "&In this window", true, G::Always, true},
    CommandSpec{c::OpenInNewWindow, "&File|&Open", "In &new window", true, G::Always, false},
    CommandSpec{c::Save, "&File", "&Save", true, G::NeedsFile, true},
    CommandSpec{c::SaveAs, "&File", "Save &as...", true, G::Always, false},
    CommandSpec{0, "&File", "", true, G::Always, false},
    CommandSpec{c::AutofileSetAs, "&File|A&utofile", "&Set as...", true, G::Autofile, false},
    CommandSpec{c::AutofileRemove, "&File|A&utofile", "&Remove", true, G::Autofile, false},
    CommandSpec{c::AutofileOpen, "&File|A&utofile", "None...", true, G::Autofile, false},
    CommandSpec{0, "&File", "", true, G::Always, false},
    CommandSpec{c::CarLoad, "&File|&Car", "&Load", true, G::Always, false},
    CommandSpec{c::CarSaveAs, "&File|&Car", "&Save as...", true, G::Always, false},
    CommandSpec{c::CarImport, "&File|&Car", "&Import", true, G::NeedsGame, false},
    CommandSpec{c::CarExport, "&File|&Car", "&Export", true, G::NeedsGame, false},
    CommandSpec{c::HelmetsLoad, "&File|&Helmets|&All", "&Load", true, G::Always, false},
    CommandSpec{c::HelmetsSaveAs, "&File|&Helmets|&All", "&Save as...", true, G::Always, false},
    CommandSpec{c::HelmetsImport, "&File|&Helmets|&All", "&Import", true, G::NeedsGame, false},
    CommandSpec{c::HelmetsExport, "&File|&Helmets|&All", "&Export", true, G::NeedsGame, false},
    CommandSpec{c::FirstHelmetLoad, "&File|&Helmets|&First driver", "&Load", true, G::Always, false},
    CommandSpec{c::FirstHelmetSaveAs, "&File|&Helmets|&First driver", "&Save as...", true, G::Always, false},
    CommandSpec{c::SecondHelmetLoad, "&File|&Helmets|&Second driver", "&Load", true, G::Always, false},
    CommandSpec{c::SecondHelmetSaveAs, "&File|&Helmets|&Second driver", "&Save as...", true, G::Always, false},
    CommandSpec{c::CockpitLoad, "&File|C&ockpit", "&Load", false, G::Always, false},
    CommandSpec{c::TeamLoad, "&File|&Team", "&Load", false, G::Always, false},
    CommandSpec{c::TeamSaveAs, "&File|&Team", "&Save as...", false, G::Always, false},
    CommandSpec{c::PerformanceLoad, "&File|&Performance", "&Load", false, G::Always, false},
    CommandSpec{c::PerformanceSaveAs, "&File|&Performance", "&Save as...", false, G::Always, false},
    CommandSpec{0, "&File", "", true, G::Always, false},
    CommandSpec{c::Exit, "&File", "E&xit", true, G::Always, false},

    CommandSpec{c::CarNumberPositions, "&Edit", "Car &Number Positions", false, G::Always, false},
    CommandSpec{c::CockpitDesign, "&Edit|C&ockpit", "&Design", false, G::Always, false},
    CommandSpec{c::CockpitColours, "&Edit|C&ockpit", "&Colours", false, G::Always, false},
    CommandSpec{c::PitSettings, "&Edit", "&Pit settings", false, G::Always, false},
    CommandSpec{c::Wheels, "&Edit", "&Wheels", false, G::Always, false},
    CommandSpec{c::DriverMenuHelmets, "&Edit|&Helmets", "&Driver Menu", false, G::Always, false},
    CommandSpec{c::FirstHelmetEdit, "&Edit|&Helmets", "&First driver", false, G::Always, false},
    CommandSpec{c::SecondHelmetEdit, "&Edit|&Helmets", "&Second driver", false, G::Always, false},
    CommandSpec{c::SoundEffects, "&Edit", "&Sound effects", false, G::Always, false},
    CommandSpec{c::JamFiles, "&Edit", "&JAM files", false, G::Always, false},
    CommandSpec{c::CarDamage, "&Edit", "Car &damage", false, G::Always, false},
    CommandSpec{c::OnboardCameras, "&Edit", "&Onboard Cameras", false, G::Always, false},
    CommandSpec{c::ChampionshipPoints, "&Edit", "Championship &points", false, G::Always, false},
    CommandSpec{c::NumberOfLaps, "&Edit", "Number of &laps", false, G::Always, false},
    CommandSpec{c::GameSettings, "&Edit", "&Game settings", false, G::Always, false},

    CommandSpec{c::CarPerformance, "&Performance", "&Cars", false, G::Always, false},
    CommandSpec{c::ActiveDrivers, "&Performance|&Drivers", "&Active", false, G::Always, false},
    CommandSpec{c::SpareDrivers, "&Performance|&Drivers", "&Spare", false, G::Always, false},
    CommandSpec{c::CalculateGrid, "&Performance|C&alculate", "&Grid", false, G::Always, false},
    CommandSpec{c::CalculateRace, "&Performance|C&alculate", "&Race", false, G::Always, false},
    CommandSpec{c::CarSettings, "&Performance", "Car &settings", false, G::Always, false},

    CommandSpec{c::ImportFromGame, "&Options", "&Import from game", true, G::NeedsGame, true},
    CommandSpec{c::ExportToGame, "&Options", "&Export to game", true, G::NeedsGame, true},
    CommandSpec{c::LaunchGame, "&Options", "&Launch Grandprix2", true, G::NeedsGame, true},
    CommandSpec{c::CreateDosPatch, "&Options", "Create &DOS patch", false, G::NeedsGame, false},

    CommandSpec{c::CarViewer, "&Window", "&3D car viewer", false, G::Always, false},
    CommandSpec{c::EditInformation, "&Window", "&Edit car set information", false, G::Always, false},
    CommandSpec{c::ProgramConfiguration, "&Window", "&Program configuration", true, G::Always, true},

    CommandSpec{c::Help, "&Help", "&Help", true, G::Always, false},
    CommandSpec{0, "&Help", "", true, G::Always, false},
    CommandSpec{c::AboutCarSet, "&Help", "About &car set...", true, G::AboutCarSet, false},
    CommandSpec{c::About, "&Help", "&About...", true, G::Always, true},
};

}  // namespace

std::span<const CommandSpec> commandTable() { return kCommands; }

const CommandSpec* findCommand(int id) {
    for (const CommandSpec& entry : kCommands)
        if (entry.id == id) return &entry;
    return nullptr;
}

}  // namespace tarvel
