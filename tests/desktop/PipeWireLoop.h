#pragma once

#include <memory>
#include <stdexcept>

#include <pipewire/pipewire.h>

namespace vantry {

/// A main loop of the media server's library that runs until SIGTERM or SIGINT, or until the connection is lost. For small programs
/// with one stream; everything happens on the thread that calls `run`.
class PipeWireLoop {
public:
    PipeWireLoop()
    {
        pw_init(nullptr, nullptr);
        m_loop.reset(pw_main_loop_new(nullptr));
        if (!m_loop)
            throw std::runtime_error("The media server's library gave no loop.");
        pw_loop_add_signal(loop(), SIGTERM, onSignal, this);
        pw_loop_add_signal(loop(), SIGINT, onSignal, this);
    }

    pw_loop* loop() { return pw_main_loop_get_loop(m_loop.get()); }
    void run() { pw_main_loop_run(m_loop.get()); }
    void quit() { pw_main_loop_quit(m_loop.get()); }

private:
    static void onSignal(void* self, int) { static_cast<PipeWireLoop*>(self)->quit(); }

    struct Destroy {
        void operator()(pw_main_loop* loop) const { pw_main_loop_destroy(loop); }
    };
    std::unique_ptr<pw_main_loop, Destroy> m_loop;
};

struct DestroyStream {
    void operator()(pw_stream* stream) const { pw_stream_destroy(stream); }
};
using StreamPointer = std::unique_ptr<pw_stream, DestroyStream>;

} // namespace vantry
