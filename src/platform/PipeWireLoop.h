#pragma once

#include "base/AppError.h"
#include "base/HostTime.h"

#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <string>

struct pw_context;
struct pw_core;
struct pw_loop;
struct pw_thread_loop;

namespace vantry {

/// A connection to the media server with a thread of its own, on which the server's news arrive. What is made from `core` (streams,
/// registries, proxies) is used and destroyed under the lock, and before the loop is. Apart from that safe to use from any thread.
///
///     const std::lock_guard guard(loop);
class PipeWireLoop {
public:
    /// Called on the loop's thread, once, when the server has ended the connection. Streams of a lost connection stay silent; the
    /// loop itself is destroyed on another thread.
    using LostHandler = std::function<void(const AppError&)>;

    /// Connects. The thread's name has at most 15 characters. Throws AppError when there is no server to connect to.
    explicit PipeWireLoop(const std::string& name, LostHandler onLost = {});
    ~PipeWireLoop(); ///< Neither with the lock nor on the loop's thread.

    PipeWireLoop(const PipeWireLoop&) = delete;
    PipeWireLoop& operator=(const PipeWireLoop&) = delete;

    // The lock keeps the loop's thread from handling the server's news. A thread may take it several times, the loop's own one has
    // it.
    void lock();
    void unlock();

    pw_core* core() const { return m_core.get(); }
    pw_loop* loop() const;

    /// Runs the function on the loop's thread and waits for it; what it throws is thrown here. It may destroy streams. Neither with
    /// the lock nor on the loop's thread.
    void invoke(const std::function<void()>& function);

    /// Waits until the server has done what was asked of it so far and the loop's thread has handled its answers. False when that
    /// took longer, or when the connection is lost. Not on the loop's thread.
    [[nodiscard]] bool awaitServer(std::chrono::milliseconds longest = std::chrono::seconds(3));

    /// Asks the server for a sign of life, unless it owes one already. A server that is stopped takes everything and says nothing.
    void askServer();

    /// For how long the server has owed its sign of life; zero when it owes none.
    HostDuration owedByServer();

private:
    struct Listener;
    class Calls;
    struct Destroy {
        void operator()(pw_thread_loop*) const;
        void operator()(pw_context*) const;
        void operator()(pw_core*) const;
        void operator()(Listener*) const;
        void operator()(Calls*) const;
    };

    // From last to first they are destroyed, once the thread has ended.
    std::unique_ptr<pw_thread_loop, Destroy> m_loop;
    std::unique_ptr<pw_context, Destroy> m_context;
    std::unique_ptr<pw_core, Destroy> m_core;
    std::unique_ptr<Listener, Destroy> m_listener;
    std::unique_ptr<Calls, Destroy> m_calls;
};

} // namespace vantry
