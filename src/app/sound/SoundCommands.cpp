// Sound: the sound effects editor.

#include "shell/Command.h"
#include "shell/CommandIds.h"
#include "shell/Workbench.h"

namespace tarvel {

void addSoundCommands(Workbench& bench) {
    bench.commands.add({.id = command::SoundEffects, .order = 208, .menu = "&Edit", .text = "&Sound effects"});
}

}  // namespace tarvel
