#include "recognition/TemplateLearner.h"

#include "base/Errors.h"
#include "config/PatternColumns.h"
#include "recognition/Binarize.h"
#include "recognition/PixelLevels.h"

#include <algorithm>
#include <bit>

namespace tvx {
namespace {

constexpr std::int32_t kMinWidth = 3;
constexpr std::int32_t kMaxWidth = 32;
constexpr std::size_t kMaxDigits = 19;
constexpr int kDigitsPerGroup = 3;
// Layouts kept between images; more than enough for the phases and widths that a few
// digits leave open.
constexpr std::size_t kKept = 24;
// A wide noisy region fits a great many layouts; only the most plausible are worth
// reading back, so the candidates are cut down as they come.
constexpr std::size_t kPruneAt = 8192;
constexpr std::size_t kPruneTo = 1024;

bool hasInk(const GlyphColumns& columns, std::int32_t first, std::int32_t count)
{
    return std::any_of(columns.begin() + first, columns.begin() + first + count,
                       [](std::uint16_t c) { return c != 0; });
}

// Digits from the left, a separator before every group of three counted from the right.
GlyphLayout place(std::int32_t width, std::int32_t separatorWidth, std::int32_t start, std::size_t digits)
{
    GlyphLayout layout;
    layout.width = width;
    layout.separatorWidth = separatorWidth;
    std::int32_t x = start;
    for (std::size_t k = 0; k < digits; ++k) {
        if (k > 0 && separatorWidth > 0 && (digits - k) % kDigitsPerGroup == 0) {
            layout.separatorColumns.push_back(x);
            x += separatorWidth;
        }
        layout.digitColumns.push_back(x);
        x += width;
    }
    layout.endColumn = x;
    return layout;
}

// Ink pixels that touch across the edge before column b: a stroke cut by a cell edge.
std::int64_t crossing(const GlyphColumns& columns, std::int32_t b)
{
    if (b <= 0 || b >= static_cast<std::int32_t>(columns.size()))
        return 0;
    return std::popcount(static_cast<unsigned>(columns[static_cast<std::size_t>(b - 1)] &
                                               columns[static_cast<std::size_t>(b)]));
}

std::int64_t startSum(const std::vector<GlyphLayout>& layouts)
{
    std::int64_t sum = 0;
    for (const GlyphLayout& layout : layouts)
        sum += layout.digitColumns.front();
    return sum;
}

// A glyph without the blank columns on either side: layouts that differ only in the side
// a glyph's spacing is on read every screen alike.
GlyphColumns inkOf(const GlyphColumns& columns)
{
    const auto first = std::find_if(columns.begin(), columns.end(), [](std::uint16_t c) { return c != 0; });
    const auto last = std::find_if(columns.rbegin(), columns.rend(), [](std::uint16_t c) { return c != 0; }).base();
    return first < last ? GlyphColumns(first, last) : GlyphColumns{};
}

LearnOutcome refusal(LearnRefusal why)
{
    LearnOutcome out;
    out.refusal = why;
    return out;
}

} // namespace

std::optional<std::string> numberDigits(std::string_view text)
{
    std::string digits;
    for (const char c : text) {
        if (c >= '0' && c <= '9')
            digits += c;
        else if (c != ',' && c != '.' && c != ' ' && c != '\'')
            return std::nullopt;
    }
    if (digits.empty() || digits.size() > kMaxDigits)
        return std::nullopt;
    return digits;
}

std::string regionColumnString(const CaptureBitmap& image, const CaptureRegionRect& rect, std::int32_t threshold,
                               std::int32_t mask)
{
    PixelLevels levels;
    levels.SecurePixels({rect, rect, rect});
    FillPixelLevels(levels, 0, rect, image);
    std::string columns;
    BinarizeRegion(levels, 0, rect, threshold, mask, columns);
    return columns;
}

TemplateLearner::TemplateLearner(const Settings& settings, int region) : m_region(region)
{
    if (region < 0 || region >= kRegionCount)
        throw RuntimeError(ErrorNumber::SubscriptOutOfRange);
    const auto r = static_cast<std::size_t>(region);
    m_rect = settings.CaptureRegion[r];
    m_threshold = settings.BinaryThreshold[r];
    m_mask = settings.BinaryMask[r];
    m_priorWidth = settings.ReferenceSize[r].Width;
    m_priorPatterns = settings.PatternStrings[r];
    m_priorSeparator = settings.Reading[r].Separator;
}

LearnOutcome TemplateLearner::add(const CaptureBitmap& image, std::string_view number)
{
    if (!numberDigits(number))
        return refusal(LearnRefusal::NotANumber);
    std::string columns;
    try {
        columns = regionColumnString(image, m_rect, m_threshold, m_mask);
    } catch (const RuntimeError&) {
        return refusal(LearnRefusal::OutsideImage);
    }
    return addColumns(std::move(columns), number);
}

LearnOutcome TemplateLearner::addColumns(std::string columnString, std::string_view number)
{
    const std::optional<std::string> digits = numberDigits(number);
    if (!digits)
        return refusal(LearnRefusal::NotANumber);
    std::optional<GlyphColumns> columns = decodePatternColumns(columnString);
    if (!columns)
        return refusal(LearnRefusal::OutsideImage);
    const Sample sample{std::move(columnString), *std::move(columns), *digits};

    if (!m_hypotheses.empty())
        return addTo(m_hypotheses, sample);
    // The templates taught before bind the first screen; when it cannot agree with them
    // they give way to what it shows.
    if (const std::optional<Hypothesis> taught = priorHypothesis()) {
        const LearnOutcome kept = addTo({*taught}, sample);
        if (kept.accepted())
            return kept;
    }
    return addTo(std::vector<Hypothesis>(1), sample);
}

std::optional<TemplateLearner::Hypothesis> TemplateLearner::priorHypothesis() const
{
    Hypothesis h;
    h.width = m_priorWidth;
    h.seeded = true;
    bool any = false;
    for (std::size_t k = 0; k < kPatternCount; ++k) {
        const auto columns = decodePatternColumns(m_priorPatterns[k]);
        if (!columns || columns->empty() || columns->size() != static_cast<std::size_t>(m_priorWidth))
            continue;
        h.glyphs[k] = *columns;
        h.fromPrior[k] = true;
        any = true;
    }
    if (const auto separator = decodePatternColumns(m_priorSeparator); separator && !separator->empty()) {
        h.glyphs[kSeparatorGlyph] = *separator;
        h.fromPrior[kSeparatorGlyph] = true;
        h.separatorWidth = static_cast<std::int32_t>(separator->size());
    }
    return any ? std::optional<Hypothesis>(std::move(h)) : std::nullopt;
}

LearnOutcome TemplateLearner::addTo(const std::vector<Hypothesis>& bases, const Sample& sample)
{
    std::vector<Hypothesis> candidates = extendAll(bases, sample);
    if (candidates.empty())
        return refuse(sample);
    keepBest(candidates, candidates.size());

    std::vector<const Sample*> all;
    for (const Sample& s : m_samples)
        all.push_back(&s);
    all.push_back(&sample);
    std::vector<Hypothesis> kept;
    std::optional<std::string> firstMisread;
    for (Hypothesis& candidate : candidates) {
        if (kept.size() == kKept)
            break;
        const bool duplicate = std::any_of(kept.begin(), kept.end(), [&](const Hypothesis& k) {
            return k.width == candidate.width && k.glyphs == candidate.glyphs;
        });
        if (duplicate)
            continue;
        std::string misread;
        if (readsBack(candidate, all, &misread))
            kept.push_back(std::move(candidate));
        else if (!firstMisread)
            firstMisread = misread;
    }
    if (kept.empty()) {
        LearnOutcome out = refusal(LearnRefusal::ReadBack);
        out.readBack = firstMisread.value_or("");
        return out;
    }
    m_samples.push_back(sample);
    m_hypotheses = std::move(kept);
    LearnOutcome out;
    out.layout = m_hypotheses.front().layouts.back();
    return out;
}

std::vector<TemplateLearner::Hypothesis> TemplateLearner::extendAll(const std::vector<Hypothesis>& bases,
                                                                    const Sample& sample) const
{
    std::vector<Hypothesis> out;
    const auto size = static_cast<std::int32_t>(sample.columns.size());
    const std::size_t n = sample.digits.size();
    const bool showsSeparators = n > kDigitsPerGroup;
    for (const Hypothesis& base : bases) {
        const std::int32_t firstWidth = base.width > 0 ? base.width : kMinWidth;
        const std::int32_t lastWidth = base.width > 0 ? base.width : kMaxWidth;
        for (std::int32_t w = firstWidth; w <= lastWidth; ++w) {
            std::int32_t firstSeparator = 0;
            std::int32_t lastSeparator = 0;
            if (showsSeparators) {
                firstSeparator = base.separatorWidth >= 0 ? base.separatorWidth : 0;
                lastSeparator = base.separatorWidth >= 0 ? base.separatorWidth : w;
            }
            for (std::int32_t sep = firstSeparator; sep <= lastSeparator; ++sep) {
                for (std::int32_t start = 0;; ++start) {
                    const GlyphLayout layout = place(w, sep, start, n);
                    // The recogniser never tries a glyph touching the right edge.
                    if (layout.endColumn > size - w - 1)
                        break;
                    const bool inked =
                        hasInk(sample.columns, layout.endColumn, w) &&
                        std::all_of(layout.digitColumns.begin(), layout.digitColumns.end(),
                                    [&](std::int32_t x) { return hasInk(sample.columns, x, w); });
                    if (!inked)
                        continue;
                    if (!fitsCheaply(base, layout, sample))
                        continue;
                    Hypothesis h = base;
                    h.width = w;
                    if (showsSeparators)
                        h.separatorWidth = sep;
                    if (!extend(h, layout, sample))
                        out.push_back(std::move(h));
                    if (out.size() >= kPruneAt)
                        keepBest(out, kPruneTo);
                }
            }
        }
    }
    return out;
}

bool TemplateLearner::fitsCheaply(const Hypothesis& base, const GlyphLayout& layout, const Sample& sample) const
{
    // Without copying anything: each digit cell against what the base knows of it, or
    // against the same digit earlier in this image.
    const auto cellAt = [&](std::int32_t x) { return sample.columns.begin() + x; };
    const std::int32_t w = layout.width;
    for (std::size_t k = 0; k < layout.digitColumns.size(); ++k) {
        const auto digit = static_cast<std::size_t>(sample.digits[k] - '0');
        const GlyphColumns& known = base.glyphs[digit];
        const auto cell = cellAt(layout.digitColumns[k]);
        if (!known.empty() && !std::equal(known.begin(), known.end(), cell))
            return false;
        const std::size_t earlier = sample.digits.find(sample.digits[k]);
        if (earlier < k && !std::equal(cell, cell + w, cellAt(layout.digitColumns[earlier])))
            return false;
    }
    return true;
}

std::optional<int> TemplateLearner::extend(Hypothesis& h, const GlyphLayout& layout, const Sample& sample) const
{
    const auto cell = [&](std::int32_t x, std::int32_t w) {
        return GlyphColumns(sample.columns.begin() + x, sample.columns.begin() + x + w);
    };
    const auto learn = [&](int glyph, GlyphColumns columns) {
        GlyphColumns& slot = h.glyphs[static_cast<std::size_t>(glyph)];
        if (slot.empty()) {
            // Two glyphs that look the same could not be told apart.
            for (int other = 0; other < kPatternCount && glyph < kPatternCount; ++other)
                if (other != glyph && h.glyphs[static_cast<std::size_t>(other)] == columns)
                    return false;
            slot = std::move(columns);
        } else if (slot != columns) {
            return false;
        }
        h.fromPrior[static_cast<std::size_t>(glyph)] = false;
        if (glyph < kPatternCount && h.width == m_priorWidth &&
            encodePatternColumns(slot) == m_priorPatterns[static_cast<std::size_t>(glyph)])
            ++h.agreements;
        return true;
    };

    if (h.separatorWidth >= 0 && !layout.separatorColumns.empty() && layout.separatorWidth != h.separatorWidth)
        return kSeparatorGlyph;
    for (std::size_t k = 0; k < layout.digitColumns.size(); ++k) {
        const int digit = sample.digits[k] - '0';
        if (!learn(digit, cell(layout.digitColumns[k], layout.width)))
            return digit;
        h.crossings += crossing(sample.columns, layout.digitColumns[k]);
    }
    for (const std::int32_t x : layout.separatorColumns) {
        if (!learn(kSeparatorGlyph, cell(x, layout.separatorWidth)))
            return kSeparatorGlyph;
        h.crossings += crossing(sample.columns, x);
    }
    if (!learn(kEndMarkGlyph, cell(layout.endColumn, layout.width)))
        return kEndMarkGlyph;
    h.crossings += crossing(sample.columns, layout.endColumn) + crossing(sample.columns, layout.endColumn + layout.width);
    h.layouts.push_back(layout);
    return std::nullopt;
}

bool TemplateLearner::better(const Hypothesis& a, const Hypothesis& b) const
{
    // Agreement with the present templates first: re-learning a known font keeps it.
    if (a.agreements != b.agreements)
        return a.agreements > b.agreements;
    // Then cell edges in the gaps between strokes.
    if (a.crossings != b.crossings)
        return a.crossings < b.crossings;
    // The narrowest width whose cells hold the glyphs: a wider one only adds blank.
    if (a.width != b.width)
        return a.width < b.width;
    // Bitmap fonts mostly leave their spacing on the right of a glyph: of layouts that
    // fit equally, take the one whose cells start latest.
    return startSum(a.layouts) > startSum(b.layouts);
}

void TemplateLearner::keepBest(std::vector<Hypothesis>& hypotheses, std::size_t count) const
{
    std::stable_sort(hypotheses.begin(), hypotheses.end(),
                     [this](const Hypothesis& a, const Hypothesis& b) { return better(a, b); });
    if (hypotheses.size() > count)
        hypotheses.erase(hypotheses.begin() + static_cast<std::ptrdiff_t>(count), hypotheses.end());
}

bool TemplateLearner::keepsPrior(const Hypothesis& h) const
{
    return h.seeded;
}

PatternSet TemplateLearner::patternsOf(const Hypothesis& h) const
{
    PatternSet patterns = keepsPrior(h) ? m_priorPatterns : PatternSet{};
    for (std::size_t k = 0; k < kPatternCount; ++k)
        if (!h.glyphs[k].empty())
            patterns[k] = encodePatternColumns(h.glyphs[k]);
    return patterns;
}

std::string TemplateLearner::separatorOf(const Hypothesis& h) const
{
    if (h.separatorWidth > 0)
        return encodePatternColumns(h.glyphs[kSeparatorGlyph]);
    if (h.separatorWidth == 0)
        return {};
    return keepsPrior(h) ? m_priorSeparator : std::string{};
}

bool TemplateLearner::readsBack(const Hypothesis& h, const std::vector<const Sample*>& samples,
                                std::string* misread) const
{
    const PatternSet patterns = patternsOf(h);
    const std::string separator = separatorOf(h);
    for (const Sample* sample : samples) {
        try {
            const RecognitionResult result = RecognizeNumber(
                m_region, RecognizerInput{sample->columnString, &patterns, h.width, m_rect.SizeX, separator});
            if (result.digits != sample->digits) {
                *misread = result.digits;
                return false;
            }
        } catch (const RuntimeError&) {
            misread->clear();
            return false;
        }
    }
    return true;
}

LearnOutcome TemplateLearner::refuse(const Sample& sample) const
{
    LearnOutcome out = refusal(LearnRefusal::NoSplit);
    if (m_hypotheses.empty())
        return out;
    std::vector<Hypothesis> alone = extendAll(std::vector<Hypothesis>(1), sample);
    if (alone.empty())
        return out;
    keepBest(alone, alone.size());
    const Hypothesis& learntBest = m_hypotheses.front();
    out.refusal = LearnRefusal::Contradiction;
    out.learntWidth = learntBest.width;
    const auto same = std::find_if(alone.begin(), alone.end(),
                                   [&](const Hypothesis& h) { return h.width == learntBest.width; });
    if (same == alone.end()) {
        out.imageWidth = alone.front().width;
        return out;
    }
    out.imageWidth = same->width;
    Hypothesis probe = learntBest;
    out.glyph = extend(probe, same->layouts.back(), sample).value_or(kSeparatorGlyph);
    return out;
}

bool TemplateLearner::ambiguous() const
{
    if (m_hypotheses.empty())
        return false;
    const Hypothesis& best = m_hypotheses.front();
    return std::any_of(m_hypotheses.begin() + 1, m_hypotheses.end(), [&best](const Hypothesis& h) {
        if (h.width != best.width)
            return true;
        for (std::size_t k = 0; k < kLearntGlyphCount; ++k)
            if (inkOf(h.glyphs[k]) != inkOf(best.glyphs[k]))
                return true;
        return false;
    });
}

std::int32_t TemplateLearner::glyphWidth() const
{
    return learnt() ? m_hypotheses.front().width : m_priorWidth;
}

std::optional<std::int32_t> TemplateLearner::separatorWidth() const
{
    if (!learnt() || m_hypotheses.front().separatorWidth < 0)
        return std::nullopt;
    return m_hypotheses.front().separatorWidth;
}

bool TemplateLearner::seen(int glyph) const
{
    return !this->glyph(glyph).empty() && !m_hypotheses.front().fromPrior[static_cast<std::size_t>(glyph)];
}

const GlyphColumns& TemplateLearner::glyph(int glyph) const
{
    static const GlyphColumns none;
    if (!learnt() || glyph < 0 || glyph >= kLearntGlyphCount)
        return none;
    return m_hypotheses.front().glyphs[static_cast<std::size_t>(glyph)];
}

PatternSet TemplateLearner::patterns() const
{
    return learnt() ? patternsOf(m_hypotheses.front()) : m_priorPatterns;
}

const GlyphLayout& TemplateLearner::layout(std::size_t image) const
{
    if (!learnt())
        throw RuntimeError(ErrorNumber::SubscriptOutOfRange);
    return m_hypotheses.front().layouts.at(image);
}

RecognitionResult TemplateLearner::readBack(std::size_t image) const
{
    const PatternSet learntPatterns = patterns();
    const std::string separator = separatorTemplate();
    return RecognizeNumber(m_region, RecognizerInput{m_samples.at(image).columnString, &learntPatterns, glyphWidth(),
                                                     m_rect.SizeX, separator});
}

void TemplateLearner::applyTo(Settings& settings) const
{
    if (!learnt())
        return;
    const auto r = static_cast<std::size_t>(m_region);
    settings.ReferenceSize[r].Width = glyphWidth();
    settings.PatternStrings[r] = patterns();
    settings.Reading[r].Mode = ReadingMode::Exact;
    settings.Reading[r].Separator = separatorTemplate();
    settings.Reading[r].Shapes.clear();
    settings.Reading[r].EndGap = 0;
}

std::string TemplateLearner::separatorTemplate() const
{
    return learnt() ? separatorOf(m_hypotheses.front()) : m_priorSeparator;
}

bool TemplateLearner::replacedPrior() const
{
    const bool anyPrior = std::any_of(m_priorPatterns.begin(), m_priorPatterns.end(),
                                      [](const std::string& p) { return !p.empty(); });
    return learnt() && anyPrior && !keepsPrior(m_hypotheses.front());
}

} // namespace tvx
