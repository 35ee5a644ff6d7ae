#include "capture/EncoderQueue.h"

namespace vantry {

namespace {

/// Jobs that are posted come on top; the worker itself is never full.
constexpr std::size_t reserve = 16;

} // namespace

EncoderQueue::EncoderQueue(std::string name, int room)
    : m_room(room)
    , m_worker(std::move(name), { .capacity = static_cast<std::size_t>(room) + reserve })
{
}

void EncoderQueue::offer(Worker::Job job)
{
    if (!hasRoom())
        return countDropped();
    ++m_waiting;
    ++m_accepted;
    m_worker.post([this, job = std::move(job)] {
        job();
        --m_waiting;
    });
}

} // namespace vantry
