// Cockpits: custom cockpit files, the cockpit design and its colours.

#include "shell/Command.h"
#include "shell/CommandIds.h"
#include "shell/Workbench.h"

namespace tarvel {

void addCockpitCommands(Workbench& bench) {
    namespace c = command;
    CommandRegistry& r = bench.commands;
    r.add({.id = c::CockpitLoad, .order = 140, .menu = "&File|C&ockpit", .text = "&Load"});
    r.add({.id = c::CockpitDesign, .order = 201, .menu = "&Edit|C&ockpit", .text = "&Design"});
    r.add({.id = c::CockpitColours, .order = 202, .menu = "&Edit|C&ockpit", .text = "&Colours"});
}

}  // namespace tarvel
