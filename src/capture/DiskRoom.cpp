#include "capture/DiskRoom.h"

#include "base/AppError.h"

#include <cstdint>
#include <string>
#include <system_error>

namespace vantry {

using namespace std::chrono_literals;

namespace {

constexpr std::uintmax_t megabyte = 1'000'000;

/// The index of some hours, and what the encoders still hold.
constexpr std::uintmax_t roomForTheEnd = 64 * megabyte;

/// Some tens of seconds more: a clip that ends at once is of no use.
constexpr std::uintmax_t roomForAClip = 2 * roomForTheEnd;

constexpr HostDuration lookInterval = 1s;

constexpr auto untold = static_cast<std::uintmax_t>(-1);

std::uintmax_t roomIn(const std::filesystem::path& folder)
{
    std::error_code error;
    return std::filesystem::space(folder, error).available; // `untold` where it cannot be told.
}

} // namespace

DiskRoom::DiskRoom(std::filesystem::path folder)
    : m_folder(std::move(folder))
{
}

void DiskRoom::checkForClip() const
{
    const auto room = roomIn(m_folder);
    if (room < roomForAClip)
        throw AppError("The disk is full: " + std::to_string(room / megabyte) + " MB are left where recordings are kept, and "
            + std::to_string(roomForAClip / megabyte) + " MB are needed to begin");
}

std::optional<std::uintmax_t> DiskRoom::bytesForClips() const
{
    const auto room = roomIn(m_folder);
    if (room == untold)
        return std::nullopt;
    return room > roomForTheEnd ? room - roomForTheEnd : 0;
}

bool DiskRoom::isRunningOut()
{
    const auto now = HostClock::now();
    if (now < m_nextLook)
        return false;
    m_nextLook = now + lookInterval;
    return roomIn(m_folder) < roomForTheEnd;
}

} // namespace vantry
