#pragma once
// Where the main window was when it closed: its normal rectangle, whether it
// was maximised and the team on show, kept in section "Window" of the
// configuration file; and how a saved rectangle is brought back onto a screen
// that may have become smaller or moved.

#include "common/Result.h"

#include <optional>

namespace tarvel {

class IniFile;

struct WindowRect {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    bool operator==(const WindowRect&) const = default;
};

struct WindowPlacement {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    bool maximized = false;
    int team = 0;
    WindowRect rect() const { return {x, y, width, height}; }
    bool operator==(const WindowPlacement&) const = default;
};

// The saved placement; none unless "Left", "Top", "Width" and "Height" are all
// there with a positive size ("Maximized" and "Team" default to 0).
std::optional<WindowPlacement> readWindowPlacement(const IniFile& ini);
// Writes every key; fails with "Couldn't Write File - %s." (the configuration file).
Status writeWindowPlacement(IniFile& ini, const WindowPlacement& placement);

// `saved` shrunk to fit `screen`, then moved the least distance that puts it
// wholly inside. An empty screen leaves it as it was.
WindowRect fitOnScreen(const WindowRect& saved, const WindowRect& screen);

}  // namespace tarvel
