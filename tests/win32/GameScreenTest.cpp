#include "DesktopSupport.h"
#include "support/GameScreen.h"

#include "GameScreen.h"
#include "recognition/ScreenRecognizer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <string>

namespace tvx {
namespace {

using platform::GameScreen;

class GameScreenTest : public testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_NE(game.handle(), nullptr);
        ASSERT_NE(screen, nullptr);
        ASSERT_TRUE(game.bringToFront());
        test::pumpMessages(200);
    }

    // A grab of these regions (all of the screen for none): 24 bits, the screen's size.
    Frame grab(std::span<const CaptureRegionRect> regions)
    {
        const auto bitmap = screen->grab(regions);
        if (!bitmap.has_value()) {
            ADD_FAILURE() << "no picture";
            return {};
        }
        EXPECT_EQ(bitmap->infoHeader.biBitCount, 24);
        EXPECT_EQ(bitmap->infoHeader.biWidth, GetSystemMetrics(SM_CXSCREEN));
        EXPECT_EQ(bitmap->infoHeader.biHeight, GetSystemMetrics(SM_CYSCREEN));
        return toFrame(*bitmap);
    }

    const Settings settings = defaultSettings("");
    const Frame picture = test::gameScreen({"137", "12345678", "9876543210"}, ScreenMode::FullScreen, 7, 800, 600);
    test::PaintedWindow game{L"MapleStory", picture};
    std::unique_ptr<GameScreen> screen = platform::makeGameScreen();
};

TEST_F(GameScreenTest, ProbeTellsFrontBackgroundAndMissing)
{
    // A loaded wine server may activate a new window a moment after it shows.
    ASSERT_TRUE(game.bringToFront());
    EXPECT_EQ(screen->state("MapleStory"), GameWindowState::Front);
    EXPECT_EQ(screen->state("MapleStory Launcher"), GameWindowState::Missing);
    EXPECT_EQ(screen->state(""), GameWindowState::Missing);

    test::PaintedWindow other(L"メモ帳", test::noiseFrame(100, 50, 3), 900, 700);
    ASSERT_TRUE(other.bringToFront());
    EXPECT_EQ(screen->state("MapleStory"), GameWindowState::Background);
    // The title goes to FindWindowW as UTF-16, not in the ANSI code page.
    EXPECT_EQ(screen->state("メモ帳"), GameWindowState::Front);

    ASSERT_TRUE(game.bringToFront());
    EXPECT_EQ(screen->state("MapleStory"), GameWindowState::Front);
    EXPECT_EQ(screen->state("メモ帳"), GameWindowState::Background);
}

// The whole screen holds the window exactly; a grab of regions holds those pixels, clipped
// to the screen, and black elsewhere. Neither route touches the clipboard.
TEST_F(GameScreenTest, GrabsCopyTheScreenOrOnlyItsRegionsAndLeaveTheClipboardAlone)
{
    const Frame mark = test::noiseFrame(8, 4, 11);
    ASSERT_TRUE(test::setClipboard(CF_BITMAP, test::deviceBitmap(mark)));
    const DWORD sequence = GetClipboardSequenceNumber();

    const Frame whole = grab({});
    ASSERT_GE(whole.width(), picture.width());
    ASSERT_GE(whole.height(), picture.height());
    for (int y = 0; y < picture.height(); ++y)
        ASSERT_EQ(0, std::memcmp(whole.row(y), picture.row(y), picture.rowBytes())) << "row " << y;

    const int width = GetSystemMetrics(SM_CXSCREEN);
    const std::array<CaptureRegionRect, kRegionCount>& regions = settings.CaptureRegion;
    const struct {
        const char* name;
        std::vector<CaptureRegionRect> rects;
        int pixels;
    } cases[] = {
        {"the game's three regions", {regions.begin(), regions.end()}, 50 * 9 + 90 * 9 + 146 * 9},
        {"regions reaching past the screen", {{-5, -5, 10, 10}, {width - 4, 10, 20, 3}}, 5 * 5 + 4 * 3},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const Frame part = grab(c.rects);
        ASSERT_EQ(part.width(), whole.width());
        ASSERT_EQ(part.height(), whole.height());
        int copied = 0;
        int wrong = 0;
        for (int y = 0; y < whole.height(); ++y)
            for (int x = 0; x < whole.width(); ++x) {
                const bool wanted = std::any_of(c.rects.begin(), c.rects.end(), [&](const CaptureRegionRect& r) {
                    return x >= r.StartX && x < r.StartX + r.SizeX && y >= r.StartY && y < r.StartY + r.SizeY;
                });
                copied += wanted;
                for (int b = 0; b < 3; ++b)
                    wrong += part.row(y)[x * 3 + b] != (wanted ? whole.row(y)[x * 3 + b] : 0);
            }
        EXPECT_EQ(copied, c.pixels);
        EXPECT_EQ(wrong, 0);
    }

    EXPECT_EQ(GetClipboardSequenceNumber(), sequence);
    const auto kept = screen->clipboardPicture();
    ASSERT_TRUE(kept.has_value());
    EXPECT_EQ(toFrame(*kept).bytes(), mark.bytes());
}

TEST_F(GameScreenTest, ANewPictureIsReadAtTheNextGrab)
{
    test::PaintedWindow cover(L"MapleStory", test::gameScreen({"", "42", "1000"}, ScreenMode::FullScreen, 9, 800, 600));
    ASSERT_TRUE(cover.bringToFront());
    const auto bitmap = screen->grab(settings.CaptureRegion);
    ASSERT_TRUE(bitmap.has_value());
    ScreenRecognizer recognizer(settings);
    std::vector<std::string> digits;
    for (int r = 0; r < kRegionCount; ++r) {
        recognizer.fill(r, *bitmap);
        recognizer.binarize(r);
        digits.push_back(recognizer.recognize(r).digits);
    }
    EXPECT_EQ(digits, (std::vector<std::string>{"", "42", "1000"}));
}

} // namespace
} // namespace tvx
