#include "TimeStrip.h"

#include "support/Command.h"
#include "support/TestDesktop.h"

#include <chrono>
#include <cstdint>

namespace vantry::bench {

namespace {

using namespace std::chrono_literals;
using Tick = std::chrono::duration<std::int64_t, std::centi>;

constexpr int bits = 16;
constexpr int side = 32;
constexpr PixelRect place{ 96, 896, bits* side, side };

std::uint16_t tickOf(HostTime time)
{
    return static_cast<std::uint16_t>(std::chrono::floor<Tick>(time.time_since_epoch()).count());
}

void paint(const std::stop_token& stop)
{
    test::TestDesktop desktop;
    const auto window = desktop.open({ .place = place });
    std::uint16_t shown = 0;
    while (!stop.stop_requested()) {
        const std::uint16_t tick = tickOf(HostClock::now());
        const auto changed = static_cast<std::uint16_t>(tick ^ shown);
        for (int bit = 0; bit < bits; ++bit)
            if ((changed >> bit & 1) != 0)
                desktop.fill(window, { bit * side, 0, side, side }, (tick >> bit & 1) != 0 ? 0xFFFFFF : 0x000000);
        desktop.finish();
        shown = tick;
        std::this_thread::sleep_for(2ms);
    }
}

} // namespace

TimeStrip::TimeStrip()
    : m_painter(paint)
{
}

std::vector<HostTime> TimeStrip::readIn(const std::filesystem::path& clip, HostTime around)
{
    const std::string crop = std::to_string(place.width) + ":" + std::to_string(place.height) + ":" + std::to_string(place.x) + ":"
        + std::to_string(place.y);
    const std::string pictures =
        test::runCommand("ffmpeg -nostdin -v error -i '" + clip.string() + "' -map v:0 -fps_mode passthrough" + " -vf crop=" + crop
            + ",scale=" + std::to_string(bits) + ":1:flags=area -f rawvideo -pix_fmt gray -");
    std::vector<HostTime> times;
    for (std::size_t picture = 0; picture + bits <= pictures.size(); picture += bits) {
        unsigned tick = 0;
        for (unsigned bit = 0; bit < bits; ++bit)
            tick |= static_cast<unsigned>(static_cast<unsigned char>(pictures[picture + bit]) > 127) << bit;
        const auto away = static_cast<std::int16_t>(tick - tickOf(around));
        times.push_back(HostTime(std::chrono::floor<Tick>(around.time_since_epoch()) + Tick(away)));
    }
    return times;
}

} // namespace vantry::bench
