#include "SharedImage.h"

#include "XcbReply.h"

#include <xcb/shm.h>

#include <sys/ipc.h>
#include <sys/shm.h>

namespace tvx::platform {

std::unique_ptr<SharedImage> SharedImage::attach(xcb_connection_t* connection, std::size_t bytes)
{
    const xcb_query_extension_reply_t* extension = xcb_get_extension_data(connection, &xcb_shm_id);
    if (!extension || !extension->present || bytes == 0)
        return nullptr;
    const int id = shmget(IPC_PRIVATE, bytes, IPC_CREAT | 0600);
    if (id < 0)
        return nullptr;
    void* address = shmat(id, nullptr, SHM_RDONLY);
    const xcb_shm_seg_t segment = xcb_generate_id(connection);
    const bool mapped = address != reinterpret_cast<void*>(-1);
    xcb_generic_error_t* error = mapped ? xcb_request_check(connection, xcb_shm_attach_checked(connection, segment,
                                                                                               static_cast<std::uint32_t>(id), 0))
                                        : nullptr;
    // Marked for removal now: it goes when both sides have detached, even after a crash.
    shmctl(id, IPC_RMID, nullptr);
    if (!mapped)
        return nullptr;
    if (error) {
        std::free(error);
        shmdt(address);
        return nullptr;
    }
    return std::unique_ptr<SharedImage>(
        new SharedImage(connection, segment, static_cast<const std::uint8_t*>(address), bytes));
}

SharedImage::~SharedImage()
{
    xcb_shm_detach(m_connection, m_segment);
    xcb_flush(m_connection);
    shmdt(m_data);
}

bool SharedImage::get(xcb_drawable_t drawable, const CaptureRegionRect& rect)
{
    const auto cookie = request(drawable, rect, 0);
    return cookie && wait(*cookie);
}

std::optional<xcb_shm_get_image_cookie_t> SharedImage::request(xcb_drawable_t drawable, const CaptureRegionRect& rect,
                                                               std::size_t offset)
{
    const std::size_t bytes = static_cast<std::size_t>(rect.SizeX) * static_cast<std::size_t>(rect.SizeY) * 4;
    if (offset > m_size || bytes > m_size - offset)
        return std::nullopt;
    return xcb_shm_get_image(m_connection, drawable, static_cast<std::int16_t>(rect.StartX),
                             static_cast<std::int16_t>(rect.StartY), static_cast<std::uint16_t>(rect.SizeX),
                             static_cast<std::uint16_t>(rect.SizeY), ~0u, XCB_IMAGE_FORMAT_Z_PIXMAP, m_segment,
                             static_cast<std::uint32_t>(offset));
}

bool SharedImage::wait(xcb_shm_get_image_cookie_t cookie)
{
    return reply(xcb_shm_get_image_reply(m_connection, cookie, nullptr)) != nullptr;
}

} // namespace tvx::platform
