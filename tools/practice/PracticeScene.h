#pragma once

#include "PracticeCharacter.h"

#include "config/Settings.h"
#include "recognition/Frame.h"

#include <cstdint>

namespace tvx::practice {

inline constexpr std::int32_t kSceneWidth = 800;
inline constexpr std::int32_t kSceneHeight = 600;

struct SceneRect {
    std::int32_t x = 0;
    std::int32_t y = 0;
    std::int32_t width = 0;
    std::int32_t height = 0;
};

// Where the window writes its texts over the scene; none of them touches a default
// capture region.
inline constexpr SceneRect kHintBox{8, 6, 784, 24};
inline constexpr SceneRect kLevelLabel{4, 572, 30, 20};
inline constexpr SceneRect kExpLabel{426, 566, 34, 18};
inline constexpr SceneRect kMoneyTitle{4, 240, 160, 24};

bool overlaps(const SceneRect& box, const CaptureRegionRect& region);

// The game-like picture for a state: sky, ground, a figure, an item window with the money,
// the status bar with level and experience, all in the regions' glyphs and colours, and
// the darkened strip the hint line is written on.
Frame paintScene(const Settings& settings, const CharacterState& state);

} // namespace tvx::practice
