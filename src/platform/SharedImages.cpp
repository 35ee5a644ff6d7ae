#include "platform/SharedImages.h"

#include "base/AppError.h"

#include <cassert>
#include <sys/ipc.h>
#include <sys/shm.h>

namespace vantry {

namespace {

[[noreturn]] void failToShare()
{
    throw AppError("The display server cannot share the screen's memory with this program (is it on another machine?)");
}

} // namespace

SharedImages::SharedImages(const xcb::Connection& connection, int pixels)
    : m_connection(connection)
    , m_size(4 * static_cast<std::size_t>(pixels))
    , m_segment(xcb_generate_id(connection))
{
    const int id = shmget(IPC_PRIVATE, m_size, IPC_CREAT | 0600);
    if (id < 0)
        failToShare();
    void* memory = shmat(id, nullptr, 0);
    const bool attached = memory != reinterpret_cast<void*>(-1); // NOLINT(performance-no-int-to-ptr): the system's own way
    const auto refused =
        attached ? connection.check(xcb_shm_attach_checked(connection, m_segment, static_cast<std::uint32_t>(id), 0)) : nullptr;
    shmctl(id, IPC_RMID, nullptr); // It lives as long as somebody is attached.
    if (!attached)
        failToShare();
    m_memory = static_cast<std::uint8_t*>(memory);
    if (refused || connection.isLost()) {
        shmdt(m_memory);
        failToShare();
    }
}

SharedImages::~SharedImages()
{
    await();
    xcb_shm_detach(m_connection, m_segment);
    shmdt(m_memory);
}

void SharedImages::request(xcb_drawable_t drawable, const PixelRect& area, int originX, int originY)
{
    assert(hasRoomFor(area));
    const auto cookie = xcb_shm_get_image(m_connection, drawable, static_cast<std::int16_t>(area.x - originX),
        static_cast<std::int16_t>(area.y - originY), static_cast<std::uint16_t>(area.width),
        static_cast<std::uint16_t>(area.height), ~0u, XCB_IMAGE_FORMAT_Z_PIXMAP, m_segment, static_cast<std::uint32_t>(m_used));
    m_requests.push_back({ cookie, { area, m_memory + m_used } });
    m_used += bytes(area);
}

std::vector<PixelBlock> SharedImages::await()
{
    std::vector<PixelBlock> blocks;
    for (auto& request : m_requests) {
        // A drawable of another depth would have other pixels: ask only for what has 32 bits.
        const auto reply = m_connection.receive(xcb_shm_get_image_reply, request.cookie);
        if (!reply || reply->size != bytes(request.block.area))
            request.block.data = nullptr;
        blocks.push_back(request.block);
    }
    m_requests.clear();
    m_used = 0;
    return blocks;
}

} // namespace vantry
