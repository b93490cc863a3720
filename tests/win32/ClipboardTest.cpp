#include "DesktopSupport.h"

#include "GameScreen.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace tvx {
namespace {

// The same picture as three kinds of bitmap a program may put on the clipboard.
HBITMAP deviceBitmap(const Frame& picture)
{
    HDC screen = GetDC(nullptr);
    const BITMAPINFO info = test::topDownInfo(picture);
    const auto rows = test::paddedRows(picture);
    HBITMAP bitmap = CreateDIBitmap(screen, &info.bmiHeader, CBM_INIT, rows.data(), &info, DIB_RGB_COLORS);
    ReleaseDC(nullptr, screen);
    return bitmap;
}

HBITMAP bitmap32(const Frame& picture)
{
    std::vector<std::uint8_t> bits;
    for (std::int32_t y = 0; y < picture.height(); ++y)
        for (std::int32_t x = 0; x < picture.width(); ++x) {
            const std::uint8_t* p = picture.row(y) + 3 * x;
            bits.insert(bits.end(), {p[0], p[1], p[2], 0xFF});
        }
    return CreateBitmap(picture.width(), picture.height(), 1, 32, bits.data());
}

HBITMAP section24(const Frame& picture)
{
    const BITMAPINFO info = test::topDownInfo(picture);
    void* bits = nullptr;
    HBITMAP bitmap = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    if (bitmap != nullptr) {
        const auto rows = test::paddedRows(picture);
        std::memcpy(bits, rows.data(), rows.size());
    }
    return bitmap;
}

class ClipboardTest : public testing::Test {
protected:
    void TearDown() override { test::emptyClipboard(); }

    std::unique_ptr<platform::GameScreen> screen = platform::makeGameScreen();
};

TEST_F(ClipboardTest, BitmapsOfEveryDepthComeBackAs24BitsBottomUp)
{
    // An odd width, so the rows of the result need padding.
    const Frame picture = test::noiseFrame(37, 23, 5);
    const struct {
        const char* kind;
        HBITMAP (*make)(const Frame&);
    } kinds[] = {{"screen-compatible", &deviceBitmap}, {"32 bits", &bitmap32}, {"24-bit section", &section24}};
    for (const auto& kind : kinds) {
        SCOPED_TRACE(kind.kind);
        HBITMAP bitmap = kind.make(picture);
        ASSERT_NE(bitmap, nullptr);
        ASSERT_TRUE(test::putOnClipboard(bitmap));
        const auto taken = screen->clipboardPicture();
        ASSERT_TRUE(taken.has_value());
        EXPECT_EQ(taken->fileHeader.bfType, kBitmapType);
        EXPECT_EQ(taken->infoHeader.biBitCount, 24);
        EXPECT_EQ(taken->infoHeader.biWidth, 37);
        EXPECT_EQ(taken->infoHeader.biHeight, 23); // positive: bottom-up rows
        EXPECT_EQ(taken->stride, 112);
        // The file's first row is the picture's last.
        EXPECT_EQ(taken->at(0, 0), picture.row(22)[0]);
        EXPECT_EQ(toFrame(*taken).bytes(), picture.bytes());
    }
}

TEST_F(ClipboardTest, TakingThePictureLeavesItOnTheClipboard)
{
    const Frame picture = test::noiseFrame(16, 16, 8);
    ASSERT_TRUE(test::putOnClipboard(deviceBitmap(picture)));
    ASSERT_TRUE(screen->clipboardPicture().has_value());
    const auto again = screen->clipboardPicture();
    ASSERT_TRUE(again.has_value());
    EXPECT_EQ(toFrame(*again).bytes(), picture.bytes());
}

TEST_F(ClipboardTest, NoBitmapGivesNothing)
{
    ASSERT_TRUE(test::emptyClipboard());
    EXPECT_FALSE(screen->clipboardPicture().has_value());

    // Text only.
    ASSERT_TRUE(OpenClipboard(nullptr));
    EmptyClipboard();
    HGLOBAL text = GlobalAlloc(GMEM_MOVEABLE, 6);
    std::memcpy(GlobalLock(text), "hello", 6);
    GlobalUnlock(text);
    ASSERT_NE(SetClipboardData(CF_TEXT, text), nullptr);
    CloseClipboard();
    EXPECT_FALSE(screen->clipboardPicture().has_value());
}

TEST_F(ClipboardTest, ClipboardHeldByAnotherProgramGivesNothing)
{
    ASSERT_TRUE(test::putOnClipboard(deviceBitmap(test::noiseFrame(4, 4, 1))));
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
    ASSERT_TRUE(test::emptyClipboard());
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
