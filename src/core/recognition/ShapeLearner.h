#pragma once

#include "config/Settings.h"
#include "recognition/InkGrid.h"
#include "recognition/TemplateLearner.h"

#include <string>
#include <vector>

namespace tvx {

// Learns a region's glyphs as shapes: each piece of ink between blank columns is one
// glyph, whatever its width, so narrow digits, end marks of any width, separators and
// labels fit, and every way a glyph was drawn is kept, so glyphs that differ by a pixel
// from place to place (a scaled or smoothed UI) are all known. Which pieces of a screen
// are the number is settled over all its screens together: a label before the number
// stays the same from screen to screen while the digits change. Shapes taught before (the
// settings') are kept unless the screens contradict them; then they give way.
class ShapeLearner {
public:
    // prior: the shapes taught before with the same binarisation (may be empty).
    explicit ShapeLearner(RegionReading prior = {});

    // alternates: the same region binarised a little darker and lighter; the digits' cells
    // there are kept as well, as a smoothed UI draws them at other places.
    LearnOutcome add(const InkGrid& grid, const std::string& digits, std::vector<InkGrid> alternates = {});

    bool learnt() const { return !m_samples.empty(); }
    std::size_t imageCount() const { return m_samples.size(); }
    // The shapes taught before gave way to a screen that contradicted them.
    bool replacedPrior() const { return m_replacedPrior; }
    bool seen(int glyph) const;
    // Shapes of the glyphs as the reading uses them, with the end gap and tolerance.
    RegionReading reading() const { return m_reading; }
    // The height of the digits seen (0 before any).
    std::int32_t digitHeight() const { return m_digitHeight; }

    struct Placement; // how one screen's pieces are the number

private:
    struct Sample {
        InkGrid grid;
        std::string digits;
        std::vector<InkPiece> pieces;
        std::vector<InkGrid> alternates;
    };
    struct State;
    struct Search;
    bool solve(const RegionReading& prior, Search& search) const;
    bool extend(std::size_t index, const State& state, Search& search) const;

    RegionReading m_prior;
    RegionReading m_reading;
    std::vector<Sample> m_samples;
    std::int32_t m_digitHeight = 0;
    bool m_replacedPrior = false;
};

} // namespace tvx
