#include "TextCodecFactory.h"

#include <windows.h>

namespace tvx::platform {
namespace {

constexpr UINT kJapanese = 932;

std::wstring wideFrom(UINT codePage, DWORD flags, std::string_view bytes, bool& ok)
{
    ok = true;
    if (bytes.empty())
        return {};
    const int size = static_cast<int>(bytes.size());
    const int length = MultiByteToWideChar(codePage, flags, bytes.data(), size, nullptr, 0);
    if (length <= 0) {
        ok = false;
        return {};
    }
    std::wstring wide(static_cast<std::size_t>(length), L'\0');
    MultiByteToWideChar(codePage, flags, bytes.data(), size, wide.data(), length);
    return wide;
}

std::string bytesFrom(UINT codePage, DWORD flags, const std::wstring& wide, const char* fallback)
{
    if (wide.empty())
        return {};
    const int size = static_cast<int>(wide.size());
    const int length = WideCharToMultiByte(codePage, flags, wide.data(), size, nullptr, 0, fallback, nullptr);
    if (length <= 0)
        return {};
    std::string bytes(static_cast<std::size_t>(length), '\0');
    WideCharToMultiByte(codePage, flags, wide.data(), size, bytes.data(), length, fallback, nullptr);
    return bytes;
}

class Win32TextCodec final : public TextCodec {
public:
    std::string toCp932(std::string_view utf8) override
    {
        bool ok = false;
        // Broken UTF-8 becomes U+FFFD here and "?" below; no best-fit look-alikes.
        std::wstring wide = wideFrom(CP_UTF8, 0, utf8, ok);
        // CP932 has nothing beyond the BMP; one "?" per character, not per UTF-16 unit.
        std::wstring units;
        units.reserve(wide.size());
        for (std::size_t i = 0; i < wide.size(); ++i) {
            const bool pair = IS_HIGH_SURROGATE(wide[i]) && i + 1 < wide.size() && IS_LOW_SURROGATE(wide[i + 1]);
            units.push_back(pair ? L'?' : wide[i]);
            i += pair;
        }
        return bytesFrom(kJapanese, WC_NO_BEST_FIT_CHARS, units, "?");
    }

    std::optional<std::string> fromCp932(std::string_view bytes) override
    {
        bool ok = false;
        const std::wstring wide = wideFrom(kJapanese, MB_ERR_INVALID_CHARS, bytes, ok);
        if (!ok)
            return std::nullopt;
        return bytesFrom(CP_UTF8, 0, wide, nullptr);
    }
};

} // namespace

std::unique_ptr<TextCodec> makeTextCodec()
{
    return std::make_unique<Win32TextCodec>();
}

} // namespace tvx::platform
