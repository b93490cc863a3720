#include "Win32Ports.h"

#include <windows.h>
#include <objbase.h>
#include <gdiplus.h>

#include <cstring>
#include <optional>
#include <vector>

namespace tvx::platform {

namespace {

namespace flat = Gdiplus::DllExports;

constexpr wchar_t kPngEncoder[] = L"{557CF406-1A04-11D3-9A73-0000F81EF32E}";
constexpr wchar_t kJpegEncoder[] = L"{557CF401-1A04-11D3-9A73-0000F81EF32E}";
constexpr wchar_t kQualityParameter[] = L"{1D5BE4B5-FA4A-452D-9CDD-5DB35105E7EB}";

std::optional<CLSID> guidOf(const wchar_t* text)
{
    CLSID id{};
    if (FAILED(CLSIDFromString(text, &id)))
        return std::nullopt;
    return id;
}

// GDI+ is started for one encoding and shut down after it, so nothing stays loaded
// between screenshots.
class GdiplusSession {
public:
    GdiplusSession()
    {
        Gdiplus::GdiplusStartupInput input;
        m_ok = Gdiplus::GdiplusStartup(&m_token, &input, nullptr) == Gdiplus::Ok;
    }
    ~GdiplusSession()
    {
        if (m_ok)
            Gdiplus::GdiplusShutdown(m_token);
    }
    GdiplusSession(const GdiplusSession&) = delete;
    GdiplusSession& operator=(const GdiplusSession&) = delete;

    bool ok() const { return m_ok; }

private:
    ULONG_PTR m_token = 0;
    bool m_ok = false;
};

class GdiplusBitmap {
public:
    GdiplusBitmap() = default;
    ~GdiplusBitmap()
    {
        if (m_bitmap != nullptr)
            flat::GdipDisposeImage(m_bitmap);
    }
    GdiplusBitmap(const GdiplusBitmap&) = delete;
    GdiplusBitmap& operator=(const GdiplusBitmap&) = delete;

    Gdiplus::GpBitmap** put() { return &m_bitmap; }
    Gdiplus::GpImage* image() const { return m_bitmap; }

private:
    Gdiplus::GpBitmap* m_bitmap = nullptr;
};

bool save(const Frame& image, const std::filesystem::path& path, const wchar_t* encoder,
          const Gdiplus::EncoderParameters* parameters)
{
    if (image.width() <= 0 || image.height() <= 0)
        return false;
    const std::optional<CLSID> encoderId = guidOf(encoder);
    if (!encoderId)
        return false;
    GdiplusSession session;
    if (!session.ok())
        return false;
    // GDI+ wants rows padded to four bytes; the frame's rows are packed.
    const std::size_t stride = (image.rowBytes() + 3) & ~std::size_t{3};
    std::vector<std::uint8_t> rows(stride * static_cast<std::size_t>(image.height()));
    for (std::int32_t y = 0; y < image.height(); ++y)
        std::memcpy(rows.data() + stride * static_cast<std::size_t>(y), image.row(y), image.rowBytes());
    GdiplusBitmap bitmap;
    if (flat::GdipCreateBitmapFromScan0(image.width(), image.height(), static_cast<INT>(stride),
                                        PixelFormat24bppRGB, rows.data(), bitmap.put()) != Gdiplus::Ok)
        return false;
    return flat::GdipSaveImageToFile(bitmap.image(), path.wstring().c_str(), &*encoderId, parameters) ==
           Gdiplus::Ok;
}

class GdiplusImageEncoder final : public ImageEncoder {
public:
    bool writePng(const Frame& image, const std::filesystem::path& path) override
    {
        return save(image, path, kPngEncoder, nullptr);
    }

    bool writeJpeg(const Frame& image, const std::filesystem::path& path, int quality) override
    {
        const std::optional<CLSID> qualityId = guidOf(kQualityParameter);
        if (!qualityId)
            return false;
        ULONG value = static_cast<ULONG>(quality < 0 ? 0 : quality > 100 ? 100 : quality);
        Gdiplus::EncoderParameters parameters{};
        parameters.Count = 1;
        parameters.Parameter[0].Guid = *qualityId;
        parameters.Parameter[0].NumberOfValues = 1;
        parameters.Parameter[0].Type = Gdiplus::EncoderParameterValueTypeLong;
        parameters.Parameter[0].Value = &value;
        return save(image, path, kJpegEncoder, &parameters);
    }
};

} // namespace

std::unique_ptr<ImageEncoder> makeGdiplusImageEncoder()
{
    return std::make_unique<GdiplusImageEncoder>();
}

} // namespace tvx::platform
