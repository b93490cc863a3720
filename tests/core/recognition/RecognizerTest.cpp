#include "recognition/GlyphPainter.h"
#include "recognition/Recognizer.h"
#include "base/Errors.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

namespace tvx {
namespace {

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

} // namespace
} // namespace tvx
