#include "TextCodecFactory.h"

#include <cerrno>
#include <iconv.h>

namespace tvx::platform {
namespace {

// One conversion descriptor, closed with its owner.
class IconvHandle {
public:
    IconvHandle(const char* to, const char* from) : m_cd(iconv_open(to, from)) {}
    ~IconvHandle()
    {
        if (valid())
            iconv_close(m_cd);
    }
    IconvHandle(const IconvHandle&) = delete;
    IconvHandle& operator=(const IconvHandle&) = delete;

    bool valid() const { return m_cd != reinterpret_cast<iconv_t>(-1); }
    iconv_t get() const { return m_cd; }

private:
    iconv_t m_cd;
};

// Bytes of the UTF-8 sequence that starts at text[0]: its lead byte and the continuation
// bytes that follow, so a broken sequence never swallows the next character.
std::size_t utf8SequenceLength(const char* text, std::size_t available)
{
    const auto lead = static_cast<unsigned char>(text[0]);
    std::size_t claimed = 1;
    if (lead >= 0xC2 && lead <= 0xDF)
        claimed = 2;
    else if (lead >= 0xE0 && lead <= 0xEF)
        claimed = 3;
    else if (lead >= 0xF0 && lead <= 0xF4)
        claimed = 4;
    std::size_t length = 1;
    while (length < claimed && length < available && (static_cast<unsigned char>(text[length]) & 0xC0u) == 0x80u)
        ++length;
    return length;
}

class IconvTextCodec final : public TextCodec {
public:
    std::string toCp932(std::string_view utf8) override
    {
        IconvHandle cd("CP932", "UTF-8");
        if (!cd.valid())
            return std::string(utf8.size(), '?');
        std::string out;
        out.reserve(utf8.size());
        char buffer[256];
        char* in = const_cast<char*>(utf8.data());
        std::size_t inLeft = utf8.size();
        while (inLeft > 0) {
            char* dst = buffer;
            std::size_t dstLeft = sizeof buffer;
            const std::size_t done = iconv(cd.get(), &in, &inLeft, &dst, &dstLeft);
            out.append(buffer, static_cast<std::size_t>(dst - buffer));
            if (done != static_cast<std::size_t>(-1) || errno == E2BIG)
                continue;
            // A character CP932 cannot hold, or a broken sequence: one "?" in its place,
            // as Windows does.
            const std::size_t skip = errno == EILSEQ ? utf8SequenceLength(in, inLeft) : inLeft;
            out += '?';
            in += skip;
            inLeft -= skip;
        }
        return out;
    }

    std::optional<std::string> fromCp932(std::string_view bytes) override
    {
        IconvHandle cd("UTF-8", "CP932");
        if (!cd.valid())
            return std::nullopt;
        std::string out;
        out.reserve(bytes.size() * 3 / 2);
        char buffer[256];
        char* in = const_cast<char*>(bytes.data());
        std::size_t inLeft = bytes.size();
        while (inLeft > 0) {
            char* dst = buffer;
            std::size_t dstLeft = sizeof buffer;
            const std::size_t done = iconv(cd.get(), &in, &inLeft, &dst, &dstLeft);
            out.append(buffer, static_cast<std::size_t>(dst - buffer));
            if (done == static_cast<std::size_t>(-1) && errno != E2BIG)
                return std::nullopt;
        }
        return out;
    }
};

} // namespace

std::unique_ptr<TextCodec> makeTextCodec()
{
    return std::make_unique<IconvTextCodec>();
}

} // namespace tvx::platform
