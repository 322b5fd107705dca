#include "shell/Command.h"

#include <algorithm>
#include <cassert>

namespace tarvel {

void CommandRegistry::add(Command command) {
    assert(command.id != 0 && !commands_.contains(command.id));
    const int id = command.id;
    commands_.insert_or_assign(id, std::move(command));
}

const Command* CommandRegistry::find(int id) const {
    auto found = commands_.find(id);
    return found == commands_.end() ? nullptr : &found->second;
}

std::vector<const Command*> CommandRegistry::inMenuOrder() const {
    std::vector<const Command*> ordered;
    for (const auto& [id, command] : commands_) ordered.push_back(&command);
    std::stable_sort(ordered.begin(), ordered.end(),
                     [](const Command* a, const Command* b) { return a->order < b->order; });
    return ordered;
}

bool CommandRegistry::isEnabled(int id) const {
    const Command* command = find(id);
    if (!command || (!command->run && !command->entries)) return false;
    return !command->enabled || command->enabled();
}

bool CommandRegistry::run(int id) const {
    if (!isEnabled(id) || !find(id)->run) return false;
    find(id)->run();
    return true;
}

}  // namespace tarvel
