#include "platform/LoopEvent.h"

#include "base/AppError.h"

#include <cerrno>
#include <cstring>
#include <pipewire/loop.h>
#include <utility>

namespace vantry::pw {

namespace {

void handle(void* handler, std::uint64_t)
{
    (*static_cast<const std::function<void()>*>(handler))();
}

} // namespace

LoopEvent::LoopEvent(pw_loop* loop, std::function<void()> handler)
    : m_loop(loop)
    , m_handler(std::move(handler))
    , m_source(pw_loop_add_event(loop, handle, &m_handler))
{
    if (!m_source)
        throw AppError(std::string("The media library has no event left: ") + std::strerror(errno));
}

LoopEvent::~LoopEvent()
{
    pw_loop_destroy_source(m_loop, m_source);
}

void LoopEvent::signal()
{
    pw_loop_signal_event(m_loop, m_source);
}

} // namespace vantry::pw
