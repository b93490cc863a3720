#include "recognition/CaptureFile.h"
#include "recognition/PixelLevels.h"
#include "base/Errors.h"
#include "support/ExpectError.h"
#include "support/ReadFile.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <tuple>
#include <utility>

namespace tvx {
namespace {

// A bitmap file's header values, so tests can bend any of them.
struct BitmapHeader {
    std::uint16_t type = kBitmapType;
    std::uint32_t offset = 54;
    std::int32_t width = 4;
    std::int32_t height = 3;
    std::uint16_t bits = 24;

    // The little-endian file: the 54 header bytes, then pixel bytes 1, 2, 3...
    std::vector<std::uint8_t> file(std::size_t pixelBytes) const
    {
        std::vector<std::uint8_t> out(54);
        // Each value written four bytes wide, in order: a two-byte field's zeros are overwritten by the next.
        const std::pair<std::size_t, std::uint32_t> fields[] = {
            {0, type}, {2, static_cast<std::uint32_t>(54 + pixelBytes)}, {10, offset}, {14, 40},
            {18, static_cast<std::uint32_t>(width)}, {22, static_cast<std::uint32_t>(height)}, {26, 1}, {28, bits}};
        for (const auto& [at, value] : fields)
            for (std::size_t i = 0; i < 4; ++i)
                out[at + i] = static_cast<std::uint8_t>(value >> (8 * i));
        for (std::size_t i = 0; i < pixelBytes; ++i)
            out.push_back(static_cast<std::uint8_t>(i + 1));
        return out;
    }
};

TEST(CaptureFile, TheHeadersDecideTheStrideAndWhatIsRefused)
{
    // 4 x 3 at 24 bits unless told: rows of 12 bytes, 36 pixel bytes. Pixels follow the 54
    // header bytes; an offset other than 54 skips exactly four more, wherever it points.
    using R = CaptureLoadResult;
    struct Case { const char* name; BitmapHeader header; std::size_t pixelBytes; R result; std::int64_t stride = 0; };
    const Case cases[] = {
        {"24 bits, 1 wide", {.width = 1}, 12, R::Read, 4},
        {"1 bit", {.width = 33, .bits = 1}, 24, R::Read, 8},
        {"top-down", {.height = -3}, 36, R::Read, 12},
        {"one byte short", {}, 35, R::Truncated},
        {"offset 58, whole", {.offset = 58}, 40, R::Read, 12},
        {"offset 58, one byte short", {.offset = 58}, 39, R::Truncated},
        {"offset 58, two bytes", {.offset = 58}, 2, R::Truncated},
        {"png signature", {.type = 0x5089}, 36, R::NotBitmapType},
        {"zero width", {.width = 0}, 36, R::BadDimensions},
        {"zero height", {.height = 0}, 36, R::BadDimensions},
        {"huge", {.width = 2000000000, .height = 2000000000, .bits = 32}, 36, R::BadDimensions},
        {"most negative height", {.height = INT32_MIN}, 36, R::BadDimensions},
    };
    CaptureBitmap bitmap;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(parseCaptureBitmap(c.header.file(c.pixelBytes), bitmap), c.result);
        // A refused file leaves no pixels behind to be read as a picture.
        EXPECT_EQ(bitmap.pixels.empty(), c.result != R::Read);
        if (c.result == R::Read) {
            EXPECT_EQ(bitmap.stride, c.stride);
            EXPECT_EQ(bitmap.pixels.front(), c.header.offset == 54 ? 1 : 5);
            EXPECT_EQ(bitmap.pixels.size(), static_cast<std::size_t>(c.stride) * 3);
        }
    }
    const std::vector<std::uint8_t> tiny = {'B', 'M', 0};
    EXPECT_EQ(parseCaptureBitmap(tiny, bitmap), CaptureLoadResult::BadDimensions);
    EXPECT_EQ(parseCaptureBitmap({}, bitmap), CaptureLoadResult::NotBitmapType);
}

TEST(CaptureFile, LoadChecksThePathBeforeTheFile)
{
    const test::TempFolder temp;
    const std::filesystem::path& folder = temp.path();
    Frame frame(3, 2);
    ASSERT_TRUE(writeBitmap24(folder / "Capture.BMP", frame));
    const std::vector<std::uint8_t> whole = encodeBitmap24(frame);
    std::ofstream(folder / "Capture.png", std::ios::binary) << "not a bitmap";
    std::ofstream(folder / "short.bmp", std::ios::binary)
        .write(reinterpret_cast<const char*>(whole.data()), static_cast<std::streamsize>(whole.size() - 1));
    std::filesystem::create_directory(folder / "folder.bmp");

    // One bitmap for all, as a caller reading a folder of images keeps it: each refusal comes
    // after a good read and must not leave that picture behind.
    const std::pair<std::filesystem::path, CaptureLoadResult> refused[] = {
        {"", CaptureLoadResult::EmptyPath},
        {folder / "Capture.png", CaptureLoadResult::NotBmpName},
        {folder / "folder.bmp", CaptureLoadResult::NotAFile},
        {folder / "short.bmp", CaptureLoadResult::Truncated},
    };
    CaptureBitmap bitmap;
    for (const auto& [path, result] : refused) {
        ASSERT_EQ(LoadCaptureBitmap(folder / "Capture.BMP", bitmap), CaptureLoadResult::Read);
        ASSERT_FALSE(bitmap.pixels.empty());
        EXPECT_EQ(LoadCaptureBitmap(path, bitmap), result) << path;
        EXPECT_TRUE(bitmap.pixels.empty()) << path;
        EXPECT_FALSE(describe(result).empty());
    }
    EXPECT_FALSE(std::filesystem::exists(folder / "Capture.BMP.tmp"));
}

TEST(CaptureFile, TheInMemoryCaptureMatchesTheFileReadBack)
{
    // Odd widths give row padding; the direct conversion and the file must agree byte for byte.
    const test::TempFolder temp;
    for (const std::int32_t width : {1, 2, 3, 4, 5}) {
        Frame frame(width, 3);
        for (std::size_t i = 0; i < frame.bytes().size(); ++i)
            frame.bytes()[i] = static_cast<std::uint8_t>(i * 7 + 1);
        const std::filesystem::path file = temp.path() / "frame.bmp";
        ASSERT_TRUE(writeBitmap24(file, frame));
        CaptureBitmap fromFile;
        ASSERT_EQ(LoadCaptureBitmap(file, fromFile), CaptureLoadResult::Read);
        const CaptureBitmap direct = toCaptureBitmap(frame);
        EXPECT_EQ(std::tie(direct.pixels, direct.stride, direct.infoHeader.biSizeImage),
                  std::tie(fromFile.pixels, fromFile.stride, fromFile.infoHeader.biSizeImage)) << "width " << width;
        EXPECT_EQ(toFrame(direct).bytes(), frame.bytes());

        // Written from the capture itself: the same file, padding written as zeros even
        // where the capture's own padding holds something else.
        CaptureBitmap dirtyPadding = direct;
        for (std::int64_t row = 0; row < dirtyPadding.rows; ++row)
            for (std::int64_t byte = 3 * width; byte < dirtyPadding.stride; ++byte)
                dirtyPadding.pixels[static_cast<std::size_t>(row * dirtyPadding.stride + byte)] = 0xEE;
        const std::filesystem::path again = temp.path() / "capture.bmp";
        ASSERT_TRUE(writeBitmap24(again, dirtyPadding));
        EXPECT_EQ(test::readAll(again), test::readAll(file)) << "width " << width;
    }
}

TEST(CaptureFile, TheWriterReusesThePictureItReplacesAndNeverDamagesTheOneInPlace)
{
    const test::TempFolder temp;
    const std::filesystem::path file = temp.path() / "Capture.bmp";
    const std::filesystem::path spare = BitmapWriter::sparePath(file);
    const std::filesystem::path player = temp.path() / "kept by the player.bmp";
    enum class Before { Nothing, SpareLinkedElsewhere, SpareIsThePicture };
    // Where the library cannot count a file's names (Windows) no spare is kept, and the
    // picture in place must still never be written over.
    std::filesystem::path probe = temp.path() / "probe";
    std::ofstream(probe) << "x";
    std::filesystem::create_hard_link(probe, temp.path() / "probe2");
    const bool namesCounted = std::filesystem::hard_link_count(probe) == 2;
    // Fewer rows written than the height: the writer is dropped.
    const struct { const char* name; std::int32_t width, height, rowsWritten; Before before; } steps[] = {
        {"the first picture", 5, 4, 4, Before::Nothing},
        {"the second: the first becomes the spare", 5, 4, 4, Before::Nothing},
        {"a smaller screen over a larger spare", 2, 1, 1, Before::Nothing},
        {"a larger screen over a smaller spare", 7, 6, 6, Before::Nothing},
        {"dropped half way", 7, 6, 3, Before::Nothing},
        {"after a dropped one", 7, 6, 6, Before::Nothing},
        {"a spare with another name is not written over", 3, 3, 3, Before::SpareLinkedElsewhere},
        {"and the spares come back", 3, 3, 3, Before::Nothing},
        {"a spare that is the picture in place, dropped", 4, 2, 1, Before::SpareIsThePicture},
        {"a spare that is the picture in place", 4, 2, 2, Before::SpareIsThePicture},
    };
    std::string inPlace;
    std::string playerBytes;
    std::uint8_t ink = 1;
    for (const auto& step : steps) {
        SCOPED_TRACE(step.name);
        std::error_code ec;
        if (step.before == Before::SpareLinkedElsewhere) {
            std::filesystem::create_hard_link(spare, player, ec);
            if (!ec)
                playerBytes = test::readAll(player);
        } else if (step.before == Before::SpareIsThePicture) {
            std::filesystem::remove(spare, ec);
            std::filesystem::create_hard_link(file, spare, ec);
        }
        Frame frame(step.width, step.height);
        for (std::uint8_t& byte : frame.bytes())
            byte = ink++;
        const std::vector<std::uint8_t> bytes = encodeBitmap24(frame);
        const std::size_t stride = bitmapStride24(step.width);
        const bool whole = step.rowsWritten == step.height;
        {
            BitmapWriter writer(file);
            ASSERT_TRUE(writer.good());
            writer.begin(step.width, step.height);
            for (std::int32_t row = 0; row < step.rowsWritten; row += 2)
                writer.write(bytes.data() + 54 + static_cast<std::size_t>(row) * stride,
                             std::min(2, step.rowsWritten - row));
            EXPECT_EQ(writer.commit(), whole);
        }
        const std::string previous = inPlace;
        if (whole)
            inPlace.assign(bytes.begin(), bytes.end());
        EXPECT_EQ(test::readAll(file), inPlace);
        // The picture replaced, whole, waits to be written over.
        if (whole && (previous.empty() || !namesCounted)) {
            EXPECT_FALSE(std::filesystem::exists(spare));
        } else if (whole) {
            EXPECT_EQ(test::readAll(spare), previous);
        }
        EXPECT_FALSE(std::filesystem::exists(file.string() + ".rows.tmp"));
        if (!playerBytes.empty()) {
            EXPECT_EQ(test::readAll(player), playerBytes);
        }
    }
}

TEST(FillPixelLevels, SumsBlueTwoGreensRedAndARegionOutsideTheBitmapIsASubscriptError)
{
    Frame frame(10, 8);
    frame.setPixel(7, 5, 1, 2, 3);       // the corner region's origin, rows counted from the top
    frame.setPixel(9, 7, 255, 255, 255); // its bottom right
    const CaptureBitmap bitmap = toCaptureBitmap(frame);
    for (const CaptureRegionRect rect : {CaptureRegionRect{8, 0, 3, 1}, CaptureRegionRect{0, 6, 1, 3},
                                         CaptureRegionRect{-1, 0, 2, 1}, CaptureRegionRect{0, -1, 1, 2}}) {
        PixelLevels levels;
        levels.SecurePixels({rect, rect, rect});
        SCOPED_TRACE(testing::Message() << "region at " << rect.StartX << "," << rect.StartY);
        test::expectError(ErrorNumber::SubscriptOutOfRange, [&] { FillPixelLevels(levels, 0, rect, bitmap); });
    }
    // The edge itself is fine; a top-down file puts every row outside.
    PixelLevels levels;
    const CaptureRegionRect corner{7, 5, 3, 3};
    levels.SecurePixels({corner, corner, corner});
    EXPECT_NO_THROW(FillPixelLevels(levels, 0, corner, bitmap));
    EXPECT_EQ(std::as_const(levels).at(0, 0, 0), 1 + 4 + 3);
    EXPECT_EQ(levels.at(0, 2, 2), 1020);
    EXPECT_EQ(levels.at(0, 1, 1), 0);
    CaptureBitmap topDown = bitmap;
    topDown.infoHeader.biHeight = -8;
    EXPECT_THROW(FillPixelLevels(levels, 0, corner, topDown), RuntimeError);
}

} // namespace
} // namespace tvx
