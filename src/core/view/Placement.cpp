#include "view/Placement.h"

#include <algorithm>

namespace tvx {

ViewRect placeOver(const std::optional<ViewRect>& owner, int width, int height, const ViewRect& workArea)
{
    const ViewRect& centre = owner ? *owner : workArea;
    ViewRect placed;
    placed.width = std::clamp(width, 0, std::max(0, workArea.width));
    placed.height = std::clamp(height, 0, std::max(0, workArea.height));
    placed.x = centre.x + (centre.width - placed.width) / 2;
    placed.y = centre.y + (centre.height - placed.height) / 2;
    placed.x = std::clamp(placed.x, workArea.x, workArea.x + workArea.width - placed.width);
    placed.y = std::clamp(placed.y, workArea.y, workArea.y + workArea.height - placed.height);
    return placed;
}

} // namespace tvx
