// The 3D car viewer.

#include "shell/Command.h"
#include "shell/CommandIds.h"
#include "shell/Workbench.h"

namespace tarvel {

void addViewer3dCommands(Workbench& bench) {
    bench.commands.add({.id = command::CarViewer, .order = 500, .menu = "&Window", .text = "&3D car viewer"});
}

}  // namespace tarvel
