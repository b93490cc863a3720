#include "recognition/RegionLearner.h"

#include "config/ConfigFile.h"
#include "recognition/ScreenRecognizer.h"
#include "recognition/ShapeReader.h"
#include "TextCodecFactory.h"
#include "base/Utf8Path.h"
#include "support/FakeClock.h"
#include "support/ScaledFont.h"
#include "support/ScriptedPrompter.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace tvx {
namespace {

struct DrawnFont {
    const char* name;
    test::ScaledDrawing how;
    std::int32_t rows;     // of the region
    bool separators;       // "12,345" rather than "12345"
    bool endMark;          // "]" after the number, else blank to the region's edge
    ReadingMode mode;      // what the learner should choose
};

std::string withSeparators(const std::string& digits)
{
    std::string out;
    for (std::size_t i = 0; i < digits.size(); ++i) {
        if (i > 0 && (digits.size() - i) % 3 == 0)
            out += ',';
        out += digits[i];
    }
    return out;
}

class DrawnScreens {
public:
    DrawnScreens(const DrawnFont& font, std::uint32_t seed) : m_font(font), m_random(seed)
    {
        m_rect = {10, 20, static_cast<std::int32_t>(std::ceil(62 * font.how.scale)) + 12, font.rows};
    }

    const CaptureRegionRect& rect() const { return m_rect; }

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
        std::string text = std::string(how.label) + (m_font.separators ? withSeparators(digits) : digits);
        if (m_font.endMark)
            text += "]";
        how.label = "";
        return {test::scaledScreen(m_rect, text, how), digits};
    }

private:
    DrawnFont m_font;
    std::mt19937 m_random;
    CaptureRegionRect m_rect;
};

Settings regionSettings(const CaptureRegionRect& rect)
{
    Settings s = defaultSettings("");
    s.CaptureRegion[RegionExp] = rect;
    s.BinaryThreshold[RegionExp] = 135;
    s.BinaryMask[RegionExp] = -1;
    return s;
}

std::string readWith(const Settings& settings, const CaptureBitmap& image)
{
    ScreenRecognizer recognizer(settings);
    recognizer.fill(RegionExp, image);
    recognizer.binarize(RegionExp);
    return recognizer.recognize(RegionExp).digits;
}

// Through the configuration file and back, as the program's next start reads it.
Settings savedAndLoaded(Settings settings)
{
    test::TempFolder home;
    test::ScriptedPrompter prompter;
    const auto codec = platform::makeTextCodec();
    settings.SaveFolder = pathUtf8(home.path());
    const Settings saved = settings;
    EXPECT_TRUE(ConfigFile(settings, home.path(), prompter, *codec).run(ConfigFile::Save));
    Settings loaded = defaultSettings(pathUtf8(home.path()));
    ConfigFile(loaded, home.path(), prompter, *codec).run(ConfigFile::Load);
    EXPECT_TRUE(prompter.shown.empty()) << prompter.shown.front().text;
    EXPECT_EQ(loaded, saved);
    return loaded;
}

class DrawnFontTest : public testing::TestWithParam<DrawnFont> {};

// Taught five screens, the region reads other screens of the same UI right or not at all:
// a wrong number would become a gain and a record line.
TEST_P(DrawnFontTest, FiveScreensTaughtReadFortyOthersRightOrNotAtAll)
{
    const DrawnFont& font = GetParam();
    DrawnScreens screens(font, 7);
    Settings settings = regionSettings(screens.rect());
    RegionLearner learner(settings, RegionExp);
    int taught = 0;
    // Between them the five show every digit.
    for (const char* number : {"3141592", "6535897", "9323846", "2643383", "2795028"}) {
        auto [image, digits] = screens.next(number);
        taught += learner.add(image, digits).accepted() ? 1 : 0;
    }
    ASSERT_EQ(taught, 5);
    EXPECT_EQ(learner.mode(), font.mode);
    learner.applyTo(settings);
    settings = savedAndLoaded(settings);

    int right = 0;
    for (int i = 0; i < 40; ++i) {
        auto [image, digits] = screens.next();
        const std::string read = readWith(settings, image);
        if (read == digits) {
            ++right;
        } else {
            EXPECT_EQ(read, "") << "screen " << i << " shows " << digits;
        }
    }
    EXPECT_GE(right, 39);
}

INSTANTIATE_TEST_SUITE_P(
    Uis, DrawnFontTest,
    testing::Values(DrawnFont{"Pixel", {1.0, 0, 0, false, false, ""}, 12, true, true, ReadingMode::Exact},
                    DrawnFont{"NarrowOne", {1.0, 0, 0, false, true, ""}, 12, false, true, ReadingMode::Shapes},
                    DrawnFont{"Label", {1.0, 0, 0, false, true, "EXP:"}, 12, true, true, ReadingMode::Shapes},
                    DrawnFont{"Scaled15", {1.5, 0, 0, false, false, ""}, 16, true, true, ReadingMode::Shapes},
                    DrawnFont{"Smoothed2", {2.0, 0, 0, true, false, ""}, 20, false, true, ReadingMode::Shapes},
                    DrawnFont{"Scaled25", {2.5, 0, 0, false, false, ""}, 24, true, false, ReadingMode::Shapes},
                    DrawnFont{"Rows24", {3.4, 0, 0, true, true, ""}, 30, false, true, ReadingMode::Shapes},
                    // The built-in glyphs touch one another: each piece of ink holds several.
                    DrawnFont{"TouchingScaled15", {1.5, 0, 0, false, false, "", true}, 16, false, true, ReadingMode::Shapes},
                    DrawnFont{"TouchingSmoothed2", {2.0, 0, 0, true, false, "", true}, 20, false, true, ReadingMode::Shapes},
                    DrawnFont{"TouchingScaled25", {2.5, 0, 0, false, false, "", true}, 24, false, true, ReadingMode::Shapes}),
    [](const testing::TestParamInfo<DrawnFont>& info) { return std::string(info.param.name); });

} // namespace
} // namespace tvx

namespace tvx {
namespace {

// Taught one screen a call, each through the file and back, a scaled UI's region adds up
// what every call taught and reads the screens of all of them.
TEST(RegionLearnerTest, AScaledUiTaughtOneScreenACallAddsUp)
{
    const DrawnFont font{"Scaled25", {2.5, 0, 0, false, false, "", true}, 24, false, true, ReadingMode::Shapes};
    DrawnScreens screens(font, 11);
    Settings settings = regionSettings(screens.rect());
    std::vector<std::pair<CaptureBitmap, std::string>> taught;
    for (const char* number : {"3141592", "6535897", "9323846", "2643383", "2795028"}) {
        taught.push_back(screens.next(number));
        RegionLearner learner(settings, RegionExp);
        ASSERT_TRUE(learner.add(taught.back().first, taught.back().second).accepted()) << number;
        EXPECT_FALSE(learner.replacedPrior()) << number;
        learner.applyTo(settings);
        settings = savedAndLoaded(settings);
        for (const auto& [image, digits] : taught)
            EXPECT_EQ(readWith(settings, image), digits) << "after " << number;
    }
    EXPECT_EQ(missingShapeDigits(settings.Reading[RegionExp]), "");
    int right = 0;
    for (int i = 0; i < 40; ++i) {
        auto [image, digits] = screens.next();
        const std::string read = readWith(settings, image);
        right += read == digits ? 1 : 0;
        if (read != digits) {
            EXPECT_EQ(read, "") << digits;
        }
    }
    EXPECT_GE(right, 39);
}

// A digit no screen showed is read as nothing, never as the taught digit it looks most like.
TEST(RegionLearnerTest, ADigitNeverTaughtFailsTheReading)
{
    for (const DrawnFont& font : {DrawnFont{"Exact", {1.0, 0, 0, false, false, ""}, 12, false, true, ReadingMode::Exact},
                                  DrawnFont{"Shapes", {2.0, 0, 0, true, false, ""}, 20, false, true, ReadingMode::Shapes}}) {
        DrawnScreens screens(font, 3);
        Settings settings = regionSettings(screens.rect());
        RegionLearner learner(settings, RegionExp);
        for (const char* number : {"3141592", "6535897", "9323846", "2643383"}) {
            auto [image, digits] = screens.next(number);
            ASSERT_TRUE(learner.add(image, digits).accepted()) << font.name << " " << number;
        }
        EXPECT_EQ(learner.missing(), "0") << font.name;
        learner.applyTo(settings);
        EXPECT_EQ(readWith(settings, screens.next("2051").first), "") << font.name;
        EXPECT_EQ(readWith(settings, screens.next("2851").first), "2851") << font.name;
    }
}

} // namespace
} // namespace tvx
