#include "recognition/TemplateLearner.h"

#include "config/PatternColumns.h"
#include "recognition/ScreenRecognizer.h"
#include "support/BitmapFont.h"
#include "support/GameScreen.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace tvx {
namespace {

const Settings kDefaults = defaultSettings("");

// The experience region of a screen with the text written in the test font.
CaptureBitmap fontImage(const std::string& text, std::uint32_t seed = 1)
{
    return toCaptureBitmap(test::fontScreen({"", text, ""}, seed));
}

std::vector<std::uint16_t> glyphOf(char c)
{
    return test::fontGlyph(c);
}

// Reads the experience region of an image with the settings as the learner left them.
std::string readWith(const Settings& settings, const CaptureBitmap& image)
{
    ScreenRecognizer recognizer(settings);
    recognizer.fill(RegionExp, image);
    recognizer.binarize(RegionExp);
    return recognizer.recognize(RegionExp).digits;
}

TEST(TemplateLearnerTest, WidthIsSettledBySeveralImages)
{
    TemplateLearner learner(kDefaults, RegionExp);
    // Three different digits alone fit several widths and phases.
    ASSERT_TRUE(learner.add(fontImage("305"), "305").accepted());
    EXPECT_TRUE(learner.ambiguous());
    for (const char* number : {"1161", "7207", "88948"})
        ASSERT_TRUE(learner.add(fontImage(number), number).accepted()) << number;
    EXPECT_FALSE(learner.ambiguous());
    EXPECT_EQ(learner.glyphWidth(), test::kFontPitch);
    for (const char digit : std::string("0123456789"))
        EXPECT_EQ(learner.glyph(digit - '0'), glyphOf(digit)) << digit;
    std::vector<std::uint16_t> endMark = test::fontColumns("]");
    endMark.resize(test::kFontPitch); // and the blank after it
    EXPECT_EQ(learner.glyph(kEndMarkGlyph), endMark);
    // Found where the font put it: from column 3 of the region (2 + region index 1).
    EXPECT_EQ(learner.layout(3).digitColumns, (std::vector<std::int32_t>{3, 9, 15, 21, 27}));
    EXPECT_EQ(learner.layout(3).endColumn, 33);
}

TEST(TemplateLearnerTest, DigitsAddUpAcrossImagesAndUnseenTemplatesOfAnotherWidthEmpty)
{
    TemplateLearner learner(kDefaults, RegionExp);
    const std::vector<std::pair<const char*, std::string>> steps{
        {"4114", "14"}, {"1441", "14"}, {"9004", "0149"}, {"2377", "012347 9"}};
    for (const auto& [number, seenAfter] : steps) {
        ASSERT_TRUE(learner.add(fontImage(number), number).accepted()) << number;
        std::string seen;
        for (int d = 0; d < 10; ++d)
            seen += learner.seen(d) ? static_cast<char>('0' + d) : ' ';
        std::string expected(10, ' ');
        for (const char c : seenAfter)
            if (c != ' ')
                expected[static_cast<std::size_t>(c - '0')] = c;
        EXPECT_EQ(seen, expected) << "after " << number;
    }
    EXPECT_EQ(learner.imageCount(), 4u);
    // The built-in templates are five columns wide: kept, they would make the file unusable.
    const PatternSet patterns = learner.patterns();
    for (const int unseen : {5, 6, 8})
        EXPECT_EQ(patterns[static_cast<std::size_t>(unseen)], "") << unseen;
    EXPECT_EQ(patterns[4], encodePatternColumns(glyphOf('4')));
    EXPECT_TRUE(learner.replacedPrior());

    Settings applied = kDefaults;
    learner.applyTo(applied);
    EXPECT_EQ(applied.ReferenceSize[RegionExp].Width, test::kFontPitch);
    EXPECT_EQ(applied.PatternStrings[RegionExp], patterns);
    EXPECT_EQ(applied.PatternStrings[RegionLevel], kDefaults.PatternStrings[RegionLevel]);
    // A number of learnt digits it was never shown.
    EXPECT_EQ(readWith(applied, fontImage("3014729", 7)), "3014729");
}

TEST(TemplateLearnerTest, ImagesThatDoNotFitAreRefusedAndChangeNothing)
{
    TemplateLearner learner(kDefaults, RegionExp);
    ASSERT_TRUE(learner.add(fontImage("1161"), "1161").accepted());
    ASSERT_TRUE(learner.add(fontImage("7207"), "7207").accepted());
    const PatternSet before = learner.patterns();

    struct Case { const char* shown; const char* typed; LearnRefusal refusal; };
    const Case cases[] = {
        {"6172", "6127", LearnRefusal::Contradiction}, // a mistyped number: its 2 and 7 clash with those learnt
        {"1161", "12a", LearnRefusal::NotANumber},
        {"", "5", LearnRefusal::NoSplit},               // no ink at all
        {"12", "123456", LearnRefusal::NoSplit},        // more digits than there is ink for
    };
    for (const Case& c : cases) {
        const LearnOutcome outcome = learner.add(fontImage(c.shown), c.typed);
        EXPECT_EQ(outcome.refusal, c.refusal) << c.shown << " as " << c.typed;
    }
    const LearnOutcome mistyped = learner.add(fontImage("6172"), "6127");
    EXPECT_TRUE(mistyped.glyph == 2 || mistyped.glyph == 7) << mistyped.glyph;
    EXPECT_EQ(mistyped.learntWidth, test::kFontPitch);

    // The built-in thin font is five columns wide, not six.
    const LearnOutcome otherFont = learner.add(test::gameCapture({"", "1161", ""}), "1161");
    EXPECT_EQ(otherFont.refusal, LearnRefusal::Contradiction);
    EXPECT_EQ(otherFont.glyph, -1);
    EXPECT_EQ(otherFont.imageWidth, 5);

    EXPECT_EQ(learner.imageCount(), 2u);
    EXPECT_EQ(learner.patterns(), before);

    TemplateLearner outside(kDefaults, RegionExp);
    EXPECT_EQ(outside.add(toCaptureBitmap(Frame(300, 200)), "5").refusal, LearnRefusal::OutsideImage);
}

TEST(TemplateLearnerTest, ThousandsSeparatorsAreFoundAndSteppedOver)
{
    TemplateLearner learner(kDefaults, RegionExp);
    for (const char* number : {"4,096", "80,315", "1,726,354", "299"})
        ASSERT_TRUE(learner.add(fontImage(number), number).accepted()) << number;
    ASSERT_EQ(learner.separatorWidth(), 2);
    EXPECT_EQ(learner.glyph(kSeparatorGlyph), test::fontColumns(","));
    EXPECT_EQ(learner.layout(2).separatorColumns, (std::vector<std::int32_t>{9, 29}));
    EXPECT_EQ(learner.glyphWidth(), test::kFontPitch);

    Settings applied = kDefaults;
    learner.applyTo(applied);
    EXPECT_EQ(readWith(applied, fontImage("5,318,926", 3)), "5318926");
}

TEST(TemplateLearnerTest, LayoutsAreKeptOnlyWhenTheImagesReadBack)
{
    TemplateLearner learner(kDefaults, RegionExp);
    for (const char* number : {"1161", "7207", "88948"})
        ASSERT_TRUE(learner.add(fontImage(number), number).accepted());
    for (std::size_t i = 0; i < learner.imageCount(); ++i)
        EXPECT_EQ(learner.readBack(i).digits, learner.number(i));

    // Templates taught before at the same width stay while the screens agree with them,
    // and all give way, unseen ones emptied, once a screen shows one of them otherwise.
    Settings taught = kDefaults;
    learner.applyTo(taught);
    TemplateLearner agreeing(taught, RegionExp);
    ASSERT_TRUE(agreeing.add(fontImage("4114"), "4114").accepted());
    EXPECT_FALSE(agreeing.replacedPrior());
    EXPECT_EQ(agreeing.patterns()[7], taught.PatternStrings[RegionExp][7]);
    taught.PatternStrings[RegionExp][1] = taught.PatternStrings[RegionExp][4];
    TemplateLearner contradicted(taught, RegionExp);
    ASSERT_TRUE(contradicted.add(fontImage("4114"), "4114").accepted());
    EXPECT_TRUE(contradicted.replacedPrior());
    EXPECT_EQ(contradicted.patterns()[7], "");
    EXPECT_EQ(contradicted.patterns()[1], encodePatternColumns(glyphOf('1')));
}

TEST(TemplateLearnerTest, AWideRegionOverNoiseStillFindsTheNumber)
{
    // The region runs on far past the number, over a noisy screen that binarises to ink
    // almost everywhere: a great many layouts have ink in every cell.
    Settings wide = kDefaults;
    wide.CaptureRegion[RegionExp].SizeX = 200;
    Frame frame = test::fontScreen({"", "", ""});
    test::paintFontText(frame, {463, 570, 40, 9}, RegionExp, 2, "4096]");
    TemplateLearner learner(wide, RegionExp);
    ASSERT_TRUE(learner.add(toCaptureBitmap(frame), "4096").accepted());
    EXPECT_EQ(learner.readBack(0).digits, "4096");
    EXPECT_EQ(learner.layout(0).digitColumns.size(), 4u);
}

TEST(TemplateLearnerTest, ScreensInTheBuiltInGlyphsTeachTheBuiltInTemplates)
{
    for (int region = 0; region < kRegionCount; ++region) {
        TemplateLearner learner(kDefaults, region);
        for (const char* number : {"13", "52790", "468"}) {
            std::array<std::string, kRegionCount> numbers;
            numbers[static_cast<std::size_t>(region)] = number;
            ASSERT_TRUE(learner.add(test::gameCapture(numbers), number).accepted()) << region << " " << number;
        }
        EXPECT_EQ(learner.glyphWidth(), kDefaults.ReferenceSize[static_cast<std::size_t>(region)].Width);
        EXPECT_EQ(learner.patterns(), kDefaults.PatternStrings[static_cast<std::size_t>(region)]) << region;
    }
}

TEST(TemplateLearnerTest, TypedNumbersMayCarrySeparators)
{
    const std::pair<const char*, std::optional<std::string>> cases[] = {
        {"1,234,567", "1234567"}, {"12 345", "12345"}, {"007", "007"}, {"", std::nullopt},
        {"-", std::nullopt},      {"12a", std::nullopt}, {"１２", std::nullopt}, {"12345678901234567890", std::nullopt},
    };
    for (const auto& [text, digits] : cases)
        EXPECT_EQ(numberDigits(text), digits) << text;
}

} // namespace
} // namespace tvx
