#include "base/Worker.h"

#include <pthread.h>

namespace vantry {

Worker::Worker(std::string name, Options options)
    : m_jobs(options.capacity, options.whenFull)
{
    m_thread = std::thread([this, name = std::move(name)] {
        pthread_setname_np(pthread_self(), name.substr(0, 15).c_str());
        while (auto job = m_jobs.pop())
            (*job)();
    });
}

Worker::~Worker()
{
    finish();
}

void Worker::finish()
{
    m_jobs.close();
    if (m_thread.joinable())
        m_thread.join();
}

} // namespace vantry
