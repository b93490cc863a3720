#pragma once

#include <cstdint>
#include <vector>

namespace tvx {

// A 24-bit screen image in memory: rows top to bottom, three bytes per pixel in the order
// blue, green, red, no row padding.
class Frame {
public:
    Frame() = default;
    Frame(std::int32_t width, std::int32_t height)
        : m_width(width), m_height(height),
          m_bytes(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 3, 0)
    {
    }

    std::int32_t width() const { return m_width; }
    std::int32_t height() const { return m_height; }
    std::size_t rowBytes() const { return static_cast<std::size_t>(m_width) * 3; }

    std::uint8_t* row(std::int32_t y) { return m_bytes.data() + rowBytes() * static_cast<std::size_t>(y); }
    const std::uint8_t* row(std::int32_t y) const { return m_bytes.data() + rowBytes() * static_cast<std::size_t>(y); }

    void setPixel(std::int32_t x, std::int32_t y, std::uint8_t blue, std::uint8_t green, std::uint8_t red)
    {
        std::uint8_t* p = row(y) + 3 * static_cast<std::size_t>(x);
        p[0] = blue;
        p[1] = green;
        p[2] = red;
    }

    std::vector<std::uint8_t>& bytes() { return m_bytes; }
    const std::vector<std::uint8_t>& bytes() const { return m_bytes; }

private:
    std::int32_t m_width = 0;
    std::int32_t m_height = 0;
    std::vector<std::uint8_t> m_bytes;
};

} // namespace tvx
