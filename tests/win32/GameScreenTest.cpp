#include "DesktopSupport.h"
#include "support/GameScreen.h"

#include "GameScreen.h"
#include "recognition/ScreenRecognizer.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

namespace tvx {
namespace {

using platform::GameScreen;

const std::array<std::string, kRegionCount> kNumbers{"137", "12345678", "9876543210"};

bool samePixels(const Frame& screen, const Frame& picture, int left, int top)
{
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width() * 3; ++x)
            if (screen.row(top + y)[left * 3 + x] != picture.row(y)[x])
                return false;
    return true;
}

bool inside(const CaptureRegionRect& rect, int x, int y)
{
    return x >= rect.StartX && x < rect.StartX + rect.SizeX && y >= rect.StartY && y < rect.StartY + rect.SizeY;
}

class GameScreenTest : public testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_NE(game.handle(), nullptr);
        ASSERT_NE(screen, nullptr);
        ASSERT_TRUE(game.bringToFront());
        test::pumpMessages(200);
    }

    struct Reading { std::int32_t level; Currency exp; Currency money; };
    Reading read(const CaptureBitmap& bitmap) const
    {
        ScreenRecognizer recognizer(settings);
        std::array<std::string, kRegionCount> digits;
        for (int r = 0; r < kRegionCount; ++r) {
            recognizer.fill(r, bitmap);
            recognizer.binarize(r);
            digits[static_cast<std::size_t>(r)] = recognizer.recognize(r).digits;
        }
        return {levelFromText(digits[0]), amountFromText(digits[1]), amountFromText(digits[2])};
    }

    const Settings settings = defaultSettings("");
    const Frame picture = test::gameScreen(kNumbers, ScreenMode::FullScreen, 7, 800, 600);
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

TEST_F(GameScreenTest, WholeScreenGrabHoldsTheWindowExactly)
{
    const auto bitmap = screen->grab({});
    ASSERT_TRUE(bitmap.has_value());
    EXPECT_EQ(bitmap->infoHeader.biBitCount, 24);
    EXPECT_EQ(bitmap->infoHeader.biWidth, GetSystemMetrics(SM_CXSCREEN));
    EXPECT_EQ(bitmap->infoHeader.biHeight, GetSystemMetrics(SM_CYSCREEN));
    const Frame grabbed = toFrame(*bitmap);
    ASSERT_GE(grabbed.width(), picture.width());
    ASSERT_GE(grabbed.height(), picture.height());
    EXPECT_TRUE(samePixels(grabbed, picture, 0, 0));
}

TEST_F(GameScreenTest, RegionGrabCopiesOnlyTheRegions)
{
    const auto bitmap = screen->grab(settings.CaptureRegion);
    ASSERT_TRUE(bitmap.has_value());
    EXPECT_EQ(bitmap->infoHeader.biWidth, GetSystemMetrics(SM_CXSCREEN));
    EXPECT_EQ(bitmap->infoHeader.biHeight, GetSystemMetrics(SM_CYSCREEN));
    const Frame grabbed = toFrame(*bitmap);
    int regionPixels = 0;
    int wrong = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const bool wanted = inside(settings.CaptureRegion[0], x, y) || inside(settings.CaptureRegion[1], x, y) ||
                                inside(settings.CaptureRegion[2], x, y);
            regionPixels += wanted;
            for (int c = 0; c < 3; ++c) {
                const std::uint8_t expected = wanted ? picture.row(y)[x * 3 + c] : 0;
                wrong += grabbed.row(y)[x * 3 + c] != expected;
            }
        }
    }
    EXPECT_EQ(regionPixels, 50 * 9 + 90 * 9 + 146 * 9);
    EXPECT_EQ(wrong, 0);
}

TEST_F(GameScreenTest, RegionsReachingPastTheScreenAreClipped)
{
    const int width = GetSystemMetrics(SM_CXSCREEN);
    const std::array<CaptureRegionRect, 2> rects{{{-5, -5, 10, 10}, {width - 4, 10, 20, 3}}};
    const auto whole = screen->grab({});
    const auto clipped = screen->grab(rects);
    ASSERT_TRUE(whole.has_value());
    ASSERT_TRUE(clipped.has_value());
    const Frame all = toFrame(*whole);
    const Frame part = toFrame(*clipped);
    ASSERT_EQ(part.width(), all.width());
    ASSERT_EQ(part.height(), all.height());
    int wrong = 0;
    int copied = 0;
    for (int y = 0; y < all.height(); ++y)
        for (int x = 0; x < all.width(); ++x) {
            const bool wanted = inside(rects[0], x, y) || inside(rects[1], x, y);
            copied += wanted;
            for (int c = 0; c < 3; ++c)
                wrong += part.row(y)[x * 3 + c] != (wanted ? all.row(y)[x * 3 + c] : 0);
        }
    EXPECT_EQ(copied, 5 * 5 + 4 * 3);
    EXPECT_EQ(wrong, 0);
}

TEST_F(GameScreenTest, ANewPictureIsReadAtTheNextGrab)
{
    const Frame changed = test::gameScreen({"", "42", "1000"}, ScreenMode::FullScreen, 9, 800, 600);
    test::PaintedWindow cover(L"MapleStory", changed);
    ASSERT_TRUE(cover.bringToFront());
    const auto bitmap = screen->grab(settings.CaptureRegion);
    ASSERT_TRUE(bitmap.has_value());
    const Reading reading = read(*bitmap);
    EXPECT_EQ(reading.level, -1);
    EXPECT_EQ(reading.exp, Currency::fromInt(42));
    EXPECT_EQ(reading.money, Currency::fromInt(1000));
}

TEST_F(GameScreenTest, DirectGrabLeavesTheClipboardAlone)
{
    const Frame mark = test::noiseFrame(8, 4, 11);
    HDC screenDc = GetDC(nullptr);
    const BITMAPINFO info = test::topDownInfo(mark);
    const auto rows = test::paddedRows(mark);
    HBITMAP bitmap = CreateDIBitmap(screenDc, &info.bmiHeader, CBM_INIT, rows.data(), &info, DIB_RGB_COLORS);
    ReleaseDC(nullptr, screenDc);
    ASSERT_TRUE(test::putOnClipboard(bitmap));
    const DWORD sequence = GetClipboardSequenceNumber();

    ASSERT_TRUE(screen->grab({}).has_value());
    ASSERT_TRUE(screen->grab(settings.CaptureRegion).has_value());

    EXPECT_EQ(GetClipboardSequenceNumber(), sequence);
    const auto kept = screen->clipboardPicture();
    ASSERT_TRUE(kept.has_value());
    EXPECT_EQ(toFrame(*kept).bytes(), mark.bytes());
}

} // namespace
} // namespace tvx
