#include "platform/PipeWireLoop.h"

#include "platform/LoopEvent.h"

#include <cerrno>
#include <cstring>
#include <future>
#include <optional>
#include <pipewire/pipewire.h>
#include <vector>

namespace vantry {

namespace {

void initializeLibrary()
{
    static std::once_flag once;
    std::call_once(once, [] { pw_init(nullptr, nullptr); });
}

AppError noServer(int code)
{
    return AppError(std::string("There is no PipeWire server to connect to: ") + std::strerror(code));
}

} // namespace

/// What the server says of the connection as a whole. Belongs to the loop's thread, or to who has the lock.
struct PipeWireLoop::Listener {
    pw_thread_loop* loop;
    LostHandler onLost;
    spa_hook hook{};
    int done = 0; ///< The number of the latest request that the server has answered.
    bool isLost = false;

    struct Question {
        int request;
        HostTime asked;
    };
    std::optional<Question> question; ///< That it has not yet answered.

    static const pw_core_events events;

    void finish(std::uint32_t id, int request)
    {
        if (id != PW_ID_CORE)
            return;
        done = request;
        if (question && question->request == request)
            question.reset();
        pw_thread_loop_signal(loop, false);
    }

    void fail(std::uint32_t id, int result, const char* message)
    {
        if (id != PW_ID_CORE || result != -EPIPE || isLost)
            return;
        isLost = true;
        pw_thread_loop_signal(loop, false);
        if (onLost)
            onLost(AppError(std::string("The connection to the PipeWire server was lost: ") + message));
    }
};

const pw_core_events PipeWireLoop::Listener::events = {
    .version = PW_VERSION_CORE_EVENTS,
    .done = [](void* self, std::uint32_t id, int request) { static_cast<Listener*>(self)->finish(id, request); },
    .error = [](void* self, std::uint32_t id, int, int result,
                 const char* message) { static_cast<Listener*>(self)->fail(id, result, message); },
};

/// What other threads want done on the loop's.
class PipeWireLoop::Calls {
public:
    using Call = std::packaged_task<void()>;

    explicit Calls(pw_loop* loop)
        : m_event(loop, [this] { runAll(); })
    {
    }

    void add(Call call)
    {
        {
            const std::lock_guard guard(m_mutex);
            m_waiting.push_back(std::move(call));
        }
        m_event.signal();
    }

private:
    void runAll()
    {
        std::vector<Call> calls;
        {
            const std::lock_guard guard(m_mutex);
            calls.swap(m_waiting);
        }
        for (auto& call : calls)
            call();
    }

    std::mutex m_mutex;
    std::vector<Call> m_waiting; ///< Guarded by the mutex.
    pw::LoopEvent m_event;
};

void PipeWireLoop::Destroy::operator()(pw_thread_loop* loop) const
{
    pw_thread_loop_destroy(loop);
}

void PipeWireLoop::Destroy::operator()(pw_context* context) const
{
    pw_context_destroy(context);
}

void PipeWireLoop::Destroy::operator()(pw_core* core) const
{
    pw_core_disconnect(core);
}

void PipeWireLoop::Destroy::operator()(Listener* listener) const
{
    spa_hook_remove(&listener->hook);
    delete listener;
}

void PipeWireLoop::Destroy::operator()(Calls* calls) const
{
    delete calls;
}

PipeWireLoop::PipeWireLoop(const std::string& name, LostHandler onLost)
{
    initializeLibrary();
    m_loop.reset(pw_thread_loop_new(name.c_str(), nullptr));
    if (!m_loop)
        throw noServer(errno);
    m_context.reset(pw_context_new(loop(), nullptr, 0));
    if (!m_context)
        throw noServer(errno);
    // Not yet running: nobody else uses the loop before everything stands.
    m_core.reset(pw_context_connect(m_context.get(), nullptr, 0));
    if (!m_core)
        throw noServer(errno);
    m_listener.reset(new Listener{ .loop = m_loop.get(), .onLost = std::move(onLost) });
    pw_core_add_listener(m_core.get(), &m_listener->hook, &Listener::events, m_listener.get());
    m_calls.reset(new Calls(loop()));
    if (const int result = pw_thread_loop_start(m_loop.get()); result < 0)
        throw noServer(-result);
}

PipeWireLoop::~PipeWireLoop()
{
    pw_thread_loop_stop(m_loop.get());
}

void PipeWireLoop::lock()
{
    pw_thread_loop_lock(m_loop.get());
}

void PipeWireLoop::unlock()
{
    pw_thread_loop_unlock(m_loop.get());
}

pw_loop* PipeWireLoop::loop() const
{
    return pw_thread_loop_get_loop(m_loop.get());
}

void PipeWireLoop::invoke(const std::function<void()>& function)
{
    Calls::Call call(function);
    auto done = call.get_future();
    m_calls->add(std::move(call));
    done.get();
}

bool PipeWireLoop::awaitServer(std::chrono::milliseconds longest)
{
    const std::lock_guard guard(*this);
    const int request = pw_core_sync(m_core.get(), PW_ID_CORE, 0);
    timespec deadline;
    pw_thread_loop_get_time(m_loop.get(), &deadline, std::chrono::nanoseconds(longest).count());
    while (!m_listener->isLost && m_listener->done < request)
        if (pw_thread_loop_timed_wait_full(m_loop.get(), &deadline) < 0)
            return false;
    return !m_listener->isLost;
}

void PipeWireLoop::askServer()
{
    const std::lock_guard guard(*this);
    if (!m_listener->question)
        m_listener->question = Listener::Question{ pw_core_sync(m_core.get(), PW_ID_CORE, 0), HostClock::now() };
}

HostDuration PipeWireLoop::owedByServer()
{
    const std::lock_guard guard(*this);
    return m_listener->question ? HostClock::now() - m_listener->question->asked : HostDuration::zero();
}

} // namespace vantry
