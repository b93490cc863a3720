// Reading pixels: binarisation's masking modes and column groups, the walk over the columns
// with its templates.
#include "base/Errors.h"
#include "recognition/Binarize.h"
#include "recognition/GlyphPainter.h"
#include "recognition/Recognizer.h"
#include "support/ExpectError.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <tuple>
#include <utility>
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

TEST(BinarizeRegion, MaskingModesDecideWhichLevelsAreInkAndOddSizesAreRefused)
{
    struct Case { std::int32_t threshold, mask, level; bool ink; };
    const std::vector<Case> cases = {
        // Plain threshold (negative mask).
        {133, -1, 531, false}, {133, -1, 532, true}, {0, -1, 0, true},
        // Mask below threshold: very dark pixels count as ink too.
        {188, 34, 136, true}, {188, 34, 137, false}, {188, 34, 751, false}, {188, 34, 752, true}, {188, 34, 0, true},
        {300, 34, 0, false}, // a threshold above the brightest level
        // Mask equal to the threshold: dark pixels turn bright, so every level is ink.
        {100, 100, 0, true}, {100, 100, 401, true},
        // Mask above threshold: only the band between them is ink.
        {100, 200, 399, false}, {100, 200, 400, true}, {100, 200, 799, true}, {100, 200, 800, false},
        {0, 200, 800, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "threshold " << c.threshold << " mask " << c.mask << " level " << c.level);
        Region region(1, 1, c.level);
        EXPECT_EQ(region.binarize(c.threshold, c.mask), c.ink ? "0001" : "0000");
    }

    // Empty, oversized and taller than thirty-one bits.
    Region tall(1, 32, 0);
    tall.levels.at(0, 0, 30) = 1020;
    EXPECT_EQ(tall.binarize(133, -1), "0000");
    tall.levels.at(0, 0, 31) = 1020;
    test::expectError(ErrorNumber::Overflow, [&] { tall.binarize(133, -1); });

    EXPECT_EQ(Region(0, 5, 0).binarize(133, -1), "");
    tall.rect = {0, 0, 5, 2}; // wider than its pixels
    EXPECT_THROW(tall.binarize(133, -1), RuntimeError);
}

// The experience region's built-in templates: digits 0 to 9, then the delimiter (10).
const PatternSet& kExp = defaultPatternStrings()[RegionExp];

std::string blank(int columns)
{
    return std::string(4 * static_cast<std::size_t>(columns), '0');
}

// Digits painted from column -1 over the background, in a region taller than a column group and
// narrower than the digits: columns off either edge are left out, rows below the group stay background.
TEST(BinarizeRegion, PaintedDigitsBinariseBackToTheirColumns)
{
    const Settings defaults = defaultSettings("");
    const CaptureRegionRect rect{3, 4, 8, 18};
    Frame frame(40, 30);
    paintRegionBackground(frame, rect, defaultInkColors(RegionExp));
    const std::string digits = numberColumns(kExp, "90", false);
    paintColumns(frame, rect, -1, digits, defaultInkColors(RegionExp));
    PixelLevels levels;
    levels.SecurePixels({rect, rect, rect});
    FillPixelLevels(levels, RegionExp, rect, toCaptureBitmap(frame));
    std::string columns;
    BinarizeRegion(levels, RegionExp, rect, defaults.BinaryThreshold[RegionExp], defaults.BinaryMask[RegionExp], columns);
    EXPECT_EQ(columns, digits.substr(4, 4 * 8));
}

// A set with a template missing, cut or mistyped cannot tell a digit it lacks from a gap:
// the reading fails and says which templates are not whole, where the walk would drop the digit.
TEST(RecognizeNumber, OutcomesFollowTheWalkRules)
{
    // regionWidth -1: as wide as the columns; `changed`: the template replaced by `to`.
    struct Case { const char* name; std::string columns; std::int32_t regionWidth; std::string digits, caption,
                  untaught = ""; int changed = -1; std::string to = "", separator = ""; };
    const std::string delimiter = kExp[10];
    const std::string comma = "01800000";
    const std::string ng = "認識NG";
    const std::vector<Case> cases = {
        {"no delimiter up to the edge", kExp[1] + kExp[2] + blank(20), -1, "", ng},
        {"no digit anywhere", delimiter + blank(12), -1, "", "NotFind"},
        {"empty column string", "", 0, "", "NotFind"},
        {"gap between groups is skipped", kExp[1] + blank(3) + kExp[2] + kExp[3] + kExp[4] + delimiter + blank(1),
         -1, "1234", "1234"},
        {"separator glyph is skipped", kExp[1] + "010001C0" + kExp[2] + kExp[3] + kExp[4] + delimiter + blank(1), -1,
         "1234", "1234"},
        {"leading blanks", blank(7) + kExp[9] + kExp[0] + delimiter + blank(1), -1, "90", "90"},
        // The walk never tries a glyph whose left column is SizeX - W.
        {"delimiter touching the right edge", kExp[1] + kExp[2] + delimiter, -1, "", ng},
        {"delimiter one column before the edge", kExp[1] + kExp[2] + delimiter + blank(1), -1, "12", "12"},
        {"region narrower than the string", kExp[1] + kExp[2] + delimiter + blank(5), 14, "", ng},
        // Junk shifts every glyph by half a column group: the walk runs on the grid the first
        // search found; shifted by one character, the delimiter starts past the end bound.
        {"misaligned by half a group", "00" + kExp[5] + kExp[8] + delimiter + blank(2), -1, "58", "58"},
        {"misaligned by one character", "0" + kExp[5] + delimiter, -1, "", ng},
        // Equal templates: the lower digit wins, and the first position starts its candidates
        // at the digit found, so a lower one fitting there too is not taken.
        {"4 and 6 alike", kExp[4] + delimiter + blank(1), -1, "4", "4", "", 6, kExp[4]},
        {"2 and 8 alike", kExp[8] + kExp[8] + delimiter + blank(1), -1, "22", "22", "", 2, kExp[8]},
        {"a cut template before the number", kExp[3] + blank(3) + kExp[1] + delimiter + blank(1), -1, "", ng, "3", 3,
         "00440082"},
        {"level 50 without its 0", kExp[5] + kExp[0] + delimiter + blank(1), -1, "", ng, "0", 0},
        {"its first digit not taught", kExp[5] + kExp[0] + delimiter + blank(1), -1, "", ng, "5", 5},
        {"a mistyped template", kExp[1] + kExp[8] + delimiter + blank(1), -1, "", ng, "8", 8, "006C0092009200G2006C"},
        {"not whole: the digits it has, with a gap", kExp[1] + blank(2) + kExp[2] + delimiter + blank(1), -1, "12",
         "12", "", 6},
        {"not whole: the separator it learnt is stepped over",
         kExp[1] + comma + kExp[2] + kExp[3] + kExp[4] + delimiter + blank(1), -1, "1234", "1234", "", 9, "", comma},
        {"not whole: a separator not learnt", kExp[1] + comma + kExp[2] + kExp[3] + kExp[4] + delimiter + blank(1), -1,
         "", ng, "9", 9},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        PatternSet patterns = kExp;
        if (c.changed >= 0)
            patterns[static_cast<std::size_t>(c.changed)] = c.to;
        const auto width = c.regionWidth >= 0 ? c.regionWidth : static_cast<std::int32_t>(c.columns.size() / 4);
        const RecognitionResult result =
            RecognizeNumber(RegionExp, RecognizerInput{c.columns, &patterns, 5, width, c.separator});
        EXPECT_EQ(std::tuple(result.digits, result.caption, result.untaught, result.trace.size()),
                  std::tuple(c.digits, c.caption, c.untaught, 0u));
    }
}

// The progress captions a reading shows, all for the experience region.
struct CaptionLog : CaptionSink {
    std::vector<std::string> captions;
    void setCaption(int region, std::string_view caption) override
    {
        EXPECT_EQ(region, RegionExp);
        captions.emplace_back(caption);
    }
};

TEST(RecognizeNumber, TraceAndProgressCaptionsFollowEveryStepAndImpossibleArgumentsThrow)
{
    CaptionLog recorder;
    const std::string columns = kExp[4] + blank(2) + kExp[2] + kExp[10] + blank(1);
    const auto width = static_cast<std::int32_t>(columns.size() / 4);
    const RecognitionResult result =
        RecognizeNumber(RegionExp, RecognizerInput{columns, &kExp, 5, width, {}}, true, &recorder);
    EXPECT_EQ(result.trace,
              (std::vector<std::string>{"category1 変換データ : " + columns, "4 認識:", "2 認識:", " 認識:デリミタ"}));
    EXPECT_EQ(recorder.captions, (std::vector<std::string>{"認識中…", "4認識中…", "4認識中…", "4認識中…", "42認識中…"}));

    // Impossible arguments; an empty template with a zero glyph width would match forever.
    EXPECT_THROW(RecognizeNumber(3, RecognizerInput{columns, &kExp, 5, width, {}}), RuntimeError);
    EXPECT_THROW(RecognizeNumber(RegionExp, RecognizerInput{columns, &kExp, -1, width, {}}), RuntimeError);
    PatternSet patterns = kExp;
    patterns[0] = "";
    EXPECT_THROW(RecognizeNumber(RegionExp, RecognizerInput{columns, &patterns, 0, width, {}}), RuntimeError);
}

TEST(RecognizeNumber, TheWalkEndsWithTheColumnDataHoweverWideTheRegionClaimsToBe)
{
    PatternSet emptyDelimiter = kExp;
    emptyDelimiter[10] = "";
    PatternSet emptyDigit = emptyDelimiter;
    emptyDigit[7] = "";
    const struct { const char* name; const PatternSet* patterns; std::string digits; } cases[] = {
        {"no template is empty: no delimiter", &kExp, ""},
        {"an empty delimiter is met past the data", &emptyDelimiter, "12"},
        {"an empty digit before it wins every step instead", &emptyDigit, ""},
    };
    const std::string columns = kExp[1] + kExp[2] + blank(1);
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        for (const std::int32_t width : {1000, std::numeric_limits<std::int32_t>::max()}) {
            CaptionLog counter;
            const RecognitionResult result =
                RecognizeNumber(RegionExp, RecognizerInput{columns, c.patterns, 5, width, {}}, true, &counter);
            EXPECT_EQ(result.digits, c.digits) << width;
            EXPECT_LE(counter.captions.size(), 10u) << width;
        }
    }
}

} // namespace
} // namespace tvx
