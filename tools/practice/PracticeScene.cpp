#include "PracticeScene.h"

#include "recognition/GlyphPainter.h"

#include <algorithm>

namespace tvx::practice {
namespace {

void fill(Frame& frame, const SceneRect& box, const Bgr& colour)
{
    const std::int32_t right = std::min(box.x + box.width, frame.width());
    const std::int32_t bottom = std::min(box.y + box.height, frame.height());
    for (std::int32_t y = std::max(box.y, 0); y < bottom; ++y)
        for (std::int32_t x = std::max(box.x, 0); x < right; ++x)
            frame.setPixel(x, y, colour.blue, colour.green, colour.red);
}

std::uint8_t blend(int from, int to, std::int32_t step, std::int32_t steps)
{
    return static_cast<std::uint8_t>(from + (to - from) * step / steps);
}

void paintBackground(Frame& frame)
{
    constexpr std::int32_t kGroundTop = 420;
    for (std::int32_t y = 0; y < kGroundTop; ++y)
        fill(frame, {0, y, kSceneWidth, 1}, {blend(235, 250, y, kGroundTop), blend(185, 232, y, kGroundTop),
                                             blend(110, 200, y, kGroundTop)});
    fill(frame, {0, kGroundTop, kSceneWidth, 12}, {60, 170, 70});
    fill(frame, {0, kGroundTop + 12, kSceneWidth, 560 - kGroundTop - 12}, {45, 95, 140});

    // Two floating platforms and a figure standing on the ground.
    fill(frame, {300, 300, 180, 12}, {40, 120, 90});
    fill(frame, {300, 312, 180, 6}, {40, 80, 120});
    fill(frame, {560, 340, 170, 12}, {40, 120, 90});
    fill(frame, {560, 352, 170, 6}, {40, 80, 120});
    fill(frame, {384, 372, 20, 18}, {170, 200, 245});
    fill(frame, {380, 390, 28, 22}, {200, 90, 60});
    fill(frame, {382, 412, 8, 8}, {60, 50, 40});
    fill(frame, {398, 412, 8, 8}, {60, 50, 40});
}

void paintItemWindow(Frame& frame)
{
    fill(frame, {0, 236, 172, 66}, {90, 80, 70});
    fill(frame, {2, 238, 168, 62}, {215, 225, 230});
    fill(frame, {2, 238, 168, 28}, {150, 110, 70});
}

void paintStatusBar(Frame& frame, const CharacterState& state)
{
    fill(frame, {0, 560, kSceneWidth, 40}, {50, 45, 40});
    fill(frame, {0, 560, kSceneWidth, 2}, {120, 115, 110});
    // Health and mana gauges between the level and the experience.
    fill(frame, {100, 576, 160, 12}, {40, 40, 200});
    fill(frame, {275, 576, 150, 12}, {200, 90, 40});

    // The experience gauge under the figure, as far along as the level is.
    const SceneRect gauge{463, 586, 320, 8};
    fill(frame, gauge, {70, 70, 70});
    const std::int64_t span = PracticeCharacter::levelSpan(state.level);
    if (span > 0) {
        const auto done = static_cast<std::int32_t>(state.exp * gauge.width / span);
        fill(frame, {gauge.x, gauge.y, done, gauge.height}, {60, 220, 240});
    }
}

// Darkens the hint line's background as a black veil of opacity 150/255 would.
void shade(Frame& frame, const SceneRect& box)
{
    for (std::int32_t y = box.y; y < box.y + box.height; ++y) {
        std::uint8_t* p = frame.row(y) + 3 * static_cast<std::size_t>(box.x);
        for (std::int32_t i = 0; i < 3 * box.width; ++i)
            p[i] = static_cast<std::uint8_t>(p[i] * (255 - 150) / 255);
    }
}

} // namespace

bool overlaps(const SceneRect& box, const CaptureRegionRect& region)
{
    return box.x < region.StartX + region.SizeX && region.StartX < box.x + box.width &&
           box.y < region.StartY + region.SizeY && region.StartY < box.y + box.height;
}

Frame paintScene(const Settings& settings, const CharacterState& state)
{
    Frame frame(kSceneWidth, kSceneHeight);
    paintBackground(frame);
    paintItemWindow(frame);
    paintStatusBar(frame, state);
    paintStatusNumbers(frame, settings, statusTexts(state));
    shade(frame, kHintBox);
    return frame;
}

} // namespace tvx::practice
