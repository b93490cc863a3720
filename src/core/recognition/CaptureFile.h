#pragma once

#include "base/ZeroedBytes.h"
#include "recognition/Frame.h"

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tvx {

struct BitmapFileHeader {
    std::uint16_t bfType = 0;
    std::uint32_t bfSize = 0;
    std::uint16_t bfReserved1 = 0;
    std::uint16_t bfReserved2 = 0;
    std::uint32_t bfOffBits = 0;
};

struct BitmapInfoHeader {
    std::uint32_t biSize = 0;
    std::int32_t biWidth = 0;
    std::int32_t biHeight = 0;
    std::uint16_t biPlanes = 0;
    std::uint16_t biBitCount = 0;
    std::uint32_t biCompression = 0;
    std::uint32_t biSizeImage = 0;
    std::int32_t biXPelsPerMeter = 0;
    std::int32_t biYPelsPerMeter = 0;
    std::uint32_t biClrUsed = 0;
    std::uint32_t biClrImportant = 0;
};

inline constexpr std::uint16_t kBitmapType = 19778; // "BM"

// The capture file as read: both headers and the pixel rows in file order (bottom-up),
// each `stride` bytes long.
struct CaptureBitmap {
    BitmapFileHeader fileHeader;
    BitmapInfoHeader infoHeader;
    std::int64_t stride = 0;
    std::int64_t rows = 0;
    ZeroedBytes pixels;

    std::uint8_t at(std::int64_t byteIndex, std::int64_t row) const
    {
        return pixels[static_cast<std::size_t>(row * stride + byteIndex)];
    }
    // Screen row y (0 at the top) of a bottom-up bitmap, for writers.
    std::uint8_t* screenRow(std::int64_t y) { return pixels.data() + (rows - 1 - y) * stride; }
};

enum class CaptureLoadResult : int {
    Read = 0,
    EmptyPath = -2,
    NotBmpName = -3,
    NotBitmapType = -4,
    // Beyond the classic codes: the file could not be opened or read, its header describes
    // a pixel array that cannot exist (no columns, no rows, or absurdly large), the path is
    // a folder (or another thing that is no file), or the file ends before its pixels do.
    CannotOpen = -5,
    BadDimensions = -6,
    NotAFile = -7,
    Truncated = -8,
};

std::string_view describe(CaptureLoadResult result);

// Reads a capture file. The pixel rows are read right after the information header (and
// four more bytes when the pixel offset is not 54), whatever the offset says. The pixels
// come in one read straight into `bitmap`, whose buffer is reused: a caller reading many
// files keeps one CaptureBitmap. After a failure the pixels are empty.
CaptureLoadResult LoadCaptureBitmap(const std::filesystem::path& path, CaptureBitmap& bitmap);
CaptureLoadResult parseCaptureBitmap(std::span<const std::uint8_t> bytes, CaptureBitmap& bitmap);

// A 24-bit bottom-up bitmap file of the frame, pixel data at offset 54.
std::vector<std::uint8_t> encodeBitmap24(const Frame& frame);
// Writes the file through a temporary name so a reader never sees half a file; false on failure.
bool writeBitmap24(const std::filesystem::path& path, const Frame& frame);
// The same file from a 24-bit capture, written from its rows without copying them.
bool writeBitmap24(const std::filesystem::path& path, const CaptureBitmap& bitmap);
// The bytes of one row of a 24-bit bitmap of that width: three a pixel, padded to four.
std::size_t bitmapStride24(std::int32_t width);

// A 24-bit bottom-up bitmap file written a band of rows at a time, through a temporary
// name: commit() puts it in place once every row is there; a writer dropped before that
// leaves the file as it was. For a screen that need not be held whole to be written.
//
// The picture a commit replaces stays beside the file as its spare (the name and
// ".spare"), and the next writer writes over the spare in place: a screen's 6 MB every
// few seconds then neither takes new pages from the system nor drops the old ones, and
// the replace does not force the new file to disk. A spare that is linked elsewhere, or
// that is not a plain file, is never written over.
class BitmapWriter {
public:
    // Opens the temporary file (the spare when there is one); the size comes with begin().
    explicit BitmapWriter(std::filesystem::path path);
    ~BitmapWriter();
    BitmapWriter(const BitmapWriter&) = delete;
    BitmapWriter& operator=(const BitmapWriter&) = delete;

    // The temporary file is open and every write so far went through.
    bool good() const { return m_out.good(); }
    // The headers of a picture of that size.
    void begin(std::int32_t width, std::int32_t height);
    // The next `count` rows in file order (the bottom row first), bitmapStride24(width) bytes each.
    void write(const std::uint8_t* rows, std::int32_t count);
    // False, and the file as it was, unless every row was written and the file is in place.
    bool commit();

    static std::filesystem::path sparePath(const std::filesystem::path& path);

private:
    bool openSpare();

    std::filesystem::path m_path;
    std::filesystem::path m_temporary;
    std::filesystem::path m_spare;
    std::ofstream m_out;
    std::size_t m_stride = 0;
    std::int64_t m_rowsLeft = -1; // before begin()
    std::uintmax_t m_fileBytes = 0;
    std::uintmax_t m_spareBytes = 0; // the spare's length when it is written over
    bool m_opened = false;
    bool m_committed = false;
};

// The frame as the capture file reader would give it back.
CaptureBitmap toCaptureBitmap(const Frame& frame);
// A black 24-bit bottom-up capture of that size, for a screen source to fill in place
// (empty pixels when the size is impossible).
CaptureBitmap blankCapture(std::int32_t width, std::int32_t height);
// The picture of a 24-bit capture, top row first (other depths give an empty frame).
Frame toFrame(const CaptureBitmap& bitmap);

} // namespace tvx
