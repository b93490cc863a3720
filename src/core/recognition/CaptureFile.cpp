#include "recognition/CaptureFile.h"

#include <algorithm>
#include <fstream>
#include <iterator>

namespace tvx {
namespace {

constexpr std::size_t kFileHeaderBytes = 14;
constexpr std::size_t kInfoHeaderBytes = 40;
constexpr std::uint32_t kPlainPixelOffset = 54;
// No screen needs more; a larger header is a damaged or hostile file.
constexpr std::int64_t kMaxPixelBytes = std::int64_t{256} << 20;

// Little-endian reads that yield zero past the end, as reading a short file does.
class ByteReader {
public:
    explicit ByteReader(std::span<const std::uint8_t> bytes) : m_bytes(bytes) {}

    std::uint8_t u8() { return m_pos < m_bytes.size() ? m_bytes[m_pos++] : (++m_pos, std::uint8_t{0}); }
    std::uint16_t u16() { return static_cast<std::uint16_t>(u8() | (u8() << 8)); }
    std::uint32_t u32()
    {
        const std::uint32_t low = u16();
        return low | (static_cast<std::uint32_t>(u16()) << 16);
    }
    std::int32_t i32() { return static_cast<std::int32_t>(u32()); }
    void skip(std::size_t count) { m_pos += count; }

    // Copies `count` bytes from the current position, zero-filling past the end.
    void copyTo(std::uint8_t* out, std::size_t count)
    {
        const std::size_t available = m_pos < m_bytes.size() ? std::min(count, m_bytes.size() - m_pos) : 0;
        std::copy_n(m_bytes.data() + m_pos, available, out);
        std::fill(out + available, out + count, std::uint8_t{0});
        m_pos += count;
    }

private:
    std::span<const std::uint8_t> m_bytes;
    std::size_t m_pos = 0;
};

template <typename Char>
bool endsInBmp(const std::basic_string<Char>& name)
{
    if (name.size() < 3)
        return false;
    static constexpr char kExpected[] = "bmp";
    for (std::size_t i = 0; i < 3; ++i) {
        Char c = name[name.size() - 3 + i];
        if (c >= 'A' && c <= 'Z')
            c = static_cast<Char>(c - 'A' + 'a');
        if (c != static_cast<Char>(kExpected[i]))
            return false;
    }
    return true;
}

void putU16(std::vector<std::uint8_t>& out, std::uint32_t value)
{
    out.push_back(static_cast<std::uint8_t>(value & 0xFF));
    out.push_back(static_cast<std::uint8_t>((value >> 8) & 0xFF));
}

void putU32(std::vector<std::uint8_t>& out, std::uint32_t value)
{
    putU16(out, value & 0xFFFF);
    putU16(out, value >> 16);
}

} // namespace

std::string_view describe(CaptureLoadResult result)
{
    switch (result) {
    case CaptureLoadResult::Read: return "read";
    case CaptureLoadResult::EmptyPath: return "empty path";
    case CaptureLoadResult::NotBmpName: return "the name does not end in bmp";
    case CaptureLoadResult::NotBitmapType: return "not a bitmap file (type is not BM)";
    case CaptureLoadResult::CannotOpen: return "the file cannot be opened";
    case CaptureLoadResult::BadDimensions: return "the bitmap header gives an impossible size";
    }
    return "unknown";
}

CaptureLoadResult parseCaptureBitmap(std::span<const std::uint8_t> bytes, CaptureBitmap& bitmap)
{
    ByteReader in(bytes);
    BitmapFileHeader& fh = bitmap.fileHeader;
    fh.bfType = in.u16();
    fh.bfSize = in.u32();
    fh.bfReserved1 = in.u16();
    fh.bfReserved2 = in.u16();
    fh.bfOffBits = in.u32();
    if (fh.bfType != kBitmapType)
        return CaptureLoadResult::NotBitmapType;

    BitmapInfoHeader& ih = bitmap.infoHeader;
    ih.biSize = in.u32();
    ih.biWidth = in.i32();
    ih.biHeight = in.i32();
    ih.biPlanes = in.u16();
    ih.biBitCount = in.u16();
    ih.biCompression = in.u32();
    ih.biSizeImage = in.u32();
    ih.biXPelsPerMeter = in.i32();
    ih.biYPelsPerMeter = in.i32();
    ih.biClrUsed = in.u32();
    ih.biClrImportant = in.u32();
    if (fh.bfOffBits != kPlainPixelOffset)
        in.skip(4);

    const std::int64_t stride = (std::int64_t{ih.biBitCount} * ih.biWidth + 31) / 32 * 4;
    const std::int64_t rows = ih.biHeight < 0 ? -std::int64_t{ih.biHeight} : ih.biHeight;
    if (stride <= 0 || rows <= 0 || stride > kMaxPixelBytes || rows > kMaxPixelBytes ||
        stride * rows > kMaxPixelBytes)
        return CaptureLoadResult::BadDimensions;
    bitmap.stride = stride;
    bitmap.rows = rows;
    bitmap.pixels.resize(static_cast<std::size_t>(stride * rows));
    in.copyTo(bitmap.pixels.data(), bitmap.pixels.size());
    return CaptureLoadResult::Read;
}

CaptureLoadResult LoadCaptureBitmap(const std::filesystem::path& path, CaptureBitmap& bitmap)
{
    if (path.empty())
        return CaptureLoadResult::EmptyPath;
    if (!endsInBmp(path.native()))
        return CaptureLoadResult::NotBmpName;
    std::ifstream file(path, std::ios::binary);
    if (!file)
        return CaptureLoadResult::CannotOpen;
    const std::vector<std::uint8_t> bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    if (file.bad())
        return CaptureLoadResult::CannotOpen;
    return parseCaptureBitmap(bytes, bitmap);
}

std::vector<std::uint8_t> encodeBitmap24(const Frame& frame)
{
    const std::uint32_t stride = (24u * static_cast<std::uint32_t>(frame.width()) + 31u) / 32u * 4u;
    const std::uint32_t imageBytes = stride * static_cast<std::uint32_t>(frame.height());
    std::vector<std::uint8_t> out;
    out.reserve(kPlainPixelOffset + imageBytes);
    putU16(out, kBitmapType);
    putU32(out, kPlainPixelOffset + imageBytes);
    putU32(out, 0); // both reserved words
    putU32(out, kPlainPixelOffset);
    putU32(out, kInfoHeaderBytes);
    putU32(out, static_cast<std::uint32_t>(frame.width()));
    putU32(out, static_cast<std::uint32_t>(frame.height()));
    putU16(out, 1);  // planes
    putU16(out, 24); // bits per pixel
    putU32(out, 0);  // no compression
    putU32(out, imageBytes);
    putU32(out, 3780); // 96 dpi, in pixels per metre
    putU32(out, 3780);
    putU32(out, 0);
    putU32(out, 0);
    const std::size_t padding = stride - frame.rowBytes();
    for (std::int32_t y = frame.height() - 1; y >= 0; --y) {
        out.insert(out.end(), frame.row(y), frame.row(y) + frame.rowBytes());
        out.insert(out.end(), padding, 0);
    }
    static_assert(kFileHeaderBytes + kInfoHeaderBytes == kPlainPixelOffset);
    return out;
}

bool writeBitmap24(const std::filesystem::path& path, const Frame& frame)
{
    const std::vector<std::uint8_t> bytes = encodeBitmap24(frame);
    std::filesystem::path temporary = path;
    temporary += ".tmp";
    {
        std::ofstream out(temporary, std::ios::binary | std::ios::trunc);
        out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        if (!out.flush())
            return false;
    }
    std::error_code ec;
    std::filesystem::rename(temporary, path, ec);
    if (!ec)
        return true;
    std::filesystem::remove(temporary, ec);
    return false;
}

CaptureBitmap toCaptureBitmap(const Frame& frame)
{
    CaptureBitmap bitmap;
    parseCaptureBitmap(encodeBitmap24(frame), bitmap);
    return bitmap;
}

Frame toFrame(const CaptureBitmap& bitmap)
{
    const std::int32_t width = bitmap.infoHeader.biWidth;
    const auto height = static_cast<std::int32_t>(bitmap.rows);
    if (bitmap.infoHeader.biBitCount != 24 || width <= 0 || height <= 0 || bitmap.stride < width * 3LL)
        return Frame{};
    Frame frame(width, height);
    for (std::int32_t y = 0; y < height; ++y) {
        // Positive heights are stored bottom-up.
        const std::int64_t fileRow = bitmap.infoHeader.biHeight > 0 ? height - 1 - y : y;
        const auto* source = bitmap.pixels.data() + fileRow * bitmap.stride;
        std::copy(source, source + frame.rowBytes(), frame.row(y));
    }
    return frame;
}

} // namespace tvx
