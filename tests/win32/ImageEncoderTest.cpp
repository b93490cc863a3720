#include "DesktopSupport.h"
#include "support/ReadFile.h"
#include "support/TempFolder.h"

#include "win32/Win32Ports.h"

#include <windows.h>
#include <objbase.h>
#include <gdiplus.h>

#include <gtest/gtest.h>

#include <cstdlib>

namespace tvx {
namespace {

namespace flat = Gdiplus::DllExports;

// Decodes an image file with GDI+ into a frame; empty when it cannot.
Frame decode(const std::filesystem::path& path)
{
    Gdiplus::GdiplusStartupInput input;
    ULONG_PTR token = 0;
    if (Gdiplus::GdiplusStartup(&token, &input, nullptr) != Gdiplus::Ok)
        return {};
    Frame frame;
    Gdiplus::GpBitmap* bitmap = nullptr;
    if (flat::GdipCreateBitmapFromFile(path.wstring().c_str(), &bitmap) == Gdiplus::Ok) {
        UINT width = 0;
        UINT height = 0;
        flat::GdipGetImageWidth(bitmap, &width);
        flat::GdipGetImageHeight(bitmap, &height);
        frame = Frame(static_cast<std::int32_t>(width), static_cast<std::int32_t>(height));
        for (UINT y = 0; y < height; ++y)
            for (UINT x = 0; x < width; ++x) {
                Gdiplus::ARGB colour = 0;
                flat::GdipBitmapGetPixel(bitmap, static_cast<INT>(x), static_cast<INT>(y), &colour);
                frame.setPixel(static_cast<std::int32_t>(x), static_cast<std::int32_t>(y),
                               static_cast<std::uint8_t>(colour), static_cast<std::uint8_t>(colour >> 8),
                               static_cast<std::uint8_t>(colour >> 16));
            }
        flat::GdipDisposeImage(bitmap);
    }
    Gdiplus::GdiplusShutdown(token);
    return frame;
}

double meanError(const Frame& a, const Frame& b)
{
    double sum = 0;
    for (std::size_t i = 0; i < a.bytes().size(); ++i)
        sum += std::abs(int{a.bytes()[i]} - int{b.bytes()[i]});
    return sum / static_cast<double>(a.bytes().size());
}

// Smooth areas with some detail, like a game screen, so JPEG quality shows.
Frame scene()
{
    Frame frame(123, 77);
    const Frame noise = test::noiseFrame(123, 77, 4);
    for (int y = 0; y < 77; ++y)
        for (int x = 0; x < 123; ++x)
            frame.setPixel(x, y, static_cast<std::uint8_t>(x * 2), static_cast<std::uint8_t>(y * 3),
                           static_cast<std::uint8_t>((x + y) % 40 < 20 ? 40 : 200 + noise.row(y)[x * 3] % 50));
    return frame;
}

class ImageEncoderTest : public testing::Test {
protected:
    test::TempFolder folder;
    std::unique_ptr<ImageEncoder> encoder = platform::makeGdiplusImageEncoder();
    Frame picture = scene();
};

// A Japanese name, as the player's folders have.
TEST_F(ImageEncoderTest, PngIsLosslessAndHasItsSignature)
{
    const auto path = folder.path() / std::filesystem::path(u8"給与明細.png");
    ASSERT_TRUE(encoder->writePng(picture, path));
    EXPECT_EQ(test::readAll(path).substr(0, 8), std::string("\x89PNG\r\n\x1a\n", 8));
    const Frame back = decode(path);
    ASSERT_EQ(back.width(), picture.width());
    ASSERT_EQ(back.height(), picture.height());
    EXPECT_EQ(back.bytes(), picture.bytes());
}

TEST_F(ImageEncoderTest, JpegFilesAreCompleteAndNinetyIsCloserAndLargerThanSeventy)
{
    std::string bytes[2];
    double error[2] = {};
    for (const int i : {0, 1}) {
        const int quality = i == 0 ? 70 : 90;
        SCOPED_TRACE(quality);
        const auto path = folder.path() / ("shot" + std::to_string(quality) + ".jpg");
        ASSERT_TRUE(encoder->writeJpeg(picture, path, quality));
        bytes[i] = test::readAll(path);
        ASSERT_GT(bytes[i].size(), 4u);
        EXPECT_EQ(bytes[i].substr(0, 3), "\xFF\xD8\xFF");
        EXPECT_EQ(bytes[i].substr(bytes[i].size() - 2), "\xFF\xD9");
        const Frame back = decode(path);
        ASSERT_EQ(back.width(), picture.width());
        ASSERT_EQ(back.height(), picture.height());
        error[i] = meanError(back, picture);
        EXPECT_LT(error[i], 12.0);
    }
    // Wine 8's GDI+ drops the encoder parameters and always writes its default quality.
    if (bytes[0] == bytes[1] && test::runningUnderWine())
        GTEST_SKIP() << "Wine's GDI+ ignores the JPEG quality parameter";
    EXPECT_TRUE(bytes[0] != bytes[1]);
    EXPECT_GT(bytes[1].size(), bytes[0].size());
    EXPECT_LT(error[1], error[0]);
}

TEST_F(ImageEncoderTest, MissingFolderOrEmptyPictureFails)
{
    EXPECT_FALSE(encoder->writePng(picture, folder.path() / "no" / "such.png"));
    EXPECT_FALSE(encoder->writeJpeg(picture, folder.path() / "no" / "such.jpg", 90));
    EXPECT_FALSE(encoder->writePng(Frame(), folder.path() / "empty.png"));
    EXPECT_FALSE(std::filesystem::exists(folder.path() / "empty.png"));
}

} // namespace
} // namespace tvx
