#include "Cli.h"

namespace tarvel::cli {

std::vector<Command> graphicsCommands() { return {}; }

}  // namespace tarvel::cli
