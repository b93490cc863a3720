// Reading pixels: binarisation's masking modes and column groups, the walk over the columns
// with its templates, and both checked against a literal reading of the rules on random screens.
#include "base/Errors.h"
#include "recognition/Binarize.h"
#include "recognition/GlyphPainter.h"
#include "recognition/Recognizer.h"
#include "support/ExpectError.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace tvx {
namespace {

// One region of the given size whose pixels all have one level, except those set later.
struct Region {
    CaptureRegionRect rect;
    PixelLevels levels;

    Region(std::int32_t width, std::int32_t height, std::int32_t level) : rect{0, 0, width, height}
    {
        levels.SecurePixels({rect, CaptureRegionRect{}, CaptureRegionRect{}});
        for (std::int32_t x = 0; x < width; ++x)
            for (std::int32_t y = 0; y < height; ++y)
                levels.at(0, x, y) = level;
    }

    std::string binarize(std::int32_t threshold, std::int32_t mask)
    {
        std::string columns = "stale";
        BinarizeRegion(levels, 0, rect, threshold, mask, columns);
        return columns;
    }
};

TEST(BinarizeRegion, MaskingModesDecideWhichLevelsAreInk)
{
    struct Case { std::int32_t threshold, mask, level; bool ink; };
    const std::vector<Case> cases = {
        // Plain threshold (negative mask).
        {133, -1, 531, false}, {133, -1, 532, true}, {133, -1, 0, false}, {0, -1, 0, true},
        // Mask below threshold: very dark pixels count as ink too.
        {188, 34, 100, true}, {188, 34, 136, true}, {188, 34, 137, false}, {188, 34, 751, false},
        {188, 34, 752, true}, {188, 34, 0, true},
        // Mask equal to the threshold: dark pixels turn bright, so every level is ink.
        {100, 100, 0, true}, {100, 100, 400, true}, {100, 100, 401, true},
        // Mask above threshold: only the band between them is ink.
        {100, 200, 399, false}, {100, 200, 400, true}, {100, 200, 799, true}, {100, 200, 800, false},
        {100, 200, 1020, false}, {0, 200, 800, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "threshold " << c.threshold << " mask " << c.mask << " level " << c.level);
        Region region(1, 1, c.level);
        EXPECT_EQ(region.binarize(c.threshold, c.mask), c.ink ? "0001" : "0000");
    }
}

TEST(BinarizeRegion, MaskPastThirtyOneBitsOverflows)
{
    Region tall(1, 32, 0);
    tall.levels.at(0, 0, 30) = 1020;
    EXPECT_EQ(tall.binarize(133, -1), "0000");
    tall.levels.at(0, 0, 31) = 1020;
    test::expectError(ErrorNumber::Overflow, [&] { tall.binarize(133, -1); });
}

TEST(BinarizeRegion, EmptyAndOversizedRegions)
{
    Region region(2, 2, 1020);
    CaptureRegionRect none{0, 0, 0, 5};
    std::string columns = "stale";
    BinarizeRegion(region.levels, 0, none, 133, -1, columns);
    EXPECT_EQ(columns, "");
    CaptureRegionRect tooWide{0, 0, 5, 2};
    EXPECT_THROW(BinarizeRegion(region.levels, 0, tooWide, 133, -1, columns), RuntimeError);
}

const PatternSet& expGlyphs()
{
    return defaultPatternStrings()[RegionExp];
}

std::string glyph(int index)
{
    return expGlyphs()[static_cast<std::size_t>(index)];
}

std::string blank(int columns)
{
    return std::string(4 * static_cast<std::size_t>(columns), '0');
}

// Runs the experience recogniser (glyph width 5) on a column string; the region is as
// wide as the string unless told otherwise.
RecognitionResult recognizeExp(const std::string& columns, std::int32_t regionWidth = -1, bool trace = false)
{
    const auto width = regionWidth >= 0 ? regionWidth : static_cast<std::int32_t>(columns.size() / 4);
    return RecognizeNumber(RegionExp, RecognizerInput{columns, &expGlyphs(), 5, width, {}}, trace);
}

struct Case {
    const char* name;
    std::string columns;
    std::int32_t regionWidth;
    std::string digits;
    std::string caption;
};

TEST(RecognizeNumber, OutcomesFollowTheWalkRules)
{
    const std::string delimiter = glyph(10);
    const std::vector<Case> cases = {
        {"adjacent digits then delimiter", glyph(1) + glyph(2) + delimiter + blank(5), -1, "12", "12"},
        {"no delimiter up to the edge", glyph(1) + glyph(2) + blank(20), -1, "", "認識NG"},
        {"no digit anywhere", delimiter + blank(12), -1, "", "NotFind"},
        {"empty column string", "", 0, "", "NotFind"},
        {"gap between groups is skipped", glyph(1) + blank(3) + glyph(2) + glyph(3) + glyph(4) + delimiter + blank(1),
         -1, "1234", "1234"},
        {"separator glyph is skipped", glyph(1) + "010001C0" + glyph(2) + glyph(3) + glyph(4) + delimiter + blank(1), -1,
         "1234", "1234"},
        {"leading blanks", blank(7) + glyph(9) + glyph(0) + delimiter + blank(1), -1, "90", "90"},
        {"noise digit left of the number is kept", glyph(7) + blank(4) + glyph(5) + delimiter + blank(1), -1, "75",
         "75"},
        // The walk never tries a glyph whose left column is SizeX - W.
        {"delimiter touching the right edge", glyph(1) + glyph(2) + delimiter, -1, "", "認識NG"},
        {"delimiter one column before the edge", glyph(1) + glyph(2) + delimiter + blank(1), -1, "12", "12"},
        {"region narrower than a glyph", glyph(3) + delimiter, 4, "", "認識NG"},
        {"region narrower than the string", glyph(1) + glyph(2) + delimiter + blank(5), 14, "", "認識NG"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const RecognitionResult result = recognizeExp(c.columns, c.regionWidth);
        EXPECT_EQ(result.digits, c.digits);
        EXPECT_EQ(result.caption, c.caption);
        EXPECT_TRUE(result.trace.empty());
    }
}

TEST(RecognizeNumber, FirstSearchPrefersTheLeftmostThenTheLowerDigit)
{
    PatternSet patterns = expGlyphs();
    // Digits 4 and 6 share a template: at equal positions 4 must win, and the walk must start
    // its first comparison at that digit.
    patterns[6] = patterns[4];
    const std::string columns = patterns[4] + patterns[10] + blank(1);
    const RecognitionResult shared = RecognizeNumber(RegionExp, RecognizerInput{columns, &patterns, 5, 11, {}});
    EXPECT_EQ(shared.digits, "4");

    // The first position starts its candidates at the found digit, so a lower digit whose
    // template also fits there is not taken; at later positions every digit is tried.
    patterns = expGlyphs();
    patterns[2] = patterns[8];
    const std::string twice = patterns[8] + patterns[8] + patterns[10] + blank(1);
    EXPECT_EQ(RecognizeNumber(RegionExp, RecognizerInput{twice, &patterns, 5, 16, {}}).digits, "22");
}

TEST(RecognizeNumber, MisalignedFirstMatchSetsTheGridOfTheWalk)
{
    // Two characters of junk shift every glyph by half a column group: the first search still
    // finds the digit inside the groups and the walk runs on that shifted grid.
    const std::string columns = "00" + glyph(5) + glyph(8) + glyph(10) + blank(2);
    const auto width = static_cast<std::int32_t>(columns.size() / 4);
    const RecognitionResult result = recognizeExp(columns, width);
    EXPECT_EQ(result.digits, "58");

    // On a grid shifted by one character the delimiter starts past the end bound.
    const std::string shifted = "0" + glyph(5) + glyph(10);
    EXPECT_EQ(recognizeExp(shifted, static_cast<std::int32_t>(shifted.size() / 4)).caption, "認識NG");
}

// A set with a template missing, cut or mistyped cannot tell a digit it lacks from a gap:
// the reading fails and says which templates are not whole, where the walk would drop
// the digit. Whole sets walk as they always did.
TEST(RecognizeNumber, ASetNotWholeFailsWhereItWouldDropADigit)
{
    struct Case {
        const char* name;
        int broken;         // the template changed
        std::string to;
        std::string columns;
        std::string digits; // read
        std::string untaught;
    };
    PatternSet whole = expGlyphs();
    const Case cases[] = {
        {"a cut template before the number", 3, "00440082", glyph(3) + blank(3) + glyph(1) + glyph(10) + blank(1), "", "3"},
        {"level 50 without its 0", 0, "", glyph(5) + glyph(0) + glyph(10) + blank(1), "", "0"},
        {"its first digit not taught", 5, "", glyph(5) + glyph(0) + glyph(10) + blank(1), "", "5"},
        {"a mistyped template", 8, "006C0092009200G2006C", glyph(1) + glyph(8) + glyph(10) + blank(1), "", "8"},
        {"the digits it has, with a gap", 6, "", glyph(1) + blank(2) + glyph(2) + glyph(10) + blank(1), "12", ""},
        {"a label before the number", 6, "", "01FF" + blank(5) + glyph(4) + glyph(10) + blank(1), "4", ""},
        {"whole: the gap is stepped over", -1, "", glyph(5) + blank(1) + glyph(3) + glyph(10) + blank(1), "53", ""},
    };
    for (const Case& c : cases) {
        PatternSet patterns = whole;
        if (c.broken >= 0)
            patterns[static_cast<std::size_t>(c.broken)] = c.to;
        const RecognitionResult result = RecognizeNumber(
            RegionExp, RecognizerInput{c.columns, &patterns, 5, static_cast<std::int32_t>(c.columns.size() / 4), {}});
        EXPECT_EQ(result.digits, c.digits) << c.name;
        EXPECT_EQ(result.untaught, c.untaught) << c.name;
    }
}

TEST(RecognizeNumber, ASetNotWholeStepsOverTheSeparatorItLearnt)
{
    PatternSet patterns = expGlyphs();
    patterns[9] = "";
    const std::string comma = "01800000";
    const std::string columns = glyph(1) + comma + glyph(2) + glyph(3) + glyph(4) + glyph(10) + blank(1);
    const auto width = static_cast<std::int32_t>(columns.size() / 4);
    EXPECT_EQ(RecognizeNumber(RegionExp, RecognizerInput{columns, &patterns, 5, width, comma}).digits, "1234");
    EXPECT_EQ(RecognizeNumber(RegionExp, RecognizerInput{columns, &patterns, 5, width, {}}).untaught, "9");
}

TEST(RecognizeNumber, TraceRecordsEveryStep)
{
    const std::string columns = glyph(4) + blank(2) + glyph(2) + glyph(10) + blank(1);
    const RecognitionResult result = recognizeExp(columns, -1, true);
    const std::vector<std::string> expected = {
        "category1 変換データ : " + columns, "4 認識:", "2 認識:", " 認識:デリミタ"};
    EXPECT_EQ(result.trace, expected);

    EXPECT_EQ(recognizeExp(blank(10), -1, true).trace.back(), "category1 数値が見つかりませんでした");
    EXPECT_EQ(recognizeExp(glyph(4) + blank(6), -1, true).trace.back(), " デリミタ未検出 ");
    EXPECT_EQ(joinTrace({"a", "b", "c"}), "a\r\nb\r\nc");
}

TEST(RecognizeNumber, ProgressCaptionsShowTheDigitsSoFar)
{
    struct Recorder : CaptionSink {
        std::vector<std::string> captions;
        void setCaption(int region, std::string_view caption) override
        {
            EXPECT_EQ(region, RegionExp);
            captions.emplace_back(caption);
        }
    } recorder;
    const std::string columns = glyph(3) + blank(1) + glyph(1) + glyph(10) + blank(1);
    const auto width = static_cast<std::int32_t>(columns.size() / 4);
    RecognizeNumber(RegionExp, RecognizerInput{columns, &expGlyphs(), 5, width, {}}, true, &recorder);
    const std::vector<std::string> expected = {"認識中…", "3認識中…", "3認識中…", "31認識中…"};
    EXPECT_EQ(recorder.captions, expected);
}

TEST(RecognizeNumber, RejectsImpossibleArguments)
{
    const std::string columns = glyph(1) + glyph(10) + blank(1);
    EXPECT_THROW(RecognizeNumber(3, RecognizerInput{columns, &expGlyphs(), 5, 11, {}}), RuntimeError);
    EXPECT_THROW(RecognizeNumber(RegionExp, RecognizerInput{columns, &expGlyphs(), -1, 11, {}}), RuntimeError);
    // An empty template with a zero glyph width would match forever.
    PatternSet patterns = expGlyphs();
    patterns[0] = "";
    EXPECT_THROW(RecognizeNumber(RegionExp, RecognizerInput{columns, &patterns, 0, 11, {}}), RuntimeError);
}

TEST(RecognizeNumber, TheWalkEndsWithTheColumnDataHoweverWideTheRegionClaimsToBe)
{
    struct Counter : CaptionSink {
        int calls = 0;
        void setCaption(int, std::string_view) override { ++calls; }
    };
    PatternSet emptyDelimiter = expGlyphs();
    emptyDelimiter[10] = "";
    PatternSet emptyDigit = emptyDelimiter;
    emptyDigit[7] = "";
    const struct { const char* name; const PatternSet* patterns; std::string digits; } cases[] = {
        {"no template is empty: no delimiter", &expGlyphs(), ""},
        {"an empty delimiter is met past the data", &emptyDelimiter, "12"},
        {"an empty digit before it wins every step instead", &emptyDigit, ""},
    };
    const std::string columns = glyph(1) + glyph(2) + blank(1);
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        for (const std::int32_t width : {1000, std::numeric_limits<std::int32_t>::max()}) {
            Counter counter;
            const RecognitionResult result =
                RecognizeNumber(RegionExp, RecognizerInput{columns, c.patterns, 5, width, {}}, true, &counter);
            EXPECT_EQ(result.digits, c.digits) << width;
            EXPECT_LE(counter.calls, 10) << width;
        }
    }
}

TEST(RecognizeNumber, DefaultSetsReadEveryDigitInEveryRegion)
{
    for (int region = 0; region < kRegionCount; ++region) {
        const PatternSet& patterns = defaultPatternStrings()[static_cast<std::size_t>(region)];
        const std::int32_t width = defaultSettings("").ReferenceSize[static_cast<std::size_t>(region)].Width;
        const std::string columns = blank(3) + numberColumns(patterns, "9081726354", true) + blank(1);
        const auto input = RecognizerInput{columns, &patterns, width, static_cast<std::int32_t>(columns.size() / 4), {}};
        EXPECT_EQ(RecognizeNumber(region, input).digits, "9081726354") << "region " << region;
    }
}

std::string literalColumns(const PixelLevels& levels, int region, const CaptureRegionRect& rect, int threshold,
                           int mask)
{
    const long t = 4L * threshold;
    const long m = 4L * mask;
    std::string out;
    for (int x = 0; x < rect.SizeX; ++x) {
        long value = 0;
        for (int y = 0; y < rect.SizeY; ++y) {
            long p = levels.at(region, x, y);
            if (m < 0) {
            } else if (t < m) {
                if (p >= m)
                    p = 0;
            } else if (p <= m) {
                p = 1020;
            }
            if (p >= t)
                value += 1L << y;
        }
        char hex[16];
        std::snprintf(hex, sizeof hex, "0000%lX", value);
        out += std::string(hex).substr(std::string(hex).size() - 4);
    }
    return out;
}

// Each template's first occurrence, the smallest position kept, the lower digit on ties.
std::pair<std::size_t, int> literalFirstSearch(const std::string& s, const PatternSet& patterns)
{
    std::size_t best = s.size();
    int digit = 0;
    for (int d = 0; d <= 9; ++d) {
        const std::size_t found = s.find(patterns[static_cast<std::size_t>(d)]);
        if (found != std::string::npos && found + 1 < best) {
            best = found + 1;
            digit = d;
        }
    }
    return {best, digit};
}

TEST(ReferenceAgreement, RandomScreensBinariseAndReadAsTheRulesSay)
{
    std::mt19937 random(20261121);
    const Settings defaults = defaultSettings("");
    int numbersRead = 0;
    for (int round = 0; round < 200; ++round) {
        Settings settings = defaults;
        for (int r = 0; r < kRegionCount; ++r) {
            const auto i = static_cast<std::size_t>(r);
            settings.CaptureRegion[i].SizeY = 1 + static_cast<int>(random() % 20);
            if (round % 3 == 1) {
                settings.BinaryThreshold[i] = static_cast<int>(random() % 300);
                settings.BinaryMask[i] = static_cast<int>(random() % 300) - 60;
            }
        }
        Frame frame(560, 600);
        // Noise of a few levels over the regions, so that every masking band sees pixels.
        for (const CaptureRegionRect& rect : settings.CaptureRegion)
            for (int y = rect.StartY; y < rect.StartY + rect.SizeY; ++y)
                for (int x = rect.StartX; x < rect.StartX + rect.SizeX; ++x)
                    frame.setPixel(x, y, static_cast<std::uint8_t>(random() % 4 * 85),
                                   static_cast<std::uint8_t>(random() % 4 * 85),
                                   static_cast<std::uint8_t>(random() % 4 * 85));
        for (int r = 0; r < kRegionCount; ++r) {
            const auto i = static_cast<std::size_t>(r);
            const std::string digits = std::to_string(random() % 100000000);
            const InkColors colours = defaultInkColors(r);
            if (round % 2 == 0)
                paintRegionBackground(frame, settings.CaptureRegion[i], colours);
            paintColumns(frame, settings.CaptureRegion[i], static_cast<int>(random() % 12),
                         numberColumns(settings.PatternStrings[i], digits, random() % 4 != 0), colours);
        }
        const CaptureBitmap bitmap = toCaptureBitmap(frame);
        PixelLevels levels;
        levels.SecurePixels(settings.CaptureRegion);
        for (int r = 0; r < kRegionCount; ++r) {
            const auto i = static_cast<std::size_t>(r);
            const CaptureRegionRect& rect = settings.CaptureRegion[i];
            FillPixelLevels(levels, r, rect, bitmap);
            std::string columns;
            BinarizeRegion(levels, r, rect, settings.BinaryThreshold[i], settings.BinaryMask[i], columns);
            ASSERT_EQ(columns, literalColumns(levels, r, rect, settings.BinaryThreshold[i], settings.BinaryMask[i]))
                << "round " << round << " region " << r;

            const RecognitionResult result =
                RecognizeNumber(r, recognizerInput(settings, r, columns), true);
            const auto [best, digit] = literalFirstSearch(columns, settings.PatternStrings[i]);
            if (best == columns.size()) {
                EXPECT_EQ(result.caption, "NotFind");
            } else if (!result.digits.empty()) {
                EXPECT_EQ(result.digits.front(), '0' + digit) << columns;
                ++numbersRead;
            }
        }
    }
    // Clean default rounds must mostly read; a quiet failure of every reading is a fault too.
    EXPECT_GT(numbersRead, 100);
}

} // namespace
} // namespace tvx
