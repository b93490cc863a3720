#pragma once

#include "config/Settings.h"
#include "recognition/CaptureFile.h"
#include "recognition/InkGrid.h"
#include "recognition/ShapeLearner.h"
#include "recognition/TemplateLearner.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tvx {

// Teaches one region from screens and the numbers they show. Exact templates are learnt
// when they fit every screen (the region at most 16 rows tall); otherwise the glyphs are
// learnt as shapes. When neither fits with the region's threshold, other thresholds are
// tried and the one in the middle of the widest range that fits is proposed. What the
// settings held before is kept unless the screens contradict it.
class RegionLearner {
public:
    RegionLearner(const Settings& settings, int region);

    LearnOutcome add(const CaptureBitmap& image, std::string_view number);

    int region() const { return m_region; }
    std::size_t imageCount() const { return m_samples.size(); }
    bool learnt() const { return !m_samples.empty(); }
    ReadingMode mode() const { return m_mode; }
    std::int32_t threshold() const { return m_threshold; }
    std::int32_t mask() const { return m_mask; }
    // The threshold was changed because the region's own did not separate the digits.
    bool thresholdProposed() const { return m_threshold != m_priorThreshold || m_mask != m_priorMask; }
    // What was taught before gave way to these screens.
    bool replacedPrior() const;
    bool ambiguous() const;
    bool seen(int glyph) const;
    // Digits not taught yet.
    std::string missing() const;
    // Exact: the glyph width; shapes: the height of the digits.
    std::int32_t glyphSize() const;
    std::optional<std::int32_t> separatorWidth() const;
    const std::string& number(std::size_t image) const { return m_samples.at(image).digits; }
    // What the region reads in a screen taught so far, with everything learnt applied.
    RecognitionResult readBack(std::size_t image) const;

    // Writes the threshold, the mode and what was learnt; nothing when nothing was learnt.
    void applyTo(Settings& settings) const;

private:
    struct Sample {
        RegionLevels levels;
        std::string digits;
    };
    struct Attempt {
        std::optional<TemplateLearner> exact;
        ShapeLearner shapes;
        ReadingMode mode = ReadingMode::Exact;
        LearnOutcome last; // the outcome of the last sample
        bool ok = false;
    };
    Attempt attempt(std::int32_t threshold, std::int32_t mask) const;
    Settings settingsFor(std::int32_t threshold, std::int32_t mask) const;

    int m_region;
    Settings m_settings; // as given: the prior knowledge
    CaptureRegionRect m_rect;
    std::int32_t m_priorThreshold;
    std::int32_t m_priorMask;
    std::int32_t m_threshold;
    std::int32_t m_mask;
    ReadingMode m_mode;
    std::vector<Sample> m_samples;
    std::optional<Attempt> m_best;
};

// Reads a region from its levels with the settings' mode, templates or shapes.
RecognitionResult readRegionLevels(const Settings& settings, int region, const RegionLevels& levels);

// The region of a screen as levels; RuntimeError(SubscriptOutOfRange) outside the image.
RegionLevels regionLevelsOf(const CaptureBitmap& image, const CaptureRegionRect& rect);

} // namespace tvx
