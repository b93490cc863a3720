// Learning a region from screens the player names the numbers of: templates for a font of
// fixed pitch, shapes for scaled and smoothed UIs, read back right or not at all.
#include "base/Utf8Path.h"
#include "config/ConfigFile.h"
#include "config/PatternColumns.h"
#include "measurement/RecordFormat.h"
#include "recognition/RegionLearner.h"
#include "recognition/ScreenRecognizer.h"
#include "recognition/ShapeReader.h"
#include "recognition/TemplateLearner.h"
#include "TextCodecFactory.h"
#include "support/BitmapFont.h"
#include "support/GameScreen.h"
#include "support/ScaledFont.h"
#include "support/ScriptedPrompter.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <tuple>
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

// Reads the experience region of an image with the settings as the learner left them.
std::string readWith(const Settings& settings, const CaptureBitmap& image)
{
    ScreenRecognizer recognizer(settings);
    recognizer.fill(RegionExp, image);
    recognizer.binarize(RegionExp);
    return recognizer.recognize(RegionExp).digits;
}

TEST(TemplateLearnerTest, LayoutsAreKeptOnlyWhenTheImagesReadBackAndImagesThatDoNotFitChangeNothing)
{
    TemplateLearner learner(kDefaults, RegionExp);
    // Three different digits alone fit several widths and phases; more images settle them.
    ASSERT_TRUE(learner.add(fontImage("305"), "305").accepted());
    EXPECT_TRUE(learner.ambiguous());
    for (const char* number : {"1161", "7207", "88948"})
        ASSERT_TRUE(learner.add(fontImage(number), number).accepted());
    EXPECT_FALSE(learner.ambiguous());
    for (const char digit : std::string("0123456789"))
        EXPECT_EQ(learner.glyph(digit - '0'), test::fontGlyph(digit)) << digit;
    // Found where the font put it: from column 3 of the region (2 + region index 1).
    EXPECT_EQ(learner.layout(3).digitColumns, (std::vector<std::int32_t>{3, 9, 15, 21, 27}));
    EXPECT_TRUE(learner.replacedPrior()); // the built-in templates are five columns wide
    for (std::size_t i = 0; i < learner.imageCount(); ++i)
        EXPECT_EQ(learner.readBack(i).digits, learner.number(i));

    // Images that do not fit are refused and change nothing.
    const PatternSet before = learner.patterns();

    struct Case { const char* shown; const char* typed; LearnRefusal refusal; };
    const Case cases[] = {
        {"1161", "12a", LearnRefusal::NotANumber},
        {"", "5", LearnRefusal::NoSplit},               // no ink at all
        {"12", "123456", LearnRefusal::NoSplit},        // more digits than there is ink for
    };
    for (const Case& c : cases) {
        const LearnOutcome outcome = learner.add(fontImage(c.shown), c.typed);
        EXPECT_EQ(outcome.refusal, c.refusal) << c.shown << " as " << c.typed;
    }
    // The built-in thin font is five columns wide, not six.
    const LearnOutcome otherFont = learner.add(test::gameCapture({"", "1161", ""}), "1161");
    EXPECT_EQ(std::tuple(otherFont.refusal, otherFont.glyph, otherFont.imageWidth),
              std::tuple(LearnRefusal::Contradiction, -1, 5));

    EXPECT_EQ(learner.add(toCaptureBitmap(Frame(300, 200)), "5").refusal, LearnRefusal::OutsideImage);
    EXPECT_EQ(learner.imageCount(), 4u);
    EXPECT_EQ(learner.patterns(), before);

    // Typed numbers may carry separators.
    const std::pair<const char*, std::optional<std::string>> typed[] = {
        {"1,234,567", "1234567"}, {"12 345", "12345"}, {"007", "007"}, {"", std::nullopt}, {"-", std::nullopt},
        {"12a", std::nullopt}, {"１２", std::nullopt}, {"12345678901234567890", std::nullopt}};
    for (const auto& [text, digits] : typed)
        EXPECT_EQ(numberDigits(text), digits) << text;

    // Templates taught before at the same width all give way, unseen ones emptied, once a screen shows one of them
    // otherwise.
    Settings taught = kDefaults;
    learner.applyTo(taught);
    taught.PatternStrings[RegionExp][1] = taught.PatternStrings[RegionExp][4];
    TemplateLearner contradicted(taught, RegionExp);
    ASSERT_TRUE(contradicted.add(fontImage("4114"), "4114").accepted());
    EXPECT_TRUE(contradicted.replacedPrior());
    EXPECT_EQ(contradicted.patterns()[7], "");
    EXPECT_EQ(contradicted.patterns()[1], encodePatternColumns(test::fontGlyph('1')));

    // A region running on far past the number, over a noisy screen that binarises to ink
    // almost everywhere: a great many layouts have ink in every cell.
    Settings wide = kDefaults;
    wide.CaptureRegion[RegionExp].SizeX = 200;
    Frame frame = test::fontScreen({"", "", ""});
    test::paintFontText(frame, {463, 570, 40, 9}, RegionExp, 2, "4096]");
    TemplateLearner overNoise(wide, RegionExp);
    ASSERT_TRUE(overNoise.add(toCaptureBitmap(frame), "4096").accepted());
    EXPECT_EQ(overNoise.readBack(0).digits, "4096");
}

struct DrawnFont {
    const char* name;
    test::ScaledDrawing how;
    std::int32_t rows;     // of the region
    bool separators;       // "12,345" rather than "12345"
    bool endMark;          // "]" after the number, else blank to the region's edge
    ReadingMode mode;      // what the learner should choose
};

class DrawnScreens {
public:
    DrawnScreens(const DrawnFont& font, std::uint32_t seed) : m_font(font), m_random(seed)
    {
        m_rect = {10, 20, static_cast<std::int32_t>(std::ceil(62 * font.how.scale)) + 12, font.rows};
    }

    // The region's settings: the number read by ink brighter than the background.
    Settings settings() const
    {
        Settings s = defaultSettings("");
        s.CaptureRegion[RegionExp] = m_rect;
        s.BinaryThreshold[RegionExp] = 135;
        s.BinaryMask[RegionExp] = -1;
        return s;
    }

    // A random number, or the one given, drawn at a random sub-pixel column: the UI places
    // numbers of other widths at other phases, on one baseline.
    std::pair<CaptureBitmap, std::string> next(std::string digits = {})
    {
        std::uniform_int_distribution<int> length(1, 7);
        std::uniform_int_distribution<int> digit(0, 9);
        std::uniform_real_distribution<double> phase(0.0, 1.0);
        if (digits.empty()) {
            digits = std::string(1, static_cast<char>('1' + digit(m_random) % 9));
            for (int n = length(m_random); n > 1; --n)
                digits += static_cast<char>('0' + digit(m_random));
        }
        test::ScaledDrawing how = m_font.how;
        how.originX += 1 + 2 * phase(m_random);
        how.originY += 0.3;
        // Grouped as the record file writes numbers: "12,345".
        const std::string shown =
            m_font.separators ? formatNumber(Currency::fromInt(std::stoll(digits)), 0, false) : digits;
        const std::string text = std::string(how.label) + shown + (m_font.endMark ? "]" : "");
        how.label = "";
        return {test::scaledScreen(m_rect, text, how), digits};
    }

private:
    DrawnFont m_font;
    std::mt19937 m_random;
    CaptureRegionRect m_rect;
};

class DrawnFontTest : public testing::TestWithParam<DrawnFont> {};

// Taught five screens, the region reads other screens of the same UI right or not at all.
// Before the fifth no screen showed a 0: it is read as nothing, never as the digit it looks most like.
TEST_P(DrawnFontTest, FiveScreensTaughtReadFortyOthersRightOrNotAtAll)
{
    const DrawnFont& font = GetParam();
    DrawnScreens screens(font, 7);
    Settings settings = screens.settings();
    RegionLearner learner(settings, RegionExp);
    for (const std::string number : {"3141592", "6535897", "9323846", "2643383", "2795028"}) {
        if (number == "2795028") {
            EXPECT_EQ(learner.missing(), "0");
            Settings untaught = settings;
            learner.applyTo(untaught);
            DrawnScreens probes(font, 3);
            EXPECT_EQ(readWith(untaught, probes.next("2051").first), "");
            if (!font.how.builtIn) { // touching glyphs may need the fifth screen to be read at all
                EXPECT_EQ(readWith(untaught, probes.next("2851").first), "2851");
            }
        }
        auto [image, digits] = screens.next(number);
        ASSERT_TRUE(learner.add(image, digits).accepted()) << number;
    }
    EXPECT_EQ(learner.mode(), font.mode);
    learner.applyTo(settings);
    EXPECT_EQ(settings.PatternStrings[RegionLevel], kDefaults.PatternStrings[RegionLevel]);

    // Through the configuration file and back, as the program's next start reads it.
    test::TempFolder home;
    test::ScriptedPrompter prompter;
    const auto codec = platform::makeTextCodec();
    settings.SaveFolder = pathUtf8(home.path());
    EXPECT_TRUE(ConfigFile(settings, home.path(), prompter, *codec).run(ConfigFile::Save));
    Settings loaded = defaultSettings(pathUtf8(home.path()));
    ConfigFile(loaded, home.path(), prompter, *codec).run(ConfigFile::Load);
    EXPECT_TRUE(prompter.shown.empty()) << prompter.shown.front().text;
    EXPECT_EQ(loaded, settings);

    // A later call teaching one more screen adds to what the file holds: nothing taught gives way.
    RegionLearner again(loaded, RegionExp);
    const auto [sixth, sixthDigits] = screens.next();
    ASSERT_TRUE(again.add(sixth, sixthDigits).accepted()) << sixthDigits;
    EXPECT_FALSE(again.replacedPrior());
    again.applyTo(loaded);
    EXPECT_EQ(readWith(loaded, sixth), sixthDigits);

    // Forty more screens of the same UI, each read right or not at all: a wrong number would
    // become a gain and a record line.
    int right = 0;
    for (int i = 0; i < 40; ++i) {
        auto [image, digits] = screens.next();
        const std::string read = readWith(loaded, image);
        EXPECT_TRUE(read == digits || read.empty()) << "screen " << i << " shows " << digits << ", read " << read;
        right += read == digits ? 1 : 0;
    }
    EXPECT_GE(right, 39);
}

INSTANTIATE_TEST_SUITE_P(
    Uis, DrawnFontTest,
    testing::Values(DrawnFont{"Pixel", {1.0, 0, 0, false, false, ""}, 12, true, true, ReadingMode::Exact},
                    DrawnFont{"Label", {1.0, 0, 0, false, true, "EXP:"}, 12, true, true, ReadingMode::Shapes},
                    DrawnFont{"Scaled25", {2.5, 0, 0, false, false, ""}, 24, true, false, ReadingMode::Shapes},
                    DrawnFont{"Rows24", {3.4, 0, 0, true, true, ""}, 30, false, true, ReadingMode::Shapes},
                    // The built-in glyphs touch one another: each piece of ink holds several.
                    DrawnFont{"TouchingScaled15", {1.5, 0, 0, false, false, "", true}, 16, false, true, ReadingMode::Shapes},
                    DrawnFont{"TouchingSmoothed2", {2.0, 0, 0, true, false, "", true}, 20, false, true, ReadingMode::Shapes}),
    [](const testing::TestParamInfo<DrawnFont>& info) { return std::string(info.param.name); });

} // namespace
} // namespace tvx
