#include "DesktopSupport.h"

#include "GameScreen.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <thread>

namespace tvx {
namespace {

// The picture as two more kinds of bitmap a program may put on the clipboard.
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

// Taking the picture leaves it on the clipboard: it comes back the same a second time.
TEST_F(ClipboardTest, BitmapsOfEveryDepthComeBackAs24BitsBottomUpAndStayThere)
{
    // An odd width, so the rows of the result need padding.
    const Frame picture = test::noiseFrame(37, 23, 5);
    const struct {
        const char* kind;
        HBITMAP (*make)(const Frame&);
    } kinds[] = {{"screen-compatible", &test::deviceBitmap}, {"32 bits", &bitmap32},
                 {"24-bit top-down section", &section24}};
    for (const auto& kind : kinds) {
        SCOPED_TRACE(kind.kind);
        HBITMAP bitmap = kind.make(picture);
        ASSERT_NE(bitmap, nullptr);
        ASSERT_TRUE(test::setClipboard(CF_BITMAP, bitmap));
        for (const char* time : {"first", "again"}) {
            SCOPED_TRACE(time);
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
}

TEST_F(ClipboardTest, NoBitmapGivesNothing)
{
    ASSERT_TRUE(test::setClipboard());
    EXPECT_FALSE(screen->clipboardPicture().has_value());

    HGLOBAL text = GlobalAlloc(GMEM_MOVEABLE, 6);
    std::memcpy(GlobalLock(text), "hello", 6);
    GlobalUnlock(text);
    ASSERT_TRUE(test::setClipboard(CF_TEXT, text));
    EXPECT_FALSE(screen->clipboardPicture().has_value());
}

TEST_F(ClipboardTest, ClipboardHeldByAnotherProgramGivesNothing)
{
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
