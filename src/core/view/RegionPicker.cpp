#include "view/RegionPicker.h"

#include "base/Errors.h"
#include "base/Language.h"
#include "config/PatternColumns.h"
#include "recognition/Recognizer.h"
#include "recognition/TemplateLearner.h"

#include <algorithm>

namespace tvx {

void RegionPicker::setScreen(CaptureBitmap screen)
{
    m_screen = std::move(screen);
}

std::int32_t RegionPicker::screenWidth() const
{
    return m_screen ? m_screen->infoHeader.biWidth : 0;
}

std::int32_t RegionPicker::screenHeight() const
{
    return m_screen ? static_cast<std::int32_t>(m_screen->rows) : 0;
}

void RegionPicker::selectRegion(int region)
{
    m_region = std::clamp(region, 0, kRegionCount - 1);
    m_anchor.reset();
}

void RegionPicker::setZoom(std::int32_t zoom)
{
    std::int32_t chosen = 1;
    for (std::int32_t z = 1; z <= kMaxZoom; z *= 2)
        if (zoom >= z)
            chosen = z;
    m_zoom = chosen;
}

std::string RegionPicker::zoomCaption(std::int32_t zoom)
{
    return trFormat("%1 倍", {std::to_string(zoom)});
}

ScreenPoint RegionPicker::screenPixel(std::int32_t pictureX, std::int32_t pictureY) const
{
    const auto inside = [this](std::int32_t value, std::int32_t size) {
        // Round towards minus infinity so that a point left of the picture is column -1.
        const std::int32_t pixel = value >= 0 ? value / m_zoom : -((-value + m_zoom - 1) / m_zoom);
        return std::clamp(pixel, 0, std::max(0, size - 1));
    };
    return {inside(pictureX, screenWidth()), inside(pictureY, screenHeight())};
}

CaptureRegionRect RegionPicker::pictureRect(int region) const
{
    const CaptureRegionRect& r = m_settings.CaptureRegion.at(static_cast<std::size_t>(region));
    return {r.StartX * m_zoom, r.StartY * m_zoom, r.SizeX * m_zoom, r.SizeY * m_zoom};
}

ScreenPoint RegionPicker::selectedCentre() const
{
    const CaptureRegionRect box = pictureRect(m_region);
    return {box.StartX + box.SizeX / 2, box.StartY + box.SizeY / 2};
}

bool RegionPicker::press(std::int32_t pictureX, std::int32_t pictureY)
{
    if (!m_screen)
        return false;
    m_anchor = screenPixel(pictureX, pictureY);
    return spanTo(*m_anchor);
}

bool RegionPicker::drag(std::int32_t pictureX, std::int32_t pictureY)
{
    return m_anchor && spanTo(screenPixel(pictureX, pictureY));
}

bool RegionPicker::release(std::int32_t pictureX, std::int32_t pictureY)
{
    const bool changed = drag(pictureX, pictureY);
    m_anchor.reset();
    return changed;
}

bool RegionPicker::spanTo(const ScreenPoint& corner)
{
    const ScreenPoint& a = *m_anchor;
    CaptureRegionRect rect{std::min(a.x, corner.x), std::min(a.y, corner.y), std::abs(corner.x - a.x) + 1,
                           std::min(std::abs(corner.y - a.y) + 1, kMaxRows)};
    if (corner.y < a.y) // dragged upwards past the height limit: keep the bottom at the anchor
        rect.StartY = a.y - rect.SizeY + 1;
    CaptureRegionRect& region = m_settings.CaptureRegion[static_cast<std::size_t>(m_region)];
    if (region == rect)
        return false;
    region = rect;
    return true;
}

bool RegionPicker::nudge(std::int32_t dx, std::int32_t dy)
{
    if (!m_screen)
        return false;
    CaptureRegionRect& region = m_settings.CaptureRegion[static_cast<std::size_t>(m_region)];
    const std::int32_t x = std::clamp(region.StartX + dx, 0, std::max(0, screenWidth() - region.SizeX));
    const std::int32_t y = std::clamp(region.StartY + dy, 0, std::max(0, screenHeight() - region.SizeY));
    if (x == region.StartX && y == region.StartY)
        return false;
    region.StartX = x;
    region.StartY = y;
    return true;
}

std::uint32_t regionColour(int region)
{
    constexpr std::uint32_t colours[kRegionCount] = {0xFF3C3C, 0x28C8FF, 0xFFC800};
    return colours[std::clamp(region, 0, kRegionCount - 1)];
}

std::uint32_t regionTextColour(int region)
{
    // The same hue at three quarters of its brightness, readable on a window's grey.
    const std::uint32_t c = regionColour(region);
    const auto darker = [c](int shift) { return ((c >> shift & 0xFF) * 3 / 4) << shift; };
    return darker(16) | darker(8) | darker(0);
}

} // namespace tvx
