#pragma once

#include "config/Settings.h"

#include <xcb/shm.h>
#include <xcb/xcb.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

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
    // The same in two steps, at `offset` bytes into the segment, so that the caller can use
    // one part of the segment while the server fills another. nullopt when the rectangle
    // does not fit there.
    std::optional<xcb_shm_get_image_cookie_t> request(xcb_drawable_t drawable, const CaptureRegionRect& rect,
                                                      std::size_t offset);
    // True when the request was carried out; every request is to be waited for.
    bool wait(xcb_shm_get_image_cookie_t cookie);
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
