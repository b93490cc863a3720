#pragma once

#include "config/Settings.h"
#include "config/SettingRanges.h"
#include "recognition/CaptureFile.h"
#include "view/RegionPreview.h"
#include "view/ShownText.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tvx {

// What the picture shows before there is a screen to pick on.
inline constexpr ShownText kNoScreenHint{N_("画面を取り込んでください")};

struct ScreenPoint {
    std::int32_t x = 0;
    std::int32_t y = 0;
};

// Choosing the three capture regions by dragging rectangles over a capture of the whole
// screen, shown enlarged by a zoom. The windows pass mouse positions in picture pixels
// (the zoomed picture's top-left is 0,0) and draw the rectangles and previews it gives.
class RegionPicker {
public:
    static constexpr std::int32_t kMaxZoom = 16;
    // Tall glyphs (a 4K screen, a scaled UI) are read whole by shape.
    static constexpr std::int32_t kMaxRows = kMaxRegionRows;

    explicit RegionPicker(const Settings& settings) : m_settings(settings) {}

    void setScreen(CaptureBitmap screen);
    const std::optional<CaptureBitmap>& screen() const { return m_screen; }
    std::int32_t screenWidth() const;
    std::int32_t screenHeight() const;

    // The region a drag sets (0 level, 1 experience, 2 money).
    void selectRegion(int region);
    int selectedRegion() const { return m_region; }
    // 1, 2, 4, 8 or 16 times; other values go to the nearest of them.
    void setZoom(std::int32_t zoom);
    std::int32_t zoom() const { return m_zoom; }
    // "2 倍": how the zoom choices are named.
    static std::string zoomCaption(std::int32_t zoom);

    // The screen pixel under a point of the zoomed picture, kept inside the screen.
    ScreenPoint screenPixel(std::int32_t pictureX, std::int32_t pictureY) const;
    // A region in zoomed picture pixels, for drawing.
    CaptureRegionRect pictureRect(int region) const;
    // The middle of the selected region in zoomed picture pixels: what a new zoom scrolls to.
    ScreenPoint selectedCentre() const;

    // A drag from press to release spans the region's new rectangle, both corner pixels
    // included, at most kMaxRows high. Returns true when the rectangle changed.
    bool press(std::int32_t pictureX, std::int32_t pictureY);
    bool drag(std::int32_t pictureX, std::int32_t pictureY);
    bool release(std::int32_t pictureX, std::int32_t pictureY);
    bool dragging() const { return m_anchor.has_value(); }
    // Moves the selected region by whole pixels (arrow keys), kept inside the screen.
    bool nudge(std::int32_t dx, std::int32_t dy);

    // The working settings: the regions as dragged, the rest as given.
    const Settings& settings() const { return m_settings; }
    Settings& settings() { return m_settings; }
    RegionPreview preview(int region) const { return previewRegion(m_screen ? &*m_screen : nullptr, m_settings, region); }

private:
    bool spanTo(const ScreenPoint& corner);

    Settings m_settings;
    std::optional<CaptureBitmap> m_screen;
    int m_region = 0;
    std::int32_t m_zoom = 1;
    std::optional<ScreenPoint> m_anchor;
};

// The colour (0xRRGGBB) a region is drawn in over the screen, and a darker one for its
// name on a light background.
std::uint32_t regionColour(int region);
std::uint32_t regionTextColour(int region);

} // namespace tvx
