#include "base/WakeUp.h"

#include "base/AppError.h"

#include <cerrno>
#include <string>
#include <system_error>

#include <poll.h>
#include <sys/eventfd.h>

namespace vantry {

WakeUp::WakeUp()
    : m_event(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
    if (!m_event)
        throw AppError("No event: " + std::generic_category().message(errno));
}

void WakeUp::call() const
{
    eventfd_write(descriptor(), 1);
}

bool WakeUp::wasCalled() const
{
    pollfd file{ descriptor(), POLLIN, 0 };
    return poll(&file, 1, 0) > 0;
}

} // namespace vantry
