#include "render/PlayedSound.h"

#include "base/Log.h"

#include <algorithm>
#include <span>
#include <utility>

namespace vantry {

namespace {

/// So much is mixed ahead: a busy machine keeps threads waiting.
constexpr std::int64_t samplesAhead = SoundOutput::sampleRate * 2 / 5;

constexpr SampleCount mixedAtOnce(sampleRate / framesPerSecond);

/// Within this time not much of what was mixed ahead is used up.
constexpr auto nap = std::chrono::milliseconds(50);

} // namespace

PlayedSound::PlayedSound() = default;

PlayedSound::~PlayedSound()
{
    stop();
}

void PlayedSound::play(const CompositionPlan& plan, MediaTime from)
{
    std::uint64_t order = 0;
    {
        const std::lock_guard lock(m_mutex);
        order = ++m_order;
        m_problem = nullptr;
    }
    m_changed.notify_all();
    m_worker.post([this, plan, from, order] {
        try {
            feed(plan, from, order);
        } catch (...) {
            const std::lock_guard lock(m_mutex);
            if (m_order == order)
                m_problem = std::current_exception();
        }
    });
}

void PlayedSound::stop()
{
    std::uint64_t order = 0;
    {
        const std::lock_guard lock(m_mutex);
        order = ++m_order;
        m_problem = nullptr;
    }
    m_changed.notify_all();
    m_worker.post([this, order] {
        if (!m_output || !begin({ .order = order }))
            return;
        m_output->stop();
    });
}

std::optional<MediaTime> PlayedSound::heard() const
{
    const std::lock_guard lock(m_mutex);
    if (m_problem)
        std::rethrow_exception(m_problem);
    if (!m_output || m_isLost || m_stretch.order != m_order || m_output->reached() <= m_stretch.firstSample)
        return std::nullopt;
    const auto sample = m_output->heardAt(HostClock::now());
    if (!sample)
        return std::nullopt;
    return m_stretch.from + std::max(SampleCount(*sample - m_stretch.firstSample), SampleCount(0));
}

void PlayedSound::feed(const CompositionPlan& plan, MediaTime from, std::uint64_t order)
{
    open();
    if (!m_output)
        return;
    auto position = std::chrono::round<SampleCount>(from);
    const auto end = std::chrono::ceil<SampleCount>(plan.duration);
    AudioMix mix(plan, position);
    std::optional<Stretch> stretch;
    while (position < end) {
        const auto sound = mix.next(std::min(mixedAtOnce, end - position));
        position += sound.length();
        if (!stretch) {
            stretch = Stretch{ .order = order, .firstSample = m_output->written(), .from = from };
            if (!begin(*stretch))
                return;
            m_output->start();
        }
        if (!write(sound, *stretch))
            return;
    }
}

/// Makes the output, unless it is there.
void PlayedSound::open()
{
    if (m_isLost.exchange(false))
        close();
    if (m_output)
        return;
    try {
        const auto lose = [this](const AppError& error) {
            qCInfo(logRender) << error.what();
            m_isLost = true;
        };
        m_loop = std::make_unique<PipeWireLoop>("vantry.playback", lose);
        auto output = std::make_unique<SoundOutput>(*m_loop, lose);
        const std::lock_guard lock(m_mutex);
        m_output = std::move(output);
    } catch (const AppError& error) {
        qCInfo(logRender) << "the preview is silent:" << error.what();
        m_loop.reset();
    }
}

void PlayedSound::close()
{
    std::unique_ptr<SoundOutput> lost;
    {
        const std::lock_guard lock(m_mutex);
        lost = std::move(m_output);
    }
    lost.reset();
    m_loop.reset();
}

/// From now on this is what is heard. False when something else is wanted already.
bool PlayedSound::begin(const Stretch& stretch)
{
    const std::lock_guard lock(m_mutex);
    if (m_order != stretch.order)
        return false;
    m_output->discard();
    m_stretch = stretch;
    return true;
}

/// Waits for room. False when something else is wanted.
bool PlayedSound::write(const Sound& sound, const Stretch& stretch)
{
    std::span<const float> samples(sound.samples);
    for (;;) {
        if (m_output->written() - std::max(m_output->reached(), stretch.firstSample) < samplesAhead)
            samples = samples.subspan(static_cast<std::size_t>(m_output->write(samples) * SoundOutput::channels));
        if (samples.empty())
            return true;
        std::unique_lock lock(m_mutex);
        if (m_changed.wait_for(lock, nap, [&] { return m_order != stretch.order; }))
            return false;
    }
}

} // namespace vantry
