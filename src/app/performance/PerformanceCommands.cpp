// Performance: the car and driver performance editors, the grid and race
// calculators, damage and pit settings.

#include "performance/CalculatorWindows.h"
#include "performance/PerformanceEditors.h"
#include "shell/Command.h"
#include "shell/CommandIds.h"
#include "shell/Document.h"
#include "shell/MainWindow.h"
#include "shell/Workbench.h"

namespace tarvel {
namespace {

template <class Editor>
void runEditor(Workbench& bench) {
    Editor editor(bench, &bench.window);
    editor.exec();
}

void runCalculator(Workbench& bench, CalculatorDialog::Kind kind) {
    const CarSet& set = bench.document.set();
    CalculatorDialog dialog(bench, set.teams, set.drivers, kind, &bench.window);
    dialog.exec();
}

}  // namespace

void addPerformanceCommands(Workbench& bench) {
    namespace c = command;
    CommandRegistry& r = bench.commands;
    Workbench* b = &bench;
    r.add({.id = c::PitSettings, .order = 203, .menu = "&Edit", .text = "&Pit settings"});
    r.add({.id = c::CarDamage, .order = 210, .menu = "&Edit", .text = "Car &damage"});
    r.add({.id = c::CarPerformance, .order = 300, .menu = "&Performance", .text = "&Cars",
           .run = [b] { runEditor<CarPerformanceEditor>(*b); }});
    r.add({.id = c::ActiveDrivers, .order = 301, .menu = "&Performance|&Drivers", .text = "&Active",
           .run = [b] { runEditor<DriverPerformanceEditor>(*b); }});
    r.add({.id = c::SpareDrivers, .order = 302, .menu = "&Performance|&Drivers", .text = "&Spare",
           .run = [b] { runEditor<SpareDriverEditor>(*b); }});
    r.add({.id = c::CalculateGrid, .order = 303, .menu = "&Performance|C&alculate", .text = "&Grid",
           .run = [b] { runCalculator(*b, CalculatorDialog::Kind::Grid); }});
    r.add({.id = c::CalculateRace, .order = 304, .menu = "&Performance|C&alculate", .text = "&Race",
           .run = [b] { runCalculator(*b, CalculatorDialog::Kind::Race); }});
}

}  // namespace tarvel
