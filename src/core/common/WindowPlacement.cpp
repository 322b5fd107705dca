#include "common/WindowPlacement.h"

#include "common/IniFile.h"

#include <algorithm>
#include <string_view>

namespace tarvel {
namespace {

constexpr std::string_view kSection = "Window";

struct Key {
    std::string_view name;
    int WindowPlacement::*field;
};
constexpr Key kRectKeys[] = {
    {"Left", &WindowPlacement::x},
    {"Top", &WindowPlacement::y},
    {"Width", &WindowPlacement::width},
    {"Height", &WindowPlacement::height},
};
constexpr std::string_view kMaximizedKey = "Maximized";
constexpr std::string_view kTeamKey = "Team";

// The nearest position of a span of `length` that lies inside [low, low + room).
int placeInside(int position, int length, int low, int room) { return std::clamp(position, low, low + room - length); }

}  // namespace

std::optional<WindowPlacement> readWindowPlacement(const IniFile& ini) {
    WindowPlacement placement;
    for (const Key& key : kRectKeys) {
        if (!ini.hasKey(kSection, key.name)) return std::nullopt;
        placement.*key.field = ini.getInt(kSection, key.name, 0);
    }
    if (placement.width <= 0 || placement.height <= 0) return std::nullopt;
    placement.maximized = ini.getInt(kSection, kMaximizedKey, 0) != 0;
    placement.team = ini.getInt(kSection, kTeamKey, 0);
    return placement;
}

Status writeWindowPlacement(IniFile& ini, const WindowPlacement& placement) {
    // Every key is attempted, as the configuration's own writer does.
    bool written = true;
    for (const Key& key : kRectKeys) written = ini.setInt(kSection, key.name, placement.*key.field) && written;
    written = ini.setInt(kSection, kMaximizedKey, placement.maximized ? 1 : 0) && written;
    written = ini.setInt(kSection, kTeamKey, placement.team) && written;
    if (!written) return fail(MessageId::CouldntWriteFile, ini.path().string());
    return {};
}

WindowRect fitOnScreen(const WindowRect& saved, const WindowRect& screen) {
    if (screen.width <= 0 || screen.height <= 0) return saved;
    WindowRect fitted;
    fitted.width = std::min(saved.width, screen.width);
    fitted.height = std::min(saved.height, screen.height);
    fitted.x = placeInside(saved.x, fitted.width, screen.x, screen.width);
    fitted.y = placeInside(saved.y, fitted.height, screen.y, screen.height);
    return fitted;
}

}  // namespace tarvel
