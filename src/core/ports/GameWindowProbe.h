#pragma once

#include <string_view>

namespace tvx {

enum class GameWindowState {
    Missing,    // no top-level window has that exact title
    Background, // it exists but another window is in front
    Front,      // it is the active window
};

// Port: finds the game's top-level window by its exact title.
class GameWindowProbe {
public:
    virtual ~GameWindowProbe() = default;
    virtual GameWindowState state(std::string_view title) = 0;
};

} // namespace tvx
