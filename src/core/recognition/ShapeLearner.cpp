#include "recognition/ShapeLearner.h"

#include "recognition/ShapeReader.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <optional>

namespace tvx {
namespace {

constexpr int kGroup = 3;
// A shape this near one already kept adds nothing.
constexpr double kSameShape = 0.02;
constexpr std::size_t kShapesPerGlyph = 8;
// Ways of placing the numbers of all screens tried before giving up.
constexpr std::size_t kMaxSearch = 4000;
// Touching digits cut at pitches this far apart are not one font.
constexpr double kPitchSpread = 0.1;
// Glyphs this alike could not be told apart.
constexpr double kIndistinct = 0.01;
// One digit drawn twice on a screen differs at most this much, however it is scaled.
constexpr double kSameDigitAtMost = 0.35;
// A glyph may differ from its taught shapes by half as much again as they differ among
// themselves, and by less than three quarters of what sets two glyphs apart.
constexpr double kToleranceSpread = 1.5;
constexpr double kToleranceFloor = 0.03;
constexpr double kToleranceApart = 0.75;
constexpr double kToleranceWhole = 0.5;
constexpr std::array<int, 10> kDigits{0, 1, 2, 3, 4, 5, 6, 7, 8, 9};

std::int32_t toleranceFor(const std::vector<GlyphShape>& shapes)
{
    double spread = 0;
    double apart = kIncomparable;
    for (std::size_t i = 0; i < shapes.size(); ++i) {
        double nearestSame = kIncomparable;
        for (std::size_t j = 0; j < shapes.size(); ++j) {
            if (i == j)
                continue;
            const double d = shapeDistance(shapes[i], shapes[j]);
            if (shapes[i].glyph == shapes[j].glyph)
                nearestSame = std::min(nearestSame, d);
            else
                apart = std::min(apart, d);
        }
        if (nearestSame < kIncomparable)
            spread = std::max(spread, nearestSame);
    }
    double tolerance = std::min(kToleranceSpread * spread + kToleranceFloor, kToleranceApart * apart);
    // With every digit taught, a piece is nearest its own digit however it falls: half of
    // what sets two glyphs apart cannot make it another. Until then an untaught digit
    // could be near a taught one, so the shapes' own spread is all that is allowed.
    const bool everyDigit = std::all_of(kDigits.begin(), kDigits.end(), [&](int d) {
        return std::any_of(shapes.begin(), shapes.end(), [d](const GlyphShape& s) { return s.glyph == d; });
    });
    if (everyDigit)
        tolerance = std::max(tolerance, kToleranceWhole * apart);
    return static_cast<std::int32_t>(tolerance * 1000);
}

// A blank stretch ends a number when it is wider than any gap inside one and than four
// fifths of the digits' height: a narrow "1" in a wide cell leaves gaps of half that.
std::int32_t endGapFor(std::int32_t innerGap, std::int32_t height)
{
    return std::max(innerGap + 2, (4 * height + 4) / 5);
}

bool isSeparatorBoundary(std::size_t digits, std::size_t k)
{
    return k > 0 && (digits - k) % kGroup == 0;
}

} // namespace

struct ShapeLearner::Placement {
    std::shared_ptr<const std::vector<InkPiece>> pieces; // the screen's, touching glyphs cut apart
    std::int32_t agreements = 0;          // digits the shapes known so far read as they are
    std::size_t start = 0;                // first digit piece
    std::vector<std::size_t> digitPieces; // one per digit
    std::vector<std::size_t> separatorPieces;
    std::ptrdiff_t endPiece = -1;         // the end mark, if a piece ends the number
    std::int32_t blankEnd = 0;            // else the blank columns before the next piece (0: the edge)
    std::int32_t innerGap = 0;            // the widest blank between the number's pieces
    std::int32_t height = 0;              // of the tallest digit
    double pitch = 0;                     // columns a digit where touching ones were cut apart (0: none)
};

ShapeLearner::ShapeLearner(RegionReading prior) : m_prior(std::move(prior)), m_reading(m_prior) {}

namespace {

// Every way the pieces can be the number from the first piece `from` to `to` (all when
// they are the whole list): its digits one piece each, a low piece where a group of three
// begins taken as a separator, then an end mark or enough blank.
std::vector<ShapeLearner::Placement> placements(const std::shared_ptr<const std::vector<InkPiece>>& list,
                                                const std::string& digits, std::int32_t width, std::size_t from,
                                                std::size_t to)
{
    using Placement = ShapeLearner::Placement;
    const std::vector<InkPiece>& pieces = *list;
    std::vector<Placement> out;
    for (std::size_t start = from; start < std::min(to, pieces.size()); ++start) {
        Placement p;
        p.pieces = list;
        p.start = start;
        std::size_t i = start;
        bool fits = true;
        for (std::size_t k = 0; k < digits.size() && fits; ++k) {
            // A piece much lower than the digit before it, where a group begins, is a separator.
            if (isSeparatorBoundary(digits.size(), k) && i < pieces.size() && !p.digitPieces.empty() &&
                pieces[i].shape.height * 5 < pieces[p.digitPieces.back()].shape.height * 3) {
                p.separatorPieces.push_back(i);
                ++i;
            }
            if (i >= pieces.size())
                return out; // no later start has pieces enough either
            if (pieces[i].shape.rows.empty())
                fits = false;
            else
                p.digitPieces.push_back(i++);
        }
        if (!fits)
            continue;
        std::int32_t tallest = 0;
        for (const std::size_t d : p.digitPieces)
            tallest = std::max(tallest, pieces[d].shape.height);
        // Digits stand on one line at one height; a narrow "1" is as tall as the rest.
        if (std::any_of(p.digitPieces.begin(), p.digitPieces.end(),
                        [&](std::size_t d) { return pieces[d].shape.height * 4 < tallest * 3; }))
            continue;
        for (std::size_t j = start + 1; j < i; ++j)
            p.innerGap = std::max(p.innerGap, pieces[j].left - pieces[j - 1].right);
        p.height = tallest;
        const std::int32_t lastRight = pieces[i - 1].right;
        if (i < pieces.size()) {
            const std::int32_t gapAfter = pieces[i].left - lastRight;
            if (gapAfter < endGapFor(p.innerGap, tallest)) {
                if (pieces[i].shape.rows.empty())
                    continue;
                p.endPiece = static_cast<std::ptrdiff_t>(i);
            } else {
                p.blankEnd = gapAfter;
            }
        } else if (width - lastRight < edgeRoom(p.innerGap)) {
            continue; // the number touches the edge: it may go on beyond it
        }
        out.push_back(std::move(p));
    }
    return out;
}

// The ways of reading a screen's pieces as the number, touching digits included: where the
// pieces from one to another are fewer than the digits, those wider than the rest hold
// several, in proportion to their width.
std::vector<ShapeLearner::Placement> allPlacements(const InkGrid& grid, const std::vector<InkPiece>& pieces,
                                                   const std::string& digits, std::int32_t knownPitch)
{
    auto whole = std::make_shared<const std::vector<InkPiece>>(pieces);
    std::vector<ShapeLearner::Placement> out = placements(whole, digits, grid.width(), 0, pieces.size());
    const auto n = static_cast<std::int32_t>(digits.size());
    for (std::size_t i = 0; i < pieces.size(); ++i)
        for (std::size_t j = i; j < pieces.size() && static_cast<std::int32_t>(j - i + 1) < n; ++j) {
            // Every share of the digits among the pieces that some one digit pitch gives; the
            // pitch taught before, when there is one.
            std::int32_t widest = 0;
            for (std::size_t k = i; k <= j; ++k)
                widest = std::max(widest, pieces[k].right - pieces[k].left);
            std::vector<std::vector<std::int32_t>> shares;
            for (double pitch = knownPitch > 0 ? knownPitch / 100.0 : 2.0; pitch <= widest; pitch += 0.25) {
                std::vector<std::int32_t> counts;
                std::int32_t total = 0;
                for (std::size_t k = i; k <= j; ++k) {
                    counts.push_back(cellsIn(pieces[k], static_cast<std::int32_t>(pitch * 100)));
                    total += counts.back();
                }
                if (total == n && std::find(shares.begin(), shares.end(), counts) == shares.end())
                    shares.push_back(std::move(counts));
                if (knownPitch > 0)
                    break;
            }
            for (const std::vector<std::int32_t>& counts : shares) {
                auto split =
                    std::make_shared<std::vector<InkPiece>>(pieces.begin(), pieces.begin() + static_cast<std::ptrdiff_t>(i));
                std::int32_t cutWidth = 0;
                std::int32_t cutCells = 0;
                for (std::size_t k = i; k <= j; ++k) {
                    const std::vector<InkPiece> cells = splitPiece(grid, pieces[k], counts[k - i]);
                    if (cells.size() != static_cast<std::size_t>(counts[k - i]))
                        break;
                    if (counts[k - i] > 1) {
                        cutWidth += pieces[k].right - pieces[k].left;
                        cutCells += counts[k - i];
                    }
                    split->insert(split->end(), cells.begin(), cells.end());
                }
                if (split->size() != i + static_cast<std::size_t>(n) || cutCells == 0)
                    continue;
                split->insert(split->end(), pieces.begin() + static_cast<std::ptrdiff_t>(j + 1), pieces.end());
                std::vector<ShapeLearner::Placement> more = placements(split, digits, grid.width(), i, i + 1);
                for (ShapeLearner::Placement& p : more)
                    p.pitch = static_cast<double>(cutWidth) / cutCells;
                out.insert(out.end(), std::make_move_iterator(more.begin()), std::make_move_iterator(more.end()));
            }
        }
    return out;
}

// The glyph of a piece as another binarisation draws it: in the same columns where its
// neighbours touch it, else with as much of the blank beside it as that ink takes.
std::optional<GlyphShape> alternateShape(const InkGrid& alternate, const std::vector<InkPiece>& pieces, std::size_t index)
{
    const InkPiece& piece = pieces[index];
    const bool touchesLeft = index > 0 && pieces[index - 1].right == piece.left;
    const bool touchesRight = index + 1 < pieces.size() && pieces[index + 1].left == piece.right;
    std::int32_t left = piece.left;
    std::int32_t right = piece.right;
    const auto columnInk = [&](std::int32_t x) {
        for (std::int32_t y = 0; y < alternate.height(); ++y)
            if (alternate.at(x, y))
                return true;
        return false;
    };
    if (!touchesLeft && left > 0 && (index == 0 || pieces[index - 1].right < left - 1) && columnInk(left - 1))
        --left;
    if (!touchesRight && right < alternate.width() && (index + 1 == pieces.size() || pieces[index + 1].left > right + 1) &&
        columnInk(right))
        ++right;
    while (left < right && !columnInk(left))
        ++left;
    while (right > left && !columnInk(right - 1))
        --right;
    if (right <= left)
        return std::nullopt;
    InkPiece cell = cellPiece(alternate, left, right);
    if (cell.shape.rows.empty())
        return std::nullopt;
    return cell.shape;
}

void addShape(std::vector<GlyphShape>& shapes, GlyphShape shape)
{
    std::size_t same = 0;
    for (const GlyphShape& s : shapes) {
        if (s.glyph != shape.glyph)
            continue;
        if (shapeDistance(s, shape) <= kSameShape)
            return;
        ++same;
    }
    if (same < kShapesPerGlyph)
        shapes.push_back(std::move(shape));
}

} // namespace

struct ShapeLearner::State {
    std::vector<GlyphShape> shapes;
    double tolerance = 0; // of the shapes so far, for telling whether a piece is one of them
    std::int32_t innerGap = 0;
    std::int32_t minBlankEnd = 0; // 0: no number ended in blank before more ink
    bool blankEnds = false;       // some number ended in blank, not an end mark
    std::int32_t priorEndGap = 0;
    std::int32_t height = 0;
    double pitch = 0; // where touching digits were cut apart
    std::vector<const Placement*> chosen;
};

struct ShapeLearner::Search {
    std::size_t tried = 0;
    std::vector<std::vector<Placement>> candidates; // per sample
    RegionReading result;
    std::int32_t height = 0;
    LearnOutcome failure; // why the last screen does not fit
    LearnOutcome accepted;
};

bool ShapeLearner::solve(const RegionReading& prior, Search& search) const
{
    search.failure.refusal = LearnRefusal::NoSplit;
    for (const Sample& sample : m_samples)
        search.candidates.push_back(allPlacements(sample.grid, sample.pieces, sample.digits, prior.Pitch));
    State start;
    start.shapes = prior.Shapes;
    start.tolerance = prior.Tolerance / 1000.0;
    start.priorEndGap = prior.EndGap;
    start.pitch = prior.Pitch / 100.0;
    return extend(0, start, search);
}

bool ShapeLearner::extend(std::size_t index, const State& state, Search& search) const
{
    if (++search.tried > kMaxSearch)
        return false;
    if (index == m_samples.size()) {
        RegionReading trial;
        trial.Mode = ReadingMode::Shapes;
        trial.Shapes = state.shapes;
        trial.Tolerance = toleranceFor(state.shapes);
        trial.Pitch = static_cast<std::int32_t>(state.pitch * 100 + 0.5);
        trial.EndGap = state.blankEnds ? endGapFor(state.innerGap, state.height) : state.priorEndGap;
        if (state.minBlankEnd > 0 && state.minBlankEnd < trial.EndGap)
            return false; // the end cannot be told from a gap between digits
        for (const Sample& sample : m_samples) {
            const ShapeReading read = readShapes(sample.grid, trial);
            if (read.digits != sample.digits) {
                search.failure.refusal = LearnRefusal::ReadBack;
                search.failure.readBack = read.digits;
                return false;
            }
        }
        search.result = std::move(trial);
        search.height = state.height;
        const Placement& p = *state.chosen.back();
        const std::vector<InkPiece>& last = *p.pieces;
        search.accepted.layout.width = last[p.digitPieces.front()].shape.width;
        for (const std::size_t d : p.digitPieces)
            search.accepted.layout.digitColumns.push_back(last[d].left);
        for (const std::size_t x : p.separatorPieces)
            search.accepted.layout.separatorColumns.push_back(last[x].left);
        search.accepted.layout.endColumn = last[p.digitPieces.back()].right;
        return true;
    }

    const Sample& sample = m_samples[index];
    std::vector<Placement*> fitting;
    for (Placement& p : search.candidates[index]) {
        const std::vector<InkPiece>& pieces = *p.pieces;
        bool consistent = true;
        p.agreements = 0;
        for (std::size_t k = 0; k < p.digitPieces.size() && consistent; ++k) {
            const GlyphShape& shape = pieces[p.digitPieces[k]].shape;
            const int digit = sample.digits[k] - '0';
            const ShapeMatch m = matchShape(shape, state.shapes, state.tolerance);
            if (m.clear && m.glyph != digit) {
                consistent = false;
                if (index + 1 == m_samples.size()) {
                    search.failure.refusal = LearnRefusal::Contradiction;
                    search.failure.glyph = digit;
                }
            }
            p.agreements += m.clear ? 1 : 0;
            for (std::size_t j = 0; j < k && consistent; ++j) {
                const double d = shapeDistance(shape, pieces[p.digitPieces[j]].shape);
                const bool sameDigit = sample.digits[j] == sample.digits[k];
                if (sameDigit ? d > kSameDigitAtMost : d <= kIndistinct)
                    consistent = false;
            }
        }
        // Ink before the number must not read as a digit, or the reading would start there.
        for (std::size_t j = 0; j < p.start && consistent; ++j) {
            const ShapeMatch m = matchShape(pieces[j].shape, state.shapes, state.tolerance);
            consistent = !(m.clear && m.glyph < 10);
        }
        if (consistent)
            fitting.push_back(&p);
    }
    // What agrees with the screens before first, then the leftmost number.
    std::stable_sort(fitting.begin(), fitting.end(), [](const Placement* a, const Placement* b) {
        return a->agreements != b->agreements ? a->agreements > b->agreements : a->start < b->start;
    });

    for (const Placement* p : fitting) {
        // One font cuts at one pitch.
        if (p->pitch > 0 && state.pitch > 0 && std::abs(p->pitch - state.pitch) > kPitchSpread * state.pitch)
            continue;
        const std::vector<InkPiece>& pieces = *p->pieces;
        State next = state;
        if (next.pitch == 0)
            next.pitch = p->pitch;
        for (std::size_t k = 0; k < p->digitPieces.size(); ++k) {
            GlyphShape shape = pieces[p->digitPieces[k]].shape;
            shape.glyph = sample.digits[k] - '0';
            for (const InkGrid& alternate : sample.alternates)
                if (std::optional<GlyphShape> other = alternateShape(alternate, pieces, p->digitPieces[k])) {
                    other->glyph = shape.glyph;
                    addShape(next.shapes, *std::move(other));
                }
            addShape(next.shapes, std::move(shape));
        }
        const auto addAs = [&](std::size_t piece, int glyph) {
            GlyphShape shape = pieces[piece].shape;
            shape.glyph = glyph;
            if (!shape.rows.empty())
                addShape(next.shapes, std::move(shape));
        };
        for (const std::size_t x : p->separatorPieces)
            addAs(x, kShapeSeparator);
        if (p->endPiece >= 0)
            addAs(static_cast<std::size_t>(p->endPiece), kShapeEndMark);
        for (std::size_t j = 0; j < p->start; ++j)
            addAs(j, kShapeOther);
        next.innerGap = std::max(next.innerGap, p->innerGap);
        next.height = std::max(next.height, p->height);
        if (p->blankEnd > 0)
            next.minBlankEnd = next.minBlankEnd == 0 ? p->blankEnd : std::min(next.minBlankEnd, p->blankEnd);
        next.blankEnds = next.blankEnds || p->endPiece < 0;
        next.tolerance = toleranceFor(next.shapes) / 1000.0;
        next.chosen.push_back(p);
        if (extend(index + 1, next, search))
            return true;
    }
    return false;
}

LearnOutcome ShapeLearner::add(const InkGrid& grid, const std::string& digits, std::vector<InkGrid> alternates)
{
    m_samples.push_back(Sample{grid, digits, inkPieces(grid), std::move(alternates)});
    Search search;
    if (solve(m_prior, search)) {
        m_reading = std::move(search.result);
        m_digitHeight = search.height;
        return search.accepted;
    }
    if (!m_prior.Shapes.empty()) {
        // What was taught before gives way to the screens, and the caller says so.
        Search fresh;
        if (solve(RegionReading{}, fresh)) {
            m_prior = {};
            m_replacedPrior = true;
            m_reading = std::move(fresh.result);
            m_digitHeight = fresh.height;
            return fresh.accepted;
        }
    }
    m_samples.pop_back();
    return search.failure;
}

bool ShapeLearner::seen(int glyph) const
{
    return std::any_of(m_reading.Shapes.begin(), m_reading.Shapes.end(),
                       [glyph](const GlyphShape& s) { return s.glyph == glyph; });
}

} // namespace tvx
