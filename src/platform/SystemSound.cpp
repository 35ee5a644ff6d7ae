#include "platform/SystemSound.h"

#include "platform/PipeWire.h"
#include "platform/PlayingPrograms.h"

#include <algorithm>
#include <array>
#include <map>
#include <set>
#include <string_view>

namespace vantry {

namespace {

bool isOn(std::string_view side, std::string_view channel)
{
    static constexpr std::array<std::string_view, 9> left{ "FL", "SL", "RL", "FLC", "RLC", "FLW", "TFL", "TRL", "TSL" };
    static constexpr std::array<std::string_view, 9> right{ "FR", "SR", "RR", "FRC", "RRC", "FRW", "TFR", "TRR", "TSR" };
    return std::ranges::count(side == "FL" ? left : right, channel) > 0;
}

/// What is on neither side (mono, the centre, channels without a place) is on both; the deep effects' own channel is left out, as
/// small speakers do.
bool isHeardOn(std::string_view side, std::string_view channel)
{
    const std::string_view other = side == "FL" ? "FR" : "FL";
    return channel != "LFE" && !isOn(other, channel);
}

SoundStream::Options options()
{
    return { .what = "Other programs' sound",
        .name = "Sound of other programs",
        .channels = SystemSound::channels,
        .isConnected = false,
        // Without it nothing comes while nobody plays.
        .properties = { { PW_KEY_NODE_ALWAYS_PROCESS, "true" }, { PW_KEY_NODE_NAME, "vantry.system" } } };
}

} // namespace

class SystemSound::Impl {
public:
    Impl(PipeWireLoop& loop, Handlers handlers);
    ~Impl();

private:
    using Ends = std::pair<std::uint32_t, std::uint32_t>; ///< The ports' numbers.

    void link();
    std::set<Ends> wanted() const;
    pw::ProxyPtr<pw_proxy> makeLink(const Ends& ends);

    PipeWireLoop& m_loop;
    SoundStream m_stream;

    // Belong to the loop's thread, or to who has its lock.
    std::unique_ptr<PlayingPrograms> m_programs;
    std::map<Ends, pw::ProxyPtr<pw_proxy>> m_links;
};

SystemSound::Impl::Impl(PipeWireLoop& loop, Handlers handlers)
    : m_loop(loop)
    , m_stream(loop, options(), std::move(handlers))
{
    const std::lock_guard guard(m_loop);
    m_programs = std::make_unique<PlayingPrograms>(loop, [this] { link(); });
}

SystemSound::Impl::~Impl()
{
    const std::lock_guard guard(m_loop);
    m_programs.reset();
    m_links.clear();
}

void SystemSound::Impl::link()
{
    const auto ends = wanted();
    std::erase_if(m_links, [&](const auto& link) { return !ends.contains(link.first); });
    for (const auto& pair : ends)
        if (!m_links.contains(pair))
            m_links.emplace(pair, makeLink(pair));
}

std::set<SystemSound::Impl::Ends> SystemSound::Impl::wanted() const
{
    std::set<Ends> ends;
    const auto inputs = m_programs->inputsOf(m_stream.node());
    for (const auto& output : m_programs->outputs())
        for (const auto& input : inputs)
            if (isHeardOn(input.channel, output.channel))
                ends.emplace(output.id, input.id);
    return ends;
}

pw::ProxyPtr<pw_proxy> SystemSound::Impl::makeLink(const Ends& ends)
{
    const auto output = std::to_string(ends.first);
    const auto input = std::to_string(ends.second);
    const std::array items{ spa_dict_item{ PW_KEY_LINK_OUTPUT_PORT, output.c_str() },
        spa_dict_item{ PW_KEY_LINK_INPUT_PORT, input.c_str() } };
    const spa_dict properties = SPA_DICT_INIT(items.data(), items.size());
    auto* link = pw_core_create_object(m_loop.core(), "link-factory", PW_TYPE_INTERFACE_Link, PW_VERSION_LINK, &properties, 0);
    return pw::ProxyPtr<pw_proxy>(static_cast<pw_proxy*>(link));
}

SystemSound::SystemSound(PipeWireLoop& loop, Handlers handlers)
    : m_impl(std::make_unique<Impl>(loop, std::move(handlers)))
{
}

SystemSound::~SystemSound() = default;

} // namespace vantry
