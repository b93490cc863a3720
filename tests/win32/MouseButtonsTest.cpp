#include "DesktopSupport.h"

#include "MouseButtons.h"
#include "win32/RawMouseButtons.h"

#include <gtest/gtest.h>

namespace tvx {
namespace {

using platform::win32::mouseButtonEvents;

constexpr MouseButtonEvent kLeftDown{MouseButton::Left, true};
constexpr MouseButtonEvent kLeftUp{MouseButton::Left, false};
constexpr MouseButtonEvent kRightDown{MouseButton::Right, true};
constexpr MouseButtonEvent kRightUp{MouseButton::Right, false};

TEST(RawMouseFlagsTest, ButtonFlagsBecomeEventsLeftFirst)
{
    const struct { std::uint16_t flags; std::vector<MouseButtonEvent> events; } cases[] = {
        {0, {}},
        {RI_MOUSE_LEFT_BUTTON_DOWN, {kLeftDown}},
        {RI_MOUSE_LEFT_BUTTON_UP, {kLeftUp}},
        {RI_MOUSE_RIGHT_BUTTON_DOWN, {kRightDown}},
        {RI_MOUSE_RIGHT_BUTTON_UP, {kRightUp}},
        {RI_MOUSE_RIGHT_BUTTON_DOWN | RI_MOUSE_LEFT_BUTTON_UP, {kLeftUp, kRightDown}},
        {RI_MOUSE_LEFT_BUTTON_DOWN | RI_MOUSE_RIGHT_BUTTON_UP, {kLeftDown, kRightUp}},
        // Middle, side buttons and the wheel are not reported.
        {RI_MOUSE_MIDDLE_BUTTON_DOWN | RI_MOUSE_BUTTON_4_UP | RI_MOUSE_BUTTON_5_DOWN | RI_MOUSE_WHEEL, {}},
        {RI_MOUSE_MIDDLE_BUTTON_UP | RI_MOUSE_LEFT_BUTTON_DOWN, {kLeftDown}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.flags);
        EXPECT_EQ(mouseButtonEvents(c.flags), c.events);
    }
}

void click(DWORD down, DWORD up)
{
    INPUT inputs[2]{};
    inputs[0].type = INPUT_MOUSE;
    inputs[0].mi.dwFlags = down;
    inputs[1].type = INPUT_MOUSE;
    inputs[1].mi.dwFlags = up;
    SendInput(2, inputs, sizeof(INPUT));
}

TEST(RawInputMouseTest, InjectedClicksArriveWhileAnotherWindowHasTheFocus)
{
    // The clicks land on a window of this thread that is not the source's.
    test::PaintedWindow focus(L"Focus", test::noiseFrame(200, 200, 2), 400, 300);
    ASSERT_TRUE(focus.bringToFront());
    SetCursorPos(500, 400);

    auto source = platform::makeMouseButtonSource();
    std::vector<MouseButtonEvent> seen;
    int batches = 0;
    ASSERT_EQ(source->start([&](const std::vector<MouseButtonEvent>& batch) {
        ++batches;
        seen.insert(seen.end(), batch.begin(), batch.end());
    }),
              MouseButtonSource::StartResult::Started);
    EXPECT_EQ(source->pollDescriptor(), -1);

    click(MOUSEEVENTF_LEFTDOWN, MOUSEEVENTF_LEFTUP);
    click(MOUSEEVENTF_RIGHTDOWN, MOUSEEVENTF_RIGHTUP);
    test::pumpUntil([&] { return seen.size() >= 4; }, 2000);
    test::pumpMessages(100);
    EXPECT_EQ(seen, (std::vector<MouseButtonEvent>{kLeftDown, kLeftUp, kRightDown, kRightUp}));
    EXPECT_EQ(batches, 4);

    source->stop();
    seen.clear();
    click(MOUSEEVENTF_LEFTDOWN, MOUSEEVENTF_LEFTUP);
    test::pumpMessages(300);
    EXPECT_TRUE(seen.empty());

    // A source can be started again after stopping.
    ASSERT_EQ(source->start([&](const std::vector<MouseButtonEvent>& batch) {
        seen.insert(seen.end(), batch.begin(), batch.end());
    }),
              MouseButtonSource::StartResult::Started);
    click(MOUSEEVENTF_RIGHTDOWN, MOUSEEVENTF_RIGHTUP);
    test::pumpUntil([&] { return seen.size() >= 2; }, 2000);
    EXPECT_EQ(seen, (std::vector<MouseButtonEvent>{kRightDown, kRightUp}));
}

} // namespace
} // namespace tvx
