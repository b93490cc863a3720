#include "recognition/CaptureFile.h"

#include <algorithm>
#include <array>
#include <fstream>

namespace tvx {
namespace {

constexpr std::size_t kFileHeaderBytes = 14;
constexpr std::size_t kInfoHeaderBytes = 40;
constexpr std::uint32_t kPlainPixelOffset = 54;
// Any other pixel offset means four more header bytes (a colour mask) before the rows.
constexpr std::size_t kLongestHeader = kPlainPixelOffset + 4;
// No screen needs more; a larger header is a damaged or hostile file.
constexpr std::int64_t kMaxPixelBytes = std::int64_t{256} << 20;

// Little-endian header reads that yield zero past the end of a short file.
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

// Both headers from the first bytes of the file; `pixelStart` is where the rows begin.
CaptureLoadResult readHeaders(std::span<const std::uint8_t> head, CaptureBitmap& bitmap, std::size_t& pixelStart)
{
    ByteReader in(head);
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
    pixelStart = fh.bfOffBits == kPlainPixelOffset ? kPlainPixelOffset : kLongestHeader;

    const std::int64_t stride = (std::int64_t{ih.biBitCount} * ih.biWidth + 31) / 32 * 4;
    const std::int64_t rows = ih.biHeight < 0 ? -std::int64_t{ih.biHeight} : ih.biHeight;
    if (stride <= 0 || rows <= 0 || stride > kMaxPixelBytes || rows > kMaxPixelBytes ||
        stride * rows > kMaxPixelBytes)
        return CaptureLoadResult::BadDimensions;
    bitmap.stride = stride;
    bitmap.rows = rows;
    return CaptureLoadResult::Read;
}

std::size_t pixelBytes(const CaptureBitmap& bitmap)
{
    return static_cast<std::size_t>(bitmap.stride * bitmap.rows);
}

// Leaves no half-read picture behind; the buffer's memory is kept for the next read.
CaptureLoadResult failed(CaptureBitmap& bitmap, CaptureLoadResult result)
{
    bitmap.pixels.clear();
    bitmap.stride = 0;
    bitmap.rows = 0;
    return result;
}

std::size_t readUpTo(std::istream& in, std::uint8_t* out, std::size_t count)
{
    in.read(reinterpret_cast<char*>(out), static_cast<std::streamsize>(count));
    return static_cast<std::size_t>(in.gcount());
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

std::size_t stride24(std::int32_t width)
{
    return (24u * static_cast<std::size_t>(width) + 31u) / 32u * 4u;
}

// The two headers of a 24-bit bottom-up file, pixel data at offset 54.
std::vector<std::uint8_t> header24(std::int32_t width, std::int32_t height)
{
    const auto imageBytes = static_cast<std::uint32_t>(stride24(width) * static_cast<std::size_t>(height));
    std::vector<std::uint8_t> out;
    out.reserve(kPlainPixelOffset);
    putU16(out, kBitmapType);
    putU32(out, kPlainPixelOffset + imageBytes);
    putU32(out, 0); // both reserved words
    putU32(out, kPlainPixelOffset);
    putU32(out, kInfoHeaderBytes);
    putU32(out, static_cast<std::uint32_t>(width));
    putU32(out, static_cast<std::uint32_t>(height));
    putU16(out, 1);  // planes
    putU16(out, 24); // bits per pixel
    putU32(out, 0);  // no compression
    putU32(out, imageBytes);
    putU32(out, 3780); // 96 dpi, in pixels per metre
    putU32(out, 3780);
    putU32(out, 0);
    putU32(out, 0);
    static_assert(kFileHeaderBytes + kInfoHeaderBytes == kPlainPixelOffset);
    return out;
}

// The frame's rows as the file stores them: bottom row first, each padded to the stride.
void putRowsBottomUp(const Frame& frame, std::size_t stride, std::uint8_t* out)
{
    for (std::int32_t y = frame.height() - 1; y >= 0; --y, out += stride) {
        std::copy_n(frame.row(y), frame.rowBytes(), out);
        std::fill(out + frame.rowBytes(), out + stride, std::uint8_t{0});
    }
}

} // namespace

std::string_view describe(CaptureLoadResult result)
{
    switch (result) {
    case CaptureLoadResult::Read: return "read";
    case CaptureLoadResult::EmptyPath: return "empty path";
    case CaptureLoadResult::NotBmpName: return "the name does not end in bmp";
    case CaptureLoadResult::NotBitmapType: return "not a bitmap file (type is not BM)";
    case CaptureLoadResult::CannotOpen: return "the file cannot be opened or read";
    case CaptureLoadResult::BadDimensions: return "the bitmap header gives an impossible size";
    case CaptureLoadResult::NotAFile: return "the path is a folder or a device, not a file";
    case CaptureLoadResult::Truncated: return "the file is shorter than its header says";
    }
    return "unknown";
}

CaptureLoadResult parseCaptureBitmap(std::span<const std::uint8_t> bytes, CaptureBitmap& bitmap)
{
    std::size_t pixelStart = 0;
    const CaptureLoadResult result = readHeaders(bytes, bitmap, pixelStart);
    if (result != CaptureLoadResult::Read)
        return failed(bitmap, result);
    const std::size_t size = pixelBytes(bitmap);
    if (bytes.size() < pixelStart || bytes.size() - pixelStart < size)
        return failed(bitmap, CaptureLoadResult::Truncated);
    bitmap.pixels.assign(bytes.begin() + static_cast<std::ptrdiff_t>(pixelStart),
                         bytes.begin() + static_cast<std::ptrdiff_t>(pixelStart + size));
    return CaptureLoadResult::Read;
}

CaptureLoadResult LoadCaptureBitmap(const std::filesystem::path& path, CaptureBitmap& bitmap)
{
    if (path.empty())
        return failed(bitmap, CaptureLoadResult::EmptyPath);
    if (!endsInBmp(path.native()))
        return failed(bitmap, CaptureLoadResult::NotBmpName);
    // A folder or a pipe is refused before opening: a pipe would block, a folder opens
    // on some systems and then fails to read.
    std::error_code ec;
    const std::filesystem::file_status status = std::filesystem::status(path, ec);
    if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status))
        return failed(bitmap, CaptureLoadResult::NotAFile);
    std::ifstream file(path, std::ios::binary);
    if (!file)
        return failed(bitmap, CaptureLoadResult::CannotOpen);

    std::array<std::uint8_t, kLongestHeader> head{};
    const std::size_t headBytes = readUpTo(file, head.data(), head.size());
    std::size_t pixelStart = 0;
    const CaptureLoadResult result = readHeaders({head.data(), headBytes}, bitmap, pixelStart);
    if (file.bad())
        return failed(bitmap, CaptureLoadResult::CannotOpen);
    if (result != CaptureLoadResult::Read)
        return failed(bitmap, result);

    // The header read may already hold the first pixel bytes; the rest comes in one read.
    // A file too short for its header is refused before its buffer is made.
    const std::size_t size = pixelBytes(bitmap);
    const std::uintmax_t fileBytes = std::filesystem::file_size(path, ec);
    if (!ec && fileBytes < pixelStart + size)
        return failed(bitmap, CaptureLoadResult::Truncated);
    bitmap.pixels.resize(size);
    std::size_t have = headBytes > pixelStart ? std::min(headBytes - pixelStart, size) : 0;
    std::copy_n(head.data() + pixelStart, have, bitmap.pixels.data());
    if (have < size && file)
        have += readUpTo(file, bitmap.pixels.data() + have, size - have);
    if (file.bad())
        return failed(bitmap, CaptureLoadResult::CannotOpen);
    if (have < size)
        return failed(bitmap, CaptureLoadResult::Truncated);
    return CaptureLoadResult::Read;
}

std::vector<std::uint8_t> encodeBitmap24(const Frame& frame)
{
    const std::size_t stride = stride24(frame.width());
    std::vector<std::uint8_t> out = header24(frame.width(), frame.height());
    out.resize(kPlainPixelOffset + stride * static_cast<std::size_t>(frame.height()));
    putRowsBottomUp(frame, stride, out.data() + kPlainPixelOffset);
    return out;
}

namespace {

// Writes the file through a temporary name so a reader never sees half a file.
template <typename Write>
bool writeThrough(const std::filesystem::path& path, Write write)
{
    std::filesystem::path temporary = path;
    temporary += ".tmp";
    {
        std::ofstream out(temporary, std::ios::binary | std::ios::trunc);
        write(out);
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

} // namespace

bool writeBitmap24(const std::filesystem::path& path, const Frame& frame)
{
    const std::vector<std::uint8_t> bytes = encodeBitmap24(frame);
    return writeThrough(path, [&](std::ostream& out) {
        out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    });
}

bool writeBitmap24(const std::filesystem::path& path, const CaptureBitmap& bitmap)
{
    const std::int32_t width = bitmap.infoHeader.biWidth;
    const std::size_t stride = stride24(width);
    const bool fileLayout = bitmap.infoHeader.biBitCount == 24 && bitmap.infoHeader.biHeight > 0 && width > 0 &&
                            bitmap.rows > 0 && bitmap.stride == static_cast<std::int64_t>(stride) &&
                            bitmap.pixels.size() >= stride * static_cast<std::size_t>(bitmap.rows);
    if (!fileLayout)
        return writeBitmap24(path, toFrame(bitmap));
    // Already the file's rows: written from where they are, not copied twice more for a
    // screen's 6 MB. Padding is written as zeros, as the frame's writer does.
    const auto height = static_cast<std::int32_t>(bitmap.rows);
    const std::vector<std::uint8_t> header = header24(width, height);
    const std::size_t rowBytes = static_cast<std::size_t>(width) * 3;
    return writeThrough(path, [&](std::ostream& out) {
        out.write(reinterpret_cast<const char*>(header.data()), static_cast<std::streamsize>(header.size()));
        if (rowBytes == stride) {
            out.write(reinterpret_cast<const char*>(bitmap.pixels.data()),
                      static_cast<std::streamsize>(stride * static_cast<std::size_t>(height)));
            return;
        }
        const char padding[4] = {};
        for (std::int32_t row = 0; row < height; ++row) {
            out.write(reinterpret_cast<const char*>(bitmap.pixels.data() + static_cast<std::size_t>(row) * stride),
                      static_cast<std::streamsize>(rowBytes));
            out.write(padding, static_cast<std::streamsize>(stride - rowBytes));
        }
    });
}

std::size_t bitmapStride24(std::int32_t width)
{
    return stride24(width);
}

namespace {

// Whether `file` has no other name. A second name is made and counted, so a library that
// does not count names (Windows) answers false rather than a count of one.
bool soleName(const std::filesystem::path& file)
{
    std::error_code ec;
    const std::uintmax_t names = std::filesystem::hard_link_count(file, ec);
    if (ec || names != 1)
        return false;
    std::filesystem::path probe = file;
    probe += ".probe";
    std::filesystem::remove(probe, ec);
    std::filesystem::create_hard_link(file, probe, ec);
    if (ec)
        return false;
    const std::uintmax_t withProbe = std::filesystem::hard_link_count(file, ec);
    const bool counted = !ec && withProbe == 2;
    std::filesystem::remove(probe, ec);
    return counted;
}

} // namespace

std::filesystem::path BitmapWriter::sparePath(const std::filesystem::path& path)
{
    std::filesystem::path spare = path;
    spare += ".spare";
    return spare;
}

BitmapWriter::BitmapWriter(std::filesystem::path path) : m_path(std::move(path)), m_spare(sparePath(m_path))
{
    // Not the name a whole-picture write uses: the key route may write the same file while
    // this one is still open, and Windows opens no file twice for writing.
    m_temporary = m_path;
    m_temporary += ".rows.tmp";
    if (!openSpare())
        m_out.open(m_temporary, std::ios::binary | std::ios::trunc);
    m_opened = m_out.is_open();
}

bool BitmapWriter::openSpare()
{
    // Another name for the same file (the player's, or the file itself after a failed
    // replace) would be changed by writing over it: only a plain file of one name is taken.
    std::error_code ec;
    const std::filesystem::file_status status = std::filesystem::symlink_status(m_spare, ec);
    if (!std::filesystem::is_regular_file(status) && !std::filesystem::is_symlink(status))
        return false;
    if (!std::filesystem::is_regular_file(status) || !soleName(m_spare)) {
        // Only the name goes: the file lives on under its other one, and the commit gives
        // the name to a spare of its own.
        std::filesystem::remove(m_spare, ec);
        return false;
    }
    std::filesystem::rename(m_spare, m_temporary, ec);
    if (ec)
        return false;
    m_spareBytes = std::filesystem::file_size(m_temporary, ec);
    if (ec)
        return false;
    // Written over from the start without cutting it short: its pages are reused.
    m_out.open(m_temporary, std::ios::binary | std::ios::in | std::ios::out);
    return m_out.is_open();
}

BitmapWriter::~BitmapWriter()
{
    if (m_committed || !m_opened)
        return;
    m_out.close();
    // Whatever it holds, it is all written over before it is used: it stays as the spare.
    std::error_code ec;
    std::filesystem::rename(m_temporary, m_spare, ec);
    if (ec)
        std::filesystem::remove(m_temporary, ec);
}

void BitmapWriter::begin(std::int32_t width, std::int32_t height)
{
    if (!good() || m_rowsLeft >= 0 || width <= 0 || height <= 0) {
        m_out.setstate(std::ios::failbit);
        return;
    }
    m_stride = stride24(width);
    m_rowsLeft = height;
    m_fileBytes = kPlainPixelOffset + m_stride * static_cast<std::size_t>(height);
    const std::vector<std::uint8_t> header = header24(width, height);
    m_out.write(reinterpret_cast<const char*>(header.data()), static_cast<std::streamsize>(header.size()));
}

void BitmapWriter::write(const std::uint8_t* rows, std::int32_t count)
{
    if (!good() || count <= 0 || count > m_rowsLeft) {
        m_out.setstate(std::ios::failbit);
        return;
    }
    m_out.write(reinterpret_cast<const char*>(rows), static_cast<std::streamsize>(m_stride * static_cast<std::size_t>(count)));
    m_rowsLeft -= count;
}

bool BitmapWriter::commit()
{
    if (!good() || m_rowsLeft != 0 || !m_out.flush())
        return false;
    m_out.close();
    if (m_out.fail())
        return false;
    std::error_code ec;
    // A spare from a larger screen ends where this picture does.
    if (m_spareBytes > m_fileBytes) {
        std::filesystem::resize_file(m_temporary, m_fileBytes, ec);
        if (ec)
            return false;
    }
    // The picture in place gets a second name before it is replaced, so its file lives on
    // as the next spare. Without that name (no picture yet, or a file system without
    // links) the next writer starts a new file.
    bool spareKept = std::filesystem::is_regular_file(std::filesystem::symlink_status(m_path, ec)) &&
                     (std::filesystem::create_hard_link(m_path, m_spare, ec), !ec);
    // Where the library cannot count a file's names (Windows), a spare could not be told from
    // the picture in place later: none is kept.
    if (spareKept && std::filesystem::hard_link_count(m_path, ec) != 2) {
        std::filesystem::remove(m_spare, ec);
        spareKept = false;
    }
    std::filesystem::rename(m_temporary, m_path, ec);
    if (ec) {
        // The spare would be the picture in place: it must not be written over.
        if (spareKept)
            std::filesystem::remove(m_spare, ec);
        return false;
    }
    m_committed = true;
    return true;
}

CaptureBitmap blankCapture(std::int32_t width, std::int32_t height)
{
    CaptureBitmap bitmap;
    std::size_t pixelStart = 0;
    if (readHeaders(header24(width, height), bitmap, pixelStart) == CaptureLoadResult::Read)
        bitmap.pixels.resize(pixelBytes(bitmap)); // zero, untouched until written
    return bitmap;
}

CaptureBitmap toCaptureBitmap(const Frame& frame)
{
    CaptureBitmap bitmap = blankCapture(frame.width(), frame.height());
    if (!bitmap.pixels.empty())
        putRowsBottomUp(frame, stride24(frame.width()), bitmap.pixels.data());
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
