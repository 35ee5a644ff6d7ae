#include "capture/ScreenStream.h"

#include "capture/ScreenGrabber.h"
#include "media/MediaTime.h"

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <pthread.h>
#include <thread>

namespace vantry {

namespace {

constexpr auto interval = std::chrono::nanoseconds(std::chrono::seconds(1)) / framesPerSecond;
constexpr int mostWaitingFrames = 6;

} // namespace

class ScreenStream::Impl {
public:
    Impl(const Display& display, Worker& captureQueue, Handlers handlers, Options options)
        : m_grabber(display, std::move(options.excludedProcesses))
        , m_captureQueue(captureQueue)
        , m_handlers(std::move(handlers))
        , m_thread([this] { run(); })
    {
    }

    ~Impl() { stop(); }

    int width() const { return m_grabber.width(); }
    int height() const { return m_grabber.height(); }

    void stop()
    {
        if (!m_thread.joinable())
            return;
        {
            const std::lock_guard lock(m_mutex);
            m_stopping = true;
        }
        m_changed.notify_all();
        m_thread.join();
        m_captureQueue.sync([] {}); // What the thread posted has run.
    }

private:
    void run()
    {
        pthread_setname_np(pthread_self(), "screen");
        try {
            // A frame that was held up does not put off the ones after it, unless it missed their time altogether.
            for (auto next = HostClock::now(); sleepUntil(next); next = std::max(next + interval, HostClock::now() - interval))
                if (m_waitingFrames < mostWaitingFrames)
                    deliverFrame();
        } catch (const AppError& error) {
            m_captureQueue.post([this, error] {
                if (!isStopping())
                    m_handlers.onError(error);
            });
        }
    }

    /// False when the stream was stopped.
    bool sleepUntil(HostTime time)
    {
        std::unique_lock lock(m_mutex);
        return !m_changed.wait_until(lock, time, [&] { return m_stopping; });
    }

    void deliverFrame()
    {
        const auto frame = m_grabber.grab();
        if (!frame)
            return;
        ++m_waitingFrames;
        m_captureQueue.post([this, frame = *frame] {
            if (!isStopping())
                m_handlers.onFrame(frame);
            --m_waitingFrames;
        });
    }

    bool isStopping()
    {
        const std::lock_guard lock(m_mutex);
        return m_stopping;
    }

    // Belongs to the stream's thread.
    ScreenGrabber m_grabber;

    // Belongs to the capture queue.
    Worker& m_captureQueue;
    const Handlers m_handlers;
    std::atomic<int> m_waitingFrames = 0;

    std::mutex m_mutex;
    std::condition_variable m_changed;

    // Guarded by the mutex.
    bool m_stopping = false;

    // Belongs to the caller.
    std::thread m_thread;
};

ScreenStream::ScreenStream(const Display& display, Worker& captureQueue, Handlers handlers, Options options)
    : m_impl(std::make_unique<Impl>(display, captureQueue, std::move(handlers), std::move(options)))
{
}

ScreenStream::~ScreenStream() = default;

int ScreenStream::width() const
{
    return m_impl->width();
}

int ScreenStream::height() const
{
    return m_impl->height();
}

void ScreenStream::stop()
{
    m_impl->stop();
}

} // namespace vantry
