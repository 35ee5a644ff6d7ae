#pragma once

#include <functional>

struct pw_loop;
struct spa_source;

namespace vantry::pw {

/// Has something done on a loop's thread: once after one signal or several. Made and destroyed on that thread, or while it does not
/// run. It is done between the server's news and never within the handling of one, as what is given to `pw_loop_invoke` may be: a
/// stream that the server pauses runs all of that in the midst of its own work. What it does may destroy streams.
class LoopEvent {
public:
    /// Throws AppError when the system has none left.
    LoopEvent(pw_loop* loop, std::function<void()> handler);
    ~LoopEvent();

    LoopEvent(const LoopEvent&) = delete;
    LoopEvent& operator=(const LoopEvent&) = delete;

    /// On any thread. Waits for nothing.
    void signal();

private:
    pw_loop* m_loop;
    std::function<void()> m_handler;
    spa_source* m_source; ///< Destroyed with this object.
};

} // namespace vantry::pw
