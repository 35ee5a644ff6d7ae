#pragma once

#include <ctime>
#include <sys/resource.h>

namespace vantry::bench {

/// The processor time of this process so far, or of its children that have ended.
inline double processorSeconds(__rusage_who of = RUSAGE_SELF)
{
    rusage usage{};
    getrusage(of, &usage);
    const auto sum = [](const timeval& time) { return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6; };
    return sum(usage.ru_utime) + sum(usage.ru_stime);
}

/// The processor time of this thread: what one core spends, whatever else runs.
inline double threadSeconds()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

} // namespace vantry::bench
