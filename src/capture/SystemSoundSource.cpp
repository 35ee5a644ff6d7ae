#include "capture/SystemSoundSource.h"

#include "capture/SoundHandOver.h"
#include "platform/PipeWireLoop.h"
#include "platform/SystemSound.h"

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <pthread.h>
#include <thread>

namespace vantry {

using namespace std::chrono_literals;

static_assert(SoundStream::sampleRate == sampleRate);

namespace {

constexpr auto retryInterval = 1s;

constexpr HostDuration longestAnswer = 3s;
constexpr HostDuration askInterval = 1s;
constexpr HostDuration glance = 100ms; ///< At a server that does not answer.

/// The server hands a cycle over when it begins. The first program that plays after a while brings another output and with it a
/// cycle of its own, in the midst of the one before: silence must not have taken its place already, so silence comes a cycle late.
bool isSilent(const Sound& sound)
{
    return std::ranges::all_of(sound.samples, [](float sample) { return sample == 0; });
}

} // namespace

class SystemSoundSource::Impl {
public:
    Impl(Worker& captureQueue, Handlers handlers)
        : m_captureQueue(captureQueue)
        , m_handlers(std::move(handlers))
        , m_handOver(captureQueue, m_handlers.onSound)
        , m_connection(connect())
        , m_thread([this] { run(); })
    {
    }
    ~Impl();

private:
    /// In the order in which they need each other.
    struct Connection {
        Connection(SystemSound::Handlers handlers)
            : sound(loop, std::move(handlers))
        {
        }
        PipeWireLoop loop{ "vantry.sound" };
        SystemSound sound;
    };

    std::unique_ptr<Connection> connect();
    void run();
    void reconnect();
    bool sleepFor(HostDuration);
    void watch();
    void fail(const AppError& error);
    void hand(std::span<const float> samples, HostTime taken);
    void report(const std::optional<AppError>& problem);

    Worker& m_captureQueue;
    const Handlers m_handlers;
    SoundHandOver m_handOver;

    std::mutex m_mutex;
    std::condition_variable m_changed;

    // Guarded by the mutex.
    bool m_isStopping = false;
    std::optional<AppError> m_failure; ///< Of the connection there is.

    // Belong to the thread.
    std::unique_ptr<Connection> m_connection;
    bool m_isAnswered = true;

    // Belongs to the caller.
    std::thread m_thread;
};

SystemSoundSource::Impl::~Impl()
{
    {
        const std::lock_guard lock(m_mutex);
        m_isStopping = true;
    }
    m_changed.notify_all();
    m_thread.join();
    m_connection.reset();
    m_captureQueue.sync([] {}); // What was posted has run.
}

std::unique_ptr<SystemSoundSource::Impl::Connection> SystemSoundSource::Impl::connect()
{
    return std::make_unique<Connection>(
        SystemSound::Handlers{ .onSound = [this](std::span<const float> samples, HostTime taken) { hand(samples, taken); },
            .onFailed = [this](const AppError& error) { fail(error); } });
}

void SystemSoundSource::Impl::run()
{
    pthread_setname_np(pthread_self(), "system sound");
    std::unique_lock lock(m_mutex);
    while (!m_isStopping) {
        const HostDuration pause = m_isAnswered ? askInterval : glance;
        m_changed.wait_for(lock, pause, [this] { return m_isStopping || m_failure; });
        const auto failure = std::exchange(m_failure, std::nullopt);
        lock.unlock();
        if (failure) {
            report(failure);
            reconnect();
        } else {
            watch();
        }
        lock.lock();
    }
}

/// Gives up only when the source is stopped.
void SystemSoundSource::Impl::reconnect()
{
    for (m_connection.reset(); !m_connection && sleepFor(retryInterval);)
        try {
            m_connection = connect();
            m_isAnswered = true;
            report(std::nullopt);
        } catch (const AppError&) {
            // The user knows already.
        }
}

/// A server that is stopped does not end the connection.
void SystemSoundSource::Impl::watch()
{
    m_connection->loop.askServer();
    const bool isAnswered = m_connection->loop.owedByServer() < longestAnswer;
    if (std::exchange(m_isAnswered, isAnswered) == isAnswered)
        return;
    report(isAnswered ? std::nullopt : std::optional(AppError("The media server does not answer")));
}

/// False when the source was stopped.
bool SystemSoundSource::Impl::sleepFor(HostDuration time)
{
    std::unique_lock lock(m_mutex);
    return !m_changed.wait_for(lock, time, [this] { return m_isStopping; });
}

/// On the connection's own thread, which cannot end the connection.
void SystemSoundSource::Impl::fail(const AppError& error)
{
    {
        const std::lock_guard lock(m_mutex);
        m_failure = error;
    }
    m_changed.notify_all();
}

/// On the media library's thread.
void SystemSoundSource::Impl::hand(std::span<const float> samples, HostTime taken)
{
    SoundSample sample{ { SystemSound::channels, { samples.begin(), samples.end() } }, taken };
    if (isSilent(sample.sound))
        sample.time -= std::chrono::round<HostDuration>(sample.sound.length());
    m_handOver.take(std::move(sample));
}

void SystemSoundSource::Impl::report(const std::optional<AppError>& problem)
{
    m_captureQueue.post([this, problem] { m_handlers.onChange(problem); });
}

SystemSoundSource::SystemSoundSource(Worker& captureQueue, Handlers handlers)
    : m_impl(std::make_unique<Impl>(captureQueue, std::move(handlers)))
{
}

SystemSoundSource::~SystemSoundSource() = default;

} // namespace vantry
