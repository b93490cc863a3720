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
    Gdiplus::GpBitmap* bitmap = nullptr;
    HBITMAP handle = nullptr;
    if (flat::GdipCreateBitmapFromFile(path.wstring().c_str(), &bitmap) == Gdiplus::Ok) {
        flat::GdipCreateHBITMAPFromBitmap(bitmap, &handle, 0);
        flat::GdipDisposeImage(bitmap);
    }
    Gdiplus::GdiplusShutdown(token);
    const Frame frame = handle != nullptr ? test::frameOf(handle) : Frame{};
    DeleteObject(handle);
    return frame;
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

// PNG is lossless; JPEG at 90 is closer to the picture and larger than at 70. A Japanese
// name, as the player's folders have.
TEST_F(ImageEncoderTest, FilesAreCompleteWithTheirSignaturesAndPngIsLossless)
{
    const struct {
        std::filesystem::path name;
        int quality; // 0 for PNG
        std::string head;
        std::string tail;
        double maxError;
    } files[] = {
        {u8"給与明細.png", 0, std::string("\x89PNG\r\n\x1a\n", 8), "", 0},
        {"shot70.jpg", 70, "\xFF\xD8\xFF", "\xFF\xD9", 12},
        {"shot90.jpg", 90, "\xFF\xD8\xFF", "\xFF\xD9", 12},
    };
    std::string bytes[3];
    double error[3] = {};
    for (int i = 0; i < 3; ++i) {
        const auto& file = files[i];
        SCOPED_TRACE(file.quality);
        const auto path = folder.path() / file.name;
        ASSERT_TRUE(file.quality == 0 ? encoder->writePng(picture, path)
                                      : encoder->writeJpeg(picture, path, file.quality));
        bytes[i] = test::readAll(path);
        ASSERT_GT(bytes[i].size(), file.head.size() + file.tail.size());
        EXPECT_TRUE(bytes[i].starts_with(file.head));
        EXPECT_TRUE(bytes[i].ends_with(file.tail));
        const Frame back = decode(path);
        ASSERT_EQ(back.width(), picture.width());
        ASSERT_EQ(back.height(), picture.height());
        error[i] = 0;
        for (std::size_t b = 0; b < back.bytes().size(); ++b)
            error[i] += std::abs(int{back.bytes()[b]} - int{picture.bytes()[b]});
        error[i] /= static_cast<double>(back.bytes().size());
        EXPECT_LE(error[i], file.maxError);
    }
    // Wine 8's GDI+ drops the encoder parameters and always writes its default quality.
    if (bytes[1] == bytes[2] && test::runningUnderWine())
        GTEST_SKIP() << "Wine's GDI+ ignores the JPEG quality parameter";
    EXPECT_TRUE(bytes[1] != bytes[2]);
    EXPECT_GT(bytes[2].size(), bytes[1].size());
    EXPECT_LT(error[2], error[1]);
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
