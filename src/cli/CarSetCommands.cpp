#include "Cli.h"

namespace tarvel::cli {

std::vector<Command> carSetCommands() { return {}; }

}  // namespace tarvel::cli
