// The game's window and screen through Win32: the probe, the direct grab and the clipboard.
#include "DesktopSupport.h"
#include "support/GameScreen.h"

#include "GameScreen.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <thread>
#include <tuple>

namespace tvx {
namespace {

class GameScreenTest : public testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(game.bringToFront());
        test::pumpMessages(200);
    }

    // A grab of these regions (all of the screen for none): 24 bits, the screen's size.
    Frame grab(std::span<const CaptureRegionRect> regions)
    {
        const CaptureBitmap bitmap = screen->grab(regions).value_or(CaptureBitmap{});
        const BitmapInfoHeader& info = bitmap.infoHeader;
        EXPECT_EQ(std::tuple(info.biBitCount, info.biWidth, info.biHeight),
                  std::tuple(24, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)));
        return toFrame(bitmap);
    }

    const Settings settings = defaultSettings("");
    const Frame picture = test::gameScreen({"137", "12345678", "9876543210"}, ScreenMode::FullScreen, 7, 800, 600);
    test::PaintedWindow game{L"MapleStory", picture};
    std::unique_ptr<platform::GameScreen> screen = platform::makeGameScreen();
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
}

// The whole screen holds the window exactly; a grab of regions holds those pixels, clipped
// to the screen, and black elsewhere. Neither route touches the clipboard.
TEST_F(GameScreenTest, GrabsCopyTheScreenOrOnlyItsRegionsAndLeaveTheClipboardAlone)
{
    ASSERT_TRUE(test::setClipboard(CF_BITMAP, test::deviceBitmap(test::noiseFrame(8, 4, 11))));
    const DWORD sequence = GetClipboardSequenceNumber();

    const Frame whole = grab({});
    ASSERT_GE(whole.width(), picture.width());
    ASSERT_GE(whole.height(), picture.height());
    for (int y = 0; y < picture.height(); ++y)
        ASSERT_EQ(0, std::memcmp(whole.row(y), picture.row(y), picture.rowBytes())) << "row " << y;

    const struct { const char* name; std::vector<CaptureRegionRect> rects; int pixels; } cases[] = {
        {"the game's regions", {settings.CaptureRegion.begin(), settings.CaptureRegion.end()}, (50 + 90 + 146) * 9},
        {"reaching past the screen", {{-5, -5, 10, 10}, {GetSystemMetrics(SM_CXSCREEN) - 4, 10, 20, 3}}, 5 * 5 + 4 * 3},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const Frame part = grab(c.rects);
        ASSERT_EQ(part.bytes().size(), whole.bytes().size()); // both the screen's width (grab)
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
}

// A 24-bit top-down section: another kind of bitmap a program may put on the clipboard.
HBITMAP section24(const Frame& picture)
{
    CaptureBitmap rows = toCaptureBitmap(picture);
    const BITMAPINFO info = test::dibInfo(picture.width(), -picture.height());
    void* bits = nullptr;
    HBITMAP bitmap = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    for (std::int32_t y = 0; bitmap != nullptr && y < picture.height(); ++y)
        std::memcpy(static_cast<std::uint8_t*>(bits) + y * rows.stride, rows.screenRow(y), rows.stride);
    return bitmap;
}

class ClipboardTest : public testing::Test {
protected:
    void TearDown() override { test::setClipboard(); }

    std::unique_ptr<platform::GameScreen> screen = platform::makeGameScreen();
};

TEST_F(ClipboardTest, ScreenAndDibSectionBitmapsComeBackAs24BitsBottomUpAndStayThere)
{
    // An odd width, so the rows of the result need padding.
    const Frame picture = test::noiseFrame(37, 23, 5);
    const struct { const char* kind; HBITMAP (*make)(const Frame&); } kinds[] = {
        {"screen-compatible", &test::deviceBitmap}, {"24-bit top-down section", &section24}};
    for (const auto& kind : kinds) {
        SCOPED_TRACE(kind.kind);
        HBITMAP bitmap = kind.make(picture);
        ASSERT_NE(bitmap, nullptr);
        ASSERT_TRUE(test::setClipboard(CF_BITMAP, bitmap));
        const auto taken = screen->clipboardPicture();
        ASSERT_TRUE(taken.has_value());
        // A positive height: bottom-up rows, so the file's first row is the picture's last.
        const BitmapInfoHeader& info = taken->infoHeader;
        EXPECT_EQ(std::tuple(taken->fileHeader.bfType, info.biBitCount, info.biWidth, info.biHeight, taken->stride),
                  std::tuple(kBitmapType, 24, 37, 23, 112));
        EXPECT_EQ(toFrame(*taken).bytes(), picture.bytes());
        EXPECT_EQ(toFrame(screen->clipboardPicture().value_or(CaptureBitmap{})).bytes(), picture.bytes()) << "again";
    }
}

TEST_F(ClipboardTest, NoBitmapOrAClipboardHeldByAnotherProgramGivesNothing)
{
    ASSERT_TRUE(test::setClipboard());
    EXPECT_FALSE(screen->clipboardPicture().has_value());

    ASSERT_TRUE(test::setClipboard(CF_BITMAP, test::deviceBitmap(test::noiseFrame(4, 4, 1))));
    std::atomic<int> stage{0};
    std::thread holder([&stage] {
        // A window of another thread keeps the clipboard open.
        HWND owner = CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
        stage = OpenClipboard(owner) ? 1 : -1;
        while (stage == 1)
            Sleep(5);
        CloseClipboard();
        DestroyWindow(owner);
    });
    while (stage == 0)
        Sleep(5);
    const bool opened = stage == 1;
    const auto taken = screen->clipboardPicture();
    stage = 2;
    holder.join();
    ASSERT_TRUE(opened);
    EXPECT_FALSE(taken.has_value());
    EXPECT_TRUE(screen->clipboardPicture().has_value());
}

TEST_F(ClipboardTest, PrintScreenKeyPutsTheScreenOnTheClipboard)
{
    const Frame picture = test::noiseFrame(320, 200, 21);
    test::PaintedWindow window(L"PrintScreenTarget", picture, 10, 20);
    ASSERT_TRUE(window.bringToFront());
    ASSERT_TRUE(test::setClipboard());
    ASSERT_TRUE(screen->pressPrintScreen());
    const bool arrived = test::pumpUntil([] { return IsClipboardFormatAvailable(CF_BITMAP) != FALSE; }, 1500);
    // Wine 8 has no Print Screen handler: the key reaches the window and nothing more.
    if (!arrived && test::runningUnderWine())
        GTEST_SKIP() << "Wine does not copy the screen to the clipboard on Print Screen";
    ASSERT_TRUE(arrived);
    const auto taken = screen->clipboardPicture();
    ASSERT_TRUE(taken.has_value());
    const Frame shot = toFrame(*taken);
    ASSERT_GE(shot.width(), 330);
    ASSERT_GE(shot.height(), 220);
    for (int y = 0; y < picture.height(); ++y)
        ASSERT_EQ(0, std::memcmp(shot.row(20 + y) + 30, picture.row(y), picture.rowBytes())) << "row " << y;
}

} // namespace
} // namespace tvx
