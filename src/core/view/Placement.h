#pragma once

#include <optional>

namespace tvx {

// A window's rectangle in screen pixels.
struct ViewRect {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    friend bool operator==(const ViewRect&, const ViewRect&) = default;
};

// Where a window of the wanted size opens: centred over the window that asked (the work
// area's centre when none did), no larger than the work area and wholly inside it, so a
// dialog never opens with its buttons off a small screen.
ViewRect placeOver(const std::optional<ViewRect>& owner, int width, int height, const ViewRect& workArea);

} // namespace tvx
