#include "recognition/RegionLearner.h"

#include "base/Errors.h"
#include "recognition/Binarize.h"
#include "recognition/ShapeReader.h"

#include <algorithm>

namespace tvx {
namespace {

// Exact templates hold 16 rows.
constexpr std::int32_t kExactRows = 16;
// Thresholds tried when the region's own does not separate the digits.
constexpr std::int32_t kFirstProposal = 30;
constexpr std::int32_t kLastProposal = 250;
constexpr std::int32_t kProposalStep = 10;
// A smoothed glyph drawn at another place is about as if binarised this much darker or lighter.
constexpr std::int32_t kAlternateShift = 16;

PixelLevels pixelLevelsOf(const RegionLevels& levels)
{
    const CaptureRegionRect rect{0, 0, levels.width, levels.height};
    PixelLevels out;
    out.SecurePixels({rect, rect, rect});
    std::size_t i = 0;
    for (std::int32_t y = 0; y < levels.height; ++y)
        for (std::int32_t x = 0; x < levels.width; ++x)
            out.at(0, x, y) = levels.levels[i++];
    return out;
}

std::string columnStringOf(const RegionLevels& levels, std::int32_t threshold, std::int32_t mask)
{
    std::string columns;
    BinarizeRegion(pixelLevelsOf(levels), 0, CaptureRegionRect{0, 0, levels.width, levels.height}, threshold, mask,
                   columns);
    return columns;
}

} // namespace

RegionLevels regionLevelsOf(const CaptureBitmap& image, const CaptureRegionRect& rect)
{
    PixelLevels levels;
    levels.SecurePixels({rect, rect, rect});
    FillPixelLevels(levels, 0, rect, image);
    return regionLevels(levels, 0, rect);
}

RecognitionResult readRegionLevels(const Settings& settings, int region, const RegionLevels& levels)
{
    const auto r = static_cast<std::size_t>(region);
    if (settings.Reading.at(r).Mode == ReadingMode::Shapes)
        return shapeRecognition(region, binarizeGrid(levels, settings.BinaryThreshold[r], settings.BinaryMask[r]),
                                settings.Reading[r], false);
    const std::string columns = columnStringOf(levels, settings.BinaryThreshold[r], settings.BinaryMask[r]);
    return RecognizeNumber(region, recognizerInput(settings, region, columns));
}

RegionLearner::RegionLearner(const Settings& settings, int region)
    : m_region(region), m_settings(settings), m_rect(settings.CaptureRegion.at(static_cast<std::size_t>(region))),
      m_priorThreshold(settings.BinaryThreshold[static_cast<std::size_t>(region)]),
      m_priorMask(settings.BinaryMask[static_cast<std::size_t>(region)]), m_threshold(m_priorThreshold),
      m_mask(m_priorMask), m_mode(settings.Reading[static_cast<std::size_t>(region)].Mode)
{
}

Settings RegionLearner::settingsFor(std::int32_t threshold, std::int32_t mask) const
{
    Settings s = m_settings;
    const auto r = static_cast<std::size_t>(m_region);
    if (threshold != m_priorThreshold || mask != m_priorMask) {
        // Templates and shapes of another binarisation tell nothing about this one.
        s.PatternStrings[r] = PatternSet{};
        s.Reading[r] = RegionReading{};
    }
    s.BinaryThreshold[r] = threshold;
    s.BinaryMask[r] = mask;
    return s;
}

RegionLearner::Attempt RegionLearner::attempt(std::int32_t threshold, std::int32_t mask) const
{
    const Settings s = settingsFor(threshold, mask);
    const auto r = static_cast<std::size_t>(m_region);
    Attempt a{std::nullopt, ShapeLearner(s.Reading[r].Mode == ReadingMode::Shapes ? s.Reading[r] : RegionReading{}),
              ReadingMode::Exact, {}, false};
    // A region taught as shapes before stays so: its screens did not fit exact templates.
    bool exact = m_rect.SizeY <= kExactRows && s.Reading[r].Mode == ReadingMode::Exact;
    bool exactFailedLast = false;
    if (exact) {
        a.exact.emplace(s, m_region);
        for (const Sample& sample : m_samples) {
            a.last = a.exact->addColumns(columnStringOf(sample.levels, threshold, mask), sample.digits);
            if (!a.last.accepted()) {
                exact = false;
                exactFailedLast = &sample == &m_samples.back();
                break;
            }
        }
    }
    if (exact) {
        a.ok = true;
        return a;
    }
    a.exact.reset();
    a.mode = ReadingMode::Shapes;
    LearnOutcome exactRefusal = a.last;
    for (const Sample& sample : m_samples) {
        std::vector<InkGrid> alternates;
        for (const std::int32_t shift : {-kAlternateShift, kAlternateShift})
            if (threshold + shift > 0 && threshold + shift < 255)
                alternates.push_back(binarizeGrid(sample.levels, threshold + shift, mask));
        a.last = a.shapes.add(binarizeGrid(sample.levels, threshold, mask), sample.digits, std::move(alternates));
        if (!a.last.accepted()) {
            // For the screen the exact templates fitted no more, theirs is the clearer reason.
            if (exactFailedLast && &sample == &m_samples.back())
                a.last = exactRefusal;
            return a;
        }
    }
    a.ok = true;
    return a;
}

LearnOutcome RegionLearner::add(const CaptureBitmap& image, std::string_view number)
{
    const std::optional<std::string> digits = numberDigits(number);
    LearnOutcome refused;
    if (!digits) {
        refused.refusal = LearnRefusal::NotANumber;
        return refused;
    }
    Sample sample;
    try {
        sample.levels = regionLevelsOf(image, m_rect);
    } catch (const RuntimeError&) {
        refused.refusal = LearnRefusal::OutsideImage;
        return refused;
    }
    sample.digits = *digits;
    m_samples.push_back(std::move(sample));

    Attempt first = attempt(m_threshold, m_mask);
    if (first.ok) {
        m_mode = first.mode;
        m_best = std::move(first);
        return m_best->last;
    }
    // The region's threshold does not separate the digits: look for the widest range of
    // thresholds that does and take its middle, which a change of brightness moves least.
    std::vector<std::int32_t> fitting;
    std::vector<Attempt> attempts;
    for (std::int32_t t = kFirstProposal; t <= kLastProposal; t += kProposalStep) {
        Attempt a = attempt(t, -1);
        if (a.ok) {
            fitting.push_back(t);
            attempts.push_back(std::move(a));
        }
    }
    std::size_t bestStart = 0;
    std::size_t bestLength = 0;
    for (std::size_t i = 0; i < fitting.size();) {
        std::size_t j = i + 1;
        while (j < fitting.size() && fitting[j] == fitting[j - 1] + kProposalStep)
            ++j;
        if (j - i > bestLength) {
            bestStart = i;
            bestLength = j - i;
        }
        i = j;
    }
    if (bestLength == 0) {
        m_samples.pop_back();
        return first.last;
    }
    const std::size_t chosen = bestStart + (bestLength - 1) / 2;
    m_threshold = fitting[chosen];
    m_mask = -1;
    m_mode = attempts[chosen].mode;
    m_best = std::move(attempts[chosen]);
    return m_best->last;
}

bool RegionLearner::replacedPrior() const
{
    const auto r = static_cast<std::size_t>(m_region);
    // The glyphs the meter comes with were never taught: giving them up is no news.
    const bool untaught = m_settings.PatternStrings[r] == defaultPatternStrings()[r] &&
                          m_settings.Reading[r] == RegionReading{} &&
                          m_settings.ReferenceSize[r].Width == Settings{}.ReferenceSize[r].Width;
    if (!m_best || untaught)
        return false;
    if (thresholdProposed() || m_mode != m_settings.Reading[r].Mode)
        return true;
    return m_best->exact ? m_best->exact->replacedPrior() : m_best->shapes.replacedPrior();
}

bool RegionLearner::ambiguous() const
{
    return m_best && m_best->exact && m_best->exact->ambiguous();
}

bool RegionLearner::seen(int glyph) const
{
    if (!m_best)
        return false;
    if (m_best->exact)
        return m_best->exact->seen(glyph);
    return m_best->shapes.seen(glyph == kEndMarkGlyph ? kShapeEndMark : glyph);
}

std::string RegionLearner::missing() const
{
    Settings s = m_settings;
    applyTo(s);
    const auto r = static_cast<std::size_t>(m_region);
    if (s.Reading[r].Mode == ReadingMode::Shapes)
        return missingShapeDigits(s.Reading[r]);
    // Templates emptied, cut or mistyped read no more than missing ones.
    std::string out;
    const PatternSet& patterns = s.PatternStrings[r];
    for (std::size_t d = 0; d < 10; ++d) {
        PatternSet one;
        one.fill(patterns[d]);
        if (!wholeTemplateSet(one, s.ReferenceSize[r].Width))
            out += static_cast<char>('0' + d);
    }
    return out;
}

std::int32_t RegionLearner::glyphSize() const
{
    const auto r = static_cast<std::size_t>(m_region);
    if (!m_best)
        return m_settings.ReferenceSize[r].Width;
    return m_best->exact ? m_best->exact->glyphWidth() : m_best->shapes.digitHeight();
}

std::optional<std::int32_t> RegionLearner::separatorWidth() const
{
    if (!m_best)
        return std::nullopt;
    if (m_best->exact)
        return m_best->exact->separatorWidth();
    if (m_best->shapes.seen(kShapeSeparator))
        return 1;
    return std::nullopt;
}

RecognitionResult RegionLearner::readBack(std::size_t image) const
{
    Settings s = m_settings;
    applyTo(s);
    return readRegionLevels(s, m_region, m_samples.at(image).levels);
}

void RegionLearner::applyTo(Settings& settings) const
{
    if (!m_best)
        return;
    const auto r = static_cast<std::size_t>(m_region);
    settings.BinaryThreshold[r] = m_threshold;
    settings.BinaryMask[r] = m_mask;
    if (m_best->exact) {
        m_best->exact->applyTo(settings);
        return;
    }
    settings.Reading[r] = m_best->shapes.reading();
    settings.ReferenceSize[r].Height = std::max(1, m_best->shapes.digitHeight());
}

} // namespace tvx
