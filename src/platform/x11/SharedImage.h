#pragma once

#include "config/Settings.h"

#include <xcb/xcb.h>

#include <cstddef>
#include <cstdint>
#include <memory>

namespace tvx::platform {

// A System V shared memory segment attached to the X server (MIT-SHM), into which the
// server writes screen images without sending them through the socket.
class SharedImage {
public:
    // nullptr when the server has no MIT-SHM (a remote display) or the segment fails.
    static std::unique_ptr<SharedImage> attach(xcb_connection_t* connection, std::size_t bytes);
    ~SharedImage();
    SharedImage(const SharedImage&) = delete;
    SharedImage& operator=(const SharedImage&) = delete;

    // Has the server write the rectangle of the drawable (32 bits per pixel, Z pixmap) to
    // the start of the segment; false on any failure.
    bool get(xcb_drawable_t drawable, const CaptureRegionRect& rect);
    const std::uint8_t* data() const { return m_data; }
    std::size_t size() const { return m_size; }

private:
    SharedImage(xcb_connection_t* connection, std::uint32_t segment, const std::uint8_t* data, std::size_t size)
        : m_connection(connection), m_segment(segment), m_data(data), m_size(size)
    {
    }

    xcb_connection_t* m_connection;
    std::uint32_t m_segment;
    const std::uint8_t* m_data;
    std::size_t m_size;
};

} // namespace tvx::platform
