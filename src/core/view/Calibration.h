#pragma once

#include "recognition/TemplateLearner.h"
#include "view/RegionPicker.h"

#include <array>
#include <string>
#include <vector>

namespace tvx {

// What the calibration window shows of one region.
struct CalibrationRegionView {
    std::string typed;                          // the number the player typed ("" or "-": skipped)
    std::string message;                        // the outcome of the last learning step
    bool refused = false;
    std::int32_t width = 0;                     // the glyph width learnt, else the present one
    std::array<std::vector<std::uint16_t>, kPatternCount> glyphs; // learnt, else the present templates
    std::array<bool, kPatternCount> learnt{};
    std::string missing;                        // digits not learnt yet
    std::vector<std::string> readBack;          // one line per image: "137 → 137"
};

// "Learn from the screen": the player types the three numbers the game shows, the meter
// takes the screen and each region's learner adds it. Dragging a region anew starts its
// learning over. The settings change only through applyTo, when the player confirms.
class Calibration {
public:
    explicit Calibration(const Settings& settings);

    RegionPicker& picker() { return m_picker; }
    const RegionPicker& picker() const { return m_picker; }

    // A region was dragged or nudged: what was learnt for it no longer fits.
    void regionMoved(int region);
    void setTyped(int region, std::string text);
    // Learns from the picker's screen with the typed numbers. False when nothing was tried
    // (no screen, or no number typed).
    bool learn();

    CalibrationRegionView view(int region) const;
    // The region on the present screen, read with what was learnt for it.
    RegionPreview preview(int region) const;
    // True once some region learnt something or a region was moved.
    bool hasChanges() const;
    // Writes the regions and what was learnt into the settings.
    void applyTo(Settings& settings) const;

private:
    std::string outcomeText(int region, const LearnOutcome& outcome) const;

    RegionPicker m_picker;
    std::array<TemplateLearner, kRegionCount> m_learners;
    std::array<std::string, kRegionCount> m_typed;
    std::array<std::string, kRegionCount> m_messages;
    std::array<bool, kRegionCount> m_refused{};
    bool m_moved = false;
};

} // namespace tvx
