// Performance: the car and driver performance editors, the grid and race
// calculators, damage and pit settings.

#include "shell/Command.h"
#include "shell/CommandIds.h"
#include "shell/Workbench.h"

namespace tarvel {

void addPerformanceCommands(Workbench& bench) {
    namespace c = command;
    CommandRegistry& r = bench.commands;
    r.add({.id = c::PitSettings, .order = 203, .menu = "&Edit", .text = "&Pit settings"});
    r.add({.id = c::CarDamage, .order = 210, .menu = "&Edit", .text = "Car &damage"});
    r.add({.id = c::CarPerformance, .order = 300, .menu = "&Performance", .text = "&Cars"});
    r.add({.id = c::ActiveDrivers, .order = 301, .menu = "&Performance|&Drivers", .text = "&Active"});
    r.add({.id = c::SpareDrivers, .order = 302, .menu = "&Performance|&Drivers", .text = "&Spare"});
    r.add({.id = c::CalculateGrid, .order = 303, .menu = "&Performance|C&alculate", .text = "&Grid"});
    r.add({.id = c::CalculateRace, .order = 304, .menu = "&Performance|C&alculate", .text = "&Race"});
}

}  // namespace tarvel
