#pragma once

#include "ports/GameWindowProbe.h"
#include "ports/ScreenSource.h"

#include <memory>

namespace tvx::platform {

// The game's window and the screen it is on: found by exact title, in front or not, and
// a fresh image of the screen.
class GameScreen : public GameWindowProbe, public ScreenSource {
public:
    ~GameScreen() override = default;
};

// The back end of this platform; null when there is no screen to talk to.
std::unique_ptr<GameScreen> makeGameScreen();

} // namespace tvx::platform
