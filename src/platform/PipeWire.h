#pragma once

#include "platform/PipeWireLoop.h"

#include <memory>
#include <mutex>
#include <pipewire/pipewire.h>

/// Ownership of the media server library's objects. For the sources of this room only.
namespace vantry::pw {

/// Whatever lives on the server. Destroyed under the loop's lock.
struct DestroyProxy {
    template <typename Proxy>
    void operator()(Proxy* proxy) const
    {
        pw_proxy_destroy(reinterpret_cast<pw_proxy*>(proxy));
    }
};
template <typename Proxy>
using ProxyPtr = std::unique_ptr<Proxy, DestroyProxy>;

struct DestroyStream {
    void operator()(pw_stream* stream) const { pw_stream_destroy(stream); }
};
/// Destroyed on the loop's thread, which may have been told to call `process` just now. While it is destroyed it tells of its last
/// states.
using StreamPtr = std::unique_ptr<pw_stream, DestroyStream>;

/// A place in the list of those who are told something. Declared after what it listens to; ended under the loop's lock.
class Hook {
public:
    Hook() = default;
    ~Hook()
    {
        if (m_hook.link.next)
            spa_hook_remove(&m_hook);
    }

    Hook(const Hook&) = delete;
    Hook& operator=(const Hook&) = delete;

    spa_hook* get() { return &m_hook; }

private:
    spa_hook m_hook{};
};

} // namespace vantry::pw
