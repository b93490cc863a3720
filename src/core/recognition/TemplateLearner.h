#pragma once

#include "config/Settings.h"
#include "recognition/CaptureFile.h"
#include "recognition/Recognizer.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tvx {

using GlyphColumns = std::vector<std::uint16_t>;

// Glyph slots of a learner: the ten digits, the end mark (the template that ends a number)
// and the thousands separator, which has no template: the recogniser steps over it.
inline constexpr int kEndMarkGlyph = kDelimiterIndex;
inline constexpr int kSeparatorGlyph = kPatternCount;
inline constexpr int kLearntGlyphCount = kPatternCount + 1;

// Where the glyphs of one image lie, as columns of the region.
struct GlyphLayout {
    std::int32_t width = 0;
    std::int32_t separatorWidth = 0;
    std::vector<std::int32_t> digitColumns;     // left column of each digit, left to right
    std::vector<std::int32_t> separatorColumns; // left column of each thousands separator
    std::int32_t endColumn = 0;                 // left column of the end mark
};

enum class LearnRefusal {
    None,
    NotANumber,    // the text is not a number
    OutsideImage,  // the region does not lie inside the image
    NoSplit,       // the ink does not split into that many digits and an end mark of one width
    Contradiction, // it splits, but not as the images before did
    ReadBack,      // the templates would not read the images back as their numbers
};

struct LearnOutcome {
    LearnRefusal refusal = LearnRefusal::None;
    // Contradiction: the glyph that differs (0..9, the end mark, the separator), or -1 when
    // the image alone needs another glyph width (imageWidth) than the one learnt.
    int glyph = -1;
    std::int32_t learntWidth = 0;
    std::int32_t imageWidth = 0;
    std::string readBack; // ReadBack: what the templates read instead
    GlyphLayout layout;   // accepted: where the glyphs were found

    bool accepted() const { return refusal == LearnRefusal::None; }
};

// The digits of a number as typed: digits with optional thousands separators (',', '.',
// blanks, '\''); nullopt for anything else, for no digit and for more than 19 digits.
std::optional<std::string> numberDigits(std::string_view text);

// One region binarised with the given settings (place, threshold, mask), as the column
// string the recogniser reads. Raises RuntimeError(SubscriptOutOfRange) outside the image.
std::string regionColumnString(const CaptureBitmap& image, const CaptureRegionRect& rect, std::int32_t threshold,
                               std::int32_t mask);

// Learns a region's templates from screen images and the numbers they show. The number
// is taken to be fixed-pitch glyphs of one width, an end mark right after them and, in
// numbers of four digits or more, an optional separator of its own width between groups of
// three. Every way of laying those over the image that agrees with all images so far is
// kept; the templates are those of the most plausible one (cells that agree with the
// present templates, then strokes that do not cross cell edges). A layout is kept only
// when the recogniser, given its templates, reads every image back as its number.
// Templates of glyphs never seen keep the settings' values while the learnt glyphs agree
// with them; when the width changes or a learnt glyph differs, the templates taught before
// give way and those never seen are left empty.
class TemplateLearner {
public:
    TemplateLearner(const Settings& settings, int region);

    LearnOutcome add(const CaptureBitmap& image, std::string_view number);
    // The region already binarised (a column string of the region's width).
    LearnOutcome addColumns(std::string columnString, std::string_view number);

    int region() const { return m_region; }
    std::size_t imageCount() const { return m_samples.size(); }
    bool learnt() const { return !m_hypotheses.empty(); }
    // Another width or other glyph shapes still fit every image: more images would settle
    // it. Layouts that differ only in which side of a glyph its spacing lies on do not count.
    bool ambiguous() const;

    std::int32_t glyphWidth() const;
    // The separator width once a number of four digits or more was seen (0: none).
    std::optional<std::int32_t> separatorWidth() const;
    bool seen(int glyph) const;
    // The columns learnt for a glyph (empty when not seen).
    const GlyphColumns& glyph(int glyph) const;
    // The settings' templates with the learnt ones in their place.
    PatternSet patterns() const;
    // The thousands separator's columns, learnt or kept from the settings ("" when unknown).
    std::string separatorTemplate() const;
    // The templates taught before gave way to the screens learnt.
    bool replacedPrior() const;
    const GlyphLayout& layout(std::size_t image) const;
    const std::string& number(std::size_t image) const { return m_samples.at(image).digits; }
    // What the learnt templates read in an image.
    RecognitionResult readBack(std::size_t image) const;

    // Writes the width and the templates of the glyphs seen; nothing when nothing was learnt.
    void applyTo(Settings& settings) const;

private:
    struct Sample {
        std::string columnString;
        GlyphColumns columns;
        std::string digits;
    };
    struct Hypothesis {
        std::int32_t width = 0;
        std::int32_t separatorWidth = -1; // -1: no number long enough to show one yet
        std::array<GlyphColumns, kLearntGlyphCount> glyphs;
        std::vector<GlyphLayout> layouts;
        std::int32_t agreements = 0;
        std::int64_t crossings = 0;
        bool seeded = false; // started from the templates taught before
        std::array<bool, kLearntGlyphCount> fromPrior{}; // taught before, not seen in these screens
    };
    std::optional<Hypothesis> priorHypothesis() const;
    LearnOutcome addTo(const std::vector<Hypothesis>& bases, const Sample& sample);

    // Every layout of the sample that agrees with one of the bases, as extended bases.
    std::vector<Hypothesis> extendAll(const std::vector<Hypothesis>& bases, const Sample& sample) const;
    // A quick test that rules out most layouts before extend copies anything.
    bool fitsCheaply(const Hypothesis& base, const GlyphLayout& layout, const Sample& sample) const;
    // Adds the layout's cells to h; the glyph that disagrees, if one does.
    std::optional<int> extend(Hypothesis& h, const GlyphLayout& layout, const Sample& sample) const;
    bool readsBack(const Hypothesis& h, const std::vector<const Sample*>& samples, std::string* misread) const;
    PatternSet patternsOf(const Hypothesis& h) const;
    bool keepsPrior(const Hypothesis& h) const;
    std::string separatorOf(const Hypothesis& h) const;
    bool better(const Hypothesis& a, const Hypothesis& b) const;
    // Sorts the most plausible first and keeps `count` of them.
    void keepBest(std::vector<Hypothesis>& hypotheses, std::size_t count) const;
    LearnOutcome refuse(const Sample& sample) const;

    int m_region;
    CaptureRegionRect m_rect;
    std::int32_t m_threshold;
    std::int32_t m_mask;
    std::int32_t m_priorWidth;
    PatternSet m_priorPatterns;
    std::string m_priorSeparator;
    std::vector<Sample> m_samples;
    std::vector<Hypothesis> m_hypotheses; // best first
};

} // namespace tvx
