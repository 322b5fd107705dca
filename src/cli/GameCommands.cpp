#include "Cli.h"

namespace tarvel::cli {

std::vector<Command> gameCommands() { return {}; }

}  // namespace tarvel::cli
